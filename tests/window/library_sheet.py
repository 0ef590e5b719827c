"""The library's sheet on the real window, over run folders of every kind."""

import os

from run_folders import CURVE, RunFolders, manifest, snapshot
from waiting import undisturbed, wait_until

IMAGE = {"model_family": "image_generation", "training_capability": "finetune"}
LONG_NAME = "long " * 60 + "name"

DAMAGED_CURVE = "\n".join(
    [
        "no JSON",
        "",
        '{"step": 1}',
        '{"step": 1, "loss": NaN}',
        '{"step": 2, "loss": 3.5}',
        '{"step": 3.5, "loss": 1}',
        "[]",
        '{"step": 4, "lo',
    ]
)

# Folder, manifest, curve, snapshot and what the row says, in the library's order.
RUNS = [
    ("case", manifest("Whale", "1.0.0", 1), None, None, "Whale v1.0.0, loss 2.346, 1 Mar 2026 09:26:53"),
    ("markup", manifest("<b>bold</b>", "1", 2), None, None, "<b>bold</b> v1, loss 2.346, 2 Mar 2026 09:26:53"),
    (
        "breaks",
        manifest("line\nbreak", "1", 3, final_loss=-0.0004),
        None,
        None,
        "line\nbreak v1, loss -0.000, 3 Mar 2026 09:26:53",
    ),
    ("long", manifest(LONG_NAME, "1", 4), None, None, f"{LONG_NAME} v1, loss 2.346, 4 Mar 2026 09:26:53"),
    (
        "multimodal",
        manifest("paint", "2", 6, model_family="multimodal"),
        CURVE,
        snapshot(),
        "paint v2, loss 2.346, 6 Mar 2026 09:26:53",
    ),
    ("image", manifest("paint", "1", 5, **IMAGE), CURVE, None, "paint v1, loss 2.346, 5 Mar 2026 09:26:53"),
    ("blanks", manifest("  spaced \n", " 3 ", 7), None, None, "spaced v3, loss 2.346, 7 Mar 2026 09:26:53"),
    ("unnamed", {"archived_at": "2026-03-08T09:26:53Z"}, None, None, "unnamed v0.0.0, loss 0.000, 8 Mar 2026 09:26:53"),
    (
        "unknown",
        manifest("weird", "6", 16, model_family="audio", training_capability="distill"),
        "",
        snapshot(),
        "weird v6, loss 2.346, 16 Mar 2026 09:26:53",
    ),
    (
        "nothing in its files",
        manifest("weird", "5", 15),
        "",
        snapshot(0, 0),
        "weird v5, loss 2.346, 15 Mar 2026 09:26:53",
    ),
    (
        "damaged",
        manifest("weird", "4", 14),
        DAMAGED_CURVE,
        '{"step": 1, "final": true, "layers": "none"}',
        "weird v4, loss 2.346, 14 Mar 2026 09:26:53",
    ),
    (
        "huge",
        manifest(
            "weird", "3", 13, step=2**63 - 1, max_steps=2**63 - 1, final_loss=1e15, elapsed_seconds=1e12, val_loss=None
        ),
        '{"step": 9223372036854775807, "loss": 1e308}\n{"step": -9223372036854775808, "loss": -1e308}\n',
        None,
        "weird v3, loss 1000000000000000.000, 13 Mar 2026 09:26:53",
    ),
    (
        "types",
        {
            "model_identity": [],
            "archived_at": "2026-03-09T09:26:53.5Z",
            "step": 1.5,
            "max_steps": "9",
            "final_loss": "low",
            "val_loss": True,
            "elapsed_seconds": None,
            "tokens_per_sec": {},
            "model_family": 7,
            "training_capability": [],
        },
        None,
        None,
        "types v0.0.0, loss 0.000, 9 Mar 2026 09:26:53",
    ),
    (
        "whale 3",
        manifest("whale", "1.2.0", 20),
        CURVE,
        snapshot(5, 8),
        "whale v1.2.0, loss 2.346, 20 Mar 2026 09:26:53",
    ),
    (
        "whale 2",
        manifest("whale", "1.1.0", 19, step=800, final_loss=2.1, elapsed_seconds=4267.4),
        CURVE[: len(CURVE) // 2],
        snapshot(shift=0.1),
        "whale v1.1.0, loss 2.100, 19 Mar 2026 09:26:53",
    ),
    ("whale 1", manifest("whale", "1.0.0", 18), CURVE, snapshot(), "whale v1.0.0, loss 2.346, 18 Mar 2026 09:26:53"),
    # Its folder's date.
    (
        "undated",
        manifest("whale", "0", 1, archived_at="2025-03-14 09:26"),
        None,
        None,
        "whale v0, loss 2.346, 2 Jan 2025 00:00:00",
    ),
    ("鯨", manifest("鯨 🐋", "1", 17), None, None, "鯨 🐋 v1, loss 2.346, 17 Mar 2026 09:26:53"),
]
ORDER = [
    "<b>bold</b>",
    "Whale",
    "line\nbreak",
    LONG_NAME,
    "paint",
    "spaced",
    "types",
    "unnamed",
    "weird",
    "whale",
    "鯨 🐋",
]


def choose_entry(program, focus, open_menu, entry):
    """Opens a menu, which is reached in no other way than by the focus, and goes down to this entry."""
    desktop = program.desktop
    before = desktop.windows(program.process.pid)
    open_menu()
    wait_until(lambda: desktop.windows(program.process.pid) - before, "the menu")
    focus.go_to(entry, lambda: desktop.key("Down"))
    menu = desktop.windows(program.process.pid) - before
    desktop.key("Return")
    # A click that comes while it is still there would only close it.
    wait_until(lambda: not menu & desktop.windows(program.process.pid), "the menu's end")


class Library:
    """The sheet, as a user goes about in it."""

    def __init__(self, program, focus):
        self.program = program
        self.desktop = program.desktop
        self.folders = RunFolders(program.library / "Finished models")
        self.focus = focus
        self.expected = 0  # rows

    def fill(self):
        self.expected = len(RUNS) + len(ORDER)
        for folder, content, curve, neurons, _ in RUNS:
            self.folders.add(folder, content, curve, neurons)
        os.utime(self.folders.root / "undated", (1735776000, 1735776000))
        return self

    def open(self):
        self.program.start_ready()
        self.desktop.key("ctrl+shift+b")
        sheet = self.program.wait_for_window("Trained Models")
        self.wait_for_rows(self.expected)
        return sheet

    @property
    def sheet(self):
        return wait_until(lambda: self.program.window("Trained Models"), "the library")

    def listing(self):
        return self.program.find("Trained models", "list", within=self.sheet)

    def rows(self):
        def look():
            listing = self.listing()
            return [element.name for element in listing.children] if listing else []

        return undisturbed(look)

    def wait_for_rows(self, count):
        wait_until(lambda: len(self.rows()) == count, lambda: f"{count} rows, but there are {self.rows()}")

    def row(self, start):
        return next((name for name in self.rows() if name.startswith(start)), "")

    def wait_for_row(self, fits, start):
        """Until what the row says fits."""
        wait_until(lambda: (row := self.row(start)) and fits(row), lambda: f"{start!r} in {self.rows()}")

    def _place(self, start):
        """The list and the row in it, which stay where they are."""
        before = None

        def look():
            nonlocal before
            listing = self.listing()
            rows = listing.children if listing else []
            row = next((each for each in rows if each.name.startswith(start)), None)
            last, before = before, row and (listing.bounds(), row.bounds())
            return before if before == last else None

        return wait_until(look, lambda: f"{start!r} in {self.rows()}")

    def point_at(self, start):
        """Turns the wheel until the row is in sight; its middle."""
        for _ in range(100):
            place = self._place(start)
            (left, top, width, height), (_, y, _, h) = place
            if top <= y and y + h <= top + height:
                return left + width // 2, y + h // 2
            self.desktop.click(left + width // 2, top + height // 2, button=4 if y < top else 5)
            wait_until(lambda before=place: self._place(start) != before, f"{start!r} to come nearer")
        raise AssertionError(f"{start!r} does not come into sight")

    def choose(self, start):
        self.desktop.click(*self.point_at(start))
        wait_until(lambda: start in self.detail(), lambda: f"{start!r} in {self.detail()}")

    def detail(self):
        """What can be read beside the list."""
        rows = self.rows()
        return [text for text in self.program.texts(within=self.sheet) if text not in rows]

    def menu(self, start, entry):
        """Opens the row's menu and goes through it to this entry."""
        point = self.point_at(start)
        choose_entry(self.program, self.focus, lambda: self.desktop.click(*point, button=3), entry)

    def compare(self, baseline, candidate):
        self.menu(baseline, "Set as comparison baseline")
        self.wait_for_row(is_baseline, baseline)
        self.choose(candidate)
        self.program.press("Compare", within=self.sheet)
        return self.program.wait_for_window("Compare retrainings")

    def back(self):
        self.program.press("Back", within=self.program.wait_for_window("Compare retrainings"))
        self.program.wait_for_window("Trained Models")


def is_baseline(row):
    return row.endswith(", baseline")
