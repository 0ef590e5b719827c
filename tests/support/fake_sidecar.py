#!/usr/bin/env python3
"""A training sidecar that trains nothing, for tests that need a real child process.

Tests copy it to <scripts root>/src/app_backend.py. Python's standard library is all it needs.

Without ZOREL_FAKE_SCENARIO it plays a short, plausible run: ready, preparation, steps with a falling loss, an archive
on disk, and it reacts to every command. ZOREL_FAKE_STEP_SECONDS sets the time a step takes (0.002 unless told).

ZOREL_FAKE_SCENARIO is a JSON list of steps, carried out one after another. Input is read only by the steps that say
so. When the list is used up, the child waits for "quit" or the end of input and exits with 0.

  {"emit": {...}}                   one event line
  {"raw": "text"}                   text on standard output exactly as it stands; {"raw_base64": "..."} for any bytes
  {"stderr": "text"}                one line on standard error
  {"flood": {"emit": {...}, "count": 1000, "counter": "step", "stderr": 500}}
                                    "count" events, the key "counter" holding 0, 1, 2, ..., and as many numbered lines
                                    on standard error as "stderr" says, interleaved
  {"await": "start"}                read commands up to this one; a list of names takes any of them, {} any command at
                                    all. The end of input ends the child with 0
  {"wait_for_eof": true}            read to the end of input
  {"stop_reading": true}            never read again; at the end of the list sleep until killed
  {"close_input": true}             close standard input; {"close_output": true} closes standard output
  {"echo_commands_to": "path"}      from here on append every line that is read to this file, as it came
  {"report_to": "path"}             write arguments, working folder, process id, environment and open descriptors as
                                    one JSON object
  {"touch": "path"}                 create a file, to tell the test that this point is reached
  {"wait_for_file": "path"}         go on when the file exists
  {"grandchild": {"until_file": "path", "steps": [...]}}
                                    start a process that holds the same outputs, waits for the file, carries out its
                                    steps and exits
  {"ignore": ["SIGTERM"]}           ignore signals
  {"play": true}                    play the default run from here
  {"exit": 3}                       exit with this status, {"signal": 9} by this signal
"""

import base64
import json
import math
import os
import select
import signal
import sys
import time

INPUT, OUTPUT, ERROR = 0, 1, 2
PARENT = os.getppid()


def write_all(descriptor, data):
    while data:
        data = data[os.write(descriptor, data) :]


def emit(event):
    write_all(OUTPUT, (json.dumps(event) + "\n").encode())


def wait_a_little():
    """Ends the process when its parent is gone: a failed test leaves nothing behind."""
    if os.getppid() != PARENT:
        os._exit(1)
    time.sleep(0.005)


class Commands:
    """Splits standard input into lines; reads only when asked."""

    def __init__(self):
        self.echo_path = None
        self.buffer = b""
        self.ended = False

    def next(self, timeout=None):
        """The next command, or None at the end of input or when `timeout` seconds have passed without one."""
        while b"\n" not in self.buffer:
            if self.ended:
                return None
            readable, _, _ = select.select([INPUT], [], [], timeout)
            if not readable:
                return None
            data = os.read(INPUT, 65536)
            self.ended = not data
            self.buffer += data
        line, self.buffer = self.buffer.split(b"\n", 1)
        if self.echo_path:
            with open(self.echo_path, "ab") as echo:
                echo.write(line + b"\n")
        return json.loads(line)


