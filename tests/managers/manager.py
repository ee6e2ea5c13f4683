"""The file managers, started on a private desktop and used by mouse and keyboard as a person does.

Where files and menu items are comes from the accessibility tree. A file manager runs in a mount
namespace of its own, in which the built modules stand where installed ones would.
"""

import contextlib
import os
import subprocess
import time

import accessible
from accessible import Gone
from session import BUILD_DIR, PATIENCE, wait_until

# Asking for the tree again and again keeps a program from its own work.
PAUSE = 0.15

# In pixels: inside of a name, from its left edge.
INTO_NAME = 18

# Of a menu, in keys: longer than any.
LONGEST_MENU = 80

NAMESPACE_SCRIPT = """mount -t overlay -o "lowerdir=$1:/usr" tavrin-test /usr || exit 111
shift
exec "$@"
"""


def poll(condition, what, seconds=PATIENCE):
    """Waits like wait_until, without hurry; a tree that changes meanwhile is asked again."""
    def attempt():
        try:
            value = condition()
        except Gone:
            value = None
        if not value:
            time.sleep(PAUSE)
        return value
    return wait_until(attempt, what, seconds)


def search(root, fits, leaves=()):
    """The first object below `root` that fits; what is below the roles in `leaves` is left out."""
    for child in root.children:
        role = child.role
        if fits(child, role):
            return child
        if role in leaves:
            continue
        found = search(child, fits, leaves)
        if found is not None:
            return found
    return None


class MenuEntry:
    """An item of an open menu."""

    def __init__(self, item):
        self.item = item
        # Some labels have characters at their end that nobody sees, to tell them from others.
        self.title = item.name.rstrip("\u2060")
        states = item.states
        self.is_enabled = "sensitive" in states
        self.is_selected = bool(states & {"selected", "focused"})

    def __repr__(self):
        return repr(self.title)


def titles(entries):
    return [entry.title for entry in entries]


