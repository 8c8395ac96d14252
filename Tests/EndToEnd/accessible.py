"""The running program as a screen reader sees it, over AT-SPI."""

import re

import gi

gi.require_version("Atspi", "2.0")
from gi.repository import Atspi, GLib  # noqa: E402

from robustness import Failed, wait_until  # noqa: E402

# Containers and decoration need no name: screen readers skip them.
UNNAMED_ROLES = {"filler", "frame", "layered-pane", "menu-bar", "panel", "scroll-bar", "scroll-pane",
                 "separator", "split-pane", "unknown", "viewport"}
# A folder has no size: its cell in a file panel is empty.
DATA_ROLES = {"table-cell"}
# at-spi2-core 2.54 renamed it.
RENAMED_ROLES = {"button": "push-button"}
# Reading all rows of a long list takes minutes.
ROWS_READ = 50
GONE = (GLib.Error,)


def connect():
    """Call once the session bus of the desktop is in os.environ."""
    Atspi.init()
    Atspi.set_timeout(30000, 30000)


class Announcements:
    """Records the notifications that a screen reader would read out as they appear."""

    def __init__(self):
        self._heard = []
        self._listener = Atspi.EventListener.new(self._on_event)
        self._listener.register("object:state-changed:showing")

    def _on_event(self, event):
        try:
            if event.detail1 and event.source.get_role() == Atspi.Role.NOTIFICATION:
                self._heard.append(event.source.get_name())
        except GONE:
            pass

    def heard(self):
        while GLib.MainContext.default().iteration(False):
            pass
        return self._heard

    def stop(self):
        self._listener.deregister("object:state-changed:showing")


class Node:
    """One accessible object. Every property is queried anew on each access."""

    def __init__(self, accessible):
        self._it = accessible

    def __eq__(self, other):
        return self._it == other._it

    __hash__ = None

    @property
    def name(self):
        return self._it.get_name()

    @property
    def description(self):
        return self._it.get_description()

    @property
    def role(self):
        nick = self._it.get_role().value_nick
        return RENAMED_ROLES.get(nick, nick)

    @property
    def states(self):
        return {state.value_nick for state in self._it.get_state_set().get_states()}

    @property
    def text(self):
        return Atspi.Text.get_text(self._it, 0, -1)

    @property
    def value(self):
        """(current, smallest, largest)"""
        return (Atspi.Value.get_current_value(self._it), Atspi.Value.get_minimum_value(self._it),
                Atspi.Value.get_maximum_value(self._it))

    @property
    def center(self):
        box = Atspi.Component.get_extents(self._it, Atspi.CoordType.SCREEN)
        return box.x + box.width / 2, box.y + box.height / 2

    @property
    def children(self):
        count = min(self._it.get_child_count(), ROWS_READ)
        found = (self._it.get_child_at_index(index) for index in range(count))
        return [Node(child) for child in found if child is not None]

    @property
    def labels(self):
        """The names of the labels of this object."""
        return [relation.get_target(index).get_name()
                for relation in self._it.get_relation_set()
                if relation.get_relation_type() == Atspi.RelationType.LABELLED_BY
                for index in range(relation.get_n_targets())]

    def is_enabled(self):
        return {"enabled", "sensitive"} <= self.states

    def is_checked(self):
        return bool({"checked", "pressed"} & self.states)

    def do(self, action):
        for index in range(Atspi.Action.get_n_actions(self._it)):
            if Atspi.Action.get_action_name(self._it, index).lower() == action.lower():
                Atspi.Action.do_action(self._it, index)
                return
        raise Failed(f"{self} has no action {action}")

    def press(self):
        self.do("Press")

    def set_text(self, text):
        Atspi.EditableText.set_text_contents(self._it, text)

    def showing(self):
        """This object and everything showing in it, parents first."""
        yield self
        for child in self.children:
            if "showing" in child.states:
                yield from child.showing()

    def find(self, role=None, name=None):
        """The first object showing with this role (or one of a set of roles) and this name (or one
        that a pattern matches), or None."""
        def fits(wanted, actual):
            if wanted is None:
                return True
            if isinstance(wanted, set):
                return actual() in wanted
            if isinstance(wanted, re.Pattern):
                return wanted.search(actual())
            return actual() == wanted
        try:
            for node in self.showing():
                if fits(role, lambda: node.role) and fits(name, lambda: node.name):
                    return node
        except GONE:
            pass
        return None

    def wait_for(self, role=None, name=None, seconds=60.0):
        return wait_until(lambda: self.find(role, name),
                          lambda: f"{role} {name!r} in\n{self.outline()}", seconds)

    def combo(self, label):
        """The combo box with this label; its own name is the current choice."""
        return next(node for node in self.showing()
                    if node.role == "combo-box" and label in node.labels)

    def texts(self):
        """The names of everything showing."""
        try:
            return [node.name for node in self.showing()]
        except GONE:
            return []

    def wait_for_text(self, text, seconds=60.0):
        wait_until(lambda: text in self.texts(), lambda: f"{text!r} in\n{self.outline()}", seconds)

    def unnamed(self):
        """Objects without a name at which a screen reader stops."""
        return [str(node) for node in self.showing() if not node.name and node.role not in DATA_ROLES
                and (node.role not in UNNAMED_ROLES or "focusable" in node.states)]

    def outline(self):
        try:
            return "\n".join(f"  {node}" for node in self.showing())
        except GONE:
            return "  (the objects are changing)"

    def __str__(self):
        return f"{self.role} {self.name!r} [{' '.join(sorted(self.states))}]"


def applications():
    """(process id, application) of everything on the bus."""
    desktop = Atspi.get_desktop(0)
    desktop.set_cache_mask(Atspi.Cache.NONE)
    found = []
    for index in range(desktop.get_child_count()):
        child = desktop.get_child_at_index(index)
        if child is None:
            continue
        try:
            found.append((child.get_process_id(), child))
        except GONE:
            pass
    return found


def application(pid):
    """The application of this process, or None if it is not on the accessibility bus yet."""
    for owner, accessible in applications():
        if owner == pid:
            accessible.set_cache_mask(Atspi.Cache.NONE)
            return Node(accessible)
    return None
