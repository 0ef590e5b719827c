"""One training run, from "start" to the archive."""

from __future__ import annotations

import math
import time
import uuid
from datetime import datetime
from typing import Protocol

from src.archive.run_archive import FinishedRun, archive_run
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
from src.settings import SETTINGS, SettingsError, TrainingSettings
from src.status import RunClock, SpeedMeter, StatusBoard
from src.storage import FolderBusy, FolderLock, folder_written_aside, reason, remove_leftovers
from src.training.checkpoint_keeper import CheckpointKeeper
from src.training.checkpoints import Checkpoint, CheckpointError, CheckpointStore, RunState
from src.training.curve import LossCurve
from src.training.learner import Learner, StepResult
from src.training.neurons import snapshot
from src.training.schedule import Schedule
from src.training.validation import probe_batch, validation_batches
from src.wire.commands import TrainingProfile
from src.wire.outbox import Outbox

MOST_SKIPPED_IN_A_ROW = 5


class RunRefused(Exception):
    """The run cannot begin; nothing was changed. The text is for the user."""


class RunFailed(Exception):
    """The run began and cannot go on. The text is for the user."""


class Session(Protocol):
    """What a run asks of the session that started it; `poll` and `wait` may change the other values."""

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


class PretrainRun:
    """Trains a text model. `execute` returns when the run is archived or stopped; the lock of the working
    directory is held in between."""

    def __init__(self, session: Session, folders: LibraryFolders, settings: TrainingSettings, resume: bool) -> None:
        self._session = session
        self._outbox = session.outbox
        self._board = session.board
        self._folders = folders
        self._settings = settings
        self._resume = resume
        self._profile = session.profile
        self._lock = FolderLock(folders.model_root)
        self._checkpoints = CheckpointStore(folders.checkpoints)
        self._keeper = CheckpointKeeper(self._checkpoints, session.outbox)
        self._clock = self._board.clock = RunClock()
        self._step = 0
        self._tokens_seen = 0
        self._skipped = 0
        self._skipped_in_a_row = 0
        self._validation_loss: float | None = None
        self._speed = SpeedMeter()

    def execute(self) -> bool:
        """True when the run was archived, False when it was stopped."""
        self._take_folders()
        try:
            checkpoint = self._load_checkpoint() if self._resume else None
            self._corpus = self._prepare(checkpoint)
            self._board.publish(state="starting", prep_progress=1.0, prep_detail="", prep_eta_s=0.0)
            self._build(checkpoint)
            self._train()
            if self._session.stop_requested:
                self._leave()
                return False
            self._finish()
            return True
        except PreparationCancelled:
            self._outbox.log("Stopped while preparing the data; nothing was trained.")
            return False
        finally:
            self._clock.halt()
            self._lock.release()

    def _take_folders(self) -> None:
        root, library = self._folders.model_root, self._folders.finished_models
        try:
            root.mkdir(parents=True, exist_ok=True)
            self._lock.acquire()
        except FolderBusy as busy:
            raise RunRefused(f"The working folder {root} is in use by another training ({busy}).") from None
        except OSError as error:
            raise RunRefused(f"The working folder {root} cannot be used ({reason(error)}).") from error
        try:
            self._checkpoints.prepare()
            library.mkdir(parents=True, exist_ok=True)
            remove_leftovers(library)
            with folder_written_aside(library, "access"):
                pass
        except OSError as error:
            self._lock.release()
            place = error.filename or library
            raise RunRefused(f"The folder {place} cannot be written ({reason(error)}).") from error

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
        self._step, self._tokens_seen = state.step, state.tokens_seen
        self._skipped, self._validation_loss = state.skipped_steps, state.validation_loss
        self._clock = self._board.clock = RunClock(state.elapsed_s)
        self._board.publish(
            step=state.step, loss=checkpoint.curve.last_loss, elapsed_s=state.elapsed_s, val_loss=state.validation_loss
        )
        return checkpoint

    def _prepare(self, checkpoint: Checkpoint | None) -> PreparedCorpus:
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

    def _build(self, checkpoint: Checkpoint | None) -> None:
        self._plan = self._choose_plan(checkpoint)
        self._tokenizer = self._read_tokenizer()
        shape = self._plan.shape
        if self._corpus.train.size < shape.context + 1:
            raise RunFailed(
                f"The training data is too small: {self._corpus.train.size} tokens, and one window needs "
                f"{shape.context + 1}. Add more text to {self._folders.training_data}."
            )
        self._learner = Learner(self._plan, self._settings)
        self._curve = LossCurve()
        self._run_id = uuid.uuid4().hex
        self._schedule = Schedule(
            self._plan.learning_rate,
            self._settings["final_learning_rate_fraction"],
            self._session.max_steps,
            self._settings["warmup_steps"],
        )
        if checkpoint is not None:
            self._restore(checkpoint)
        rows = self._plan.batch * self._plan.accumulation
        self._sampler = BatchSampler(self._corpus.train, shape.context, rows, self._settings["seed"])
        self._validation = validation_batches(
            self._corpus.validation, shape.context, self._plan.batch, self._settings["evaluation_batches"]
        )
        if not self._validation:
            self._outbox.log("The corpus is too small to set text aside for validation.", "WARNING")
        self._probe = probe_batch(self._validation, self._corpus.train, shape.context)
        if reason := self._learner.compile():
            self._outbox.log(f"Training without fused operations, which is slower: {reason}", "WARNING")
        if checkpoint is None:
            self._begin_checkpoints()

    def _read_tokenizer(self) -> bytes:
        """Held from the start, so that a working folder that goes away does not cost the archive."""
        path = self._corpus.tokenizer_path
        try:
            return path.read_bytes()
        except OSError as error:
            raise RunFailed(f"The tokenizer {path} cannot be read ({reason(error)}).") from error

    def _choose_plan(self, checkpoint: Checkpoint | None) -> Plan:
        machine = this_machine()
        try:
            plan = choose_plan(self._settings, self._corpus.vocab_size, self._corpus.train.size, machine)
        except SettingsError as error:
            raise RunRefused(str(error)) from error
        if checkpoint is not None:
            state = checkpoint.state
            plan = Plan(LlamaShape(**state.shape), state.batch, state.accumulation, plan.learning_rate)
        shape = plan.shape
        self._outbox.log(
            f"Model: {shape.parameter_count():,} parameters, {shape.layers} blocks, width {shape.hidden_size}, "
            f"{shape.heads} heads, context {shape.context}, vocabulary {shape.vocab_size:,}; "
            f"{plan.tokens_per_step:,} tokens a step; chosen for {self._corpus.train.size:,} training tokens "
            f"and this machine ({machine.describe()})."
        )
        return plan

    def _restore(self, checkpoint: Checkpoint) -> None:
        state = checkpoint.state
        self._run_id, self._curve = state.run_id, checkpoint.curve
        self._learner.restore(checkpoint.weights, checkpoint.optimizer, state.updates)
        wanted = self._schedule
        stored = Schedule(**state.schedule)
        if not self._rate_was_edited(checkpoint):
            wanted = stored
        self._schedule = wanted.with_max_steps(self._session.max_steps, self._step)
        self._keeper.resume(state)
        self._outbox.log(f"Resuming from step {self._step:,} of {checkpoint.path}.")

    def _rate_was_edited(self, checkpoint: Checkpoint) -> bool:
        keys = ("learning_rate", "final_learning_rate_fraction", "warmup_steps")
        return any(self._settings[key] != checkpoint.state.settings[key] for key in keys)

    def _begin_checkpoints(self) -> None:
        try:
            begun = self._keeper.begin(self._state(), self._curve, self._learner)
        except OSError as error:
            raise RunFailed(f"{self._folders.checkpoints} cannot be written ({reason(error)}).") from error
        if not begun:
            raise RunFailed("The first checkpoint could not be written, so the run was not begun.")

    def _train(self) -> None:
        if self._step >= self._session.max_steps:
            return
        self._outbox.log(f"Training to step {self._session.max_steps:,}…")
        self._send_snapshot(final=False)
        self._clock.go()
        self._board.publish(state="running", max_steps=self._session.max_steps, elapsed_s=self._clock.elapsed_s)
        while True:
            self._session.poll()
            if self._session.stop_requested:
                return
            if self._session.paused:
                self._sit_out_pause()
                continue
            if self._step >= self._session.max_steps:
                return
            self._schedule = self._schedule.with_max_steps(self._session.max_steps, self._step)
            self._take_step()
            self._do_periodic_work()

    def _sit_out_pause(self) -> None:
        self._clock.halt()
        self._speed.clear()
        self._board.publish(state="paused", elapsed_s=self._clock.elapsed_s, tokens_per_sec=0.0)
        while self._session.paused and not self._session.stop_requested and self._step < self._session.max_steps:
            self._session.wait()
        self._session.paused = False
        if not self._session.stop_requested:
            self._clock.go()
            self._board.publish(state="running")

    def _take_step(self) -> None:
        began = time.perf_counter()
        rate = self._schedule.rate(self._step)
        result = self._learner.step(self._sampler.batch_at(self._step), rate)
        self._step += 1
        self._tokens_seen += self._plan.tokens_per_step
        if not result.finite:
            self._count_skipped(result)
            return
        self._skipped_in_a_row = 0
        self._curve.append(self._step, result.loss)
        self._board.publish(
            state="running",
            step=self._step,
            max_steps=self._session.max_steps,
            loss=result.loss,
            lr=rate,
            grad_norm=result.gradient_norm,
            tokens_per_sec=self._speed.after_step(time.perf_counter() - began, self._plan.tokens_per_step),
            elapsed_s=self._clock.elapsed_s,
            val_loss=self._validation_loss,
        )

    def _count_skipped(self, result: StepResult) -> None:
        self._skipped += 1
        self._skipped_in_a_row += 1
        what = "loss" if result.loss - result.loss != 0 else "gradient"
        self._outbox.log(f"Step {self._step:,}: the {what} was not finite; the step was skipped.", "WARNING")
        if self._skipped_in_a_row >= MOST_SKIPPED_IN_A_ROW:
            raise RunFailed(
                f"{MOST_SKIPPED_IN_A_ROW} steps in a row had no finite loss or gradient. The last good checkpoint, of "
                f"step {self._keeper.saved_step:,}, was kept; lower “learning_rate” in training.json and resume."
            )

    def _do_periodic_work(self) -> None:
        at_end = self._step >= self._session.max_steps
        if self._step % self._settings["evaluation_interval"] == 0 and not at_end:
            self._evaluate()
        if self._step % self._settings["snapshot_interval"] == 0:
            self._send_snapshot(final=False)
        if self._keeper.is_due(self._step, self._settings["checkpoint_interval"]) and not at_end:
            self._keeper.save_in_passing(self._state(), self._curve, self._learner)

    def _evaluate(self) -> None:
        self._measure_validation_loss()
        if self._validation_loss is None:
            return
        self._outbox.log(
            f"Step {self._step:,}: loss {self._curve.last_loss:.4f}, validation loss {self._validation_loss:.4f}"
        )
        self._board.publish(val_loss=self._validation_loss, elapsed_s=self._clock.elapsed_s)

    def _measure_validation_loss(self) -> None:
        """None without validation data, and where the loss is not finite: neither wire nor file has a word for it."""
        loss = self._learner.validation_loss(self._validation) if self._validation else None
        if loss is not None and not math.isfinite(loss):
            self._outbox.log(f"Step {self._step:,}: the validation loss was not finite.", "WARNING")
            loss = None
        self._validation_loss = loss

    def _send_snapshot(self, final: bool) -> dict:
        activations = self._learner.activations(self._probe)
        taken = snapshot(self._step, final, activations, self._settings["neurons_per_layer"])
        self._outbox.send({"event": "neurons"} | taken)
        return taken

    def _save_checkpoint(self) -> bool:
        if self._keeper.saved_step == self._step:
            return True
        return self._keeper.save(self._state(), self._curve, self._learner)

    def _state(self) -> RunState:
        corpus = self._corpus
        return RunState(
            run_id=self._run_id,
            step=self._step,
            max_steps=self._session.max_steps,
            updates=self._learner.updates,
            elapsed_s=self._clock.elapsed_s,
            tokens_seen=self._tokens_seen,
            skipped_steps=self._skipped,
            validation_loss=self._validation_loss,
            shape=self._plan.shape.as_dict(),
            batch=self._plan.batch,
            accumulation=self._plan.accumulation,
            settings=self._settings.values,
            schedule=vars(self._schedule),
            corpus={"fingerprint": corpus.fingerprint, "corpora": list(corpus.corpora)},
        )

    def _leave(self) -> None:
        self._clock.halt()
        self._board.publish(state="stopping", elapsed_s=self._clock.elapsed_s, tokens_per_sec=0.0)
        if self._save_checkpoint():
            self._outbox.log(
                f"Stopped at step {self._step:,}; a checkpoint was saved. Choose “Resume from latest checkpoint” "
                "to go on from there."
            )

    def _finish(self) -> None:
        self._measure_validation_loss()
        final = self._send_snapshot(final=True)
        self._clock.halt()
        self._board.publish(elapsed_s=self._clock.elapsed_s, val_loss=self._validation_loss, tokens_per_sec=0.0)
        self._save_checkpoint()
        self._report_result()
        self._archive(final)

    def _report_result(self) -> None:
        unigram = self._corpus.unigram_nats
        if self._validation_loss is None:
            self._outbox.log(f"Finished at step {self._step:,} with a training loss of {self._curve.last_loss:.4f}.")
            return
        verdict = "below" if self._validation_loss < unigram else "not yet below"
        self._outbox.log(
            f"Finished at step {self._step:,}: validation loss {self._validation_loss:.4f}, {verdict} the "
            f"{unigram:.4f} of a model without context (unigram) on the same tokens."
        )

    def _archive(self, final_snapshot: dict) -> None:
        run = FinishedRun(
            identity=dict(self._session.identity),
            profile=self._profile,
            shape=self._plan.shape,
            weights=self._learner.weights,
            corpus=self._corpus,
            tokenizer=self._tokenizer,
            curve=self._curve,
            snapshot=final_snapshot,
            step=self._step,
            max_steps=self._session.max_steps,
            validation_loss=self._validation_loss,
            elapsed_s=self._clock.elapsed_s,
            tokens_seen=self._tokens_seen,
            skipped_steps=self._skipped,
            tokens_per_step=self._plan.tokens_per_step,
            settings=self._settings.values,
        )
        try:
            folder = archive_run(run, self._folders.finished_models, datetime.now().astimezone())
        except OSError as error:
            again = "to archive it" if self._keeper.saved_step == self._step else "to go on from there"
            raise RunFailed(
                f"The finished model could not be archived in {self._folders.finished_models} ({reason(error)}). The "
                f"latest checkpoint is of step {self._keeper.saved_step:,}. Make room or choose another folder, then "
                f"choose “Resume from latest checkpoint” {again}."
            ) from error
        self._outbox.send(
            {
                "event": "model_archived",
                "path": str(folder),
                "folder_name": folder.name,
                "step": self._step,
                "loss": self._curve.last_loss,
                "elapsed": self._clock.elapsed_s,
            }
        )
