"""The settings window: three tabs, and what can be done with each folder."""

import pytest
from program import NAME
from waiting import wait_until

TAKES_EFFECT = (
    "Changes take effect on the next training run. An in-progress run keeps writing to its original location until it "
    "finishes."
)


@pytest.fixture
def settings(program, desktop):
    program.start_ready()
    desktop.key("ctrl+comma")
    program.wait_for_window("Settings")
    return program


def row(program, name):
    """The group of one folder."""

    def look():
        window = program.window("Settings")
        named = [each for each in program.elements(within=window) if each.name == name] if window else []
        return next((each for each in named if each.role != "label"), None)

    return wait_until(look, name)


def choose(program, desktop, folder, path):
    program.press("Choose…", within=row(program, folder))
    chooser = program.wait_for_chooser()
    field = wait_until(
        lambda: next((each for each in program.elements(within=chooser) if each.role == "text"), None), "its field"
    )
    field.focus()
    desktop.key("ctrl+a")
    desktop.type(str(path))
    wait_until(lambda: field.content == str(path), lambda: f"{path}, but there is {field.content}")
    desktop.key("Return")
    program.wait_for_window("Settings")


def test_the_library_tab(settings):
    window = settings.window("Settings")
    settings.wait_for_texts(
        "Library",
        "Advanced",
        "About",
        "Folders",
        "Training Data",
        "Drop pretraining and fine-tuning corpora into this folder. Each corpus should live in its own subfolder.",
        "Finished Models",
        "Every completed training run is archived here under a subfolder named with the date and time it finished.",
        "Training Data holds text corpora or image folders depending on the model type you selected. Finished models "
        "is where completed runs are saved.",
        TAKES_EFFECT,
        "Reset Folders to Defaults",
        "Choose…",
        "Reveal in Finder",
        "Default",
        "Allowed",
        str(settings.library / "Training Data"),
        str(settings.library / "Finished models"),
        within=window,
    )


def test_the_advanced_tab(settings):
    settings.press("Advanced", "page tab")
    settings.wait_for_texts(
        "Working Directory",
        "Model Working Directory",
        "Where Zorel keeps intermediate state during training — checkpoints, tokenizer cache, prepared tokens, and "
        "logs. These files can be large; only change this if you want to put them on a different disk.",
        "Default: ~/Library/Application Support/Zorel/Model",
        TAKES_EFFECT,
        "Reset Working Directory",
        within=settings.window("Settings"),
    )


def test_the_about_tab(settings):
    settings.press("About", "page tab")
    window = settings.window("Settings")
    settings.wait_for_texts(
        NAME, "Train text, image, and multimodal models on Apple Silicon.", "What you can build", within=window
    )
    settings.wait_until_gone("Close", "push button", within=window)


def test_a_folder_is_chosen_and_reset(settings, desktop):
    corpora = settings.home / "my corpora"
    corpora.mkdir()
    choose(settings, desktop, "Training Data", corpora)
    group = row(settings, "Training Data")
    settings.wait_for_texts(str(corpora), "Custom", "Allowed", within=group)
    settings.wait_for_command("set_paths", training_data=str(corpora))
    settings.press("Reveal in Finder", within=group)
    settings.wait_for_call(f"file://{corpora}".replace(" ", "%20"))

    settings.press("Reset Folders to Defaults")
    settings.wait_for_texts(str(settings.library / "Training Data"), "Default", within=group)
    settings.wait_for_command("set_paths", training_data=str(settings.library / "Training Data"))


def test_choosing_the_default_by_hand_is_the_default(settings, desktop):
    choose(settings, desktop, "Finished Models", settings.library / "Finished models")
    settings.wait_for_texts("Default", within=row(settings, "Finished Models"))
    choose(settings, desktop, "Finished Models", settings.library)
    settings.wait_for_texts("Custom", within=row(settings, "Finished Models"))


def test_cancelling_the_chooser_changes_nothing(settings, desktop):
    before = settings.wait_for_command("set_paths")
    settings.press("Choose…", within=row(settings, "Training Data"))
    settings.wait_for_chooser()
    desktop.key("Escape")
    settings.wait_for_window("Settings")
    settings.wait_for_texts("Default", within=row(settings, "Training Data"))
    # The next folders that the sidecar is told of are those of the next change.
    elsewhere = settings.home / "elsewhere"
    elsewhere.mkdir()
    choose(settings, desktop, "Finished Models", elsewhere)
    assert settings.wait_for_command("set_paths") == {**before, "finished_models": str(elsewhere)}


def test_the_working_directory_is_reset(settings, desktop):
    settings.press("Advanced", "page tab")
    elsewhere = settings.home / "elsewhere"
    elsewhere.mkdir()
    choose(settings, desktop, "Model Working Directory", elsewhere)
    settings.wait_for_command("set_paths", model_root=str(elsewhere))
    settings.press("Reset Working Directory")
    default = settings.home / "Library" / "Application Support" / "Zorel" / "Model"
    settings.wait_for_command("set_paths", model_root=str(default))
    settings.wait_for_texts("Default", within=row(settings, "Model Working Directory"))


def test_a_blocked_folder_says_so_and_is_checked_again(program, desktop):
    program.home.joinpath("Documents").write_text("in the way")
    program.start()
    desktop.key("ctrl+comma")
    program.wait_for_window("Settings")
    group = row(program, "Training Data")
    program.wait_for_texts(
        "Needs access",
        "macOS is blocking access to this folder.",
        "Grant Access in System Settings",
        "Re-check after granting",
        within=group,
    )
    program.home.joinpath("Documents").unlink()
    program.press("Re-check after granting", within=group)
    program.wait_for_texts("Allowed", within=group)
    program.wait_until_gone("macOS is blocking access to this folder.", within=group)
    # Only that folder was looked at.
    program.wait_for("Needs access", within=row(program, "Finished Models"))


def test_keyboard_alone_goes_through_the_window(settings, desktop, focus):
    reached = []
    while "Reset Folders to Defaults" not in reached:
        reached.append(focus.after(lambda: desktop.key("Tab")).name)
        assert len(reached) < 30, reached
    start = reached.index("Choose…")
    assert reached[start:] == [
        "Choose…",
        "Reveal in Finder",
        "Choose…",
        "Reveal in Finder",
        "Reset Folders to Defaults",
    ]
    desktop.key("Escape")
    settings.wait_until_closed("Settings")
    settings.wait_for_window(NAME)
