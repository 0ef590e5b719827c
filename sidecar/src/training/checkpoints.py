"""Whole checkpoints that appear at once: weights, optimizer, position and loss curve.

No random state is kept beside them: the first weights follow from the seed, and every batch from seed and step.
"""

from __future__ import annotations

import json
import os
import re
import shutil
import zlib
from dataclasses import dataclass, field
from pathlib import Path
from zipfile import BadZipFile

import mlx.core as mx

from src.memory import is_out_of_memory
from src.models.safetensors import save_safetensors
from src.settings import SETTINGS
from src.storage import folder_written_aside, publish, remove_leftovers, write_json
from src.training.curve import LossCurve

FORMAT = 1
KEPT = 2
PREVIOUS_RUN = "previous-run"
# What readers of JSON, NumPy's and MLX's files raise for files that are not what they should be.
DAMAGE = (OSError, ValueError, KeyError, TypeError, AttributeError, RuntimeError, EOFError, BadZipFile, zlib.error)
_NAME = re.compile(r"checkpoint-(\d{8})")


class CheckpointError(Exception):
    """There is no checkpoint to continue from; the text says why."""


@dataclass
class RunState:
    """What a checkpoint's `state.json` holds beside the arrays; all of it is plain JSON."""

    run_id: str
    step: int
    max_steps: int
    updates: int
    elapsed_s: float
    tokens_seen: int
    skipped_steps: int
    validation_loss: float | None
    shape: dict
    batch: int
    accumulation: int
    settings: dict
    schedule: dict
    corpus: dict
    format: int = FORMAT
    files: dict[str, int] = field(default_factory=dict)


@dataclass
class Checkpoint:
    path: Path
    state: RunState
    curve: LossCurve
    weights: dict[str, mx.array]
    optimizer: dict[str, mx.array]


class CheckpointStore:
    """The `checkpoints` folder of a working directory; the caller holds that directory's lock."""

    def __init__(self, folder: Path) -> None:
        self.folder = folder

    def prepare(self) -> list[str]:
        """Makes the folder and removes what a killed write left in it."""
        self.folder.mkdir(parents=True, exist_ok=True)
        return remove_leftovers(self.folder)

    def save(self, state: RunState, curve: LossCurve, weights: dict, optimizer: dict) -> Path:
        """Raises OSError and leaves the earlier checkpoints as they were if anything cannot be written."""
        self.folder.mkdir(exist_ok=True)
        existing = self._entries()
        name = f"checkpoint-{(existing[-1][0] if existing else 0) + 1:08d}"
        with folder_written_aside(self.folder, name) as aside:
            save_safetensors(aside / "weights.safetensors", weights)
            save_safetensors(aside / "optimizer.safetensors", optimizer)
            curve.save(aside / "loss_curve.npz")
            state.files = {file.name: file.stat().st_size for file in sorted(aside.iterdir())}
            write_json(aside / "state.json", vars(state))
            publish(aside, self.folder / name)
        for _, old in self._entries()[:-KEPT]:
            shutil.rmtree(old, ignore_errors=True)
        return self.folder / name

    def latest(self) -> tuple[Checkpoint, list[str]]:
        """The newest checkpoint that is whole, and a sentence for every newer one that is not."""
        complaints = []
        for _, path in reversed(self._entries()):
            try:
                return self._load(path), complaints
            except DAMAGE as error:
                if is_out_of_memory(error):
                    raise
                complaints.append(f"The checkpoint {path} is damaged and was passed over ({error}).")
        reason = " ".join(complaints) or f"There is no checkpoint in {self.folder}."
        raise CheckpointError(reason)

    def set_aside_earlier_runs(self, run_id: str) -> int | None:
        """Keeps the newest checkpoint of the run before this one apart; returns its step, or None without one."""
        runs = [(path, *_identity(path)) for _, path in self._entries()]
        own = [index for index, (_, run, _) in enumerate(runs) if run == run_id]
        earlier = [(path, step) for path, run, step in runs[: own[-1] if own else 0] if run not in (None, run_id)]
        if not earlier:
            return None
        newest, step = earlier.pop()
        kept = self.folder / PREVIOUS_RUN
        shutil.rmtree(kept, ignore_errors=True)
        os.rename(newest, kept)
        for old, _ in earlier:
            shutil.rmtree(old, ignore_errors=True)
        return step

    def _entries(self) -> list[tuple[int, Path]]:
        try:
            found = [(_NAME.fullmatch(entry.name), entry) for entry in self.folder.iterdir()]
        except FileNotFoundError:
            return []
        return sorted((int(match[1]), entry) for match, entry in found if match)

    def _load(self, path: Path) -> Checkpoint:
        values = json.loads((path / "state.json").read_text(encoding="utf-8"))
        if values.get("format") != FORMAT:
            raise ValueError(f"its format {values.get('format')} is unknown")
        state = RunState(**values)
        if missing := [setting.key for setting in SETTINGS if setting.key not in state.settings]:
            raise ValueError(f"it lacks the setting “{missing[0]}”")
        for name, size in state.files.items():
            if (path / name).stat().st_size != size:
                raise ValueError(f"{name} has the wrong size")
        weights = mx.load(str(path / "weights.safetensors"))
        optimizer = mx.load(str(path / "optimizer.safetensors"))
        mx.eval(weights, optimizer)
        return Checkpoint(path, state, LossCurve.load(path / "loss_curve.npz"), weights, optimizer)


def _identity(path: Path) -> tuple[str | None, int]:
    """Run and step of a checkpoint, (None, 0) if they cannot be read."""
    try:
        state = json.loads((path / "state.json").read_text(encoding="utf-8"))
        return str(state["run_id"]), int(state["step"])
    except (OSError, ValueError, KeyError, TypeError):
        return None, 0
