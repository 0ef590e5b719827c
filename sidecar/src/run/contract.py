"""What a run asks of the session that started it, and how it ends when it is neither archived nor stopped."""

from __future__ import annotations

from typing import Protocol

from src.status import StatusBoard
from src.wire.commands import TrainingProfile
from src.wire.outbox import Outbox


class RunRefused(Exception):
    """The run cannot begin; nothing was changed. The text is for the user."""


class RunFailed(Exception):
    """The run began and cannot go on. The text is for the user."""


class Session(Protocol):
    """`poll` and `wait` may change the other values."""

    outbox: Outbox
    board: StatusBoard
    identity: dict[str, str]
    profile: TrainingProfile
    max_steps: int
    stop_requested: bool
    paused: bool

    def poll(self) -> None:
        """Handles the commands that wait."""

    def wait(self) -> None:
        """Handles the next command as soon as it comes."""
