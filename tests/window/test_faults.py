"""Homes, settings and names as bad as they come: the program starts and says what is wrong."""

import pytest
from program import NAME, Program
from waiting import wait_until

ALL_BLOCKED = (
    "Access to Training Data, Finished Models, and Model Working Directory is blocked. Allow it in System Settings → "
    "Privacy & Security → Files & Folders, then come back and press refresh."
)


CANNOT_SAVE = "The settings cannot be saved to"


def test_a_home_that_cannot_be_written(program):
    program.expected_error = CANNOT_SAVE
    # No folder can be made below a file, whoever asks.
    nowhere = program.home / "file"
    nowhere.write_text("")
    program.environment.update(HOME=str(nowhere), XDG_CONFIG_HOME=str(nowhere / ".config"))
    program.start()
    program.wait_for_texts(ALL_BLOCKED)
    # It goes on with its settings in memory.
    program.press("Image Generation", "radio button")
    program.wait_for("Image training progress")


def test_settings_that_cannot_be_written(program):
    program.expected_error = CANNOT_SAVE
    program.environment["XDG_CONFIG_HOME"] = "/proc"
    program.start_ready()
    program.press("Image Generation", "radio button")
    program.wait_for_command(
        "set_training_profile", profile={"model_family": "image_generation", "training_capability": "pretrain"}
    )
    program.press("Show log panel")
    program.wait_for("Hide log panel")


@pytest.mark.parametrize("content", ["", "{", "[1, 2]", '{"zorel.modelFamily": 7}', "\x00\xff" * 5000])
def test_damaged_settings(program, content):
    file = program.home / ".config" / "Talvex" / "zorel.json"
    file.parent.mkdir(parents=True)
    file.write_text(content, encoding="latin-1")
    program.start_ready()
    program.wait_for("Pretraining progress")


def test_the_log_panel_stays_as_it_was_left(program):
    program.start_ready()
    program.press("Show log panel")
    program.wait_for("Hide log panel")
    program.quit()
    program.start()
    program.wait_for("Hide log panel")


@pytest.mark.parametrize("name", ['a "b" $(c) `d`', "line\nbreak", "مجلد", "w" * 200])
def test_a_home_with_an_odd_name(desktop, home, name):
    odd = home / name
    odd.mkdir()
    program = Program(desktop, odd)
    program.start_ready()
    program.press("100")
    program.press("Start")
    program.wait_for("Model archived")
    program.quit()
    program.stop()


FIELDS = ["Name", "Version", "Author", "License", "Description"]


@pytest.mark.parametrize(
    "text",
    ["a \"b\" 'c' \\ <b>d</b> &amp; %1", "line\nbreak\r\n\ttab", "\u202egnp.exe مرحبا שלום \u2066", "x" * 10_000],
    ids=["quotes", "line breaks", "right to left", "long"],
)
def test_anything_in_every_field(program, text):
    program.start_ready()
    program.press("Model Identity")
    fields = {name: program.wait_for(name, "text") for name in FIELDS}
    window = program.wait_for_window(NAME)
    size = window.bounds()[2:]
    for field in fields.values():
        field.write(text)
    shown = {name: field.content for name, field in fields.items()}
    # Whatever a field makes of a line break, it sends what it shows.
    sent = {name.lower(): content.strip() for name, content in shown.items()}
    program.wait_for_command("set_model_identity", identity=sent)
    assert shown["Name"] == text

    program.wait_for("Training round, steps", "text").write(text)
    program.press("Apply")
    program.wait_for("Type a whole number without grouping, such as 5000.")
    wait_until(lambda: window.bounds()[2:] == size, lambda: f"{size}, but it is {window.bounds()}")

    program.quit()
    program.wait_for_command("quit")
    assert not [command for command in program.commands() if command["cmd"] == "set_max_steps"]
    program.start_ready()
    program.press("Model Identity")
    program.wait_for_contents(**shown)


@pytest.mark.parametrize(
    ("path", "usable"),
    [
        ("", False),
        ("{home}/file", False),
        ("{home}/dangling", False),
        ("/sys/nowhere", False),
        ("{home}/a \"b\" 'c' $(d) `e` <i>f</i> %2F #g?", True),
        ("{home}/line\nbreak", True),
        ("{home}/папка/مجلد \u202eabc", True),
        ("{home}/" + "x" * 4000, False),
        ("{home}" + "/" + "long/" * 700, True),
        ("~/elsewhere", True),
    ],
    ids=["empty", "file", "dangling", "unwritable", "quotes", "line break", "other letters", "name", "path", "tilde"],
)
def test_any_folder(program, desktop, path, usable):
    path = path.format(home=program.home)
    program.home.joinpath("file").write_text("")
    program.home.joinpath("dangling").symlink_to(program.home / "file" / "below")
    program.store(trainingDataPath=path, finishedModelsPath=path, modelRootPath=path)
    program.start_ready()
    banner = "Talvex LLM Trainer needs folder access"
    if not usable:
        program.wait_for_texts(banner, ALL_BLOCKED)

    desktop.key("ctrl+comma")
    window = program.wait_for_window("Settings")
    group = program.wait_for("Training Data", "filler", within=window)
    program.wait_for_texts("Custom", "Allowed" if usable else "Needs access", *([path] if path else []), within=group)
    # All of them have been looked at by now.
    assert usable != bool(program.find(banner))
    program.press("Reveal in Finder", within=group)
    program.press("Choose…", within=group)
    program.wait_for_chooser()
    desktop.key("Escape")
    program.wait_for_window("Settings")
    program.press("Reset Folders to Defaults", within=window)
    program.wait_for_texts("Default", "Allowed", within=group)
    assert window.bounds()[2] < 1000


def test_a_folder_in_the_place_of_the_settings(program):
    program.expected_error = CANNOT_SAVE
    program.home.joinpath(".config", "Talvex", "zorel.json").mkdir(parents=True)
    program.start_ready()
    program.press("Image Generation", "radio button")
    program.wait_for("Image training progress")
    program.quit()
