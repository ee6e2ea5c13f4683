"""The rows of the preferences window's lists: switched, retitled, moved, and made of anything."""

from preferences import (ALWAYS_ON, COMMON, COPY_TO, ICONS, LISTS, NEW_FILES, OTHERS,
                         PreferencesTest, changed, default_records, moved)
from session import OPEN_PANEL, main, wait_until

UNKNOWN = {"mine": {"nested": [1, "two", b"three", True]}}


class Switching(PreferencesTest):
    def test_each_switch_changes_its_field(self):
        for page, row, column, field in (
                (NEW_FILES, 2, "Enabled", "enable"), (NEW_FILES, 17, "Enabled", "enable"),
                (NEW_FILES, 2, "In the main menu", "enableMainMenu"),
                (COPY_TO, 4, "Enabled", "enable"), (ICONS, 9, "Enabled", "enable"),
                (OTHERS, 4, "Enabled", "enable"), (OTHERS, 15, "Enabled", "enable")):
            with self.subTest(page=page, row=row, column=column):
                self.show_page(page)
                records = self.records()
                cell = self.reveal(row, column)
                before = int(records[row][field])
                self.assertEqual(cell.has("checked"), bool(before))
                for value in (1 - before, before):
                    self.press(cell)
                    self.wait_for_records(changed(records, row, **{field: value}))
                    self.wait_for_state(self.cell(row, column), "checked", bool(value))

    def test_space_switches_the_selected_row(self):
        self.show_page(COPY_TO)
        records = self.records()
        self.select(1)
        for value in (0, 1):
            self.session.key("space")
            self.wait_for_records(changed(records, 1, enable=value))
        self.session.key("Down", "space")
        self.wait_for_records(changed(records, 2, enable=0))

    def test_a_row_without_a_folder_stays_off(self):
        self.show_page(COPY_TO)
        self.write(LISTS[COPY_TO], [{"realPath": "Undefined", "displayName": ""}])
        self.wait_for_texts("Name", ["Undefined"])
        self.press_switch(0)
        self.wait_for_records([{"realPath": "Undefined", "displayName": "", "enable": 0}])
        self.assertFalse(self.cell(0, "Enabled").has("checked"))

    def test_commands_that_are_always_on_are_locked(self):
        self.show_page(OTHERS)
        records = [record | {"enable": 0} for record in default_records(OTHERS)[-5:]]
        self.write(LISTS[OTHERS], records)
        wait_until(lambda: self.table().row_count == 5, "the rows")
        self.assertEqual(tuple(record["Action"] for record in records[2:]), ALWAYS_ON)
        for row in (2, 3, 4):
            cell = self.cell(row, "Enabled")
            self.assertTrue(cell.has("checked"), cell)
            self.press(cell)
            self.select(row)
            self.session.key("space", "F2", "n", "o", "Return", "alt+Up", "Delete")
            self.drag(row, self.above(0))
        self.press_switch(0)
        self.wait_for_records(changed(records, 0, enable=1))
        self.assertTrue(all(self.cell(row, "Enabled").has("checked") for row in (2, 3, 4)))


class Retitling(PreferencesTest):
    def test_titles_of_every_list(self):
        for page, extra in ((COPY_TO, {}), (COMMON, {}), (ICONS, {"modified": "1"}),
                            (OTHERS, {"nameModified": "1"})):
            with self.subTest(page):
                self.show_page(page)
                records = self.records()
                self.retitle(1, "My own", by_mouse=page in (COMMON, OTHERS))
                records = changed(records, 1, displayName="My own", **extra)
                self.wait_for_records(records)
                self.assertEqual(self.texts("Name")[1], "My own")
                self.retitle(0, "My own")
                records = changed(records, 0, displayName="My own", **extra)
                self.wait_for_records(records)
                self.retitle(1, "")
                records = changed(records, 1, displayName="")
                self.wait_for_records(records)
                # A folder without a title has its own.
                title = "Documents" if page == COPY_TO else "Desktop" if page == COMMON else ""
                self.assertEqual(self.texts("Name")[1], title)

    def test_a_text_that_stays_changes_nothing(self):
        """Neither an end of editing without a change nor one by the Escape key."""
        self.show_page(COPY_TO)
        records = self.records()
        self.select(2)
        self.session.key("F2", "Return", "F2", "x", "y", "Escape")
        self.press_switch(0)
        self.wait_for_records(changed(records, 0, enable=0))

    def test_a_template_takes_its_title_along(self):
        self.show_page(NEW_FILES)
        records = self.records()
        content = (self.templates / "Markdown.md").read_bytes()
        for title in ("Notes", ""):
            self.retitle(1, title)
            records = changed(records, 1, displayName=title, modified="1")
            self.wait_for_records(records)
            file = self.templates / f"{title}.md"
            wait_until(file.exists, f"{file.name}")
            self.assertEqual(file.read_bytes(), content)
        self.assertFalse((self.templates / "Notes.md").exists())
        self.assertFalse((self.templates / "Markdown.md").exists())

    def test_a_template_whose_file_cannot_follow_still_gets_its_title(self):
        self.show_page(NEW_FILES)
        records = self.records()
        (self.templates / "Markdown.md").unlink()
        self.make_file("kept").rename(self.templates / "taken.txt")
        for row, title in ((1, "gone"), (0, "taken"), (2, "a sub/folder")):
            self.retitle(row, title)
            records = changed(records, row, displayName=title, modified="1")
            self.wait_for_records(records)
        self.assertEqual((self.templates / "taken.txt").read_text(), "content")
        self.assertTrue((self.templates / "Plain Text.txt").exists())
        self.assertTrue((self.templates / "Rich Text.rtf").exists())


