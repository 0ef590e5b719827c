"""One contestant: `worker.py KIND SIZE WEIGHTS_FILE`, told over standard input how many steps to take.

Answers every number with a line of JSON: each step's seconds, the processor seconds of all threads, and the last loss.
Kinds: ours, ours-compiled, pytorch, pytorch-compiled.
"""

from __future__ import annotations

import json
import os
import sys
import time
from collections.abc import Callable
from pathlib import Path

import numpy as np
from sizes import BETAS, CLIP_NORM, EPSILON, RATE, SEED, SIZES, WEIGHT_DECAY, Size


def our_step(size: Size, weights_file: Path, compiled: bool) -> tuple[Callable[[np.ndarray], float], str]:
    sys.path.insert(0, str(Path(__file__).resolve().parents[2] / "sidecar"))
    from src.runtime.blas import prepare_blas

    blas = prepare_blas()
    from src.models.llama import LlamaShape
    from src.models.sizing import Plan
    from src.settings import DEFAULTS, TrainingSettings
    from src.training.learner import Learner

    chosen = {"seed": SEED, "clip_norm": CLIP_NORM, "beta1": BETAS[0], "beta2": BETAS[1], "weight_decay": WEIGHT_DECAY}
    shape = LlamaShape(
        vocab_size=size.vocabulary,
        hidden_size=size.width,
        layers=size.blocks,
        heads=size.heads,
        key_value_heads=size.heads,
        feed_forward_size=size.feed_forward,
        context=size.context,
    )
    learner = Learner(Plan(shape, size.batch, 1, RATE), TrainingSettings(DEFAULTS | chosen))
    if not weights_file.exists():
        with weights_file.open("wb") as file:
            np.savez(file, **{name: np.array(array) for name, array in learner.weights.items()})
    if compiled and (reason := learner.compile()):
        raise SystemExit(f"MLX cannot compile here: {reason}")
    return lambda tokens: learner.step(tokens, RATE).loss, blas


def pytorch_step(size: Size, weights_file: Path, compiled: bool) -> tuple[Callable[[np.ndarray], float], str]:
    import torch
    from pytorch_model import Model

    torch.set_num_threads(len(os.sched_getaffinity(0)) if hasattr(os, "sched_getaffinity") else os.cpu_count() or 1)
    model = Model(size)
    with np.load(weights_file) as weights:
        model.load_state_dict({name: torch.from_numpy(weights[name]) for name in weights})
    parameters = dict(model.named_parameters())
    kept = [
        parameter for name, parameter in parameters.items() if name.endswith(("norm.weight", "embed_tokens.weight"))
    ]
    decayed = [
        parameter for name, parameter in parameters.items() if not name.endswith(("norm.weight", "embed_tokens.weight"))
    ]
    groups = [{"params": decayed, "weight_decay": WEIGHT_DECAY}, {"params": kept, "weight_decay": 0.0}]
    optimizer = torch.optim.AdamW(groups, lr=RATE, betas=BETAS, eps=EPSILON, fused=True)
    loss_of = torch.compile(model) if compiled else model

    def step(tokens: np.ndarray) -> float:
        loss = loss_of(torch.from_numpy(tokens).long())
        loss.backward()
        torch.nn.utils.clip_grad_norm_(model.parameters(), CLIP_NORM)
        optimizer.step()
        optimizer.zero_grad(set_to_none=True)
        return loss.item()

    library = "MKL" if torch.backends.mkl.is_available() else "its own BLAS"
    return step, f"PyTorch {torch.__version__}, {library}, {torch.get_num_threads()} threads"


def main() -> None:
    kind, size = sys.argv[1], SIZES[sys.argv[2]]
    make = our_step if kind.startswith("ours") else pytorch_step
    step, description = make(size, Path(sys.argv[3]), kind.endswith("-compiled"))
    random = np.random.default_rng(SEED)
    answers = os.fdopen(os.dup(1), "w", encoding="utf-8")
    os.dup2(2, 1)
    print(json.dumps({"description": description}), file=answers, flush=True)
    for line in sys.stdin:
        seconds, processor = [], []
        for _ in range(int(line)):
            tokens = random.integers(0, size.vocabulary, (size.batch, size.context + 1)).astype(np.int32)
            begin, processor_begin = time.perf_counter(), time.process_time()
            loss = step(tokens)
            seconds.append(time.perf_counter() - begin)
            processor.append(time.process_time() - processor_begin)
        print(json.dumps({"seconds": seconds, "processor": processor, "loss": loss}), file=answers, flush=True)


main()
