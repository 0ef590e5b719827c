import os
import subprocess
from pathlib import Path

import pytest

SOURCE = Path(__file__).resolve().parents[2]


class Build:
    """The tree whose bundle is packaged, and the tool that does it."""

    folder = Path(os.environ["ZOREL_BUILD"])
    bundle = folder / "Talvex LLM Trainer.app"
    version = os.environ["ZOREL_VERSION"]

    @classmethod
    def package(cls, generators, destination, environment=None, **settings):
        """What cpack makes there, nothing being built for it."""
        command = [
            os.environ["ZOREL_CPACK"],
            "--config",
            str(cls.folder / "CPackConfig.cmake"),
        ]
        command += ["-G", generators, "-B", str(destination)]
        command += [part for name, value in settings.items() for part in ("-D", f"{name}={value}")]
        result = subprocess.run(
            command,
            check=False,
            cwd=destination,
            capture_output=True,
            text=True,
            env=environment,
        )
        assert result.returncode == 0, result.stdout + result.stderr
        return {entry for entry in destination.iterdir() if entry.is_file()}


@pytest.fixture(scope="session")
def build():
    return Build


@pytest.fixture(scope="session")
def packages(tmp_path_factory):
    return Build.package("TGZ;DEB", tmp_path_factory.mktemp("packages"))
