"""A private desktop for the running host: its own folders, X server, window manager and buses.

Everything that a session starts is ended by it, and its folder is removed, whatever a test does.
"""

import contextlib
import os
import plistlib
import re
import shutil
import signal
import subprocess
import sys
import tempfile
import time
import unittest
from pathlib import Path
from urllib.parse import quote_from_bytes

from processes import end_process, end_program, end_with_parent
from sound_server import SoundServer

SOURCE_DIR = Path(__file__).resolve().parents[2]
BUILD_DIR = Path(os.environ.get("TAVRIN_BUILD_DIR", SOURCE_DIR / "build" / "release"))
APPLICATION_ID = "app.tavrin.Tavrin"
APPLICATION_PATH = "/app/tavrin/Tavrin"
GROUP = "TAVRIN0001.group.app.tavrin.Tavrin"
ACCESS_PANEL = "^Allow Access$"
OPEN_PANEL = "^Choose a Folder$"
PREFERENCES_WINDOW = "^Tavrin"

# What the file managers know the module of the menu by.
MENU_MODULE = "libtavrin-menu"

# A sanitizer makes every program slower.
PATIENCE = 30.0

# Of a program's argument, in characters; the system takes 128 KiB.
LONGEST_WORD = 30_000

BUS_CONFIGURATION = """<!DOCTYPE busconfig PUBLIC
 "-//freedesktop//DTD D-Bus Bus Configuration 1.0//EN"
 "http://www.freedesktop.org/standards/dbus/1.0/busconfig.dtd">
<busconfig>
  <type>session</type>
  <listen>unix:path={socket}</listen>
  <servicedir>{services}</servicedir>
  <policy context="default">
    <allow send_destination="*" eavesdrop="true"/>
    <allow eavesdrop="true"/>
    <allow own="*"/>
  </policy>
</busconfig>
"""


def wait_until(condition, what, seconds=PATIENCE):
    """Waits for `condition()` to become true and returns its value."""
    end = time.monotonic() + seconds
    while True:
        value = condition()
        if value:
            return value
        if time.monotonic() > end:
            raise AssertionError(f"waited {seconds:.0f} s in vain for {what}")
        time.sleep(0.02)


def file_url(path):
    """The file URL of a path, which may hold any bytes."""
    return "file://" + quote_from_bytes(os.fsencode(path))


def selection(*paths):
    return "|".join(file_url(path) for path in paths)


