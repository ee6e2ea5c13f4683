"""Opening a folder or a file in an editor, with editors that record how they are started."""

import os
import shutil
from pathlib import Path

from session import ACCESS_PANEL, HostTest, main, wait_until

EDITORS = {
    "VSCode": "code.desktop",
    "IDEA": "jetbrains-idea.desktop",
    "SublimeText": "sublime_text.desktop",
    "Emacs": "emacs.desktop",
}
NAMES = {
    "VSCode": "Visual Studio Code",
    "IDEA": "IntelliJ IDEA",
    "SublimeText": "Sublime Text",
    "Emacs": "Emacs",
}
# Notes the parent, the standard input, and the arguments, each ended by a NUL byte.
RECORDER = """#!/bin/sh
notes=$1; shift
{ printf '%s\\0' "$PPID" "$(readlink /proc/$$/fd/0)" "$@"
} > "$notes.part"
mv "$notes.part" "$notes.$$"
"""


class OpenIn(HostTest):
    def setUp(self):
        super().setUp()
        self.applications = self.session.data / "applications"
        self.applications.mkdir()
        self.notes = self.session.folder / "notes"
        self.notes.mkdir()
        self.recorder = self.session.folder / "recorder"
        self.recorder.write_text(RECORDER)
        self.recorder.chmod(0o755)

    def install(self, desktop_id, lines="", codes="%F"):
        (self.applications / desktop_id).write_text(
            "[Desktop Entry]\nType=Application\nName=Some Editor\n"
            f"Exec={self.recorder} {self.notes}/{desktop_id} {codes}\n{lines}")

    def start_host(self, granted=True):
        self.host = self.session.start_waiting_host()
        if granted:
            self.session.grant(self.session.files)

    def take_notes(self):
        """The editors that were started since, each with its arguments, in byte order."""
        taken = []
        for path in self.notes.iterdir():
            if path.suffix == ".part":
                continue
            words = path.read_bytes().split(b"\0")[:-1]
            path.unlink()
            taken.append((path.stem, words))
        return sorted(taken)

    def wait_for_start(self, desktop_id):
        """Waits for one editor to be started, and no other; returns its arguments."""
        taken = wait_until(self.take_notes, f"{desktop_id} to start")
        self.assertEqual([name for name, _ in taken], [desktop_id])
        parent, standard_input, *arguments = taken[0][1]
        self.assertNotEqual(int(parent), self.host.pid)
        self.assertEqual(standard_input, b"/dev/null")
        return arguments

    def open_folder(self, editor, folder):
        self.session.send("openIn" + editor, Path=str(folder))

    def open_file(self, editor, file, folder=None):
        self.session.send("openFileIn" + editor, File=str(file),
                          Path=str(folder or Path(file).parent))

    def lines_since(self, count):
        return [line.removeprefix("tavrin: ") for line in self.session.log_lines()[count:]]


class Editors(OpenIn):
    def test_all_eight_actions_start_their_editor(self):
        for desktop_id in EDITORS.values():
            self.install(desktop_id)
        self.start_host()
        folder = self.make_folder("a project")
        file = self.make_file("a project/main file.txt")
        for editor, desktop_id in EDITORS.items():
            with self.subTest(editor):
                self.open_folder(editor, folder)
                self.assertEqual(self.wait_for_start(desktop_id), [os.fsencode(folder)])
                before = len(self.session.log_lines())
                self.open_file(editor, file)
                self.assertEqual(self.wait_for_start(desktop_id), [os.fsencode(file)])
                self.assertEqual(self.lines_since(before), [f"{file},{NAMES[editor]}"])
        self.assertEqual(self.session.windows(ACCESS_PANEL), [])
        self.assert_no_zombies()

    def assert_no_zombies(self):
        """An editor may still be about to end; one that nobody waits for stays for ever."""
        children = Path(f"/proc/{self.host.pid}/task/{self.host.pid}/children")
        wait_until(lambda: not children.read_text().split(), "the editors to end")

    def test_the_insiders_edition_is_taken_where_the_other_is_missing(self):
        self.install("code-insiders.desktop")
        self.start_host()
        folder = self.make_folder("project")
        self.open_folder("VSCode", folder)
        self.assertEqual(self.wait_for_start("code-insiders.desktop"), [os.fsencode(folder)])
        before = len(self.session.log_lines())
        file = self.make_file("project/a.txt")
        self.open_file("VSCode", file)
        self.wait_for_start("code-insiders.desktop")
        self.assertEqual(self.lines_since(before), [f"{file},Visual Studio Code - Insiders"])

    def test_the_edition_is_chosen_afresh(self):
        self.install("code-insiders.desktop")
        self.start_host()
        folder = self.make_folder("project")
        self.open_folder("VSCode", folder)
        self.wait_for_start("code-insiders.desktop")
        self.install("com.visualstudio.code.desktop")
        started = []

        def opens_in_the_stable_one():
            self.open_folder("VSCode", folder)
            started.extend(wait_until(self.take_notes, "an editor to start"))
            return started[-1][0] == "com.visualstudio.code.desktop"

        # The system tells of a new application by the way.
        wait_until(opens_in_the_stable_one, "the new edition to be found")

    def test_names_of_any_bytes(self):
        self.install("emacs.desktop", codes="%f")
        self.install("sublime_text.desktop", codes="%U", lines="X-GIO-NoFuse=true\n")
        self.start_host()
        folder = self.make_folder("-odd\n\"'$%f 100%")
        for editor in ("Emacs", "SublimeText"):
            self.open_folder(editor, folder)
        taken = []
        wait_until(lambda: taken.extend(self.take_notes()) or len(taken) == 2, "both editors")
        arguments = {name: words[2:] for name, words in taken}
        self.assertEqual(arguments["emacs.desktop"], [os.fsencode(folder)])
        base = os.fsencode(self.session.files)
        self.assertEqual(arguments["sublime_text.desktop"],
                         [b"file://" + base + b"/-odd%0A%22'$%25f%20100%25"])


