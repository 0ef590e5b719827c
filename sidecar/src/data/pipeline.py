"""The preparation itself, from files to token files. Runs in the worker process."""

from __future__ import annotations

import os
import shutil
from collections.abc import Callable, Iterator
from dataclasses import dataclass
from pathlib import Path

import numpy as np

from . import cache
from .documents import content_key, read_documents, section_length
from .files import Inspection, SourceFile, find_files, inspect
from .progress import (
    COUNTING_RATE,
    ENCODING_RATE,
    READING_RATE,
    TRAINING_RATE,
    TRAINING_START_S,
    PhaseProgress,
)
from .records import PreparationError, human_bytes, human_files
from .split import MASK, DocumentCensus, SeenDocuments, Split, mix, unigram_nats
from .tokenizer import (
    SMALLEST_VOCABULARY,
    encode_documents,
    load_tokenizer,
    token_type,
    train_tokenizer,
)
from .warning_limiter import WarningLimiter

FORMAT_VERSION = 1
SMALLEST_TRAINING_TOKENS = 32
# Enough to settle a vocabulary, and a bound on the trainer's memory.
TOKENIZER_SAMPLE_BYTES = 32_000_000
SAMPLE_SALT = 0x5A3C

TOKENIZER_FILE = "tokenizer.json"
TOKENIZER_KEYS = ("vocab_size",)
TOKEN_FILES = ("train.bin", "validation.bin")
TOKENS_KEYS = ("vocab_size", "documents", "unigram_nats", "bad_lines")

READING, COUNTING, TRAINING, ENCODING = "reading", "counting", "training", "encoding"


@dataclass(frozen=True)
class Request:
    data_root: str
    cache_root: str
    temporary: str
    vocab_size: int
    validation_fraction: float
    seed: int


@dataclass(frozen=True)
class Result:
    tokenizer_folder: str
    tokens_folder: str
    fingerprint: str
    vocab_size: int
    unigram_nats: float
    documents: int
    corpora: list[str]
    bytes: int


