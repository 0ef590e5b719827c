"""A sidecar that is led from state to state."""


def status(state, **values):
    event = {"event": "status", "state": state, "step": 0, "max_steps": 300, "loss": 0, "lr": 0, "grad_norm": 0}
    return {"emit": {**event, "tokens_per_sec": 0, "elapsed_s": 0, **values}}


RUNNING = {"step": 120, "loss": 2.5, "lr": 0.0003, "grad_norm": 0.71, "tokens_per_sec": 5321.4, "elapsed_s": 4330.9}


class Stages:
    """A sidecar that goes on to its next state when it is told to."""

    def __init__(self, program):
        self.program = program
        self.number = 0

    def play(self, *stages):
        steps = []
        for number, stage in enumerate(stages):
            if number:
                steps.append({"wait_for_file": str(self._file(number))})
            steps += stage
        self.program.scenario = steps
        return self

    def _file(self, number):
        return self.program.home / f"stage{number}"

    def next(self):
        self.number += 1
        self._file(self.number).touch()


READY = [{"emit": {"event": "ready", "default_max_steps": 300}}, {"await": "set_training_profile"}]
