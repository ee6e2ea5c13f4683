"""Plays a file manager on the session bus: owns the name that is its argument, in which PID stands for
its process number, and says on its standard output what is asked of it.

With --writes it holds a file open for writing until SIGUSR1, with --computes it uses the processor
until then. With --windows it has so many windows, as
Dolphin has them on the bus, and ends with the last. SIGTERM ends it."""

import argparse
import os
import signal
import time

import dbus
import dbus.service
from dbus.mainloop.glib import DBusGMainLoop
from gi.repository import GLib


class Folder(dbus.service.Object):
    """An object that only holds others."""


class Window(dbus.service.Object):
    windows = []

    @dbus.service.method("org.qtproject.Qt.QWidget", out_signature="b")
    def close(self):
        self.windows.remove(self)
        print("close", self._object_path, flush=True)
        if not self.windows:
            os._exit(0)
        return True


class MainApplication(dbus.service.Object):
    @dbus.service.method("org.qtproject.Qt.QCoreApplication")
    def quit(self):
        print("quit", flush=True)
        os._exit(0)


def compute(work):
    end = time.monotonic() + 0.05
    while time.monotonic() < end:
        pass
    return bool(work)


def main():
    parser = argparse.ArgumentParser()
    parser.add_argument("name")
    parser.add_argument("--writes")
    parser.add_argument("--computes", action="store_true")
    parser.add_argument("--windows", type=int, default=0)
    options = parser.parse_args()
    DBusGMainLoop(set_as_default=True)
    bus = dbus.SessionBus()
    loop = GLib.MainLoop()
    work = []
    if options.writes:
        work.append(open(options.writes, "w"))
    if options.computes:
        # Asks for nothing of the loop, and leaves it the time between two beats.
        GLib.timeout_add(10, lambda: compute(work), priority=GLib.PRIORITY_LOW)
        work.append(None)
    GLib.unix_signal_add(GLib.PRIORITY_DEFAULT, signal.SIGUSR1, work.clear)
    objects = [MainApplication(bus, "/MainApplication")]
    if options.windows:
        objects.append(Folder(bus, "/dolphin"))
    for number in range(1, options.windows + 1):
        Window.windows.append(Window(bus, f"/dolphin/Dolphin_{number}"))
    name = dbus.service.BusName(options.name.replace("PID", str(os.getpid())), bus, do_not_queue=True)
    print("ready", flush=True)
    loop.run()
    del name, objects


main()