class Preparation:
    """`emit` gets fractions with a detail text, `warn` finished lines."""

    def __init__(
        self,
        request: Request,
        emit: Callable[[float, str], None],
        warn: Callable[[str], None],
    ):
        self._request = request
        self._emit = emit
        self._warnings = WarningLimiter(warn)
        self._cache_root = Path(request.cache_root)
        self._temporary = Path(request.temporary)

    def run(self) -> Result:
        self._check_settings()
        with cache.writing_to(self._cache_root):
            self._cache_root.mkdir(parents=True, exist_ok=True)
        with cache.exclusive(self._cache_root, self._say_waiting):
            with cache.writing_to(self._cache_root):
                shutil.rmtree(self._cache_root / cache.TEMPORARY, ignore_errors=True)
                self._temporary.mkdir(parents=True)
            try:
                result = self._prepare()
            finally:
                shutil.rmtree(self._temporary, ignore_errors=True)
        self._warnings.summarize()
        return result

    def _check_settings(self) -> None:
        request = self._request
        if request.vocab_size < SMALLEST_VOCABULARY:
            raise PreparationError(
                f"A vocabulary of {request.vocab_size} is too small: every byte needs a token, so "
                f"it takes at least {SMALLEST_VOCABULARY}."
            )
        if not 0 <= request.validation_fraction <= 0.5:
            raise PreparationError(f"The validation share {request.validation_fraction} is not between 0 and 0.5.")

    def _say_waiting(self) -> None:
        self._emit(0.0, "Waiting for another preparation in the same folder")

    def _prepare(self) -> Result:
        request = self._request
        files = find_files(request.data_root, self._warnings)
        self._progress = self._plan_phases(files)
        self._usable = self._inspect_all(files)
        if not self._usable:
            raise self._no_training_data()
        self._bytes = sum(file.size for file, _ in self._usable)
        self._section = section_length(self._bytes)

        corpus_key = cache.key_of(FORMAT_VERSION, [(file.kind, seen.digest) for file, seen in self._usable])
        tokenizer_key = cache.key_of(corpus_key, request.vocab_size)
        tokens_key = cache.key_of(tokenizer_key, request.validation_fraction, request.seed)
        tokenizer_entry = self._cache_root / "tokenizers" / tokenizer_key
        tokens_entry = self._cache_root / "tokens" / tokens_key

        tokenizer_meta = cache.valid_meta(tokenizer_entry, TOKENIZER_KEYS, (TOKENIZER_FILE,))
        tokens_meta = cache.valid_meta(tokens_entry, TOKENS_KEYS, TOKEN_FILES) if tokenizer_meta else None
        if tokens_meta is None:
            tokens_meta = self._build(tokenizer_entry, tokenizer_meta, tokens_entry)
        else:
            self._bad_lines_summary(tokens_meta["bad_lines"])
        cache.touch_and_prune(tokenizer_entry)
        cache.touch_and_prune(tokens_entry)
        return Result(
            tokenizer_folder=str(tokenizer_entry),
            tokens_folder=str(tokens_entry),
            fingerprint=tokens_key,
            vocab_size=tokens_meta["vocab_size"],
            unigram_nats=tokens_meta["unigram_nats"],
            documents=tokens_meta["documents"],
            corpora=sorted({file.corpus for file, _ in self._usable}),
            bytes=self._bytes,
        )

    def _plan_phases(self, files: list[SourceFile]) -> PhaseProgress:
        total = sum(file.size for file in files)
        sample = min(total, TOKENIZER_SAMPLE_BYTES)
        return PhaseProgress(
            self._emit,
            {
                READING: total / READING_RATE,
                COUNTING: total / COUNTING_RATE,
                TRAINING: TRAINING_START_S + sample / TRAINING_RATE,
                ENCODING: total / ENCODING_RATE,
            },
        )

    def _inspect_all(self, files: list[SourceFile]) -> list[tuple[SourceFile, Inspection]]:
        hashes = cache.FileHashes(self._cache_root, FORMAT_VERSION)
        known = [(file, hashes.get(file)) for file in files]
        unread = sum(file.size for file, inspection in known if inspection is None)
        if unread == 0:
            self._progress.drop(READING)
        detail = f"Reading {self._describe(files)}"
        done = 0

        def advance(count: int) -> None:
            nonlocal done
            done += count
            self._progress.at(READING, done / max(unread, 1), detail)

        advance(0)
        usable = []
        for file, inspection in known:
            if inspection is None:
                try:
                    inspection = inspect(file, advance)
                except OSError as error:
                    self._warnings.add(
                        "could not be read",
                        f"Skipped {file.name}: it could not be read: {error.strerror}",
                    )
                    continue
                hashes.put(file, inspection)
            if self._is_usable(file, inspection):
                usable.append((file, inspection))
        with cache.writing_to(self._cache_root):
            hashes.save(self._temporary)
        return usable

    def _is_usable(self, file: SourceFile, inspection: Inspection) -> bool:
        reasons = {
            "empty": ("are empty", "it is empty"),
            "blank": ("hold only white space", "it holds only white space"),
            "binary": ("are binary", "it is not text (it contains NUL bytes)"),
        }
        if inspection.problem:
            kind, reason = reasons[inspection.problem]
            self._warnings.add(kind, f"Skipped {file.name}: {reason}")
            return False
        if inspection.damaged and inspection.encoding == "cp1252":
            self._warnings.add(
                "are not UTF-8 and were read as Windows-1252",
                f"{file.name} is not UTF-8; it is read as Windows-1252",
            )
        elif inspection.damaged:
            self._warnings.add(
                "contain bytes that are not UTF-8",
                f"{file.name} contains bytes that are not UTF-8; they are replaced",
            )
        return True

    def _no_training_data(self) -> PreparationError:
        self._warnings.summarize()
        return PreparationError(
            f"There is no training text in {self._request.data_root}. Put .txt, .md or .jsonl "
            'files there (in JSON lines, each an object with a string "text"), each corpus in a '
            "subfolder of its own."
        )

    def _too_little(self) -> PreparationError:
        self._warnings.summarize()
        return PreparationError(
            f"There is too little training text in {self._request.data_root}. Add more .txt, .md "
            "or .jsonl files; a few hundred KB are a sensible beginning."
        )

    def _describe(self, files: list[SourceFile]) -> str:
        size = human_bytes(sum(file.size for file in files))
        return f"{human_files(len(files))} ({size})"

    def _build(self, tokenizer_entry: Path, tokenizer_meta: dict | None, tokens_entry: Path) -> dict:
        census, sample = self._count(sample_wanted=tokenizer_meta is None)
        if census.documents == 0:
            raise self._too_little()
        if tokenizer_meta is None:
            tokenizer_meta = self._train_tokenizer(sample, tokenizer_entry)
        else:
            self._progress.drop(TRAINING)
        del sample
        split = census.plan(self._request.validation_fraction, self._request.seed)
        return self._encode(tokenizer_entry, tokenizer_meta["vocab_size"], split, tokens_entry)

    def _documents(self, phase: str, verb: str) -> Iterator[str]:
        """Every document of every file; bad JSON lines are warned about while counting."""
        detail = f"{verb} {self._describe([file for file, _ in self._usable])}"
        before = 0
        self._progress.at(phase, 0.0, detail)
        for file, inspection in self._usable:

            def at(position: int, before: int = before) -> None:
                self._progress.at(phase, (before + position) / self._bytes, detail)

            def bad_line(number: int, reason: str, file: SourceFile = file) -> None:
                if phase == COUNTING:
                    self._bad_line(file, number, reason)

            yield from read_documents(file, inspection, self._section, at, bad_line)
            before += file.size

    def _bad_line(self, file: SourceFile, number: int, reason: str) -> None:
        count = self._bad_lines.get(file.name, 0)
        if count == 0:
            self._warnings.add(
                "contain lines that were skipped",
                f"Skipped line {number:,} of {file.name}: {reason}",
            )
        self._bad_lines[file.name] = count + 1

    def _bad_lines_summary(self, bad_lines: dict[str, int]) -> None:
        for name, count in bad_lines.items():
            lines = "1 line" if count == 1 else f"{count:,} lines"
            self._warnings.add("had lines that could not be used", f"{lines} of {name} could not be used")

    def _count(self, sample_wanted: bool) -> tuple[DocumentCensus, list[str]]:
        """Counts the distinct documents and picks the tokenizer's sample by their content."""
        self._bad_lines: dict[str, int] = {}
        census = DocumentCensus()
        sample: list[str] = []
        first = ""
        sampled = 0
        share = min(1.0, TOKENIZER_SAMPLE_BYTES / self._bytes)
        for text in self._documents(COUNTING, "Looking through"):
            key = content_key(text)
            size = len(text.encode("utf-8"))
            if not census.add(key, size) or not sample_wanted:
                continue
            first = first or text
            if mix(key ^ SAMPLE_SALT) <= share * MASK and sampled < 1.25 * TOKENIZER_SAMPLE_BYTES:
                sample.append(text)
                sampled += size
        self._bad_lines_summary(self._bad_lines)
        if sample_wanted and not sample and census.documents:
            sample.append(first)
        return census, sample

    def _train_tokenizer(self, sample: list[str], entry: Path) -> dict:
        size = sum(len(text) for text in sample)
        files = [file for file, _ in self._usable]
        detail = f"Training the tokenizer on {self._describe(files)}"
        if self._bytes > TOKENIZER_SAMPLE_BYTES:
            detail += f", of which a sample of {human_bytes(size)}"
        seconds = TRAINING_START_S + size / TRAINING_RATE
        with self._progress.expecting(TRAINING, seconds, detail):
            tokenizer = train_tokenizer(iter(sample), self._request.vocab_size)
        folder = self._temporary / "tokenizer"
        meta = {"vocab_size": tokenizer.get_vocab_size()}
        with cache.writing_to(self._cache_root):
            folder.mkdir()
            (folder / TOKENIZER_FILE).write_text(tokenizer.to_str(pretty=True), "utf-8")
            cache.publish(folder, entry, meta)
        return meta

    def _encode(self, tokenizer_entry: Path, vocab_size: int, split: Split, entry: Path) -> dict:
        tokenizer = load_tokenizer(tokenizer_entry / TOKENIZER_FILE)
        dtype = token_type(vocab_size)
        folder = self._temporary / "tokens"
        documents = 0
        with cache.writing_to(self._cache_root):
            folder.mkdir()
            train_path, validation_path = (folder / name for name in TOKEN_FILES)
            with open(train_path, "wb") as train, open(validation_path, "wb") as validation:
                flagged = self._flagged_documents(split)
                for ids, is_validation in encode_documents(tokenizer, flagged, dtype):
                    (validation if is_validation else train).write(memoryview(ids))
                    documents += 1
                train_tokens = train.tell() // dtype.itemsize
        if train_tokens < SMALLEST_TRAINING_TOKENS:
            raise self._too_little()
        maps = [map_tokens(folder / name, dtype) for name in TOKEN_FILES]
        measured = maps[1] if len(maps[1]) else maps[0]
        meta = {
            "vocab_size": vocab_size,
            "dtype": dtype.str,
            "documents": documents - (1 if split.tail and len(maps[1]) else 0),
            "unigram_nats": unigram_nats(maps[0], measured, vocab_size),
            "bad_lines": self._bad_lines,
        }
        with cache.writing_to(self._cache_root):
            cache.publish(folder, entry, meta)
        return meta

    def _flagged_documents(self, split: Split) -> Iterator[tuple[str, bool]]:
        seen = SeenDocuments()
        for text in self._documents(ENCODING, "Tokenizing"):
            key = content_key(text)
            if not seen.is_new(key):
                continue
            if split.tail:
                head, tail = _cut_tail(text, split.tail)
                yield head, False
                if tail:
                    yield tail, True
            else:
                yield text, split.is_validation(key)


def _cut_tail(text: str, share: float) -> tuple[str, str]:
    """The end of the text from a line or word boundary on, about `share` of it."""
    wanted = int(len(text) * (1 - share))
    for separator in ("\n", " "):
        found = text.rfind(separator, wanted // 2, wanted)
        if found >= 0:
            wanted = found + 1
            break
    return (text[:wanted], text[wanted:]) if wanted > 0 else (text, "")


def map_tokens(path: Path, dtype: np.dtype) -> np.memmap:
    """A read-only map; an empty file, which cannot be mapped, gives an empty array."""
    if os.path.getsize(path) == 0:
        return np.empty(0, dtype=dtype).view(np.memmap)
    return np.memmap(path, dtype=dtype, mode="r")
