"""The scripts of the bundle train twice: the heatmap lives, and the two runs are found and compared."""

import json
import re

from library_sheet import Library, is_baseline
from real_training import PATIENCE, TINY
from waiting import wait_until

CELL = "Layer 1, neuron 2 (dims 4–5): "


def set_steps(program, steps):
    program.wait_for("Training round, steps", "text").focus()
    program.desktop.key("ctrl+a")
    program.desktop.type(str(steps))
    program.desktop.key("Return")
    program.wait_for(f"{steps:,}", "label")


def train(program, steps):
    set_steps(program, steps)
    program.desktop.key("ctrl+r")


def snapshot_step(program):
    steps = [int(text[5:]) for text in program.texts() if re.fullmatch(r"step \d+", text)]
    return steps[0] if steps else None


def runs(program):
    return sorted(run for run in (program.library / "Finished models").iterdir() if (run / "manifest.json").exists())


def wait_for_runs(program, count):
    program_tells = f"Archived runs: {count}"
    wait_until(lambda: program.find(program_tells) and program.find("State: Done"), program.texts, PATIENCE)
    assert len(runs(program)) == count


def activation(program):
    texts = program.texts()
    return texts[texts.index("Activation") + 1] if "Activation" in texts else None


def test_two_runs(trainer, focus):
    program = trainer
    program.wait_for("Start training to visualize neuron activations.")
    train(program, 1_000_000)
    first = wait_until(lambda: snapshot_step(program), program.texts, PATIENCE)
    wait_until(lambda: (snapshot_step(program) or 0) > first, "another snapshot")
    program.wait_for_texts("Neuron activity", "live")
    program.wait_until_disabled("Final", "radio button")

    cells = [element for element in program.elements(hidden=True) if element.role == "table cell"]
    assert len(cells) == TINY["layers"] * TINY["neurons_per_layer"]
    next(cell for cell in cells if cell.name.startswith(CELL)).press()
    sentence = (
        "Hidden channels 4–5 in transformer block 1 of 2. Mean absolute activation averaged over the training batch."
    )
    program.wait_for_texts("Selected neuron", sentence)
    chosen = wait_until(lambda: activation(program), program.texts)
    wait_until(lambda: activation(program) not in (None, chosen), f"another activation than {chosen}")

    # Fewer steps than have been made end the run.
    set_steps(program, 10)
    wait_for_runs(program, 1)
    program.press("Final", "radio button")
    program.wait_for_texts("final")

    train(program, 40)
    wait_for_runs(program, 2)
    older, newer = runs(program)
    assert json.loads((newer / "manifest.json").read_text())["step"] == 40

    program.desktop.key("ctrl+shift+b")
    program.wait_for_window("Trained Models")
    library = Library(program, focus)
    library.wait_for_rows(3)
    program.desktop.type(older.name)
    program.wait_for_contents(**{"Search models": older.name})
    library.wait_for_rows(2)
    library.menu("MyModel v1.0.0", "Set as comparison baseline")
    program.wait_for("Comparing against")
    program.desktop.key("ctrl+f")
    program.desktop.type(newer.name)
    program.wait_for_contents(**{"Search models": newer.name})
    library.wait_for_rows(2)
    library.wait_for_row(lambda row: not is_baseline(row), "MyModel")
    library.choose("MyModel v1.0.0")
    program.wait_for_texts("Loss curve saved", "Neuron snapshot saved", "archived snapshot", within=library.sheet)
    program.press("Compare", within=library.sheet)
    comparison = program.wait_for_window("Compare retrainings")
    program.wait_for_texts("Activation delta (candidate − baseline)", within=comparison)
