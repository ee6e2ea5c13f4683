"""The preferences window of the running host, used by mouse and keyboard as a person does. Where
its controls are comes from the accessibility tree; what they did stands in both stores.
"""

import copy
import plistlib
import shutil
import subprocess

import accessible
from session import BUILD_DIR, GROUP, OPEN_PANEL, SOURCE_DIR, HostTest, wait_until

TITLE = "^Tavrin$"
FILE_PANEL = "^Open$"
FILE_MANAGERS = "^File Managers$"

NEW_FILES, COPY_TO, COMMON, ICONS, OTHERS, GENERAL, HELP, MORE, CONTACT = PAGES = (
    "New Files", "Copy and Move To", "Common Folders", "Folder Icons", "Other Commands", "General",
    "Help", "More", "Contact")
LISTS = {NEW_FILES: "arrOfCreateNewFile", COPY_TO: "arrOfCopyFilesTo", COMMON: "arrOfCommonPath",
         ICONS: "arrOfCustomIcon", OTHERS: "arrOfOthers"}
ENABLE_ALL = {NEW_FILES: "enableAllOfCreateNewFiles", ICONS: "enableAllOfCustomIcon",
              OTHERS: "enableAllOfOthers"}
ALWAYS_ON = ("Change to QR Code", "Translate by Google", "Translate by Baidu")

# Written last by the first publishing of an opened window.
LAST_PUBLISHED = "enableAllOfCreateNewFiles"


def default_records(page):
    path = BUILD_DIR / "share" / "tavrin" / "DefaultPreferences.plist"
    return plistlib.loads(path.read_bytes())[LISTS[page]]


def is_on(value):
    """How the program reads a boolean."""
    if isinstance(value, str):
        return value[:1] in tuple("123456789YyTt")
    return isinstance(value, (bool, int, float)) and bool(value)


def is_same(one, other):
    """Equal, and of the same types: Python takes 1 for True."""
    return one == other and plistlib.dumps({"": one}) == plistlib.dumps({"": other})


def changed(records, row, **fields):
    """A copy of the records with some fields of one changed."""
    records = copy.deepcopy(records)
    records[row].update(fields)
    return records


def moved(records, source, target):
    """A copy of the records with one taken out and put in at `target`."""
    records = list(records)
    records.insert(target, records.pop(source))
    return records


