"""Pictures of the real program on a display, of a home folder of its own, in which it trains for real.

pictures.py PYTHON FOLDER: PYTHON has MLX; the pictures are written into FOLDER.
"""

import json
import subprocess
import sys
import tempfile
import time
from pathlib import Path

# The system's bindings to the accessibility bus; no package index has them.
sys.path.append("/usr/lib/python3/dist-packages")

from desktop import Desktop
from program import NAME, Program
from waiting import wait_until

SIDECAR = Path(__file__).resolve().parent.parent.parent / "sidecar"
PATIENCE = 900  # seconds
SETTLING = 0.5  # seconds, for what is still to be painted
STEPS = 300
MODEL = {
    "layers": 4,
    "hidden_size": 96,
    "heads": 4,
    "context": 64,
    "batch_size": 8,
    "vocab_size": 1024,
    "neurons_per_layer": 48,
    "snapshot_interval": 5,
    "evaluation_interval": 50,
}
LARGE = (1600, 1000)
SMALL = (900, 640)


class Photographer:
    """One program after the other in the same home folder, so that the library fills."""

    def __init__(self, desktop, home, python, folder):
        self.desktop = desktop
        self.home = home
        self.folder = folder
        self.theme = "light"
        self.program = Program(desktop, home)
        self.program.environment["ZOREL_SCRIPTS_ROOT"] = ""
        self.program.use_interpreter(python)

    def open(self, theme, size):
        self.theme = theme
        settings = self.home / ".config" / "gtk-3.0" / "settings.ini"
        settings.parent.mkdir(parents=True, exist_ok=True)
        settings.write_text(f"[Settings]\ngtk-application-prefer-dark-theme={int(theme == 'dark')}\n")
        self.program.start()
        wait_until(lambda: self.program.find("Begin training"), self.program.texts, PATIENCE)
        self.resize(NAME, size)

    def close(self):
        self.desktop.key("ctrl+q")
        wait_until(lambda: not self.program.is_running, "the program's end", PATIENCE)

    def identify(self, version):
        store = self.home / ".config" / "Talvex" / "zorel.json"
        store.parent.mkdir(parents=True, exist_ok=True)
        store.write_text(json.dumps({"zorel.modelName": "Librarian", "zorel.modelVersion": version}))

    def settle_with(self, **choices):
        model = self.home / "Library" / "Application Support" / "Zorel" / "Model"
        model.mkdir(parents=True, exist_ok=True)
        (model / "training.json").write_text(json.dumps({**MODEL, **choices}))

    def _identifier(self, title):
        return self.desktop.xdotool("search", "--onlyvisible", "--name", f"^{title}$").split()[-1]

    def resize(self, title, size):
        """To the content's size; and to the upper left, so that all of it is on the display."""
        identifier = self._identifier(title)
        for order in ("windowmove", "windowsize"):
            numbers = (20, 40) if order == "windowmove" else size
            self.desktop.xdotool(order, "--sync", identifier, *map(str, numbers))

    def take(self, name, title=NAME):
        # With the pointer out of the picture.
        self.desktop.xdotool("mousemove", "1799", "1199")
        time.sleep(SETTLING)
        target = self.folder / f"{name}-{self.theme}.png"
        command = [
            "import",
            "-window",
            self._identifier(title),
            "-strip",
            "-depth",
            "8",
        ]
        command += [
            "+dither",
            "-colors",
            "256",
            "-define",
            "png:compression-level=9",
            f"PNG8:{target}",
        ]
        subprocess.run(command, check=True, env=self.desktop.environment())
        print(target, target.stat().st_size)

    def train(self, name):
        program = self.program
        program.find("Training round, steps", "text").focus()
        self.desktop.type(str(STEPS))
        self.desktop.key("Return")
        program.wait_for(f"{STEPS:,}")
        left, top, width, height = program.find("Start", "push button").bounds()
        self.desktop.click(left + width // 2, top + height // 2)
        wait_until(lambda: self._step() > STEPS * 0.7, program.texts, PATIENCE)
        self.take(f"{name}-running")
        wait_until(lambda: program.find("Model archived"), program.texts, PATIENCE)
        self.take(f"{name}-archived")

    def _step(self):
        for text in self.program.texts():
            if text.startswith("Step: "):
                return int(text.removeprefix("Step: ").replace(",", ""))
        return 0

    def show_library(self):
        program, desktop = self.program, self.desktop
        desktop.key("ctrl+shift+b")
        sheet = program.wait_for_window("Trained Models")
        self.resize("Trained Models", (1280, 900))
        newest, oldest = wait_until(
            lambda: self._runs(sheet),
            lambda: f"two runs in {program.elements(within=sheet)}",
        )
        self._point_at(oldest, 3)
        desktop.key("Down", "Return")
        program.wait_for("Compare", "push button")
        self._point_at(newest, 1)
        program.wait_for("Training loss curve")
        self.take("library", "Trained Models")
        program.press("Compare")
        comparison = wait_until(self._comparison, "the comparison")
        self.resize(comparison, (1280, 900))
        self.take("comparison", comparison)
        desktop.key("Escape")
        wait_until(lambda: not program.window(comparison), "the comparison to close")
        desktop.key("Escape")
        wait_until(lambda: not program.window("Trained Models"), "the library to close")

    def _runs(self, sheet):
        items = [each for each in self.program.elements(within=sheet) if each.role == "list item"]
        runs = [each for each in items if "Librarian v" in each.name]
        return runs if len(runs) == 2 else None

    def _point_at(self, element, button):
        left, top, width, height = element.bounds()
        self.desktop.click(left + width // 2, top + height // 2, button)

    def _comparison(self):
        known = {NAME, "Trained Models"}
        return next(
            (each.name for each in self.program.root.children if each.is_showing and each.name not in known),
            "",
        )

    def show_settings_and_about(self):
        program, desktop = self.program, self.desktop
        desktop.key("ctrl+comma")
        program.wait_for_window("Settings")
        for tab in ("Library", "Advanced", "About"):
            program.press(tab, "page tab")
            self.take(f"settings-{tab.lower()}", "Settings")
        desktop.key("Escape")
        wait_until(lambda: not program.window("Settings"), "the settings to close")
        program.press(NAME)
        program.wait_for_window(f"About {NAME}")
        self.take("about", f"About {NAME}")
        desktop.key("Escape")
        wait_until(lambda: not program.window(f"About {NAME}"), "the sheet to close")


def main():
    python, folder = sys.argv[1], Path(sys.argv[2]).resolve()
    folder.mkdir(parents=True, exist_ok=True)
    desktop = Desktop("1800x1200")
    with tempfile.TemporaryDirectory(prefix="zorel") as home:
        photographer = Photographer(desktop, Path(home), python, folder)
        corpus = Path(home) / "Documents" / "Zorel" / "Training Data"
        subprocess.run([python, str(SIDECAR / "sample_corpus"), str(corpus)], check=True)
        try:
            photograph(photographer)
        finally:
            photographer.program.stop()
            desktop.stop()


def photograph(photographer):
    photographer.settle_with(learning_rate=0.001)
    photographer.identify("1.0.0")
    photographer.open("light", LARGE)
    photographer.train("dashboard")
    photographer.close()
    photographer.settle_with(learning_rate=0.004)
    photographer.identify("1.1.0")
    photographer.open("dark", LARGE)
    photographer.train("dashboard")
    photographer.show_settings_and_about()
    photographer.show_library()
    photographer.close()
    photographer.open("light", SMALL)
    photographer.take("small")
    photographer.show_settings_and_about()
    photographer.show_library()
    photographer.close()


main()
