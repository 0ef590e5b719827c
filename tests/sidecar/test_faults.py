"""Killed processes, full disks, missing folders and numbers that are none."""

from __future__ import annotations

import json
import random
import shutil
import signal

import pytest
from support.child import Library

KILLS = 50
LONG = 1500
ENDLESS = 1_000_000


def checkpoints(library: Library) -> list:
    return sorted(entry.name for entry in (library.model / "checkpoints").iterdir())


def test_a_run_killed_fifty_times_ends_with_the_losses_of_an_undisturbed_one(tmp_path, sidecar):
    undisturbed = Library(tmp_path / "undisturbed").fill(checkpoint_interval=40)
    sidecar(undisturbed).train(LONG)
    library = Library(tmp_path / "killed").fill(checkpoint_interval=40)
    chance = random.Random(4)
    finished = 0
    child = sidecar(library)
    for _ in range(KILLS):
        following = sidecar(library)
        resumable = (library.model / "checkpoints").is_dir() and any(
            name.startswith("checkpoint-") for name in checkpoints(library)
        )
        child.start(LONG, resume=resumable)
        for _ in range(chance.randint(1, 16)):
            event = child.next_event()
            assert event["event"] != "error", event
            if event["event"] == "done":
                finished += 1
                shutil.rmtree(library.model / "checkpoints")
                break
        child.process.kill()
        child.process.wait()
        child = following
    child.start(LONG, resume=True)
    child.wait_for_kind("done")
    for run in library.runs():
        assert library.curve(run) == undisturbed.curve()
    assert len(library.runs()) > finished
    leftovers = [
        *library.finished.iterdir(),
        *(library.model / "checkpoints").iterdir(),
    ]
    assert not [entry for entry in leftovers if entry.name.endswith(".partial")]


def test_a_full_disk_costs_a_checkpoint_but_neither_the_run_nor_the_one_before(library, sidecar):
    library.settings(checkpoint_interval=20)
    child = sidecar(module="faulty")
    child.start(ENDLESS)
    child.wait_for_step(30)
    child.process.send_signal(signal.SIGUSR1)
    message = child.wait_for_kind("error")["msg"]
    assert "could not be written" in message
    assert "intact" in message
    failed_at = child.events[-2]
    child.wait_for_step(failed_at.get("step", 0) + 40)
    child.process.kill()
    assert not [name for name in checkpoints(library) if not name.startswith(("checkpoint-", "."))]
    again = sidecar()
    assert again.train(1, resume=True)["step"] >= 20


def test_a_disk_that_stays_full_is_told_once_and_again_when_there_is_room(library, sidecar):
    library.settings(checkpoint_interval=5)
    child = sidecar(module="faulty")
    child.start(ENDLESS)
    child.wait_for_step(10)
    child.process.send_signal(signal.SIGUSR1)
    child.wait_for_kind("error")
    failed_at = max(event.get("step", 0) for event in child.events if event["event"] == "status")
    child.wait_for_step(failed_at + 100)
    assert len(child.messages()) == 1
    child.process.send_signal(signal.SIGUSR2)
    child.wait_for(lambda event: event["event"] == "log" and "written again" in event["msg"])
    child.process.send_signal(signal.SIGUSR1)
    child.wait_for_kind("error")
    child.send("stop")
    child.wait_for_state("idle")
    assert len(child.messages()) == 3


def test_a_run_that_cannot_begin_leaves_the_one_before_to_be_resumed(library, sidecar):
    child = sidecar(module="faulty")
    child.train(6)
    child.process.send_signal(signal.SIGUSR1)
    child.start(20)
    assert "was not begun" in child.wait_for_state("error")["error"]
    child.process.send_signal(signal.SIGUSR2)
    assert child.train(8, resume=True)["step"] == 8
    assert [point["step"] for point in library.curve()] == list(range(1, 9))


def test_a_start_that_was_killed_before_it_put_the_run_before_aside_does_so_when_resumed(library, sidecar):
    child = sidecar()
    child.train(6)
    child.train(3)
    folder = library.model / "checkpoints"
    (folder / "previous-run").rename(folder / "checkpoint-00000001")
    child.train(4, resume=True)
    assert json.loads((folder / "previous-run" / "state.json").read_text())["step"] == 6


def test_a_validation_loss_that_is_not_finite_costs_neither_checkpoint_nor_archive(library, sidecar):
    library.settings(evaluation_interval=2, checkpoint_interval=3)
    child = sidecar(module="faulty", environment={"INFINITE_VALIDATION": "1"})
    child.train(8)
    assert "val_loss" not in json.loads((library.runs()[0] / "manifest.json").read_text())
    assert all("val_loss" not in event for event in child.events)
    assert child.messages() == []


def test_an_archive_that_finds_the_disk_full_is_not_half_there_and_can_be_resumed(library, sidecar):
    child = sidecar(module="faulty")
    child.start(ENDLESS)
    child.wait_for_step(10)
    child.process.send_signal(signal.SIGUSR1)
    child.send("set_max_steps", n=1)
    status = child.wait_for_state("error")
    assert "could not be archived" in status["error"]
    assert library.runs() == []
    assert list(library.finished.iterdir()) == []
    child.process.send_signal(signal.SIGUSR2)
    assert child.train(1, resume=True)["step"] >= 1
    assert len(library.runs()) == 1


