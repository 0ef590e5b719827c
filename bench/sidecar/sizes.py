"""The models that are compared: two that the scripts choose for a CPU with few cores, and a larger one."""

from __future__ import annotations

from dataclasses import dataclass

SEED = 7
RATE = 1e-3
BETAS = (0.9, 0.95)
EPSILON = 1e-8
WEIGHT_DECAY = 0.1
CLIP_NORM = 1.0


@dataclass(frozen=True)
class Size:
    vocabulary: int
    width: int
    blocks: int
    heads: int
    feed_forward: int
    context: int
    batch: int

    @property
    def tokens(self) -> int:
        return self.batch * self.context


SIZES = {
    "small": Size(vocabulary=2048, width=192, blocks=4, heads=3, feed_forward=512, context=128, batch=12),
    "medium": Size(vocabulary=4096, width=256, blocks=6, heads=4, feed_forward=704, context=128, batch=16),
    "large": Size(vocabulary=8192, width=384, blocks=6, heads=6, feed_forward=1024, context=256, batch=8),
}
