"""The byte-level BPE tokenizer: training it, and documents to token ids."""

from __future__ import annotations

from collections.abc import Iterable, Iterator
from concurrent.futures import ThreadPoolExecutor
from pathlib import Path

import numpy as np
from tokenizers import Tokenizer, decoders, models, pre_tokenizers, processors, trainers

BOS, EOS, PAD = "<|begin_of_text|>", "<|end_of_text|>", "<|pad|>"
BOS_ID, EOS_ID = 0, 1
SMALLEST_VOCABULARY = 256 + 3
# Rows of dashes are no words worth a token of their own.
LONGEST_TOKEN = 64

BATCH_CHARACTERS = 1 << 20
REMEMBERED_WORDS = 200_000


def train_tokenizer(texts: Iterable[str], vocab_size: int) -> Tokenizer:
    """Every byte has a token, so any text survives encoding and decoding unchanged.

    A small corpus may not hold enough repeated pairs for the size asked for.
    """
    tokenizer = Tokenizer(models.BPE())
    tokenizer.pre_tokenizer = pre_tokenizers.ByteLevel(add_prefix_space=False)
    tokenizer.decoder = decoders.ByteLevel()
    trainer = trainers.BpeTrainer(
        vocab_size=vocab_size,
        special_tokens=[BOS, EOS, PAD],
        initial_alphabet=sorted(pre_tokenizers.ByteLevel.alphabet()),
        max_token_length=LONGEST_TOKEN,
        show_progress=False,
    )
    tokenizer.train_from_iterator(texts, trainer)
    tokenizer.post_processor = processors.Sequence(
        [
            processors.ByteLevel(trim_offsets=False),
            processors.TemplateProcessing(
                single=f"{BOS} $A",
                pair=f"{BOS} $A {BOS} $B:1",
                special_tokens=[(BOS, BOS_ID)],
            ),
        ]
    )
    return tokenizer


def load_tokenizer(path: Path) -> Tokenizer:
    """For encoding a corpus: the name of a special token in a text is just text."""
    tokenizer = Tokenizer.from_file(str(path))
    tokenizer.encode_special_tokens = True
    # Natural text repeats its words; measured, this encodes it 1.4 times as fast.
    if hasattr(tokenizer.model, "_resize_cache"):
        tokenizer.model._resize_cache(REMEMBERED_WORDS)
    return tokenizer


def token_type(vocab_size: int) -> np.dtype:
    return np.dtype("<u2" if vocab_size <= 1 << 16 else "<u4")


def encode_documents(
    tokenizer: Tokenizer, documents: Iterable[tuple[str, bool]], dtype: np.dtype
) -> Iterator[tuple[np.ndarray, bool]]:
    """Token ids of each document between begin and end of text, in order, with its flag.

    One batch is encoded, on all cores, while the caller reads and writes the next.
    """
    encode = getattr(tokenizer, "encode_batch_fast", tokenizer.encode_batch)

    def run(batch: list[tuple[str, bool]]) -> list[tuple[np.ndarray, bool]]:
        encodings = encode([text for text, _ in batch], add_special_tokens=False)
        return [
            (np.array([BOS_ID, *encoding.ids, EOS_ID], dtype=dtype), flag)
            for encoding, (_, flag) in zip(encodings, batch, strict=True)
        ]

    with ThreadPoolExecutor(1) as executor:
        pending = None
        for batch in _batches(documents):
            following = executor.submit(run, batch)
            if pending is not None:
                yield from pending.result()
            pending = following
        if pending is not None:
            yield from pending.result()


def _batches(documents: Iterable[tuple[str, bool]]) -> Iterator[list[tuple[str, bool]]]:
    batch: list[tuple[str, bool]] = []
    held = 0
    for document in documents:
        batch.append(document)
        held += len(document[0])
        if held >= BATCH_CHARACTERS:
            yield batch
            batch, held = [], 0
    if batch:
        yield batch
