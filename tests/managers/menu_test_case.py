"""What the tests of the menus share: a desktop with a few files, settings, and a file manager."""

import os
import plistlib
import shutil
import subprocess
import sys
from pathlib import Path

sys.path.insert(0, str(Path(__file__).resolve().parents[1] / "host"))

import accessible
import session
from desktop import Desktop
from manager import titles
from managers import MANAGERS
from session import BUILD_DIR, HostTest

# The submenu of the commands.
COMMANDS = "Tavrin"
# An item of the submenus of folders, which tells them from others of their titles.
CHOOSE = "Choose Folder…"

# In seconds: at once for a user, with much to spare for a machine that is busy.
PROMPT = 5.0


class MenuTest(HostTest):
    """A session with settings in both stores, and a file manager that a test starts."""

    file_metadata = True
    manager_class = None

    def setUp(self):
        super().setUp()
        if self.manager_class is None:
            self.skipTest("name a file manager")
        self._add_accessibility()
        self.desktop = Desktop(self.session.environment["DBUS_SESSION_BUS_ADDRESS"])
        self.addCleanup(self.desktop.close)
        self.manager = self.manager_class(self.session, self.bus)
        self._make_files()
        self.configure()

    def id(self):
        """Says where the test ran, for the picture of a failure."""
        return super().id().replace("__main__", getattr(self.manager_class, "name", ""))

    def tearDown(self):
        super().tearDown()
        self.assertFalse(self.manager.has_ended(), "the file manager has ended")

    def _show_failure(self):
        super()._show_failure()
        result = self._outcome.result
        if any(self in (test, getattr(test, "test_case", None))
               for test, _ in result.failures + result.errors):
            if self.manager.program is not None:
                print("--- log of the file manager", self.session.log_of(self.manager.log_name),
                      sep="\n", file=sys.stderr)

    def _add_accessibility(self):
        shutil.copy("/usr/share/dbus-1/services/org.a11y.Bus.service", self.session.services)
        bus = "org.freedesktop.DBus"
        self.session.call_bus("/org/freedesktop/DBus", bus + ".ReloadConfig", destination=bus)
        # A file system that gvfs mounts would outlive the session.
        self.session.call_bus("/org/freedesktop/DBus", bus + ".UpdateActivationEnvironment",
                              "{'GVFS_DISABLE_FUSE': '1'}", destination=bus)
        self.bus = accessible.open_accessibility_bus(
            self.session.environment["DBUS_SESSION_BUS_ADDRESS"])
        self.addCleanup(self.bus.close_sync, None)

    def _make_files(self):
        self.here = self.make_folder("here")
        self.there = self.make_folder("there")
        self.archive = self.make_folder("archive")
        self.project = self.make_folder("here/project")
        for name in ("alpha.txt", "beta.txt", "notes.txt"):
            self.make_file(f"here/{name}", name)
        self.picture = self.here / "picture.png"
        subprocess.run(["convert", "-size", "16x16", "xc:teal", self.picture], check=True)

    def default_settings(self):
        path = BUILD_DIR / "share" / "tavrin" / "DefaultPreferences.plist"
        return plistlib.loads(path.read_bytes())

    def settings(self):
        """The settings that the menu is made from, with lists short enough to be seen whole."""
        defaults = self.default_settings()
        folders = [{"displayName": "Archive", "realPath": str(self.archive), "enable": 1}]
        switches = {key: value for key, value in defaults.items() if isinstance(value, bool)}
        return switches | {
            "arrOfCreateNewFile": [row for row in defaults["arrOfCreateNewFile"]
                                   if row["extension"] in ("txt", "md", "html") and row["enable"]],
            "arrOfCopyFilesTo": folders,
            "arrOfCommonPath": folders,
            "arrOfOthers": [row | {"enable": 1} for row in defaults["arrOfOthers"]
                            if row["Action"] not in ("Open in Terminal", "Open in iTerm2")],
        }

    def configure(self):
        for domain in ("standard", "group"):
            self.session.import_domain(domain, self.settings())

    def start_host(self):
        """Has the bus start the host, and gives it access to the whole disk."""
        self.session.grant("/")
        self.session.wait_for_settings()

    def start_manager(self, folder=None, **options):
        self.manager.start(folder or self.here, **options)

    # The menu

    def choose(self, names, *path):
        """Opens the menu of files, or of the folder in view, and clicks on one of its items. A
        manager that makes an open menu anew may lose a click; a person tries again.
        """
        try:
            self.manager.open_menu(*names)
            self.manager.choose(*path)
        except AssertionError:
            self.manager.close_menu()
            self.manager.open_menu(*names)
            self.manager.choose(*path)

    def own_titles(self, entries):
        """The titles of the items of Tavrin, without their submenus'."""
        shown = titles(entries)
        own = [title for title in shown if title in (
            "Plain Text", "Markdown", "New File", "Set Icon", "Common Folders", COMMANDS)]
        for entry in entries:
            if entry.title in ("Copy to Folder", "Move to Folder"):
                if CHOOSE in titles(self.manager.submenu(entry)):
                    own.append(entry.title)
        return sorted(own)

    def assert_no_menu(self, *names):
        """No item of Tavrin is in the menu of the named files, or of the folder in view."""
        self.assertEqual(self.own_titles(self.manager.open_menu(*names)), [])
        self.manager.close_menu()

    def commands(self, *names):
        """The titles of the commands for files, or for the folder in view."""
        entries = self.manager.open_menu(*names)
        found = titles(self.manager.submenu(self.manager.entry(COMMANDS, entries)))
        self.manager.close_menu()
        return found


def main():
    """Runs the tests of the calling file in the file manager that the first argument names."""
    if len(sys.argv) < 2 or sys.argv[1] not in MANAGERS:
        sys.exit(f"usage: {os.path.basename(sys.argv[0])} {'|'.join(MANAGERS)} [TEST...]")
    MenuTest.manager_class = MANAGERS[sys.argv.pop(1)]
    session.main()
