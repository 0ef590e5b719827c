"""Events on their way out, while the application reads and while it does not."""

from __future__ import annotations

import itertools
import json
import os
import threading

import pytest

from src.wire.outbox import Outbox, encode_event


def status(step: int, state: str = "running") -> dict:
    return {"event": "status", "state": state, "step": step}


class Pipe:
    """An outbox whose reader has not begun yet."""

    def __init__(self) -> None:
        self.reader, self.writer = os.pipe()
        self.first = b""
        self.gone = threading.Event()
        self.outbox = Outbox(self.writer, lambda reason: self.gone.set())

    def fill(self) -> None:
        """Blocks the writing thread: one event larger than any pipe."""
        self.outbox.log("x" * (1 << 21))
        self.first = os.read(self.reader, 1)

    def lines(self, last: dict, until: str = "") -> list[dict]:
        """Everything up to `last`, or up to a line that holds `until`."""
        self.outbox.send(last)
        events = []
        with os.fdopen(os.dup(self.reader), "rb") as file:
            while line := file.readline():
                line = self.first + line if not events else line
                events.append(json.loads(line))
                if until.encode() in line if until else events[-1] == last:
                    break
        return events


@pytest.fixture
def pipe():
    made = Pipe()
    yield made
    os.close(made.reader)
    made.outbox.close(60)
    os.close(made.writer)


def test_nothing_that_is_not_finite_reaches_the_wire():
    line = encode_event(
        {
            "event": "status",
            "loss": float("nan"),
            "lr": float("inf"),
            "layers": [{"a": -float("inf")}],
        }
    )
    assert line == b'{"event":"status","loss":0.0,"lr":0.0,"layers":[{"a":0.0}]}\n'


def test_an_event_is_one_line_whatever_its_text(pipe):
    pipe.outbox.log("two\nlines \u2028 and \ud800 half a pair")
    first = pipe.lines({"event": "done"})[0]
    assert first["msg"] == "two\nlines \u2028 and ? half a pair"


def test_order_is_kept_and_a_change_of_state_is_never_lost(pipe):
    pipe.fill()
    for state in ("starting", "preparing", "starting", "running"):
        pipe.outbox.send(status(0, state))
    pipe.outbox.send({"event": "model_archived", "path": "p"})
    events = pipe.lines({"event": "done"})[1:]
    assert [event.get("state", event["event"]) for event in events] == [
        "starting",
        "preparing",
        "starting",
        "running",
        "model_archived",
        "done",
    ]


def test_while_nobody_reads_the_newest_status_and_snapshot_replace_the_older(pipe):
    pipe.fill()
    for step in range(10_000):
        pipe.outbox.send(status(step))
        pipe.outbox.send({"event": "neurons", "final": False, "step": step})
    pipe.outbox.send({"event": "neurons", "final": True, "step": 10_000})
    events = pipe.lines({"event": "done"})[1:]
    assert [event.get("step") for event in events] == [9_999, 9_999, 10_000, None]


def test_log_lines_beyond_the_bound_are_dropped_and_counted_and_errors_stay(pipe):
    pipe.fill()
    for number in range(6_000):
        pipe.outbox.log(str(number))
    pipe.outbox.error("kept")
    events = pipe.lines({"event": "done"}, until="were lost")
    texts = [event.get("msg") for event in events]
    assert "4998" in texts
    assert "5000" not in texts
    assert "kept" in texts
    assert {"event": "done"} in events


class SteppedClock:
    """Stands still, except for whoever waits."""

    def __init__(self) -> None:
        self.time = 1000.0

    def now(self) -> float:
        return self.time

    def wait(self, changed: threading.Condition, seconds: float) -> None:
        self.time += seconds


def test_at_most_ten_statuses_a_second_and_other_events_at_once(monkeypatch):
    clock = SteppedClock()
    reader, writer = os.pipe()
    written = []
    monkeypatch.setattr(Outbox, "_write", lambda self, line: written.append((json.loads(line)["event"], clock.time)))
    outbox = Outbox(writer, lambda reason: None, clock)
    for state in ("starting", "preparing", "running"):
        outbox.send(status(1, state))
        outbox.log(state)
    outbox.close(60)
    assert [event for event, _ in written] == ["status", "log"] * 3
    statuses = [at for event, at in written if event == "status"]
    logs = [at for event, at in written if event == "log"]
    assert logs == statuses
    assert [later - earlier for earlier, later in itertools.pairwise(statuses)] == pytest.approx([0.105, 0.105])
    os.close(reader)
    os.close(writer)


def test_a_closed_output_is_reported_once_and_sending_goes_on_without_effect(pipe):
    os.close(pipe.reader)
    pipe.outbox.log("nobody")
    assert pipe.gone.wait(60)
    pipe.outbox.log("still nobody")
    pipe.outbox.close(60)
    pipe.reader = os.open(os.devnull, os.O_RDONLY)
