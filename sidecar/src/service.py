"""Connects the session with descriptors, signals and environment."""

from __future__ import annotations

import os
import signal
import sys

from src.folders import folders_from_environment
from src.session import TrainingSession
from src.wire.inbox import ApplicationGone, Inbox, InputThread
from src.wire.outbox import Outbox

LONGEST_FAREWELL_S = 5.0


def serve(output: int, blas: str) -> int:
    """Runs until the application quits or is gone; returns the exit status."""
    inbox = Inbox()
    outbox = Outbox(output, lambda reason: inbox.announce(ApplicationGone(reason)))
    _listen_to_signals(inbox)
    InputThread(0, inbox).start()
    session = TrainingSession(outbox, inbox, folders_from_environment(os.environ))
    session.announce(blas)
    session.serve()
    outbox.close(LONGEST_FAREWELL_S)
    return 0


def _listen_to_signals(inbox: Inbox) -> None:
    """SIGINT from a terminal reaches the whole group; the application then decides what to do with us."""

    def leave(number: int, frame: object) -> None:
        inbox.announce(ApplicationGone(f"signal {number}"))

    signal.signal(signal.SIGTERM, leave)
    signal.signal(signal.SIGINT, leave if sys.stdin is not None and sys.stdin.isatty() else signal.SIG_IGN)
