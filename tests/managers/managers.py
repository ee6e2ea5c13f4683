"""How each of the five file managers is started and used."""

import contextlib
import re

from accessible import FocusWatch, Gone
from manager import INTO_NAME, FileManager, MenuEntry, poll, search, titles
from session import wait_until

# In the trees of GTK 3 and Qt, what has no files below it.
BARS = ("menu bar", "tool bar", "status bar", "statusbar", "menu", "popup menu")


class Gtk3Manager(FileManager):
    """One whose list of files is GTK 3's tree view, and whose menus are windows of their own."""

    _view = None

    def prepare_view(self):
        self._view = None

    def find_item(self, name):
        def fits(child, role):
            return role == "table cell" and child.name == name and child.has("showing")
        try:
            found = search(self._view or self.application, fits, leaves=BARS)
        except Gone:
            self._view = None
            raise
        if found is not None:
            self._view = self._list_of(found)
        return found

    @staticmethod
    def _list_of(cell):
        """The list that a cell is in, maybe in a cell of several."""
        above = cell.parent
        while above.role == "table cell":
            above = above.parent
        return above

    def menu(self):
        for window in self.application.children:
            if window.role != "window" or not window.has("showing"):
                continue
            menu = next((child for child in window.children if child.role == "menu"), None)
            if menu is not None:
                return self.entries(menu)
        return []

    def submenu_of(self, entry):
        return entry.item


class Nemo(Gtk3Manager):
    name = "nemo"
    module_place = ("libnemo-extension", "extensiondir")
    module_pattern = "nemo/extensions-3.0/libtavrin-menu.so"
    settings = {"org/nemo/preferences": {"default-folder-viewer": "'list-view'"}}
    has_emblems = True
    key_of_icons = "ctrl+1"
    key_of_list = "ctrl+2"


class Caja(Gtk3Manager):
    name = "caja"
    module_place = ("libcaja-extension", "extensiondir")
    module_pattern = "caja/extensions-2.0/libtavrin-menu.so"
    arguments = ("--no-desktop",)
    settings = {"org/mate/caja/preferences": {"default-folder-viewer": "'list-view'"}}
    has_emblems = True
    key_of_icons = "ctrl+1"
    key_of_list = "ctrl+2"


class Thunar(Gtk3Manager):
    name = "thunar"
    module_place = ("thunarx-3", "extensionsdir")
    module_pattern = "thunarx-3/libtavrin-menu.so"
    key_of_list = "ctrl+2"

    def prepare_view(self):
        super().prepare_view()
        # It comes up with icons, whose places it does not tell, whatever was shown before.
        poll(lambda: search(self.application, lambda child, role: role == "directory pane"
                            and child.name == "Icon view", leaves=BARS), "the icons")
        self.key(self.key_of_list)


