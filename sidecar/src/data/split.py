"""Which documents are validation: decided by their content, so that no copy can leak."""

from __future__ import annotations

from array import array
from dataclasses import dataclass

import numpy as np

# Beyond this many documents the split goes by key alone and later copies are no longer dropped;
# a copy still lands on the side of its original.
REMEMBERED_DOCUMENTS = 1_000_000

MASK = (1 << 64) - 1


def mix(value: int) -> int:
    """A bijection of 64 bits that leaves no pattern (the splitmix64 finalizer)."""
    value = (value + 0x9E3779B97F4A7C15) & MASK
    value = ((value ^ (value >> 30)) * 0xBF58476D1CE4E5B9) & MASK
    value = ((value ^ (value >> 27)) * 0x94D049BB133111EB) & MASK
    return value ^ (value >> 31)


class SeenDocuments:
    """Recognises repeated documents, with bounded memory."""

    def __init__(self):
        self._keys: set[int] = set()

    def is_new(self, key: int) -> bool:
        if key in self._keys:
            return False
        if len(self._keys) < REMEMBERED_DOCUMENTS:
            self._keys.add(key)
        return True


class DocumentCensus:
    """Keys and sizes of the distinct documents, as far as they are remembered."""

    def __init__(self):
        self._seen = SeenDocuments()
        self._keys = array("Q")
        self._sizes = array("Q")
        self.documents = 0
        self.bytes = 0

    def add(self, key: int, size: int) -> bool:
        """False if the document is a copy of an earlier one."""
        if not self._seen.is_new(key):
            return False
        self.documents += 1
        self.bytes += size
        if len(self._keys) < REMEMBERED_DOCUMENTS:
            self._keys.append(key)
            self._sizes.append(size)
        return True

    def plan(self, fraction: float, seed: int) -> Split:
        if fraction <= 0 or self.documents == 0:
            return Split()
        if self.documents > len(self._keys):
            return Split(below=int(fraction * (1 << 64)), salt=mix(seed & MASK))
        if self.documents == 1:
            return Split(tail=fraction)
        return Split(chosen=self._choose(fraction * self.bytes, mix(seed & MASK)))

    def _choose(self, target: float, salt: int) -> frozenset[int]:
        """Documents in an order drawn from the seed, until their bytes come near the target."""
        documents = zip(self._keys, self._sizes, strict=True)
        ranked = sorted((mix(key ^ salt), key, size) for key, size in documents)
        chosen, chosen_bytes = set(), 0
        for _, key, size in ranked:
            if chosen_bytes + size <= target:
                chosen.add(key)
                chosen_bytes += size
                if chosen_bytes >= 0.9 * target:
                    break
        if not chosen:
            chosen.add(min(ranked, key=lambda entry: abs(entry[2] - target))[1])
        return frozenset(chosen)


@dataclass(frozen=True)
class Split:
    """`chosen` names validation documents, `below` is a threshold on their mixed key, and `tail`
    is the share cut off the end of an only document."""

    chosen: frozenset[int] = frozenset()
    below: int = 0
    salt: int = 0
    tail: float = 0.0

    def is_validation(self, key: int) -> bool:
        return key in self.chosen or (self.below > 0 and mix(key ^ self.salt) < self.below)


def unigram_nats(train: np.ndarray, measured: np.ndarray, vocab_size: int) -> float:
    """Cross entropy of `measured` under the add-one-smoothed frequencies in `train`."""
    counts = _count(train, vocab_size) + 1.0
    log_probability = np.log(counts / counts.sum())
    occurrences = _count(measured, vocab_size)
    return float(-(occurrences * log_probability).sum() / occurrences.sum())


def _count(tokens: np.ndarray, vocab_size: int) -> np.ndarray:
    counts = np.zeros(vocab_size, dtype=np.float64)
    block = 1 << 22
    for start in range(0, len(tokens), block):
        counts += np.bincount(tokens[start : start + block], minlength=vocab_size)
    return counts
