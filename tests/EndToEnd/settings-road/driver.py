"""Drives the settings window from outside. It knows what a screen reader is told, and nothing else: roles, names
and states. Whatever is waited for is waited for by its condition."""

import subprocess
import time
import warnings

import gi

gi.require_version("Atspi", "2.0")
from gi.repository import Atspi, GLib  # noqa: E402

warnings.simplefilter("ignore", DeprecationWarning)

PATIENCE = 30  # seconds; for a busy machine

CHECK_BOX = Atspi.Role.CHECK_BOX
RADIO_BUTTON = Atspi.Role.RADIO_BUTTON
SPIN_BUTTON = Atspi.Role.SPIN_BUTTON
POP_UP = Atspi.Role.COMBO_BOX
FIELD = Atspi.Role.TEXT
BUTTON = Atspi.Role.PUSH_BUTTON
GROUP = Atspi.Role.PANEL
LIST = Atspi.Role.LIST
LIST_ITEM = Atspi.Role.LIST_ITEM
WINDOW = Atspi.Role.FRAME
DIALOG = Atspi.Role.DIALOG
TEXTS = (Atspi.Role.LABEL, Atspi.Role.HEADING)


def wait_for(what, condition):
    """The first true value of the condition."""
    deadline = time.monotonic() + PATIENCE
    while True:
        try:
            value = condition()
        except GLib.Error:  # what was there a moment ago is gone
            value = None
        if value:
            return value
        assert time.monotonic() < deadline, f"waited in vain for: {what}"
        time.sleep(0.02)


def keys(*names):
    subprocess.run(["xdotool", "key", *names], check=True)


class Item:
    """One thing that assistive technology is told of."""

    def __init__(self, accessible):
        self.accessible = accessible

    def __eq__(self, other):
        return isinstance(other, Item) and self.accessible == other.accessible

    def __str__(self):
        return f"{self.accessible.get_role_name()} “{self.name}”"

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
        return self.accessible.get_state_set().contains(state)

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
            if child is not None:
                yield Item(child)

    def showing(self):
        """Everything within this that is shown, in reading order."""
        for child in self.children():
            states = child.accessible.get_state_set()
            if states.contains(Atspi.StateType.SHOWING):
                yield child
                yield from child.showing()

    def act(self, *actions):
        """The first of these actions that it has."""
        count = Atspi.Action.get_n_actions(self.accessible)
        own = [Atspi.Action.get_action_name(self.accessible, index) for index in range(count)]
        for action in actions:
            if action in own:
                Atspi.Action.do_action(self.accessible, own.index(action))
                return
        raise AssertionError(f"{self} has none of {actions}, only {own}")

    def focus(self):
        Atspi.Component.grab_focus(self.accessible)
        wait_for(f"keyboard focus on {self}", lambda: self.has(Atspi.StateType.FOCUSED))

    def frame(self):
        extents = Atspi.Component.get_extents(self.accessible, Atspi.CoordType.SCREEN)
        return extents.x, extents.y, extents.width, extents.height


