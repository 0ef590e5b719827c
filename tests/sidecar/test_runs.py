"""Whole runs of a tiny model, through a real child process."""

from __future__ import annotations

import json

from support.child import Library

STEPS = 400


def test_a_run_goes_through_its_states_and_ends_archived(library, sidecar):
    child = sidecar()
    child.wait_for_kind("paths")
    archived = child.train(12)
    assert child.quit() == 0
    states = [event["state"] for event in child.events if event["event"] == "status"]
    distinct = [state for state, before in zip(states, [None, *states]) if state != before]
    assert distinct == ["starting", "preparing", "starting", "running", "done"]
    run = library.runs()[0]
    assert archived["path"] == str(run)
    assert archived["folder_name"] == run.name
    assert archived["step"] == 12
    assert [point["step"] for point in library.curve()] == list(range(1, 13))
    assert archived["loss"] == library.curve()[-1]["loss"]
    assert json.loads((run / "manifest.json").read_text())["final_loss"] == archived["loss"]
    assert child.errors == b""


def test_stop_and_resume_give_the_same_losses_as_an_undisturbed_run(library, sidecar, tmp_path):
    sidecar().train(STEPS)
    undisturbed = library.curve()

    other = Library(tmp_path / "other").fill()
    child = sidecar(other)
    child.start(STEPS)
    child.wait_for_step(1)
    child.send("stop")
    stopped = child.wait_for_state("idle")
    assert 0 < stopped["step"] < STEPS
    assert any("Resume from latest checkpoint" in text for text in child.messages("log"))
    assert other.runs() == []
    child.train(STEPS, resume=True)
    assert other.curve() == undisturbed
