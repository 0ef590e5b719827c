"""Holds every #include of ours against the table of allowed arrows in ARCHITECTURE.md."""

import re
import sys
from pathlib import Path

SOURCES = {".h", ".cpp", ".mm"}
OPEN_FOLDERS = ("tests", "fuzz", "bench")  # these may include everything
ROW = re.compile(r"^\| `([^`]+)` \|(.*)\|$")
INCLUDE = re.compile(r'^\s*#\s*include\s+"([^"]+)"', re.MULTILINE)


def allowed_arrows(architecture: str) -> dict[str, set[str]]:
    """The table between the markers: a folder and the folders that it may include."""
    table = architecture.split("<!-- arrows -->")[1].split("<!-- end of arrows -->")[0]
    arrows = {}
    for line in table.splitlines():
        row = ROW.match(line)
        if row:
            arrows[row[1]] = set(re.findall(r"`([^`]+)`", row[2]))
    return arrows


def folder_of(path: str, folders) -> str | None:
    """The deepest folder of the table that holds the file."""
    inside = [folder for folder in folders if path.startswith(folder + "/")]
    return max(inside, key=len, default=None)


def violations(root: Path, arrows: dict[str, set[str]]) -> list[str]:
    found = []
    for file in sorted(root.rglob("*")):
        path = file.relative_to(root).as_posix()
        if file.suffix not in SOURCES or path.startswith(("build/", ".", *(f"{name}/" for name in OPEN_FOLDERS))):
            continue
        folder = folder_of(path, arrows)
        if folder is None:
            found.append(f"{path}: its folder is not in the table")
            continue
        for included in INCLUDE.findall(file.read_text(encoding="utf-8")):
            if included.endswith(".moc"):
                continue
            target = folder_of(included, arrows)
            if target is None:
                found.append(f'{path}: "{included}" is in no folder of the table')
            elif target != folder and target not in arrows[folder]:
                found.append(f"{path}: {folder} -> {target} is no allowed arrow")
    return found


def circles(arrows: dict[str, set[str]]) -> list[str]:
    """Folders from which a walk along the arrows leads back to them."""

    def reachable(start: str) -> set[str]:
        seen: set[str] = set()
        waiting = list(arrows[start])
        while waiting:
            folder = waiting.pop()
            if folder not in seen:
                seen.add(folder)
                waiting.extend(arrows[folder])
        return seen

    return [folder for folder in arrows if folder in reachable(folder)]


def main() -> int:
    root = Path(__file__).resolve().parents[2]
    arrows = allowed_arrows((root / "ARCHITECTURE.md").read_text(encoding="utf-8"))
    problems = violations(root, arrows) + [f"{folder}: the arrows lead in a circle" for folder in circles(arrows)]
    print("\n".join(problems) or f"{len(arrows)} folders, every include follows an arrow")
    return 1 if problems else 0


if __name__ == "__main__":
    sys.exit(main())
