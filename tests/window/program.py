"""The program under test in a home of its own, with training scripts that only pretend."""

import json
import os
import shutil
import subprocess
from pathlib import Path

import screen_reader
from gi.repository import GLib
from waiting import undisturbed, wait_until

TESTS = Path(__file__).resolve().parent.parent
NAME = "Talvex LLM Trainer"

# The programs of the desktop that the application would call, each a script that writes down what it was told.
TOOLS = ["dbus-send", "xdg-open", "systemd-inhibit", "gnome-session-inhibit"]

# What Qt says where the accessibility bus takes longer than 0.1 s to let a key pass, which changes nothing, and where a
# list becomes shorter while its rows are asked for.
NOT_OURS = ("QSpiApplication::", "QAccessibleTable::child: Invalid index")


def lines_of(file):
    """The whole lines of a file that somebody else may be writing."""
    content = file.read_bytes() if file.exists() else b""
    return content[: content.rfind(b"\n") + 1].decode().split("\n")[:-1]


class Program:
    def __init__(self, desktop, home):
        self.desktop = desktop
        self.home = home
        self.library = home / "Documents" / "Zorel"
        self.executable = os.environ["ZOREL_PROGRAM"]
        self.title = NAME
        self.scenario = None
        self.environment = {"ZOREL_FAKE_STEP_SECONDS": "0.01"}
        self.expected_error = None  # what it says on standard error, where it is to say something
        self.process = None
        self._heard = 0  # of the sidecar's commands
        self._commands = home / "commands"
        self._calls = home / "calls"
        self._errors = home / "errors"
        self._prepare()

    def _prepare(self):
        scripts = self.home / "scripts" / "src"
        scripts.mkdir(parents=True)
        shutil.copy(TESTS / "support" / "fake_sidecar.py", scripts / "app_backend.py")
        self.interpreter = self.home / "Library" / "Python" / "3.12" / "bin" / "python3"
        self._write_script(self.interpreter, '[ "$1" = -c ] && exit 0\nexec /usr/bin/python3 "$@"')
        for tool in TOOLS:
            self._write_script(self.home / "tools" / tool, f'echo "{tool} $*" >> "{self._calls}"')

    def use_interpreter(self, python):
        """A Python that trains for real, in place of the one that pretends."""
        self._write_script(self.interpreter, f'exec "{python}" "$@"')

    @staticmethod
    def _write_script(path, body):
        path.parent.mkdir(parents=True, exist_ok=True)
        path.write_text(f"#!/bin/sh\n{body}\n")
        path.chmod(0o755)

    def start(self):
        steps = [{"echo_commands_to": str(self._commands)}, *(self.scenario or [{"play": True}])]
        environment = {
            **self.desktop.environment(),
            "HOME": str(self.home),
            "XDG_CONFIG_HOME": str(self.home / ".config"),
            "PATH": f"{self.home / 'tools'}:/usr/bin:/bin",
            "ZOREL_SCRIPTS_ROOT": str(self.home / "scripts"),
            "ZOREL_FAKE_SCENARIO": json.dumps(steps),
            "QT_LINUX_ACCESSIBILITY_ALWAYS_ON": "1",
            **self.environment,
        }
        with open(self._errors, "wb") as errors:
            self.process = subprocess.Popen(
                [self.executable], env=environment, cwd=self.home, stdin=subprocess.DEVNULL, stderr=errors
            )
        return self.attach(self.process.pid)

    def attach(self, process):
        """Looks at this process from now on, which may be one that the program has started in its own place."""
        self._attached = process
        self.root = screen_reader.application(process)
        self.wait_for_window(self.title)
        return self

    def start_ready(self):
        self.start()
        self.wait_for("Begin training")
        return self

    def store(self, **settings):
        """What an earlier session has left in the settings, without the prefix of the keys."""
        file = self.home / ".config" / "Talvex" / "zorel.json"
        file.parent.mkdir(parents=True, exist_ok=True)
        file.write_text(json.dumps({f"zorel.{key}": value for key, value in settings.items()}))

    def quit(self):
        self.desktop.key("ctrl+q")
        assert self.wait_for_exit() == 0

    def stop(self):
        expected = self.expected_error
        try:
            if expected:
                wait_until(lambda: any(expected in line for line in self._complaints()), f"{expected!r} to be said")
        finally:
            if self.process and self.process.poll() is None:
                self.process.kill()
                self.process.wait()
        complaints = self._complaints()
        assert not [line for line in complaints if not (expected and expected in line)], complaints

    def _complaints(self):
        lines = self._errors.read_text(errors="replace").splitlines() if self._errors.exists() else []
        return [line for line in lines if not line.startswith(NOT_OURS)]

    def wait_for_exit(self):
        return wait_until(lambda: self.process.poll() is not None, "the program's end") and self.process.returncode

    @property
    def is_running(self):
        return self.process.poll() is None

    def _is_there(self):
        """The one that is looked at, which need not be the one that was started."""
        return self.is_running if self._attached == self.process.pid else Path(f"/proc/{self._attached}").exists()

    def memory(self):
        """Bytes of memory in use."""
        lines = Path(f"/proc/{self.process.pid}/status").read_text().splitlines()
        return next(int(line.split()[1]) * 1024 for line in lines if line.startswith("VmRSS"))

    # What is on the screen

    def elements(self, hidden=False, within=None):
        """All of them at a moment at which none goes."""
        return undisturbed(lambda: list((within or self.root).walk(hidden)))

    def find(self, name, role=None, hidden=False, within=None):
        """The first in the order of reading. None says that it is in none of the places that were all there."""

        def look():
            named = (each for each in (within or self.root).walk(hidden) if each.name == name)
            return next((each for each in named if role in (None, each.role)), None)

        return undisturbed(look)

    def wait_for(self, name, role=None, hidden=False, within=None):
        return wait_until(
            lambda: self.find(name, role, hidden, within), lambda: f"{name!r} in {self.texts(hidden, within)}"
        )

    def wait_until_gone(self, name, role=None, within=None):
        wait_until(lambda: not self.find(name, role, within=within), f"{name!r} to go")

    def wait_until_enabled(self, name, role="push button", within=None):
        return wait_until(
            lambda: (found := self.find(name, role, within=within)) and found.is_enabled and found,
            lambda: f"{name!r} to be pressed in {self.texts(within=within)}",
        )

    def wait_until_disabled(self, name, role="push button", within=None):
        wait_until(
            lambda: (found := self.find(name, role, within=within)) and not found.is_enabled,
            lambda: f"{name!r} not to be pressed in {self.texts(within=within)}",
        )

    def texts(self, hidden=False, within=None):
        """Everything that can be read: names, descriptions and what stands in fields."""

        def look():
            for element in (within or self.root).walk(hidden):
                content = element.content
                yield from (element.name, element.description, content, *content.splitlines())

        return [text for text in dict.fromkeys(undisturbed(lambda: list(look()))) if text]

    def wait_for_texts(self, *expected, within=None):
        missing = list(expected)

        def all_there():
            present = set(self.texts(within=within))
            missing[:] = [text for text in expected if text not in present]
            return not missing

        wait_until(all_there, lambda: f"{missing} in {self.texts(within=within)}")

    def wait_for_text(self, fits, what, within=None):
        """The first text for which `fits` is true."""
        return wait_until(
            lambda: next((text for text in self.texts(within=within) if fits(text)), None),
            lambda: f"{what} in {self.texts(within=within)}",
        )

    def contents(self):
        """What stands in the fields that can be seen, by their names."""
        return undisturbed(
            lambda: {each.name: each.content for each in self.root.walk() if each.role == "text" and each.name}
        )

    def wait_for_contents(self, **expected):
        def there():
            return expected.items() <= self.contents().items()

        wait_until(there, lambda: f"{expected}, but there is {self.contents()}")

    def press(self, name, role="push button", hidden=False, within=None):
        """Once it can be pressed."""

        def pressed():
            element = self.find(name, role, hidden, within)
            if not element or not element.is_enabled:
                return False
            try:
                element.press()
            except GLib.Error:
                # The end of the program is an answer as well.
                if self._is_there():
                    raise
            return True

        wait_until(pressed, lambda: f"{name!r} to be pressed in {self.texts(hidden, within)}")

    def press_in_menu(self, name):
        self.press(name, "menu item", hidden=True)

    def click(self, name, role="push button"):
        """With the mouse, once it can be pressed and stays where it is."""
        before = None

        def place():
            nonlocal before
            element = self.wait_until_enabled(name, role)
            last, before = before, element.bounds()
            return before if before == last else None

        left, top, width, height = wait_until(place, f"{name!r} to stay in its place")
        self.desktop.click(left + width // 2, top + height // 2)

    def show_about(self):
        self.press_in_menu(f"About {NAME}")
        return self.wait_for_window(f"About {NAME}")

    def window(self, title):
        def look():
            return next((each for each in self.root.children if each.name == title and each.is_showing), None)

        return undisturbed(look)

    def wait_for_window(self, title):
        """Until it is there and has the keyboard."""
        return wait_until(
            lambda: (found := self.window(title)) and self._has_keyboard(found) and found,
            lambda: f"the window {title!r} among {self._windows()}",
        )

    def _has_keyboard(self, window):
        """For the program as well as for the display: a key goes to the window that the latter knows."""
        return window.has(screen_reader.State.ACTIVE) and self.desktop.has_keyboard(window.name)

    def _windows(self):
        """What the program and the window manager think of them."""
        states = {"showing": screen_reader.State.SHOWING, "active": screen_reader.State.ACTIVE}
        told = [(window, [name for name in states if window.has(states[name])]) for window in self.root.children]
        return f"{told}, with the keyboard: {self.desktop.xdotool('getwindowfocus', 'getwindowname')!r}"

    def wait_until_closed(self, title):
        wait_until(lambda: not self.window(title), f"the window {title!r} to close")

    def wait_for_chooser(self):
        """Until the toolkit's window for choosing a folder is there and has the keyboard."""

        def look():
            windows = [window for window in self.root.children if self._has_keyboard(window)]
            return next((each for each in windows if self.find("Choose", "push button", within=each)), None)

        return wait_until(look, lambda: f"the chooser among {self._windows()}")

    # What it tells others

    def commands(self):
        """Everything that the sidecar has been told and has read, oldest first."""
        return [json.loads(line) for line in lines_of(self._commands)]

    def wait_for_command(self, name, **values):
        """The next such command after the one that was waited for last."""

        def arrived():
            for number, command in enumerate(self.commands()[self._heard :], self._heard + 1):
                if command["cmd"] == name and values.items() <= command.items():
                    self._heard = number
                    return command
            return None

        return wait_until(arrived, lambda: f"{name} {values} in {self.commands()[self._heard :]}")

    def calls(self):
        """What the desktop's programs have been told."""
        return lines_of(self._calls)

    def wait_for_call(self, text):
        wait_until(lambda: any(text in call for call in self.calls()), lambda: f"{text!r} in {self.calls()}")
