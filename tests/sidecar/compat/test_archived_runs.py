"""An archived run loads as it stands in mlx_lm and in transformers, and means the same there as here.

Both live in environments of their own, which `setup` beside this file builds; ZOREL_COMPAT_ENVIRONMENTS names their
folder. One process per library probes every run, because importing the library is what takes the time.
"""

from __future__ import annotations

import json
import os
import subprocess
from pathlib import Path

import numpy as np
import pytest
from support.child import Library, Sidecar
from tokenizers import Tokenizer

from src.generation.archived_model import ArchivedModel

HERE = Path(__file__).resolve().parent
ENVIRONMENTS = "ZOREL_COMPAT_ENVIRONMENTS"
LIBRARIES = ("mlx_lm", "transformers")
PROBE_LIMIT_S = 300

CONTEXT = 64
NEW_TOKENS = 8
TEXTS = ("the ship sailed", "  Nobody\n\nspoke of home\tuntil 1850.", "grün – 灰色の空 🚢", "<|end_of_text|>", "")
GREATEST_DIFFERENCE = 1e-4
# A likeliest token may lose to one whose logit differs by less than two libraries do.
GENERATION_SLACK = 10 * GREATEST_DIFFERENCE

SHAPE = {
    "vocab_size": 320,
    "context": CONTEXT,
    "layers": 3,
    "hidden_size": 64,
    "heads": 4,
    "feed_forward_size": 96,
    "batch_size": 4,
    # Fast enough that every part of the model matters after a few steps.
    "learning_rate": 0.02,
    "warmup_steps": 0,
}
VARIANTS = {
    "tied": {},
    "untied": {"tie_embeddings": False},
    "grouped": {"key_value_heads": 2},
    "grouped-untied": {"key_value_heads": 1, "tie_embeddings": False},
}
STEPS = 25


@pytest.fixture(scope="module")
def runs(tmp_path_factory) -> dict[str, Path]:
    """One archived run per variant, trained through the line protocol."""
    archived = {}
    for variant, settings in VARIANTS.items():
        library = Library(tmp_path_factory.mktemp(variant)).fill(**SHAPE, **settings)
        with Sidecar(library) as child:
            archived[variant] = Path(child.train(STEPS)["path"])
            child.quit()
    return archived


@pytest.fixture(scope="module")
def request_tokens(runs) -> list[int]:
    return np.random.default_rng(1).integers(0, SHAPE["vocab_size"] - 20, CONTEXT - NEW_TOKENS).tolist()


@pytest.fixture(scope="module", params=LIBRARIES)
def answers(request, runs, request_tokens, tmp_path_factory) -> dict[str, dict]:
    """What a library says of every run, by variant."""
    work = tmp_path_factory.mktemp(request.param)
    asked = {"tokens": request_tokens, "texts": TEXTS, "new_tokens": NEW_TOKENS}
    (work / "request.json").write_text(json.dumps({str(folder): asked for folder in runs.values()}), encoding="utf-8")
    environment = {"PATH": os.environ["PATH"], "HOME": str(work), "HF_HUB_OFFLINE": "1", "LANG": "C.UTF-8"}
    command = [interpreter(request.param), HERE / f"probe_{request.param}.py", "request.json", "answer.json"]
    result = subprocess.run(
        command, cwd=work, env=environment, capture_output=True, text=True, timeout=PROBE_LIMIT_S, check=False
    )
    assert result.returncode == 0, f"{request.param} failed:\n{result.stdout}\n{result.stderr}"
    answer = json.loads((work / "answer.json").read_text(encoding="utf-8"))
    return {variant: answer[str(folder)] for variant, folder in runs.items()}


def interpreter(library: str) -> Path:
    folder = os.environ.get(ENVIRONMENTS, "")
    path = Path(folder) / library / "python"
    if not folder or not os.access(path, os.X_OK):
        pytest.fail(
            f"There is no interpreter with {library} at {path}. Run {HERE / 'setup'} FOLDER and set "
            f"{ENVIRONMENTS} to that folder.",
            pytrace=False,
        )
    return path


@pytest.mark.parametrize("variant", VARIANTS)
def test_logits_are_the_same(runs, request_tokens, answers, variant):
    own = ArchivedModel(runs[variant]).logits(request_tokens)
    assert own.max() - own.min() > 1
    assert np.abs(own - np.array(answers[variant]["logits"])).max() <= GREATEST_DIFFERENCE


@pytest.mark.parametrize("variant", VARIANTS)
def test_tokenizer_is_the_same(runs, answers, variant):
    tokenizer = Tokenizer.from_file(str(runs[variant] / "tokenizer.json"))
    own = [tokenizer.encode(text).ids for text in TEXTS]
    assert answers[variant]["encoded"] == own
    assert answers[variant]["decoded"] == [tokenizer.decode(ids, skip_special_tokens=False) for ids in own]
    assert answers[variant]["decoded"][1].endswith(TEXTS[1])


@pytest.mark.parametrize("variant", VARIANTS)
def test_greedy_generation_follows_our_own_logits(runs, request_tokens, answers, variant):
    generated = answers[variant]["generated"]
    end = json.loads((runs[variant] / "config.json").read_text(encoding="utf-8"))["eos_token_id"]
    assert len(generated) == NEW_TOKENS or end in generated
    logits = ArchivedModel(runs[variant]).logits(request_tokens + generated)
    for position, token in enumerate(generated, start=len(request_tokens) - 1):
        assert logits[position, token] >= logits[position].max() - GENERATION_SLACK
