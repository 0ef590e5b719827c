"""A checkout of its own with the real scripts, and stand-ins for every program that they would run."""

import shutil
import subprocess
from pathlib import Path

import pytest

ROOT = Path(__file__).resolve().parents[2]
BUNDLE = "build/release/Talvex LLM Trainer.app"


class Checkout:
    def __init__(self, folder: Path):
        self.root = folder / "check out"
        self.home = folder / "home"
        self.tools = folder / "tools"
        self.log = folder / "log"
        self.installations = folder / "installations"
        self.environment = {
            "PATH": f"{self.tools}:/usr/bin:/bin",
            "HOME": str(self.home),
            "LOG": str(self.log),
            "LANG": "C.UTF-8",
        }
        for path in (self.root, self.home, self.tools):
            path.mkdir()
        shutil.copy(ROOT / "run", self.root)
        shutil.copytree(ROOT / "scripts", self.root / "scripts")
        (self.root / "sidecar").mkdir()
        shutil.copy(ROOT / "sidecar/requirements.txt", self.root / "sidecar")
        self._add_tools()
        self._add_python()

    def _add_tools(self):
        self.tool("uname", "echo Linux", logged=False)
        self.tool("id", "echo 0", logged=False)
        self.tool("dpkg-query", "echo 'install ok installed'", logged=False)
        self.tool(
            "apt-get", f"""[ "$1" != install ] || echo "${{*#*--no-install-recommends }}" >> '{self.installations}'"""
        )
        self.tool(
            "cmake",
            f"""
            if [ "$1" = --build ]; then
                mkdir -p '{BUNDLE}/Contents/MacOS'
                for name in 'Talvex LLM Trainer' zorel-train; do
                    cp '{self.tools}/program' "{BUNDLE}/Contents/MacOS/$name"
                done
            fi""",
        )
        self.tool("program", "exit ${PROGRAM_STATUS:-0}")

    def _add_python(self):
        """The environment with MLX, as it is when nothing is missing."""
        folder = self.home / "Library/Python/3.11"
        (folder / "bin").mkdir(parents=True)
        self._script(folder / "bin/python3", "exit ${PYTHON_STATUS:-0}", logged=True)
        requirements = (self.root / "sidecar/requirements.txt").read_bytes()
        checksum = subprocess.run(["cksum"], input=requirements, capture_output=True, check=True).stdout
        (folder / ".zorel-requirements").write_bytes(checksum)

    def tool(self, name: str, commands: str, logged: bool = True):
        self._script(self.tools / name, commands, logged)

    @staticmethod
    def _script(path: Path, commands: str, logged: bool):
        note = 'echo "${0##*/} $*" >> "$LOG"\n' if logged else ""
        path.write_text(f"#!/bin/sh\n{note}{commands}\n")
        path.chmod(0o755)

    @property
    def training_data(self) -> Path:
        return self.home / "Documents/Zorel/Training Data"

    def run(self, *arguments: str, **variables: str) -> subprocess.CompletedProcess:
        self.log.write_text("")
        return subprocess.run(
            [self.root / "run", *arguments],
            env=self.environment | variables,
            cwd="/",
            stdin=subprocess.DEVNULL,
            capture_output=True,
            text=True,
            timeout=60,
            check=False,
        )

    @property
    def installed(self) -> list[str]:
        """The packages of each installation so far."""
        return self.installations.read_text().splitlines() if self.installations.exists() else []

    def started(self, *programs: str) -> list[str]:
        """What was run, in order: of the programs named, or all; each with its arguments."""
        lines = self.log.read_text().splitlines()
        return [line for line in lines if not programs or line.startswith(programs)]


@pytest.fixture
def checkout(tmp_path: Path) -> Checkout:
    return Checkout(tmp_path)
