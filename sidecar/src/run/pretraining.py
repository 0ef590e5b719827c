"""The training loop of a text model, its checkpoints and its archive."""

from __future__ import annotations

import math
import time
from datetime import datetime

from src.archive.run_archive import FinishedRun, archive_run
from src.data import PreparationCancelled
from src.folders import LibraryFolders
from src.run.contract import RunFailed, Session
from src.run.preparation import RunInProgress, RunPreparation, take_folders
from src.settings import TrainingSettings
from src.status import RunClock, SpeedMeter
from src.storage import FolderLock, reason
from src.training.checkpoint_keeper import CheckpointKeeper
from src.training.checkpoints import CheckpointStore, RunState
from src.training.learner import StepResult
from src.training.neurons import snapshot

MOST_SKIPPED_IN_A_ROW = 5


class PretrainRun:
    """Trains a text model. `execute` returns when the run is archived or stopped; the lock of the working
    directory is held in between."""

    _run: RunInProgress

    def __init__(self, session: Session, folders: LibraryFolders, settings: TrainingSettings, resume: bool) -> None:
        self._session = session
        self._outbox = session.outbox
        self._board = session.board
        self._board.clock = RunClock()
        self._folders = folders
        self._resume = resume
        self._profile = session.profile
        self._lock = FolderLock(folders.model_root)
        self._checkpoints = CheckpointStore(folders.checkpoints)
        self._keeper = CheckpointKeeper(self._checkpoints, session.outbox)
        self._preparation = RunPreparation(session, folders, settings, self._checkpoints, self._keeper)
        self._skipped_in_a_row = 0
        self._speed = SpeedMeter()

    def execute(self) -> bool:
        """True when the run was archived, False when it was stopped."""
        take_folders(self._folders, self._lock, self._checkpoints)
        try:
            self._run = self._preparation.prepare(self._resume)
            if not self._resume:
                self._begin_checkpoints()
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
            self._board.clock.halt()
            self._lock.release()

    def _begin_checkpoints(self) -> None:
        try:
            begun = self._keeper.begin(self._state(), self._run.curve, self._run.learner)
        except OSError as error:
            raise RunFailed(f"{self._folders.checkpoints} cannot be written ({reason(error)}).") from error
        if not begun:
            raise RunFailed("The first checkpoint could not be written, so the run was not begun.")

    def _train(self) -> None:
        if self._run.step >= self._session.max_steps:
            return
        self._outbox.log(f"Training to step {self._session.max_steps:,}…")
        self._send_snapshot(final=False)
        self._board.clock.go()
        self._board.publish(state="running", max_steps=self._session.max_steps, elapsed_s=self._board.clock.elapsed_s)
        while True:
            self._session.poll()
            if self._session.stop_requested:
                return
            if self._session.paused:
                self._sit_out_pause()
                continue
            if self._run.step >= self._session.max_steps:
                return
            self._run.schedule = self._run.schedule.with_max_steps(self._session.max_steps, self._run.step)
            self._take_step()
            self._do_periodic_work()

    def _sit_out_pause(self) -> None:
        self._board.clock.halt()
        self._speed.clear()
        self._board.publish(state="paused", elapsed_s=self._board.clock.elapsed_s, tokens_per_sec=0.0)
        session = self._session
        while session.paused and not session.stop_requested and self._run.step < session.max_steps:
            session.wait()
        self._session.paused = False
        if not self._session.stop_requested:
            self._board.clock.go()
            self._board.publish(state="running")

    def _take_step(self) -> None:
        run = self._run
        began = time.perf_counter()
        rate = run.schedule.rate(run.step)
        result = run.learner.step(run.sampler.batch_at(run.step), rate)
        run.step += 1
        run.tokens_seen += run.plan.tokens_per_step
        if not result.finite:
            self._count_skipped(result)
            return
        self._skipped_in_a_row = 0
        run.curve.append(run.step, result.loss)
        self._board.publish(
            state="running",
            step=run.step,
            max_steps=self._session.max_steps,
            loss=result.loss,
            lr=rate,
            grad_norm=result.gradient_norm,
            tokens_per_sec=self._speed.after_step(time.perf_counter() - began, run.plan.tokens_per_step),
            elapsed_s=self._board.clock.elapsed_s,
            val_loss=run.validation_loss,
        )

    def _count_skipped(self, result: StepResult) -> None:
        self._run.skipped_steps += 1
        self._skipped_in_a_row += 1
        what = "loss" if result.loss - result.loss != 0 else "gradient"
        self._outbox.log(f"Step {self._run.step:,}: the {what} was not finite; the step was skipped.", "WARNING")
        if self._skipped_in_a_row >= MOST_SKIPPED_IN_A_ROW:
            raise RunFailed(
                f"{MOST_SKIPPED_IN_A_ROW} steps in a row had no finite loss or gradient. The last good checkpoint, of "
                f"step {self._keeper.saved_step:,}, was kept; lower “learning_rate” in training.json and resume."
            )

    def _do_periodic_work(self) -> None:
        run = self._run
        at_end = run.step >= self._session.max_steps
        if run.step % run.settings["evaluation_interval"] == 0 and not at_end:
            self._evaluate()
        if run.step % run.settings["snapshot_interval"] == 0:
            self._send_snapshot(final=False)
        if self._keeper.is_due(run.step, run.settings["checkpoint_interval"]) and not at_end:
            self._keeper.save_in_passing(self._state(), run.curve, run.learner)

    def _evaluate(self) -> None:
        self._measure_validation_loss()
        run = self._run
        if run.validation_loss is None:
            return
        self._outbox.log(
            f"Step {run.step:,}: loss {run.curve.last_loss:.4f}, validation loss {run.validation_loss:.4f}"
        )
        self._board.publish(val_loss=run.validation_loss, elapsed_s=self._board.clock.elapsed_s)

    def _measure_validation_loss(self) -> None:
        """None without validation data, and where the loss is not finite: neither wire nor file has a word for it."""
        loss = self._run.learner.validation_loss(self._run.validation) if self._run.validation else None
        if loss is not None and not math.isfinite(loss):
            self._outbox.log(f"Step {self._run.step:,}: the validation loss was not finite.", "WARNING")
            loss = None
        self._run.validation_loss = loss

    def _send_snapshot(self, final: bool) -> dict:
        activations = self._run.learner.activations(self._run.probe)
        taken = snapshot(self._run.step, final, activations, self._run.settings["neurons_per_layer"])
        self._outbox.send({"event": "neurons"} | taken)
        return taken

    def _save_checkpoint(self) -> bool:
        if self._keeper.saved_step == self._run.step:
            return True
        return self._keeper.save(self._state(), self._run.curve, self._run.learner)

    def _state(self) -> RunState:
        run = self._run
        return RunState(
            run_id=run.run_id,
            step=run.step,
            max_steps=self._session.max_steps,
            updates=run.learner.updates,
            elapsed_s=self._board.clock.elapsed_s,
            tokens_seen=run.tokens_seen,
            skipped_steps=run.skipped_steps,
            validation_loss=run.validation_loss,
            shape=run.plan.shape.as_dict(),
            batch=run.plan.batch,
            accumulation=run.plan.accumulation,
            settings=run.settings.values,
            schedule=vars(run.schedule),
            corpus={"fingerprint": run.corpus.fingerprint, "corpora": list(run.corpus.corpora)},
        )

    def _leave(self) -> None:
        self._board.clock.halt()
        self._board.publish(state="stopping", elapsed_s=self._board.clock.elapsed_s, tokens_per_sec=0.0)
        if self._save_checkpoint():
            self._outbox.log(
                f"Stopped at step {self._run.step:,}; a checkpoint was saved. Choose “Resume from latest checkpoint” "
                "to go on from there."
            )

    def _finish(self) -> None:
        self._measure_validation_loss()
        final = self._send_snapshot(final=True)
        self._board.clock.halt()
        self._board.publish(
            elapsed_s=self._board.clock.elapsed_s, val_loss=self._run.validation_loss, tokens_per_sec=0.0
        )
        self._save_checkpoint()
        self._report_result()
        self._archive(final)

    def _report_result(self) -> None:
        run = self._run
        unigram = run.corpus.unigram_nats
        if run.validation_loss is None:
            self._outbox.log(f"Finished at step {run.step:,} with a training loss of {run.curve.last_loss:.4f}.")
            return
        verdict = "below" if run.validation_loss < unigram else "not yet below"
        self._outbox.log(
            f"Finished at step {run.step:,}: validation loss {run.validation_loss:.4f}, {verdict} the {unigram:.4f} of "
            "a model without context (unigram) on the same tokens."
        )

    def _archive(self, final_snapshot: dict) -> None:
        run = self._run
        finished = FinishedRun(
            identity=dict(self._session.identity),
            profile=self._profile,
            shape=run.plan.shape,
            weights=run.learner.weights,
            corpus=run.corpus,
            tokenizer=run.tokenizer,
            curve=run.curve,
            snapshot=final_snapshot,
            step=run.step,
            max_steps=self._session.max_steps,
            validation_loss=run.validation_loss,
            elapsed_s=self._board.clock.elapsed_s,
            tokens_seen=run.tokens_seen,
            skipped_steps=run.skipped_steps,
            tokens_per_step=run.plan.tokens_per_step,
            settings=run.settings.values,
        )
        try:
            folder = archive_run(finished, self._folders.finished_models, datetime.now().astimezone())
        except OSError as error:
            again = "to archive it" if self._keeper.saved_step == run.step else "to go on from there"
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
                "step": run.step,
                "loss": run.curve.last_loss,
                "elapsed": self._board.clock.elapsed_s,
            }
        )
