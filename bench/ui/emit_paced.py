"""Writes a status line and, when told to, a log line a thousand times a second for so many seconds.

Usage: emit_paced.py SECONDS [log]
"""

import json
import math
import os
import sys
import time

PER_SECOND = 1000
ROUNDS_PER_SECOND = 250

seconds, logs = float(sys.argv[1]), sys.argv[2:] == ["log"]
status = {
    "event": "status", "state": "running", "step": 0, "max_steps": 1000000, "loss": 2.53125, "lr": 0.0003,
    "grad_norm": 0.8125, "tokens_per_sec": 5120.5, "elapsed_s": 12.25, "val_loss": 2.625, "error": None,
    "prep_progress": 1.0, "prep_detail": "", "prep_elapsed_s": 0.0, "prep_eta_s": 0.0,
}  # fmt: skip

os.write(1, b'{"event": "ready", "default_max_steps": 1000000}\n')
start = time.monotonic()
for round_ in range(int(seconds * ROUNDS_PER_SECOND)):
    lines = []
    for _ in range(PER_SECOND // ROUNDS_PER_SECOND):
        status["step"] += 1
        status["loss"] = 2.0 + 6.0 * math.exp(-status["step"] / 3000) + 0.1 * math.sin(status["step"] * 12.9898)
        status["elapsed_s"] = status["step"] / PER_SECOND
        lines.append(json.dumps(status))
        if logs:
            message = f"step={status['step']} loss={status['loss']:.4f} lr=3.00e-04 grad_norm=0.812 tok/s=5120"
            lines.append(json.dumps({"event": "log", "level": "INFO", "msg": message}))
    os.write(1, ("\n".join(lines) + "\n").encode())
    time.sleep(max(0.0, start + (round_ + 1) / ROUNDS_PER_SECOND - time.monotonic()))
# Until the end of input: the window is measured at rest afterwards.
while os.read(0, 65536):
    pass
