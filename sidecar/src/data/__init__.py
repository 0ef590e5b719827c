"""From the Training Data folder to batches of tokens."""

from .prepare import prepare_corpus
from .records import PreparationCancelled, PreparationError, PreparedCorpus, PrepProgress
from .sampler import BatchSampler

__all__ = [
    "BatchSampler",
    "PrepProgress",
    "PreparationCancelled",
    "PreparationError",
    "PreparedCorpus",
    "prepare_corpus",
]
