"""The parts of a run by themselves: schedule, optimizer, snapshots, validation, settings, sizes."""

from __future__ import annotations

import itertools
import json
import math
import re
from pathlib import Path

import mlx.core as mx
import numpy as np
import pytest
from support.child import TINY_SETTINGS

from src.memory import is_out_of_memory
from src.models.sizing import Machine, Plan, choose_plan, memory_needed, vocabulary_size
from src.settings import (
    DEFAULTS,
    SETTINGS,
    SettingsError,
    TrainingSettings,
    load_settings,
    parse_settings,
)
from src.training.learner import Learner
from src.training.neurons import snapshot
from src.training.schedule import GLIDE_STEPS, Schedule
from src.training.validation import probe_batch, validation_batches

ROOT = Path(__file__).resolve().parents[2]


def settings(**changes) -> TrainingSettings:
    return TrainingSettings(DEFAULTS | TINY_SETTINGS | changes)


def learner(**changes) -> Learner:
    chosen = settings(**changes)
    return Learner(choose_plan(chosen, 300, 5000, Machine(False, 1 << 33, 2)), chosen)


def batch(rows: int = 2) -> np.ndarray:
    return np.random.default_rng(3).integers(0, 300, (rows, 17)).astype(np.int32)


def test_the_rate_rises_falls_and_ends_at_the_floor():
    course = [Schedule(1.0, 0.1, 100, 10).rate(step) for step in range(101)]
    assert course[:10] == sorted(course[:10])
    assert course[10] == 1.0
    assert course[10:] == sorted(course[10:], reverse=True)
    assert course[100] == pytest.approx(0.1)
    assert all(rate > 0 for rate in course)


@pytest.mark.parametrize("new_steps", [100, 5000])
def test_a_live_change_of_the_step_count_moves_the_rate_without_a_jump(new_steps):
    before = Schedule(1.0, 0.1, 200, 10)
    after = before.with_max_steps(new_steps, 50)
    assert after.rate(50) == pytest.approx(before.rate(50))
    steps = [after.rate(step) for step in range(50, min(new_steps, 50 + GLIDE_STEPS + 5))]
    assert max(abs(a - b) for a, b in itertools.pairwise(steps)) < 0.06
    assert after.rate(new_steps - 1) == Schedule(1.0, 0.1, new_steps, 10).rate(new_steps - 1)


def test_one_update_is_adamw_with_bias_correction_and_clipping():
    trained = learner(clip_norm=0.01, weight_decay=0.5, learning_rate=0.1)
    before = {name: np.array(array) for name, array in trained.weights.items()}
    _, gradients = trained._accumulated(batch())
    gradients = {name: np.array(gradient) for name, gradient in gradients.items()}
    norm = math.sqrt(sum(float((gradient.astype(np.float64) ** 2).sum()) for gradient in gradients.values()))
    result = trained.step(batch(), 0.1)
    assert result.gradient_norm == pytest.approx(norm, rel=1e-5)
    for name, weight in before.items():
        clipped = gradients[name] * 0.01 / norm
        direction = clipped / (np.abs(clipped) + 1e-8)
        if not name.endswith(("norm.weight", "embed_tokens.weight")):
            direction = direction + 0.5 * weight
        assert np.allclose(np.array(trained.weights[name]), weight - 0.1 * direction, atol=2e-3), name


def test_accumulated_batches_give_the_gradient_of_the_whole():
    rows = batch(4)
    whole, parts = learner(batch_size=4), learner(batch_size=2, accumulation=2)
    first, second = whole.step(rows, 0.01), parts.step(rows, 0.01)
    assert first.loss == pytest.approx(second.loss, rel=1e-5)
    assert first.gradient_norm == pytest.approx(second.gradient_norm, rel=1e-4)


def test_a_step_that_is_not_finite_leaves_everything_as_it_was(monkeypatch):
    trained = learner()
    trained.step(batch(), 0.01)
    before = {name: np.array(array) for name, array in trained.weights.items()}
    original = trained._shared_out

    def broken(tokens):
        loss, gradients = original(tokens)
        return loss, gradients | {"model.norm.weight": gradients["model.norm.weight"] * float("inf")}

    monkeypatch.setattr(trained, "_shared_out", broken)
    assert not trained.step(batch(), 0.01).finite
    assert trained.updates == 1
    assert all(np.array_equal(np.array(trained.weights[name]), before[name]) for name in before)


def test_training_goes_on_without_a_compiler(monkeypatch):
    def missing(function):
        raise RuntimeError("[Compile::eval_cpu] Failed to compile: g++ not found\nmore")

    trained = learner()
    monkeypatch.setattr(mx, "compile", missing)
    assert "g++" in trained.compile()
    losses = [trained.step(batch(), 0.01).loss for _ in range(5)]
    assert losses[-1] < losses[0]


def test_groups_of_channels_cover_all_of_them_in_order():
    activations = np.arange(1, 21, dtype=np.float32).reshape(2, 10)
    taken = snapshot(3, False, activations, 4)
    spans = [(n["dim_start"], n["dim_end"]) for n in taken["layers"][0]["neurons"]]
    assert spans == [(0, 1), (2, 4), (5, 6), (7, 9)]
    assert taken["layers"][0]["neurons"][1]["activation"] == 4.0
    assert [n["tier"] for n in taken["layers"][0]["neurons"]] == [
        "inactive",
        "inactive",
        "moderate",
        "high",
    ]
    assert snapshot(3, True, activations, 64)["neurons_per_layer"] == 10
    json.dumps(snapshot(1, True, np.full((1, 4), np.nan), 2), allow_nan=False)


