"""The process that prepares: it can be killed at any moment, and ends when its parent does.

Reads a request as one JSON line on standard input, whose end then means that the parent is
gone, and writes JSON lines to standard output: progress, warning, error, result.
"""

from __future__ import annotations

import dataclasses
import json
import os
import sys
import threading
import traceback

from .pipeline import Preparation, Request
from .records import PreparationError


def main() -> None:
    output = os.dup(1)
    os.dup2(2, 1)
    lock = threading.Lock()

    def send(**message: object) -> None:
        line = memoryview(json.dumps(message).encode() + b"\n")
        with lock:
            while line:
                line = line[os.write(output, line) :]

    request = Request(**json.loads(_read_line()))
    threading.Thread(target=_exit_with_parent, daemon=True).start()
    try:
        result = Preparation(
            request,
            emit=lambda fraction, detail: send(progress=[fraction, detail]),
            warn=lambda line: send(warning=line),
        ).run()
        send(result=dataclasses.asdict(result))
    except PreparationError as error:
        send(error=str(error))
    except MemoryError:
        send(error="There is not enough memory to prepare the training data.")
    except Exception as error:
        traceback.print_exc(file=sys.stderr)
        what = f"{type(error).__name__}: {error}"
        send(error=f"The preparation of the training data failed unexpectedly: {what}")


def _read_line() -> bytes:
    line = b""
    while not line.endswith(b"\n") and (piece := os.read(0, 1 << 16)):
        line += piece
    return line


def _exit_with_parent() -> None:
    while os.read(0, 1):
        pass
    os._exit(1)


if __name__ == "__main__":
    main()
    sys.stdout.flush()
