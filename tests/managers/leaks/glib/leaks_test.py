"""Opens the menus of a module 20 and 220 times under valgrind, by the program that is the first
argument. The second one is the module, the third one tavrin-defaults; options of valgrind follow.
"""

import os
import plistlib
import re
import subprocess
import sys
import tempfile
import unittest

FEW, MANY = 20, 220

# Of blocks, in 200 openings: what GLib's own tables may grow by.
SLACK = 40

ROWS = 10


def settings():
    """Lists of which some rows are in submenus and some are not."""
    def rows(**fields):
        return [{"enable": 1, "displayName": f"Row {row}"} |
                {key: value.format(row) for key, value in fields.items()} for row in range(ROWS)]
    switches = ("CopyFilesTo", "MoveFilesTo", "CommonPath", "IconOfCreateNewFile",
                "IconOfSendFilesTo", "IconOfCommonPath", "IconOfOthers")
    return {f"enable{switch}": True for switch in switches} | {
        "arrOfCreateNewFile": [row | {"enableMainMenu": index % 2}
                               for index, row in enumerate(rows(extension="txt"))],
        "arrOfCopyFilesTo": rows(realPath="/usr/share/{}"),
        "arrOfCommonPath": rows(realPath="/usr/share/{}"),
        "arrOfOthers": [{"enable": 1, "Action": name, "displayName": name}
                        for name in ("Cut", "Paste", "Copy Path", "Open in Terminal")],
        "filesUrlOfCutting": "file:///usr/lib",
    }


class LeaksTest(unittest.TestCase):
    program = module = defaults = ""
    options = []

    def setUp(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        folders = ("HOME", "XDG_CACHE_HOME", "XDG_CONFIG_HOME", "XDG_DATA_HOME", "XDG_RUNTIME_DIR")
        self.environment = dict.fromkeys(folders, folder.name) | {
            "PATH": os.environ["PATH"], "LC_ALL": "C.UTF-8",
            "DBUS_SESSION_BUS_ADDRESS": "disabled:",
            "GSETTINGS_BACKEND": "memory", "GIO_USE_VFS": "local",
            # So that valgrind sees each of GLib's allocations.
            "G_SLICE": "always-malloc",
            # Criticisms of GLib, such as of a missing argument, end the program.
            "G_DEBUG": "fatal-criticals",
        }
        subprocess.run([self.defaults, "import", "group", "-"], env=self.environment, check=True,
                       input=plistlib.dumps(settings()))

    def blocks_left(self, openings):
        """How many blocks of memory are in use at the end."""
        done = subprocess.run(
            ["valgrind", "--leak-check=full", "--errors-for-leak-kinds=definite",
             "--error-exitcode=99", "--num-callers=24", "--child-silent-after-fork=yes",
             *self.options, self.program, self.module, str(openings)],
            env=self.environment, stderr=subprocess.PIPE, text=True, check=False)
        self.assertEqual(done.returncode, 0, done.stderr)
        return int(re.search(r"in use at exit: [\d,]+ bytes in ([\d,]+) blocks",
                             done.stderr)[1].replace(",", ""))

    def test_a_menu_leaves_nothing_behind(self):
        few = self.blocks_left(FEW)
        many = self.blocks_left(MANY)
        self.assertLess(many - few, SLACK, f"{few} after {FEW} openings, {many} after {MANY}")


if __name__ == "__main__":
    LeaksTest.program, LeaksTest.module, LeaksTest.defaults, *LeaksTest.options = sys.argv[1:]
    unittest.main(argv=sys.argv[:1])
