"""Which display answers."""

import os
import socket
import subprocess
from pathlib import Path

import pytest
from displays import listening, wayland_display, x11_display

SCRIPT = Path(__file__).resolve().parents[2] / "scripts/find-display"


def found(**variables: str) -> str:
    finished = subprocess.run(
        [SCRIPT], env={"PATH": os.environ["PATH"]} | variables, capture_output=True, text=True, timeout=60, check=True
    )
    return finished.stdout.strip()


def test_nothing_is_there_without_variables():
    assert found() == "none"


@pytest.mark.parametrize("suffix", ["", ".0"])
@pytest.mark.parametrize("host", ["", "unix"])
def test_x11_on_this_machine(host, suffix):
    with x11_display() as name:
        assert found(DISPLAY=f"{host}{name}{suffix}") == "x11"
    assert found(DISPLAY=f"{host}{name}{suffix}") == "none"


def test_x11_through_a_port():
    for number in range(1000, 1100):
        try:
            with listening(socket.AF_INET, ("127.0.0.1", 6000 + number)):
                assert found(DISPLAY=f"127.0.0.1:{number}.0") == "x11"
        except OSError:
            continue
        assert found(DISPLAY=f"127.0.0.1:{number}.0") == "none"
        return
    pytest.fail("no port is free")


@pytest.mark.parametrize(
    "name", ["", ":", "nonsense", ":x", "127.0.0.1:65535", "127.0.0.1:99999", "::", "a" * 5000 + ":0"]
)
def test_strange_displays_are_none(name):
    assert found(DISPLAY=name) == "none"


def test_wayland(tmp_path):
    with wayland_display(tmp_path) as folder:
        assert found(WAYLAND_DISPLAY="wayland-7", XDG_RUNTIME_DIR=folder) == "wayland"
        assert found(WAYLAND_DISPLAY=f"{folder}/wayland-7") == "wayland"
        assert found(WAYLAND_DISPLAY="wayland-8", XDG_RUNTIME_DIR=folder) == "none"
        assert found(WAYLAND_DISPLAY="", XDG_RUNTIME_DIR=folder) == "none"
    assert found(WAYLAND_DISPLAY="wayland-7", XDG_RUNTIME_DIR=folder) == "none"


def test_wayland_comes_first(tmp_path):
    with wayland_display(tmp_path) as folder, x11_display() as name:
        assert found(WAYLAND_DISPLAY="wayland-7", XDG_RUNTIME_DIR=folder, DISPLAY=name) == "wayland"
        assert found(WAYLAND_DISPLAY="wayland-8", XDG_RUNTIME_DIR=folder, DISPLAY=name) == "x11"
