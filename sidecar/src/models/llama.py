"""A small Llama-shaped causal language model whose weight names are Hugging Face's."""

from __future__ import annotations

import math
from dataclasses import asdict, dataclass

import mlx.core as mx
import mlx.nn as nn
from mlx.utils import tree_flatten

from src.runtime.operations import causal_attention, gated_silu

INITIAL_DEVIATION = 0.02


@dataclass(frozen=True)
class LlamaShape:
    """Everything that fixes the weights' shapes; stored in checkpoints and in `config.json`."""

    vocab_size: int
    hidden_size: int
    layers: int
    heads: int
    key_value_heads: int
    feed_forward_size: int
    context: int
    tie_embeddings: bool = True
    rope_base: float = 10000.0
    norm_epsilon: float = 1e-5

    @property
    def head_size(self) -> int:
        return self.hidden_size // self.heads

    def parameter_count(self) -> int:
        attention = self.hidden_size * self.head_size * (2 * self.heads + 2 * self.key_value_heads)
        feed_forward = 3 * self.hidden_size * self.feed_forward_size
        embeddings = self.vocab_size * self.hidden_size * (1 if self.tie_embeddings else 2)
        return self.layers * (attention + feed_forward + 2 * self.hidden_size) + embeddings + self.hidden_size

    def as_dict(self) -> dict:
        return asdict(self)


class Cache:
    """Keys and values of the tokens a block has already seen, for generation."""

    def __init__(self) -> None:
        self.keys: mx.array | None = None
        self.values: mx.array | None = None

    @property
    def length(self) -> int:
        return 0 if self.keys is None else self.keys.shape[2]

    def extend(self, keys: mx.array, values: mx.array) -> tuple[mx.array, mx.array]:
        if self.keys is not None:
            keys = mx.concatenate([self.keys, keys], axis=2)
            values = mx.concatenate([self.values, values], axis=2)
        self.keys, self.values = keys, values
        return keys, values


class Attention(nn.Module):
    def __init__(self, shape: LlamaShape) -> None:
        super().__init__()
        self.heads = shape.heads
        self.key_value_heads = shape.key_value_heads
        self.scale = 1.0 / math.sqrt(shape.head_size)
        key_value_size = shape.key_value_heads * shape.head_size
        self.q_proj = nn.Linear(shape.hidden_size, shape.hidden_size, bias=False)
        self.k_proj = nn.Linear(shape.hidden_size, key_value_size, bias=False)
        self.v_proj = nn.Linear(shape.hidden_size, key_value_size, bias=False)
        self.o_proj = nn.Linear(shape.hidden_size, shape.hidden_size, bias=False)
        self.rope = nn.RoPE(shape.head_size, traditional=False, base=shape.rope_base)

    def __call__(self, hidden: mx.array, cache: Cache | None) -> mx.array:
        batch, length, width = hidden.shape
        queries = self._split(self.q_proj(hidden), self.heads)
        keys = self._split(self.k_proj(hidden), self.key_value_heads)
        values = self._split(self.v_proj(hidden), self.key_value_heads)
        offset = cache.length if cache is not None else 0
        queries = self.rope(queries, offset=offset)
        keys = self.rope(keys, offset=offset)
        if cache is not None:
            keys, values = cache.extend(keys, values)
        attended = causal_attention(queries, keys, values, self.scale)
        return self.o_proj(attended.transpose(0, 2, 1, 3).reshape(batch, length, width))

    @staticmethod
    def _split(projected: mx.array, heads: int) -> mx.array:
        batch, length, _ = projected.shape
        return projected.reshape(batch, length, heads, -1).transpose(0, 2, 1, 3)


class FeedForward(nn.Module):
    def __init__(self, shape: LlamaShape) -> None:
        super().__init__()
        self.gate_proj = nn.Linear(shape.hidden_size, shape.feed_forward_size, bias=False)
        self.up_proj = nn.Linear(shape.hidden_size, shape.feed_forward_size, bias=False)
        self.down_proj = nn.Linear(shape.feed_forward_size, shape.hidden_size, bias=False)

    def __call__(self, hidden: mx.array) -> mx.array:
        return self.down_proj(gated_silu(self.gate_proj(hidden), self.up_proj(hidden)))


class Block(nn.Module):
    def __init__(self, shape: LlamaShape) -> None:
        super().__init__()
        self.self_attn = Attention(shape)
        self.mlp = FeedForward(shape)
        self.input_layernorm = nn.RMSNorm(shape.hidden_size, eps=shape.norm_epsilon)
        self.post_attention_layernorm = nn.RMSNorm(shape.hidden_size, eps=shape.norm_epsilon)

    def __call__(self, hidden: mx.array, cache: Cache | None) -> mx.array:
        hidden = hidden + self.self_attn(self.input_layernorm(hidden), cache)
        return hidden + self.mlp(self.post_attention_layernorm(hidden))


class Decoder(nn.Module):
    def __init__(self, shape: LlamaShape) -> None:
        super().__init__()
        self.embed_tokens = nn.Embedding(shape.vocab_size, shape.hidden_size)
        self.layers = [Block(shape) for _ in range(shape.layers)]
        self.norm = nn.RMSNorm(shape.hidden_size, eps=shape.norm_epsilon)

    def __call__(self, tokens: mx.array, caches: list[Cache] | None, collect: list | None) -> mx.array:
        hidden = self.embed_tokens(tokens)
        for index, block in enumerate(self.layers):
            hidden = block(hidden, caches[index] if caches is not None else None)
            if collect is not None:
                collect.append(hidden)
        return self.norm(hidden)


class LlamaModel(nn.Module):
    def __init__(self, shape: LlamaShape) -> None:
        super().__init__()
        self.shape = shape
        self.model = Decoder(shape)
        if not shape.tie_embeddings:
            self.lm_head = nn.Linear(shape.hidden_size, shape.vocab_size, bias=False)

    def __call__(self, tokens: mx.array, caches: list[Cache] | None = None, collect: list | None = None) -> mx.array:
        """Logits of shape (batch, length, vocabulary); `collect` receives every block's output."""
        hidden = self.model(tokens, caches, collect)
        if self.shape.tie_embeddings:
            return self.model.embed_tokens.as_linear(hidden)
        return self.lm_head(hidden)

    def new_caches(self) -> list[Cache]:
        return [Cache() for _ in range(self.shape.layers)]


def initial_weights(shape: LlamaShape, seed: int) -> dict[str, mx.array]:
    """Normal weights; projections into the residual stream shrink with depth, so that its variance stays level."""
    names = weight_shapes(shape)
    keys = mx.random.split(mx.random.key(seed), len(names))
    residual = INITIAL_DEVIATION / math.sqrt(2 * shape.layers)
    weights = {}
    for (name, dimensions), key in zip(sorted(names.items()), keys):
        if len(dimensions) == 1:
            weights[name] = mx.ones(dimensions)
            continue
        deviation = residual if name.endswith(("o_proj.weight", "down_proj.weight")) else INITIAL_DEVIATION
        weights[name] = mx.random.normal(dimensions, scale=deviation, key=key)
    return weights


def weight_shapes(shape: LlamaShape) -> dict[str, tuple[int, ...]]:
    """The weights' names and shapes, without allocating any."""
    return {name: array.shape for name, array in tree_flatten(LlamaModel(shape).parameters())}
