"""Folders of finished runs, written by hand: what the training scripts write, and what they never would."""

import json
import os

MANIFEST = {
    "model_identity": {"name": "whale", "version": "1.0.0", "author": "Ada", "license": "MIT"},
    "archived_at": "2026-03-14T09:26:53.589Z",
    "step": 1000,
    "max_steps": 1200,
    "final_loss": 2.34567,
    "val_loss": 2.5,
    "elapsed_seconds": 4330.4,
    "tokens_per_sec": 5321.6,
    "model_family": "text_language",
    "training_capability": "pretrain",
}
CURVE = "".join(f'{{"step": {step}, "loss": {4 - step / 500}}}\n' for step in range(0, 1001, 10))


def manifest(name, version, day, **changes):
    identity = {"name": name, "version": version, "author": "Ada"}
    return {**MANIFEST, "model_identity": identity, "archived_at": f"2026-03-{day:02}T09:26:53Z", **changes}


def tier(activation):
    return "inactive" if activation < 0.2 else "moderate" if activation < 0.5 else "high"


def snapshot(blocks=4, groups=8, shift=0.0, final=True, step=1000):
    def neuron(block, index):
        activation = round((block * groups + index) / (blocks * groups) + shift, 4)
        dims = {"dim_start": index * 64, "dim_end": index * 64 + 63}
        return {"index": index, "activation": activation, **dims, "tier": tier(activation)}

    return {
        "step": step,
        "final": final,
        "n_layers": blocks,
        "neurons_per_layer": groups,
        "hidden_dim": groups * 64,
        "layers": [
            {"layer": block, "neurons": [neuron(block, index) for index in range(groups)]} for block in range(blocks)
        ],
    }


class RunFolders:
    def __init__(self, root):
        self.root = root

    def add(self, folder, content, curve=None, neurons=None):
        """Texts are written as they stand, everything else as JSON."""
        path = self.root / folder
        path.mkdir(parents=True)
        for name, value in [("manifest.json", content), ("loss_curve.jsonl", curve), ("neuron_snapshot.json", neurons)]:
            if value is not None:
                text = value if isinstance(value, str) else json.dumps(value)
                path.joinpath(name).write_text(text, encoding="utf-8")
        return path

    def add_what_is_no_run(self):
        """Each with the manifest of a run somewhere about it."""
        good = json.dumps(MANIFEST)
        self.add("no manifest", None, CURVE, snapshot())
        self.add("an empty manifest", "")
        self.add("half a manifest", good[:100])
        self.add("a list", f"[{good}]")
        self.add("not a number", good.replace("2.34567", "NaN"))
        self.add("deep", "[" * 10_000)
        self.add(".hidden", good)
        self.add("a folder", None).joinpath("manifest.json").mkdir()
        os.mkfifo(self.add("a pipe", None) / "manifest.json")
        self.add("a device", None).joinpath("manifest.json").symlink_to("/dev/zero")
        self.add("a loop", None).joinpath("manifest.json").symlink_to("manifest.json")
        with open(self.add("2 GB", None) / "manifest.json", "wb") as huge:
            huge.truncate(2 << 30)
        self.root.joinpath("a file").write_text(good)
        elsewhere = self.root.parent / "elsewhere"
        elsewhere.mkdir()
        elsewhere.joinpath("manifest.json").write_text(good)
        self.root.joinpath("a link").symlink_to(elsewhere)
        self.root.joinpath("a link to itself").symlink_to("a link to itself")
        nameless = os.fsencode(self.root) + b"/not UTF-8 \xff"
        os.mkdir(nameless)
        with open(nameless + b"/manifest.json", "w") as file:
            file.write(good)