class FileManager:
    """A file manager that runs; the classes below say how each of them is used."""

    # By the name of the program and of the setting that switches its menu off.
    name = ""
    # The pkg-config package and its variable that say where modules are loaded from.
    module_place = ()
    module_pattern = ""
    arguments = ()
    # The settings that it is started with, as GLib's keyfile backend stores them.
    settings = {}
    # What its window calls the trash.
    trash_location = "trash:///"
    # In what other programs call menu items.
    item_roles = ("menu item", "menu", "check menu item")
    has_emblems = False
    # The keys for the views, where the one that tells places is not the one to be looked at.
    key_of_icons = None
    key_of_list = None
    # Whether the menu of the background is told from that of a selected folder.
    knows_background = True
    # Elsewhere a click on the item above a submenu is one on an item.
    opens_submenus_by_click = False
    key_into_submenu = "Right"
    # In seconds, for what a click in a menu does.
    patience = PATIENCE

    def __init__(self, session, bus):
        self.session = session
        self.bus = bus
        self.log_name = f"{self.name}.log"
        self.program = None

    # Its process

    def environment(self, is_dark):
        """The variables of its own."""
        environment = dict(self.session.environment)
        del environment["NO_AT_BRIDGE"]
        folder = self.session.config / "glib-2.0" / "settings"
        folder.mkdir(parents=True, exist_ok=True)
        settings = dict(self.settings)
        if is_dark:
            settings["org/gnome/desktop/interface"] = {"color-scheme": "'prefer-dark'"}
        (folder / "keyfile").write_text("".join(
            f"[{path}]\n" + "".join(f"{key}={value}\n" for key, value in values.items())
            for path, values in settings.items()))
        for version in ("3.0", "4.0"):
            folder = self.session.config / f"gtk-{version}"
            folder.mkdir(exist_ok=True)
            (folder / "settings.ini").write_text(
                "[Settings]\ngtk-enable-animations=0\ngtk-menu-images=1\n"
                f"gtk-application-prefer-dark-theme={int(is_dark)}\n")
        return environment | {
            "GSETTINGS_BACKEND": "keyfile",
            # Pictures of the software renderer keep two cores from everything else.
            "GSK_RENDERER": "cairo",
            "QT_LINUX_ACCESSIBILITY_ALWAYS_ON": "1",
        }

    def modules(self):
        """The built modules."""
        found = sorted(BUILD_DIR.glob(f"lib*/**/{self.module_pattern}"))
        if not found:
            raise AssertionError(f"the menu of {self.name} is not built: {self.module_pattern}")
        return found

    def in_namespace(self, command):
        """The command that runs `command` where the modules seem to be installed."""
        package, variable = self.module_place
        place = subprocess.run(["pkg-config", f"--variable={variable}", package], check=True,
                               stdout=subprocess.PIPE, text=True).stdout.strip()
        installed = self.session.folder / "installed"
        folder = installed / os.path.relpath(place, "/usr")
        folder.mkdir(parents=True, exist_ok=True)
        for module in self.modules():
            link = folder / module.name
            if not link.is_symlink():
                link.symlink_to(module)
        unshare = ["unshare", "--mount"] + ([] if os.getuid() == 0 else ["--map-root-user"])
        return [*unshare, "sh", "-c", NAMESPACE_SCRIPT, "sh", installed, *command]

    def start(self, folder, is_dark=False):
        """Starts it and waits until the window shows the folder, which has items."""
        environment = self.environment(is_dark)
        self.program = self.session.start_program(
            self.in_namespace([self.name, *self.arguments, str(folder)]), environment=environment,
            log_name=self.log_name)
        self.window = wait_until(self._find_window, f"the window of {self.name}")
        self.session.run("wmctrl", "-i", "-r", self.window, "-b",
                         "add,maximized_vert,maximized_horz")
        self.application = poll(self._find_application, f"{self.name} in the tree")
        self.prepare_view()
        if os.listdir(folder):
            self.wait_for_item(self.first_of(folder))

    def first_of(self, folder):
        return sorted(name for name in os.listdir(folder) if not name.startswith("."))[0]

    def _find_window(self):
        assert self.program.poll() is None, self.session.log_of(self.log_name)
        found = self.session.run("xdotool", "search", "--onlyvisible", "--pid",
                                 str(self.program.pid), "--name", ".+").split()
        return found[-1] if found else None

    def _find_application(self):
        return next((each for each in accessible.programs_on(self.bus)
                     if each.name.lower().endswith(self.name) and each.children), None)

    def prepare_view(self):
        """Has a folder shown in a way in which the tree tells where the files are."""

    def has_ended(self):
        """Whether it was started and runs no more."""
        return self.program is not None and self.program.poll() is not None

    # Folders and files

    def go_to(self, location, item=None):
        """Shows another folder in the window, and waits for an item of it."""
        # Typed, it would be completed to something else by and by.
        text = self.session.folder / "location"
        text.write_text(str(location))
        self.session.start_program(["xclip", "-in", "-selection", "clipboard", str(text)])
        self.key("ctrl+l")
        time.sleep(0.5)
        self.key("ctrl+a", "ctrl+v")
        time.sleep(0.3)
        self.key("Return")
        self.prepare_view()
        if item is not None:
            self.wait_for_item(item)

    def find_item(self, name):
        """The object of a file in the view; nothing when there is none."""
        raise NotImplementedError

    def wait_for_item(self, name):
        return poll(lambda: self.find_item(name), f"{name} in {self.name}")

    def wait_for_no_item(self, name):
        def has_gone():
            with contextlib.suppress(Gone):
                return self.find_item(name) is None
            return False
        poll(has_gone, f"{name} to leave {self.name}")

    def point_of(self, name):
        """A place on the screen where a click hits a file."""
        def settled():
            before = self._point(self.wait_for_item(name))
            time.sleep(PAUSE)
            return before if before == self._point(self.wait_for_item(name)) else None
        return poll(settled, f"{name} to stand still")

    def _point(self, item):
        left, top, width, height = item.extents
        return left + min(INTO_NAME, width // 2), top + height // 2

    @property
    def empty_point(self):
        """A place of the view where no file is, as long as there are few."""
        return 1000, 780

    # Mouse and keys

    def key(self, *keys):
        self.session.key(*keys)

    def move_to(self, point):
        self.session.run("xdotool", "mousemove", str(point[0]), str(point[1]))

    def click(self, point, button=1):
        # Two clicks that come too fast are one double click.
        self.session.run("xdotool", "mousemove", str(point[0]), str(point[1]), "sleep", "0.05",
                         "click", str(button))

    def select(self, *names):
        """Clicks on a file, and on others with the Control key."""
        points = [self.point_of(name) for name in names]
        self.click(self.empty_point)
        time.sleep(0.3)
        for number, point in enumerate(points):
            if number == 1:
                self.session.run("xdotool", "keydown", "ctrl")
            self.click(point)
            time.sleep(0.3)
        if len(names) > 1:
            self.session.run("xdotool", "keyup", "ctrl")
        return points[-1]

    def select_all(self, name):
        """Selects all files in view, of which one has that name; returns where that is."""
        point = self.select(name)
        self.key("ctrl+a")
        return point

    # Menus

    def open_menu(self, *names):
        """Opens the menu of the named files, or that of the folder in view, with the right button;
        returns its items.
        """
        if len(names) > 1:
            point = self.select(*names)
        else:
            point = self.point_of(names[0]) if names else self.empty_point
        return self.open_menu_at(point)

    def open_menu_at(self, point):
        self.click(point, button=3)
        return poll(self.whole_menu, f"the menu of {self.name}", self.patience)

    def whole_menu(self):
        """The items of the open menu once no more are coming."""
        before = self.menu()
        time.sleep(PAUSE)
        after = self.menu()
        return after if titles(before) == titles(after) else None

    def menu(self):
        """The items of the open menu, from the first to the last; empty when none is open."""
        raise NotImplementedError

    def entries(self, menu):
        """The items that are shown of a menu in the tree."""
        found = []
        for child in menu.children:
            with contextlib.suppress(Gone):
                if child.role in self.item_roles and child.has("showing"):
                    found.append(MenuEntry(child))
        return found

    def submenu_of(self, entry):
        """The object whose children are the items of a submenu; nothing where there is none."""
        raise NotImplementedError

    def submenu(self, entry):
        """The items of a submenu, which need not be open."""
        menu = self.submenu_of(entry)
        return [] if menu is None else [MenuEntry(child) for child in menu.children
                                        if child.role in self.item_roles and child.has("sensitive")]

    def shown_submenu(self, parent):
        """The items of a submenu that are on the screen."""
        menu = self.submenu_of(parent)
        return [] if menu is None else self.entries(menu)

    def open_submenu(self, entry):
        """Opens a submenu with the mouse and returns its items."""
        if self.opens_submenus_by_click:
            self.click(self.middle(entry))
        else:
            self.move_to(self.middle(entry))
        return poll(lambda: self.shown_submenu(entry), f"the submenu {entry}", self.patience)

    def entry(self, title, entries, holding=None):
        """The item of a title; `holding` says what its submenu has, where others have its title."""
        fitting = [entry for entry in entries if entry.title == title]
        if holding is not None:
            fitting = [entry for entry in fitting if holding in titles(self.submenu(entry))]
        if not fitting:
            raise AssertionError(f"no item {title!r} in {entries}")
        return fitting[-1]

    def press(self, entry):
        self.click(self.middle(entry))
        self.wait_for_no_menu()

    def middle(self, entry):
        """The middle of an item on the screen, once it stands still."""
        def settled():
            before = self._middle(entry)
            time.sleep(PAUSE)
            return before if before == self._middle(entry) else None
        return poll(settled, f"{entry} to stand still")

    def _middle(self, entry):
        return entry.item.middle

    def choose(self, *path):
        """Clicks through the open menu; the last but one title is the submenu's."""
        entries = poll(self.menu, "a menu")
        if len(path) == 2:
            entries = self.open_submenu(self.entry(path[0], entries, holding=path[1]))
        self.press(self.entry(path[-1], entries))

    def choose_by_keys(self, *path):
        """Walks the open menu with the keyboard."""
        entries = poll(self.menu, "a menu")
        if len(path) == 2:
            parent = self.entry(path[0], entries, holding=path[1])
            self._walk_to(parent, self.menu)
            self.key(self.key_into_submenu)
            entries = poll(lambda: self.shown_submenu(parent), f"the submenu {parent}")
            self._walk_to(self.entry(path[-1], entries), lambda: self.shown_submenu(parent))
        else:
            self._walk_to(self.entry(path[-1], entries), self.menu)
        self.key("Return")
        self.wait_for_no_menu()

    def _walk_to(self, wanted, entries):
        for _ in range(LONGEST_MENU):
            with contextlib.suppress(Gone):
                if any(entry.is_selected and entry.item == wanted.item for entry in entries()):
                    return
            self.key("Down")
            time.sleep(0.05)
        raise AssertionError(f"no key leads to {wanted}")

    def close_menu(self):
        for _ in range(3):
            if not self.menu():
                return
            self.key("Escape")
            time.sleep(0.2)
        self.wait_for_no_menu()

    def wait_for_no_menu(self):
        def is_closed():
            with contextlib.suppress(Gone):
                return not self.menu()
            return True
        poll(is_closed, "the menu to close", self.patience)
