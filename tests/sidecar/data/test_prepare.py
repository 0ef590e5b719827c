"""The preparation in its own process: progress, cancelling, and dying with its parent."""

import itertools
import os
import random
import signal
import string
import subprocess
import sys
import threading
from pathlib import Path

import numpy as np
import pytest
from invented_text import prose

from src.data import PreparationCancelled, PreparationError, cache, prepare, prepare_corpus

SETTINGS = {"vocab_size": 300, "validation_fraction": 0.1, "seed": 1}


def run(data_root, cache_root, report=lambda step: None, warn=print, cancelled=lambda: False, **settings):
    callbacks = {"report": report, "warn": warn, "cancelled": cancelled}
    return prepare_corpus(data_root, cache_root, **{**SETTINGS, **callbacks, **settings})


@pytest.fixture
def workers(monkeypatch):
    """The worker processes started during the test."""
    started = []
    start = prepare._start_worker

    def start_and_remember():
        started.append(start())
        return started[-1]

    monkeypatch.setattr(prepare, "_start_worker", start_and_remember)
    return started


def write_repeated(path, size):
    block = prose(1_000_000)
    with open(path, "w") as stream:
        for number in range(size // len(block)):
            stream.write(f"{number} {block}")


def test_prepared_corpus(write, data_root, cache_root, workers):
    write("books/one.txt", prose(50_000))
    write("books/empty.txt", "")
    steps, warnings = [], []
    prepared = run(data_root, cache_root, steps.append, warnings.append)
    assert prepared.tokenizer_path.name == "tokenizer.json"
    assert prepared.vocab_size == 300
    assert (prepared.bos_token_id, prepared.eos_token_id) == (0, 1)
    assert isinstance(prepared.train, np.memmap)
    assert not prepared.train.flags.writeable
    assert prepared.train.dtype == prepared.validation.dtype == np.uint16
    assert len(prepared.validation) > 0
    assert prepared.train.max() < 300
    assert prepared.corpora == ["books"]
    assert prepared.bytes == 50_000
    assert 0 < prepared.unigram_nats < np.log(300)
    assert warnings == ["Skipped books/empty.txt: it is empty"]
    assert steps[-1].fraction == 1.0
    assert steps[-1].eta_s == 0.0
    assert workers[0].returncode == 0


def test_a_vocabulary_beyond_16_bits_gives_wider_tokens(write, data_root, cache_root):
    generator = random.Random(1)
    words = ["".join(generator.choices(string.ascii_lowercase, k=9)) for _ in range(20_000)]
    write("one.txt", " ".join(words * 2))
    prepared = run(data_root, cache_root, vocab_size=70_000)
    assert prepared.vocab_size > 65_536
    assert prepared.train.dtype == np.uint32
    assert prepared.train.max() > 65_535


def test_progress_never_falls_and_is_paced(data_root, cache_root):
    write_repeated(data_root / "large.txt", 4_000_000)
    steps = []
    run(data_root, cache_root, steps.append, vocab_size=1000)
    fractions = [step.fraction for step in steps]
    assert fractions == sorted(fractions)
    assert 0 <= fractions[0] < fractions[-1] == 1.0
    elapsed = [step.elapsed_s for step in steps[:-1]]
    assert all(later - earlier >= 0.1 for earlier, later in itertools.pairwise(elapsed))
    assert all(step.eta_s >= 0 for step in steps)
    assert any(step.detail == "Training the tokenizer on 1 file (4.0 MB)" for step in steps)


@pytest.mark.parametrize(
    ("phase", "megabytes"), [("Reading", 300), ("Looking", 100), ("Training", 12), ("Tokenizing", 6)]
)
def test_cancel_in_each_phase(data_root, cache_root, workers, phase, megabytes):
    write_repeated(data_root / "large.txt", megabytes * 1_000_000)
    seen, asked_after = [], []

    def cancelled():
        if seen and seen[-1].startswith(phase):
            asked_after.append(len(seen))
            return True
        return False

    with pytest.raises(PreparationCancelled):
        run(data_root, cache_root, lambda step: seen.append(step.detail), cancelled=cancelled)
    assert asked_after == [len(seen)]
    assert workers[0].returncode == -signal.SIGKILL
    assert not list(cache_root.glob(f"{cache.TEMPORARY}/*"))
    assert not list(cache_root.glob("tokens/*"))
    os.unlink(data_root / "large.txt")


def test_cancelled_from_the_start_starts_nothing(data_root, cache_root, workers):
    with pytest.raises(PreparationCancelled):
        run(data_root, cache_root, cancelled=lambda: True)
    assert workers == []
    assert not cache_root.exists()


def test_an_error_in_a_callback_ends_the_worker(write, data_root, cache_root, workers):
    write("one.txt", prose(50_000))

    def fail(step):
        raise KeyError("screen")

    with pytest.raises(KeyError):
        run(data_root, cache_root, fail)
    assert workers[0].returncode is not None


def test_errors_of_the_worker_arrive(data_root, cache_root):
    with pytest.raises(PreparationError, match="There is no training text"):
        run(data_root, cache_root)
    with pytest.raises(PreparationError, match="at least 259"):
        run(data_root, cache_root, vocab_size=100)
    with pytest.raises(PreparationError, match="is not between 0 and"):
        run(data_root, cache_root, validation_fraction=float("nan"))


def test_a_killed_worker_is_an_error_and_leaves_nothing(data_root, cache_root, workers):
    write_repeated(data_root / "large.txt", 6_000_000)

    def kill_in_training(step):
        if step.detail.startswith("Training"):
            workers[0].kill()

    with pytest.raises(PreparationError, match="ended by signal 9"):
        run(data_root, cache_root, kill_in_training)
    assert not list(cache_root.glob(f"{cache.TEMPORARY}/*"))
    assert len(run(data_root, cache_root).train) > 0


FAULTY_WORKER = """
from src.data import pipeline, worker

def fail(self):
    raise ZeroDivisionError("nobody thought of it")

pipeline.Preparation.run = fail
worker.main()
"""


def test_an_error_that_nobody_thought_of_is_told_and_traced(data_root, cache_root, monkeypatch, capfd):
    monkeypatch.setattr(prepare, "WORKER", ["-c", FAULTY_WORKER])
    with pytest.raises(PreparationError) as told:
        run(data_root, cache_root)
    assert str(told.value) == (
        "The preparation of the training data failed unexpectedly: ZeroDivisionError: nobody thought of it"
    )
    assert "Traceback" in capfd.readouterr().err


def test_the_worker_holds_no_descriptor_of_ours(write, data_root, cache_root, monkeypatch):
    write("one.txt", prose(50_000))
    read_end, write_end = os.pipe()
    os.set_inheritable(write_end, True)
    start, closed = prepare._start_worker, threading.Event()

    def start_then_close():
        worker = start()
        os.close(write_end)
        assert os.read(read_end, 1) == b""
        assert worker.poll() is None
        closed.set()
        return worker

    monkeypatch.setattr(prepare, "_start_worker", start_then_close)
    run(data_root, cache_root)
    os.close(read_end)
    assert closed.is_set()


PARENT = """
import os, sys
from pathlib import Path
from src.data import prepare_corpus
prepare_corpus(Path(sys.argv[1]), Path(sys.argv[2]), vocab_size=300, validation_fraction=0.1, seed=1,
               report=lambda p: print(p.detail, flush=True), warn=print, cancelled=lambda: False)
"""


def test_the_worker_dies_with_its_parent(data_root, cache_root):
    write_repeated(data_root / "large.txt", 200_000_000)
    parent = subprocess.Popen(
        [sys.executable, "-c", PARENT, data_root, cache_root],
        cwd=Path(prepare.__file__).parents[2],
        stdout=subprocess.PIPE,
        stderr=subprocess.PIPE,
        text=True,
    )
    assert any("Looking through" in line for line in parent.stdout)
    parent.kill()
    # The worker shares standard error, which ends only when both are gone.
    assert parent.stderr.read() == ""
    parent.wait()
    parent.stdout.close()
    parent.stderr.close()
    os.unlink(data_root / "large.txt")
    assert not list(cache_root.glob("tokens/*"))
