"""The command line of `generate`."""

from __future__ import annotations

import argparse
import os
import sys
from pathlib import Path

import numpy as np

from src.folders import folders_from_environment
from src.generation.archived_model import ArchivedModel, ArchiveError, newest_run


def main(arguments: list[str]) -> int:
    options = _parser().parse_args(arguments)
    try:
        folder = options.run or newest_run(folders_from_environment(os.environ).finished_models)
        model = ArchivedModel(folder)
    except ArchiveError as error:
        print(f"generate: {error}", file=sys.stderr)
        return 1
    random = np.random.default_rng(options.seed)
    try:
        print(options.prompt, end="", flush=True)
        for piece in model.continue_text(options.prompt, options.tokens, options.temperature, options.top_p, random):
            print(piece, end="", flush=True)
        print(flush=True)
    except BrokenPipeError:
        os.dup2(os.open(os.devnull, os.O_WRONLY), 1)
    except KeyboardInterrupt:
        print()
    return 0


def _parser() -> argparse.ArgumentParser:
    parser = argparse.ArgumentParser(
        prog="generate", description="Prints text from a model that you trained: it continues the prompt."
    )
    parser.add_argument(
        "run", nargs="?", type=Path, help="folder of an archived run (default: the newest in Finished models)"
    )
    parser.add_argument("--prompt", default="", help="text to continue (default: the beginning of a document)")
    parser.add_argument("--tokens", type=_number(int, 1, 1_000_000), default=200, help="length (default: 200)")
    parser.add_argument(
        "--temperature", type=_number(float, 0, 10), default=0.8, help="0 is always the likeliest (default: 0.8)"
    )
    parser.add_argument(
        "--top-p", type=_number(float, 0.01, 1), default=0.95, help="share of likely tokens kept (default: 0.95)"
    )
    parser.add_argument("--seed", type=_number(int, 0, 2**63 - 1), help="makes the text repeatable")
    return parser


def _number(kind: type, minimum: float, maximum: float):
    def convert(text: str):
        try:
            value = kind(text)
        except ValueError:
            raise argparse.ArgumentTypeError(f"{text!r} is no number") from None
        if not minimum <= value <= maximum:
            raise argparse.ArgumentTypeError(f"must be from {minimum:g} to {maximum:g}")
        return value

    return convert