class Scenario:
    def __init__(self, steps):
        self.steps = steps
        self.commands = Commands()
        self.reading = True

    def play(self):
        for step in self.steps:
            for name, value in step.items():
                getattr(self, "do_" + name)(value)
        while not self.reading:
            wait_a_little()
        self.do_await("quit")

    def do_emit(self, event):
        emit(event)

    def do_raw(self, text):
        write_all(OUTPUT, text.encode())

    def do_raw_base64(self, text):
        write_all(OUTPUT, base64.b64decode(text))

    def do_stderr(self, text):
        write_all(ERROR, (text + "\n").encode())

    def do_flood(self, flood):
        count, errors = flood.get("count", 0), flood.get("stderr", 0)
        event, counter = dict(flood.get("emit", {})), flood.get("counter")
        block = 256
        for first in range(0, max(count, errors), block):
            lines = []
            for number in range(first, min(first + block, count)):
                if counter:
                    event[counter] = number
                lines.append(json.dumps(event))
            if lines:
                write_all(OUTPUT, ("\n".join(lines) + "\n").encode())
            numbers = range(first, min(first + block, errors))
            if numbers:
                write_all(ERROR, "".join(f"line {number}\n" for number in numbers).encode())

    def do_await(self, names):
        names = [names] if isinstance(names, str) else list(names)
        while True:
            command = self.commands.next()
            if command is None:
                sys.exit(0)
            if not names or command.get("cmd") in names:
                return

    def do_wait_for_eof(self, _):
        while self.commands.next() is not None:
            pass

    def do_stop_reading(self, _):
        self.reading = False

    def do_close_input(self, _):
        os.close(INPUT)

    def do_close_output(self, _):
        os.close(OUTPUT)

    def do_echo_commands_to(self, path):
        self.commands.echo_path = path

    def do_report_to(self, path):
        listing = "/proc/self/fd" if os.path.isdir("/proc/self/fd") else "/dev/fd"
        descriptors = []
        for name in os.listdir(listing):
            try:
                os.fstat(int(name))
                descriptors.append(int(name))
            except OSError:
                pass  # the descriptor of the listing itself
        report = {
            "arguments": sys.orig_argv if hasattr(sys, "orig_argv") else sys.argv,
            "folder": os.getcwd(),
            "process": os.getpid(),
            "environment": dict(os.environ),
            "descriptors": sorted(descriptors),
        }
        with open(path + ".new", "w", encoding="utf-8") as file:
            json.dump(report, file)
        os.rename(path + ".new", path)

    def do_touch(self, path):
        open(path, "wb").close()

    def do_wait_for_file(self, path):
        while not os.path.exists(path):
            wait_a_little()

    def do_grandchild(self, grandchild):
        if os.fork() != 0:
            return
        os.close(INPUT)
        # Not for ever, should the test die first.
        deadline = time.monotonic() + 60
        while not os.path.exists(grandchild["until_file"]) and time.monotonic() < deadline:
            time.sleep(0.005)
        for step in grandchild.get("steps", []):
            for name, value in step.items():
                getattr(self, "do_" + name)(value)
        os._exit(0)

    def do_ignore(self, names):
        for name in names:
            signal.signal(getattr(signal, name), signal.SIG_IGN)

    def do_play(self, _):
        Run(self.commands).play()

    def do_exit(self, status):
        os._exit(status)

    def do_signal(self, number):
        os.kill(os.getpid(), number)
        signal.pause()


