"""Writes safetensors files through Python, so that a full disk is an OSError and not a short file."""

from __future__ import annotations

import json
from pathlib import Path

import mlx.core as mx
import numpy as np

_KINDS = {"float32": "F32", "float16": "F16", "uint32": "U32", "int32": "I32"}
ALIGNMENT = 8


def save_safetensors(path: Path, arrays: dict[str, mx.array]) -> None:
    header: dict[str, object] = {"__metadata__": {"format": "pt"}}
    offset = 0
    for name in sorted(arrays):
        array = arrays[name]
        kind = _KINDS[str(array.dtype).removeprefix("mlx.core.")]
        header[name] = {"dtype": kind, "shape": list(array.shape), "data_offsets": [offset, offset + array.nbytes]}
        offset += array.nbytes
    encoded = json.dumps(header, separators=(",", ":")).encode("utf-8")
    encoded += b" " * (-len(encoded) % ALIGNMENT)
    with path.open("wb") as file:
        file.write(len(encoded).to_bytes(8, "little"))
        file.write(encoded)
        for name in sorted(arrays):
            file.write(np.ascontiguousarray(np.array(arrays[name])).data)
