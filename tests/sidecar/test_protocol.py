"""Commands in every state, through a real child process."""

from __future__ import annotations

import json
import os
import signal

import pytest

ENDLESS = 1_000_000
REQUIRED_STATUS_KEYS = {
    "state",
    "step",
    "max_steps",
    "loss",
    "lr",
    "grad_norm",
    "tokens_per_sec",
    "elapsed_s",
    "prep_progress",
    "prep_detail",
    "prep_elapsed_s",
    "prep_eta_s",
}


def begin(child, state: str) -> None:
    """Brings a fresh child into one of the states."""
    child.wait_for_kind("paths")
    if state == "idle":
        return
    if state == "done":
        child.train(1)
        return
    if state == "error":
        child.start(5)
        child.wait_for_state("error")
        return
    child.start(ENDLESS)
    if state == "preparing":
        child.wait_for_state("preparing")
        return
    child.wait_for_step(1)
    if state == "paused":
        child.send("toggle_pause")
        child.wait_for_state("paused")


def options(state: str) -> dict:
    if state == "preparing":
        return {"module": "faulty", "environment": {"HELD_PREPARATION": "1"}}
    if state == "error":
        return {"module": "faulty", "environment": {"POISONED_STEPS": "1,2,3,4,5"}}
    return {}


def last_state(child) -> str | None:
    states = [event["state"] for event in child.events if event["event"] == "status"]
    return states[-1] if states else None


@pytest.mark.parametrize("state", ["idle", "preparing", "running", "paused", "done", "error"])
def test_in_every_state_a_bad_command_is_an_error_and_changes_nothing(sidecar, state):
    child = sidecar(**options(state))
    begin(child, state)
    before = last_state(child)
    bad = {
        b'{"cmd":"dance"}': "Unknown command",
        b'{"cmd":': "not valid JSON",
        b"\xff": "UTF-8",
        b'{"cmd":"set_max_steps","n":"many"}': "“n”",
        b'{"cmd":"set_paths","training_data":1}': "“training_data”",
        b'{"cmd":"start","max_steps":0}': "“max_steps”",
        b"y" * ((1 << 20) + 1): "longer than",
    }
    if state in ("preparing", "running", "paused"):
        bad[b'{"cmd":"start","max_steps":5,"resume":false}'] = "already under way"
    if state not in ("running", "paused"):
        bad[b'{"cmd":"toggle_pause"}'] = "can be paused"
    for line, hint in bad.items():
        child.send_raw(line + b"\n")
        assert hint in child.wait_for_kind("error")["msg"]
    assert last_state(child) == before
    child.send_raw(b"\n  \n")
    child.send("set_model_identity", identity={"name": "still listening"})
    assert child.wait_for_kind("model_identity")["identity"] == {"name": "still listening"}
    assert child.quit() == 0
    assert child.errors == b""


def test_every_status_carries_all_keys_and_the_loss_of_its_step(library, sidecar):
    child = sidecar()
    child.wait_for_kind("paths")
    child.train(300)
    losses = {point["step"]: point["loss"] for point in library.curve()}
    statuses = [event for event in child.events if event["event"] == "status"]
    assert all(set(status) >= REQUIRED_STATUS_KEYS for status in statuses)
    assert all(status["loss"] == losses[status["step"]] for status in statuses if status["step"])
    assert statuses[-1]["val_loss"] > 0
    assert child.events[-2]["state"] == "done"
    assert child.events[-1] == {"event": "done"}
    kinds = [event["event"] for event in child.events]
    assert kinds.index("model_archived") < len(kinds) - 2


def test_pause_holds_the_step_and_the_time_and_keeps_reporting(sidecar):
    child = sidecar()
    begin(child, "paused")
    held = [child.wait_for_state("paused") for _ in range(2)]
    assert held[0]["step"] == held[1]["step"]
    assert held[0]["elapsed_s"] == held[1]["elapsed_s"]
    assert held[1]["tokens_per_sec"] == 0
    child.send("toggle_pause")
    child.wait_for_step(held[0]["step"] + 1)
    child.send("set_max_steps", n=1)
    child.wait_for_kind("done")
    assert child.quit() == 0


def test_fewer_steps_than_taken_finishes_even_while_paused(library, sidecar):
    child = sidecar()
    begin(child, "paused")
    child.send("set_max_steps", n=1)
    archived = child.wait_for_kind("model_archived")
    manifest = json.loads((library.runs()[0] / "manifest.json").read_text())
    assert manifest["max_steps"] == 1
    assert manifest["step"] == archived["step"] >= 1


def test_stop_while_preparing_cancels_and_nothing_is_kept(library, sidecar):
    child = sidecar(**options("preparing"))
    begin(child, "preparing")
    child.send("stop")
    child.wait_for_state("idle")
    assert list((library.model / "checkpoints").iterdir()) == []
    assert child.quit() == 0


def test_stop_without_a_run_is_no_error(sidecar):
    child = sidecar()
    child.send("stop")
    child.wait_for(lambda event: event["event"] == "log" and "nothing to stop" in event["msg"])
    assert child.quit() == 0
    assert child.messages() == []


def test_stop_and_quit_in_one_breath_leave_a_checkpoint(library, sidecar):
    child = sidecar()
    begin(child, "running")
    child.send_raw(b'{"cmd":"stop"}\n{"cmd":"quit"}\n')
    assert child.finish() == 0
    again = sidecar()
    again.start(1, resume=True)
    assert again.wait_for_kind("model_archived")["step"] >= 1


