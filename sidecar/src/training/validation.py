"""Fixed batches for the validation loss and for neuron snapshots."""

from __future__ import annotations

import numpy as np

PROBE_ROWS = 4


def validation_batches(tokens: np.ndarray, context: int, rows: int, count: int) -> list[np.ndarray]:
    """At most `count` batches of `rows` windows, spread evenly over the tokens; the same ones every time.

    A short text gives fewer or shorter windows, and fewer than two tokens give none.
    """
    width = min(context + 1, tokens.size)
    if width < 2:
        return []
    available = max(1, (tokens.size - 1) // (width - 1))
    wanted = min(available, rows * count)
    starts = np.linspace(0, tokens.size - width, wanted).astype(np.int64)
    windows = np.stack([tokens[start : start + width] for start in starts]).astype(np.int32)
    full = wanted - wanted % rows
    return [windows[:full][i : i + rows] for i in range(0, full, rows)] or [windows]


def probe_batch(batches: list[np.ndarray], train: np.ndarray, context: int) -> np.ndarray:
    """A few windows whose activations are shown: validation text where there is some."""
    if batches:
        return batches[0][:PROBE_ROWS]
    return validation_batches(train, context, PROBE_ROWS, 1)[0]
