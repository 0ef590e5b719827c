"""A real training sidecar, driven over its pipes."""

from __future__ import annotations

import contextlib
import json
import os
import queue
import subprocess
import sys
import threading
from collections.abc import Callable
from pathlib import Path

SCRIPTS_ROOT = Path(__file__).resolve().parents[3] / "sidecar"
PATIENCE_S = 120.0

TINY_SETTINGS = {
    "vocab_size": 300,
    "context": 16,
    "batch_size": 2,
    "layers": 2,
    "hidden_size": 16,
    "heads": 2,
    "feed_forward_size": 32,
    "validation_fraction": 0.2,
    "evaluation_interval": 50,
    "evaluation_batches": 2,
    "snapshot_interval": 20,
    "neurons_per_layer": 4,
    "checkpoint_interval": 50,
    "seed": 7,
}

WORDS = [
    "the",
    "ship",
    "sailed",
    "under",
    "a",
    "grey",
    "sky",
    "and",
    "nobody",
    "on",
    "the",
    "deck",
    "spoke",
    "of",
    "home",
    "until",
    "the",
    "light",
    "came",
    "back",
]


class Library:
    """The three folders of one test, with a small corpus and the settings of a tiny model."""

    def __init__(self, root: Path) -> None:
        self.root = root
        self.data = root / "Training Data"
        self.finished = root / "Finished models"
        self.model = root / "Model"

    def fill(self, **changes) -> Library:
        corpus = self.data / "sea"
        corpus.mkdir(parents=True)
        for document in range(12):
            text = " ".join(WORDS[(document + 3 * i + i * i % 7) % len(WORDS)] for i in range(160))
            (corpus / f"{document:02d}.txt").write_text(text + ".\n", encoding="utf-8")
        self.model.mkdir()
        self.settings(**changes)
        return self

    def settings(self, **changes) -> None:
        self.model.mkdir(exist_ok=True)
        (self.model / "training.json").write_text(json.dumps(TINY_SETTINGS | changes), encoding="utf-8")

    def environment(self) -> dict[str, str]:
        return {
            "ZOREL_DATA_ROOT": str(self.data),
            "ZOREL_FINISHED_MODELS_ROOT": str(self.finished),
            "ZOREL_MODEL_ROOT": str(self.model),
        }

    def runs(self) -> list[Path]:
        return sorted(entry for entry in self.finished.iterdir() if not entry.name.startswith("."))

    def curve(self, run: Path | None = None) -> list[dict]:
        run = run or self.runs()[-1]
        return [json.loads(line) for line in (run / "loss_curve.jsonl").read_text(encoding="utf-8").splitlines()]


class Sidecar:
    """Collects every line that the child writes. Reading waits for the line, never for a time."""

    def __init__(
        self,
        library: Library,
        module: str = "src.app_backend",
        read: bool = True,
        **options,
    ) -> None:
        environment = os.environ | {"PYTHONUNBUFFERED": "1", "HOME": str(library.root)} | library.environment()
        environment["PYTHONPATH"] = os.pathsep.join([str(SCRIPTS_ROOT), str(Path(__file__).parent)])
        environment |= options.pop("environment", {})
        self.process = subprocess.Popen(
            [sys.executable, "-u", "-m", module],
            cwd=SCRIPTS_ROOT,
            env=environment,
            stdin=subprocess.PIPE,
            stdout=subprocess.PIPE,
            stderr=subprocess.PIPE,
            **options,
        )
        self.lines: list[bytes] = []
        self.events: list[dict] = []
        self.errors = b""
        self._errors_grew = threading.Condition()
        self._arrived: queue.SimpleQueue[bytes | None] = queue.SimpleQueue()
        self._reader = threading.Thread(target=self._read, daemon=True)
        self._error_reader = threading.Thread(target=self._read_errors, daemon=True)
        self._error_reader.start()
        if read:
            self.start_reading()

    def __enter__(self) -> Sidecar:
        return self

    def __exit__(self, *exception) -> None:
        if self.process.poll() is None:
            self.process.kill()
        self.process.wait()
        if self.process.stdin and not self.process.stdin.closed:
            with contextlib.suppress(BrokenPipeError):
                self.process.stdin.close()
        if self._reader.is_alive():
            self._reader.join()
        self._error_reader.join()
        self.process.stdout.close()
        self.process.stderr.close()

    def start_reading(self) -> None:
        self._reader.start()

    def send(self, cmd: str, **values) -> None:
        self.send_raw(json.dumps({"cmd": cmd} | values, sort_keys=True).encode() + b"\n")

    def send_raw(self, data: bytes) -> None:
        self.process.stdin.write(data)
        self.process.stdin.flush()

    def start(self, steps: int, resume: bool = False, **values) -> None:
        self.send("start", max_steps=steps, resume=resume, **values)

    def next_event(self) -> dict | None:
        """The next event, or None when the child closed its output. A line that is no JSON object fails."""
        line = self._arrived.get(timeout=PATIENCE_S)
        if line is None:
            return None
        self.lines.append(line)
        event = json.loads(line, parse_constant=self._refuse)
        assert isinstance(event, dict)
        self.events.append(event)
        return event

    def wait_for(self, condition: Callable[[dict], bool]) -> dict:
        while (event := self.next_event()) is not None:
            if condition(event):
                return event
            assert event["event"] != "done", f"the run ended before what was waited for; {self.messages()}"
        raise AssertionError(f"the output ended; last: {self.lines[-3:]}; {self.errors.decode(errors='replace')}")

    def wait_for_kind(self, kind: str) -> dict:
        return self.wait_for(lambda event: event["event"] == kind)

    def wait_for_state(self, *states: str) -> dict:
        return self.wait_for(lambda event: event["event"] == "status" and event["state"] in states)

    def wait_for_step(self, step: int) -> dict:
        return self.wait_for(lambda event: event["event"] == "status" and event["step"] >= step)

    def train(self, steps: int, resume: bool = False, **values) -> dict:
        """Runs to the archive; returns the "model_archived" event."""
        self.start(steps, resume, **values)
        archived = self.wait_for(
            lambda event: (
                event["event"] == "model_archived"
                or (event["event"] == "status" and event["state"] in ("idle", "error"))
            )
        )
        assert archived["event"] == "model_archived", self.messages()
        self.wait_for_kind("done")
        return archived

    def quit(self) -> int:
        self.send("quit")
        return self.finish()

    def finish(self) -> int:
        """Reads to the end; returns the exit status."""
        while self.next_event() is not None:
            pass
        return self.process.wait(timeout=PATIENCE_S)

    def messages(self, kind: str = "error") -> list[str]:
        return [event["msg"] for event in self.events if event["event"] == kind]

    @staticmethod
    def _refuse(name: str) -> None:
        raise AssertionError(f"{name} on the wire")

    def _read(self) -> None:
        for line in self.process.stdout:
            assert line.endswith(b"\n")
            self._arrived.put(line[:-1])
        self._arrived.put(None)

    def wait_for_error_output(self, text: bytes) -> None:
        """Waits for standard error to hold `text`; standard output may stay unread meanwhile."""
        with self._errors_grew:
            assert self._errors_grew.wait_for(lambda: text in self.errors, PATIENCE_S), self.errors

    def _read_errors(self) -> None:
        for line in self.process.stderr:
            with self._errors_grew:
                self.errors += line
                self._errors_grew.notify_all()
