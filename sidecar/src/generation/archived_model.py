"""Loads an archived run and lets it continue a text."""

from __future__ import annotations

import json
from collections.abc import Iterator
from pathlib import Path

import mlx.core as mx
import numpy as np
from mlx.utils import tree_unflatten
from tokenizers import Tokenizer

from src.archive.huggingface import shape_from_config
from src.generation.sampling import draw
from src.models.llama import LlamaModel, weight_shapes

INCOMPLETE = "�"


class ArchiveError(Exception):
    """The folder is no run that can be loaded; the text says why."""


class ArchivedModel:
    def __init__(self, folder: Path) -> None:
        try:
            config = json.loads((folder / "config.json").read_text(encoding="utf-8"))
            shape = shape_from_config(config)
            self._tokenizer = Tokenizer.from_file(str(folder / "tokenizer.json"))
            weights = mx.load(str(folder / "model.safetensors"))
            self._begin, self._end = int(config["bos_token_id"]), int(config["eos_token_id"])
        except FileNotFoundError as error:
            raise ArchiveError(f"{folder} is no archived run: {Path(error.filename).name} is missing.") from error
        except Exception as error:  # The tokenizers library raises bare Exception.
            raise ArchiveError(f"{folder} cannot be loaded: {error}") from error
        expected = weight_shapes(shape)
        if {name: array.shape for name, array in weights.items()} != expected:
            raise ArchiveError(f"{folder} cannot be loaded: its weights do not fit its config.json.")
        self.shape = shape
        self._model = LlamaModel(shape)
        self._model.update(tree_unflatten(list(weights.items())))

    def logits(self, tokens: list[int]) -> np.ndarray:
        """Logits of every position: (length, vocabulary)."""
        result = self._model(mx.array([tokens]))[0]
        mx.eval(result)
        return np.array(result)

    def continue_text(
        self, prompt: str, count: int, temperature: float, top_p: float, random: np.random.Generator
    ) -> Iterator[str]:
        """Yields pieces of text as they come, at most `count` tokens, until the model ends the document."""
        tokens = [self._begin, *self._tokenizer.encode(prompt, add_special_tokens=False).ids]
        caches, fed = self._model.new_caches(), 0
        produced: list[int] = []
        shown = ""
        for _ in range(count):
            if caches[0].length + len(tokens) - fed > self.shape.context:
                # Positions beyond the context were never trained: go on from the newest half of it.
                tokens = tokens[-max(1, self.shape.context // 2) :]
                caches, fed = self._model.new_caches(), 0
            logits = self._model(mx.array([tokens[fed:]]), caches)[0, -1]
            mx.eval(logits, [(cache.keys, cache.values) for cache in caches])
            fed = len(tokens)
            token = draw(np.array(logits), temperature, top_p, random)
            if token == self._end:
                break
            tokens.append(token)
            produced.append(token)
            text = self._tokenizer.decode(produced)
            if not text.endswith(INCOMPLETE):
                yield text[len(shown) :]
                shown = text
                if "\n" in text[-1:]:
                    produced, shown = [], ""


def newest_run(library: Path) -> Path:
    """The run folder archived last; raises ArchiveError when there is none."""
    try:
        runs = [entry for entry in library.iterdir() if not entry.name.startswith(".") and _is_run(entry)]
    except OSError as error:
        raise ArchiveError(f"{library} cannot be read ({error.strerror}).") from error
    if not runs:
        raise ArchiveError(f"There is no archived run in {library}. Train a model first.")
    return max(runs, key=lambda entry: (_archived_at(entry), entry.name))


def _is_run(folder: Path) -> bool:
    return (folder / "manifest.json").is_file() and (folder / "model.safetensors").is_file()


def _archived_at(folder: Path) -> str:
    try:
        return str(json.loads((folder / "manifest.json").read_text(encoding="utf-8"))["archived_at"])
    except (OSError, ValueError, KeyError, TypeError):
        return ""
