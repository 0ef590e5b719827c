"""Starts the preparation in a process of its own and relays what it says."""

from __future__ import annotations

import dataclasses
import json
import os
import select
import shutil
import subprocess
import sys
import time
import uuid
from collections.abc import Callable
from pathlib import Path

import numpy as np

from . import cache
from .pipeline import TOKEN_FILES, TOKENIZER_FILE, Request, Result, map_tokens
from .records import PreparationCancelled, PreparationError, PreparedCorpus, PrepProgress
from .tokenizer import BOS_ID, EOS_ID, token_type

POLL_S = 0.1
REPORT_INTERVAL_S = 0.12
WORKER = ["-m", f"{__package__}.worker"]
SCRIPTS_ROOT = Path(__file__).resolve().parents[2]


def prepare_corpus(
    data_root: Path,
    cache_root: Path,
    *,
    vocab_size: int,
    validation_fraction: float,
    seed: int,
    report: Callable[[PrepProgress], None],
    warn: Callable[[str], None],
    cancelled: Callable[[], bool],
) -> PreparedCorpus:
    """Everything below `data_root` as tokens, from the cache if nothing has changed.

    All callbacks run on the calling thread: `report` 4 to 10 times a second, `cancelled` at
    least 5 times. Raises PreparationCancelled or PreparationError.
    """
    if cancelled():
        raise PreparationCancelled
    request = Request(
        data_root=os.path.abspath(data_root),
        cache_root=os.path.abspath(cache_root),
        temporary=os.path.join(os.path.abspath(cache_root), cache.TEMPORARY, uuid.uuid4().hex),
        vocab_size=vocab_size,
        validation_fraction=validation_fraction,
        seed=seed,
    )
    relay = _Relay(report, warn)
    worker = _start_worker()
    try:
        _send_request(worker, request)
        while not relay.closed:
            if cancelled():
                raise PreparationCancelled
            relay.wait(worker.stdout.fileno(), POLL_S)
        worker.wait()
    finally:
        worker.kill()
        worker.wait()
        worker.stdin.close()
        worker.stdout.close()
        shutil.rmtree(request.temporary, ignore_errors=True)
    if relay.error:
        raise PreparationError(relay.error)
    if relay.result is None:
        raise PreparationError(_ended_early(worker.returncode))
    relay.finish()
    return _open(relay.result)


def _start_worker() -> subprocess.Popen:
    """Inherits standard error and no other descriptor."""
    return subprocess.Popen(
        [sys.executable, *WORKER],
        cwd=SCRIPTS_ROOT,
        stdin=subprocess.PIPE,
        stdout=subprocess.PIPE,
        env={**os.environ, "TOKENIZERS_PARALLELISM": "true"},
        # Ctrl-C in a terminal is the parent's to handle.
        start_new_session=True,
    )


def _send_request(worker: subprocess.Popen, request: Request) -> None:
    try:
        worker.stdin.write(json.dumps(dataclasses.asdict(request)).encode() + b"\n")
        worker.stdin.flush()
    except BrokenPipeError:
        pass  # its exit status tells more


def _ended_early(status: int) -> str:
    if status < 0:
        return (
            f"The preparation of the training data was ended by signal {-status}; the machine may "
            "have run out of memory."
        )
    return f"The preparation of the training data failed with exit status {status}."


class _Relay:
    """Paces the worker's progress and remembers how it ended."""

    def __init__(self, report: Callable[[PrepProgress], None], warn: Callable[[str], None]):
        self._report = report
        self._warn = warn
        self._buffer = b""
        self._fraction = 0.0
        self._detail = "Looking for training data"
        self._started = time.monotonic()
        self._reported = -REPORT_INTERVAL_S
        self.closed = False
        self.error = ""
        self.result: Result | None = None

    def wait(self, descriptor: int, timeout_s: float) -> None:
        readable, _, _ = select.select([descriptor], [], [], timeout_s)
        if readable:
            data = os.read(descriptor, 1 << 16)
            self.closed = not data
            *lines, self._buffer = (self._buffer + data).split(b"\n")
            for line in lines:
                self._take(json.loads(line))
        elapsed = time.monotonic() - self._started
        if elapsed - self._reported >= REPORT_INTERVAL_S:
            self._send(elapsed)

    def finish(self) -> None:
        self._fraction = 1.0
        self._detail = "The training data is ready"
        self._send(time.monotonic() - self._started)

    def _take(self, message: dict) -> None:
        if "progress" in message:
            self._fraction, self._detail = message["progress"]
        elif "warning" in message:
            self._warn(message["warning"])
        elif "error" in message:
            self.error = message["error"]
        elif "result" in message:
            self.result = Result(**message["result"])

    def _send(self, elapsed: float) -> None:
        self._reported = elapsed
        done = self._fraction
        remaining = elapsed * (1 - done) / done if done > 0.01 else 0.0
        self._report(PrepProgress(done, self._detail, elapsed, remaining))


def _open(result: Result) -> PreparedCorpus:
    dtype: np.dtype = token_type(result.vocab_size)
    tokens = Path(result.tokens_folder)
    try:
        train, validation = (map_tokens(tokens / name, dtype) for name in TOKEN_FILES)
    except OSError as error:
        raise PreparationError(
            f"The prepared training data in {tokens} could not be opened: {error.strerror}."
        ) from error
    return PreparedCorpus(
        tokenizer_path=Path(result.tokenizer_folder) / TOKENIZER_FILE,
        vocab_size=result.vocab_size,
        bos_token_id=BOS_ID,
        eos_token_id=EOS_ID,
        train=train,
        validation=validation,
        fingerprint=result.fingerprint,
        unigram_nats=result.unigram_nats,
        documents=result.documents,
        corpora=result.corpora,
        bytes=result.bytes,
    )
