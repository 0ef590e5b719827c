"""Gives MLX a fast matrix library on Linux.

MLX's Linux wheels carry the reference BLAS, which made a float32 matrix product about 30 to 70 times
slower than OpenBLAS in our measurements. They call it by its plain C names, so a library that is
already in the process's global scope is found first. Nothing in MLX has to be changed for that.
"""

from __future__ import annotations

import ctypes
import glob
import os
import re
import sys
import sysconfig
from collections.abc import Iterator

# Beyond this many threads the products of our model sizes are too small to share out.
MOST_THREADS = 16

# OpenBLAS lets an idle worker spin for 2**26 cycles. MLX runs everything that is not a matrix
# product on one thread, so a spinning worker only takes a core away from it (2**4 is the least).
IDLE_SPIN_EXPONENT = "4"

LIBRARY_NAMES = ("libopenblas.so.0", "libopenblasp.so.0", "libopenblas.so")

# From glibc's malloc.h; mallopt takes the numbers.
M_TRIM_THRESHOLD = -1
M_MMAP_THRESHOLD = -3
KEEP_UP_TO_BYTES = 1 << 30

# How wide a graph MLX still walks level by level. Beyond it goes branch by branch, and streams that should work side by
# side would get their work one after the other.
GRAPH_WIDTH = "4096"

_openblas: ctypes.CDLL | None = None


def prepare_blas() -> str:
    """Loads the best BLAS there is and returns one line about it for the log.

    Call it before the first `import mlx`, on the main thread; later calls change nothing for MLX. It never
    raises: without a better library MLX works on, slowly, with its own. `ZOREL_BLAS` names a library file to use
    instead, or "bundled" for MLX's own.
    """
    if sys.platform == "darwin":
        return "Accelerate"
    if not sys.platform.startswith("linux"):
        return "MLX's own BLAS"
    os.environ.setdefault("MLX_BFS_MAX_WIDTH", GRAPH_WIDTH)
    _keep_freed_memory()
    wanted = os.environ.get("ZOREL_BLAS", "")
    if wanted == "bundled":
        return "MLX's own BLAS (slow), as asked for by ZOREL_BLAS"
    os.environ.setdefault("OPENBLAS_NUM_THREADS", str(thread_count()))
    os.environ.setdefault("OPENBLAS_THREAD_TIMEOUT", IDLE_SPIN_EXPONENT)
    for path in [wanted] if wanted else _candidates():
        description = _load(path)
        if description:
            return description
    missing = f"{wanted} has no BLAS" if wanted else "libopenblas.so.0 was not found"
    return f"MLX's own BLAS (slow): {missing}; the package libopenblas0-pthread makes training far faster"


def set_blas_threads(count: int) -> None:
    """Threads of one matrix product from now on. Without OpenBLAS there is nothing to set."""
    if _openblas is not None and hasattr(_openblas, "openblas_set_num_threads"):
        _openblas.openblas_set_num_threads(count)


def thread_count() -> int:
    """The cores this process may really use: its affinity mask and its control group's share count, which
    OpenBLAS's own choice does not look at. Two threads on two cores gave 1.9 times the products of one."""
    cores = len(os.sched_getaffinity(0))
    share = _control_group_share("/sys/fs/cgroup/cpu.max")
    return max(1, min(cores, share or cores, MOST_THREADS))


def _control_group_share(path: str) -> int | None:
    try:
        with open(path, encoding="ascii") as file:
            quota, period = file.read().split()
        return max(1, round(int(quota) / int(period)))
    except (OSError, ValueError, ZeroDivisionError):
        return None


def _candidates() -> Iterator[str]:
    yield from LIBRARY_NAMES
    for name in LIBRARY_NAMES:
        yield os.path.join(sys.prefix, "lib", name)
    # Some SciPy wheels bring an OpenBLAS with plain names; newer ones prefix every name and are no use here.
    packages = sysconfig.get_path("platlib")
    yield from sorted(glob.glob(os.path.join(glob.escape(packages), "*.libs", "libopenblas*.so*")))


def _load(path: str) -> str | None:
    try:
        # A first look without the global scope, so that a library without the names leaves nothing behind there.
        if not hasattr(ctypes.CDLL(path), "cblas_sgemm"):
            return None
        library = ctypes.CDLL(path, ctypes.RTLD_GLOBAL)
    except OSError:
        return None
    global _openblas
    _openblas = library
    return _describe(library, path)


def _describe(library: ctypes.CDLL, path: str) -> str:
    try:
        library.openblas_get_config.restype = ctypes.c_char_p
        library.openblas_get_corename.restype = ctypes.c_char_p
        config = library.openblas_get_config().decode(errors="replace")
        core = library.openblas_get_corename().decode(errors="replace")
        threads = library.openblas_get_num_threads()
    except AttributeError:
        return f"BLAS from {path}"
    version = re.search(r"\d+(\.\d+)+", config)
    number = version.group() if version else "of unknown version"
    return f"OpenBLAS {number}, {core} kernels, {threads} thread{'s' if threads != 1 else ''} ({path})"


def _keep_freed_memory() -> None:
    """Makes glibc keep freed arrays for the next ones. MLX has no buffer cache on a CPU, and fresh pages
    from the system cost 100,000 page faults, 15 in 100 of the time, in one step of a small model."""
    try:
        allocator = ctypes.CDLL(None).mallopt
    except (OSError, AttributeError):
        return
    allocator(M_MMAP_THRESHOLD, KEEP_UP_TO_BYTES)
    allocator(M_TRIM_THRESHOLD, 2 * KEEP_UP_TO_BYTES - 1)
