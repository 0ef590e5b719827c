"""Training scripts that misbehave: the window stays free and says what is wrong."""

import json
from pathlib import Path

from stages import READY, RUNNING, status
from waiting import wait_until

MEBIBYTE = 1024 * 1024


def test_a_sidecar_that_dies(program):
    program.scenario = [*READY, {"exit": 3}]
    program.start()
    program.wait_for("Waiting for the Python backend — check Recent activity")
    program.press("Show log panel")
    program.wait_for_texts("backend exited (code 3)")
    program.press("Start")
    program.wait_for_texts(
        "× Python backend is not running — relaunching…",
        "× wait for “backend ready” in Recent activity, then press Start again",
    )


def test_hostile_lines(program):
    hostile = "<img src=x> \u202e" + "z" * 20_000
    program.scenario = [
        *READY,
        {"emit": {"event": "log", "msg": hostile}},
        {"raw": "Traceback (most recent call last):\n"},
        {"raw_base64": "/wAK"},
        status("running", **RUNNING, error=hostile),
        {"emit": {"event": "model_archived", "path": "/tmp/" + "p" * 3000 + "\n<b>", "step": 1}},
    ]
    program.start()
    program.wait_for("Model archived")
    program.press("Show log panel")
    program.wait_for_texts("× bad event from backend: Traceback (most recent call last):", hostile)
    # The line after the bad ones counts.
    program.wait_for("State: Running")


def test_a_flood_of_lines(program, stages):
    count = 100_000
    flood = {"emit": status("running", **RUNNING)["emit"], "count": count, "counter": "step", "stderr": count}
    stages.play(READY, [{"flood": flood}, status("paused", **{**RUNNING, "step": count})])
    program.start_ready()
    before = program.memory()
    stages.next()
    # While it comes.
    program.press("Show log panel")
    program.press("Image Generation", "radio button")
    program.wait_for_texts("Image training progress", "Hide log panel")
    program.wait_for_texts("State: Paused", f"Step: {count:,}", f"[py stderr] line {count - 1}", "2000 lines")
    assert program.memory() - before < 64 * MEBIBYTE


def test_a_sidecar_that_stops_reading(program, desktop):
    program.scenario = [*READY, status("running", **RUNNING), {"stop_reading": True}]
    program.start()
    program.wait_for("State: Running")
    program.press("Model Identity")
    field = program.wait_for("Description", "text")
    before = program.memory()
    # More than a pipe holds, by far.
    for number in range(100):
        field.write(f"{number}" + "d" * 10_000)
    program.press("Pause")
    program.press("Stop")
    program.press("Image Generation", "radio button")
    program.wait_for("Image training progress")
    assert program.memory() - before < 64 * MEBIBYTE
    desktop.key("ctrl+q")
    program.wait_for_window("Finishing the training run…")
    program.press("Quit Now")
    assert program.wait_for_exit() == 0


def test_nobody_is_left_behind(program):
    report = program.home / "report"
    program.scenario = [{"report_to": str(report)}, *READY, {"wait_for_eof": True}]
    program.start_ready()
    wait_until(report.exists, "the report")
    sidecar = Path("/proc") / str(json.loads(report.read_text())["process"])
    assert sidecar.exists()
    program.process.kill()
    wait_until(lambda: not sidecar.exists(), "the sidecar's end")
