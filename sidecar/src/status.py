"""The latest status, repeated while nothing new comes."""

from __future__ import annotations

import threading
import time
from collections import deque
from collections.abc import Callable
from dataclasses import dataclass, replace

from src.wire.outbox import Outbox

LIVE_STATES = frozenset({"starting", "preparing", "running", "paused", "stopping"})
REPEAT_AFTER_S = 0.9
SPEED_WINDOW_S = 5.0


@dataclass(frozen=True)
class Status:
    state: str = "idle"
    step: int = 0
    max_steps: int = 0
    loss: float = 0.0
    lr: float = 0.0
    grad_norm: float = 0.0
    tokens_per_sec: float = 0.0
    elapsed_s: float = 0.0
    val_loss: float | None = None
    error: str | None = None
    prep_progress: float = 0.0
    prep_detail: str = ""
    prep_elapsed_s: float = 0.0
    prep_eta_s: float = 0.0

    def as_event(self) -> dict:
        event = {"event": "status"} | vars(self)
        return {key: value for key, value in event.items() if value is not None}


class RunClock:
    """Seconds spent training: stands still while preparing and while paused, and survives a resume. Any thread may
    read it."""

    def __init__(self, elapsed_s: float = 0.0) -> None:
        self._reading: tuple[float, float | None] = (elapsed_s, None)

    def go(self) -> None:
        elapsed_s, since = self._reading
        if since is None:
            self._reading = (elapsed_s, time.monotonic())

    def halt(self) -> None:
        self._reading = (self.elapsed_s, None)

    @property
    def elapsed_s(self) -> float:
        elapsed_s, since = self._reading
        return elapsed_s + (time.monotonic() - since if since is not None else 0.0)


class SpeedMeter:
    """Tokens per second over the last seconds of steps, without validation and checkpoints in between."""

    def __init__(self) -> None:
        self._steps: deque[tuple[float, int]] = deque()

    def clear(self) -> None:
        self._steps.clear()

    def after_step(self, duration_s: float, tokens: int) -> float:
        self._steps.append((duration_s, tokens))
        total = sum(seconds for seconds, _ in self._steps)
        while len(self._steps) > 1 and (total > SPEED_WINDOW_S or len(self._steps) > 50):
            total -= self._steps.popleft()[0]
        return sum(tokens for _, tokens in self._steps) / total if total > 0 else 0.0


class StatusBoard:
    """Sends what the main thread publishes, and sends it again, with the time moved on, when a long operation
    keeps the main thread from publishing. `clock` is the one of the run under way."""

    def __init__(self, outbox: Outbox) -> None:
        self.clock = RunClock()
        self._outbox = outbox
        self._changed = threading.Condition()
        self._status = Status()
        self._published_at = time.monotonic()
        threading.Thread(target=self._repeat, name="status", daemon=True).start()

    @property
    def current(self) -> Status:
        return self._status

    def publish(self, **changes) -> None:
        """Changes some fields; the others stay."""
        self._set(lambda status: replace(status, **changes))

    def reset(self, **values) -> None:
        """Begins anew: fields that are not given go back to zero."""
        self._set(lambda status: Status(**values))

    def _set(self, change: Callable[[Status], Status]) -> None:
        with self._changed:
            was_live = self._status.state in LIVE_STATES
            self._status = change(self._status)
            self._published_at = time.monotonic()
            self._outbox.send(self._status.as_event())
            if not was_live:
                self._changed.notify()

    def _repeat(self) -> None:
        with self._changed:
            while True:
                self._changed.wait_for(lambda: self._status.state in LIVE_STATES)
                passed = time.monotonic() - self._published_at
                if passed < REPEAT_AFTER_S:
                    self._changed.wait(REPEAT_AFTER_S - passed)
                    continue
                self._move_on(passed)
                self._published_at = time.monotonic()
                self._outbox.send(self._status.as_event())

    def _move_on(self, passed: float) -> None:
        status = self._status
        if status.state in ("running", "stopping"):
            self._status = replace(status, elapsed_s=self.clock.elapsed_s)
        elif status.state == "preparing":
            self._status = replace(
                status,
                prep_elapsed_s=status.prep_elapsed_s + passed,
                prep_eta_s=max(0.0, status.prep_eta_s - passed),
            )