class Session:
    """Use as a context manager. With file metadata, GIO keeps them as on a whole desktop. Unless
    the host is to prompt for its extension, its user has seen that prompt. There is a file manager
    that has the menu: a stand-in for Dolphin and for its module.
    """

    def __init__(self, file_metadata=False, prompts_for_extension=False, screen="1280x900"):
        self._file_metadata = file_metadata
        self._screen = screen
        self._prompts_for_extension = prompts_for_extension
        self._cleanup = contextlib.ExitStack()
        self.hosts = []

    def __enter__(self):
        with contextlib.ExitStack() as started:
            self._cleanup = started
            self._make_folders()
            self._start_desktop()
            self._install_file_manager()
            if not self._prompts_for_extension:
                self.defaults("write", "standard", "ShownEnableExtensionAlert", "-bool", "true")
            self._cleanup = started.pop_all()
        return self

    def __exit__(self, *_):
        self._cleanup.close()

    # The desktop

    def _make_folders(self):
        self.folder = Path(tempfile.mkdtemp(prefix="tavrin-test-"))
        self._cleanup.callback(self._remove_folder)
        self._cleanup.callback(self._end_leftovers)
        self.files = self.folder / "files"
        self.config = self.folder / "config"
        self.data = self.folder / "data"
        self.runtime = self.folder / "runtime"
        self.services = self.folder / "services"
        for name in ("home", "files", "config", "data", "cache", "state", "runtime", "services",
                     "requests", "tmp"):
            (self.folder / name).mkdir(mode=0o700)
        self._request_count = 0
        self._heard = []
        self._log_path = self.folder / "host.log"
        self._log = self._cleanup.enter_context(open(self._log_path, "ab"))

    def _end_leftovers(self):
        """Ends what others started here, such as a host that the bus started."""
        wait_until(lambda: not any([end_process(process) for process in self._processes()]),
                   "every process of the session to end")

    def _processes(self):
        mark = b"XDG_RUNTIME_DIR=" + os.fsencode(self.runtime) + b"\0"
        for process in filter(str.isdigit, os.listdir("/proc")):
            with contextlib.suppress(OSError):
                if mark in Path("/proc", process, "environ").read_bytes():
                    yield int(process)

    def _remove_folder(self):
        shutil.rmtree(self.folder, ignore_errors=True)
        if self.folder.exists():
            subprocess.run(["chmod", "-R", "u+rwX", self.folder], check=False)
            shutil.rmtree(self.folder)

    def _start_desktop(self):
        kept = {name: value for name, value in os.environ.items()
                if name.endswith("SAN_OPTIONS") or name in ("PATH", "TAVRIN_BUILD_DIR")}
        self.environment = kept | {
            "HOME": str(self.folder / "home"),
            "LANG": "C.UTF-8",
            "TMPDIR": str(self.folder / "tmp"),
            "XDG_CONFIG_HOME": str(self.config),
            "XDG_DATA_HOME": str(self.data),
            "XDG_CACHE_HOME": str(self.folder / "cache"),
            "XDG_STATE_HOME": str(self.folder / "state"),
            "XDG_DATA_DIRS": f"{BUILD_DIR}/share:/usr/share",
            "XDG_RUNTIME_DIR": str(self.runtime),
            "XDG_SESSION_TYPE": "x11",
            "DBUS_SESSION_BUS_ADDRESS": f"unix:path={self.runtime}/bus",
            "DBUS_SYSTEM_BUS_ADDRESS": f"unix:path={self.runtime}/system-bus",
            "GIO_USE_VFS": "local",
            "GSETTINGS_BACKEND": "memory",
            "NO_AT_BRIDGE": "1",
            "PULSE_SERVER": f"unix:{self.runtime}/pulse",
            "QT_QPA_PLATFORM": "xcb",
        }
        if self._file_metadata:
            del self.environment["GIO_USE_VFS"]
            for name in ("Daemon", "Metadata"):
                shutil.copy(f"/usr/share/dbus-1/services/org.gtk.vfs.{name}.service",
                            self.services)
        self._start_display()
        self._bus = self._start_bus("bus", self.services)
        self._install_service_files()
        self.sound_server = SoundServer(self.runtime / "pulse",
                                        (SOURCE_DIR / "resources" / "sounds").glob("*.aiff"))
        self._cleanup.callback(self.sound_server.close)

    def _start_display(self):
        read_end, write_end = os.pipe()
        self.start_program(["Xvfb", "-displayfd", str(write_end), "-screen", "0", f"{self._screen}x24",
                            "-nolisten", "tcp", "-noreset"],
                           pass_fds=[write_end], log_name="xvfb.log")
        os.close(write_end)
        with open(read_end, "rb") as pipe:
            number = pipe.readline().strip().decode()
        if not number:
            raise RuntimeError("no virtual display: " + self.log_of("xvfb.log"))
        self.environment["DISPLAY"] = ":" + number
        self.start_program(["openbox", "--sm-disable"], log_name="openbox.log")
        wait_until(lambda: "_NET_SUPPORTING_WM_CHECK(WINDOW)" in self.run(
            "xprop", "-root", "_NET_SUPPORTING_WM_CHECK"), "the window manager")

    def _start_bus(self, name, services):
        socket = self.runtime / name
        configuration = self.folder / f"{name}.conf"
        configuration.write_text(BUS_CONFIGURATION.format(socket=socket, services=services))
        read_end, write_end = os.pipe()
        program = self.start_program(["dbus-daemon", f"--config-file={configuration}", "--nofork",
                                      f"--print-address={write_end}"],
                                     log=self._log, pass_fds=[write_end])
        os.close(write_end)
        with open(read_end, "rb") as pipe:
            if not pipe.readline():
                raise RuntimeError("no bus: " + self.whole_log())
        return program

    def _install_service_files(self):
        for file in (BUILD_DIR / "share" / "dbus-1" / "services").glob("*.service"):
            shutil.copy(file, self.services)
        self.call_bus("/org/freedesktop/DBus", "org.freedesktop.DBus.ReloadConfig",
                      destination="org.freedesktop.DBus")

    def _install_file_manager(self):
        """Makes the extension enabled, on whichever system the tests run."""
        programs = self.folder / "bin"
        modules = self.folder / "plugins" / "kf5" / "kfileitemaction"
        for folder in (programs, modules):
            folder.mkdir(parents=True)
        (programs / "dolphin").write_text("#!/bin/sh\n")
        (programs / "dolphin").chmod(0o700)
        (modules / f"{MENU_MODULE}.so").touch()
        self.environment["PATH"] += f":{programs}"
        self.environment["QT_PLUGIN_PATH"] = str(self.folder / "plugins")

    def end_bus(self):
        """Takes the session bus away from the programs that run."""
        end_program(self._bus)

    def start_system_bus(self):
        """Gives the session a system bus of its own."""
        return self._start_bus("system-bus", self.services)

    # Programs

    def start_program(self, command, log=None, log_name=None, environment=None, **options):
        """Starts a program that ends with the session at the latest."""
        if log is None:
            log = open(self.folder / (log_name or "programs.log"), "ab")
            self._cleanup.callback(log.close)
        program = subprocess.Popen(command, env=environment or self.environment,
                                   stdin=subprocess.DEVNULL, stdout=log, stderr=log,
                                   start_new_session=True, preexec_fn=end_with_parent, **options)
        self._cleanup.callback(end_program, program)
        return program

    def run(self, *command, **options):
        """Runs a program to its end and returns its standard output as text."""
        return subprocess.run(command, env=self.environment, stdin=subprocess.DEVNULL,
                              stdout=subprocess.PIPE, stderr=subprocess.PIPE, timeout=PATIENCE,
                              check=False, **options).stdout.decode(errors="replace")

    def log_of(self, name):
        return (self.folder / name).read_text(errors="replace")

    def start_host(self, *arguments, working_folder="/", environment=None):
        """Starts the host; returns at once."""
        host = self.start_program([BUILD_DIR / "bin" / "tavrin", *map(str, arguments)],
                                  log=self._log, cwd=working_folder, environment=environment)
        self.hosts.append(host)
        return host

    def start_waiting_host(self):
        """Starts the host for a request that it ignores, and waits until it has done so."""
        self._request_count += 1
        missing = self.folder / "requests" / f"missing {self._request_count}"
        host = self.start_host(missing)
        wait_until(lambda: str(missing) in self.whole_log(), "the host to serve requests")
        return host

    def wait_for_settings(self):
        """Waits until the host watches its settings: its first publishing comes after that."""
        wait_until(lambda: "enableAllOfOthers" in self.export_domain("standard"), "publishing")

    def defaults(self, *arguments, data=None):
        """Runs tavrin-defaults; returns what it printed."""
        done = subprocess.run([BUILD_DIR / "bin" / "tavrin-defaults", *map(str, arguments)],
                              env=self.environment, input=data, stdout=subprocess.PIPE,
                              stderr=subprocess.PIPE, timeout=PATIENCE, check=False)
        if done.returncode != 0:
            raise AssertionError(f"tavrin-defaults {arguments}: {done.stderr.decode()}")
        return done.stdout

    def export_domain(self, domain):
        return plistlib.loads(self.defaults("export", domain, "-"))

    def import_domain(self, domain, values):
        self.defaults("import", domain, "-", data=plistlib.dumps(values))

    def grants(self):
        """The stored bookmarks by path."""
        return self.export_domain("standard").get("cachedBookmarks", {})

    def log_lines(self):
        """The lines that the host wrote to its log."""
        return [line for line in self._log_path.read_text(errors="replace").splitlines()
                if line.startswith("tavrin: ")]

    def whole_log(self):
        return self._log_path.read_text(errors="replace")

    # The bus

    def call_bus(self, path, method, *arguments, destination=APPLICATION_ID, seconds=PATIENCE):
        """Calls a method on the session bus; returns gdbus's words for the answer."""
        done = subprocess.run(
            ["gdbus", "call", "--session", "--timeout", str(int(seconds)), "--dest", destination,
             "--object-path", path, "--method", method, *arguments],
            env=self.environment, stdin=subprocess.DEVNULL, stdout=subprocess.PIPE,
            stderr=subprocess.PIPE, timeout=seconds + 5, check=False)
        if done.returncode != 0:
            raise AssertionError(f"{method}: {done.stderr.decode()}")
        return done.stdout.decode()

    def owner_of(self, name):
        """The process that owns a name on the bus; nothing when nobody does."""
        with contextlib.suppress(AssertionError):
            answer = self.call_bus("/org/freedesktop/DBus",
                                   "org.freedesktop.DBus.GetConnectionUnixProcessID", name,
                                   destination="org.freedesktop.DBus")
            return int(answer.split()[1].strip(",)"))
        return None

    def open_with_host(self, *paths):
        """Hands request files to the host over the bus, which starts it if needed."""
        uris = ", ".join(f"'{file_url(path)}'" for path in paths)
        self.call_bus(APPLICATION_PATH, "org.freedesktop.Application.Open", f"[{uris}]", "{}")

    # Requests

    def write_request(self, content, plist_format=plistlib.FMT_BINARY):
        """Writes a request file of a dictionary, or of bytes as they are; returns its path."""
        self._request_count += 1
        path = self.folder / "requests" / f"request {self._request_count}.plist"
        path.write_bytes(content if isinstance(content, bytes)
                         else plistlib.dumps(content, fmt=plist_format))
        return path

    def send(self, action, *items, **values):
        """Sends one request with the tool for it: items are what the action works on, values are
        keys of the request. What the tool cannot say goes as a file of its own.
        """
        words = [f"{key}={value}" for key, value in values.items()]
        sayable = (all(type(value) in (str, int) for value in values.values())
                   and all(len(word) < LONGEST_WORD for word in words))
        if sayable and self.request_tool(action, *words, items=items).returncode == 0:
            return
        if items:
            raise AssertionError(f"cannot send {action}")
        self.open_with_host(self.write_request({"Action": action, **values}))

    def request_tool(self, *words, items=(), environment=None):
        """Runs tavrin-request to its end, with items on its standard input."""
        names = b"".join(os.fsencode(item) + b"\0" for item in items)
        return subprocess.run(
            [BUILD_DIR / "bin" / "tavrin-request", *words, *(["-"] if items else [])],
            env=environment or self.environment, input=names, stdout=subprocess.PIPE,
            stderr=subprocess.PIPE, timeout=PATIENCE, check=False)

    def copy_files(self, sources, destination):
        self.send("copyFilesTo", *sources, ToPath=str(destination))

    def move_files(self, sources, destination):
        self.send("moveFilesTo", *sources, ToPath=str(destination))

    def wait_for_sounds(self, *names):
        """Waits for as many sounds, in all, and compares them."""
        wait_until(lambda: len(self.sound_server.played) >= len(names),
                   f"the sounds {names}, there were {self.sound_server.played}")
        if self.sound_server.played != list(names):
            raise AssertionError(f"expected {names}, heard {self.sound_server.played}")

    def wait_for_next_sound(self, name):
        """Waits for one sound more than were waited for here, or came with a grant."""
        self._heard.append(name)
        self.wait_for_sounds(*self._heard)

    def expect_no_other_sound(self):
        """Compares the sounds so far with those that were waited for here, or came with a grant."""
        self.wait_for_sounds(*self._heard)

    # Windows

    def windows(self, title):
        """The visible windows whose title matches a regular expression."""
        return self.run("xdotool", "search", "--onlyvisible", "--name", title).split()

    def wait_for_window(self, title):
        """Waits until a window of that title has the keyboard; returns its number."""
        window = wait_until(lambda: self.windows(title), f"a window {title}")[-1]
        wait_until(lambda: self.run("xdotool", "getactivewindow").strip() == window,
                   f"the keyboard to come to {title}")
        return window

    def wait_for_no_window(self, title):
        wait_until(lambda: not self.windows(title), f"the window {title} to go")

    def titles(self):
        shown = self.run("xdotool", "search", "--onlyvisible", "--name", ".+").split()
        return [self.run("xdotool", "getwindowname", window).strip() for window in shown]

    def key(self, *keys):
        self.run("xdotool", "key", "--delay", "20", *keys)

    def type_text(self, text):
        self.run("xdotool", "type", "--delay", "8", text)

    def type_line(self, text):
        """Types a text and the Return key, which is not what xdotool makes of a newline."""
        self.type_text(text)
        self.key("Return")

    def click(self, window, x, y, count=1):
        """Clicks at a place of a window, given in pixels from its upper left corner."""
        self.run("xdotool", "mousemove", "--window", window, str(x), str(y),
                 "click", "--repeat", str(count), "--delay", "60", "1")

    def geometry(self, window):
        """A window's width and height in pixels."""
        fields = dict(line.split("=", 1) for line in self.run(
            "xdotool", "getwindowgeometry", "--shell", window).splitlines() if "=" in line)
        return int(fields["WIDTH"]), int(fields["HEIGHT"])

    def screenshot(self, name, folder=BUILD_DIR / "tests" / "screenshots"):
        """Keeps a picture of the whole display in the build folder; returns its path."""
        folder.mkdir(parents=True, exist_ok=True)
        self.run("import", "-window", "root", str(folder / f"{name}.png"))
        return folder / f"{name}.png"

    def authorize(self, title=ACCESS_PANEL):
        """Confirms the panel that is up, or comes up, with the Return key."""
        window = self.wait_for_window(title)
        self.key("Return")
        wait_until(lambda: window not in self.windows(title), "the panel to close")

    def cancel(self, title=ACCESS_PANEL):
        window = self.wait_for_window(title)
        self.key("Escape")
        wait_until(lambda: window not in self.windows(title), "the panel to close")

    def grant(self, folder):
        """Lets the host have access to a folder, through its panel; sounds like a failure."""
        heard = len(self.sound_server.played)
        self.copy_files([Path(folder) / "no such item"], folder)
        self.authorize()
        wait_until(lambda: len(self.sound_server.played) > heard, f"the grant of {folder}")
        self._heard = list(self.sound_server.played)


