"""Archives a finished run: written aside in full, then moved into the library as one folder."""

from __future__ import annotations

import errno
from dataclasses import dataclass
from datetime import datetime, timezone
from pathlib import Path

import mlx.core as mx

from src.archive.huggingface import generation_config, model_config, tokenizer_config
from src.archive.model_card import model_card
from src.data import PreparedCorpus
from src.models.llama import LlamaShape
from src.models.safetensors import save_safetensors
from src.storage import folder_written_aside, publish, write_json
from src.training.curve import LossCurve
from src.wire.commands import IDENTITY_KEYS, TrainingProfile

SCRIPTS_VERSION = "1.0"
MOST_NAMES_TRIED = 1000


@dataclass(frozen=True)
class FinishedRun:
    """Everything that an archive tells about a run."""

    identity: dict[str, str]
    profile: TrainingProfile
    shape: LlamaShape
    weights: dict[str, mx.array]
    corpus: PreparedCorpus
    tokenizer: bytes
    curve: LossCurve
    snapshot: dict
    step: int
    max_steps: int
    validation_loss: float | None
    elapsed_s: float
    tokens_seen: int
    skipped_steps: int
    tokens_per_step: int
    settings: dict

    @property
    def tokens_per_second(self) -> float:
        return self.tokens_seen / self.elapsed_s if self.elapsed_s > 0 else 0.0


def archive_run(run: FinishedRun, library: Path, finished_at: datetime) -> Path:
    """Returns the new folder; raises OSError and leaves nothing visible if anything cannot be written.

    `finished_at` needs a zone: the folder is named in it, the manifest gives the same moment in UTC.
    """
    library.mkdir(exist_ok=True)
    name = finished_at.strftime("%Y-%m-%d_%H-%M-%S")
    with folder_written_aside(library, name) as aside:
        _write_files(run, aside, finished_at)
        for attempt in range(1, MOST_NAMES_TRIED):
            target = library / (name if attempt == 1 else f"{name}-{attempt}")
            try:
                publish(aside, target)
            except FileExistsError:
                continue
            return target
    raise FileExistsError(errno.EEXIST, "Every name for this moment is taken", str(library / name))


def _write_files(run: FinishedRun, folder: Path, finished_at: datetime) -> None:
    corpus = run.corpus
    manifest = build_manifest(run, finished_at)
    save_safetensors(folder / "model.safetensors", run.weights)
    write_json(folder / "config.json", model_config(run.shape, corpus.bos_token_id, corpus.eos_token_id))
    write_json(folder / "generation_config.json", generation_config(corpus.bos_token_id, corpus.eos_token_id))
    (folder / "tokenizer.json").write_bytes(run.tokenizer)
    write_json(folder / "tokenizer_config.json", tokenizer_config(run.shape))
    run.curve.write_lines(folder / "loss_curve.jsonl")
    write_json(folder / "neuron_snapshot.json", run.snapshot)
    write_json(folder / "ModelInfo.json", build_model_info(run, manifest["archived_at"]))
    (folder / "README.md").write_text(model_card(manifest), encoding="utf-8")
    write_json(folder / "manifest.json", manifest)


def build_manifest(run: FinishedRun, finished_at: datetime) -> dict:
    corpus = run.corpus
    manifest = {
        "model_identity": run.identity,
        "archived_at": utc_text(finished_at),
        "step": run.step,
        "max_steps": run.max_steps,
        "final_loss": run.curve.last_loss,
        "val_loss": run.validation_loss,
        "elapsed_seconds": run.elapsed_s,
        "tokens_per_sec": run.tokens_per_second,
        "model_family": run.profile.model_family,
        "training_capability": run.profile.training_capability,
        "parameters": run.shape.parameter_count(),
        "tokens_seen": run.tokens_seen,
        "tokens_per_step": run.tokens_per_step,
        "skipped_steps": run.skipped_steps,
        "model": run.shape.as_dict(),
        "dataset": {
            "corpora": list(corpus.corpora),
            "documents": int(corpus.documents),
            "bytes": int(corpus.bytes),
            "train_tokens": int(corpus.train.size),
            "validation_tokens": int(corpus.validation.size),
            "unigram_loss": float(corpus.unigram_nats),
            "fingerprint": corpus.fingerprint,
        },
        "settings": run.settings,
        "scripts_version": SCRIPTS_VERSION,
    }
    if run.validation_loss is None:
        del manifest["val_loss"]
    return manifest


def build_model_info(run: FinishedRun, archived_at: str) -> dict:
    """`ModelInfo.json`: the identity in full, an unknown value as an empty text."""
    info = {key: run.identity.get(key, "") for key in IDENTITY_KEYS}
    return info | {
        "model_family": run.profile.model_family,
        "training_capability": run.profile.training_capability,
        "parameters": run.shape.parameter_count(),
        "archived_at": archived_at,
    }


def utc_text(moment: datetime) -> str:
    """Such as 2025-03-14T09:26:53.589Z."""
    return moment.astimezone(timezone.utc).isoformat(timespec="milliseconds").replace("+00:00", "Z")
