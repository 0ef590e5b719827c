"""One fraction, which never falls, over phases that take very different times per byte."""

from __future__ import annotations

import contextlib
import math
import threading
import time
from collections.abc import Callable, Iterator

# Rough bytes per second on a small machine; only their proportions matter.
READING_RATE = 400e6
COUNTING_RATE = 60e6
TRAINING_RATE = 6e6
ENCODING_RATE = 5e6
TRAINING_START_S = 0.3

EMIT_INTERVAL_S = 0.05


class PhaseProgress:
    """Phases have weights in expected seconds; the fraction never falls."""

    def __init__(self, emit: Callable[[float, str], None], seconds_by_phase: dict[str, float]):
        self._emit = emit
        self._seconds = dict(seconds_by_phase)
        self._fraction = 0.0
        self._detail = ""
        self._last = -math.inf
        self._lock = threading.Lock()

    def drop(self, phase: str) -> None:
        """Nothing to do in that phase after all."""
        self._seconds[phase] = 0.0

    def at(self, phase: str, share: float, detail: str) -> None:
        before = 0.0
        for name, seconds in self._seconds.items():
            if name == phase:
                before += seconds * min(max(share, 0.0), 1.0)
                break
            before += seconds
        total = sum(self._seconds.values())
        fraction = min(before / total, 1.0) if total > 0 else 0.0
        with self._lock:
            self._fraction = max(self._fraction, fraction)
            now = time.monotonic()
            if detail != self._detail or now - self._last >= EMIT_INTERVAL_S:
                self._detail, self._last = detail, now
                self._emit(self._fraction, detail)

    @contextlib.contextmanager
    def expecting(self, phase: str, seconds: float, detail: str) -> Iterator[None]:
        """For work that cannot tell how far it is: approaches the end as time passes."""
        finished = threading.Event()
        started = time.monotonic()

        def advance() -> None:
            while not finished.wait(0.1):
                passed = time.monotonic() - started
                self.at(phase, 1 - math.exp(-1.5 * passed / seconds), detail)

        self.at(phase, 0.0, detail)
        thread = threading.Thread(target=advance, daemon=True)
        thread.start()
        try:
            yield
        finally:
            finished.set()
            thread.join()