def test_a_working_folder_that_goes_away_is_reported_and_the_model_is_archived_all_the_same(library, sidecar):
    library.settings(checkpoint_interval=20)
    child = sidecar()
    child.start(ENDLESS)
    child.wait_for_step(10)
    library.model.rename(library.root / "moved")
    assert "could not be written" in child.wait_for_kind("error")["msg"]
    child.send("set_max_steps", n=1)
    child.wait_for_kind("done")
    assert len(library.runs()) == 1


@pytest.mark.parametrize("place", ["finished", "model"])
def test_a_folder_that_cannot_be_used_refuses_the_run_by_name(library, sidecar, place):
    folder = getattr(library, place)
    shutil.rmtree(folder, ignore_errors=True)
    folder.write_text("a file, not a folder")
    child = sidecar()
    child.start(5)
    assert child.wait_for(lambda event: event["event"] == "error" and "cannot be" in event["msg"])
    assert str(folder) in child.messages()[-1]


def test_a_finished_models_folder_replaced_during_the_run_leaves_the_model_resumable(library, sidecar):
    child = sidecar()
    child.start(ENDLESS)
    child.wait_for_step(5)
    shutil.rmtree(library.finished)
    library.finished.write_text("in the way")
    child.send("set_max_steps", n=1)
    assert str(library.finished) in child.wait_for_state("error")["error"]
    library.finished.unlink()
    child.train(1, resume=True)


def test_a_step_without_finite_gradients_is_skipped_and_never_reaches_wire_or_weights(library, sidecar):
    child = sidecar(module="faulty", environment={"POISONED_STEPS": "3,5"})
    child.train(12)
    manifest = json.loads((library.runs()[0] / "manifest.json").read_text())
    assert manifest["skipped_steps"] == 2
    assert [point["step"] for point in library.curve()] == [
        1,
        2,
        4,
        6,
        7,
        8,
        9,
        10,
        11,
        12,
    ]
    assert any("Step 3" in text for text in child.messages("log"))
    assert b"NaN" not in b"".join(child.lines)


def test_many_such_steps_in_a_row_end_the_run_and_keep_the_last_checkpoint(library, sidecar):
    library.settings(checkpoint_interval=2)
    child = sidecar(module="faulty", environment={"POISONED_STEPS": "6,7,8,9,10"})
    child.start(50)
    status = child.wait_for_state("error")
    assert "5 steps in a row" in status["error"]
    again = sidecar()
    again.train(20, resume=True)
    assert [point["step"] for point in library.curve()][:5] == [1, 2, 3, 4, 5]


def test_a_full_memory_is_said_with_what_to_lower(sidecar):
    child = sidecar(module="faulty", environment={"FULL_MEMORY": "1"})
    child.start(5)
    assert "“batch_size”" in child.wait_for_state("error")["error"]
    assert child.quit() == 0
    assert child.errors == b""


@pytest.mark.parametrize(
    ("file", "content"),
    [
        ("loss_curve.npz", b"PK\x03\x04"),
        ("state.json", b"[]"),
        ("state.json", b'{"format": 1}'),
        ("weights.safetensors", b"\xff" * 8),
    ],
)
def test_whatever_is_damaged_in_a_checkpoint_it_is_passed_over(library, sidecar, file, content):
    library.settings(checkpoint_interval=5)
    sidecar().train(10)
    *_, newest = sorted((library.model / "checkpoints").glob("checkpoint-*"))
    size = (newest / file).stat().st_size
    (newest / file).write_bytes(content if file == "state.json" else content.ljust(size, b"\0"))
    child = sidecar()
    assert child.train(12, resume=True)["step"] == 12
    assert any("damaged" in text and str(newest) in text for text in child.messages("log"))


def test_a_checkpoint_without_a_setting_that_shapes_the_run_is_passed_over(library, sidecar):
    library.settings(checkpoint_interval=5)
    sidecar().train(10)
    *_, newest = sorted((library.model / "checkpoints").glob("checkpoint-*"))
    state = json.loads((newest / "state.json").read_text())
    del state["settings"]["seed"]
    (newest / "state.json").write_text(json.dumps(state))
    child = sidecar()
    child.train(12, resume=True)
    assert any("“seed”" in text for text in child.messages("log"))


def test_a_damaged_checkpoint_is_passed_over_for_the_one_before(library, sidecar):
    library.settings(checkpoint_interval=4)
    child = sidecar()
    child.train(8)
    newest = library.model / "checkpoints" / checkpoints(library)[-1]
    (newest / "weights.safetensors").write_bytes(b"short")
    child.train(8, resume=True)
    assert any("damaged" in text for text in child.messages("log"))
    assert len(library.curve()) == 8


def test_no_training_data_is_said_with_the_folder_and_another_start_works(library, sidecar):
    corpus = (library.data / "sea").rename(library.root / "away")
    child = sidecar()
    child.start(5)
    assert str(library.data) in child.wait_for_state("error")["error"]
    corpus.rename(library.data / "sea")
    child.train(3)


def test_too_little_text_for_one_window_is_said_in_words(library, sidecar):
    library.settings(context=4096)
    child = sidecar()
    child.start(5)
    assert "too small" in child.wait_for_state("error")["error"]


def test_starting_anew_keeps_the_checkpoint_of_the_run_before(library, sidecar):
    child = sidecar()
    child.train(6)
    child.train(3)
    kept = json.loads((library.model / "checkpoints" / "previous-run" / "state.json").read_text())
    assert kept["step"] == 6
