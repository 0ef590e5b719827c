"""The three folders that the application hands over in the environment and with "set_paths"."""

from __future__ import annotations

import os
from collections.abc import Mapping
from dataclasses import dataclass
from pathlib import Path


@dataclass(frozen=True)
class LibraryFolders:
    training_data: Path
    finished_models: Path
    model_root: Path

    @property
    def library_root(self) -> Path:
        """The folder that holds both library folders, where one does."""
        return self.training_data.parent

    @property
    def cache(self) -> Path:
        return self.model_root / "prepared"

    @property
    def checkpoints(self) -> Path:
        return self.model_root / "checkpoints"

    def as_event(self) -> dict:
        return {
            "event": "paths",
            "library_root": str(self.library_root),
            "training_data": str(self.training_data),
            "finished_models": str(self.finished_models),
            "model_root": str(self.model_root),
        }


def folders_from_environment(environment: Mapping[str, str]) -> LibraryFolders:
    """Falls back to the application's own default folders, so that the scripts also run by hand."""
    home = Path(os.path.expanduser("~"))
    library = home / "Documents" / "Zorel"

    def folder(variable: str, default: Path) -> Path:
        value = environment.get(variable, "")
        return Path(value).expanduser().absolute() if value else default

    return LibraryFolders(
        folder("ZOREL_DATA_ROOT", library / "Training Data"),
        folder("ZOREL_FINISHED_MODELS_ROOT", library / "Finished models"),
        folder("ZOREL_MODEL_ROOT", home / "Library" / "Application Support" / "Zorel" / "Model"),
    )
