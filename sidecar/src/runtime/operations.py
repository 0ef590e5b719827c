"""The model's costly operations, written for the device they run on.

On a GPU they are MLX's own. On a CPU MLX computes every exponential one number at a time (12 ns each), which takes
longer than all matrix products of a training step together; there a polynomial, written as whole-array additions and
products, takes a quarter of that. The results agree with MLX's to a few units of float32's last place.
"""

from __future__ import annotations

import math

import mlx.core as mx
import mlx.nn as nn

# 2**r - 1 for r in [-0.5, 0.5] from the power 1 upwards, fitted for the least greatest relative error: 1e-7.
_POWER_OF_TWO = (
    0.6931470036506653,
    0.24022242426872253,
    0.05550733581185341,
    0.009671512991189957,
    0.001326472731307149,
)
_LOG2_E = math.log2(math.e)

# Adding it to a float32 of moderate size rounds that to an integer, which then stands in the low bits.
_ROUNDING = float(3 << 22)
_EXPONENT_SHIFT = 23

# Scores of keys that may not be seen; finite, because the difference of two infinities is not a number.
_HIDDEN = -1e9

# Rows of queries handled at once: keys after the last of them need not be looked at.
_QUERY_BLOCK = 64
# Elements of a logits block, so that the passes over it stay in the processor's cache.
_LOGITS_BLOCK = 1 << 18


def causal_attention(queries: mx.array, keys: mx.array, values: mx.array, scale: float) -> mx.array:
    """Softmax attention; arrays are (batch, heads, length, channels), and there may be fewer key-value heads.

    The last query stands at the last key's position, as when generating with a cache.
    """
    if _on_gpu() or queries.shape[2] == 1:
        mask = "causal" if queries.shape[2] > 1 else None
        return mx.fast.scaled_dot_product_attention(queries, keys, values, scale=scale, mask=mask)
    batch, heads, length, channels = queries.shape
    groups = keys.shape[1]
    # Scores in powers of two save a product per score.
    queries = (queries * (scale * _LOG2_E)).reshape(batch, groups, heads // groups, length, channels)
    keys, values = keys[:, :, None], values[:, :, None]
    earlier = keys.shape[3] - length
    blocks = []
    for start in range(0, length, _QUERY_BLOCK):
        stop = min(start + _QUERY_BLOCK, length)
        seen = earlier + stop
        mask = mx.triu(mx.full((stop - start, seen), _HIDDEN), k=earlier + start + 1)
        blocks.append(
            _attention_block(queries[..., start:stop, :], keys[..., :seen, :], values[..., :seen, :], mask)[0]
        )
    attended = blocks[0] if len(blocks) == 1 else mx.concatenate(blocks, axis=3)
    return attended.reshape(batch, heads, length, channels)


def gated_silu(gate: mx.array, value: mx.array) -> mx.array:
    """silu(gate) * value."""
    if _on_gpu():
        return nn.silu(gate) * value
    return _gated_silu(gate, value)


def token_loss(logits: mx.array, targets: mx.array) -> mx.array:
    """Cross entropy in nats per token, in the targets' shape."""
    if _on_gpu():
        return nn.losses.cross_entropy(logits, targets)
    return _cross_entropy(logits.reshape(-1, logits.shape[-1]), targets.reshape(-1))[0].reshape(targets.shape)


def _on_gpu() -> bool:
    return mx.default_device() == mx.gpu


def _power_of_two(exponents: mx.array) -> mx.array:
    """2**x for float32 x below 128. At and below -127 it is exactly 0; not-a-number stays so."""
    exponents = mx.maximum(exponents, -127.0)
    shifted = exponents + _ROUNDING
    rest = exponents - (shifted - _ROUNDING)
    polynomial = rest * _POWER_OF_TWO[-1]
    for coefficient in reversed(_POWER_OF_TWO[:-1]):
        polynomial = (polynomial + coefficient) * rest
    polynomial = polynomial + 1.0
    return (polynomial.view(mx.int32) + (shifted.view(mx.int32) << _EXPONENT_SHIFT)).view(mx.float32)


def _swapped(array: mx.array) -> mx.array:
    return array.swapaxes(-1, -2)


@mx.custom_function
def _attention_block(queries: mx.array, keys: mx.array, values: mx.array, mask: mx.array):
    """The attended values, the weights before their normalisation, and the sums that normalise them.

    Normalising the attended values instead of the weights spares a pass over the large array, here and in the gradient.
    """
    scores = queries @ _swapped(keys) + mask
    weights = _power_of_two(scores - scores.max(axis=-1, keepdims=True))
    sums = weights.sum(axis=-1, keepdims=True)
    return (weights @ values) / sums, weights, sums


@_attention_block.vjp
def _attention_block_gradient(inputs, cotangents, outputs):
    queries, keys, values, mask = inputs
    attended, weights, sums = outputs
    cotangent = cotangents[0] / sums
    values_gradient = (_swapped(weights) @ cotangent).sum(axis=2, keepdims=True)
    along = (cotangent * attended).sum(axis=-1, keepdims=True)
    scores_gradient = weights * (cotangent @ _swapped(values) - along)
    # The scores were powers of two.
    queries_gradient = (scores_gradient @ keys) * math.log(2)
    keys_gradient = (_swapped(scores_gradient) @ queries).sum(axis=2, keepdims=True) * math.log(2)
    return queries_gradient, keys_gradient, values_gradient, mx.zeros_like(mask)


def _sigmoid(values: mx.array) -> mx.array:
    return 1.0 / (1.0 + _power_of_two(mx.minimum(values * -_LOG2_E, 127.0)))


@mx.custom_function
def _gated_silu(gate: mx.array, value: mx.array) -> mx.array:
    return gate * _sigmoid(gate) * value


@_gated_silu.vjp
def _gated_silu_gradient(inputs, cotangent, output):
    gate, value = inputs
    sigmoid = _sigmoid(gate)
    activated = gate * sigmoid
    slope = sigmoid * (1.0 - activated) + activated
    return cotangent * value * slope, cotangent * activated


@mx.custom_function
def _cross_entropy(logits: mx.array, targets: mx.array):
    """Losses per row, and for the gradient the unnormalised probabilities and their sums."""
    rows = max(1, _LOGITS_BLOCK // logits.shape[1])
    parts = [_cross_entropy_rows(logits[i : i + rows], targets[i : i + rows]) for i in range(0, len(logits), rows)]
    return tuple(mx.concatenate(column) for column in zip(*parts))


def _cross_entropy_rows(logits: mx.array, targets: mx.array) -> tuple[mx.array, mx.array, mx.array]:
    greatest = logits.max(axis=-1, keepdims=True)
    powers = _power_of_two((logits - greatest) * _LOG2_E)
    sums = powers.sum(axis=-1, keepdims=True)
    chosen = mx.take_along_axis(logits, targets[:, None], axis=-1)
    return (mx.log(sums) + greatest - chosen).squeeze(-1), powers, sums


@_cross_entropy.vjp
def _cross_entropy_gradient(inputs, cotangents, outputs):
    _, targets = inputs
    _, powers, sums = outputs
    cotangent = cotangents[0][:, None]
    gradient = powers * (cotangent / sums)
    places = targets[:, None]
    at_targets = mx.take_along_axis(gradient, places, axis=-1) - cotangent
    return mx.put_along_axis(gradient, places, at_targets, axis=-1), mx.zeros_like(targets)
