"""One training run, from "start" to the archive."""

from src.run.contract import RunFailed, RunRefused
from src.run.pretraining import PretrainRun

__all__ = ["PretrainRun", "RunFailed", "RunRefused"]
