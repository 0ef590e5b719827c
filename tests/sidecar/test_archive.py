"""What lies in an archived run, and what `generate` makes of it."""

from __future__ import annotations

import json
import os
import re
import subprocess
import sys
from datetime import datetime, timezone

import mlx.core as mx
import numpy as np
import pytest
from support.child import SCRIPTS_ROOT, Library, Sidecar

from src.archive.run_archive import utc_text
from src.generation.archived_model import ArchivedModel
from src.generation.sampling import draw

IDENTITY = {
    "name": "Sea | talk",
    "version": "2.1.0",
    "author": "Ada",
    "description": "About ships.\nTwo lines, “quoted”.",
    "license": "MIT",
}


@pytest.fixture(scope="module")
def archived(tmp_path_factory):
    library = Library(tmp_path_factory.mktemp("library")).fill()
    with Sidecar(library) as child:
        child.train(30, model_identity=IDENTITY)
        snapshots = [event for event in child.events if event["event"] == "neurons"]
        child.train(4)
    first, second = library.runs()
    return library, first, second, snapshots


def read(run, name):
    return json.loads((run / name).read_text(encoding="utf-8"))


def test_the_folder_holds_exactly_the_documented_files(archived):
    _, run, second, _ = archived
    assert sorted(os.listdir(run)) == [
        "ModelInfo.json",
        "README.md",
        "config.json",
        "generation_config.json",
        "loss_curve.jsonl",
        "manifest.json",
        "model.safetensors",
        "neuron_snapshot.json",
        "tokenizer.json",
        "tokenizer_config.json",
    ]
    assert all(re.fullmatch(r"\d{4}-\d\d-\d\d_\d\d-\d\d-\d\d(-\d+)?", folder.name) for folder in (run, second))


def test_the_manifest_has_every_key_in_its_type(archived):
    _, run, _, _ = archived
    manifest = read(run, "manifest.json")
    types = {
        "model_identity": dict,
        "archived_at": str,
        "step": int,
        "max_steps": int,
        "final_loss": float,
        "val_loss": float,
        "elapsed_seconds": float,
        "tokens_per_sec": float,
        "model_family": str,
        "training_capability": str,
        "parameters": int,
        "tokens_seen": int,
        "dataset": dict,
    }
    assert {key: type(manifest[key]) for key in types} == types
    assert manifest["model_identity"] == IDENTITY
    assert re.fullmatch(r"\d{4}-\d\d-\d\dT\d\d:\d\d:\d\d\.\d{3}Z", manifest["archived_at"])
    assert (manifest["step"], manifest["max_steps"]) == (30, 30)
    assert (manifest["model_family"], manifest["training_capability"]) == (
        "text_language",
        "pretrain",
    )
    assert manifest["tokens_seen"] == 30 * 2 * 16
    with (run / "model.safetensors").open("rb") as file:
        header = json.loads(file.read(int.from_bytes(file.read(8), "little")))
    assert header.pop("__metadata__") == {"format": "pt"}
    assert manifest["parameters"] == sum(int(np.prod(entry["shape"])) for entry in header.values())


def test_identity_stands_in_model_info_and_in_the_card(archived):
    _, run, second, _ = archived
    info = read(run, "ModelInfo.json")
    assert {key: info[key] for key in IDENTITY} == IDENTITY
    card = (run / "README.md").read_text(encoding="utf-8")
    assert "# Sea | talk" in card
    assert "About ships." in card
    assert read(second, "ModelInfo.json")["name"] == "Sea | talk"


def test_snapshots_have_the_shape_of_the_wire(archived):
    _, run, _, snapshots = archived
    stored = read(run, "neuron_snapshot.json")
    assert {"event": "neurons"} | stored == snapshots[-1]
    assert stored["final"] is True
    assert {snapshot["final"] for snapshot in snapshots[:-1]} == {False}
    assert (
        stored["step"],
        stored["n_layers"],
        stored["neurons_per_layer"],
        stored["hidden_dim"],
    ) == (30, 2, 4, 16)
    assert [layer["layer"] for layer in stored["layers"]] == [0, 1]
    for layer in stored["layers"]:
        assert [(n["index"], n["dim_start"], n["dim_end"]) for n in layer["neurons"]] == [
            (0, 0, 3),
            (1, 4, 7),
            (2, 8, 11),
            (3, 12, 15),
        ]
        assert {n["tier"] for n in layer["neurons"]} <= {"inactive", "moderate", "high"}
        assert all(n["activation"] > 0 for n in layer["neurons"])


def test_config_names_the_architecture_and_the_rope_base_twice(archived):
    config = read(archived[1], "config.json")
    assert config["architectures"] == ["LlamaForCausalLM"]
    assert config["tie_word_embeddings"] is True
    assert config["rope_theta"] == config["rope_parameters"]["rope_theta"] == 10000.0
    assert read(archived[1], "tokenizer_config.json")["tokenizer_class"] == "PreTrainedTokenizerFast"


def test_the_cache_of_keys_and_values_gives_the_logits_of_the_whole_text(archived):
    model = ArchivedModel(archived[1])
    tokens = [1, 20, 30, 40, 50, 60]
    whole = model.logits(tokens)
    caches = model._model.new_caches()
    parts = [model._model(mx.array([part]), caches)[0] for part in ([1, 20, 30], [40], [50, 60])]
    assert np.abs(np.array(mx.concatenate(parts)) - whole).max() < 1e-5


def generate(library, *arguments, **environment):
    return subprocess.run(
        [sys.executable, str(SCRIPTS_ROOT / "generate"), *arguments],
        env=os.environ | library.environment() | {"HOME": str(library.root)} | environment,
        capture_output=True,
        text=True,
        check=False,
        timeout=120,
    )


def test_generate_continues_the_prompt_and_repeats_itself_with_a_seed(archived):
    library, run, _, _ = archived
    options = ("--prompt", "the ship", "--tokens", "60", "--seed", "3")
    first, second = (
        generate(library, str(run), *options),
        generate(library, str(run), *options),
    )
    assert first.returncode == 0, first.stderr
    assert first.stdout.startswith("the ship")
    assert len(first.stdout) > len("the ship\n")
    assert first.stdout == second.stdout


def test_generate_takes_the_newest_run_by_itself(archived):
    library, _, second, _ = archived
    options = ("--temperature", "0", "--tokens", "20")
    assert generate(library, *options).stdout == generate(library, str(second), *options).stdout


def test_generate_explains_what_it_cannot_do(archived, tmp_path):
    library, run, _, _ = archived
    empty = Library(tmp_path)
    empty.finished.mkdir()
    assert "Train a model first" in generate(empty).stderr
    assert "no archived run" in generate(library, str(tmp_path)).stderr
    wrong = generate(library, str(run), "--temperature", "hot")
    assert wrong.returncode == 2
    assert "Traceback" not in wrong.stderr


def test_drawing_keeps_to_the_likely_tokens():
    logits = np.log(np.array([0.5, 0.3, 0.15, 0.05], dtype=np.float32))
    chance = np.random.default_rng(1)
    assert draw(logits, 0, 1.0, chance) == 0
    assert {draw(logits, 1.0, 0.8, chance) for _ in range(200)} == {0, 1}
    assert {draw(logits, 1.0, 1.0, chance) for _ in range(400)} == {0, 1, 2, 3}


def test_a_moment_is_written_in_utc_with_fractions():
    assert utc_text(datetime(2025, 3, 14, 9, 26, 53, 589_000, timezone.utc)) == "2025-03-14T09:26:53.589Z"
