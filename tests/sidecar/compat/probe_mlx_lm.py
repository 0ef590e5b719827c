"""Runs under an interpreter with mlx_lm: `probe_mlx_lm.py REQUEST ANSWER`, see test_archived_runs.py."""

import json
import sys

import mlx.core as mx
from mlx_lm import load, stream_generate


def probe(folder: str, request: dict) -> dict:
    model, tokenizer = load(folder)
    logits = model(mx.array([request["tokens"]]))[0].astype(mx.float32)
    encoded = [tokenizer.encode(text) for text in request["texts"]]
    stream = stream_generate(model, tokenizer, request["tokens"], max_tokens=request["new_tokens"])
    return {
        "logits": logits.tolist(),
        "encoded": encoded,
        "decoded": [tokenizer.decode(ids) for ids in encoded],
        "generated": [response.token for response in stream],
    }


def main() -> None:
    with open(sys.argv[1], encoding="utf-8") as file:
        requests = json.load(file)
    with open(sys.argv[2], "w", encoding="utf-8") as file:
        json.dump({folder: probe(folder, request) for folder, request in requests.items()}, file)


main()
