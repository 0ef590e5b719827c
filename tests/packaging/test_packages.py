"""What the target `package` makes, from the bundle of this build."""

import configparser
import gzip
import os
import subprocess
import tarfile
from pathlib import Path

import pytest

NAME = "Talvex LLM Trainer"
SOURCE = Path(__file__).resolve().parents[2]
PROGRAMS = ["talvex-llm-trainer", "zorel-train"]


def output_of(*command):
    return subprocess.run(command, check=True, capture_output=True, text=True).stdout


def tree(bundle):
    """Every file below, and what is in it; of a program, which loses its symbols, that it is one."""
    files = {}
    for path in bundle.rglob("*"):
        name = path.relative_to(bundle)
        if path.is_file() and "__pycache__" not in name.parts:
            files[str(name)] = (
                os.access(path, os.X_OK),
                name.parts[1] == "MacOS" or path.read_bytes(),
            )
    return files


def require_whole(bundle, build):
    assert tree(bundle) == tree(build.bundle)
    programs = list((bundle / "Contents" / "MacOS").iterdir())
    assert {program.name for program in programs} == {NAME, "zorel-train"}
    for program in programs:
        assert ".symtab" not in output_of("readelf", "--section-headers", "--wide", program)
    assert all(path.stat().st_mode & 0o022 == 0 for path in bundle.rglob("*"))
    assert output_of(bundle / "Contents" / "MacOS" / "zorel-train", "--version").startswith(
        f"zorel-train {build.version}"
    )


@pytest.fixture(scope="session")
def debian(packages):
    return next(path for path in packages if path.suffix == ".deb")


@pytest.fixture(scope="session")
def root(debian, tmp_path_factory):
    """The Debian package, unpacked."""
    root = tmp_path_factory.mktemp("root")
    subprocess.run(["dpkg-deb", "-x", debian, root], check=True)
    return root


def test_the_archive_holds_the_bundle_alone(packages, build, tmp_path):
    [archive] = [path for path in packages if path.suffix == ".gz"]
    assert archive.name.startswith(f"Talvex-LLM-Trainer-{build.version}-linux-")
    with tarfile.open(archive) as members:
        assert {member.name.split("/")[0] for member in members} == {f"{NAME}.app"}
        members.extractall(tmp_path)
    require_whole(tmp_path / f"{NAME}.app", build)


def test_nothing_else_is_made(packages):
    assert sorted(path.suffix for path in packages) == [".deb", ".gz"]


def test_the_debian_package_holds_the_bundle(root, build):
    require_whole(root / "usr/lib/talvex-llm-trainer" / f"{NAME}.app", build)


def test_the_debian_package_says_what_it_is(debian, build):
    def field(name):
        return output_of("dpkg-deb", "--field", debian, name).strip()

    assert field("Package") == "talvex-llm-trainer"
    assert field("Version") == build.version
    assert field("Section") == "science"
    assert field("Maintainer") == "Talvex <support@talvex.example>"
    summary, *description = field("Description").splitlines()
    assert summary == "Train machine-learning models on your own data"
    assert description
    assert summary not in " ".join(description)
    # What the programs link to, found by itself.
    for library in "libc6", "libqt6widgets6", "libqt6network6":
        assert library in field("Depends")


def test_its_commands_start_the_programs(root):
    for command in PROGRAMS:
        program = root / "usr/bin" / command
        assert program.is_symlink()
        assert not program.readlink().is_absolute()
        assert os.access(program, os.X_OK)
    assert output_of(root / "usr/bin/zorel-train", "--version").startswith("zorel-train ")


