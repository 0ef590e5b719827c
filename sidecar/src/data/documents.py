"""Turns training files into documents, a chunk at a time: no file is ever held whole."""

from __future__ import annotations

import hashlib
import io
import json
import os
from collections.abc import Callable, Iterable, Iterator

from .files import (
    JSON_LINES,
    Inspection,
    SourceFile,
    error_handler,
    open_regular,
    stamp_of,
)
from .records import PreparationError

CHUNK_CHARACTERS = 1 << 18
# Such a line is hardly one record; holding more of it than this serves nobody.
LONGEST_JSON_LINE = 64 << 20
SHORTEST_SECTION = 4096
LONGEST_SECTION = 32768
SECTIONS_WANTED = 32


def section_length(total_bytes: int) -> int:
    """Characters after which a long document is cut, so that even one file can be split."""
    return min(max(total_bytes // SECTIONS_WANTED, SHORTEST_SECTION), LONGEST_SECTION)


def content_key(text: str) -> int:
    """64 bits that are equal for documents with the same text, white space at the ends aside."""
    digest = hashlib.blake2b(text.strip().encode("utf-8"), digest_size=8).digest()
    return int.from_bytes(digest, "little")


def read_documents(
    file: SourceFile,
    inspection: Inspection,
    section: int,
    on_position: Callable[[int], None],
    on_bad_line: Callable[[int, str], None],
) -> Iterator[str]:
    """The non-blank documents of one file, in order, as text that UTF-8 can carry.

    A text file is one document, a line of JSON lines is one; what is longer than one and a half
    sections is cut into documents of about one section. `on_position` gets the bytes read so
    far; `on_bad_line` a line number and what is wrong with it. Line ends become "\\n".
    """
    try:
        raw = io.FileIO(open_regular(file.path), "rb")
    except OSError as error:
        raise _changed(file) from error
    with io.TextIOWrapper(
        io.BufferedReader(raw, 1 << 18),
        encoding=inspection.encoding,
        errors=error_handler(inspection.encoding),
    ) as stream:
        _require_unchanged(file, raw)
        chunks = _chunks(file.name, stream, raw, on_position)
        if file.kind == JSON_LINES:
            texts = ((text,) for text in json_texts(lines(chunks), on_bad_line))
        else:
            texts = iter((chunks,))
        for pieces in texts:
            for document in sections(pieces, section):
                if document and not document.isspace():
                    yield document
        _require_unchanged(file, raw)


def _chunks(name: str, stream: io.TextIOWrapper, raw: io.FileIO, on_position: Callable[[int], None]) -> Iterator[str]:
    while True:
        try:
            chunk = stream.read(CHUNK_CHARACTERS)
        except OSError as error:
            raise PreparationError(f"{name} could not be read: {error.strerror}.") from error
        if not chunk:
            return
        on_position(raw.tell())
        yield chunk


def _require_unchanged(file: SourceFile, raw: io.FileIO) -> None:
    if stamp_of(os.fstat(raw.fileno())) != file.stamp:
        raise _changed(file)


def _changed(file: SourceFile) -> PreparationError:
    return PreparationError(
        f"{file.name} changed while it was being read. Start again once nothing writes to the "
        "Training Data folder any more."
    )


def sections(pieces: Iterable[str], length: int) -> Iterator[str]:
    """Cuts a text that arrives in pieces; the sections joined are the text again."""
    buffer = ""
    for piece in pieces:
        buffer += piece
        start = 0
        while len(buffer) - start > length * 3 // 2:
            end = _boundary(buffer, start + length // 2, start + length)
            yield buffer[start:end]
            start = end
        buffer = buffer[start:]
    if buffer:
        yield buffer


def _boundary(text: str, low: int, high: int) -> int:
    for separator in ("\n\n", "\n", ". ", "\u3002", " "):
        found = text.rfind(separator, low, high)
        if found >= 0:
            return found + len(separator)
    return high


def lines(chunks: Iterable[str]) -> Iterator[str | None]:
    """Lines without their ends; None stands for one that is too long to hold."""
    parts: list[str] = []
    held = 0
    for chunk in chunks:
        *complete, rest = chunk.split("\n")
        for line in complete:
            parts.append(line)
            held += len(line)
            yield "".join(parts) if held <= LONGEST_JSON_LINE else None
            parts, held = [], 0
        held += len(rest)
        if held <= LONGEST_JSON_LINE:
            parts.append(rest)
        else:
            parts = []
    if held:
        yield "".join(parts) if held <= LONGEST_JSON_LINE else None


def json_texts(numbered: Iterable[str | None], on_bad_line: Callable[[int, str], None]) -> Iterator[str]:
    for number, line in enumerate(numbered, 1):
        if line is None:
            on_bad_line(number, f"it is longer than {LONGEST_JSON_LINE >> 20} MiB")
            continue
        if not line or line.isspace():
            continue
        try:
            record = json.loads(line)
        except (ValueError, RecursionError):
            on_bad_line(number, "it is not valid JSON")
            continue
        text = record.get("text") if isinstance(record, dict) else None
        if not isinstance(text, str):
            on_bad_line(number, 'it is not an object with a string "text"')
            continue
        yield _without_lone_surrogates(text).replace("\r\n", "\n")


def _without_lone_surrogates(text: str) -> str:
    try:
        text.encode("utf-8")
    except UnicodeEncodeError:
        return text.encode("utf-16-le", "surrogatepass").decode("utf-16-le", "replace")
    return text
