"""Everything between "start" and the first step: folders, checkpoint, corpus, model and batches."""

from __future__ import annotations

import uuid
from dataclasses import dataclass

import numpy as np

from src.data import (
    BatchSampler,
    PreparationCancelled,
    PreparationError,
    PreparedCorpus,
    PrepProgress,
    prepare_corpus,
)
from src.data.files import corpus_bytes
from src.folders import LibraryFolders
from src.models.llama import LlamaShape
from src.models.sizing import Plan, choose_plan, this_machine, vocabulary_size
from src.run.contract import RunFailed, RunRefused, Session
from src.settings import SETTINGS, SettingsError, TrainingSettings
from src.status import RunClock
from src.storage import FolderBusy, FolderLock, folder_written_aside, reason, remove_leftovers
from src.training.checkpoint_keeper import CheckpointKeeper
from src.training.checkpoints import Checkpoint, CheckpointError, CheckpointStore
from src.training.curve import LossCurve
from src.training.learner import Learner
from src.training.schedule import Schedule
from src.training.validation import probe_batch, validation_batches


def take_folders(folders: LibraryFolders, lock: FolderLock, checkpoints: CheckpointStore) -> None:
    """Makes the folders, takes the lock, and finds out now whether the finished model can be written then. Raises
    RunRefused."""
    root, library = folders.model_root, folders.finished_models
    try:
        root.mkdir(parents=True, exist_ok=True)
        lock.acquire()
    except FolderBusy as busy:
        raise RunRefused(f"The working folder {root} is in use by another training ({busy}).") from None
    except OSError as error:
        raise RunRefused(f"The working folder {root} cannot be used ({reason(error)}).") from error
    try:
        checkpoints.prepare()
        library.mkdir(parents=True, exist_ok=True)
        remove_leftovers(library)
        with folder_written_aside(library, "access"):
            pass
    except OSError as error:
        lock.release()
        place = error.filename or library
        raise RunRefused(f"The folder {place} cannot be written ({reason(error)}).") from error


@dataclass
class RunInProgress:
    """What a run is made of, and how far it has come."""

    run_id: str
    settings: TrainingSettings
    corpus: PreparedCorpus
    tokenizer: bytes
    plan: Plan
    learner: Learner
    schedule: Schedule
    sampler: BatchSampler
    validation: list[np.ndarray]
    probe: np.ndarray
    curve: LossCurve
    step: int = 0
    tokens_seen: int = 0
    skipped_steps: int = 0
    validation_loss: float | None = None


