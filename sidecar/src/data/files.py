"""Which files make up the training data, and what each of them is."""

from __future__ import annotations

import codecs
import hashlib
import os
import stat
from collections.abc import Callable
from dataclasses import dataclass

from .records import PreparationError
from .warning_limiter import WarningLimiter

TEXT, JSON_LINES = "text", "json lines"
KIND_BY_ENDING = {
    ".txt": TEXT,
    ".text": TEXT,
    ".md": TEXT,
    ".markdown": TEXT,
    ".jsonl": JSON_LINES,
    ".ndjson": JSON_LINES,
}

# Says where the sample corpus comes from; it belongs there and deserves no warning.
PROVENANCE_FILE = "SOURCE"

CHUNK_BYTES = 1 << 20
# A NUL byte further on in JSON lines spoils only its own line.
JSON_LINES_BINARY_PREFIX = 8192


@dataclass(frozen=True)
class SourceFile:
    """A training file as found in the folder; `stamp` changes whenever its content may have."""

    path: str
    name: str
    corpus: str
    kind: str
    size: int
    stamp: tuple[int, ...]


@dataclass(frozen=True)
class Inspection:
    """What reading a file once through has shown. `problem` is empty for a usable file."""

    digest: str
    encoding: str
    damaged: bool
    problem: str


def printable(name: str) -> str:
    """A file name fit for a log line: valid Unicode on a single line."""
    text = os.fsencode(name).decode("utf-8", "replace")
    return "".join(c if c.isprintable() else "\ufffd" for c in text)


def stamp_of(info: os.stat_result) -> tuple[int, ...]:
    return (info.st_size, info.st_mtime_ns, info.st_ctime_ns, info.st_ino, info.st_dev)


def find_files(root: str, warnings: WarningLimiter) -> list[SourceFile]:
    """All training files below `root`, in an order that does not depend on the listing's.

    Links are followed, but no folder is entered twice, so loops end.
    """
    if not os.path.isdir(root):
        raise PreparationError(
            f"The Training Data folder {printable(root)} does not exist. "
            "Create it, or choose another one in the settings."
        )
    found: list[SourceFile] = []
    entered: set[tuple[int, int]] = set()
    pending = [""]
    while pending:
        folder = pending.pop()
        try:
            info = os.stat(os.path.join(root, folder))
            if (info.st_dev, info.st_ino) in entered:
                continue
            entered.add((info.st_dev, info.st_ino))
            names = os.listdir(os.path.join(root, folder))
        except OSError as error:
            if not folder:
                raise PreparationError(
                    f"The Training Data folder {printable(root)} could not be read: {error.strerror}."
                ) from error
            _warn_unreadable(warnings, folder, error)
            continue
        folders = []
        for name in sorted(names, key=os.fsencode):
            if name.startswith("."):
                continue
            relative = os.path.join(folder, name)
            try:
                info = os.stat(os.path.join(root, relative))
            except OSError as error:
                _warn_unreadable(warnings, relative, error)
                continue
            if stat.S_ISDIR(info.st_mode):
                folders.append(relative)
            elif file := _training_file(root, relative, info, warnings):
                found.append(file)
        pending.extend(reversed(folders))
    return found


def _training_file(root: str, relative: str, info: os.stat_result, warnings: WarningLimiter) -> SourceFile | None:
    name = printable(relative)
    if not stat.S_ISREG(info.st_mode):
        warnings.add("are not ordinary files", f"Skipped {name}: it is not an ordinary file")
        return None
    ending = os.path.splitext(relative)[1].lower()
    if ending not in KIND_BY_ENDING:
        if os.path.basename(relative) != PROVENANCE_FILE:
            warnings.add(
                "are not .txt, .md or .jsonl files",
                f"Skipped {name}: it is not a .txt, .md or .jsonl file",
            )
        return None
    folder, separator, _ = relative.partition(os.sep)
    corpus = folder if separator else os.path.basename(os.path.abspath(root))
    return SourceFile(
        path=os.path.join(root, relative),
        name=name,
        corpus=printable(corpus),
        kind=KIND_BY_ENDING[ending],
        size=info.st_size,
        stamp=stamp_of(info),
    )


def _warn_unreadable(warnings: WarningLimiter, relative: str, error: OSError) -> None:
    warnings.add(
        "could not be read",
        f"Skipped {printable(relative)}: it could not be read: {error.strerror}",
    )


