"""What the items of the menu do to the user's files, by the host that the bus starts."""

import re

from menu_test_case import COMMANDS, MenuTest, main
from session import ACCESS_PANEL, APPLICATION_ID, file_url, wait_until

ALERT = "^Tavrin$"
# Notes the arguments, each ended by a NUL byte.
RECORDER = """#!/bin/sh
notes=$1; shift
printf '%s\\0' "$@" > "$notes.part"
mv "$notes.part" "$notes"
"""


class Actions(MenuTest):
    def test_new_files_come_from_templates(self):
        self.start_manager()
        self.assertIsNone(self.session.owner_of(APPLICATION_ID))
        self.choose((), "Plain Text")
        self.session.authorize()
        plain = self.here / "untitled.txt"
        wait_until(plain.exists, "the new file")
        wait_until(lambda: self.desktop.shown == [file_url(plain)], "the file to be revealed")
        self.manager.wait_for_item(plain.name)
        self.choose((), "New File", "Web Page")
        page = self.here / "untitled.html"
        wait_until(page.exists, "the second new file")
        self.assertIn("<html", page.read_text())
        self.assertEqual(self.session.windows(ACCESS_PANEL), [])

    def test_several_files_are_copied_and_moved_to_a_listed_folder(self):
        self.start_host()
        self.start_manager()
        self.choose(("alpha.txt", "notes.txt", "project"), "Copy to Folder", "Archive")
        names = ["alpha.txt", "notes.txt", "project"]
        wait_until(lambda: self.names_in(self.archive) == names, "the copies")
        self.assertEqual((self.archive / "notes.txt").read_text(), "notes.txt")
        self.assertTrue((self.here / "alpha.txt").exists())
        self.manager.open_menu("beta.txt")
        self.manager.choose_by_keys("Move to Folder", "Archive")
        wait_until(lambda: "beta.txt" in self.names_in(self.archive), "the move")
        wait_until(lambda: not (self.here / "beta.txt").exists(), "the file to leave")
        self.manager.wait_for_no_item("beta.txt")

    def test_what_is_cut_in_one_folder_is_pasted_in_another(self):
        self.start_host()
        self.start_manager()
        self.assertNotIn("Paste", self.commands())
        self.choose(("alpha.txt", "beta.txt"), COMMANDS, "Cut")
        cut = "|".join(file_url(self.here / name) for name in ("alpha.txt", "beta.txt"))
        wait_until(lambda: self.session.export_domain("group").get("filesUrlOfCutting") == cut,
                   "the cut to be stored")
        self.make_file("there/already here.txt")
        self.manager.go_to(self.there, "already here.txt")
        self.choose((), COMMANDS, "Paste")
        wait_until(lambda: self.names_in(self.there) == ["alpha.txt", "already here.txt",
                                                         "beta.txt"], "the paste")
        self.assertEqual(self.names_in(self.here), ["notes.txt", "picture.png", "project"])

    def test_files_are_hidden_and_shown(self):
        self.start_host()
        self.start_manager()
        self.manager.open_menu("alpha.txt", "notes.txt")
        self.manager.choose_by_keys(COMMANDS, "Hide Selected Files")
        hidden = self.here / ".hidden"
        wait_until(hidden.exists, "the list of hidden files")
        self.assertEqual(sorted(hidden.read_text().split()), ["alpha.txt", "notes.txt"])
        self.choose((), COMMANDS, "Unhide All Files in Folder")
        wait_until(lambda: not hidden.exists(), "the list to go")

    def test_files_are_deleted_once_the_user_agrees(self):
        self.start_host()
        self.start_manager()
        self.choose(("alpha.txt", "project"), COMMANDS, "Delete Directly…")
        self.session.cancel(ALERT)
        self.choose(("alpha.txt", "project"), COMMANDS, "Delete Directly…")
        self.session.wait_for_window(ALERT)
        self.assertTrue((self.here / "alpha.txt").exists() and self.project.exists())
        self.session.authorize(ALERT)
        wait_until(lambda: self.names_in(self.here) == ["beta.txt", "notes.txt", "picture.png"],
                   "the files to go")

    def test_a_folder_gets_an_icon_and_loses_it(self):
        self.start_host()
        self.start_manager()
        self.choose(("project",), "Set Icon", "Red Folder")
        directory_file = self.project / ".directory"
        wait_until(directory_file.exists, "the icon")
        image = re.search("Icon=(.*)", directory_file.read_text()).group(1)
        self.assertIn(file_url(image), self.custom_icon(self.project))
        self.choose(("project",), "Set Icon", "Remove Icon")
        wait_until(lambda: not directory_file.exists(), "the icon to go")
        self.assertEqual(self.custom_icon(self.project), "")

    def custom_icon(self, item):
        told = self.session.run("gio", "info", "-a", "metadata::custom-icon", str(item))
        return "".join(re.findall("metadata::custom-icon: (.*)", told))

    def test_an_editor_opens_files_and_the_folder_in_view(self):
        notes = self.install_editor("code.desktop")
        self.start_host()
        self.start_manager()
        self.choose(("notes.txt",), COMMANDS, "Open in VSCode")
        wait_until(notes.exists, "the editor")
        self.assertEqual(notes.read_text(), f"{self.here}/notes.txt\0")
        notes.unlink()
        self.choose((), COMMANDS, "Open in VSCode")
        wait_until(notes.exists, "the editor with the folder")
        self.assertEqual(notes.read_text(), f"{self.here}\0")

    def install_editor(self, desktop_id):
        """Installs a program that notes its arguments; returns the file of its notes."""
        recorder = self.session.folder / "recorder"
        recorder.write_text(RECORDER)
        recorder.chmod(0o755)
        notes = self.session.folder / "notes"
        applications = self.session.data / "applications"
        applications.mkdir()
        (applications / desktop_id).write_text(
            "[Desktop Entry]\nType=Application\nName=Some Editor\nNoDisplay=true\n"
            f"Exec={recorder} {notes} %F\n")
        return notes

    def test_paths_are_copied_as_text(self):
        self.make_file("here/a b_c&d.txt")
        self.start_manager()
        self.choose(("a b_c&d.txt", "beta.txt"), COMMANDS, "Copy Path")
        self.assert_clipboard(f"{self.here}/a b_c&d.txt\n{self.here}/beta.txt")
        self.manager.open_menu()
        self.manager.choose_by_keys(COMMANDS, "Copy Path")
        self.assert_clipboard(str(self.here))
        self.assertIsNone(self.session.owner_of(APPLICATION_ID))

    def assert_clipboard(self, text):
        wait_until(lambda: self.session.run("xclip", "-out", "-selection", "clipboard") == text,
                   f"{text} on the clipboard")


main()
