"""Shares a batch out over the cores of a CPU.

MLX runs the operations of one stream on one thread; only matrix products spread further, inside the BLAS. With a stream
a core, each taking its part of the batch with a single-threaded BLAS, everything but the optimizer runs side by side.
"""

from __future__ import annotations

import sys

import mlx.core as mx

from src.runtime.blas import set_blas_threads, thread_count

# More parts than this leave too little work in each for the sums at the end to pay.
MOST_LANES = 8
FEWEST_ROWS = 2


def lane_count(batch: int, cores: int) -> int:
    """In how many parts a batch of so many rows is worth taking on a CPU with so many cores."""
    return max(1, min(cores, MOST_LANES, batch // FEWEST_ROWS))


def open_lanes(batch: int) -> list[mx.Stream]:
    """The streams that train side by side; a single one on a GPU, which is parallel by itself, and on macOS."""
    default = mx.default_stream(mx.default_device())
    if not sys.platform.startswith("linux") or mx.default_device().type != mx.DeviceType.cpu:
        return [default]
    cores = thread_count()
    count = lane_count(batch, cores)
    set_blas_threads(max(1, cores // count))
    return [mx.new_stream(mx.cpu) for _ in range(count)] if count > 1 else [default]
