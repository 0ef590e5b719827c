"""The scripts of the bundle train for real, operated from the window."""

import json

from real_training import PATIENCE
from waiting import wait_until

STEPS = 30


def set_steps(trainer, desktop, steps):
    trainer.wait_for("Training round, steps", "text").focus()
    desktop.type(str(steps))
    desktop.key("Return")
    trainer.wait_for(f"{steps:,}")


def test_a_run_is_trained_and_archived(trainer, desktop):
    set_steps(trainer, desktop, STEPS)
    trainer.click("Start")
    wait_until(lambda: trainer.find("Model archived"), trainer.texts, PATIENCE)
    [run] = (trainer.library / "Finished models").iterdir()
    trainer.wait_for_texts(run.name, f"{STEPS} / {STEPS}", "Begin training")
    manifest = json.loads((run / "manifest.json").read_text())
    assert manifest["step"] == STEPS
    assert (run / "model.safetensors").stat().st_size > 0
    curve = [json.loads(line) for line in (run / "loss_curve.jsonl").read_text().splitlines()]
    assert curve[-1]["loss"] < curve[0]["loss"]
    trainer.press("Show log panel")
    trainer.wait_for_texts(f"✓ archived model → {run}")
    assert not [text for text in trainer.texts() if "Traceback" in text]
    # What has been archived is in the library.
    desktop.key("ctrl+shift+b")
    trainer.wait_for_window("Trained Models")
    wait_until(lambda: any(run.name in text for text in trainer.texts()), trainer.texts)


def test_a_quit_waits_for_the_checkpoint(trainer, desktop):
    set_steps(trainer, desktop, 1_000_000)
    trainer.click("Start")
    wait_until(lambda: trainer.find("State: Running"), trainer.texts, PATIENCE)
    desktop.key("ctrl+q")
    wait_until(lambda: not trainer.is_running, "the program's end", PATIENCE)
    assert trainer.process.returncode == 0
    saved = [checkpoint for checkpoint in (trainer.model / "checkpoints").glob("checkpoint-*") if checkpoint.is_dir()]
    assert any((checkpoint / "state.json").exists() for checkpoint in saved)
    assert not list((trainer.library / "Finished models").iterdir())
