"""Writes status lines as fast as an unbuffered Python can: json.dumps and one write a line.

Usage: emit_lines.py COUNT
"""

import json
import os
import sys

status = {
    "event": "status", "state": "running", "step": 0, "max_steps": 1000000, "loss": 2.53125, "lr": 0.0003,
    "grad_norm": 0.8125, "tokens_per_sec": 5120.5, "elapsed_s": 12.25, "val_loss": 2.625, "error": None,
    "prep_progress": 1.0, "prep_detail": "", "prep_elapsed_s": 0.0, "prep_eta_s": 0.0,
}  # fmt: skip
for step in range(int(sys.argv[1])):
    status["step"] = step
    os.write(1, (json.dumps(status) + "\n").encode())
