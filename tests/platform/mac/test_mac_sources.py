"""Parses every source for macOS on other systems, against the Objective-C headers of GNUstep.

Finds what a Mac's compiler would say about types, names and calls. include/NewerSystem.h declares what GNUstep lacks,
as the system's documentation gives it; whether that is right only a Mac can tell.
"""

import os
import shutil
import subprocess
from pathlib import Path

import pytest

HERE = Path(__file__).resolve().parent
ROOT = HERE.parents[2]
QT_FOLDERS = os.environ["ZOREL_QT_FOLDERS"].split(":")


def mac_sources() -> list[str]:
    sources = [*ROOT.rglob("*_mac.cpp"), *ROOT.rglob("*.mm")]
    paths = (source.relative_to(ROOT).as_posix() for source in sources)
    return sorted(path for path in paths if not path.startswith(("build/", ".", "tests/")))


def objective_c_folder() -> str:
    """Where GCC keeps the headers of the Objective-C runtime."""
    return subprocess.run(
        ["gcc", "-print-file-name=include"], capture_output=True, text=True, check=True
    ).stdout.strip()


def complaints(source: Path) -> str:
    assert shutil.which("clang++"), "clang is missing; ./test installs it"
    command = ["clang++", "-std=c++20", "-fsyntax-only", "-Wall", "-Wextra", "-Werror", f"-I{ROOT}"]
    for folder in (HERE / "include", "/usr/include/GNUstep", objective_c_folder(), *QT_FOLDERS):
        command += ["-isystem", str(folder)]
    if source.suffix == ".mm":
        command += ["-x", "objective-c++", "-fobjc-runtime=gcc"]
    command += ["-include", "NewerSystem.h", str(source)]
    return subprocess.run(command, capture_output=True, text=True, check=False).stderr


@pytest.mark.parametrize("path", mac_sources())
def test_source_parses(path: str):
    assert complaints(ROOT / path) == ""


@pytest.mark.parametrize(
    ("text", "complaint"),
    [
        ('[[NSWorkspace sharedWorkspace] openURL:@"text"];', "cannot initialize"),
        ("[[NSWorkspace sharedWorkspace] openEverything];", "openEverything"),
        ("NSWindow *window = nil; window.titleVisibility = NSWindowTitleGone;", "NSWindowTitleGone"),
        ("int answer = 42;", "unused variable"),
    ],
)
def test_mistake_is_found(text: str, complaint: str, tmp_path: Path):
    source = tmp_path / "Mistake.mm"
    source.write_text(f"#import <AppKit/AppKit.h>\nvoid mistake() {{ {text} }}\n")
    assert complaint in complaints(source)


def test_there_are_sources():
    assert "platform/Workspace_mac.mm" in mac_sources()
