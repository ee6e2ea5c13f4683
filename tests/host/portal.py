"""A stand-in for the desktop's portal: its choice between light and dark."""

import threading

from gi.repository import Gio, GLib

PATH = "/org/freedesktop/portal/desktop"
SETTINGS = "org.freedesktop.portal.Settings"
APPEARANCE = "org.freedesktop.appearance"
INTERFACE = f"""<node><interface name="{SETTINGS}"><method name="Read">
<arg type="s" direction="in"/><arg type="s" direction="in"/><arg type="v" direction="out"/>
</method></interface></node>"""


class Portal:
    """Answers on a thread of its own, from the making to `close`."""

    def __init__(self, address, is_dark=False):
        self._is_dark = is_dark
        self._context = GLib.MainContext()
        self._loop = GLib.MainLoop(self._context)
        self._ready = threading.Event()
        self._thread = threading.Thread(target=self._run, args=(address,))
        self._thread.start()
        self._ready.wait()

    def close(self):
        self._loop.quit()
        self._thread.join()

    def choose(self, is_dark):
        """Chooses for all programs, and tells them."""
        self._is_dark = is_dark
        told = GLib.Variant("(ssv)", (APPEARANCE, "color-scheme", self._value()))
        self._connection.emit_signal(None, PATH, SETTINGS, "SettingChanged", told)

    def _value(self):
        return GLib.Variant("u", 1 if self._is_dark else 2)

    def _run(self, address):
        self._context.push_thread_default()
        self._connection = Gio.DBusConnection.new_for_address_sync(
            address, Gio.DBusConnectionFlags.AUTHENTICATION_CLIENT
            | Gio.DBusConnectionFlags.MESSAGE_BUS_CONNECTION, None, None)
        interface = Gio.DBusNodeInfo.new_for_xml(INTERFACE).interfaces[0]
        self._connection.register_object(PATH, interface, self._read, None, None)
        self._connection.call_sync(
            "org.freedesktop.DBus", "/org/freedesktop/DBus", "org.freedesktop.DBus", "RequestName",
            GLib.Variant("(su)", ("org.freedesktop.portal.Desktop", 0)), None, 0, -1, None)
        self._ready.set()
        self._loop.run()
        self._connection.close_sync(None)
        self._context.pop_thread_default()

    def _read(self, _connection, _sender, _path, _interface, _method, arguments, invocation):
        if arguments.unpack() == (APPEARANCE, "color-scheme"):
            invocation.return_value(GLib.Variant("(v)", (GLib.Variant("v", self._value()),)))
        else:
            invocation.return_dbus_error("org.freedesktop.portal.Error.NotFound", "no such setting")
