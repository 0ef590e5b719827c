"""Runs under an interpreter with transformers: `probe_transformers.py REQUEST ANSWER`, see test_archived_runs.py."""

import json
import sys

import torch
from transformers import AutoModelForCausalLM, AutoTokenizer


def probe(folder: str, request: dict) -> dict:
    model = AutoModelForCausalLM.from_pretrained(folder).eval()
    assert model.dtype == torch.float32
    tokenizer = AutoTokenizer.from_pretrained(folder)
    tokens = torch.tensor([request["tokens"]])
    with torch.no_grad():
        logits = model(tokens).logits[0]
        generated = model.generate(
            tokens,
            attention_mask=torch.ones_like(tokens),
            max_new_tokens=request["new_tokens"],
            do_sample=False,
            # Left open, transformers imports sharded training to find out, and Debian's PyTorch cannot.
            synced_gpus=False,
        )
    encoded = [tokenizer(text)["input_ids"] for text in request["texts"]]
    return {
        "logits": logits.tolist(),
        "encoded": encoded,
        "decoded": [tokenizer.decode(ids) for ids in encoded],
        "generated": generated[0, tokens.shape[1] :].tolist(),
    }


def main() -> None:
    with open(sys.argv[1], encoding="utf-8") as file:
        requests = json.load(file)
    with open(sys.argv[2], "w", encoding="utf-8") as file:
        json.dump({folder: probe(folder, request) for folder, request in requests.items()}, file)


main()
