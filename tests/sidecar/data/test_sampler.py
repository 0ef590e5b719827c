"""Batches as a function of seed and step."""

import numpy as np
import pytest

from src.data import BatchSampler, PreparationError


def starts(sampler, epoch):
    """First tokens of an epoch's windows, where token n is the number n."""
    windows = sampler.windows_per_epoch
    return [int(sampler.batch_at(step)[0, 0]) for step in range(epoch * windows, (epoch + 1) * windows)]


@pytest.mark.parametrize("length", [9, 10, 16, 17, 100, 999, 1000, 1001, 2048])
@pytest.mark.parametrize("seed", [0, 1, -5, 1 << 70])
def test_each_epoch_draws_every_window_once(length, seed):
    tokens = np.arange(length, dtype=np.uint16)
    sampler = BatchSampler(tokens, context=8, batch=1, seed=seed)
    for epoch in range(3):
        drawn = starts(sampler, epoch)
        covered = {(start + i) % length for start in drawn for i in range(8)}
        assert len(drawn) == length // 8
        assert len(covered) == 8 * (length // 8)


def test_windows_are_contiguous_on_the_ring():
    tokens = np.arange(1003, dtype=np.uint32)
    batch = BatchSampler(tokens, 16, 500, 3).batch_at(2)
    assert batch.shape == (500, 17)
    assert batch.dtype == np.int32
    assert np.all(np.diff(batch, axis=1) % 1003 == 1)


def test_same_seed_and_step_give_the_same_batch_without_history():
    tokens = np.arange(5000, dtype=np.uint16)
    walked = BatchSampler(tokens, 32, 4, 11)
    for step in range(200):
        batch = walked.batch_at(step)
    assert np.array_equal(batch, BatchSampler(tokens, 32, 4, 11).batch_at(199))


def test_seeds_and_epochs_differ():
    tokens = np.arange(5000, dtype=np.uint16)
    first, second = BatchSampler(tokens, 32, 1, 1), BatchSampler(tokens, 32, 1, 2)
    assert starts(first, 0) != starts(second, 0)
    assert starts(first, 0) != starts(first, 1)
    assert starts(first, 0) != sorted(starts(first, 0))


def test_epochs_cut_the_tokens_at_different_places():
    sampler = BatchSampler(np.arange(5000, dtype=np.uint16), 32, 1, 1)
    assert len({starts(sampler, epoch)[0] % 32 for epoch in range(8)}) > 4


def test_batch_larger_than_an_epoch_goes_on_with_the_next():
    tokens = np.arange(33, dtype=np.uint16)
    assert BatchSampler(tokens, 16, 7, 0).batch_at(5).shape == (7, 17)


def test_too_few_tokens_for_a_window():
    assert BatchSampler(np.zeros(17, np.uint16), 16, 2, 0).batch_at(0).shape == (2, 17)
    with pytest.raises(PreparationError, match="only 16 tokens, fewer than the 17"):
        BatchSampler(np.zeros(16, np.uint16), 16, 2, 0)
