"""What data preparation hands to its caller."""

from __future__ import annotations

from dataclasses import dataclass
from pathlib import Path

import numpy as np


@dataclass(frozen=True)
class PrepProgress:
    """How far preparation is: a fraction from 0 to 1 that never falls, and seconds."""

    fraction: float
    detail: str
    elapsed_s: float
    eta_s: float


class PreparationCancelled(Exception):
    """The caller's `cancelled` said yes; nothing half-made is left in the cache."""


class PreparationError(Exception):
    """Preparation cannot go on. The text is one clear sentence or two, shown to the user."""


@dataclass(frozen=True)
class PreparedCorpus:
    """Tokens ready for training, as read-only memory maps of uint16 or uint32.

    `validation` is empty only if no validation was asked for or the corpus is too small to
    spare any. `unigram_nats` is the cross entropy, in nats per token, of the validation tokens
    (of the training tokens if there are none) under the add-one-smoothed frequencies of the
    training tokens: what a model that ignores context could reach.
    """

    tokenizer_path: Path
    vocab_size: int
    bos_token_id: int
    eos_token_id: int
    train: np.memmap
    validation: np.memmap
    fingerprint: str
    unigram_nats: float
    documents: int
    corpora: list[str]
    bytes: int


def human_bytes(count: int) -> str:
    """1234567 as "1.2 MB"."""
    if count < 1000:
        return f"{count} bytes"
    size = float(count)
    for unit in ("KB", "MB", "GB", "TB"):
        size /= 1000
        if size < 999.95 or unit == "TB":
            break
    return f"{size:.1f} {unit}"


def human_files(count: int) -> str:
    return "1 file" if count == 1 else f"{count:,} files"
