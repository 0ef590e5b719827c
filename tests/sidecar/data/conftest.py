"""Corpora on disk, and preparations in this process or in the worker's."""

import sys
from dataclasses import dataclass
from pathlib import Path

import pytest

SCRIPTS_ROOT = Path(__file__).resolve().parents[3] / "sidecar"
sys.path.insert(0, str(SCRIPTS_ROOT))

from src.data import pipeline  # noqa: E402


@dataclass
class Prepared:
    result: pipeline.Result
    warnings: list[str]
    progress: list[tuple[float, str]]

    def tokens(self, name: str):
        from src.data.tokenizer import token_type

        path = Path(self.result.tokens_folder) / f"{name}.bin"
        return pipeline.map_tokens(path, token_type(self.result.vocab_size))

    def tokenizer(self):
        from tokenizers import Tokenizer

        return Tokenizer.from_file(self.result.tokenizer_folder + "/tokenizer.json")

    def text(self) -> str:
        ids = [*self.tokens("train"), *self.tokens("validation")]
        return self.tokenizer().decode(ids, skip_special_tokens=True)


@pytest.fixture
def data_root(tmp_path):
    folder = tmp_path / "Training Data"
    folder.mkdir()
    return folder


@pytest.fixture
def cache_root(tmp_path):
    return tmp_path / "Model" / "cache"


@pytest.fixture
def write(data_root):
    def write_file(name: str, content: str | bytes) -> Path:
        path = data_root / name
        path.parent.mkdir(parents=True, exist_ok=True)
        path.write_bytes(content.encode() if isinstance(content, str) else content)
        return path

    return write_file


@pytest.fixture
def prepare(data_root, cache_root):
    """Prepares in this process and returns what came out and was said."""

    def run(**settings) -> Prepared:
        settings = {"vocab_size": 400, "validation_fraction": 0.1, "seed": 7, **settings}
        root = settings.pop("data_root", data_root)
        warnings, progress = [], []
        request = pipeline.Request(
            data_root=str(root),
            cache_root=str(cache_root),
            temporary=str(cache_root / "temporary" / "test"),
            **settings,
        )
        preparation = pipeline.Preparation(request, lambda *step: progress.append(step), warnings.append)
        return Prepared(preparation.run(), warnings, progress)

    return run