def test_validation_windows_are_the_same_every_time_and_cope_with_short_texts():
    tokens = np.arange(1000, dtype=np.uint16)
    batches = validation_batches(tokens, 16, 4, 3)
    assert [part.shape for part in batches] == [(4, 17)] * 3
    assert all(np.array_equal(a, b) for a, b in zip(batches, validation_batches(tokens, 16, 4, 3)))
    assert [part.shape for part in validation_batches(tokens[:9], 16, 4, 3)] == [(1, 9)]
    assert validation_batches(tokens[:1], 16, 4, 3) == []
    assert validation_batches(tokens[:0], 16, 4, 3) == []
    assert probe_batch([], tokens, 16).shape == (4, 17)


@pytest.mark.parametrize(
    ("text", "hint"),
    [
        ('{"learning_rte": 1}', "unknown key “learning_rte”"),
        ('{"layers": 0}', "“layers” must be an integer from 1 to 128"),
        ('{"layers": "4"}', "“layers”"),
        ('{"layers": true}', "“layers”"),
        ('{"layers": 2.5}', "“layers”"),
        ('{"learning_rate": 7}', "“learning_rate” must be a number"),
        ('{"tie_embeddings": 1}', "true or false"),
        ('{"seed": null}', "“seed”"),
        ('{"seed": NaN}', "“seed”"),
        ('{"seed": 1, "seed": 2}', "twice"),
        ("[1]", "one JSON object"),
        ("{", "not valid JSON"),
        ("[" * 100_000, "not valid JSON"),
    ],
)
def test_a_bad_settings_file_names_what_is_wrong(tmp_path, text, hint):
    (tmp_path / "training.json").write_text(text)
    with pytest.raises(SettingsError, match=re.escape(hint)) as caught:
        load_settings(tmp_path)
    assert str(tmp_path) in str(caught.value)


def test_settings_override_the_defaults_and_null_means_automatic():
    chosen = parse_settings(b'\xef\xbb\xbf{"layers": null, "clip_norm": 2, "heads": 4.0}', "here")
    assert chosen.values == DEFAULTS | {"clip_norm": 2.0, "heads": 4}
    assert chosen.chosen == {"layers", "clip_norm", "heads"}


def test_a_bad_settings_file_is_told_at_once_and_nothing_starts(library, sidecar):
    library.settings(layers=-3)
    child = sidecar()
    assert "“layers”" in child.wait_for_kind("error")["msg"]
    child.start(5)
    assert "“layers”" in child.wait_for_kind("error")["msg"]
    child.wait_for_state("idle")
    library.settings()
    child.train(2)


def test_the_documented_table_is_the_code():
    text = (ROOT / "docs" / "TRAINING.md").read_text(encoding="utf-8")
    rows = re.findall(r"^\| `(\w+)` \| ([^|]+) \| ([^|]+) \|", text, re.MULTILINE)
    expected = [
        (
            setting.key,
            "automatic" if setting.default is None else json.dumps(setting.default),
            setting.allowed,
        )
        for setting in SETTINGS
    ]
    assert [(key, default.strip(), allowed.strip()) for key, default, allowed in rows] == expected


def plan(tokens: int, accelerated: bool = False, memory: int = 16 << 30, cores: int = 2) -> Plan:
    return choose_plan(
        TrainingSettings(dict(DEFAULTS)),
        4096,
        tokens,
        Machine(accelerated, memory, cores),
    )


def test_more_text_and_a_better_machine_give_a_larger_model():
    sizes = [
        plan(1000).shape.parameter_count(),
        plan(500_000).shape.parameter_count(),
        plan(50_000_000).shape.parameter_count(),
        plan(50_000_000, accelerated=True).shape.parameter_count(),
        plan(500_000_000, accelerated=True).shape.parameter_count(),
    ]
    assert sizes == sorted(set(sizes))
    cramped = plan(500_000_000, accelerated=True, memory=4 << 30)
    assert memory_needed(cramped) <= 2 << 30


def test_vocabulary_grows_with_the_text():
    sizes = [vocabulary_size(TrainingSettings(dict(DEFAULTS)), count) for count in (10, 10**6, 10**7, 10**9)]
    assert sizes == sorted(set(sizes))


@pytest.mark.parametrize("values", [{"hidden_size": 10, "heads": 3}, {"heads": 4, "key_value_heads": 3}])
def test_sizes_that_contradict_each_other_are_refused_by_name(values):
    with pytest.raises(SettingsError, match="heads"):
        choose_plan(settings(**values), 300, 5000, Machine(False, 1 << 33, 2))


def test_a_model_that_cannot_fit_the_machine_is_refused_with_what_to_lower():
    with pytest.raises(SettingsError, match="“hidden_size”"):
        choose_plan(settings(hidden_size=16_384, layers=128, heads=128), 300, 5000, Machine(False, 1 << 33, 2))


@pytest.mark.parametrize(
    ("error", "full"),
    [
        (MemoryError(), True),
        (RuntimeError("[metal::malloc] Attempting to allocate 9 bytes which is greater than the maximum"), True),
        (RuntimeError("[malloc_or_wait] Unable to allocate 9 bytes."), True),
        (RuntimeError("[METAL] Command buffer execution failed: Insufficient Memory"), True),
        (RuntimeError("[matmul] Last dimension of first input"), False),
        (ValueError("unable to allocate"), False),
    ],
)
def test_a_full_memory_is_told_from_other_errors(error, full):
    assert is_out_of_memory(error) == full
