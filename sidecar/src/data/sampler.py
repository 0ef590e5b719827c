"""Which training windows a step sees, as a function of the seed and the step alone."""

from __future__ import annotations

import numpy as np

from .records import PreparationError
from .split import MASK, mix

ROUNDS = 6


class BatchSampler:
    """Epochs of windows in shuffled order, without any state to save.

    The tokens form a ring (documents end and begin at its seam). In each epoch windows of
    `context` inputs lie side by side from an offset of that epoch, and every one is drawn
    exactly once. Raises PreparationError if the tokens do not fill one window.
    """

    def __init__(self, tokens: np.ndarray, context: int, batch: int, seed: int):
        if len(tokens) < context + 1:
            raise PreparationError(
                f"The training data holds only {len(tokens):,} tokens, fewer than the "
                f"{context + 1:,} of one training window. Add more text to the Training Data "
                "folder, or choose a shorter context."
            )
        self._tokens = tokens
        self._context = context
        self._batch = batch
        self._seed = mix(seed & MASK)
        self.windows_per_epoch = len(tokens) // context

    def batch_at(self, step: int) -> np.ndarray:
        """Windows of step 0, 1, ... as int32 of shape (batch, context + 1)."""
        first = step * self._batch
        windows = np.empty((self._batch, self._context + 1), dtype=np.int32)
        for row in range(self._batch):
            windows[row] = self._window(self._start(first + row))
        return windows

    def _start(self, sample: int) -> int:
        epoch, position = divmod(sample, self.windows_per_epoch)
        key = mix(self._seed ^ mix(epoch))
        offset = key % self._context
        return offset + _shuffled(position, self.windows_per_epoch, key) * self._context

    def _window(self, start: int) -> np.ndarray:
        length = len(self._tokens)
        end = start + self._context + 1
        if end <= length:
            return self._tokens[start:end]
        return np.concatenate((self._tokens[start:], self._tokens[: end - length]))


def _shuffled(position: int, count: int, key: int) -> int:
    """A permutation of range(count) that needs no table: a Feistel network, walked until the
    result falls into the range."""
    half = max(1, ((count - 1).bit_length() + 1) // 2)
    low = (1 << half) - 1
    while True:
        left, right = position >> half, position & low
        for turn in range(ROUNDS):
            left, right = right, left ^ (mix(key ^ mix(right + (turn << 48))) & low)
        position = left << half | right
        if position < count:
            return position
