"""Telling that the memory is full from the errors that MLX raises for it."""

from __future__ import annotations

OUT_OF_MEMORY = (
    "There is not enough memory for this model. Lower “batch_size” or “context” in training.json (“accumulation” makes "
    "up for a smaller batch), or “hidden_size” and “layers”, and press Start: a resumed run keeps its sizes."
)
_SIGNS = (
    "unable to allocate",
    "attempting to allocate",
    "insufficient memory",
    "out of memory",
    "outofmemory",
    "bad_alloc",
)


def is_out_of_memory(error: BaseException) -> bool:
    """MLX has no error of its own for this: the allocator and the GPU each raise a RuntimeError with their own text."""
    if isinstance(error, MemoryError):
        return True
    text = str(error).lower()
    return isinstance(error, RuntimeError) and any(sign in text for sign in _SIGNS)
