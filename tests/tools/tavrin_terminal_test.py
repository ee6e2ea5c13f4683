"""Runs the real tavrin-terminal, which is the argument, with terminals that record how they are
started."""

import os
import subprocess
import sys
import tempfile
import time
import unittest
from pathlib import Path

PROGRAM = Path(sys.argv.pop()).resolve()
PATIENCE = 20

TAB, WINDOW = b"com.apple.terminal.tab", b"com.apple.terminal.window"
ODD_NAMES = [b"a b", b"--tab", b"-e\nsh", b"%f %s $HOME '\"\\", b"\xff\xfe", b"x" * 255]
TOKENS = ["XDG_ACTIVATION_TOKEN", "DESKTOP_STARTUP_ID", "DBUS_STARTER_ADDRESS"]

RECORDER = f"""#!/bin/sh
{{ printf '%s\\0' "$PWD" {' '.join(f'"${name}"' for name in TOKENS)} "$@"; }} > "$NOTES.part"
/bin/mv "$NOTES.part" "$NOTES"
"""


class Start:
    def __init__(self, words):
        self.folder = words[0]
        self.tokens = words[1:1 + len(TOKENS)]
        self.arguments = words[1 + len(TOKENS):]


class TavrinTerminal(unittest.TestCase):
    def setUp(self):
        scratch = tempfile.TemporaryDirectory()
        self.addCleanup(scratch.cleanup)
        self.folder = Path(scratch.name)
        self.notes = self.folder / "notes"
        for name in ("bin", "home", "runtime", "place"):
            (self.folder / name).mkdir()
        self.environment = {
            "PATH": str(self.folder / "bin"),
            "HOME": str(self.folder / "home"),
            "XDG_RUNTIME_DIR": str(self.folder / "runtime"),
            "NOTES": str(self.notes),
        }
        self.place = os.fsencode(self.folder / "place")

    def install(self, name):
        program = self.folder / "bin" / name
        program.write_text(RECORDER)
        program.chmod(0o755)

    def run_program(self, *words, **environment):
        return subprocess.run([PROGRAM, *words], env=self.environment | environment,
                              stdin=subprocess.DEVNULL, capture_output=True, timeout=PATIENCE)

    def started(self):
        """How the terminal was started, once it was."""
        deadline = time.monotonic() + PATIENCE
        while not self.notes.exists():
            self.assertLess(time.monotonic(), deadline, "no terminal was started")
            time.sleep(0.01)
        words = self.notes.read_bytes().split(b"\0")[:-1]
        self.notes.unlink()
        return Start(words)

    def open(self, identifier, folder, **environment):
        """How the terminal was started that a run without a word opened."""
        run = self.run_program(identifier, folder, **environment)
        self.assertEqual((run.returncode, run.stdout, run.stderr), (0, b"", b""))
        return self.started()

    def assert_fails(self, identifier, folder, *reasons):
        run = self.run_program(identifier, folder)
        self.assertEqual((run.returncode, run.stdout), (1, b""))
        self.assertEqual(run.stderr.count(b"\n"), 1, run.stderr)
        for reason in reasons:
            self.assertIn(reason, run.stderr)
        self.assertFalse(self.notes.exists())

    def test_opens_a_tab_or_a_window_at_any_folder(self):
        self.install("konsole")
        for name in ODD_NAMES:
            place = os.path.join(self.place, name)
            os.mkdir(place)
            tab, window = self.open(TAB, place), self.open(WINDOW, place)
            self.assertEqual(tab.arguments, [b"--new-tab", b"--workdir", place])
            self.assertEqual(window.arguments, [b"--workdir", place])
            self.assertEqual((tab.folder, window.folder), (place, place))

    def test_hands_the_startup_token_on_and_nothing_of_the_bus(self):
        self.install("xterm")
        tokens = {name: f"token of {name}" for name in TOKENS}
        start = self.open(WINDOW, self.place, **tokens)
        self.assertEqual(start.tokens, [b"token of XDG_ACTIVATION_TOKEN",
                                        b"token of DESKTOP_STARTUP_ID", b""])
        self.assertEqual(self.open(WINDOW, self.place).tokens, [b"", b"", b""])

    def test_says_in_one_line_why_no_terminal_opens(self):
        self.assert_fails(WINDOW, self.place, b"New Terminal at Folder")
        self.install("xterm")
        missing = os.path.join(self.place, b"gone")
        self.assert_fails(WINDOW, missing, b"no folder: " + missing)
        (self.folder / "file").write_bytes(b"")
        self.assert_fails(TAB, os.fsencode(self.folder / "file"), b"no folder")
        self.assert_fails(b"com.apple.terminal", self.place, b"(null)")
        self.assert_fails(b"com.googlecode.iterm2.tab", self.place, b"(null)")

    def test_refuses_other_words(self):
        self.install("xterm")
        for words in ([], [TAB], [TAB, self.place, b"more"], [TAB, b"relative"], [TAB, b""],
                      [b"--unknown"]):
            run = self.run_program(*words)
            self.assertEqual((run.returncode, run.stdout), (2, b""), words)
            self.assertEqual(run.stderr.count(b"\n"), 1, words)
        self.assertFalse(self.notes.exists())
        for option, start in (("--help", b"Opens a folder"), ("--version", b"tavrin-terminal ")):
            run = self.run_program(option)
            self.assertEqual((run.returncode, run.stderr), (0, b""))
            self.assertTrue(run.stdout.startswith(start))

    def test_leaves_nothing_behind(self):
        self.install("xterm")
        self.open(TAB, self.place)
        self.open(TAB, self.place, XDG_RUNTIME_DIR="")
        left = sorted(str(path.relative_to(self.folder)) for path in self.folder.rglob("*"))
        self.assertEqual(left, ["bin", "bin/xterm", "home", "place", "runtime"])

    def test_loads_no_toolkit(self):
        listed = subprocess.run(["ldd", PROGRAM], check=True, capture_output=True, text=True).stdout
        self.assertIn("libglib-2.0", listed)
        for library in ("libQt", "libgtk", "libgdk"):
            self.assertNotIn(library, listed)


if __name__ == "__main__":
    unittest.main()