def test_its_desktop_entry_starts_the_program(root):
    entry = configparser.ConfigParser(interpolation=None)
    entry.optionxform = str
    # The name under which the window announces itself.
    entry.read(root / "usr/share/applications/com.talvex.zorel.desktop")
    values = entry["Desktop Entry"]
    assert (values["Type"], values["Name"], values["Terminal"]) == (
        "Application",
        NAME,
        "false",
    )
    assert (root / "usr/bin" / values["Exec"]).exists()
    assert (root / "usr/share/icons/hicolor/scalable/apps" / f"{values['Icon']}.svg").is_file()
    assert values["Categories"].endswith(";")
    assert values["Keywords"].endswith(";")


def test_its_documents_are_where_debian_wants_them(root):
    documents = root / "usr/share/doc/talvex-llm-trainer"
    assert documents.joinpath("copyright").read_bytes() == SOURCE.joinpath("LICENSE").read_bytes()
    changes = gzip.decompress(documents.joinpath("changelog.gz").read_bytes())
    assert changes == SOURCE.joinpath("CHANGELOG.md").read_bytes()


def test_the_developers_files_of_the_client_library_are_in_neither(packages, root):
    assert not list(root.rglob("*.h"))
    assert not list(root.rglob("*.a"))
    for package in packages:
        assert "caldra" not in package.name.lower()


STAND_IN = """#!/bin/bash
tool=$(basename "$0")
{ printf '%s' "$tool"; printf '|%s' "$@"; printf '\\n'; } >> "$CALLS"
case "$tool $1" in
    "ditto -c") cd "$(dirname "$5")" && zip -qry "${@: -1}" "$(basename "$5")" ;;
    "ditto "*) cp -R "$1" "$2" ;;
    "hdiutil create") ls -l "$6" > "$CALLS.image"; touch "${@: -1}" ;;
esac
"""


@pytest.fixture
def mac(tmp_path):
    """The Mac's tools, as stand-ins that write down what they are told."""
    tools = tmp_path / "tools"
    tools.mkdir()
    for tool in "ditto", "macdeployqt", "codesign", "hdiutil":
        tools.joinpath(tool).write_text(STAND_IN)
        tools.joinpath(tool).chmod(0o755)
    calls = tmp_path / "calls"
    return {
        **os.environ,
        "PATH": f"{tools}:{os.environ['PATH']}",
        "CALLS": str(calls),
    }, calls


@pytest.mark.parametrize("identity", [None, "Developer ID"])
def test_the_packages_of_a_mac(build, tmp_path, mac, identity):
    environment, calls = mac
    if identity:
        environment["ZOREL_SIGNING_IDENTITY"] = identity
    destination = tmp_path / "packages"
    destination.mkdir()
    build.package(
        "External",
        destination,
        environment,
        CPACK_EXTERNAL_ENABLE_STAGING="ON",
        CPACK_EXTERNAL_PACKAGE_SCRIPT=SOURCE / "packaging" / "mac.cmake",
        CPACK_PACKAGE_FILE_NAME="Trainer",
    )
    lines = [line.split("|") for line in calls.read_text().splitlines()]
    # Frameworks first, then the signature, then its check, then what is packed.
    assert [line[0] for line in lines] == [
        "ditto",
        "macdeployqt",
        "codesign",
        "codesign",
        "ditto",
        "hdiutil",
    ]
    _, deploy, sign, verify, pack, image = lines
    assert {Path(part.split("=")[1]).name for part in deploy if "=" in part} == {
        NAME,
        "zorel-train",
    }
    assert sign[1:5] == ["--force", "--deep", "--sign", identity or "-"]
    assert ("runtime" in sign) == bool(identity)
    assert verify[1] == "--verify"
    assert deploy[1] == sign[-1] == verify[-1] == pack[-2]
    assert (pack[-1], image[-1]) == (
        str(destination / "Trainer.zip"),
        str(destination / "Trainer.dmg"),
    )
    assert output_of("unzip", "-Z1", pack[-1]).startswith(f"{NAME}.app/")
    contents = Path(f"{calls}.image").read_text()
    assert f"{NAME}.app" in contents
    assert "Applications -> /Applications" in contents
