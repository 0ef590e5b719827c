"""Everything that the window says, as assistive technology reads it."""

from program import NAME
from screen_reader import State
from waiting import wait_until

MODEL_TYPES = {
    "Text Language Model": "Train a causal LM for text completion and chat.",
    "Image Generation": "Train a diffusion model to generate images from noise.",
    "Text + Image (Multimodal)": "Train a text-conditioned model for prompt-to-image generation.",
}
TRAINING_MODES = {
    "Pretrain from scratch": "Build new weights on your training data.",
    "Fine-tune existing weights": "Continue training from a saved checkpoint.",
    "LoRA adapter": "Train a lightweight adapter on a base model.",
}
LIBRARY_TEXT = (
    "Your training corpora live in Training Data. Every completed run is archived under Finished models. "
    "Browse past runs to inspect neuron pathways and compare retrainings."
)
IDENTITY_HELP = (
    "Like an Apple Info.plist for your custom model — these values are baked into the archived model's ModelInfo.json "
    "and the auto-generated README. Editable any time before the run finishes."
)
STEPS_HELP = (
    "How many optimizer steps the trainer should run. Editable live — lower it to stop sooner, raise it to keep going."
)


def test_ready(program):
    program.start_ready()
    for title, summary in {**MODEL_TYPES, **TRAINING_MODES}.items():
        choice = program.wait_for(title, "radio button")
        assert choice.description == summary
    program.wait_for_texts(
        "Choose what you want to build and how it should be trained.",
        "Model Type",
        "Training mode",
        "Model Identity",
        "Training round",
        "steps",
        STEPS_HELP,
        "Apply",
        "100",
        "1,000",
        "10,000",
        "50,000",
        "Start",
        "Pause",
        "Stop",
        "Pretraining progress",
        "0 / 60",
        "Loss: 0.0000",
        "Perplexity: —",
        "Learning rate: 0.00e+00",
        "Grad norm: 0.000",
        "Tokens/sec: 0",
        "Loss curve",
        "Session",
        "State: Idle",
        "Elapsed: 0s",
        "Step: 0",
        "Tok/sec: 0",
        "Library",
        LIBRARY_TEXT,
        "Browse Trained Models",
        "Archived runs: 0",
        "⌘⇧B · inspect archived runs and compare retrainings",
        "Open Training Data",
        "Open Finished Models in Finder",
        "Library Root",
        "Open Settings (⌘,)",
        "Recent activity",
        "7 lines",
        "Show",
        "Show log panel",
    )


def test_identity(program):
    program.start_ready()
    program.press("Model Identity")
    program.wait_for_texts(IDENTITY_HELP, "Name", "Version", "Author", "License", "Description")
    program.wait_for_contents(Name="MyModel", Version="1.0.0", License="MIT", Author="", Description="")
    # What an empty field shows is told in any case.
    examples = {name: program.wait_for(name, "text").description for name in program.contents()}
    assert examples["Name"] == "MyModel"
    assert examples["Version"] == "1.0.0"
    assert "@" in examples["Author"]
    assert examples["License"] == "MIT"
    assert examples["Description"] == "A short summary of what this model does."


def test_identity_goes_to_the_sidecar_and_is_reset(program):
    program.start_ready()
    program.press("Model Identity")
    changed = {"name": "Whale", "version": "2", "author": "ada@example.com", "license": "GPL", "description": "Sings."}
    for key, value in changed.items():
        program.wait_for(key.capitalize(), "text").write(value)
    program.wait_for_command("set_model_identity", identity=changed)
    program.press("Reset Identity")
    program.wait_for_command("set_model_identity", identity={"name": "MyModel", "version": "1.0.0", "license": "MIT"})
    program.wait_for_contents(Name="MyModel", Version="1.0.0", License="MIT", Author="", Description="")


def test_the_model_types_change_what_is_said(program):
    program.start_ready()
    program.press("Image Generation", "radio button")
    program.wait_for_texts(
        "Put images in Training Data (PNG, JPEG, WebP). Each image can have a matching .txt caption file.",
        "Image training progress",
        "Samples/sec: 0",
    )
    program.wait_until_gone("LoRA adapter", "radio button")
    program.press("Text + Image (Multimodal)", "radio button")
    program.wait_for_texts(
        "Put image + caption pairs in Training Data — e.g. photo.jpg with photo.txt beside it.",
        "Multimodal training progress",
    )
    program.wait_until_gone("Fine-tune existing weights", "radio button")