class Nautilus(FileManager):
    """Its windows tell places in themselves, and its menus are part of its window's tree."""

    name = "nautilus"
    module_place = ("libnautilus-extension-4", "extensiondir")
    module_pattern = "nautilus/extensions-4/libtavrin-menu.so"
    arguments = ("--new-window",)
    settings = {"org/gnome/nautilus/preferences": {"default-folder-viewer": "'list-view'"}}
    has_emblems = True
    key_into_submenu = "Return"
    opens_submenus_by_click = True
    patience = 5.0

    def choose(self, *path):
        """It may make an open menu anew, as it learns more of the files, and then loses a click."""
        try:
            super().choose(*path)
        except (AssertionError, Gone):
            shown = titles(self.menu())
            if not shown:
                raise
            super().choose(*(path[-1:] if shown[0] == path[0] else path))

    def open_menu_at(self, point):
        """It may lose a click that comes while it makes its menus anew."""
        try:
            return super().open_menu_at(point)
        except AssertionError:
            return super().open_menu_at(point)

    def open_submenu(self, entry):
        try:
            return super().open_submenu(entry)
        except (AssertionError, Gone):
            return super().open_submenu(self.entry(entry.title, self.menu()))

    def _frame(self):
        return self.application.children[0]

    def find_item(self, name):
        def is_view(_, role):
            return role == "tree grid"
        view = search(self._frame(), is_view, leaves=("tool bar", "list", "menu"))
        if view is None:
            return None
        return search(view, lambda child, role: role == "label" and child.name == name)

    def _point(self, item):
        left, top, width, height = item.extents
        own_left, own_top = self._origin(self.window, self._frame())
        return own_left + left + min(INTO_NAME, width // 2), own_top + top + height // 2

    def _origin(self, window, item):
        """Where the item is that fills the window, whose shadow is around it."""
        left, top, width, height = self._place(window)
        own_left, own_top, own_width, own_height = item.extents
        return (left + (width - own_width) // 2 - own_left,
                top + (height - own_height) // 2 - own_top)

    def _place(self, window):
        words = self.session.run("xdotool", "getwindowgeometry", "--shell", window)
        place = dict(re.findall(r"(\w+)=(-?\d+)", words))
        return tuple(int(place[name]) for name in ("X", "Y", "WIDTH", "HEIGHT"))

    def _popups(self):
        shown = self.session.run("xdotool", "search", "--onlyvisible", "--class",
                                 "org.gnome.Nautilus").split()
        return [window for window in shown if window != self.window]

    def _open_popover(self):
        """The popover that is open and its window; nothing when there is none."""
        for window in reversed(self._popups()):
            size = self._place(window)[2:]
            def fits(child, role, size=size):
                return role == "menu" and child.extents[2:] == size
            popover = search(self._frame(), fits, leaves=("tool bar", "list", "tree grid"))
            if popover is not None:
                return popover, window
        return None

    def menu(self):
        opened = self._open_popover()
        return self.entries(opened[0]) if opened else []

    def entries(self, menu):
        return [entry for entry in self._items(menu) if entry.item.extents[3] > 0]

    def _items(self, root):
        found = []
        for child in root.children:
            if child.role in self.item_roles:
                found.append(MenuEntry(child))
            else:
                found.extend(self._items(child))
        return found

    def _page(self, parent):
        """The part of the popover that comes in when a submenu opens; its first item leads back."""
        def fits(child, _role):
            inner = child.children
            return (len(inner) == 2 and inner[0].role in self.item_roles
                    and inner[0] != parent.item
                    and MenuEntry(inner[0]).title == parent.title
                    and inner[1].role not in self.item_roles)
        opened = self._open_popover()
        return search(opened[0], fits, leaves=self.item_roles) if opened else None

    def submenu(self, entry):
        page = self._page(entry)
        return [] if page is None else self._items(page)[1:]

    def shown_submenu(self, parent):
        page = self._page(parent)
        return [] if page is None else self.entries(page)[1:]

    def _middle(self, entry):
        opened = self._open_popover()
        if opened is None:
            raise Gone(f"the menu of {entry}")
        popover, window = opened
        left, top = self._origin(window, popover)
        x, y = entry.item.middle
        return left + x, top + y


class Dolphin(FileManager):
    name = "dolphin"
    module_pattern = "kf5/kfileitemaction/libtavrin-menu.so"
    trash_location = "trash:/"
    knows_background = False
    opens_submenus_by_click = True

    def environment(self, is_dark):
        environment = super().environment(is_dark)
        plugins = self.modules()[0].parents[2]
        environment["QT_PLUGIN_PATH"] = str(plugins)
        if is_dark:
            environment["QT_STYLE_OVERRIDE"] = "Adwaita-Dark"
            (self.session.config / "kdeglobals").write_text(
                "[Colors:View]\nBackgroundNormal=35,38,41\nForegroundNormal=239,240,241\n")
        return environment

    def in_namespace(self, command):
        return command

    def __init__(self, session, bus):
        super().__init__(session, bus)
        self.focus = FocusWatch(bus)

    def find_item(self, name):
        def fits(child, role):
            return role == "cell" and child.name == name
        return search(self.application, fits, leaves=BARS)

    def _point(self, item):
        return item.middle

    def _popups(self):
        shown = self.session.run("xdotool", "search", "--onlyvisible", "--pid",
                                 str(self.program.pid)).split()
        return [window for window in shown if window != self.window]

    def open_menu_at(self, point):
        self.click(point, button=3)
        wait_until(self._popups, "the menu of dolphin")
        return poll(self._next_item, "the items of dolphin's menu")

    def _next_item(self):
        """Goes to the next item, which leads to the menu in the tree: programs do not list those
        that pop up. Items that were in an earlier menu too tell nothing.
        """
        self.key("Down")
        return self.whole_menu()

    def menu(self):
        if not self._popups():
            return []
        focused = self.focus.focused
        if focused is None or focused.role != "menu item":
            return []
        return self.entries(self._top(focused.parent))

    @staticmethod
    def _top(menu):
        """The menu that a submenu belongs to; what a menu itself belongs to cannot be asked."""
        with contextlib.suppress(Gone):
            while menu.parent.role == "menu item":
                menu = menu.parent.parent
        return menu

    def submenu_of(self, entry):
        return next((child for child in entry.item.children if child.role == "popup menu"), None)


MANAGERS = {manager.name: manager for manager in (Nautilus, Nemo, Caja, Thunar, Dolphin)}
