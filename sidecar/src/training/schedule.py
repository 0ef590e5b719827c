"""The learning rate: linear warm-up, then a cosine down to a floor at the last step."""

from __future__ import annotations

import math
from dataclasses import dataclass, replace

LONGEST_WARMUP = 200
GLIDE_STEPS = 50


@dataclass(frozen=True)
class Schedule:
    """A pure function of the step, apart from `glide`: when the step count changes, the rate moves from its old
    course to the new one over GLIDE_STEPS steps, or half of those that are left, instead of jumping."""

    peak: float
    floor_fraction: float
    max_steps: int
    warmup_steps: int | None = None
    glide_from: int = 0
    glide_ratio: float = 1.0
    glide_steps: int = GLIDE_STEPS

    def rate(self, step: int) -> float:
        """The rate of the update that takes the run from `step` to `step + 1`."""
        remaining = max(0.0, 1.0 - (step - self.glide_from) / self.glide_steps)
        return self._course(step) * (1.0 + (self.glide_ratio - 1.0) * min(1.0, remaining))

    def with_max_steps(self, max_steps: int, step: int) -> Schedule:
        if max_steps == self.max_steps:
            return self
        return self._gliding(Schedule(self.peak, self.floor_fraction, max_steps, self.warmup_steps), step)

    def _gliding(self, changed: Schedule, step: int) -> Schedule:
        course = changed._course(step)
        ratio = self.rate(step) / course if course > 0 else 1.0
        steps = max(1, min(GLIDE_STEPS, (changed.max_steps - step) // 2))
        return replace(changed, glide_from=step, glide_ratio=ratio, glide_steps=steps)

    def _course(self, step: int) -> float:
        warmup = self._warmup()
        if step < warmup:
            return self.peak * (step + 1) / (warmup + 1)
        progress = min(1.0, (step - warmup) / max(1, self.max_steps - warmup))
        cosine = 0.5 * (1.0 + math.cos(math.pi * progress))
        return self.peak * (self.floor_fraction + (1.0 - self.floor_fraction) * cosine)

    def _warmup(self) -> int:
        if self.warmup_steps is not None:
            return self.warmup_steps
        return min(LONGEST_WARMUP, self.max_steps // 10)
