"""Content-addressed entries on disk: whole or absent, checked on use, pruned by age of use.

    lock                      held while a preparation runs
    file-hashes.json          content hashes of unchanged files
    tokenizers/KEY/           tokenizer.json, meta.json
    tokens/KEY/               train.bin, validation.bin, meta.json
    temporary/ID/             what a preparation is writing

Of either kind the ENTRIES_KEPT most recently used entries stay.
"""

from __future__ import annotations

import contextlib
import errno
import fcntl
import hashlib
import json
import os
import shutil
import time
from collections.abc import Callable, Iterable, Iterator
from pathlib import Path

from .files import Inspection, SourceFile
from .records import PreparationError

ENTRIES_KEPT = 4
META = "meta.json"
TEMPORARY = "temporary"
HASHES = "file-hashes.json"

SAMPLE_BLOCK = 1 << 16
SAMPLE_BLOCKS = 64

# A file written to within this time could change again without a new time stamp.
SETTLED_NS = 2_000_000_000


@contextlib.contextmanager
def exclusive(cache_root: Path, waiting: Callable[[], None]) -> Iterator[None]:
    """Keeps a second application on the same folder from preparing at the same time."""
    with contextlib.ExitStack() as held:
        with writing_to(cache_root):
            lock = held.enter_context(open(cache_root / "lock", "ab"))
        while True:
            try:
                fcntl.flock(lock, fcntl.LOCK_EX | fcntl.LOCK_NB)
                break
            except BlockingIOError:
                waiting()
                time.sleep(0.1)
            except OSError:
                break  # this file system has no locks
        yield


@contextlib.contextmanager
def writing_to(folder: Path) -> Iterator[None]:
    """Turns a failed write into a sentence for the user."""
    try:
        yield
    except OSError as error:
        if error.errno in (errno.ENOSPC, errno.EDQUOT):
            message = f"There is not enough free space for the prepared training data in {folder}."
        else:
            message = f"The prepared training data could not be written to {folder}: "
            message += f"{error.strerror or error}."
        raise PreparationError(message) from error


def key_of(*parts: object) -> str:
    return hashlib.sha256(json.dumps(parts).encode()).hexdigest()[:32]


def valid_meta(entry: Path, keys: Iterable[str], files: Iterable[str]) -> dict | None:
    """The entry's description if it has these keys, and these files are there and look as they did."""
    try:
        meta = json.loads((entry / META).read_bytes())
        if any(key not in meta for key in keys):
            return None
        if any(file_print(entry / name) != meta["files"][name] for name in files):
            return None
    except (OSError, ValueError, KeyError, TypeError, AttributeError, RecursionError):
        return None
    return meta


def file_print(path: Path) -> dict:
    """Size and hash; of a large file the hash covers evenly spread blocks, both ends included."""
    hasher = hashlib.sha256()
    with open(path, "rb") as stream:
        size = os.fstat(stream.fileno()).st_size
        if size <= SAMPLE_BLOCK * SAMPLE_BLOCKS:
            hasher.update(stream.read())
        else:
            for block in range(SAMPLE_BLOCKS):
                stream.seek((size - SAMPLE_BLOCK) * block // (SAMPLE_BLOCKS - 1))
                hasher.update(stream.read(SAMPLE_BLOCK))
    return {"size": size, "sha256": hasher.hexdigest()}


def publish(temporary: Path, entry: Path, meta: dict) -> None:
    """Describes, syncs and moves a finished folder into place as one."""
    names = sorted(os.listdir(temporary))
    for name in names:
        sync(temporary / name)
    meta = {**meta, "files": {name: file_print(temporary / name) for name in names}}
    write_file(temporary / META, json.dumps(meta).encode())
    sync(temporary)
    entry.parent.mkdir(parents=True, exist_ok=True)
    shutil.rmtree(entry, ignore_errors=True)
    os.rename(temporary, entry)
    sync(entry.parent)


def write_file(path: Path, content: bytes) -> None:
    with open(path, "wb") as stream:
        stream.write(content)
        stream.flush()
        os.fsync(stream.fileno())


def sync(path: Path) -> None:
    descriptor = os.open(path, os.O_RDONLY)
    try:
        os.fsync(descriptor)
    finally:
        os.close(descriptor)


def touch_and_prune(entry: Path) -> None:
    """Marks the entry as the latest used and removes the oldest beyond the limit."""
    with contextlib.suppress(OSError):
        os.utime(entry)
        others = [other for other in entry.parent.iterdir() if other != entry]
        others.sort(key=lambda other: other.stat().st_mtime_ns, reverse=True)
        for other in others[ENTRIES_KEPT - 1 :]:
            shutil.rmtree(other, ignore_errors=True)


class FileHashes:
    """Remembers inspections by path and stamp, for the folder that was prepared last."""

    def __init__(self, cache_root: Path, format_version: int):
        self._path = cache_root / HASHES
        self._version = format_version
        self._old: dict[str, list] = {}
        self._new: dict[str, list] = {}
        try:
            stored = json.loads(self._path.read_bytes())
            if stored["version"] == format_version and isinstance(stored["files"], dict):
                self._old = stored["files"]
        except (OSError, ValueError, KeyError, TypeError, RecursionError):
            pass

    def get(self, file: SourceFile) -> Inspection | None:
        try:
            stamp, digest, encoding, damaged, problem = known = self._old[file.path]
            if tuple(stamp) != file.stamp:
                return None
            if [type(value) for value in known[1:]] != [str, str, bool, str]:
                return None
        except (KeyError, ValueError, TypeError):
            return None
        self._new[file.path] = known
        return Inspection(digest, encoding, damaged, problem)

    def put(self, file: SourceFile, inspection: Inspection) -> None:
        changed_ns = max(file.stamp[1], file.stamp[2])
        if changed_ns < time.time_ns() - SETTLED_NS:
            self._new[file.path] = [
                list(file.stamp),
                inspection.digest,
                inspection.encoding,
                inspection.damaged,
                inspection.problem,
            ]

    def save(self, temporary: Path) -> None:
        if self._new == self._old:
            return
        aside = temporary / HASHES
        write_file(aside, json.dumps({"version": self._version, "files": self._new}).encode())
        os.replace(aside, self._path)
