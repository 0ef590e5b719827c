"""Scans a library the way a script would, once for each line of input, and prints the seconds of each scan."""

import json
import os
import sys
import time

for _ in sys.stdin:
    start = time.perf_counter()
    runs = []
    with os.scandir(sys.argv[1]) as entries:
        for entry in entries:
            if entry.is_dir(follow_symlinks=False):
                with open(entry.path + "/manifest.json", encoding="utf-8") as file:
                    manifest = json.load(file)
                runs.append(
                    (
                        manifest["archived_at"],
                        entry.name,
                        manifest,
                        os.path.exists(entry.path + "/neuron_snapshot.json"),
                        os.path.exists(entry.path + "/loss_curve.jsonl"),
                    )
                )
    runs.sort(key=lambda run: run[:2], reverse=True)
    print(time.perf_counter() - start, flush=True)
