"""The menu follows its settings, whatever they are, and fits what is selected and in view."""

import time

from menu_test_case import COMMANDS, PROMPT, MenuTest, main
from session import GROUP, wait_until

MANY = 2000

# Values of types that no setting has.
WRONG = {
    "arrOfCreateNewFile": "text",
    "arrOfCopyFilesTo": {"realPath": "/tmp"},
    "arrOfCommonPath": [1, "two", ["three"], {"realPath": 4, "enable": "1"}],
    "arrOfCustomIcon": [{"displayName": ["red"], "enable": 1, "icon": 5}],
    "arrOfOthers": [{"Action": 1, "displayName": "Cut", "enable": 1}, "Cut", {}],
    "filesUrlOfCutting": [1, 2],
    "positionsOfCustomIcon": "none",
    "disabledFileManagers": {"all": True},
    "enableCopyFilesTo": "YES",
    "enableMoveFilesTo": [],
}

FILE_MENU = ["Copy to Folder", "Move to Folder", COMMANDS]
FOLDER_MENU = ["Common Folders", "Markdown", "New File", "Plain Text", COMMANDS]


class Settings(MenuTest):
    def folder_menu(self):
        """The titles in the menu of a folder in view."""
        if self.manager.knows_background:
            return FOLDER_MENU
        return sorted(FOLDER_MENU + ["Copy to Folder", "Move to Folder"])

    def assert_menu(self, expected, *names):
        self.assertEqual(self.own_titles(self.manager.open_menu(*names)), sorted(expected))
        self.manager.close_menu()

    def wait_for_menu(self, expected, *names):
        """Waits until a right click opens a menu with these items of Tavrin."""
        def is_shown():
            shown = self.own_titles(self.manager.open_menu(*names))
            self.manager.close_menu()
            return shown == sorted(expected)
        wait_until(is_shown, f"the menu {expected}")

    def write_group(self, key, *value):
        self.session.defaults("write", "group", key, *value)

    def test_the_next_right_click_shows_changed_settings(self):
        self.start_manager()
        self.assert_menu(FILE_MENU, "alpha.txt")
        self.write_group("enableCopyFilesTo", "-bool", "false")
        self.assert_menu(["Move to Folder", COMMANDS], "alpha.txt")
        self.write_group("enableCommonPath", "-bool", "false")
        self.assert_menu([title for title in self.folder_menu()
                          if title not in ("Common Folders", "Copy to Folder")])
        # The file stays selected: nobody asks for its items but because the settings tell.
        self.write_group("enableCopyFilesTo", "-bool", "true")
        self.assert_menu(FILE_MENU, "alpha.txt")

    def test_a_change_by_the_user_arrives_through_the_host(self):
        self.start_host()
        self.start_manager()
        self.switch("enableMoveFilesTo", False)
        wait_until(lambda: not self.session.export_domain("group")["enableMoveFilesTo"],
                   "the host to carry the switch over")
        self.assertNotIn("Move to Folder", self.own_titles(self.manager.open_menu("alpha.txt")))
        self.manager.close_menu()

    def test_it_can_be_switched_off_for_one_file_manager(self):
        others = [name for name in ("nautilus", "caja") if name != self.manager.name]
        self.session.import_domain("group", {"disabledFileManagers": others})
        self.start_manager()
        self.assert_menu(FILE_MENU, "alpha.txt")
        self.session.import_domain("group", {"disabledFileManagers": [*others, self.manager.name]})
        self.assert_no_menu("alpha.txt")
        self.assert_no_menu()
        self.session.import_domain("group", {"disabledFileManagers": others})
        self.assert_menu(FILE_MENU, "alpha.txt")

    def test_damaged_settings_end_nothing(self):
        database = self.session.config / GROUP / "defaults.sqlite"
        for file in database.parent.iterdir():
            file.unlink()
        self.start_manager()
        self.assert_no_menu("alpha.txt")
        self.session.import_domain("group", WRONG)
        self.assert_menu(["Copy to Folder"], "alpha.txt")
        database.write_bytes(b"no database " * 1000)
        self.own_titles(self.manager.open_menu("alpha.txt"))
        self.manager.close_menu()
        for file in database.parent.iterdir():
            file.unlink()
        database.mkdir()
        self.own_titles(self.manager.open_menu())
        self.manager.close_menu()
        self.assertFalse(self.manager.has_ended())
        database.rmdir()
        self.configure()
        self.wait_for_menu(FILE_MENU, "alpha.txt")


class Selections(MenuTest):
    def test_commands_fit_what_is_selected(self):
        self.make_file("here/one|two.txt")
        self.start_manager()
        self.assertEqual(self.commands("one|two.txt"),
                         ["Copy Path", "Open in VSCode", "Open in IDEA", "Open in Sublime Text",
                          "Open in Emacs"])
        entries = self.manager.open_menu("one|two.txt", "alpha.txt")
        self.assertEqual(self.own_titles(entries), [COMMANDS])
        self.manager.close_menu()
        self.assertIn("Image to Icon for Mac", self.commands("picture.png"))
        self.assertNotIn("Image to Icon for Mac", self.commands("alpha.txt"))
        self.assertIn("Open in File Manager", self.commands("project"))

    def test_the_trash_has_no_commands_on_files(self):
        trash = self.session.data / "Trash"
        about = "[Trash Info]\nPath=/tmp/gone.txt\nDeletionDate=2026-01-01T00:00:00\n"
        for name, content in (("files/gone.txt", "gone"), ("info/gone.txt.trashinfo", about)):
            (trash / name).parent.mkdir(parents=True, exist_ok=True)
            (trash / name).write_text(content)
        self.start_manager()
        self.manager.go_to(self.manager.trash_location, "gone.txt")
        self.assert_no_menu("gone.txt")
        # Of Dolphin's own two items there, neither can be read.
        if not self.manager.knows_background:
            return
        self.assertLessEqual(set(self.own_titles(self.manager.open_menu())), {"Common Folders"})
        self.manager.close_menu()

    def test_many_files_keep_nobody_waiting(self):
        crowd = self.make_folder("crowd")
        for number in range(MANY):
            (crowd / f"file {number:04}.txt").touch()
        self.start_host()
        self.start_manager(crowd)
        first = self.manager.select_all("file 0000.txt")
        started = time.monotonic()
        entries = self.manager.open_menu_at(first)
        seconds = time.monotonic() - started
        self.assertEqual(self.own_titles(entries), FILE_MENU)
        print(f"{seconds:.1f} s", end=" ")
        self.assertLess(seconds, PROMPT)
        self.manager.choose("Copy to Folder", "Archive")
        wait_until(lambda: len(self.names_in(self.archive)) == MANY, "the copies")


main()
