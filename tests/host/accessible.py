"""The accessibility tree of the running programs, as a screen reader gets it over the bus."""

from gi.repository import Gio, GLib

ACCESSIBILITY = "org.a11y.atspi."
ROOT = "/org/a11y/atspi/accessible/root"
SCREEN_COORDINATES = 0
CALL_MILLISECONDS = 10_000

# The bits of the standard's state set that are asked for here.
STATES = {"checked": 4, "editable": 7, "enabled": 8, "focusable": 11, "focused": 12,
          "selected": 23, "sensitive": 24, "showing": 25, "visible": 30}


class Gone(LookupError):
    """The object has left the tree since it was found."""


class Accessible:
    """An object of the tree. What it tells is asked for at each call; Gone when it has left."""

    def __init__(self, bus, owner, path):
        self._bus = bus
        self.owner = owner
        self.path = path

    def __eq__(self, other):
        return (self.owner, self.path) == (other.owner, other.path)

    def __hash__(self):
        return hash((self.owner, self.path))

    def __repr__(self):
        try:
            return f"<{self.role} {self.name!r}>"
        except Gone:
            return "<gone>"

    def call(self, interface, method, signature="()", *arguments):
        parameters = GLib.Variant(signature, arguments)
        try:
            answer = self._bus.call_sync(self.owner, self.path, interface, method, parameters, None,
                                         Gio.DBusCallFlags.NONE, CALL_MILLISECONDS, None)
        except GLib.Error as error:
            raise Gone(f"{method} of {self.path}: {error.message}") from error
        values = answer.unpack()
        return values[0] if len(values) == 1 else values

    def _property(self, interface, name):
        return self.call("org.freedesktop.DBus.Properties", "Get", "(ss)",
                         ACCESSIBILITY + interface, name)

    def _other(self, reference):
        return Accessible(self._bus, *reference)

    @property
    def name(self):
        return self._property("Accessible", "Name")

    @property
    def description(self):
        return self._property("Accessible", "Description")

    @property
    def role(self):
        return self.call(ACCESSIBILITY + "Accessible", "GetRoleName")

    @property
    def interfaces(self):
        return {name.removeprefix(ACCESSIBILITY)
                for name in self.call(ACCESSIBILITY + "Accessible", "GetInterfaces")}

    @property
    def states(self):
        low, high = self.call(ACCESSIBILITY + "Accessible", "GetState")
        bits = low | high << 32
        return {state for state, bit in STATES.items() if bits >> bit & 1}

    @property
    def children(self):
        return [self._other(reference)
                for reference in self.call(ACCESSIBILITY + "Accessible", "GetChildren")]

    @property
    def parent(self):
        return self._other(self._property("Accessible", "Parent"))

    @property
    def extents(self):
        """Left, top, width and height on the screen, in pixels."""
        return self.call(ACCESSIBILITY + "Component", "GetExtents", "(u)", SCREEN_COORDINATES)

    @property
    def middle(self):
        left, top, width, height = self.extents
        return left + width // 2, top + height // 2

    @property
    def text(self):
        """The text of a field or an editor."""
        return self.call(ACCESSIBILITY + "Text", "GetText", "(ii)", 0, -1)

    @property
    def actions(self):
        return [action[0] for action in self.call(ACCESSIBILITY + "Action", "GetActions")]

    @property
    def row_count(self):
        return self._property("Table", "NRows")

    @property
    def column_count(self):
        return self._property("Table", "NColumns")

    def cell(self, row, column):
        """The cell of a table, both counted from 0."""
        return self._other(self.call(ACCESSIBILITY + "Table", "GetAccessibleAt", "(ii)",
                                     row, column))

    def has(self, state):
        return state in self.states

    def descendants(self, role=None):
        """All objects below this one that are showing, from the first to the last; what is below
        a table is its cells, and is left out."""
        for child in self.children:
            states = child.states
            if "showing" not in states:
                continue
            child_role = child.role
            if role is None or child_role == role:
                yield child
            if child_role != "table":
                yield from child.descendants(role)

    def find(self, role, name):
        """The first showing object of a role and a name below this one; None when there is none."""
        return next((each for each in self.descendants(role) if each.name == name), None)


def open_accessibility_bus(session_bus_address):
    """The connection to the bus that accessible programs are on; starts that bus if needed."""
    flags = (Gio.DBusConnectionFlags.AUTHENTICATION_CLIENT
             | Gio.DBusConnectionFlags.MESSAGE_BUS_CONNECTION)
    session_bus = Gio.DBusConnection.new_for_address_sync(session_bus_address, flags, None, None)
    address = session_bus.call_sync("org.a11y.Bus", "/org/a11y/bus", "org.a11y.Bus", "GetAddress",
                                    None, None, Gio.DBusCallFlags.NONE, CALL_MILLISECONDS,
                                    None).unpack()[0]
    session_bus.close_sync(None)
    return Gio.DBusConnection.new_for_address_sync(address, flags, None, None)


def programs_on(bus):
    """The programs that show something."""
    return Accessible(bus, ACCESSIBILITY + "Registry", ROOT).children


class FocusWatch:
    """Knows the object that has the keyboard, as programs tell it; a table's cell or an editor in
    it is one too. To be made before the focus moves.
    """

    def __init__(self, bus):
        self._bus = bus
        self._focused = None
        bus.call_sync(ACCESSIBILITY + "Registry", "/org/a11y/atspi/registry",
                      ACCESSIBILITY + "Registry", "RegisterEvent",
                      GLib.Variant("(s)", ("object:state-changed:focused",)), None,
                      Gio.DBusCallFlags.NONE, CALL_MILLISECONDS, None)
        bus.signal_subscribe(None, ACCESSIBILITY + "Event.Object", "StateChanged", None, None,
                             Gio.DBusSignalFlags.NONE, self._changed)

    def _changed(self, _bus, sender, path, _interface, _signal, parameters):
        state, is_set = parameters.unpack()[:2]
        if state == "focused" and is_set:
            self._focused = Accessible(self._bus, sender, path)

    @property
    def focused(self):
        """What got the keyboard last; None before anything did."""
        while GLib.MainContext.default().iteration(False):
            pass
        return self._focused
