"""Something that answers where a display server would."""

import itertools
import os
import socket
from contextlib import contextmanager


@contextmanager
def listening(family: int, address: object):
    with socket.socket(family) as server:
        server.bind(address)
        server.listen()
        yield server


@contextmanager
def x11_display():
    """A value of DISPLAY: of a socket without a file, so that nothing is left in the system's folders."""
    for number in itertools.count(20_000 + os.getpid() % 10_000):
        try:
            with listening(socket.AF_UNIX, f"\0/tmp/.X11-unix/X{number}"):
                yield f":{number}"
                return
        except OSError:
            continue


@contextmanager
def wayland_display(folder):
    """A value of XDG_RUNTIME_DIR in which WAYLAND_DISPLAY=wayland-7 answers."""
    with listening(socket.AF_UNIX, str(folder / "wayland-7")):
        yield str(folder)
