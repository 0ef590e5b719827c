"""Waiting for what is to happen, for as long as a loaded machine may need."""

import contextlib
import time

import gi

gi.require_version("GLib", "2.0")
from gi.repository import GLib  # noqa: E402

DEADLINE = 60  # seconds
LOOK_AGAIN = 20  # milliseconds, for what nobody announces
LONGEST = 8000  # characters of a complaint


class Disturbed(Exception):
    """What was looked at has changed meanwhile, so that what was seen may be half of it."""


@contextlib.contextmanager
def ticking():
    source = GLib.timeout_add(LOOK_AGAIN, lambda: GLib.SOURCE_CONTINUE)
    try:
        yield
    finally:
        GLib.source_remove(source)


def wait_until(condition, what, deadline=DEADLINE):
    """The condition's first true result. It is looked at again after each report of the accessibility bus and, for what
    is not reported, now and then. Something on the screen that goes while it is looked at is looked for again."""
    context = GLib.MainContext.default()
    end = time.monotonic() + deadline
    with ticking():
        while True:
            while context.iteration(False):
                pass
            trouble = None
            try:
                if result := condition():
                    return result
            except (GLib.Error, Disturbed) as error:
                trouble = error
            if time.monotonic() > end:
                raise AssertionError(f"in vain waited for {_told(what)[:LONGEST]}") from trouble
            context.iteration(True)


def _told(what):
    if not callable(what):
        return str(what)
    try:
        return str(what())
    except (GLib.Error, Disturbed, AssertionError) as error:
        return f"what cannot be told any more: {error!r}"


def undisturbed(look):
    """What is seen at a moment at which nothing goes."""
    return wait_until(lambda: (look(),), "a moment at which nothing goes")[0]
