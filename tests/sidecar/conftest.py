from __future__ import annotations

import sys
from collections.abc import Callable, Iterator
from pathlib import Path

import pytest

ROOT = Path(__file__).resolve().parents[2]
for place in (ROOT / "sidecar", Path(__file__).resolve().parent):
    if str(place) not in sys.path:
        sys.path.insert(0, str(place))

from src.runtime.blas import prepare_blas  # noqa: E402

prepare_blas()

from support.child import Library, Sidecar  # noqa: E402


@pytest.fixture
def library(tmp_path: Path) -> Library:
    """A library with a small corpus and the settings of a tiny model."""
    return Library(tmp_path).fill()


@pytest.fixture
def sidecar(library: Library) -> Iterator[Callable[..., Sidecar]]:
    """Starts sidecars for `library`, or for another one, and ends them with the test."""
    started: list[Sidecar] = []

    def start(folders: Library = library, **options) -> Sidecar:
        started.append(Sidecar(folders, **options))
        return started[-1]

    yield start
    for child in started:
        child.__exit__()
