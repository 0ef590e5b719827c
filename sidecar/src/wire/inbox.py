"""Commands on their way from the input thread to the main thread."""

from __future__ import annotations

import os
import queue
import threading
from dataclasses import dataclass

from src.wire.commands import Command, CommandError, parse_command

MAXIMUM_LINE_BYTES = 1 << 20
MAXIMUM_WAITING = 1024
READ_BYTES = 1 << 16


@dataclass(frozen=True)
class BadLine:
    """A line that was no command; `reason` is what the application is told."""

    reason: str


@dataclass(frozen=True)
class ApplicationGone:
    """Nobody is left to talk to: end of input, a broken output pipe, or a signal to end."""

    reason: str


Message = Command | BadLine | ApplicationGone


class Inbox:
    """A bounded queue: a flood of commands slows the writer down instead of filling the memory.

    `announce` may be called from a signal handler and never blocks; it passes everything that waits.
    """

    def __init__(self) -> None:
        self._messages: queue.SimpleQueue[tuple[Message, bool]] = queue.SimpleQueue()
        self._room = threading.BoundedSemaphore(MAXIMUM_WAITING)

    def put(self, message: Message) -> None:
        self._room.acquire()
        self._messages.put((message, True))

    def announce(self, message: ApplicationGone) -> None:
        self._messages.put((message, False))

    def get(self) -> Message:
        """Waits for the next message."""
        return self._taken(self._messages.get())

    def poll(self) -> Message | None:
        try:
            return self._taken(self._messages.get_nowait())
        except queue.Empty:
            return None

    def _taken(self, entry: tuple[Message, bool]) -> Message:
        message, bounded = entry
        if bounded:
            self._room.release()
        return message


class LineSplitter:
    """Cuts bytes into lines of a bounded length; a longer line becomes one BadLine and reading resumes after it."""

    def __init__(self, maximum: int = MAXIMUM_LINE_BYTES) -> None:
        self._maximum = maximum
        self._partial = bytearray()
        self._skipping = False

    def feed(self, data: bytes) -> list[bytes | BadLine]:
        lines: list[bytes | BadLine] = []
        start = 0
        while True:
            end = data.find(b"\n", start)
            piece = data[start:] if end < 0 else data[start:end]
            if not self._skipping:
                self._partial += piece
                if len(self._partial) > self._maximum:
                    lines.append(BadLine(f"A command line is longer than {self._maximum} bytes and was ignored."))
                    self._partial.clear()
                    self._skipping = True
            if end < 0:
                return lines
            if not self._skipping:
                lines.append(bytes(self._partial))
            self._partial.clear()
            self._skipping = False
            start = end + 1


class InputThread(threading.Thread):
    """Reads with os.read: an interpreter that exits while a thread sits in the buffered reader aborts."""

    def __init__(self, descriptor: int, inbox: Inbox) -> None:
        super().__init__(name="input", daemon=True)
        self._descriptor = descriptor
        self._inbox = inbox
        self._splitter = LineSplitter()

    def run(self) -> None:
        while True:
            try:
                data = os.read(self._descriptor, READ_BYTES)
            except OSError as error:
                self._inbox.announce(ApplicationGone(f"its input failed ({error.strerror})"))
                return
            if not data:
                self._inbox.put(ApplicationGone("its input ended"))
                return
            for line in self._splitter.feed(data):
                self._deliver(line)

    def _deliver(self, line: bytes | BadLine) -> None:
        if isinstance(line, BadLine):
            self._inbox.put(line)
            return
        if not line.strip():
            return
        try:
            self._inbox.put(parse_command(line))
        except CommandError as error:
            self._inbox.put(BadLine(str(error)))
