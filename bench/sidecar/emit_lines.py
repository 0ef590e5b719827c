"""Writes N status lines as a training process could at best: one json.dumps and one unbuffered write each.

    python3 -u emit_lines.py 1000000 > /dev/null

The last line on standard error gives the lines per second; the application must read faster than that.
"""

from __future__ import annotations

import json
import os
import sys
import time


def main() -> None:
    count = int(sys.argv[1])
    status = {
        "event": "status",
        "state": "running",
        "step": 0,
        "max_steps": count,
        "loss": 3.2817,
        "lr": 0.00029871,
        "grad_norm": 0.8125,
        "tokens_per_sec": 5291.25,
        "elapsed_s": 0.0,
        "val_loss": 3.4102,
    }
    begin = time.perf_counter()
    for step in range(1, count + 1):
        status["step"] = step
        status["elapsed_s"] = step * 0.29
        line = memoryview(json.dumps(status).encode() + b"\n")
        while line:
            line = line[os.write(1, line) :]
    print(f"{count / (time.perf_counter() - begin):.0f} lines/s", file=sys.stderr)


main()
