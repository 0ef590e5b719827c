"""Cross entropy of a language model."""

from __future__ import annotations

import mlx.core as mx


def token_loss(logits: mx.array, targets: mx.array) -> mx.array:
    """Nats per token, in the targets' shape."""
    chosen = mx.take_along_axis(logits, targets[..., None], axis=-1).squeeze(-1)
    return mx.logsumexp(logits, axis=-1) - chosen