def test_a_mode_that_the_next_type_lacks(program):
    program.start_ready()
    program.press("LoRA adapter", "radio button")
    program.wait_for_command(
        "set_training_profile", profile={"model_family": "text_language", "training_capability": "lora"}
    )
    program.press("Image Generation", "radio button")
    program.wait_for_command(
        "set_training_profile", profile={"model_family": "image_generation", "training_capability": "pretrain"}
    )
    mode = program.wait_for("Pretrain from scratch", "radio button")
    wait_until(lambda: mode.has(State.CHECKED), lambda: f"{mode} to be chosen")


def test_steps(program):
    program.start_ready()
    field = program.wait_for("Training round, steps")
    for now, more in (99, 109), (100, 200), (99_999, 100_999), (100_000, 110_000):
        field.write(f"+{now}")
        program.press("Apply")
        program.wait_for_command("set_max_steps", n=now)
        program.press("More steps")
        program.wait_for_command("set_max_steps", n=more)
        program.wait_for(f"{more:,}", "label")
    program.press("Fewer steps")
    program.wait_for_command("set_max_steps", n=100_000)
    for steps in 100, 1000, 10_000, 50_000:
        program.press(f"{steps:,}")
        program.wait_for_command("set_max_steps", n=steps)


def test_the_buttons_of_the_library_panel(program, desktop):
    program.start_ready()
    library = f"file://{program.library}"
    for name, address in [
        ("Open Training Data", f"{library}/Training%20Data"),
        ("Open Finished Models in Finder", f"{library}/Finished%20models"),
        ("Library Root", f"{library} "),
    ]:
        program.press(name)
        program.wait_for_call(address)
    program.press("Browse Trained Models")
    program.wait_for_window("Trained Models")
    desktop.key("Escape")
    program.wait_for_window(NAME)
    program.press("Open Settings (⌘,)")
    program.wait_for_window("Settings")


def entries(program, *menus):
    for menu in menus:
        for element in program.elements(hidden=True, within=program.wait_for(menu, "menu item")):
            if element.role == "menu item" and element.name != menu:
                yield menu, element.name, element.shortcut()


def test_the_menus(program):
    program.start_ready()
    assert list(entries(program, "Training", "Library")) == [
        ("Training", "Start", "Ctrl+R"),
        ("Training", "Pause / Resume", "Ctrl+Space"),
        ("Training", "Stop", "Ctrl+."),
        ("Training", "Resume from latest checkpoint", "Ctrl+Shift+R"),
        ("Library", "Browse Trained Models…", "Ctrl+Shift+B"),
        ("Library", "Reveal Training Data in Finder", "Ctrl+Shift+T"),
        ("Library", "Reveal Finished Models in Finder", "Ctrl+Shift+M"),
        ("Library", "Reveal Zorel Library Folder", "Ctrl+Shift+L"),
    ]
    for title in f"About {NAME}", "Check for Updates…", "Settings…", f"Quit {NAME}":
        program.wait_for(title, "menu item", hidden=True)


def test_the_title_bar(program, desktop):
    program.start_ready()
    button = program.wait_for(NAME, "push button")
    assert button.description == f"About {NAME}"
    desktop.wait_for_active_window(NAME)


def test_about(program, desktop):
    program.start_ready()
    program.press(NAME)
    sheet = program.wait_for_window(f"About {NAME}")
    program.wait_for_texts(
        NAME,
        "Train text, image, and multimodal models on Apple Silicon.",
        "What you can build",
        "Text language models",
        "Pretrain causal LMs from your corpora.",
        "Image generation",
        "Train diffusion models on image folders.",
        "Multimodal",
        "Caption-conditioned prompt-to-image training.",
        "Check for Updates",
        "Updates are checked automatically once a day.",
        within=sheet,
    )
    libraries = "MLX", "Metal", "Qt", "Caldra"
    for fits, what in (
        (lambda text: text.startswith("Version "), "the version"),
        (lambda text: all(name in text for name in libraries), "the libraries"),
        (lambda text: text.startswith("Copyright") and "Talvex" in text, "the copyright"),
    ):
        program.wait_for_text(fits, what, within=sheet)
    program.press("Close", within=sheet)
    program.wait_until_closed(f"About {NAME}")
    program.wait_for_window(NAME)
    # The command opens it as well, and Esc closes it.
    program.show_about()
    desktop.key("Escape")
    program.wait_until_closed(f"About {NAME}")
    program.wait_for_window(NAME)
