"""Warnings about single files, limited so that 50,000 odd files do not fill the log."""

from __future__ import annotations

from collections import Counter
from collections.abc import Callable

LINES_PER_KIND = 5


class WarningLimiter:
    """Passes on the first lines of each kind, and at the end how many more there were."""

    def __init__(self, emit: Callable[[str], None]):
        self._emit = emit
        self._seen: Counter[str] = Counter()

    def add(self, kind: str, line: str) -> None:
        """`kind` completes the sentence "3 more files ..."."""
        self._seen[kind] += 1
        if self._seen[kind] <= LINES_PER_KIND:
            self._emit(line)

    def summarize(self) -> None:
        for kind, count in self._seen.items():
            more = count - LINES_PER_KIND
            if more > 0:
                self._emit(f"{more:,} more {'file' if more == 1 else 'files'} {kind}")
        self._seen.clear()