class Place(Item):
    """A part of the window in which controls are addressed by their visible names."""

    def all(self, role, name=None):
        return [item for item in self.showing() if item.role == role and name in (None, item.name)]

    def find(self, role, name):
        """Exactly one; a name that stands for two things here helps nobody who cannot see them."""
        found = wait_for(f"“{name}” within {self}", lambda: self.all(role, name))
        assert len(found) == 1, f"{self} has {len(found)} of the name “{name}”"
        return found[0]

    def group(self, name):
        return Place(self.find(GROUP, name).accessible)

    card = group

    def groups(self):
        return self.all(GROUP)

    def texts(self):
        return [item.name for item in self.showing() if item.role in TEXTS]

    def reads(self, *texts):
        """Waits until all of these are to be read here."""
        wait_for(f"{texts} within {self}", lambda: set(texts) <= set(self.texts()))

    def reads_no(self, text):
        wait_for(f"“{text}” gone from {self}", lambda: text not in self.texts())

    def switch(self, name, to):
        """By Space, back by Return, and again as a screen reader does."""
        item = self.find(CHECK_BOX, name)
        turned = lambda on: wait_for(f"{item} to be {'on' if on else 'off'}", lambda: item.is_on == on)
        assert item.is_on != to, f"{item} is so already"
        item.focus()
        for key, on in (("space", to), ("Return", not to)):
            keys(key)
            turned(on)
        item.act("Toggle")
        turned(to)

    def step(self, name, to, reading, least, most, by):
        """Tries both ends of the range and a step, then leaves it at a number that reads so."""
        item = self.find(SPIN_BUTTON, name)
        is_at = lambda number: wait_for(f"{item} at {number}, not {item.value}", lambda: item.value == number)
        for end, inwards, edge, next_ in (("End", "Down", most, most - by), ("Home", "Up", least, least + by)):
            item.focus()
            keys(end, "Up" if end == "End" else "Down", inwards)
            is_at(next_)
            keys(end)
            is_at(edge)
        Atspi.Value.set_current_value(item.accessible, to - by)
        is_at(to - by)
        item.act("Increase")
        is_at(to)
        self.reads(reading)
        assert item.description == reading, f"{item} is described as “{item.description}”, not “{reading}”"

    def choose(self, name, choice, key=None):
        """As a screen reader does; or by the keyboard, with a key that leads to the choice."""
        item = self.find(POP_UP, name)
        if key:
            item.focus()
            keys("Return")
        else:
            item.act("Press", "ShowMenu")
        entry = Place(item.accessible).find(LIST_ITEM, choice)
        if key:
            keys(key)
            wait_for(f"keyboard focus on {entry}", lambda: entry.has(Atspi.StateType.FOCUSED))
            keys("Return")
        else:
            entry.act("Press")
        wait_for(f"{item} at “{choice}”, not “{item.description}”", lambda: item.description == choice)

    def type(self, name, text):
        """Letter by letter on the keyboard, in place of what is there."""
        item = self.find(FIELD, name)
        item.focus()
        keys("ctrl+a")
        subprocess.run(["xdotool", "type", "--delay", "0", text], check=True)
        wait_for(f"{item} to hold “{text}”, not “{item.text}”", lambda: item.text == text)

    def write(self, name, text):
        """As dictation and braille keyboards do, in place of what is there."""
        item = self.find(FIELD, name)
        Atspi.EditableText.set_text_contents(item.accessible, text)
        wait_for(f"{item} to hold {len(text)} characters", lambda: item.text == text)

    def press(self, name, key=None):
        """As a screen reader does, or by a key."""
        button = self.find(BUTTON, name)
        if key:
            button.focus()
            keys(key)
        else:
            button.act("Press")

    @property
    def window(self):
        return Window.the_one


class Window(Place):
    """The settings window, once it is there."""

    the_one = None

    def __init__(self):
        super().__init__(wait_for("the settings window", self._look).accessible)
        Window.the_one = self

    @staticmethod
    def application():
        desktop = Item(Atspi.get_desktop(0))
        return next((child for child in desktop.children() if child.name == "pavonel"), None)

    @classmethod
    def _look(cls):
        application = cls.application()
        for window in application.children() if application else ():
            if window.name == "Pavonel" and window.role == WINDOW and window.has(Atspi.StateType.SHOWING):
                return window
        return None

    def page(self, title):
        entry = Place(self.find(LIST, "Pages").accessible).find(LIST_ITEM, title)
        entry.act("Press")
        wait_for(f"{entry} to be selected", lambda: entry.has(Atspi.StateType.SELECTED))
        return wait_for(f"the page “{title}”", lambda: self._page(title))

    def _page(self, title):
        for child in self.children():
            if child.name == title and child.has(Atspi.StateType.SHOWING):
                page = Place(child.accessible)
                return page if title in page.texts() else None
        return None

    def dialog(self, name):
        """A sheet on the window."""
        return Place(self.find(DIALOG, name).accessible)

    def opened(self, title):
        """A window that was opened over this one."""

        def look():
            for window in self.application().children():
                if window.name == title and window.has(Atspi.StateType.SHOWING):
                    return Place(window.accessible)
            return None

        return wait_for(f"the window “{title}”", look)

    def focused(self):
        """The path of names to what has the keyboard: groups, then the thing itself."""

        def look(item, path):
            for child in item.children():
                states = child.accessible.get_state_set()
                if not states.contains(Atspi.StateType.SHOWING):
                    continue
                # The innermost: what stands for another has its focus too.
                inner = look(child, (*path, child.name) if child.role == GROUP else path)
                if inner:
                    return inner
                if states.contains(Atspi.StateType.FOCUSED):
                    return (*path, child.name), child
            return None

        return look(self, ())

    def walk(self, title, *stops):
        """Tab leads from the page's entry through these stops, in this order, and back to the entry; Shift+Tab leads
        back. A stop is the names of its groups and its own."""
        stops = [stop if isinstance(stop, tuple) else (stop,) for stop in stops]
        self.find(LIST_ITEM, title).focus()
        for key, road in (("Tab", stops), ("shift+Tab", stops[::-1])):
            before = (title,)
            for stop in (*road, (title,)):
                keys(key)
                found = wait_for(
                    f"{key} to leave {before}",
                    lambda: (found := self.focused()) and found[0] != before and found,
                )
                assert found[0] == stop, f"{key} leads from {before} to {found[0]}, not to {stop}"
                before = stop
