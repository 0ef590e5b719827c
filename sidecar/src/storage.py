"""Writing folders so that a reader sees them whole or not at all, and one run per working directory."""

from __future__ import annotations

import contextlib
import errno
import fcntl
import json
import os
import re
import shutil
from collections.abc import Iterator
from pathlib import Path

LEFTOVER_MARK = ".partial"
_LEFTOVER = re.compile(r"\..+\.(\d{1,9})\.partial")


@contextlib.contextmanager
def folder_written_aside(parent: Path, name: str) -> Iterator[Path]:
    """Yields a folder inside a hidden one beside `parent / name`; the caller fills it and calls `publish`.

    It lies one level deeper than a run, because the application counts hidden folders with a manifest as well.
    Whatever is still there when the block ends, by an error or without publishing, is removed.
    """
    hidden = parent / f".{name}.{os.getpid()}{LEFTOVER_MARK}"
    shutil.rmtree(hidden, ignore_errors=True)
    aside = hidden / name
    hidden.mkdir()
    try:
        aside.mkdir()
        yield aside
    finally:
        shutil.rmtree(hidden, ignore_errors=True)


def publish(aside: Path, target: Path) -> None:
    """Makes the finished folder durable and moves it to its name; raises FileExistsError where that is taken."""
    for file in aside.iterdir():
        _sync(file)
    _sync(aside)
    if os.path.lexists(target):
        raise FileExistsError(errno.EEXIST, "File exists", str(target))
    try:
        os.rename(aside, target)
    except OSError as error:
        if error.errno != errno.ENOTEMPTY:
            raise
        raise FileExistsError(errno.EEXIST, "File exists", str(target)) from error
    with contextlib.suppress(OSError):
        _sync(target.parent)


def remove_leftovers(parent: Path) -> list[str]:
    """Removes what killed processes left in `parent`; a folder that a living process still writes stays."""
    removed = []
    with contextlib.suppress(OSError):
        for entry in parent.iterdir():
            match = _LEFTOVER.fullmatch(entry.name)
            if match and not _is_alive(int(match[1])):
                shutil.rmtree(entry, ignore_errors=True)
                removed.append(entry.name)
    return removed


def _is_alive(process: int) -> bool:
    if process == os.getpid():
        return False
    try:
        os.kill(process, 0)
    except ProcessLookupError:
        return False
    except (PermissionError, OverflowError):
        return True
    return True


def write_json(path: Path, value) -> None:
    path.write_text(json.dumps(value, indent=2, ensure_ascii=False, allow_nan=False) + "\n", encoding="utf-8")


def _sync(path: Path) -> None:
    descriptor = os.open(path, os.O_RDONLY)
    try:
        os.fsync(descriptor)
    finally:
        os.close(descriptor)


def reason(error: OSError) -> str:
    """What went wrong in a few words; some libraries raise an OSError that has nothing but a text."""
    return error.strerror or str(error) or type(error).__name__


class FolderBusy(Exception):
    """Another process holds the folder; the text says which."""


class FolderLock:
    """An advisory lock that the system releases even when the holder is killed."""

    def __init__(self, folder: Path) -> None:
        self._folder = folder
        self._descriptor: int | None = None

    def acquire(self) -> None:
        descriptor = os.open(self._folder / ".lock", os.O_RDWR | os.O_CREAT | os.O_CLOEXEC, 0o644)
        try:
            fcntl.flock(descriptor, fcntl.LOCK_EX | fcntl.LOCK_NB)
        except BlockingIOError:
            holder = os.pread(descriptor, 32, 0).decode("ascii", "replace").strip() or "unknown"
            os.close(descriptor)
            raise FolderBusy(f"process {holder}") from None
        except OSError:
            os.close(descriptor)
            raise
        self._descriptor = descriptor
        with contextlib.suppress(OSError):
            os.ftruncate(descriptor, 0)
            os.pwrite(descriptor, str(os.getpid()).encode(), 0)

    def release(self) -> None:
        if self._descriptor is not None:
            os.close(self._descriptor)
            self._descriptor = None