def open_regular(path: str) -> int:
    """A descriptor of an ordinary file; something else put in its place cannot block us."""
    descriptor = os.open(path, os.O_RDONLY | os.O_NONBLOCK | os.O_CLOEXEC)
    if not stat.S_ISREG(os.fstat(descriptor).st_mode):
        os.close(descriptor)
        raise OSError(0, "it is no longer an ordinary file")
    return descriptor


def inspect(file: SourceFile, on_bytes: Callable[[int], None]) -> Inspection:
    """Reads the file once, in bounded memory: content hash, encoding, and whether it is text."""
    hasher = hashlib.sha256()
    probe = _TextProbe(file.kind)
    with os.fdopen(open_regular(file.path), "rb", buffering=0) as stream:
        while chunk := stream.read(CHUNK_BYTES):
            hasher.update(chunk)
            probe.feed(chunk)
            on_bytes(len(chunk))
    probe.finish()
    return Inspection(hasher.hexdigest(), probe.encoding, probe.damaged, probe.problem())


def _latin1_for_undefined(error: UnicodeError) -> tuple[str, int]:
    if not isinstance(error, UnicodeDecodeError):
        raise error
    return error.object[error.start : error.end].decode("latin-1"), error.end


codecs.register_error("latin-1-for-undefined", _latin1_for_undefined)


def error_handler(encoding: str) -> str:
    """How bytes are decoded that `encoding` does not define."""
    return "latin-1-for-undefined" if encoding == "cp1252" else "replace"


class _TextProbe:
    """Finds the encoding, NUL characters and whether there is any text at all."""

    def __init__(self, kind: str):
        self._kind = kind
        self._decoder: codecs.IncrementalDecoder | None = None
        self._marked = ""
        self._bytes = 0
        self._binary = False
        self._any_text = False
        self.damaged = False
        self._good = 0
        self._bad = 0

    def feed(self, chunk: bytes) -> None:
        if self._decoder is None:
            self._marked = _byte_order_mark(chunk)
            encoding = self._marked or "utf-8"
            self._decoder = codecs.getincrementaldecoder(encoding)(
                "replace" if self._marked.startswith("utf-16") else "strict"
            )
        if self._marked in ("", "utf-8-sig"):
            searched = chunk
            if self._kind == JSON_LINES:
                searched = chunk[: max(0, JSON_LINES_BINARY_PREFIX - self._bytes)]
            self._binary = self._binary or b"\0" in searched
        self._bytes += len(chunk)
        if not self._binary:
            self._decode(chunk, final=False)

    def finish(self) -> None:
        if self._decoder is not None and not self._binary:
            self._decode(b"", final=True)

    def _decode(self, chunk: bytes, final: bool) -> None:
        if not self.damaged:
            state = self._decoder.getstate()
            try:
                self._look_at(self._decoder.decode(chunk, final))
                return
            except UnicodeDecodeError:
                self.damaged = True
                self._decoder = codecs.getincrementaldecoder(self._marked or "utf-8")("replace")
                self._decoder.setstate(state)
        self._look_at(self._decoder.decode(chunk, final))

    def _look_at(self, text: str) -> None:
        self._any_text = self._any_text or not (text == "" or text.isspace())
        if self._marked not in ("", "utf-8-sig"):
            self._binary = self._binary or "\0" in text
        if not text.isascii():
            replaced = text.count("\ufffd") if self.damaged else 0
            self._bad += replaced
            self._good += len(text) - len(text.encode("ascii", "ignore")) - replaced

    @property
    def encoding(self) -> str:
        if self._marked:
            return self._marked
        # A few damaged bytes in a file full of valid sequences do not make it Windows-1252.
        return "cp1252" if self.damaged and self._good <= self._bad else "utf-8"

    def problem(self) -> str:
        if self._bytes == 0:
            return "empty"
        if self._binary:
            return "binary"
        return "" if self._any_text else "blank"


def _byte_order_mark(start: bytes) -> str:
    if start.startswith(codecs.BOM_UTF8):
        return "utf-8-sig"
    if start.startswith((codecs.BOM_UTF32_LE, codecs.BOM_UTF32_BE)):
        return "utf-32"
    if start.startswith((codecs.BOM_UTF16_LE, codecs.BOM_UTF16_BE)):
        return "utf-16"
    return ""


def corpus_bytes(folder: str | os.PathLike) -> int:
    """The size of the texts in a folder as they lie on disk; only a first guess, before they are read."""
    try:
        return sum(file.size for file in find_files(os.fspath(folder), WarningLimiter(lambda line: None)))
    except PreparationError:
        return 0
