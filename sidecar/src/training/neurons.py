"""Neuron snapshots: the mean absolute output of every block, in groups of neighbouring channels."""

from __future__ import annotations

import numpy as np

INACTIVE_BELOW = 0.8
HIGH_ABOVE = 1.25


def snapshot(step: int, final: bool, activations: np.ndarray, neurons_per_layer: int) -> dict:
    """The wire's snapshot object from activations of shape (blocks, channels).

    A group is "inactive" below 0.8 and "high" above 1.25 times the median group of its own block: the residual
    stream grows with depth, so one limit for all blocks would paint the first ones grey and the last ones green.
    """
    blocks, channels = activations.shape
    groups = min(neurons_per_layer, channels)
    edges = [index * channels // groups for index in range(groups + 1)]
    layers = []
    for block in range(blocks):
        means = np.add.reduceat(activations[block].astype(np.float64), edges[:-1]) / np.diff(edges)
        means = np.nan_to_num(means, nan=0.0, posinf=0.0, neginf=0.0)
        middle = float(np.median(means))
        layers.append({"layer": block, "neurons": [_neuron(i, means[i], middle, edges) for i in range(groups)]})
    return {
        "step": step,
        "final": final,
        "n_layers": blocks,
        "neurons_per_layer": groups,
        "hidden_dim": channels,
        "layers": layers,
    }


def _neuron(index: int, mean: float, middle: float, edges: list[int]) -> dict:
    tier = "moderate"
    if mean == 0 or mean < INACTIVE_BELOW * middle:
        tier = "inactive"
    elif mean > HIGH_ABOVE * middle:
        tier = "high"
    return {
        "index": index,
        "activation": round(float(mean), 6),
        "dim_start": edges[index],
        "dim_end": edges[index + 1] - 1,
        "tier": tier,
    }
