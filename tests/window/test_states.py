"""The states that the training goes through, as the window tells of them."""

import pytest
from screen_reader import DescriptionWatch
from stages import READY, RUNNING, status
from waiting import wait_until

BLOCKED = (
    "Access to {} is blocked. Allow it in System Settings → Privacy & Security → Files & Folders, then come back and "
    "press refresh."
)
PRESS_START = "Press Start to begin training."
WARMING_UP = "Warming up — first step takes ~15–20 s for JIT compile."


def test_until_ready(program, stages):
    stages.play([], READY)
    program.start()
    program.wait_for_texts(
        "Starting Python backend…",
        "Waiting for the Python backend — check Recent activity",
        PRESS_START,
    )
    stages.next()
    program.wait_for("Begin training")
    program.wait_until_gone("Starting Python backend…")


def test_without_a_python(program):
    program.interpreter.unlink()
    program.environment["PATH"] = str(program.home / "tools")
    program.start()
    start = "failed to locate Python sidecar: "
    error = program.wait_for_text(lambda text: text.startswith(start), "the reason why nothing can be trained")
    program.press("Show log panel")
    program.wait_for_texts("× " + error)
    program.wait_until_gone("Starting Python backend…")


def test_preparing(program, stages):
    stages.play(
        [*READY, status("preparing", prep_progress=0.25, prep_detail="Reading notes.txt", prep_elapsed_s=75)],
        [status("preparing", prep_progress=0.5)],
        [status("starting")],
    )
    program.start()
    program.wait_for_texts(
        "Preparing data",
        "25%",
        "Reading notes.txt",
        "Preparing data — training tokenizer and tokenizing your corpus.\nThis runs once per Training Data folder.",
    )
    program.wait_for_text(lambda text: "1m15s" in text, "the time that it has taken")
    stages.next()
    program.wait_for_texts("50%", "Working on your corpus…")
    program.press("Image Generation", "radio button")
    program.wait_for_texts(
        "Indexing images in your training folder…",
        "Preparing data — indexing images in your Training Data folder.\nThis runs once per image corpus.",
    )
    stages.next()
    program.wait_for_texts("State: Starting", WARMING_UP)
    program.wait_until_gone("Preparing data")


# The state, what it is called, and which of Start, Pause and Stop can be pressed.
STATES = [
    ("idle", "Idle", ["Start"]),
    ("starting", "Starting", ["Stop"]),
    ("preparing", "Preparing", ["Stop"]),
    ("running", "Running", ["Pause", "Stop"]),
    ("stopping", "Stopping", []),
    ("done", "Done", ["Start"]),
    ("error", "Error", ["Start"]),
    ("cooling", "cooling", ["Start"]),
]


def wait_for_buttons(program, enabled):
    """Until those of the buttons can be pressed, and no others."""
    buttons = [program.wait_for(name, "push button") for name in ("Start", "Pause", "Stop")]
    wait_until(
        lambda: [button.name for button in buttons if button.is_enabled] == enabled,
        lambda: f"{enabled} in {program.texts()}",
    )


def test_what_can_be_pressed_in_each_state(program, stages):
    stages.play(READY, *([status(state, **RUNNING)] for state, _, _ in STATES))
    program.start_ready()
    for _, title, enabled in STATES:
        stages.next()
        program.wait_for(f"State: {title}")
        wait_for_buttons(program, enabled)


@pytest.mark.parametrize(
    ("seconds", "text"), [(42.9, "42s"), (75, "1m15s"), (3599.9, "59m59s"), (3600, "1h00m"), (-5.5, "-5s")]
)
def test_durations(program, stages, seconds, text):
    stages.play([*READY, status("preparing", elapsed_s=seconds, prep_elapsed_s=seconds, prep_eta_s=seconds)])
    program.start()
    program.wait_for_texts(f"Elapsed: {text}")
    # An estimate below zero is none.
    expected = {"Time taken", "Time left"} if seconds > 0 else {"Time taken"}

    def all_there():
        return {element.description for element in program.elements() if element.name == text} >= expected

    wait_until(all_there, lambda: f"{expected} in {program.texts()}")


def test_the_chart_tells_of_its_points(program, stages):
    stages.play([*READY, status("running", **{**RUNNING, "step": 1, "loss": 5})], [status("running", **RUNNING)])
    program.start()
    chart = program.wait_for("Loss curve", "chart")
    wait_until(lambda: "5.0000 at step 1" in chart.description, lambda: chart.description)
    stages.next()
    wait_until(lambda: "lowest 2.5000 at step 120" in chart.description, lambda: chart.description)
    wait_until(
        lambda: [element.name for element in chart.children if element.is_showing] == ["Loss", "Step"],
        lambda: f"the titles of the axes in {chart.children}",
    )
    program.wait_until_gone(PRESS_START)


