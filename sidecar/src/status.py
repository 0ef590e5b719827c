"""The latest status, repeated while nothing new comes."""

from __future__ import annotations

import threading
import time
from collections.abc import Callable
from dataclasses import dataclass, replace

from src.wire.outbox import Outbox

LIVE_STATES = frozenset({"starting", "preparing", "running", "paused", "stopping"})
REPEAT_AFTER_S = 0.9


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
    """Seconds spent training: stands still while preparing and while paused, and survives a resume."""

    def __init__(self, elapsed_s: float = 0.0) -> None:
        self._elapsed_s = elapsed_s
        self._since: float | None = None

    def go(self) -> None:
        if self._since is None:
            self._since = time.monotonic()

    def halt(self) -> None:
        self._elapsed_s = self.elapsed_s
        self._since = None

    @property
    def elapsed_s(self) -> float:
        since = self._since
        return self._elapsed_s + (time.monotonic() - since if since is not None else 0.0)


class StatusBoard:
    """Sends what the main thread publishes, and sends it again, with the time moved on, when a long operation
    keeps the main thread from publishing."""

    def __init__(self, outbox: Outbox) -> None:
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
            self._status = replace(status, elapsed_s=status.elapsed_s + passed)
        elif status.state == "preparing":
            self._status = replace(
                status,
                prep_elapsed_s=status.prep_elapsed_s + passed,
                prep_eta_s=max(0.0, status.prep_eta_s - passed),
            )
