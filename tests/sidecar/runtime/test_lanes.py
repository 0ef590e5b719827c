from __future__ import annotations

import mlx.core as mx
import numpy as np
import pytest

from src.models.llama import LlamaShape
from src.models.sizing import Plan
from src.runtime import lanes
from src.settings import DEFAULTS, TrainingSettings
from src.training import learner as learner_module
from src.training.learner import Learner

SHAPE = LlamaShape(
    vocab_size=64, hidden_size=32, layers=2, heads=2, key_value_heads=1, feed_forward_size=64, context=16
)


def learner_with(monkeypatch: pytest.MonkeyPatch, count: int, batch: int) -> Learner:
    streams = [mx.new_stream(mx.cpu) for _ in range(count)]
    monkeypatch.setattr(learner_module, "open_lanes", lambda _: streams)
    return Learner(Plan(SHAPE, batch, 1, 1e-3), TrainingSettings(DEFAULTS))


def tokens(batch: int) -> np.ndarray:
    return np.random.default_rng(3).integers(0, 64, (batch, 17)).astype(np.int32)


@pytest.mark.parametrize(
    ("batch", "cores", "count"), [(12, 2, 2), (12, 1, 1), (3, 4, 1), (4, 4, 2), (1, 8, 1), (64, 32, 8)]
)
def test_lanes_suit_batch_and_cores(batch: int, cores: int, count: int) -> None:
    assert lanes.lane_count(batch, cores) == count


def test_a_gpu_gets_one_lane(monkeypatch: pytest.MonkeyPatch) -> None:
    class Gpu:
        type = mx.DeviceType.gpu

    stream = mx.default_stream(mx.default_device())
    monkeypatch.setattr(lanes.mx, "default_device", Gpu)
    monkeypatch.setattr(lanes.mx, "default_stream", lambda _: stream)
    assert lanes.open_lanes(64) == [stream]


@pytest.mark.parametrize("batch", [6, 7])
@pytest.mark.parametrize("compiled", [False, True])
def test_lanes_train_as_one_stream_does(monkeypatch: pytest.MonkeyPatch, batch: int, compiled: bool) -> None:
    alone = learner_with(monkeypatch, 1, batch)
    shared = learner_with(monkeypatch, 3, batch)
    if compiled:
        assert shared.compile() is None
    for _ in range(3):
        expected, got = alone.step(tokens(batch), 1e-3), shared.step(tokens(batch), 1e-3)
        assert got.loss == pytest.approx(expected.loss, rel=1e-5)
        assert got.gradient_norm == pytest.approx(expected.gradient_norm, rel=1e-4)


def test_validation_over_lanes_counts_every_batch_once(monkeypatch: pytest.MonkeyPatch) -> None:
    alone = learner_with(monkeypatch, 1, 6)
    shared = learner_with(monkeypatch, 3, 6)
    batches = [np.random.default_rng(seed).integers(0, 64, (6, 17)).astype(np.int32) for seed in range(4)]
    assert shared.validation_loss(batches) == pytest.approx(alone.validation_loss(batches), rel=1e-6)