def test_the_charts_crosshair_is_spoken(program, stages, desktop):
    stages.play([*READY, status("running", **{**RUNNING, "step": 1, "loss": 5})], [status("running", **RUNNING)])
    watch = DescriptionWatch()
    program.start()
    chart = program.wait_for("Loss curve", "chart")
    wait_until(lambda: "5.0000 at step 1" in chart.description, lambda: chart.description)
    stages.next()
    wait_until(lambda: "lowest 2.5000 at step 120" in chart.description, lambda: chart.description)
    chart.focus()
    desktop.key("Home")
    wait_until(lambda: "Step 1, Loss 5.0000" in watch.descriptions, lambda: watch.descriptions)
    desktop.key("Right")
    wait_until(lambda: "Step 120, Loss 2.5000" in watch.descriptions, lambda: watch.descriptions)
    watch.stop()


def test_the_log(program, stages):
    lines = ["ERROR: the disk is full", "WARN: the disk is slow", "step=5 loss=2.5", "an ordinary line"]
    stages.play([*READY, *({"emit": {"event": "log", "msg": line}} for line in lines), {"stderr": "from below"}])
    program.start_ready()
    program.press("Show log panel")
    log = program.wait_for("Recent activity", "text")
    # The two outputs of the sidecar overtake each other.
    wait_until(lambda: all(line in log.content for line in [*lines, "[py stderr] from below"]), lambda: log.content)
    wait_until(lambda: f"{len(log.content.splitlines())} lines" in program.texts(), program.texts)
    program.wait_for_texts("Hide", "Hide log panel")
    program.press("Hide")
    program.wait_for_texts("Show", "Show log panel")
    program.wait_until_gone("Recent activity", "text")


def test_running_and_paused(program, stages):
    stages.play([*READY, status("running", **RUNNING, val_loss=2.75)], [status("paused", **RUNNING)])
    program.start()
    program.wait_for_texts(
        "120 / 300",
        "Loss: 2.5000",
        "Perplexity: 12.2",
        "Learning rate: 3.00e-04",
        "Grad norm: 0.710",
        "Tokens/sec: 5321",
        "State: Running",
        "Elapsed: 1h12m",
        "Step: 120",
        "Tok/sec: 5321",
        "Val loss: 2.7500",
        "Pause",
    )
    stages.next()
    program.wait_for_texts("State: Paused", "Resume")


def test_an_error(program, stages):
    message = "The memory is full: lower the batch size."
    stages.play([*READY, {"emit": {"event": "error", "msg": message}}, status("error", error=message)])
    program.start()
    program.wait_for_texts("Error", message)
    program.press("Show log panel")
    program.wait_for_texts("× ERROR: " + message)


def test_an_archived_run(program):
    program.start_ready()
    program.press("100")
    program.press("Start")
    program.wait_for("Model archived")
    [run] = (program.library / "Finished models").iterdir()
    program.wait_for_texts("Model archived", run.name)
    notice = wait_until(
        lambda: next((each for each in program.elements() if each.role in ("alert", "notification")), None),
        lambda: f"the notice in {program.elements()}",
    )
    program.press("Reveal in Finder", within=notice)
    program.wait_for_call(f"file://{run}".replace(" ", "%20"))
    program.press("Show log panel")
    program.wait_for_texts(f"✓ archived model → {run}", "Archived runs: 1")


@pytest.mark.parametrize(
    ("in_the_way", "names"),
    [
        (["Documents"], "Training Data and Finished Models"),
        (["Library/Application Support"], "Model Working Directory"),
        (["Documents", "Library/Application Support"], "Training Data, Finished Models, and Model Working Directory"),
    ],
)
def test_blocked_folders(program, in_the_way, names):
    files = [program.home / name for name in in_the_way]
    for file in files:
        file.write_text("not a folder")
    program.start()
    program.wait_for_texts("Talvex LLM Trainer needs folder access", BLOCKED.format(names))
    # Linux has no such settings; what keeps the folder away is shown.
    program.press("Open Privacy Settings")
    program.wait_for_call(f"file://{files[0]} ".replace("Application Support", "Application%20Support"))
    program.press("Re-check folder access")
    program.wait_for_texts(BLOCKED.format(names))
    for file in files:
        file.unlink()
    program.press("Re-check folder access")
    program.wait_until_gone("Talvex LLM Trainer needs folder access")