class RunPreparation:
    """Prepares one run; the caller holds the lock of the working directory."""

    def __init__(
        self,
        session: Session,
        folders: LibraryFolders,
        settings: TrainingSettings,
        checkpoints: CheckpointStore,
        keeper: CheckpointKeeper,
    ) -> None:
        self._session = session
        self._outbox = session.outbox
        self._board = session.board
        self._folders = folders
        self._settings = settings
        self._checkpoints = checkpoints
        self._keeper = keeper

    def prepare(self, resume: bool) -> RunInProgress:
        """Raises RunRefused, RunFailed, and PreparationCancelled when the session asks to stop."""
        checkpoint = self._load_checkpoint() if resume else None
        corpus = self._prepare_corpus(checkpoint)
        self._board.publish(state="starting", prep_progress=1.0, prep_detail="", prep_eta_s=0.0)
        return self._build(corpus, checkpoint)

    def _load_checkpoint(self) -> Checkpoint:
        try:
            checkpoint, complaints = self._checkpoints.latest()
        except CheckpointError as error:
            raise RunRefused(f"Cannot resume: {error} Press Start to train from the beginning.") from None
        for complaint in complaints:
            self._outbox.log(complaint, "WARNING")
        state = checkpoint.state
        kept = {setting.key: state.settings[setting.key] for setting in SETTINGS if setting.shapes_run}
        ignored = [key for key in kept if key in self._settings.chosen and self._settings[key] != kept[key]]
        if ignored:
            self._outbox.log(
                f"A resumed run keeps the settings it began with; ignored in training.json: {', '.join(ignored)}.",
                "WARNING",
            )
        self._settings = self._settings.with_values(kept)
        self._board.clock = RunClock(state.elapsed_s)
        self._board.publish(
            step=state.step, loss=checkpoint.curve.last_loss, elapsed_s=state.elapsed_s, val_loss=state.validation_loss
        )
        return checkpoint

    def _prepare_corpus(self, checkpoint: Checkpoint | None) -> PreparedCorpus:
        self._board.publish(state="preparing", prep_detail="Looking at your corpus…")
        vocabulary = vocabulary_size(self._settings, corpus_bytes(self._folders.training_data))
        self._settings = self._settings.with_values({"vocab_size": vocabulary})
        try:
            corpus = prepare_corpus(
                self._folders.training_data,
                self._folders.cache,
                vocab_size=vocabulary,
                validation_fraction=self._settings["validation_fraction"],
                seed=self._settings["seed"],
                report=self._report_preparation,
                warn=lambda message: self._outbox.log(message, "WARNING"),
                cancelled=self._preparation_cancelled,
            )
        except PreparationError as error:
            raise RunFailed(str(error)) from error
        except OSError as error:
            place = f" ({error.filename})" if error.filename else ""
            raise RunFailed(f"The training data could not be prepared: {reason(error)}{place}.") from error
        if self._session.stop_requested:
            raise PreparationCancelled
        if checkpoint is not None and checkpoint.state.corpus["fingerprint"] != corpus.fingerprint:
            raise RunRefused(
                "Cannot resume: the training data changed since the checkpoint was made, and its model knows only the "
                f"old tokens. Put the data in {self._folders.training_data} back as it was, or press Start to train "
                "from the beginning."
            )
        return corpus

    def _report_preparation(self, progress: PrepProgress) -> None:
        self._session.poll()
        if self._session.stop_requested:
            return
        self._board.publish(
            state="preparing",
            prep_progress=min(1.0, max(0.0, progress.fraction)),
            prep_detail=progress.detail,
            prep_elapsed_s=progress.elapsed_s,
            prep_eta_s=progress.eta_s,
        )

    def _preparation_cancelled(self) -> bool:
        self._session.poll()
        return self._session.stop_requested

    def _build(self, corpus: PreparedCorpus, checkpoint: Checkpoint | None) -> RunInProgress:
        plan = self._choose_plan(corpus, checkpoint)
        tokenizer = self._read_tokenizer(corpus)
        context = plan.shape.context
        if corpus.train.size < context + 1:
            raise RunFailed(
                f"The training data is too small: {corpus.train.size} tokens, and one window needs {context + 1}. Add "
                f"more text to {self._folders.training_data}."
            )
        validation = validation_batches(corpus.validation, context, plan.batch, self._settings["evaluation_batches"])
        run = RunInProgress(
            run_id=uuid.uuid4().hex,
            settings=self._settings,
            corpus=corpus,
            tokenizer=tokenizer,
            plan=plan,
            learner=Learner(plan, self._settings),
            schedule=Schedule(
                plan.learning_rate,
                self._settings["final_learning_rate_fraction"],
                self._session.max_steps,
                self._settings["warmup_steps"],
            ),
            sampler=BatchSampler(corpus.train, context, plan.batch * plan.accumulation, self._settings["seed"]),
            validation=validation,
            probe=probe_batch(validation, corpus.train, context),
            curve=LossCurve(),
        )
        if checkpoint is not None:
            self._restore(run, checkpoint)
        if not validation:
            self._outbox.log("The corpus is too small to set text aside for validation.", "WARNING")
        if reason := run.learner.compile():
            self._outbox.log(f"Training without fused operations, which is slower: {reason}", "WARNING")
        return run

    @staticmethod
    def _read_tokenizer(corpus: PreparedCorpus) -> bytes:
        """Held from the start, so that a working folder that goes away does not cost the archive."""
        path = corpus.tokenizer_path
        try:
            return path.read_bytes()
        except OSError as error:
            raise RunFailed(f"The tokenizer {path} cannot be read ({reason(error)}).") from error

    def _choose_plan(self, corpus: PreparedCorpus, checkpoint: Checkpoint | None) -> Plan:
        machine = this_machine()
        try:
            plan = choose_plan(self._settings, corpus.vocab_size, corpus.train.size, machine)
        except SettingsError as error:
            raise RunRefused(str(error)) from error
        if checkpoint is not None:
            state = checkpoint.state
            plan = Plan(LlamaShape(**state.shape), state.batch, state.accumulation, plan.learning_rate)
        shape = plan.shape
        self._outbox.log(
            f"Model: {shape.parameter_count():,} parameters, {shape.layers} blocks, width {shape.hidden_size}, "
            f"{shape.heads} heads, context {shape.context}, vocabulary {shape.vocab_size:,}; "
            f"{plan.tokens_per_step:,} tokens a step; chosen for {corpus.train.size:,} training tokens "
            f"and this machine ({machine.describe()})."
        )
        return plan

    def _restore(self, run: RunInProgress, checkpoint: Checkpoint) -> None:
        state = checkpoint.state
        run.run_id, run.curve = state.run_id, checkpoint.curve
        run.step, run.tokens_seen = state.step, state.tokens_seen
        run.skipped_steps, run.validation_loss = state.skipped_steps, state.validation_loss
        run.learner.restore(checkpoint.weights, checkpoint.optimizer, state.updates)
        schedule = run.schedule if self._rate_was_edited(checkpoint) else Schedule(**state.schedule)
        run.schedule = schedule.with_max_steps(self._session.max_steps, state.step)
        self._keeper.resume(state)
        self._outbox.log(f"Resuming from step {state.step:,} of {checkpoint.path}.")

    def _rate_was_edited(self, checkpoint: Checkpoint) -> bool:
        keys = ("learning_rate", "final_learning_rate_fraction", "warmup_steps")
        return any(self._settings[key] != checkpoint.state.settings[key] for key in keys)
