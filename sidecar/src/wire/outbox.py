"""Events on their way to the application, through a thread of their own."""

from __future__ import annotations

import json
import math
import os
import threading
import time
from collections import deque
from collections.abc import Callable
from dataclasses import dataclass

SHORTEST_STATUS_INTERVAL_S = 0.105
MAXIMUM_LOG_LINES = 5_000
MAXIMUM_EVENTS = 10_000


class SystemClock:
    """The time that the pace of the events goes by."""

    def now(self) -> float:
        return time.monotonic()

    def wait(self, changed: threading.Condition, seconds: float) -> None:
        """Until `changed` is notified, but no longer than `seconds`."""
        changed.wait(seconds)


@dataclass
class _Waiting:
    event: dict


def encode_event(event: dict) -> bytes:
    """One line; whatever is not finite becomes 0, because JSON has no word for it."""
    text = json.dumps(_finite(event), ensure_ascii=False, separators=(",", ":"), allow_nan=False)
    return text.encode("utf-8", "replace") + b"\n"


def _finite(value):
    if isinstance(value, float):
        return value if math.isfinite(value) else 0.0
    if isinstance(value, dict):
        return {str(key): _finite(item) for key, item in value.items()}
    if isinstance(value, (list, tuple)):
        return [_finite(item) for item in value]
    return value


class Outbox:
    """Never blocks its callers. When the application stops reading, the newest status and snapshot replace the
    ones that wait, other events are kept up to a bound, and the log says how many lines were lost."""

    def __init__(self, descriptor: int, on_gone: Callable[[str], None], clock: SystemClock | None = None) -> None:
        self._descriptor = descriptor
        self._on_gone = on_gone
        self._clock = clock or SystemClock()
        self._events: deque[_Waiting] = deque()
        self._changed = threading.Condition()
        self._status: _Waiting | None = None
        self._snapshots: dict[bool, _Waiting] = {}
        self._lost = 0
        self._gone = False
        self._closing = False
        self._busy = False
        self._last_status_at = -math.inf
        self._thread = threading.Thread(target=self._run, name="output", daemon=True)
        self._thread.start()

    def send(self, event: dict) -> None:
        """Takes the event over: the caller must not change it afterwards. Callable from any thread."""
        with self._changed:
            if self._gone or self._coalesced(event):
                return
            limit = MAXIMUM_LOG_LINES if event["event"] == "log" else MAXIMUM_EVENTS
            if len(self._events) >= limit:
                self._lost += 1
                return
            self._append(event)
            self._changed.notify()

    def log(self, message: str, level: str = "INFO") -> None:
        self.send({"event": "log", "level": level, "msg": message})

    def error(self, message: str) -> None:
        self.send({"event": "error", "msg": message})

    def close(self, timeout_s: float) -> None:
        """Waits until everything is written, or nobody reads it any more, or the time is over."""
        with self._changed:
            self._closing = True
            self._changed.notify_all()
            self._changed.wait_for(lambda: self._gone or not (self._events or self._busy), timeout_s)

    def _coalesced(self, event: dict) -> bool:
        if event["event"] == "status":
            waiting = self._status
            if waiting is not None and waiting.event["state"] == event["state"]:
                waiting.event = event
                return True
        elif event["event"] == "neurons":
            waiting = self._snapshots.get(event["final"])
            if waiting is not None:
                waiting.event = event
                return True
        return False

    def _append(self, event: dict) -> None:
        waiting = _Waiting(event)
        self._events.append(waiting)
        if event["event"] == "status":
            self._status = waiting
        elif event["event"] == "neurons":
            self._snapshots[event["final"]] = waiting

    def _run(self) -> None:
        while True:
            event = self._next()
            if event is None:
                return
            try:
                self._write(encode_event(event))
            except OSError as error:
                self._leave(error.strerror or "write failed")
                return
            with self._changed:
                self._busy = False
                self._changed.notify_all()

    def _next(self) -> dict | None:
        with self._changed:
            while True:
                self._changed.wait_for(lambda: self._events or self._closing)
                if not self._events:
                    return None
                waiting = self._events[0]
                if waiting.event["event"] == "status":
                    delay = self._last_status_at + SHORTEST_STATUS_INTERVAL_S - self._clock.now()
                    if delay > 0:
                        self._clock.wait(self._changed, delay)
                        continue
                return self._take(waiting)

    def _take(self, waiting: _Waiting) -> dict:
        self._events.popleft()
        self._busy = True
        if waiting.event["event"] == "status":
            self._last_status_at = self._clock.now()
        if waiting is self._status:
            self._status = None
        if waiting is self._snapshots.get(waiting.event.get("final")):
            del self._snapshots[waiting.event["final"]]
        if self._lost and len(self._events) < MAXIMUM_LOG_LINES:
            message = f"{self._lost} events were lost because the application did not read them"
            self._events.append(_Waiting({"event": "log", "level": "WARNING", "msg": message}))
            self._lost = 0
        return waiting.event

    def _write(self, line: bytes) -> None:
        remaining = memoryview(line)
        while remaining:
            remaining = remaining[os.write(self._descriptor, remaining) :]

    def _leave(self, reason: str) -> None:
        with self._changed:
            self._gone = True
            self._busy = False
            self._events.clear()
            self._changed.notify_all()
        self._on_gone(f"its output is closed ({reason})")
