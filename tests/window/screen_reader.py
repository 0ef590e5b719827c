"""The real window as assistive technology sees it."""

import contextlib

import gi

gi.require_version("Atspi", "2.0")
from gi.repository import Atspi, GLib  # noqa: E402
from waiting import DEADLINE, Disturbed, wait_until  # noqa: E402

State = Atspi.StateType

# An answer that is not waited for comes all the same: what was asked for would be done twice.
Atspi.set_timeout(DEADLINE * 1000, DEADLINE * 1000)

# Asking each element for its interfaces would take most of a test's time.
FIELDS = {"text", "entry", "password text", "spin button", "terminal"}


class Element:
    """One thing on the screen."""

    def __init__(self, accessible):
        self.accessible = accessible

    @property
    def name(self):
        return self.accessible.get_name() or ""

    @property
    def role(self):
        return self.accessible.get_role_name()

    @property
    def description(self):
        return self.accessible.get_description() or ""

    @property
    def content(self):
        """What has been typed into a field."""
        if self.role not in FIELDS:
            return ""
        return Atspi.Text.get_text(self.accessible, 0, -1)

    def has(self, state):
        return self.accessible.get_state_set().contains(state)

    @property
    def is_showing(self):
        return self.has(State.SHOWING)

    @property
    def is_focused(self):
        return self.has(State.FOCUSED)

    @property
    def is_enabled(self):
        return self.has(State.ENABLED)

    @property
    def children(self):
        """All of them as they were at one moment; Disturbed when they change meanwhile."""
        count = self.accessible.get_child_count()
        children = [self.accessible.get_child_at_index(index) for index in range(count)]
        if any(child is None for child in children) or self.accessible.get_child_count() != count:
            raise Disturbed(f"the children of {self}")
        return [Element(child) for child in children]

    def walk(self, hidden=False):
        """This and all below it in the order of reading; without `hidden` what can be seen alone."""
        if hidden or self.is_showing or self.role == "application":
            yield self
            for child in self.children:
                yield from child.walk(hidden)

    def press(self):
        if not Atspi.Action.do_action(self.accessible, 0):
            raise Disturbed(f"{self}, which cannot be pressed")

    def focus(self):
        """Until it has the keyboard."""
        assert Atspi.Component.grab_focus(self.accessible)
        wait_until(lambda: self.is_focused, lambda: f"the focus on {self}")

    def write(self, text):
        """Puts the text into a field, in place of what is there."""
        assert Atspi.EditableText.set_text_contents(self.accessible, text)

    def shortcut(self):
        return Atspi.Action.get_key_binding(self.accessible, 0)

    def bounds(self):
        """Left, top, width, height on the screen."""
        area = Atspi.Component.get_extents(self.accessible, Atspi.CoordType.SCREEN)
        return area.x, area.y, area.width, area.height

    def __eq__(self, other):
        return isinstance(other, Element) and self.accessible == other.accessible

    def __repr__(self):
        return f"{self.role} {self.name!r}"


def application(process):
    """The program with this process id, once it has announced itself."""

    def find():
        desktop = Atspi.get_desktop(0)
        for index in range(desktop.get_child_count()):
            candidate = desktop.get_child_at_index(index)
            try:
                if candidate is not None and candidate.get_process_id() == process:
                    return candidate
            except GLib.Error:
                pass  # one that is just leaving
        return None

    found = wait_until(find, "the program on the accessibility bus")
    # Everything is asked anew: the window changes behind the cache.
    found.set_cache_mask(Atspi.Cache.NONE)
    return Element(found)


def take_in_events():
    """What has been announced up to now: a program's answer comes after all that it has announced before."""
    desktop = Atspi.get_desktop(0)
    for index in range(desktop.get_child_count()):
        with contextlib.suppress(GLib.Error):  # one that is just leaving
            if program := desktop.get_child_at_index(index):
                program.get_name()
    while GLib.MainContext.default().iteration(False):
        pass


class FocusWatch:
    """Where the keyboard's focus goes, as the program announces it."""

    MOST = 200  # steps to anywhere

    def __init__(self):
        self.reached = []
        self._listener = Atspi.EventListener.new(self._take)
        self._listener.register("object:state-changed:focused")

    def _take(self, event):
        if event.detail1:
            self.reached.append(Element(event.source))

    def after(self, press):
        """Where the focus goes when this is done, which moves it. Where it is may be announced more than once."""
        take_in_events()
        before = self.reached[-1:]
        press()
        wait_until(lambda: self.reached[-1:] != before, lambda: f"the focus after {before}")
        # One key may lead there in more than one step.
        take_in_events()
        return self.reached[-1]

    def go_to(self, name, press):
        """Does this until the focus is on the element of that name."""
        take_in_events()
        start = len(self.reached)
        while not self.reached or self.reached[-1].name != name:
            self.after(press)
            assert len(self.reached) < start + self.MOST, f"no {name!r} in {self.reached[start:]}"

    def stop(self):
        self._listener.deregister("object:state-changed:focused")


class AppearanceWatch:
    """The names of what comes into sight, as the program announces it; for what may be gone again when one looks.

    It is to be there before the program, which would be told of it some time later otherwise.
    """

    def __init__(self):
        self.names = []
        self._listener = Atspi.EventListener.new(self._take)
        self._listener.register("object:state-changed:showing")

    def _take(self, event):
        try:
            if event.detail1:
                self.names.append(event.source.get_name())
        except GLib.Error:
            pass  # gone already

    def stop(self):
        self._listener.deregister("object:state-changed:showing")


class DescriptionWatch:
    """The descriptions that change, as the program announces them; to be there before the program as well."""

    def __init__(self):
        self.descriptions = []
        self._listener = Atspi.EventListener.new(self._take)
        self._listener.register("object:property-change:accessible-description")

    def _take(self, event):
        with contextlib.suppress(GLib.Error):  # gone already
            self.descriptions.append(event.source.get_description())

    def stop(self):
        self._listener.deregister("object:property-change:accessible-description")