class Run:
    """The default behaviour: what a real sidecar would say, without the training."""

    DEFAULT_STEPS = 60
    PREPARATION_PARTS = 5

    def __init__(self, commands):
        self.commands = commands
        self.step_seconds = float(os.environ.get("ZOREL_FAKE_STEP_SECONDS", "0.002"))
        self.max_steps = self.DEFAULT_STEPS
        self.step = 0
        self.state = "idle"
        self.preparation = 0.0
        self.stopping = False
        self.paused = False
        self.finished_models = os.environ.get("ZOREL_FINISHED_MODELS_ROOT", "")

    def play(self):
        emit({"event": "ready", "default_max_steps": self.DEFAULT_STEPS})
        while True:
            command = self.commands.next()
            if command is None or command["cmd"] == "quit":
                sys.exit(0)
            if command["cmd"] == "start":
                self.train(command)
            else:
                self.react(command)

    def react(self, command):
        name = command["cmd"]
        if name == "set_paths":
            self.finished_models = command["finished_models"]
            emit(
                {
                    "event": "paths",
                    "library_root": os.path.dirname(self.finished_models),
                    "training_data": command["training_data"],
                    "finished_models": self.finished_models,
                    "model_root": command["model_root"],
                }
            )
        elif name == "set_model_identity":
            emit({"event": "model_identity"})
        elif name == "set_max_steps":
            self.max_steps = command["n"]
        elif name == "toggle_pause" and self.state in ("running", "paused"):
            self.paused = not self.paused
            self.report("paused" if self.paused else "running")
        elif name in ("stop", "quit"):
            if self.state not in ("idle", "done"):
                self.stopping = True
                self.report("stopping")
            if name == "quit":
                sys.exit(0)

    def listen(self, seconds):
        """Reacts to what comes within the time; longer while paused."""
        deadline = time.monotonic() + seconds
        while not self.stopping:
            remaining = None if self.paused else max(0.0, deadline - time.monotonic())
            command = self.commands.next(remaining)
            if command is not None:
                self.react(command)
            elif self.commands.ended:
                sys.exit(0)
            elif not self.paused:
                return

    def loss(self):
        return 2.0 + 6.0 * math.exp(-3.0 * self.step / max(1, self.max_steps))

    def report(self, state):
        self.state = state
        training = self.step > 0
        elapsed = self.step * self.step_seconds
        emit(
            {
                "event": "status",
                "state": state,
                "step": self.step,
                "max_steps": self.max_steps,
                "loss": self.loss() if training else 0.0,
                "lr": 3e-4,
                "grad_norm": 0.7 if training else 0.0,
                "tokens_per_sec": 4096 / self.step_seconds if training and self.step_seconds else 0.0,
                "elapsed_s": elapsed,
                "val_loss": self.loss() + 0.1 if training else None,
                "error": None,
                "prep_progress": self.preparation,
                "prep_detail": "Tokenizing notes.txt" if state == "preparing" else "",
                "prep_elapsed_s": self.preparation * 2,
                "prep_eta_s": (1 - self.preparation) * 2,
            }
        )

    def train(self, command):
        self.max_steps = command["max_steps"]
        self.step = self.max_steps // 2 if command["resume"] else 0
        self.stopping = self.paused = False
        self.preparation = 0.0
        self.report("starting")
        for part in range(self.PREPARATION_PARTS + 1):
            self.preparation = part / self.PREPARATION_PARTS
            self.report("preparing")
            self.listen(self.step_seconds)
            if self.stopping:
                return self.report("idle")
        while self.step < self.max_steps:
            self.step += 1
            self.report("running")
            self.listen(self.step_seconds)
            if self.stopping:
                return self.report("idle")
        self.archive(command)
        self.report("done")
        emit({"event": "done"})
        self.report("idle")

    def archive(self, command):
        base = time.strftime("%Y-%m-%d_%H-%M-%S")
        name, number = base, 2
        while os.path.exists(os.path.join(self.finished_models, name)):
            name, number = f"{base}-{number}", number + 1
        path = os.path.join(self.finished_models, name)
        os.makedirs(path)
        with open(os.path.join(path, "manifest.json"), "w", encoding="utf-8") as manifest:
            json.dump(
                {"final_step": self.step, "final_loss": self.loss(), "model_family": command["model_family"]}, manifest
            )
        emit(
            {
                "event": "model_archived",
                "path": path,
                "folder_name": name,
                "step": self.step,
                "loss": self.loss(),
                "elapsed": self.step * self.step_seconds,
            }
        )


def main():
    signal.signal(signal.SIGPIPE, signal.SIG_DFL)
    scenario = os.environ.get("ZOREL_FAKE_SCENARIO")
    if scenario is None:
        Run(Commands()).play()
    else:
        Scenario(json.loads(scenario)).play()


if __name__ == "__main__":
    main()
