"""Drives the settings window from outside, by the keyboard and as a screen reader does. Whatever is waited for is
waited for by its condition."""

import subprocess

from accessible import (
    BUTTON, CHECK_BOX, DIALOG, FIELD, GROUP, LIST, POP_UP, RADIO_BUTTON, SPIN_BUTTON, TEXTS, WINDOW, Atspi, Item,
    application, wait_for,
)


def keys(*names):
    subprocess.run(["xdotool", "key", *names], check=True)


class Place(Item):
    """A part of the window in which controls are addressed by their visible names."""

    def all(self, role, name=None):
        return [item for item in self.showing() if item.role == role and name in (None, item.name)]

    def find(self, role, name, then=None):
        """Exactly one; a name that stands for two things here helps nobody who cannot see them. It is the one with
        which `then` succeeds: what is replaced at that very moment is looked for again."""

        def look():
            found = self.all(role, name)
            return found[0] if len(found) == 1 and (then is None or then(found[0])) else None

        return wait_for(lambda: f"exactly one “{name}” within {self}", look)

    def group(self, name):
        return Place(self.find(GROUP, name).accessible)

    card = group

    def groups(self):
        return self.all(GROUP)

    def texts(self):
        return [item.name for item in self.showing() if item.role in TEXTS]

    def reads(self, *texts):
        """Waits until all of these are to be read here."""
        wait_for(lambda: f"{texts} within {self}", lambda: set(texts) <= set(self.texts()))

    def reads_no(self, text):
        wait_for(lambda: f"“{text}” gone from {self}", lambda: text not in self.texts())

    def switch(self, name, to):
        """By Space, back by Return, and again as a screen reader does."""
        item = self.find(CHECK_BOX, name, then=Item.takes_focus)
        turned = lambda on: wait_for(lambda: f"{item} to be {'on' if on else 'off'}", lambda: item.is_on == on)
        assert item.is_on != to, f"{item} is so already"
        for key, on in (("space", to), ("Return", not to)):
            keys(key)
            turned(on)
        item.act("Toggle")
        turned(to)

    def step(self, name, to, reading, least, most, by):
        """Tries both ends of the range and a step, then leaves it at a number that reads so."""
        item = self.find(SPIN_BUTTON, name)
        is_at = lambda number: wait_for(lambda: f"{item} at {number}", lambda: item.value == number)
        for end, inwards, edge, next_ in (("End", "Down", most, most - by), ("Home", "Up", least, least + by)):
            item.focus()
            keys(end, "Up" if end == "End" else "Down", inwards)
            is_at(next_)
            keys(end)
            is_at(edge)
        Atspi.Value.set_current_value(item.accessible, to)
        is_at(to)
        assert item.text == reading, f"{item} is read as “{item.text}”, not “{reading}”"

    def entry(self, pop_up, choice, then=lambda entry: True):
        """Of the opened list, also where that must be scrolled to show it."""

        def look():
            entries = [entry for list_ in Place(pop_up.accessible).all(LIST) for entry in list_.children()]
            return next((entry for entry in entries if entry.name == choice and then(entry)), None)

        return wait_for(lambda: f"“{choice}” in the list of {pop_up}", look)

    def choose(self, name, choice, key=None):
        """As a screen reader does; or by the keyboard, with a key that leads to the choice."""
        if key:
            item = self.find(POP_UP, name, then=Item.takes_focus)
            keys("Return")
            entry = self.entry(item, choice)
            keys(key)
            wait_for(lambda: f"keyboard focus on {entry}", lambda: entry.has(Atspi.StateType.FOCUSED))
            keys("Return")
        else:
            item = self.find(POP_UP, name, then=lambda item: item.act("Press", "ShowMenu"))
            self.entry(item, choice, then=lambda entry: entry.act("Toggle"))
        wait_for(lambda: f"{item} at “{choice}”", lambda: item.description == choice)

    def type(self, name, text):
        """Letter by letter on the keyboard, in place of what is there."""
        assert text.isascii(), "other letters borrow a key, and may come when it is already given back"
        item = self.find(FIELD, name, then=Item.takes_focus)
        keys("ctrl+a")
        subprocess.run(["xdotool", "type", "--delay", "0", text], check=True)
        wait_for(lambda: f"{item} to hold “{text}”", lambda: item.text == text)

    def write(self, name, text):
        """As dictation and braille keyboards do, in place of what is there."""
        item = self.find(FIELD, name, then=lambda item: Atspi.EditableText.set_text_contents(item.accessible, text))
        wait_for(lambda: f"{item} to hold {len(text)} characters", lambda: item.text == text)

    def press(self, name, key=None):
        """As a screen reader does, or by a key."""
        self.find(BUTTON, name, then=Item.takes_focus if key else lambda button: button.act("Press"))
        if key:
            keys(key)


class Window(Place):
    """The settings window, once it is there."""

    def __init__(self):
        super().__init__(wait_for("the settings window", self._look).accessible)

    @staticmethod
    def _look():
        program = application()
        for window in program.children() if program else ():
            if window.name == "Pavonel" and window.role == WINDOW and window.has(Atspi.StateType.SHOWING):
                return window
        return None

    def page(self, title):
        entry = self.group("Pages").find(RADIO_BUTTON, title, then=lambda entry: entry.act("Toggle"))
        wait_for(lambda: f"{entry} to be chosen", lambda: entry.is_on)
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
        """A window that was opened over this one, once it has the keyboard: else the window manager might give it the
        keyboard when it is already closed."""

        def look():
            for window in application().children():
                if window.name == title and window.has(Atspi.StateType.ACTIVE):
                    return Place(window.accessible)
            return None

        return wait_for(f"the window “{title}”", look)

    def focused(self):
        """The path of names to what has the keyboard: groups, then the thing itself. Nothing while two looks differ:
        each goes from thing to thing, and the keyboard may move meanwhile."""
        path = self._focused(self, ())
        return path if path == self._focused(self, ()) else None

    def _focused(self, item, path):
        for child in item.children():
            if not child.has(Atspi.StateType.SHOWING):
                continue
            # The innermost: what stands for another has its focus too.
            inner = self._focused(child, (*path, child.name) if child.role == GROUP else path)
            if inner:
                return inner
            if child.has(Atspi.StateType.FOCUSED):
                return (*path, child.name)
        return None

    def keyboard_at(self, *path):
        """Waits until the keyboard is there."""
        wait_for(f"the keyboard at {path}", lambda: self.focused() == path)

    def walk(self, title, *stops):
        """Tab leads from the page's entry through these stops, in this order, and back to the entry; Shift+Tab leads
        back. A stop is the names of its groups and its own."""
        stops = [stop if isinstance(stop, tuple) else (stop,) for stop in stops]
        self.find(RADIO_BUTTON, title, then=Item.takes_focus)
        for key, road in (("Tab", stops), ("shift+Tab", stops[::-1])):
            before = ("Pages", title)
            for stop in (*road, ("Pages", title)):
                keys(key)
                found = wait_for(
                    f"{key} to leave {before}",
                    lambda: (found := self.focused()) != before and found,
                )
                assert found == stop, f"{key} leads from {before} to {found}, not to {stop}"
                before = stop
