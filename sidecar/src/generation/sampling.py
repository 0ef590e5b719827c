"""Draws the next token from logits."""

from __future__ import annotations

import numpy as np


def draw(logits: np.ndarray, temperature: float, top_p: float, random: np.random.Generator) -> int:
    """Temperature 0 takes the likeliest token; `top_p` keeps the likeliest ones that together reach it."""
    if temperature == 0:
        return int(np.argmax(logits))
    scaled = logits.astype(np.float64) / temperature
    order = np.argsort(scaled)[::-1]
    weights = np.exp(scaled[order] - scaled[order[0]])
    probabilities = weights / weights.sum()
    kept = int(np.searchsorted(np.cumsum(probabilities), top_p)) + 1
    probabilities = probabilities[:kept] / probabilities[:kept].sum()
    return int(order[random.choice(len(probabilities), p=probabilities)])
