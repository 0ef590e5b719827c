"""Quitting, with and without a run to save."""

import pytest
from program import NAME
from screen_reader import State
from stages import READY, RUNNING, status
from waiting import wait_until

NOTICE = "Finishing the training run…"


@pytest.fixture
def busy(program):
    """A sidecar in the middle of a run, which ends when it is allowed to after it was told to quit."""
    program.saved = program.home / "saved"
    program.scenario = [
        *READY,
        status("running", **RUNNING),
        {"await": "quit"},
        {"wait_for_file": str(program.saved)},
        {"exit": 0},
    ]
    program.start()
    program.wait_for("State: Running")
    return program


def told(program):
    return [command["cmd"] for command in program.commands() if command["cmd"] in ("stop", "quit")]


def test_an_idle_program_quits_at_once(program, desktop):
    program.start_ready()
    desktop.key("ctrl+q")
    assert program.wait_for_exit() == 0
    wait_until(lambda: told(program) == ["stop", "quit"], "the commands")


def test_closing_the_last_window_quits(program, desktop):
    program.start_ready()
    desktop.close_window()
    assert program.wait_for_exit() == 0


def test_before_ready_nothing_is_sent(program, desktop):
    ended = program.home / "ended"
    program.scenario = [status("running", **RUNNING), {"wait_for_eof": True}, {"touch": str(ended)}, {"exit": 0}]
    program.start()
    program.wait_for("State: Running")
    desktop.key("ctrl+q")
    assert program.wait_for_exit() == 0
    wait_until(ended.exists, "the sidecar to have read everything")
    assert told(program) == []


def test_a_run_is_waited_for(busy, desktop):
    desktop.key("ctrl+q")
    busy.wait_for_window(NOTICE)
    busy.wait_for_texts("Quit Now", "Waiting for the training run to end")
    wait_until(lambda: told(busy) == ["stop", "quit"], "the commands")
    # A second request changes nothing, nor does Esc. What is pressed after them shows that they have come through, and
    # Esc lets go of it.
    way_out = busy.wait_for("Quit Now")
    wait_until(lambda: way_out.is_focused, "the way out")
    desktop.key("ctrl+q", "Escape")
    with desktop.held("space"):
        wait_until(lambda: way_out.has(State.PRESSED), "the way out to be pressed")
        desktop.key("Escape")
        wait_until(lambda: not way_out.has(State.PRESSED), "the way out to be let go")
    assert busy.window(NOTICE)
    busy.saved.touch()
    assert busy.wait_for_exit() == 0
    assert told(busy) == ["stop", "quit"]


def test_closing_the_window_waits_as_well(busy, desktop):
    desktop.close_window()
    busy.wait_for_window(NOTICE)
    busy.wait_for(NAME, "frame")
    busy.saved.touch()
    assert busy.wait_for_exit() == 0


@pytest.mark.parametrize("state", ["starting", "paused", "stopping"])
def test_every_busy_state_is_waited_for(program, state):
    saved = program.home / "saved"
    program.scenario = [
        *READY,
        status(state),
        {"await": "quit"},
        {"wait_for_file": str(saved)},
        {"exit": 0},
    ]
    program.start()
    program.wait_for(f"State: {state.capitalize()}")
    program.desktop.key("ctrl+q")
    program.wait_for_window(NOTICE)
    assert program.is_running
    saved.touch()
    assert program.wait_for_exit() == 0


@pytest.mark.parametrize("state", ["preparing", "done", "error"])
def test_no_other_state_is_waited_for(program, state):
    never = program.home / "never"
    program.scenario = [*READY, status(state), {"await": "quit"}, {"wait_for_file": str(never)}]
    program.start()
    program.wait_for(f"State: {state.capitalize()}")
    program.quit()
    wait_until(lambda: told(program) == ["stop", "quit"], "the commands")


def test_whoever_will_not_wait_quits_now(busy, desktop):
    desktop.key("ctrl+q")
    busy.wait_for_window(NOTICE)
    desktop.key("Tab", "space")
    assert busy.wait_for_exit() == 0
    assert not busy.saved.exists()


def test_a_sidecar_that_dies_meanwhile_ends_the_wait(busy, desktop):
    busy.saved.touch()
    desktop.key("ctrl+q")
    assert busy.wait_for_exit() == 0
