"""Hyperparameters: defaults, and `training.json` in the model working directory that overrides them."""

from __future__ import annotations

import json
from dataclasses import dataclass
from pathlib import Path

from src.wire.commands import MAXIMUM_STEPS

FILE_NAME = "training.json"
MAXIMUM_FILE_BYTES = 1 << 20


class SettingsError(ValueError):
    """`training.json` cannot be used; the text names the file, the key and what is allowed."""


@dataclass(frozen=True)
class Setting:
    """One key. A default of None means that the scripts choose a value that suits corpus and machine.

    A setting that `shapes_run` fixes the course of a run; a resumed run keeps the value it began with.
    """

    key: str
    kind: type
    default: int | float | bool | None
    minimum: float = 0
    maximum: float = 0
    shapes_run: bool = False

    @property
    def allowed(self) -> str:
        if self.kind is bool:
            return "true or false"
        kind = "an integer" if self.kind is int else "a number"
        automatic = ", or null for an automatic choice" if self.default is None else ""
        return f"{kind} from {self.minimum:g} to {self.maximum:.10g}{automatic}"

    def check(self, value, source: str):
        if value is None and self.default is None:
            return None
        if self.kind is bool:
            valid = isinstance(value, bool)
        else:
            if self.kind is int and isinstance(value, float) and value.is_integer():
                value = int(value)
            numeric = isinstance(value, int if self.kind is int else (int, float)) and not isinstance(value, bool)
            valid = numeric and self.minimum <= value <= self.maximum
        if not valid:
            raise SettingsError(f"{source}: “{self.key}” must be {self.allowed}; it is {json.dumps(value)[:60]}.")
        return float(value) if self.kind is float else value


SETTINGS = (
    Setting("default_max_steps", int, 10_000, 1, MAXIMUM_STEPS),
    Setting("seed", int, 20_250, 0, 2**31 - 1, shapes_run=True),
    Setting("vocab_size", int, None, 300, 131_072, shapes_run=True),
    Setting("context", int, None, 8, 8_192, shapes_run=True),
    Setting("batch_size", int, None, 1, 4_096, shapes_run=True),
    Setting("accumulation", int, 1, 1, 1_024, shapes_run=True),
    Setting("layers", int, None, 1, 128, shapes_run=True),
    Setting("hidden_size", int, None, 8, 16_384, shapes_run=True),
    Setting("heads", int, None, 1, 256, shapes_run=True),
    Setting("key_value_heads", int, None, 1, 256, shapes_run=True),
    Setting("feed_forward_size", int, None, 8, 65_536, shapes_run=True),
    Setting("tie_embeddings", bool, True, shapes_run=True),
    Setting("validation_fraction", float, 0.05, 0.001, 0.5, shapes_run=True),
    Setting("learning_rate", float, None, 1e-8, 1.0),
    Setting("final_learning_rate_fraction", float, 0.1, 0.0, 1.0),
    Setting("warmup_steps", int, None, 0, 1_000_000),
    Setting("beta1", float, 0.9, 0.0, 0.9999),
    Setting("beta2", float, 0.95, 0.0, 0.99999),
    Setting("weight_decay", float, 0.1, 0.0, 10.0),
    Setting("clip_norm", float, 1.0, 0.0, 1_000.0),
    Setting("evaluation_interval", int, 100, 1, 1_000_000),
    Setting("evaluation_batches", int, 8, 1, 10_000),
    Setting("snapshot_interval", int, 20, 1, 1_000_000),
    Setting("neurons_per_layer", int, 64, 1, 4_096),
    Setting("checkpoint_interval", int, 250, 1, 1_000_000),
)
SETTINGS_BY_KEY = {setting.key: setting for setting in SETTINGS}
DEFAULTS = {setting.key: setting.default for setting in SETTINGS}


@dataclass(frozen=True)
class TrainingSettings:
    """All values by key; `chosen` are the keys that the file itself sets."""

    values: dict
    chosen: frozenset[str] = frozenset()

    def __getitem__(self, key: str):
        return self.values[key]

    def with_values(self, changes: dict) -> TrainingSettings:
        return TrainingSettings(self.values | changes, self.chosen)


def load_settings(model_root: Path) -> TrainingSettings:
    """Reads `training.json`; without one, the defaults. Raises SettingsError."""
    path = model_root / FILE_NAME
    try:
        with path.open("rb") as file:
            data = file.read(MAXIMUM_FILE_BYTES + 1)
    except FileNotFoundError:
        return TrainingSettings(dict(DEFAULTS))
    except OSError as error:
        raise SettingsError(f"{path} cannot be read ({error.strerror}).") from error
    if len(data) > MAXIMUM_FILE_BYTES:
        raise SettingsError(f"{path} is larger than {MAXIMUM_FILE_BYTES} bytes.")
    return parse_settings(data, str(path))


def parse_settings(data: bytes, source: str) -> TrainingSettings:
    try:
        given = json.loads(data.decode("utf-8-sig"), object_pairs_hook=_unique_keys)
    except (ValueError, RecursionError) as error:
        raise SettingsError(f"{source} is not valid JSON ({error}).") from None
    if not isinstance(given, dict):
        raise SettingsError(f"{source} must hold one JSON object.")
    values = dict(DEFAULTS)
    for key, value in given.items():
        setting = SETTINGS_BY_KEY.get(key)
        if setting is None:
            raise SettingsError(f"{source}: unknown key “{key[:60]}”. Known keys: {', '.join(SETTINGS_BY_KEY)}.")
        values[key] = setting.check(value, source)
    return TrainingSettings(values, frozenset(given))


def _unique_keys(pairs: list[tuple[str, object]]) -> dict:
    result = dict(pairs)
    if len(result) != len(pairs):
        raise ValueError("a key stands twice")
    return result