class PreferencesTest(HostTest):
    """A session whose host has its window open."""

    # Whether the window is open at the start.
    opens_window = True

    def setUp(self):
        super().setUp()
        shutil.copy("/usr/share/dbus-1/services/org.a11y.Bus.service", self.session.services)
        self.session.call_bus("/org/freedesktop/DBus", "org.freedesktop.DBus.ReloadConfig",
                              destination="org.freedesktop.DBus")
        self.session.environment["QT_LINUX_ACCESSIBILITY_ALWAYS_ON"] = "1"
        # Read by the leak detector alone.
        suppressions = SOURCE_DIR / "tests" / "support" / "leak-suppressions-accessibility.txt"
        self.session.environment["LSAN_OPTIONS"] = f"suppressions={suppressions}"
        self.bus = accessible.open_accessibility_bus(
            self.session.environment["DBUS_SESSION_BUS_ADDRESS"])
        self.addCleanup(self.bus.close_sync, None)
        self.focus = accessible.FocusWatch(self.bus)
        self.home = self.session.folder / "home"
        self.templates = self.session.data / GROUP / "Templates" / "CreateNewFile"
        if self.opens_window:
            self.open_window()

    def tearDown(self):
        super().tearDown()
        self.assertNotIn("ended by a fault", self.session.whole_log())

    def open_window(self):
        """Opens the window, with the host if need be, and waits until it has published."""
        if LAST_PUBLISHED in self.stored():
            self.session.defaults("delete", "standard", LAST_PUBLISHED)
        host = self.session.start_host()
        self.window = self.session.wait_for_window(TITLE)
        wait_until(lambda: LAST_PUBLISHED in self.stored(), "the first publishing")
        wait_until(self.frame, "the window in the tree")
        return host

    def close_window(self):
        """Lets the window manager close the window, as its button does; a key may be lost to it."""
        self.session.run("wmctrl", "-i", "-c", self.window)
        self.session.wait_for_no_window(TITLE)

    # The tree

    def attempt(self, ask):
        """What asking the tree gives; nothing when it changes at the same time."""
        try:
            return ask()
        except accessible.Gone:
            return None

    def frames(self, title):
        """The windows of a title that are showing, from the oldest to the newest."""
        return [window for program in accessible.programs_on(self.bus)
                for window in program.children
                if window.name == title and window.has("showing")]

    def frame(self):
        """The preferences window in the tree; nothing when it is not there."""
        return next(iter(self.attempt(lambda: self.frames("Tavrin")) or []), None)

    def find(self, role, name, window="Tavrin"):
        """Waits for a control that is showing, in any of the windows of a title."""
        def ask():
            return next(filter(None, (frame.find(role, name) for frame in self.frames(window))),
                        None)
        return wait_until(lambda: self.attempt(ask), f"the {role} {name!r}")

    def wait_for_state(self, control, state, value=True):
        wait_until(lambda: control.has(state) == value,
                   f"{control} to be {'' if value else 'not '}{state}")

    def press(self, control, count=1):
        """Clicks in the middle of a control."""
        self.click_at(*control.middle, count)

    def click_at(self, x, y, count=1, button=1):
        self.session.run("xdotool", "mousemove", str(x), str(y), "click", "--repeat", str(count),
                         "--delay", "60", str(button))

    def focus_by(self, *keys):
        """Presses keys and waits until something else has the keyboard; returns it."""
        before = self.focus.focused
        self.session.key(*keys)
        return wait_until(lambda: self.focus.focused != before and self.focus.focused,
                          f"{keys} to move the focus from {before}")

    def wait_for_focus(self, *roles):
        """Waits until an object of one of the roles has got the keyboard."""
        wait_until(lambda: self.attempt(lambda: self.focus.focused.role) in roles,
                   f"the focus in a {roles}")

    def press_button(self, name):
        self.press(self.find("push button", name))

    def show_page(self, page):
        entry = self.find("radio button", page)
        self.press(entry)
        self.wait_for_state(entry, "checked")
        self.page = page

    # Tables

    def table(self):
        """The table of the page that shows."""
        return wait_until(lambda: self.attempt(lambda: next(self.frame().descendants("table"),
                                                            None)), "the table")

    def cell(self, row, column):
        """The cell of a row below a column's heading."""
        table = self.table()
        for index in range(table.column_count):
            found = table.cell(row, index)
            if found.name.split(":")[0] == column:
                return found
        raise AssertionError(f"no column {column} in {table}")

    def texts(self, column):
        """What the rows have in a column, from the first to the last."""
        table = self.table()
        rows = range(table.row_count)
        index = next(each for each in range(table.column_count)
                     if table.cell(0, each).name.split(":")[0] == column) if rows else 0
        return [table.cell(row, index).name.partition(": ")[2] for row in rows]

    def wait_for_texts(self, column, texts):
        wait_until(lambda: self.attempt(lambda: self.texts(column)) == texts,
                   f"the rows to read {texts}")

    def reveal(self, row, column):
        """Scrolls until a cell is to be seen as a whole; returns it."""
        def is_revealed():
            _, top, _, height = self.table().extents
            cell = self.cell(row, column)
            _, cell_top, _, cell_height = cell.extents
            header = cell_height
            if cell_top >= top + header // 2 and cell_top + cell_height <= top + height:
                return cell
            button = "4" if cell_top < top + header // 2 else "5"
            self.session.run("xdotool", "mousemove", *map(str, self.table().middle),
                             "click", button)
            return None
        return wait_until(lambda: self.attempt(is_revealed), f"row {row}")

    def select(self, row):
        cell = self.reveal(row, "Name")
        self.press(cell)
        self.wait_for_state(cell, "selected")
        return cell

    def press_switch(self, row, column="Enabled"):
        self.press(self.reveal(row, column))

    def deselect(self, row):
        """Clicks a selected row away; elsewhere than it was selected, for that is no double click.
        """
        left, top, width, height = self.cell(row, "Name").extents
        self.session.run("xdotool", "keydown", "ctrl", "mousemove", str(left + width // 4),
                         str(top + height // 2), "click", "1", "keyup", "ctrl")

    def retitle(self, row, title, by_mouse=False):
        """Edits the title of a row to its end."""
        if by_mouse:
            self.press(self.reveal(row, "Name"), count=2)
        else:
            self.select(row)
            self.session.key("F2")
        # The keys wait in line behind what opens the editor.
        self.session.key("ctrl+a", "BackSpace")
        if title:
            self.session.type_text(title)
        self.session.key("Return")

    def drag(self, row, place):
        """Drags a row with the mouse to a place of the screen."""
        left, top, width, height = self.reveal(row, "Name").extents
        # Elsewhere than a click before, which together would be a double click.
        start = (left + width * 3 // 4, top + height // 2)
        self.session.run("xdotool", "mousemove", *map(str, start), "mousedown", "1")
        self.wait_for_state(self.cell(row, "Name"), "selected")
        steps = [(start[0] + step, start[1] + step) for step in (4, 8, 16, 24)]
        last = [(place[0] - 2, place[1]), place]
        for point in steps + last:
            self.session.run("xdotool", "mousemove", "--sync", *map(str, point))
        self.session.run("xdotool", "mouseup", "1")

    def above(self, row):
        """The place on the screen that a row is dropped at to come above another."""
        left, top, width, height = self.cell(row, "Name").extents
        return left + width // 2, top + height // 5

    def below(self, row):
        left, top, width, height = self.cell(row, "Name").extents
        return left + width // 2, top + height * 4 // 5

    # Stores

    def stored(self, domain="standard"):
        return self.session.export_domain(domain)

    def write(self, key, value, domain="standard"):
        """Stores a value of any type as another program does."""
        self.session.import_domain(domain, self.stored(domain) | {key: value})

    def records(self, page=None):
        return self.stored()[LISTS[page or self.page]]

    def published(self, page=None):
        return self.stored("group")[LISTS[page or self.page]]

    def wait_for_records(self, expected, page=None):
        """Waits until the list is stored as expected and its enabled rows are published."""
        page = page or self.page
        enabled = [record for record in expected
                   if isinstance(record, dict) and is_on(record.get("enable"))]
        try:
            wait_until(lambda: is_same(self.records(page), expected)
                       and is_same(self.published(page), enabled), "the list to be stored", 10)
        except AssertionError:
            self.assertEqual(self.records(page), expected)
            self.assertEqual(self.published(page), enabled)
            raise
        if page in ENABLE_ALL:
            all_enabled = len(enabled) == len(expected)
            wait_until(lambda: self.stored()[ENABLE_ALL[page]] == all_enabled,
                       f"enabling all to be {all_enabled}")

    # Panels

    def panel_field(self, title):
        self.session.wait_for_window(title)
        return self.find("text", "Location", title.strip("^$"))

    def pick(self, path, title=OPEN_PANEL):
        """Picks one item in the panel that comes up, by its path."""
        field = self.panel_field(title)
        self.press(field)
        self.session.key("ctrl+a")
        self.session.type_text(str(path))
        wait_until(lambda: field.text == str(path), f"{path} to be typed")
        self.confirm(title)

    def pick_all_in(self, folder, title=OPEN_PANEL):
        """Picks everything in a folder, in the panel that comes up."""
        field = self.panel_field(title)
        self.press(field)
        self.session.key("ctrl+a")
        self.session.type_line(f"{folder}/")
        self.wait_for_state(self.find("check box", folder.name, title.strip("^$")), "checked")
        self.press(self.find("tree", "Files", title.strip("^$")))
        self.session.key("ctrl+a")
        wait_until(lambda: field.text.endswith(" items"), "several items to be selected")
        self.confirm(title)

    def confirm(self, title):
        self.press(self.find("push button", "Open", title.strip("^$")))
        self.session.wait_for_no_window(title)


def make_image(path, width=64, height=48, colour="red"):
    """Makes an image file of one colour."""
    subprocess.run(["convert", "-size", f"{width}x{height}", f"xc:{colour}", str(path)], check=True)
    return path
