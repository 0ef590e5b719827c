"""The sidecar's states and what every command does in each of them."""

from __future__ import annotations

import sys
import traceback

from src.folders import LibraryFolders
from src.memory import OUT_OF_MEMORY, is_out_of_memory
from src.run import PretrainRun, RunFailed, RunRefused
from src.settings import DEFAULTS, SettingsError, load_settings
from src.status import LIVE_STATES, StatusBoard
from src.wire.commands import (
    Quit,
    SetMaxSteps,
    SetModelIdentity,
    SetPaths,
    SetTrainingProfile,
    Start,
    Stop,
    TogglePause,
    TrainingProfile,
)
from src.wire.inbox import ApplicationGone, BadLine, Inbox, Message
from src.wire.outbox import Outbox

TRAINED_PROFILE = TrainingProfile("text_language", "pretrain")


class TrainingSession:
    """Lives on the main thread. A run borrows that thread and calls `poll` between its steps, so that every
    command is handled here, at a moment when the run's state is consistent."""

    def __init__(self, outbox: Outbox, inbox: Inbox, folders: LibraryFolders) -> None:
        self.outbox = outbox
        self.board = StatusBoard(outbox)
        self.identity: dict[str, str] = {}
        self.profile = TRAINED_PROFILE
        self.max_steps = 0
        self.stop_requested = False
        self.paused = False
        self._inbox = inbox
        self._folders = folders
        self._default_max_steps = DEFAULTS["default_max_steps"]
        self._leaving = False
        self._pending_start: Start | None = None

    def serve(self) -> None:
        """Returns when the application asked to quit or is gone."""
        while not self._leaving:
            self.wait()
            if self._pending_start is not None:
                start, self._pending_start = self._pending_start, None
                self._run(start)

    def poll(self) -> None:
        while (message := self._inbox.poll()) is not None:
            self._handle(message)

    def wait(self) -> None:
        self._handle(self._inbox.get())

    @property
    def _state(self) -> str:
        return self.board.current.state

    @property
    def _live(self) -> bool:
        return self._state in LIVE_STATES

    def announce(self, blas: str) -> None:
        """The first events: readiness, the folders, and what is wrong with the settings, if anything is."""
        problem = None
        try:
            self._default_max_steps = load_settings(self._folders.model_root)["default_max_steps"]
        except SettingsError as error:
            problem = str(error)
        self.max_steps = self._default_max_steps
        self.outbox.send({"event": "ready", "default_max_steps": self._default_max_steps})
        self.outbox.send(self._folders.as_event())
        self.outbox.log(f"Matrix products: {blas}")
        if problem:
            self.outbox.error(problem)

    def _handle(self, message: Message) -> None:
        match message:
            case BadLine(reason):
                self.outbox.error(reason)
            case ApplicationGone() | Quit():
                self._leaving = True
                self._request_stop()
            case SetPaths():
                self._set_paths(message)
            case SetModelIdentity(identity):
                self.identity = identity
                self.outbox.send({"event": "model_identity", "identity": identity})
            case SetTrainingProfile(profile):
                self.profile = profile
            case SetMaxSteps(steps):
                self._set_max_steps(steps)
            case Start():
                self._accept_start(message)
            case TogglePause():
                self._toggle_pause()
            case Stop():
                if self._live:
                    self._request_stop()
                else:
                    self.outbox.log("Nothing is being trained, so there is nothing to stop.")

    def _request_stop(self) -> None:
        if self._live and not self.stop_requested:
            self.stop_requested = True
            self.board.publish(state="stopping", tokens_per_sec=0.0)

    def _set_paths(self, message: SetPaths) -> None:
        folders = LibraryFolders(message.training_data, message.finished_models, message.model_root)
        if folders == self._folders:
            return
        self._folders = folders
        self.outbox.send(self._folders.as_event())
        if self._live:
            self.outbox.log("The new folders take effect with the next run; this one keeps its own.")

    def _set_max_steps(self, steps: int) -> None:
        self.max_steps = steps
        if self._live:
            self.board.publish(max_steps=steps)

    def _toggle_pause(self) -> None:
        if self._state not in ("running", "paused"):
            self.outbox.error(f"Only a running training can be paused; the state is “{self._state}”.")
            return
        self.paused = not self.paused

    def _accept_start(self, start: Start) -> None:
        if self._live or self._pending_start is not None:
            self.outbox.error("A run is already under way; stop it before you start another.")
            return
        profile = TrainingProfile(
            start.model_family or self.profile.model_family,
            start.training_capability or self.profile.training_capability,
        )
        if profile != TRAINED_PROFILE:
            self._refuse(
                "These scripts train text language models by pretraining from scratch (text_language, pretrain); "
                f"{profile.model_family} with {profile.training_capability} needs other training scripts. Choose “Text "
                "Language Model” and “Pretrain from scratch”, or point ZOREL_SCRIPTS_ROOT at scripts of your own."
            )
            return
        self._pending_start = start

    def _refuse(self, reason: str) -> None:
        self.outbox.error(reason)
        max_steps = self.board.current.max_steps or self.max_steps
        self.board.publish(state="idle", max_steps=max_steps, error=reason)

    def _run(self, start: Start) -> None:
        self.profile = TRAINED_PROFILE
        self.identity = start.identity if start.identity is not None else self.identity
        self.max_steps = start.max_steps or self.max_steps or self._default_max_steps
        self.stop_requested = self.paused = False
        self.board.reset(state="starting", max_steps=self.max_steps)
        try:
            settings = load_settings(self._folders.model_root)
            archived = PretrainRun(self, self._folders, settings, start.resume).execute()
        except (RunRefused, SettingsError) as refusal:
            self._refuse(str(refusal))
        except RunFailed as failure:
            self._fail(str(failure))
        except Exception as error:
            if is_out_of_memory(error):
                self._fail(OUT_OF_MEMORY)
                return
            traceback.print_exc(file=sys.stderr)
            self._fail(f"The training failed unexpectedly: {type(error).__name__}: {error}")
        else:
            self._end(archived)

    def _end(self, archived: bool) -> None:
        self.board.publish(state="done" if archived else "idle", tokens_per_sec=0.0)
        if archived:
            self.outbox.send({"event": "done"})

    def _fail(self, reason: str) -> None:
        self.outbox.error(reason)
        self.board.publish(state="error", error=reason, tokens_per_sec=0.0)
