"""A stand-in for the parts of a desktop that programs tell something: what it is told, it keeps."""

import threading

from gi.repository import Gio, GLib

NOTIFICATIONS = "org.freedesktop.Notifications"
FILE_VIEWER = "org.freedesktop.FileManager1"
INTERFACES = f"""<node>
<interface name="{NOTIFICATIONS}"><method name="Notify">
<arg type="s" direction="in"/><arg type="u" direction="in"/><arg type="s" direction="in"/>
<arg type="s" direction="in"/><arg type="s" direction="in"/><arg type="as" direction="in"/>
<arg type="a{{sv}}" direction="in"/><arg type="i" direction="in"/><arg type="u" direction="out"/>
</method></interface>
<interface name="{FILE_VIEWER}">
<method name="ShowItems"><arg type="as" direction="in"/><arg type="s" direction="in"/></method>
<method name="ShowFolders"><arg type="as" direction="in"/><arg type="s" direction="in"/></method>
</interface></node>"""


class Desktop:
    """Answers on a thread of its own, from the making to `close`."""

    def __init__(self, address):
        self.messages = []
        self.shown = []
        self._context = GLib.MainContext()
        self._loop = GLib.MainLoop(self._context)
        self._ready = threading.Event()
        self._thread = threading.Thread(target=self._run, args=(address,))
        self._thread.start()
        self._ready.wait()

    def close(self):
        self._loop.quit()
        self._thread.join()

    def _run(self, address):
        self._context.push_thread_default()
        connection = Gio.DBusConnection.new_for_address_sync(
            address, Gio.DBusConnectionFlags.AUTHENTICATION_CLIENT
            | Gio.DBusConnectionFlags.MESSAGE_BUS_CONNECTION, None, None)
        for interface in Gio.DBusNodeInfo.new_for_xml(INTERFACES).interfaces:
            connection.register_object("/" + interface.name.replace(".", "/"), interface,
                                       self._called, None, None)
        for name in (NOTIFICATIONS, FILE_VIEWER):
            connection.call_sync("org.freedesktop.DBus", "/org/freedesktop/DBus",
                                 "org.freedesktop.DBus", "RequestName",
                                 GLib.Variant("(su)", (name, 0)), None, 0, -1, None)
        self._ready.set()
        self._loop.run()
        connection.close_sync(None)
        self._context.pop_thread_default()

    def _called(self, _connection, _sender, _path, _interface, method, arguments, invocation):
        words = arguments.unpack()
        if method == "Notify":
            self.messages.append(words[4])
            invocation.return_value(GLib.Variant("(u)", (1,)))
        else:
            self.shown.extend(words[0])
            invocation.return_value(None)
