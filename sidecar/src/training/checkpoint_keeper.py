"""When a run's checkpoints are written, and what the user is told about it."""

from __future__ import annotations

import time

from src.storage import reason
from src.training.checkpoints import PREVIOUS_RUN, CheckpointStore, RunState
from src.training.curve import LossCurve
from src.training.learner import Learner
from src.wire.outbox import Outbox

LONGEST_INTERVAL_S = 300.0


class CheckpointKeeper:
    """`saved_step` is the step of the newest checkpoint of this run, -1 while there is none."""

    def __init__(self, store: CheckpointStore, outbox: Outbox) -> None:
        self.saved_step = -1
        self._store = store
        self._outbox = outbox
        self._tried_at = time.monotonic()
        self._told: str | None = None
        self._failures = 0

    def begin(self, state: RunState, curve: LossCurve, learner: Learner) -> bool:
        """A checkpoint before the first step, so that a run can be resumed however early it ends. The earlier run's
        stays the one to resume from until this one is there. Raises OSError if that cannot be put aside."""
        if not self.save(state, curve, learner):
            return False
        step = self._store.set_aside_earlier_runs(state.run_id)
        if step is not None:
            kept = self._store.folder / PREVIOUS_RUN
            self._outbox.log(f"The last checkpoint of the earlier run (step {step:,}) was kept as {kept}.")
        return True

    def resume(self, state: RunState) -> None:
        self._store.set_aside_earlier_runs(state.run_id)
        self.saved_step = state.step

    def is_due(self, step: int, interval: int) -> bool:
        return step % interval == 0 or time.monotonic() - self._tried_at > LONGEST_INTERVAL_S

    def save(self, state: RunState, curve: LossCurve, learner: Learner) -> bool:
        """False, with an error event, when it could not be written; the earlier checkpoints are then intact."""
        self._told = None
        return self.save_in_passing(state, curve, learner)

    def save_in_passing(self, state: RunState, curve: LossCurve, learner: Learner) -> bool:
        """As `save`, but a failure like the one before is not told again: a disk stays full for long."""
        self._tried_at = time.monotonic()
        try:
            self._store.save(state, curve, learner.weights, learner.optimizer_arrays())
        except OSError as error:
            self._failures += 1
            self._tell(state.step, reason(error))
            return False
        if self._failures:
            self._outbox.log(f"Checkpoints can be written again; the one of step {state.step:,} was saved.")
        self._failures, self._told = 0, None
        self.saved_step = state.step
        return True

    def _tell(self, step: int, why: str) -> None:
        if why == self._told:
            return
        self._told = why
        kept = f"; the one of step {self.saved_step:,} is intact" if self.saved_step >= 0 else ""
        self._outbox.error(
            f"The checkpoint of step {step:,} could not be written to {self._store.folder} ({why}){kept}."
        )