class Moving(PreferencesTest):
    def test_by_dragging(self):
        self.show_page(COPY_TO)
        records = default_records(COPY_TO)[:3]
        self.write(LISTS[COPY_TO], records)
        wait_until(lambda: self.table().row_count == 3, "the rows")
        left, top, width, height = self.table().extents
        empty = (left + width // 2, top + height - 20)
        # Dragged to the gap above a row further down, a row comes to stand below that gap.
        for row, place, target in ((0, self.above(2), 2), (0, empty, 2), (2, self.above(0), 0),
                                   (0, self.below(0), 1), (2, self.below(0), 1),
                                   (0, self.below(2), 2)):
            self.drag(row, place)
            records = moved(records, row, target)
            self.wait_for_records(records)
            self.wait_for_texts("Folder", [record["realPath"] for record in records])
            self.assertFalse(self.cell(target, "Name").has("selected"))
            self.assertFalse(self.find("push button", "Remove").has("enabled"))

    def test_a_row_dropped_outside_stays(self):
        """Above the list, on the sidebar and outside of the window; then it can still be moved."""
        self.show_page(ICONS)
        records = self.records()
        sidebar = self.find("radio button", COPY_TO).middle
        for place in (self.find("push button", "Add…").middle, sidebar, (5, 5)):
            self.drag(3, place)
            self.assertTrue(self.find("radio button", ICONS).has("checked"))
        self.drag(3, self.above(1))
        self.wait_for_records(moved(records, 3, 1))

    def test_every_list_is_moved_in(self):
        for page in (NEW_FILES, COMMON, ICONS):
            with self.subTest(page):
                self.show_page(page)
                records = self.records()
                self.drag(4, self.above(1))
                self.wait_for_records(moved(records, 4, 1))

    def test_commands_count_the_icons(self):
        """For them the gap below as many rows as there are icons is one place further up."""
        self.show_page(OTHERS)
        self.write(LISTS[ICONS], default_records(ICONS)[:5])
        records = self.records()
        for row, gap, target in ((0, 3, 3), (0, 5, 4), (8, 5, 4), (1, 6, 6)):
            self.drag(row, self.above(gap))
            records = moved(records, row, target)
            self.wait_for_records(records)
        self.drag(12, self.above(13))
        records = moved(records, 12, 13)
        self.wait_for_records(records)

    def test_by_keyboard(self):
        """Row by row, to both ends, past the count of the icons; the row stays selected."""
        for page in (COMMON, OTHERS):
            with self.subTest(page):
                self.write(LISTS[ICONS], default_records(ICONS)[:4])
                self.show_page(page)
                records = self.records()
                self.select(2)
                self.session.key("alt+Up", "alt+Up", "alt+Up")
                records = moved(records, 2, 0)
                self.wait_for_records(records)
                for row in range(6):
                    self.session.key("alt+Down")
                    records = moved(records, row, row + 1)
                    self.wait_for_records(records)
                    self.wait_for_state(self.cell(row + 1, "Name"), "selected")
                for row in range(6, 2, -1):
                    self.session.key("alt+Up")
                    records = moved(records, row, row - 1)
                    self.wait_for_records(records)
                self.write(LISTS[page], records[:5])
                wait_until(lambda: self.table().row_count == 5, "the rows")
                self.select(3)
                self.session.key("alt+Down", "alt+Down")
                self.wait_for_records(moved(records[:5], 3, 4))

    def choose_in_menu(self, name):
        """Chooses an item of the menu of a row in the middle of the list of folders."""
        items = ("Rename", "Choose Folder…", "Move Up", "Move Down", "Remove")
        self.session.key(*["Down"] * (items.index(name) + 1), "Return")

    def test_by_the_menu_of_the_row(self):
        self.show_page(COPY_TO)
        records = self.records()
        self.select(1)
        self.session.key("Menu")
        self.choose_in_menu("Move Down")
        records = moved(records, 1, 2)
        self.wait_for_records(records)
        self.click_at(*self.cell(3, "Folder").middle, button=3)
        self.choose_in_menu("Move Up")
        records = moved(records, 3, 2)
        self.wait_for_records(records)
        self.click_at(*self.cell(1, "Folder").middle, button=3)
        self.choose_in_menu("Remove")
        records.pop(1)
        self.wait_for_records(records)
        self.click_at(*self.cell(3, "Folder").middle, button=3)
        self.choose_in_menu("Rename")
        self.session.key("x", "Return")
        self.wait_for_records(changed(records, 3, displayName="x"))
        self.click_at(*self.cell(1, "Folder").middle, button=3)
        self.choose_in_menu("Choose Folder…")
        self.session.cancel(OPEN_PANEL)


class BadRecords(PreferencesTest):
    """Lists that were written by hand."""

    def show(self, page, records, count=None):
        self.show_page(page)
        self.write(LISTS[page], records)
        count = len(records) if count is None else count
        wait_until(lambda: self.attempt(lambda: self.table().row_count) == count, "the rows")

    def test_records_of_anything_are_shown_and_edited(self):
        odd = [{}, "text", 7, ["list"], b"data", {"enable": "YES", **UNKNOWN},
               {"enable": ["x"], "displayName": 5, "realPath": {}, "extension": b"x", "icon": "i",
                "Action": 3.5, "modified": {}, **UNKNOWN}]
        for page in LISTS:
            with self.subTest(page):
                self.show(page, odd)
                records = odd
                if page != COMMON:
                    # Missing and of another type is off; text reads as the number or word it is.
                    self.assertEqual([self.cell(row, "Enabled").has("checked")
                                      for row in range(len(odd))], [False] * 5 + [True, False])
                    for row, value in ((5, 0), (0, 1), (6, 1), (1, 1)):
                        self.press_switch(row)
                        record = records[row] if isinstance(records[row], dict) else {}
                        records = list(records)
                        records[row] = record | {"enable": value}
                        self.wait_for_records(records)
                self.retitle(5, "Title")
                record = dict(records[5], displayName="Title")
                if page in (NEW_FILES, ICONS):
                    record["modified"] = "1"
                if page == OTHERS:
                    record["nameModified"] = "1"
                records = records[:5] + [record] + records[6:]
                self.wait_for_records(records)
                self.drag(5, self.above(0))
                self.wait_for_records(moved(records, 5, 0))

    def test_lists_that_are_none_read_as_empty(self):
        for value in ("text", 5, {"a": 1}, True, b"data"):
            for page in LISTS:
                self.show(page, value, 0)
        folder = self.make_folder("folder")
        self.show_page(COMMON)
        self.press_button("Add…")
        self.pick(folder)
        self.wait_for_records([{"enable": 1, "realPath": str(folder), "displayName": ""}])

    def test_icons_that_are_none(self):
        icon = default_records(ICONS)[0]["icon"]
        self.show(ICONS, [{"icon": value, "displayName": name, "enable": 1} for name, value in (
            ("a", b""), ("b", b"no image"), ("c", icon[:1000]), ("d", icon))])
        self.assertEqual(self.texts("Name"), ["a", "b", "c", "d"])
        sizes = self.texts("Size")
        self.assertEqual((sizes[:2], sizes[3:]), (["0 x 0"] * 2, ["256 x 256"]))
        self.press_switch(2)
        wait_until(lambda: not self.cell(2, "Enabled").has("checked"), "the switch")

    def test_an_option_stands_in_one_row_whatever_the_rows_are(self):
        for actions, rows in ((["Cut", "Cut", "Cut"], [2]), (["Unknown", 5], []),
                              (["Delete directly", "Image to Icon for iOS", "Cut"], [0, 2])):
            self.show(OTHERS, [{"Action": action, "displayName": "x"} for action in actions])
            self.select(0)
            self.wait_for_focus("cell", "table")
            options = []
            while (option := self.focus_by("Tab")).role == "combo box":
                options.append(option.middle[1])
            self.assertEqual(option.name, "Enable all")
            self.assertEqual(options, [self.cell(row, "Option").middle[1] for row in rows])


main()