class HostTest(unittest.TestCase):
    """A test case with a session of its own."""

    # Whether GIO keeps metadata of files.
    file_metadata = False
    # Whether the first opening of the window prompts for the extension.
    prompts_for_extension = False

    def setUp(self):
        self.session = Session(self.file_metadata, self.prompts_for_extension)
        self.enterContext(self.session)

    def tearDown(self):
        self._show_failure()
        for host in self.session.hosts:
            end_program(host)
            self.assertNotEqual(host.returncode, -signal.SIGKILL, "the host did not end by itself")
        if re.search("Sanitizer:|runtime error:", self.session.whole_log()):
            self.fail("a sanitizer complained:\n" + self.session.whole_log())

    def _show_failure(self):
        result = self._outcome.result
        if any(self in (test, getattr(test, "test_case", None))
               for test, _ in result.failures + result.errors):
            print("--- windows", self.session.titles(), "log of the host",
                  self.session.whole_log(), "---", sep="\n", file=sys.stderr)
            self.session.screenshot(f"failed-{self.id()}")

    def assert_alive(self, host):
        self.assertIsNone(host.poll(), "the host has ended")

    def wait_for_end(self, host, status):
        wait_until(lambda: host.poll() is not None, "the host to end")
        self.assertEqual(host.returncode, status)

    def switch(self, key, value):
        """Turns a setting of the host on or off."""
        self.session.defaults("write", "standard", key, "-bool", "true" if value else "false")

    def make_file(self, path, content="content"):
        path = self.session.files / path
        path.parent.mkdir(parents=True, exist_ok=True)
        path.write_text(content)
        return path

    def make_folder(self, path):
        path = self.session.files / path
        path.mkdir(parents=True, exist_ok=True)
        return path

    def names_in(self, folder):
        return sorted(os.listdir(folder))

    def serves_a_request(self):
        """Copies a file, to show that the host still does its work; asks for no access."""
        number = getattr(self, "_served", 0) + 1
        self._served = number
        source = self.make_file(f"served/{number}.txt", str(number))
        arrived = self.make_folder("served/there") / source.name
        self.session.copy_files([source], arrived.parent)
        wait_until(arrived.exists, f"request {number} to be served")


def interrupted(*_):
    raise KeyboardInterrupt


def main():
    """Runs the tests of the calling file; a timeout's signal still ends every program."""
    signal.signal(signal.SIGTERM, interrupted)
    unittest.main(verbosity=2)
