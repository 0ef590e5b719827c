"""The status that is repeated while nothing new comes."""

from __future__ import annotations

import queue

import pytest

from src.status import RunClock, SpeedMeter, StatusBoard

PATIENCE_S = 60


class Sent:
    def __init__(self) -> None:
        self.events: queue.SimpleQueue[dict] = queue.SimpleQueue()

    def send(self, event: dict) -> None:
        self.events.put(event)


@pytest.fixture
def board(monkeypatch):
    monkeypatch.setattr("src.status.REPEAT_AFTER_S", 0.005)
    made = StatusBoard(Sent())
    yield made
    made.publish(state="idle")


def repeats(board, count: int) -> list[float]:
    return [board._outbox.events.get(timeout=PATIENCE_S)["elapsed_s"] for _ in range(count)]


@pytest.mark.parametrize("state", ["running", "stopping"])
def test_while_the_clock_stands_still_so_does_the_time_of_the_repeats(board, state):
    board.clock = RunClock(3.0)
    board.publish(state=state, elapsed_s=3.0)
    assert set(repeats(board, 5)) == {3.0}


def test_while_the_clock_runs_the_repeats_move_on(board):
    board.clock = RunClock(3.0)
    board.clock.go()
    board.publish(state="running", elapsed_s=3.0)
    times = repeats(board, 5)
    assert times == sorted(set(times))


def test_speed_is_that_of_the_latest_steps():
    meter = SpeedMeter()
    assert [meter.after_step(2.0, 100) for _ in range(3)] == [50.0, 50.0, 50.0]
    assert meter.after_step(4.0, 800) == 200.0
    meter.clear()
    assert meter.after_step(1.0, 7) == 7.0
