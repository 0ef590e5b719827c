"""The sidecar's model in PyTorch, with the same weight names, so that both start from the same weights."""

from __future__ import annotations

import torch
from sizes import Size
from torch import nn
from torch.nn import functional

ROPE_BASE = 10000.0
NORM_EPSILON = 1e-5


class Attention(nn.Module):
    def __init__(self, size: Size) -> None:
        super().__init__()
        self.heads = size.heads
        self.q_proj = nn.Linear(size.width, size.width, bias=False)
        self.k_proj = nn.Linear(size.width, size.width, bias=False)
        self.v_proj = nn.Linear(size.width, size.width, bias=False)
        self.o_proj = nn.Linear(size.width, size.width, bias=False)

    def forward(self, hidden, cosines, sines):
        batch, length, width = hidden.shape
        queries, keys, values = (
            projection(hidden).view(batch, length, self.heads, -1).transpose(1, 2)
            for projection in (self.q_proj, self.k_proj, self.v_proj)
        )
        queries, keys = (rotated(array, cosines, sines) for array in (queries, keys))
        attended = functional.scaled_dot_product_attention(queries, keys, values, is_causal=True)
        return self.o_proj(attended.transpose(1, 2).reshape(batch, length, width))


class FeedForward(nn.Module):
    def __init__(self, size: Size) -> None:
        super().__init__()
        self.gate_proj = nn.Linear(size.width, size.feed_forward, bias=False)
        self.up_proj = nn.Linear(size.width, size.feed_forward, bias=False)
        self.down_proj = nn.Linear(size.feed_forward, size.width, bias=False)

    def forward(self, hidden):
        return self.down_proj(functional.silu(self.gate_proj(hidden)) * self.up_proj(hidden))


class Block(nn.Module):
    def __init__(self, size: Size) -> None:
        super().__init__()
        self.self_attn = Attention(size)
        self.mlp = FeedForward(size)
        self.input_layernorm = nn.RMSNorm(size.width, eps=NORM_EPSILON)
        self.post_attention_layernorm = nn.RMSNorm(size.width, eps=NORM_EPSILON)

    def forward(self, hidden, cosines, sines):
        hidden = hidden + self.self_attn(self.input_layernorm(hidden), cosines, sines)
        return hidden + self.mlp(self.post_attention_layernorm(hidden))


class Decoder(nn.Module):
    def __init__(self, size: Size) -> None:
        super().__init__()
        self.embed_tokens = nn.Embedding(size.vocabulary, size.width)
        self.layers = nn.ModuleList(Block(size) for _ in range(size.blocks))
        self.norm = nn.RMSNorm(size.width, eps=NORM_EPSILON)


class Model(nn.Module):
    """From tokens (batch, context + 1) to the mean cross entropy, with tied embeddings."""

    def __init__(self, size: Size) -> None:
        super().__init__()
        self.model = Decoder(size)
        channels = size.width // size.heads
        frequencies = ROPE_BASE ** (-torch.arange(0, channels, 2) / channels)
        angles = torch.arange(size.context)[:, None] * frequencies
        self.register_buffer("cosines", torch.cos(angles), persistent=False)
        self.register_buffer("sines", torch.sin(angles), persistent=False)

    def forward(self, tokens):
        embeddings = self.model.embed_tokens
        hidden = embeddings(tokens[:, :-1])
        for block in self.model.layers:
            hidden = block(hidden, self.cosines, self.sines)
        logits = functional.linear(self.model.norm(hidden), embeddings.weight)
        return functional.cross_entropy(logits.flatten(0, 1), tokens[:, 1:].flatten())


def rotated(array, cosines, sines):
    first, second = array.chunk(2, dim=-1)
    return torch.cat([first * cosines - second * sines, second * cosines + first * sines], dim=-1)