class MissingEditor(OpenIn):
    def test_leaves_no_trace_but_the_line_of_the_file(self):
        self.install("sublime_text.desktop", "TryExec=/no/such/program\n")
        self.install("jetbrains-idea.desktop", "Hidden=true\n")
        self.start_host()
        file = self.make_file("a.txt")
        heard = list(self.session.sound_server.played)
        before = len(self.session.log_lines())
        for editor in EDITORS:
            self.open_folder(editor, self.session.files)
            self.open_file(editor, file)
        self.serves_a_request()
        names = ["Visual Studio Code - Insiders", "IntelliJ IDEA", "Sublime Text", "Emacs"]
        self.assertEqual(self.lines_since(before), [f"{file},{name}" for name in names])
        self.assertEqual(self.session.titles(), [])
        self.assertEqual(self.session.sound_server.played[:len(heard)], heard)
        self.assertNotIn("Funk", self.session.sound_server.played[len(heard):])
        self.assertEqual(self.take_notes(), [])
        self.assert_alive(self.host)

    def test_values_that_are_missing_or_too_long(self):
        self.install("emacs.desktop")
        self.start_host()
        before = len(self.session.log_lines())
        self.session.send("openInEmacs")
        self.session.send("openFileInEmacs", Path=str(self.session.files))
        self.open_file("Emacs", self.session.files / "gone")
        self.open_file("Emacs", "/" + "x" * 5000, self.session.files)
        self.serves_a_request()
        lines = self.lines_since(before)
        self.assertEqual(lines[:3], ["openInEmacs: no folder given", "(null),Emacs",
                                     "openFileInEmacs: no file given"])
        self.assertEqual(lines[3], f"{self.session.files}/gone,Emacs")
        self.assertIn("No such file", lines[4])
        self.assertIn("too long", lines[6])
        self.assertEqual(len(lines), 7)
        self.assertEqual(self.take_notes(), [])


class Access(OpenIn):
    def test_the_folder_is_asked_for_and_remembered(self):
        self.install("emacs.desktop")
        self.start_host(granted=False)
        folder = self.make_folder("project")
        file = self.make_file("project/a.txt")
        self.open_file("Emacs", file)
        self.session.wait_for_window(ACCESS_PANEL)
        self.assertIn(f"{file},Emacs", self.lines_since(0))
        self.session.authorize()
        self.assertEqual(self.wait_for_start("emacs.desktop"), [os.fsencode(file)])
        self.assertEqual(set(self.session.grants()), {str(folder)})
        self.open_folder("Emacs", folder)
        self.assertEqual(self.wait_for_start("emacs.desktop"), [os.fsencode(folder)])

    def test_refused_it_opens_nothing(self):
        self.install("emacs.desktop")
        self.start_host(granted=False)
        file = self.make_file("project/a.txt")
        self.open_file("Emacs", file)
        self.session.cancel()
        self.open_folder("Emacs", file.parent)
        self.session.cancel()
        self.session.grant(self.session.files)
        self.assertEqual(self.take_notes(), [])
        self.assertIn(f"{file},Emacs", self.lines_since(0))
        shutil.rmtree(file.parent)
        self.assert_alive(self.host)


main()
