"""The README.md of an archived run."""

from __future__ import annotations

import json

_CARD = """---
license: {license_tag}
library_name: mlx
pipeline_tag: text-generation
tags: [llama, mlx]
---

# {title}

{description}

| | |
|---|---|
| Version | {version} |
| Author | {author} |
| License | {license} |
| Archived | {archived_at} |
| Parameters | {parameters:,} |
| Blocks × width × heads | {layers} × {width} × {heads} |
| Context | {context} tokens |
| Vocabulary | {vocabulary:,} entries |
| Training steps | {step:,} of {max_steps:,} |
| Tokens seen | {tokens_seen:,} |
| Final training loss | {final_loss} |
| Validation loss | {val_loss} |
| Loss of a model without context | {unigram} |
| Training time | {elapsed} |

Losses are in nats per token.

## Training data

{dataset}

## Use

With the training scripts, from their folder (the one that holds `generate`):

```
./generate "/path/to/this folder" --prompt "Once upon a time"
```

With MLX LM, from this folder:

```
python3 -m mlx_lm generate --model . --prompt "Once upon a time" --ignore-chat-template
```

With Transformers:

```python
from transformers import AutoModelForCausalLM, AutoTokenizer

tokenizer = AutoTokenizer.from_pretrained("/path/to/this folder")
model = AutoModelForCausalLM.from_pretrained("/path/to/this folder")
inputs = tokenizer("Once upon a time", return_tensors="pt", return_token_type_ids=False)
print(tokenizer.decode(model.generate(**inputs, max_new_tokens=100)[0]))
```

The model continues text; it was not trained to answer questions or to follow instructions.
"""


def model_card(manifest: dict) -> str:
    identity = manifest["model_identity"]
    model = manifest["model"]
    dataset = manifest["dataset"]
    license_name = _line(identity.get("license"), "not stated")
    validation = manifest.get("val_loss")
    return _CARD.format(
        license_tag=json.dumps(license_name.lower() if "license" in identity else "other"),
        title=_line(identity.get("name"), "Untitled model"),
        description=identity.get("description") or "A language model trained from scratch.",
        version=_cell(identity.get("version"), "not stated"),
        author=_cell(identity.get("author"), "not stated"),
        license=_cell(license_name, ""),
        archived_at=manifest["archived_at"],
        parameters=manifest["parameters"],
        layers=model["layers"],
        width=model["hidden_size"],
        heads=model["heads"],
        context=model["context"],
        vocabulary=model["vocab_size"],
        step=manifest["step"],
        max_steps=manifest["max_steps"],
        tokens_seen=manifest["tokens_seen"],
        final_loss=f"{manifest['final_loss']:.4f}",
        val_loss="not measured" if validation is None else f"{validation:.4f}",
        unigram=f"{dataset['unigram_loss']:.4f}",
        elapsed=_duration(manifest["elapsed_seconds"]),
        dataset=_dataset(dataset),
    )


def _dataset(dataset: dict) -> str:
    names = "\n".join(f"- {_line(name, '?')}" for name in dataset["corpora"])
    return (
        f"{dataset['documents']:,} documents, {dataset['bytes']:,} bytes of text, {dataset['train_tokens']:,} tokens "
        f"for training and {dataset['validation_tokens']:,} for validation, from:\n\n{names}"
    )


def _duration(seconds: float) -> str:
    whole = int(seconds)
    if whole >= 3600:
        return f"{whole // 3600} h {whole % 3600 // 60:02d} min"
    return f"{whole // 60} min {whole % 60:02d} s" if whole >= 60 else f"{whole} s"


def _line(text: str | None, default: str) -> str:
    return " ".join((text or "").split()) or default


def _cell(text: str | None, default: str) -> str:
    return _line(text, default).replace("|", "\\|")
