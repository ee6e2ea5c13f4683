"""The preferences window for a screen reader and for the keyboard alone."""

from preferences import (COPY_TO, GENERAL, LISTS, NEW_FILES, OTHERS, PAGES, PreferencesTest,
                         changed, default_records)
from session import main, wait_until

# What the roles of controls are called on the bus.
CONTROLS = {"radio button", "push button", "check box", "combo box", "table", "text", "cell"}

# How far a walk with the Tab key goes before it counts as endless.
LONGEST_WALK = 60


class Tree(PreferencesTest):
    def test_every_control_has_a_name_and_a_role(self):
        for page in PAGES:
            with self.subTest(page):
                self.show_page(page)
                controls = [each for each in self.frame().descendants()
                            if each.has("focusable")]
                self.assertGreater(len(controls), len(PAGES))
                for control in controls:
                    self.assertIn(control.role, CONTROLS, control)
                    self.assertNotEqual(control.name.strip(), "", control)
                # Two of a page are told apart by their names.
                names = [(control.role, control.name) for control in controls]
                self.assertEqual(len(names), len(set(names)), names)

    def test_cells_say_what_they_show(self):
        for page in LISTS:
            with self.subTest(page):
                self.show_page(page)
                table = self.table()
                self.assertEqual(table.row_count, len(default_records(page)))
                headers = [each.name for each in table.children if each.role == "column header"]
                self.assertEqual(len(headers), table.column_count)
                for row in (0, table.row_count - 1):
                    cells = [table.cell(row, column) for column in range(table.column_count)]
                    self.assertEqual({cell.role for cell in cells}, {"cell"})
                    self.assertEqual([cell.name.split(":")[0] for cell in cells], headers)
        self.show_page(COPY_TO)
        for row in (0, 4):
            record = default_records(COPY_TO)[row]
            state = "On" if record["enable"] else "Off"
            self.assertEqual([cell.name for cell in (self.cell(row, column) for column in (
                "Enabled", "Name", "Folder"))], [
                    f"Enabled: {state}", f"Name: {record['realPath'][2:]}",
                    f"Folder: {record['realPath']}"])
            self.assertEqual(self.cell(row, "Enabled").has("checked"), bool(record["enable"]))

    def test_an_editor_has_the_name_of_its_column(self):
        self.show_page(COPY_TO)
        self.select(1)
        self.wait_for_focus("cell", "table")
        editor = self.focus_by("F2")
        self.assertEqual((editor.role, editor.name, editor.text), ("text", "Name", "Documents"))
        self.assertLessEqual({"editable", "focusable"}, editor.states)

    def test_texts_explain_controls(self):
        self.show_page(GENERAL)
        box = self.find("check box", "Authorize the whole disk")
        self.assertIn("without asking", box.description)
        self.show_page("Help")
        for link in self.frame().descendants("push button"):
            self.assertNotEqual(link.description, "", link)


class Keyboard(PreferencesTest):
    def walk(self, key="Tab"):
        """Every control that the key leads to, from the focused one until it comes back."""
        reached = [self.focus.focused]
        for _ in range(LONGEST_WALK):
            control = self.focus_by(key)
            if control == reached[0]:
                return reached
            reached.append(control)
        raise AssertionError(f"the walk does not come back: {reached}")

    def show_by_number(self, index):
        entry = self.find("radio button", PAGES[index])
        if self.focus.focused == entry:
            return entry
        self.assertEqual(self.focus_by(f"ctrl+{index + 1}"), entry)
        self.wait_for_state(entry, "checked")
        return entry

    def is_in_sight(self, control):
        left, top, width, height = control.extents
        area = self.table().extents if control.role in ("combo box",) else self.frame().extents
        return (left >= area[0] and top >= area[1] and left + width <= area[0] + area[2]
                and top + height <= area[1] + area[3])

    def test_tab_reaches_every_control_of_each_page(self):
        for index, page in enumerate(PAGES):
            with self.subTest(page):
                self.show_by_number(index)
                reached = self.walk()
                focusable = {each for each in self.frame().descendants()
                             if each.has("focusable") and each.has("enabled")}
                # Of the sidebar's entries Tab reaches the chosen one, and the arrows the others.
                focusable -= {each for each in focusable if each.role == "radio button"
                              and not each.has("checked")}
                self.assertEqual(focusable - set(reached), set())
                for control in reached:
                    self.assertNotEqual(control.name.strip(), "", control)
                    self.assertIn(control.role, CONTROLS)
                backwards = self.walk("shift+Tab")
                self.assertEqual(backwards[1:], reached[:0:-1])

    def test_what_tab_reaches_is_in_sight(self):
        self.show_by_number(PAGES.index(OTHERS))
        control = self.focus.focused
        for _ in range(len(self.walk())):
            self.assertTrue(self.is_in_sight(control), (control, control.extents))
            control = self.focus_by("Tab")

    def test_arrows_lead_through_the_pages(self):
        self.show_by_number(0)
        entries = [self.find("radio button", page) for page in PAGES]
        for key, order in (("Down", entries[1:]), ("Up", entries[-2::-1])):
            for entry in order:
                self.assertEqual(self.focus_by(key), entry)
                self.wait_for_state(entry, "checked")
                wait_until(lambda title=entry.name: self.attempt(
                    lambda: self.frame().find("label", title)), f"the page {entry.name}")

    def test_a_list_is_edited_without_the_mouse(self):
        """Switched, moved, retitled, removed from and added to."""
        self.show_by_number(PAGES.index(COPY_TO))
        self.page = COPY_TO
        records = self.records()
        self.assertEqual(self.focus_by("Tab").role, "table")
        self.assertEqual(self.focus_by("Down").role, "cell")
        self.session.key("space")
        records = changed(records, 1, enable=0)
        self.wait_for_records(records)
        self.session.key("alt+Down", "F2", "N", "e", "w", "Return")
        records[1:3] = [records[2], records[1] | {"displayName": "New"}]
        self.wait_for_records(records)
        self.session.key("Delete")
        records.pop(2)
        self.wait_for_records(records)
        self.session.key("alt+a")
        folder = self.make_folder("new")
        self.panel_field("^Choose a Folder$")
        self.session.type_line(str(folder))
        wait_until(lambda: self.attempt(lambda: self.find("check box", "new", "Choose a Folder")
                                        .has("checked")), "the folder to be entered")
        self.session.key("Return")
        records.append({"enable": 1, "realPath": str(folder), "displayName": ""})
        self.wait_for_records(records)

    def test_switches_and_links_answer_the_space_key(self):
        self.show_by_number(PAGES.index(GENERAL))
        box = self.focus_by("Tab")
        self.assertEqual(box.role, "check box")
        before = box.has("checked")
        for value in (not before, before):
            self.session.key("space")
            self.wait_for_state(box, "checked", value)
        self.show_by_number(PAGES.index(NEW_FILES))
        reset = next(control for control in self.walk() if control.name == "Reset…")
        while self.focus.focused != reset:
            self.focus_by("Tab")
        self.session.key("space")
        self.find("label", "All setting parameters will be reseted!")
        self.session.key("Escape")


main()
