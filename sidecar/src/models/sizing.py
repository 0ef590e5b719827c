"""Chooses a model and a batch that suit the amount of text and the machine."""

from __future__ import annotations

import os
from dataclasses import dataclass

import mlx.core as mx

from src.models.llama import LlamaShape
from src.settings import SettingsError, TrainingSettings

FALLBACK_MEMORY = 8 << 30
SMALLEST_BYTES_PER_PARAMETER = 4 * 4
BYTES_PER_PARAMETER = 4 * 5
ACTIVATIONS_PER_BLOCK = 24


@dataclass(frozen=True)
class Machine:
    accelerated: bool
    memory: int
    cores: int

    def describe(self) -> str:
        device = "GPU" if self.accelerated else f"CPU with {self.cores} cores"
        return f"{device}, {self.memory / (1 << 30):.0f} GiB of memory"


def this_machine() -> Machine:
    accelerated = mx.default_device() == mx.gpu
    try:
        memory = os.sysconf("SC_PAGE_SIZE") * os.sysconf("SC_PHYS_PAGES")
    except (ValueError, OSError):
        memory = FALLBACK_MEMORY
    return Machine(accelerated, memory, usable_cores())


def usable_cores() -> int:
    if hasattr(os, "sched_getaffinity"):
        return len(os.sched_getaffinity(0))
    return os.cpu_count() or 1


@dataclass(frozen=True)
class Plan:
    shape: LlamaShape
    batch: int
    accumulation: int
    learning_rate: float

    @property
    def tokens_per_step(self) -> int:
        return self.batch * self.accumulation * self.shape.context


# Hidden size, blocks, context, batch: the largest row whose training tokens and machine both allow it.
_GPU_SIZES = (
    (0, 256, 6, 256, 16),
    (8_000_000, 384, 8, 256, 16),
    (60_000_000, 512, 10, 512, 12),
    (400_000_000, 768, 12, 1024, 8),
    (4_000_000_000, 1024, 20, 1024, 8),
)
_CPU_SIZES = (
    (0, 128, 4, 128, 8),
    (150_000, 192, 4, 128, 12),
    (8_000_000, 256, 6, 128, 16),
    (60_000_000, 384, 6, 256, 8),
)
CORES_FOR_LARGE_CPU_MODELS = 8


def vocabulary_size(settings: TrainingSettings, corpus_bytes: int) -> int:
    """Large enough for whole words, small enough that every entry is seen often."""
    if settings["vocab_size"] is not None:
        return settings["vocab_size"]
    for limit, size in ((200_000, 1024), (1_000_000, 2048), (10_000_000, 4096), (200_000_000, 8192)):
        if corpus_bytes < limit:
            return size
    return 16_384


def choose_plan(settings: TrainingSettings, vocab_size: int, tokens: int, machine: Machine) -> Plan:
    """Fills in what the settings leave open; raises SettingsError where they contradict each other."""
    sizes = _GPU_SIZES if machine.accelerated else _CPU_SIZES
    if not machine.accelerated and machine.cores < CORES_FOR_LARGE_CPU_MODELS:
        sizes = sizes[:3]
    plan = _plan(settings, vocab_size, tokens, sizes[0])
    for size in sizes:
        candidate = _plan(settings, vocab_size, tokens, size)
        if tokens >= size[0] and memory_needed(candidate) <= machine.memory // 2:
            plan = candidate
    refuse_impossible(plan.shape, machine)
    return plan


def refuse_impossible(shape: LlamaShape, machine: Machine) -> None:
    """Raises SettingsError where weights, gradients and optimizer alone exceed the memory: MLX would not report
    that on every system but end the process."""
    parameters = shape.parameter_count()
    needed = SMALLEST_BYTES_PER_PARAMETER * parameters
    if needed > machine.memory:
        raise SettingsError(
            f"A model of {parameters:,} parameters needs at least {needed / (1 << 30):.0f} GiB to train, and this "
            f"machine has {machine.memory / (1 << 30):.0f} GiB. Lower “hidden_size”, “layers” or "
            "“feed_forward_size” in training.json."
        )


def memory_needed(plan: Plan) -> int:
    """A rough bound in bytes: weights, gradients, optimizer and one micro-batch's activations."""
    shape = plan.shape
    tokens = plan.batch * shape.context
    per_token = shape.layers * (ACTIVATIONS_PER_BLOCK * shape.hidden_size + shape.heads * shape.context)
    per_token += 4 * shape.vocab_size
    return BYTES_PER_PARAMETER * shape.parameter_count() + 4 * tokens * per_token


def _plan(settings: TrainingSettings, vocab_size: int, tokens: int, size: tuple) -> Plan:
    _, hidden, layers, context, batch = size
    hidden = settings["hidden_size"] or hidden
    heads = settings["heads"] or _heads_for(hidden)
    if hidden % heads or (hidden // heads) % 2:
        raise SettingsError(
            f"training.json: “hidden_size” ({hidden}) must be an even multiple of “heads” ({heads}), "
            "because every head needs an even number of channels."
        )
    key_value_heads = settings["key_value_heads"] or heads
    if heads % key_value_heads:
        raise SettingsError(
            f"training.json: “heads” ({heads}) must be a multiple of “key_value_heads” ({key_value_heads})."
        )
    context = settings["context"] or max(8, min(context, tokens // 4))
    shape = LlamaShape(
        vocab_size=vocab_size,
        hidden_size=hidden,
        layers=settings["layers"] or layers,
        heads=heads,
        key_value_heads=key_value_heads,
        feed_forward_size=settings["feed_forward_size"] or _rounded(hidden * 8 // 3, 64),
        context=context,
        tie_embeddings=settings["tie_embeddings"],
    )
    rate = settings["learning_rate"] or min(3e-3, 3e-3 * (192 / hidden) ** 0.75)
    return Plan(shape, settings["batch_size"] or batch, settings["accumulation"], rate)


def _heads_for(hidden: int) -> int:
    for size in (64, 48, 32, 16, 8, 4, 2):
        if hidden % size == 0 and hidden >= 2 * size:
            return hidden // size
    return 1


def _rounded(value: int, multiple: int) -> int:
    return -(-value // multiple) * multiple
