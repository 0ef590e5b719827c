"""The training sidecar with faults that a test switches on; run as `python3 -m faulty`.

SIGUSR1 makes every file write beyond a kilobyte fail, SIGUSR2 lets it succeed again. POISONED_STEPS lists gradient
computations, counted from 1, that come out as not-a-number. FULL_MEMORY makes the first one fail as MLX does.
INFINITE_VALIDATION makes every validation loss infinite.
HELD_PREPARATION keeps the data preparation busy until it is cancelled. TOLD_ARCHIVE says "archived" on standard
error when the archive is there. BROKEN_MLX makes the import of MLX's core fail.
"""

from __future__ import annotations

import os
import resource
import signal
import sys

SMALL_FILE = 1024


def _limit_files(limit: int):
    def act(number: int, frame: object) -> None:
        _, hard = resource.getrlimit(resource.RLIMIT_FSIZE)
        resource.setrlimit(resource.RLIMIT_FSIZE, (limit, hard))

    return act


def _poison(steps: set[int]) -> None:
    from src.training.learner import Learner

    original = Learner._accumulated
    calls = 0

    def poisoned(self, tokens):
        nonlocal calls
        calls += 1
        loss, gradients = original(self, tokens)
        if calls in steps:
            gradients = {name: gradient * float("nan") for name, gradient in gradients.items()}
        return loss, gradients

    Learner._accumulated = poisoned


def _fill_memory() -> None:
    from src.training.learner import Learner

    def full(self, tokens):
        raise RuntimeError("[malloc_or_wait] Unable to allocate 4294967296 bytes.")

    Learner._accumulated = full


def _spoil_validation() -> None:
    from src.training.learner import Learner

    Learner.validation_loss = lambda self, batches: float("inf")


def _hold_preparation() -> None:
    from src.data import PreparationCancelled, PrepProgress
    from src.run import preparation

    def prepare(data_root, cache_root, *, report, cancelled, **_):
        session = cancelled.__self__._session
        while not cancelled():
            report(PrepProgress(0.25, "held", 1.0, 3.0))
            session.wait()
        raise PreparationCancelled

    preparation.prepare_corpus = prepare


def _tell_archive() -> None:
    from src.run import pretraining

    original = pretraining.archive_run

    def archive(*arguments):
        folder = original(*arguments)
        print("archived", file=sys.stderr, flush=True)
        return folder

    pretraining.archive_run = archive


def main() -> int:
    signal.signal(signal.SIGUSR1, _limit_files(SMALL_FILE))
    signal.signal(signal.SIGUSR2, _limit_files(resource.RLIM_INFINITY))
    if os.environ.get("BROKEN_MLX"):
        sys.modules["mlx.core"] = None
    if steps := os.environ.get("POISONED_STEPS"):
        _poison({int(step) for step in steps.split(",")})
    if os.environ.get("FULL_MEMORY"):
        _fill_memory()
    if os.environ.get("INFINITE_VALIDATION"):
        _spoil_validation()
    if os.environ.get("HELD_PREPARATION"):
        _hold_preparation()
    if os.environ.get("TOLD_ARCHIVE"):
        _tell_archive()
    from src.app_backend import main as run

    return run()


if __name__ == "__main__":
    sys.exit(main())
