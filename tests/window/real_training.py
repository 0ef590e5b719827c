"""A tiny model, trained by the scripts of the bundle."""

import json
import sys

from waiting import wait_until

PATIENCE = 300  # seconds: the whole machine may be busy, and MLX is imported first
TINY = {
    "layers": 2,
    "hidden_size": 16,
    "heads": 2,
    "context": 16,
    "batch_size": 2,
    "vocab_size": 300,
    "neurons_per_layer": 8,
    "snapshot_interval": 5,
    "evaluation_interval": 20,
    "evaluation_batches": 1,
}


def start_trainer(program):
    """The program as a user has it: its own scripts, an interpreter with MLX below the home folder, some texts."""
    program.environment["ZOREL_SCRIPTS_ROOT"] = ""
    program.use_interpreter(sys.executable)
    corpus = program.library / "Training Data" / "Rhymes"
    corpus.mkdir(parents=True)
    for number in range(20):
        lines = [f"Verse {number} has {count} lines, and line {count} ends here." for count in range(40)]
        (corpus / f"{number}.txt").write_text("\n".join(lines))
    model = program.home / "Library" / "Application Support" / "Zorel" / "Model"
    model.mkdir(parents=True)
    (model / "training.json").write_text(json.dumps(TINY))
    program.model = model
    program.start()
    wait_until(lambda: program.find("Begin training"), program.texts, PATIENCE)
    return program
