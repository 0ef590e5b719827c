"""The complete loss curve of a run: one point per step."""

from __future__ import annotations

import io
import json
from array import array
from pathlib import Path

import numpy as np

LINES_PER_WRITE = 10_000


class LossCurve:
    """Grows by one point per step; 16 bytes each in memory and in checkpoints."""

    def __init__(self, steps: np.ndarray | None = None, losses: np.ndarray | None = None) -> None:
        self._steps = array("q", [] if steps is None else steps.tolist())
        self._losses = array("d", [] if losses is None else losses.tolist())

    def __len__(self) -> int:
        return len(self._steps)

    @property
    def last_loss(self) -> float:
        return self._losses[-1] if self._losses else 0.0

    def append(self, step: int, loss: float) -> None:
        self._steps.append(step)
        self._losses.append(loss)

    def save(self, path: Path) -> None:
        packed = io.BytesIO()  # a zip file that meets a full disk raises more than OSError
        np.savez(packed, step=np.array(self._steps, dtype=np.int64), loss=np.array(self._losses, dtype=np.float64))
        path.write_bytes(packed.getbuffer())

    @classmethod
    def load(cls, path: Path) -> LossCurve:
        with np.load(path, allow_pickle=False) as stored:
            return cls(stored["step"].astype(np.int64), stored["loss"].astype(np.float64))

    def write_lines(self, path: Path) -> None:
        """One JSON object per line, as the library reads it."""
        with path.open("w", encoding="utf-8") as file:
            for start in range(0, len(self), LINES_PER_WRITE):
                stop = start + LINES_PER_WRITE
                points = zip(self._steps[start:stop], self._losses[start:stop])
                file.writelines(json.dumps({"step": step, "loss": loss}) + "\n" for step, loss in points)
