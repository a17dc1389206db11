"""What a screen reader is told: roles, names and states, of things that may change and go at any time. A script that
fails tells what was shown at its end."""

import sys
import time
import warnings

import gi

gi.require_version("Atspi", "2.0")
from gi.repository import Atspi, GLib  # noqa: E402

warnings.simplefilter("ignore", DeprecationWarning)

TIMEOUT = 120  # seconds; for a busy machine
Atspi.set_timeout(TIMEOUT * 1000, 0)  # its own would take a program for gone that is only slow

CHECK_BOX = Atspi.Role.CHECK_BOX
RADIO_BUTTON = Atspi.Role.RADIO_BUTTON
SPIN_BUTTON = Atspi.Role.SPIN_BUTTON
POP_UP = Atspi.Role.COMBO_BOX
FIELD = Atspi.Role.TEXT
BUTTON = Atspi.Role.PUSH_BUTTON
GROUP = Atspi.Role.PANEL
LIST = Atspi.Role.LIST
WINDOW = Atspi.Role.FRAME
DIALOG = Atspi.Role.DIALOG
TEXTS = (Atspi.Role.LABEL, Atspi.Role.HEADING)


class Gone(Exception):
    """For what the library tells without an exception: what was there a moment ago is gone."""


def wait_for(what, condition):
    """The first true value of the condition. When it never comes, `what` is told: a text, or what gives one then."""
    deadline = time.monotonic() + TIMEOUT
    while True:
        try:
            value = condition()
        except (GLib.Error, Gone):
            value = None
        if value:
            return value
        assert time.monotonic() < deadline, f"waited in vain for: {what() if callable(what) else what}"
        time.sleep(0.02)


class Item:
    """One thing that assistive technology is told of."""

    def __init__(self, accessible):
        self.accessible = accessible

    def __eq__(self, other):
        return isinstance(other, Item) and self.accessible == other.accessible

    def __str__(self):
        try:
            return f"{self.accessible.get_role_name()} “{self.name}”"
        except GLib.Error:
            return "what is gone"

    @property
    def name(self):
        return self.accessible.get_name()

    @property
    def role(self):
        return self.accessible.get_role()

    @property
    def description(self):
        return self.accessible.get_description()

    def has(self, state):
        states = self.accessible.get_state_set()
        if states.contains(Atspi.StateType.DEFUNCT):
            raise Gone
        return states.contains(state)

    @property
    def is_on(self):
        return self.has(Atspi.StateType.CHECKED)

    @property
    def value(self):
        return Atspi.Value.get_current_value(self.accessible)

    @property
    def text(self):
        return Atspi.Text.get_text(self.accessible, 0, -1)

    def children(self):
        for index in range(self.accessible.get_child_count()):
            child = self.accessible.get_child_at_index(index)
            if child is None:
                raise Gone
            yield Item(child)

    def showing(self):
        """Everything within this that is shown, in reading order."""
        for child in self.children():
            if child.has(Atspi.StateType.SHOWING):
                yield child
                yield from child.showing()

    def act(self, *actions):
        """The first of these actions that it has."""
        count = Atspi.Action.get_n_actions(self.accessible)
        own = [Atspi.Action.get_action_name(self.accessible, index) for index in range(count)]
        action = next((action for action in actions if action in own), None)
        assert action, f"{self} has none of {actions}, only {own}"
        return Atspi.Action.do_action(self.accessible, own.index(action))

    def takes_focus(self):
        """Asks for the keyboard; true once it is here."""
        Atspi.Component.grab_focus(self.accessible)
        return self.has(Atspi.StateType.FOCUSED)

    def focus(self):
        wait_for(lambda: f"keyboard focus on {self}", self.takes_focus)


def application():
    """The running program, once assistive technology knows of it; else none."""
    desktop = Item(Atspi.get_desktop(0))
    return next((child for child in desktop.children() if child.name == "pavonel"), None)


def outline(item, depth=0):
    """A line for everything shown within this."""
    for child in item.children():
        if child.has(Atspi.StateType.SHOWING):
            focused = " has the keyboard" if child.has(Atspi.StateType.FOCUSED) else ""
            yield f"{'  ' * depth}{child} {child.description}{focused}"
            yield from outline(child, depth + 1)


def tell_failure(kind, error, trace):
    sys.__excepthook__(kind, error, trace)
    try:
        for line in outline(application()):
            print(line, file=sys.stderr)
    except Exception as obstacle:
        print("there is nothing more to be seen:", repr(obstacle), file=sys.stderr)


sys.excepthook = tell_failure
