"""Runs the contestants in turns and prints a table; started by `run` beside this file."""

from __future__ import annotations

import argparse
import json
import os
import statistics
import subprocess
import sys
import tempfile
from pathlib import Path

from sizes import SIZES, Size

HERE = Path(__file__).resolve().parent
STEPS_PER_TURN = 3
WARM_UP_STEPS = 3
# Both take the same steps from the same weights on the same tokens, in float32.
GREATEST_LOSS_DIFFERENCE = 1e-3
# One runnable thread more than ours already shares the cores that both contestants want for themselves.
BUSY_LOAD = 0.7
KINDS = ("ours", "ours-compiled", "pytorch", "pytorch-compiled")
REFERENCES = ("pytorch", "pytorch-compiled")


class Contestant:
    def __init__(self, interpreter: str, kind: str, size_name: str, weights: Path) -> None:
        self.kind = kind
        self.seconds: list[float] = []
        self.processor: list[float] = []
        self._process = subprocess.Popen(
            [interpreter, HERE / "worker.py", kind, size_name, weights],
            stdin=subprocess.PIPE,
            stdout=subprocess.PIPE,
            text=True,
        )
        self.description = self._read()["description"]
        self.first_loss = self.take(WARM_UP_STEPS)
        self.seconds.clear()
        self.processor.clear()

    def take(self, steps: int) -> float:
        self._process.stdin.write(f"{steps}\n")
        self._process.stdin.flush()
        answer = self._read()
        self.seconds += answer["seconds"]
        self.processor += answer["processor"]
        return answer["loss"]

    def close(self) -> None:
        self._process.stdin.close()
        self._process.wait()

    def _read(self) -> dict:
        line = self._process.stdout.readline()
        if not line:
            raise SystemExit(f"{self.kind} ended early")
        return json.loads(line)


def compare(size_name: str, rounds: int, pytorch: str) -> None:
    size = SIZES[size_name]
    with tempfile.TemporaryDirectory() as folder:
        weights = Path(folder) / "weights.npz"
        contestants = [
            Contestant(sys.executable if kind.startswith("ours") else pytorch, kind, size_name, weights)
            for kind in KINDS
        ]
        try:
            for _ in range(rounds):
                for contestant in contestants:
                    contestant.take(STEPS_PER_TURN)
        finally:
            for contestant in contestants:
                contestant.close()
    losses = [contestant.first_loss for contestant in contestants]
    if max(losses) - min(losses) > GREATEST_LOSS_DIFFERENCE:
        raise SystemExit(f"{size_name}: the contestants do not compute the same: losses {losses}")
    print_table(size_name, size, contestants, losses[0])


def print_table(size_name: str, size: Size, contestants: list[Contestant], loss: float) -> None:
    speeds = {contestant.kind: [size.tokens / s for s in contestant.seconds] for contestant in contestants}
    medians = {kind: statistics.median(values) for kind, values in speeds.items()}
    print(f"\n{size_name}: {size}; loss after {WARM_UP_STEPS} steps {loss:.4f} everywhere")
    columns = "".join(f"{'/ ' + kind:>20}" for kind in REFERENCES)
    print(f"{'':18}{'tokens/s':>10}{'lowest':>9}{'highest':>9}{'CPU ms/step':>13}{columns}   library")
    for contestant in contestants:
        values, median = speeds[contestant.kind], medians[contestant.kind]
        ratios = "".join(f"{median / medians[kind]:>20.2f}" for kind in REFERENCES)
        processor = 1000 * statistics.median(contestant.processor)
        row = f"{contestant.kind:18}{median:>10.0f}{min(values):>9.0f}{max(values):>9.0f}{processor:>13.0f}"
        print(f"{row}{ratios}   {contestant.description}", flush=True)


def main() -> None:
    parser = argparse.ArgumentParser(description="Compares training speed with PyTorch's.")
    parser.add_argument("--pytorch", required=True, help="interpreter with PyTorch")
    parser.add_argument("--size", action="append", choices=SIZES, help="default: all")
    parser.add_argument("--rounds", type=int, default=5, help=f"turns of {STEPS_PER_TURN} steps each (default: 5)")
    options = parser.parse_args()
    if os.getloadavg()[0] > BUSY_LOAD:
        print(f"Other programs are busy here (load {os.getloadavg()[0]:.1f}): trust no ratio below.", file=sys.stderr)
    for name in options.size or SIZES:
        compare(name, options.rounds, options.pytorch)


main()