@pytest.mark.parametrize("way", ["input ends", "output breaks", "terminated"])
def test_when_the_application_is_gone_the_run_is_saved(library, sidecar, way):
    child = sidecar()
    begin(child, "running")
    if way == "input ends":
        child.process.stdin.close()
        assert child.finish() == 0
    elif way == "terminated":
        child.process.send_signal(signal.SIGTERM)
        assert child.finish() == 0
    else:
        # The reader must not sit in a read of the descriptor that is closed under it.
        os.dup2(os.open(os.devnull, os.O_RDONLY), child.process.stdout.fileno())
        assert child.process.wait(timeout=60) == 0
    again = sidecar()
    assert again.train(1, resume=True)["step"] >= 1


def test_an_application_that_does_not_read_does_not_stall_the_training(library, sidecar):
    child = sidecar(read=False, module="faulty", environment={"TOLD_ARCHIVE": "1"})
    child.send_raw(b'{"cmd":"dance"}\n' * 3000)
    child.start(400)
    child.wait_for_error_output(b"archived")
    assert len(library.runs()) == 1
    child.start_reading()
    child.wait_for_kind("done")
    assert child.quit() == 0


@pytest.mark.parametrize(
    ("family", "capability"),
    [
        ("image_generation", "pretrain"),
        ("multimodal", "pretrain"),
        ("image_generation", "finetune"),
        ("text_language", "finetune"),
        ("text_language", "lora"),
    ],
)
def test_what_these_scripts_cannot_train_is_refused_in_words(sidecar, family, capability):
    child = sidecar()
    child.start(5, model_family=family, training_capability=capability)
    message = child.wait_for_kind("error")["msg"]
    assert "(text_language, pretrain)" in message
    assert f"{family} with {capability}" in message
    assert "“Text Language Model” and “Pretrain from scratch”" in message
    refused = child.wait_for_state("idle")
    assert refused["error"] == message
    assert refused["max_steps"] > 0
    child.send(
        "set_training_profile",
        profile={"model_family": family, "training_capability": capability},
    )
    child.start(5)
    child.wait_for_kind("error")
    child.wait_for_state("idle")
    child.train(2, model_family="text_language", training_capability="pretrain")


def test_paths_set_during_a_run_count_from_the_next_run_on(library, sidecar, tmp_path):
    child = sidecar()
    begin(child, "running")
    new = {
        "training_data": str(library.data),
        "finished_models": str(tmp_path / "new"),
        "model_root": str(library.model),
    }
    child.send("set_paths", **new)
    assert child.wait_for_kind("paths") == {"event": "paths", "library_root": str(tmp_path)} | new
    child.send("set_max_steps", n=1)
    assert child.wait_for_kind("model_archived")["path"].startswith(str(library.finished))
    child.wait_for_kind("done")
    assert child.train(2)["path"].startswith(str(tmp_path / "new"))


def test_the_folders_are_told_again_only_when_one_has_changed(library, sidecar, tmp_path):
    child = sidecar()
    child.wait_for_kind("paths")
    same = {
        "training_data": str(library.data),
        "finished_models": str(library.finished),
        "model_root": str(library.model),
    }
    child.send("set_paths", **same)
    child.send("set_paths", **same | {"finished_models": str(tmp_path / "new")})
    assert child.wait_for_kind("paths")["finished_models"] == str(tmp_path / "new")


def test_the_identity_counts_until_the_run_is_finished(library, sidecar):
    child = sidecar()
    child.start(ENDLESS, model_identity={"name": "first", "author": "A"})
    child.wait_for_step(1)
    child.send("set_model_identity", identity={"name": "second"})
    child.send("set_max_steps", n=1)
    child.wait_for_kind("done")
    assert json.loads((library.runs()[0] / "manifest.json").read_text())["model_identity"] == {"name": "second"}


def test_resume_needs_a_checkpoint_and_the_same_data(library, sidecar):
    child = sidecar()
    child.start(5, resume=True)
    message = child.wait_for_kind("error")["msg"]
    assert "no checkpoint" in message
    assert child.wait_for_state("idle")["error"] == message
    child.train(5)
    assert "error" not in [event for event in child.events if event["event"] == "status"][-1]
    (library.data / "sea" / "more.txt").write_text("and now for something different " * 50)
    child.start(9, resume=True)
    assert "training data changed" in child.wait_for_kind("error")["msg"]
    child.wait_for_state("idle")


def test_resuming_beyond_the_end_goes_on_and_at_the_end_archives_again(library, sidecar):
    child = sidecar()
    child.train(5)
    first = library.curve()
    assert child.train(5, resume=True)["step"] == 5
    assert library.curve() == first
    assert child.train(8, resume=True)["step"] == 8
    assert library.curve()[:5] == first


def test_ready_carries_the_step_count_of_the_settings(library, sidecar):
    library.settings(default_max_steps=321)
    assert sidecar().wait_for_kind("ready")["default_max_steps"] == 321


def test_an_interpreter_without_mlx_says_what_to_install(sidecar):
    child = sidecar(module="faulty", environment={"BROKEN_MLX": "1"})
    message = child.wait_for_kind("error")["msg"]
    assert "pip install" in message
    assert "tokenizers" in message
    assert child.finish() == 1


def test_a_second_run_in_the_same_working_folder_is_refused(sidecar):
    first = sidecar()
    begin(first, "running")
    second = sidecar()
    second.start(5)
    assert str(first.process.pid) in second.wait_for_kind("error")["msg"]
    second.wait_for_state("idle")
