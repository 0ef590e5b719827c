"""The numerical heart of a run: gradients, AdamW, validation loss and activations, all as pure functions of arrays."""

from __future__ import annotations

import math
from dataclasses import dataclass

import mlx.core as mx
import numpy as np
from mlx.utils import tree_unflatten

from src.models.llama import LlamaModel, initial_weights
from src.models.sizing import Plan
from src.runtime.lanes import open_lanes
from src.runtime.operations import token_loss
from src.settings import TrainingSettings

EPSILON = 1e-8
Weights = dict[str, mx.array]


@dataclass(frozen=True)
class StepResult:
    loss: float
    gradient_norm: float

    @property
    def finite(self) -> bool:
        return math.isfinite(self.loss) and math.isfinite(self.gradient_norm)


class Learner:
    """Weights and optimizer state, changed only by a step whose loss and gradients were finite.

    `updates` counts the updates taken, which Adam's bias correction needs; skipped steps do not count.
    Everything runs on the calling thread, which must be the main one.
    """

    def __init__(self, plan: Plan, settings: TrainingSettings) -> None:
        self.plan = plan
        self.weights = initial_weights(plan.shape, settings["seed"])
        self.first_moments = {name: mx.zeros_like(array) for name, array in self.weights.items()}
        self.second_moments = {name: mx.zeros_like(array) for name, array in self.weights.items()}
        self.updates = 0
        self._settings = settings
        self._model = LlamaModel(plan.shape)
        self._lanes = open_lanes(plan.batch)
        # One function a lane: what is compiled keeps the stream that it was compiled on.
        self._gradients = [mx.value_and_grad(self._loss) for _ in self._lanes]
        self._evaluate = [self._loss for _ in self._lanes]
        self._update = self._adamw
        mx.eval(self.weights, self.first_moments, self.second_moments)

    def compile(self) -> str | None:
        """Fuses the small operations where MLX can; returns why it cannot, or None.

        On a CPU, MLX compiles with the system's C++ compiler at run time, which a user need not have.
        """
        try:
            probe = mx.compile(lambda x: mx.exp(x) * x + 1.0)(mx.ones((4,)))
            mx.eval(probe)
        except (RuntimeError, OSError) as error:
            return str(error).strip().splitlines()[0] if str(error).strip() else type(error).__name__
        self._gradients = [mx.compile(mx.value_and_grad(self._loss)) for _ in self._lanes]
        self._evaluate = [mx.compile(self._loss) for _ in self._lanes]
        self._update = mx.compile(self._adamw)
        return None

    def step(self, tokens: np.ndarray, rate: float) -> StepResult:
        """One update from `batch * accumulation` windows; leaves everything as it was if the result is not finite."""
        loss, gradients = self._accumulated(tokens)
        norm = mx.sqrt(sum(mx.sum(mx.square(gradient)) for gradient in gradients.values()))
        mx.eval(loss, norm, gradients)
        result = StepResult(float(loss.item()), float(norm.item()))
        if result.finite:
            self._apply(gradients, result.gradient_norm, rate)
        return result

    def validation_loss(self, batches: list[np.ndarray]) -> float:
        total = 0.0
        for first in range(0, len(batches), len(self._lanes)):
            losses = []
            for lane, evaluate, batch in zip(self._lanes, self._evaluate, batches[first:]):
                with mx.stream(lane):
                    losses.append(evaluate(self.weights, mx.array(batch)))
            mx.eval(losses)
            total += sum(float(loss.item()) for loss in losses)
        return total / len(batches)

    def activations(self, tokens: np.ndarray) -> np.ndarray:
        """Mean absolute output per block and channel, averaged over a batch: (blocks, channels)."""
        collected: list[mx.array] = []
        self._bind(self.weights).model(mx.array(tokens[:, :-1]), None, collected)
        means = mx.stack([mx.mean(mx.abs(hidden), axis=(0, 1)) for hidden in collected])
        mx.eval(means)
        return np.array(means)

    def optimizer_arrays(self) -> Weights:
        first = {f"first.{name}": array for name, array in self.first_moments.items()}
        return first | {f"second.{name}": array for name, array in self.second_moments.items()}

    def restore(self, weights: Weights, optimizer: Weights, updates: int) -> None:
        self.weights = {name: weights[name] for name in self.weights}
        self.first_moments = {name: optimizer[f"first.{name}"] for name in self.weights}
        self.second_moments = {name: optimizer[f"second.{name}"] for name in self.weights}
        self.updates = updates
        mx.eval(self.weights, self.first_moments, self.second_moments)

    def _bind(self, weights: Weights) -> LlamaModel:
        self._model.update(tree_unflatten(list(weights.items())))
        return self._model

    def _loss(self, weights: Weights, tokens: mx.array) -> mx.array:
        logits = self._bind(weights)(tokens[:, :-1])
        return mx.mean(token_loss(logits, tokens[:, 1:]))

    def _accumulated(self, tokens: np.ndarray) -> tuple[mx.array, Weights]:
        parts = self.plan.accumulation
        loss, gradients = self._shared_out(tokens[: self.plan.batch])
        for part in range(1, parts):
            mx.eval(loss, gradients)
            rows = tokens[part * self.plan.batch : (part + 1) * self.plan.batch]
            part_loss, part_gradients = self._shared_out(rows)
            loss = loss + part_loss
            gradients = {name: gradients[name] + part_gradients[name] for name in gradients}
        if parts > 1:
            loss = loss / parts
            gradients = {name: gradient / parts for name, gradient in gradients.items()}
        return loss, gradients

    def _shared_out(self, tokens: np.ndarray) -> tuple[mx.array, Weights]:
        """Loss and gradients of one batch, each lane taking some of its rows."""
        if len(self._lanes) == 1:
            return self._gradients[0](self.weights, mx.array(tokens))
        parts = np.array_split(tokens, len(self._lanes))
        results = []
        for lane, gradients_of, rows in zip(self._lanes, self._gradients, parts):
            with mx.stream(lane):
                results.append(gradients_of(self.weights, mx.array(rows)))
        shares = [len(rows) / len(tokens) for rows in parts]
        loss = sum(loss * share for (loss, _), share in zip(results, shares))
        gradients = {
            name: sum(gradients[name] * share for (_, gradients), share in zip(results, shares))
            for name in self.weights
        }
        return loss, gradients

    def _apply(self, gradients: Weights, norm: float, rate: float) -> None:
        self.updates += 1
        limit = self._settings["clip_norm"]
        scale = limit / norm if 0 < limit < norm else 1.0
        corrections = [1.0 - self._settings[beta] ** self.updates for beta in ("beta1", "beta2")]
        numbers = mx.array([rate, scale, *corrections], dtype=mx.float32)
        state = self._update(self.weights, gradients, self.first_moments, self.second_moments, numbers)
        self.weights, self.first_moments, self.second_moments = state
        mx.eval(self.weights, self.first_moments, self.second_moments)

    def _adamw(self, weights: Weights, gradients: Weights, first: Weights, second: Weights, numbers: mx.array):
        rate, scale, first_correction, second_correction = (numbers[index] for index in range(4))
        beta1, beta2 = self._settings["beta1"], self._settings["beta2"]
        new_weights, new_first, new_second = {}, {}, {}
        for name, weight in weights.items():
            gradient = gradients[name] * scale
            moment = beta1 * first[name] + (1.0 - beta1) * gradient
            square = beta2 * second[name] + (1.0 - beta2) * mx.square(gradient)
            direction = (moment / first_correction) / (mx.sqrt(square / second_correction) + EPSILON)
            if is_decayed(name):
                direction = direction + self._settings["weight_decay"] * weight
            new_weights[name] = weight - rate * direction
            new_first[name], new_second[name] = moment, square
        return new_weights, new_first, new_second


def is_decayed(name: str) -> bool:
    """Norms set a scale and embeddings of rare tokens would only shrink, so neither decays."""
    return not name.endswith(("norm.weight", "embed_tokens.weight"))
