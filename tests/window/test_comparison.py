"""A baseline and the comparison of two finished runs with it, on the real window."""

from library_sheet import choose_entry, is_baseline
from program import NAME
from waiting import wait_until

EXPLORATORY = "These runs use different model names or families — treat the comparison as exploratory."
DELTA_TITLE = "Activation delta (candidate − baseline)"


def test_the_baseline(program, library):
    library.fill()
    sheet = library.open()
    program.wait_until_gone("Comparing against", within=sheet)
    library.menu("whale v1.0.0", "Reveal in Finder")
    program.wait_for_call("whale%201")
    library.menu("whale v1.0.0", "Set as comparison baseline")
    program.wait_for_texts("Comparing against", "whale v1.0.0", "Clear", "Compare", within=sheet)
    library.wait_for_row(is_baseline, "whale v1.0.0")
    program.wait_until_disabled("Compare", within=sheet)
    library.choose("whale v1.1.0")
    program.wait_until_enabled("Compare", within=sheet)
    library.choose("whale v1.0.0")
    program.wait_until_disabled("Compare", within=sheet)
    program.press("Clear", within=sheet)
    program.wait_until_gone("Comparing against")
    library.wait_for_row(lambda row: not is_baseline(row), "whale v1.0.0")


def test_a_comparison(program, library):
    library.fill()
    library.open()
    comparison = library.compare("whale v1.0.0", "whale v1.1.0")
    program.wait_for_texts(
        *("Compare retrainings", "Back", "Baseline", "Candidate", "whale v1.0.0", "whale v1.1.0"),
        *("Loss change", "-0.2457", "Steps", "1,000 → 800 (-200)", "Training time", "1m3s", "Good", "Bad"),
        *("Loss curves", "Run", "Step", "Loss"),
        "Neuron pathway changes",
        *("More active", "Less active", "Similar"),
        DELTA_TITLE,
        *("Highly active", "Moderate", "Inactive"),
        within=comparison,
    )
    program.wait_until_gone(EXPLORATORY, within=comparison)
    # The pictures are further down, out of sight.
    delta = "Layer 0, cell 0, Δ 0.1000, More active"
    program.wait_for(delta, "table cell", hidden=True, within=comparison)

    # One selection in both pictures, each with its own values.
    name = "Layer 3, neuron 2 (dims 128–191): Highly active"
    program.press(name, "table cell", hidden=True, within=comparison)
    program.wait_for_texts("Selected neuron", "0.8125", "0.9125", within=comparison)
    library.back()

    # Another number of blocks; another family; then what has no snapshot.
    comparison = library.compare("whale v1.0.0", "whale v1.2.0")
    program.wait_for_texts("+0.0000", "1,000 → 1,000 (+0)", "+0s", within=comparison)
    program.wait_for_text(lambda text: "differ in shape" in text, "the reason", within=comparison)
    assert not any(text.startswith("Layer 4, cell") for text in program.texts(within=comparison, hidden=True))
    library.back()
    for baseline, candidate, message in [
        ("whale v1.0.0", "paint v1", "The candidate run has no neuron snapshot."),
        ("paint v1", "whale v1.0.0", "The baseline run has no neuron snapshot."),
        ("paint v1", "Whale v1.0.0", "Neither run has a saved neuron snapshot. Retrain to capture pathways."),
    ]:
        comparison = library.compare(baseline, candidate)
        program.wait_for_texts(EXPLORATORY, message, within=comparison)
        program.wait_until_gone(DELTA_TITLE, within=comparison)
        library.back()


def test_the_keyboard_alone(program, library, focus):
    """Opens, searches, chooses, marks the baseline, compares, selects a cell, goes back and closes."""
    library.fill()
    sheet = library.open()
    desktop = library.desktop

    def go_to(name):
        focus.go_to(name, lambda: desktop.key("Tab"))

    desktop.type("whale 1")
    wait_until(lambda: len(library.rows()) == 2 and library.row("whale v1.0.0"), library.rows)
    desktop.key("Down")
    program.wait_for_texts("1000 / 1200", within=sheet)
    choose_entry(program, focus, lambda: desktop.key("Menu"), "Set as comparison baseline")
    program.wait_for("Comparing against", within=sheet)
    desktop.key("ctrl+f")
    desktop.type("whale 2")
    wait_until(lambda: len(library.rows()) == 2 and library.row("whale v1.1.0"), library.rows)
    desktop.key("Down")
    program.wait_for_texts("800 / 1200", within=sheet)
    go_to("Compare")
    desktop.key("space")
    comparison = program.wait_for_window("Compare retrainings")
    go_to("Neuron activation heatmap")
    cell = focus.after(lambda: desktop.key("Right"))
    assert cell.name.startswith("Layer 0, neuron 1")
    desktop.key("space")
    program.wait_for("Selected neuron", within=comparison)
    desktop.key("space")
    program.wait_until_gone("Selected neuron")
    desktop.key("Escape")
    program.wait_for_window("Trained Models")
    desktop.key("Escape")
    program.wait_for_window(NAME)
