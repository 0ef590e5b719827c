"""The training sidecar: started as `python3 -u -m src.app_backend` in the folder that holds `src`."""

import os
import sys

OLDEST_PYTHON = (3, 10)


def _take_over_output() -> int:
    """A private duplicate of descriptor 1, which itself then leads to standard error: whatever a library
    prints from here on cannot break a line of the protocol."""
    private = os.dup(1)
    os.set_inheritable(private, False)
    os.dup2(2, 1)
    return private


def _report_missing(descriptor: int, error: BaseException) -> None:
    reason = " ".join(str(error).split()) or type(error).__name__
    package = "mlx" if sys.platform == "darwin" else "'mlx[cpu]'"
    _report(
        descriptor,
        f"The training scripts cannot load what they need ({reason}). "
        f"Install it with: {sys.executable} -m pip install {package} tokenizers numpy",
    )


def _report(descriptor: int, message: str) -> None:
    import json

    os.write(descriptor, json.dumps({"event": "error", "msg": message}, ensure_ascii=False).encode() + b"\n")


def main() -> int:
    output = _take_over_output()
    if sys.version_info < OLDEST_PYTHON:
        found = ".".join(map(str, sys.version_info[:2]))
        _report(output, f"The training scripts need Python 3.10 or newer with MLX; {sys.executable} is Python {found}.")
        return 1
    try:
        from src.runtime.blas import prepare_blas

        blas = prepare_blas()
        import mlx.core  # noqa: F401

        from src.service import serve
    except (ImportError, OSError) as error:
        _report_missing(output, error)
        return 1
    return serve(output, blas)


if __name__ == "__main__":
    sys.exit(main())
