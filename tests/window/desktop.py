"""A display with a window manager, and what a user does there with keyboard and mouse."""

import contextlib
import os
import select
import subprocess
import tempfile
from pathlib import Path

from waiting import wait_until


class Desktop:
    def __init__(self, size):
        self._processes = []
        self._errors = tempfile.TemporaryFile()  # noqa: SIM115
        try:
            self._start_display(size)
            self._start(["openbox", "--config-file", str(Path(__file__).with_name("openbox.xml"))])
            wait_until(lambda: self.xdotool("get_num_desktops") is not None, self._complaints)
        except BaseException:
            self.stop()
            raise

    def _start_display(self, size):
        read, write = os.pipe()
        options = ["-displayfd", str(write), "-screen", "0", f"{size}x24", "-nolisten", "tcp"]
        # When its last client leaves, it must not reset itself: one that is just coming would not survive that.
        # Nor is a key to repeat itself that a loaded machine lets go of late.
        options += ["-noreset", "-r"]
        try:
            self._start(["Xvfb", *options], pass_fds=[write])
            os.close(write)
            self.display = ":" + self._read_line(read)
        finally:
            os.close(read)

    def _start(self, command, **options):
        self._processes.append(
            subprocess.Popen(
                command,
                stdin=subprocess.DEVNULL,
                stdout=subprocess.DEVNULL,
                stderr=self._errors,
                env=self.environment(),
                **options,
            )
        )

    def _complaints(self):
        self._errors.seek(0)
        states = [process.poll() for process in self._processes]
        return f"the window manager on {self.display}, states {states}, errors {self._errors.read()!r}"

    @staticmethod
    def _read_line(descriptor):
        line = b""
        while not line.endswith(b"\n"):
            part = os.read(descriptor, 16) if select.select([descriptor], [], [], 60)[0] else b""
            if not part:
                raise RuntimeError("Xvfb does not start")
            line += part
        return line.decode().strip()

    def environment(self):
        return {**os.environ, "DISPLAY": getattr(self, "display", "")}

    def xdotool(self, *arguments):
        """What it prints; nothing when it fails."""
        result = subprocess.run(["xdotool", *arguments], capture_output=True, text=True, env=self.environment())
        return result.stdout.strip() if result.returncode == 0 else None

    def key(self, *keys):
        """Presses keys, such as "ctrl+r", one after the other. The program asks the accessibility bus about each before
        it acts on it: what is done next may overtake them, unless their effect is waited for."""
        assert self.xdotool("key", "--clearmodifiers", *keys) is not None

    @contextlib.contextmanager
    def held(self, key):
        assert self.xdotool("keydown", key) is not None
        try:
            yield
        finally:
            self.xdotool("keyup", key)

    def type(self, text):
        assert self.xdotool("type", "--delay", "5", text) is not None

    def click(self, x, y, button=1, times=1):
        """Buttons 4 and 5 turn the wheel."""
        clicks = ["click", "--repeat", str(times), "--delay", "5", str(button)]
        assert self.xdotool("mousemove", str(x), str(y), *clicks) is not None

    def windows(self, process):
        """All of the process that are on the screen, menus among them; it has one at least."""
        # One that goes meanwhile makes the search fail.
        found = wait_until(lambda: self.xdotool("search", "--onlyvisible", "--pid", str(process)), "the windows")
        return set(found.split())

    def has_keyboard(self, title):
        """The application's name may follow the title."""
        return (self.xdotool("getwindowfocus", "getwindowname") or "").startswith(title)

    def wait_for_active_window(self, title):
        wait_until(
            lambda: self.xdotool("getactivewindow", "getwindowname") == title,
            lambda: f"{title!r}, but active is {self.xdotool('getactivewindow', 'getwindowname')!r}",
        )

    def close_window(self):
        """The window manager's key for it."""
        self.key("alt+F4")

    def geometry(self, identifier):
        """Left, top, width, height."""
        told = wait_until(lambda: self.xdotool("getwindowgeometry", "--shell", identifier), "the window's place")
        lines = dict(line.split("=") for line in told.split())
        return tuple(int(lines[key]) for key in ("X", "Y", "WIDTH", "HEIGHT"))

    def resize(self, identifier, width, height):
        assert self.xdotool("windowsize", identifier, str(width), str(height)) is not None
        wait_until(
            lambda: self.geometry(identifier)[2:] == (width, height),
            lambda: f"{width} x {height}, but it is {self.geometry(identifier)}",
        )

    def stop(self):
        for process in reversed(self._processes):
            process.terminate()
            process.wait()
        self._errors.close()
