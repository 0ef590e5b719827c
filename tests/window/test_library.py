"""The library of finished runs, on the real window."""

from library_sheet import ORDER, RUNS
from run_folders import manifest
from screen_reader import AppearanceWatch
from waiting import wait_until

NO_SNAPSHOT = (
    "No neuron snapshot was saved for this run. Complete a new text-language training run to capture pathway "
    "activations at archive time."
)


def test_an_empty_library(program, library):
    # Nothing has been scanned before the sheet is opened.
    program.scenario = [{"stop_reading": True}]
    watch = AppearanceWatch()
    program.start()
    program.press("Browse Trained Models")
    sheet = program.wait_for_window("Trained Models")
    program.wait_for_texts(
        "Trained Models",
        "Done",
        "Refresh",
        "No trained models yet",
        "Complete a training run and it will appear here under Finished models.",
        "Select a trained model",
        "Pick a finished run from the sidebar to inspect its metrics and neuron pathways.",
        within=sheet,
    )
    program.wait_for("Search models", "text", within=sheet)
    wait_until(lambda: "Scanning library…" in watch.names, lambda: f"“Scanning library…” in {watch.names}")
    watch.stop()
    program.wait_until_gone("Scanning library…", within=sheet)
    library.folders.add("first", manifest("whale", "1.0.0", 18))
    program.press("Refresh", within=sheet)
    wait_until(lambda: library.rows() == ["whale", "whale v1.0.0, loss 2.346, 18 Mar 2026 09:26:53"], library.rows)
    program.press("Done", within=sheet)
    program.wait_until_closed("Trained Models")


def test_every_kind_of_folder(program, library):
    library.fill().folders.add_what_is_no_run()
    library.open()
    expected = []
    for name in ORDER:
        expected.append(name)
        for folder, content, _, _, row in RUNS:
            identity = content["model_identity"] if isinstance(content.get("model_identity"), dict) else {}
            if identity.get("name", folder).strip() == name:
                expected.append(row)
    wait_until(lambda: library.rows() == expected, lambda: f"{library.rows()} to be {expected}")


def test_the_details(program, library):
    library.fill()
    sheet = library.open()
    library.choose("whale v1.0.0")
    program.wait_for_texts(
        "by Ada",
        "Text Language Model",
        "Pretrain from scratch",
        "Loss curve saved",
        "Neuron snapshot saved",
        "Reveal in Finder",
        *("Steps", "1000 / 1200", "Final loss", "2.3457", "Val loss", "2.5000"),
        *("Elapsed", "4330 s", "Throughput", "5322 tok/s"),
        "Training loss curve",
        "Neuron pathways",
        "archived snapshot",
        "step 1000",
        *("Highly active", "Moderate", "Inactive"),
        within=sheet,
    )
    program.wait_for_text(lambda text: "18 March 2026" in text, "the day", within=sheet)
    program.press("Reveal in Finder", within=sheet)
    program.wait_for_call(f"file://{library.folders.root}/whale 1".replace(" ", "%20"))

    library.choose("paint v1")
    program.wait_for_texts(
        "Image Generation", "Fine-tune existing weights", "Loss curve saved", NO_SNAPSHOT, within=sheet
    )
    program.wait_until_gone("Neuron snapshot saved", within=sheet)
    library.choose("paint v2")
    program.wait_for_texts("Text + Image (Multimodal)", "Neuron snapshot saved", NO_SNAPSHOT, within=sheet)
    library.choose("weird v6")
    program.wait_for_texts("audio", "distill", NO_SNAPSHOT, "The saved loss curve holds no points.", within=sheet)
    library.choose("weird v5")
    program.wait_for_texts("Neuron snapshot saved", "archived snapshot", within=sheet)
    library.choose("weird v4")
    program.wait_for_texts("Loss curve saved", "Neuron snapshot saved", NO_SNAPSHOT, within=sheet)
    library.choose("weird v3")
    program.wait_for_texts("9223372036854775807 / 9223372036854775807", "1000000000000000.0000", within=sheet)
    program.wait_until_gone("Val loss", within=sheet)
    library.choose("types v0.0.0")
    program.wait_for_texts("0 / 0", "0.0000", "0 s", "0 tok/s", "No loss curve was saved for this run.", within=sheet)
    wait_until(lambda: not [text for text in library.detail() if text.startswith("by ")], library.detail)


def test_search(program, library):
    library.fill()
    library.open()
    library.desktop.type("WHALE")
    whales = [row for *_, row in RUNS if row.lower().startswith("whale")]
    wait_until(lambda: library.rows() == ["Whale", whales[0], "whale", *whales[1:]], library.rows)
    library.desktop.type(" 2")
    wait_until(lambda: library.rows() == ["whale", library.row("whale v1.1.0")], library.rows)
    library.desktop.key("ctrl+a", "BackSpace")
    library.desktop.type("Ada")
    program.wait_for_texts("No matching models", within=library.sheet)
    library.desktop.key("ctrl+a", "BackSpace")
    library.wait_for_rows(library.expected)
