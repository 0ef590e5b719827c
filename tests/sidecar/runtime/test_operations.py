"""The quick operations for a CPU give what MLX's own give, in values and in gradients."""

from __future__ import annotations

import mlx.core as mx
import mlx.nn as nn
import numpy as np
import pytest

from src.runtime import operations

CLOSE = {"rtol": 1e-4, "atol": 2e-5}


def normal(*dimensions: int, seed: int, scale: float = 1.0) -> mx.array:
    return mx.random.normal(dimensions, scale=scale, key=mx.random.key(seed))


def assert_same(ours, reference, *inputs: mx.array) -> None:
    """Compares the values and the gradients of a weighted sum of them."""
    expected = reference(*inputs)
    np.testing.assert_allclose(np.array(ours(*inputs)), np.array(expected), **CLOSE)
    weights = normal(*expected.shape, seed=99)
    everything = tuple(range(len(inputs)))
    own_gradients = mx.grad(lambda *values: (ours(*values) * weights).sum(), everything)(*inputs)
    gradients = mx.grad(lambda *values: (reference(*values) * weights).sum(), everything)(*inputs)
    for own_gradient, gradient in zip(own_gradients, gradients):
        np.testing.assert_allclose(np.array(own_gradient), np.array(gradient), **CLOSE)


def test_powers_of_two_are_exact_to_float_precision_and_nothing_below_the_smallest():
    exponents = mx.linspace(-125.9, 127.4, 100_001)
    expected = np.exp2(np.array(exponents, dtype=np.float64))
    np.testing.assert_allclose(np.array(operations._power_of_two(exponents)), expected, rtol=3e-7)
    assert operations._power_of_two(mx.array([-1e9, -127.0, float("-inf")])).tolist() == [0, 0, 0]
    assert np.isnan(operations._power_of_two(mx.array(float("nan"))).item())


@pytest.mark.parametrize(
    ("heads", "groups", "queries", "keys"),
    [(4, 4, 64, 64), (4, 2, 100, 100), (4, 1, 200, 200), (2, 2, 5, 77), (2, 1, 70, 150), (2, 2, 1, 9)],
)
def test_attention(heads, groups, queries, keys):
    inputs = (
        normal(2, heads, queries, 16, seed=1),
        normal(2, groups, keys, 16, seed=2),
        normal(2, groups, keys, 16, seed=3),
    )
    mask = "causal" if queries > 1 else None
    assert_same(
        lambda *arrays: operations.causal_attention(*arrays, 0.25),
        lambda *arrays: mx.fast.scaled_dot_product_attention(*arrays, scale=0.25, mask=mask),
        *inputs,
    )


def test_no_query_sees_a_later_key():
    queries, keys, values = (normal(1, 2, 130, 8, seed=seed) for seed in (1, 2, 3))
    later = mx.concatenate([values[:, :, :70], values[:, :, 70:] + 1e6], axis=2)
    seen = operations.causal_attention(queries, keys, values, 0.3)[:, :, :70]
    assert mx.array_equal(seen, operations.causal_attention(queries, keys, later, 0.3)[:, :, :70])


def test_gated_silu():
    gate = mx.concatenate([normal(300, seed=4, scale=5), mx.array([0.0, -200.0, 200.0])])
    assert_same(operations.gated_silu, lambda g, v: nn.silu(g) * v, gate, normal(303, seed=5))


@pytest.mark.parametrize("vocabulary", [7, 1000, 300_000])
def test_token_loss(vocabulary):
    targets = mx.random.randint(0, vocabulary, (2, 5), key=mx.random.key(6))
    assert_same(
        lambda logits: operations.token_loss(logits, targets),
        lambda logits: nn.losses.cross_entropy(logits, targets),
        normal(2, 5, vocabulary, seed=7, scale=8),
    )


def test_a_loss_that_is_no_number_stays_visible():
    logits = mx.array([[0.0, float("nan")], [0.0, float("inf")], [1.0, 2.0]])
    losses = np.array(operations.token_loss(logits, mx.array([0, 0, 1])))
    assert not np.isfinite(losses[:2]).any()
    assert np.isfinite(losses[2])
