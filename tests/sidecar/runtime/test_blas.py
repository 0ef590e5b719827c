"""Which BLAS is loaded is decided before MLX is imported, so every case is a process of its own."""

from __future__ import annotations

import os
import subprocess
import sys
from pathlib import Path

import pytest

from src.runtime import blas

SCRIPTS_ROOT = Path(__file__).resolve().parents[3] / "sidecar"
ASK = "from src.runtime.blas import prepare_blas; print(prepare_blas()); import mlx.core"

linux_only = pytest.mark.skipif(sys.platform != "linux", reason="macOS has its own BLAS")


def described(**environment: str) -> str:
    kept = {name: value for name, value in os.environ.items() if not name.startswith(("OPENBLAS", "ZOREL"))}
    result = subprocess.run(
        [sys.executable, "-c", ASK],
        cwd=SCRIPTS_ROOT,
        env=kept | environment,
        capture_output=True,
        text=True,
        check=True,
    )
    assert result.stderr == ""
    return result.stdout.strip()


@linux_only
def test_openblas_is_loaded_with_one_thread_per_usable_core():
    assert described().startswith("OpenBLAS ")
    assert f"{blas.thread_count()} thread" in described()


@linux_only
def test_mlx_multiplies_with_it(tmp_path):
    """The dynamic linker itself tells which library MLX's call of the matrix product was bound to."""
    product = f"{ASK}; mlx.core.eval(mlx.core.ones((64, 64)) @ mlx.core.ones((64, 64)))"
    environment = os.environ | {"LD_DEBUG": "bindings", "LD_DEBUG_OUTPUT": str(tmp_path / "bindings")}
    subprocess.run([sys.executable, "-c", product], cwd=SCRIPTS_ROOT, env=environment, capture_output=True, check=True)
    lines = [line for file in tmp_path.iterdir() for line in file.read_text(errors="replace").splitlines()]
    bound = [line for line in lines if "libmlx.so" in line and "`cblas_sgemm'" in line]
    assert bound
    assert all("libopenblas" in line.split(" to ")[1] for line in bound)


@linux_only
def test_the_users_own_thread_count_is_kept():
    assert ", 1 thread (" in described(OPENBLAS_NUM_THREADS="1")


@linux_only
def test_mlx_keeps_its_own_when_asked():
    assert "as asked for by ZOREL_BLAS" in described(ZOREL_BLAS="bundled")


@linux_only
@pytest.mark.parametrize("library", ["/nonexistent/libblas.so", "libm.so.6", str(SCRIPTS_ROOT)])
def test_a_library_that_is_none_leaves_mlx_with_its_own(library):
    assert f"{library} has no BLAS" in described(ZOREL_BLAS=library)


@pytest.mark.parametrize(
    ("text", "cores"), [("200000 100000\n", 2), ("50000 100000\n", 1), ("max 100000\n", None), ("", None)]
)
def test_a_control_groups_share_counts(tmp_path, text, cores):
    (tmp_path / "cpu.max").write_text(text)
    assert blas._control_group_share(str(tmp_path / "cpu.max")) == cores


def test_macos_needs_nothing(monkeypatch):
    monkeypatch.setattr(sys, "platform", "darwin")
    assert blas.prepare_blas() == "Accelerate"
