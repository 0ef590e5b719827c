"""An update from the first check to the new version on the screen, with the program, the package and the installer that
users have.

Stand-ins are the maker's service and the tools that only a Mac has.
"""

import os
import shutil
import subprocess
import tarfile

import pytest
from distribution import BUNDLE, LATEST, NAME, Installation
from waiting import wait_until

NEW = os.environ["ZOREL_VERSION"]
OFFER = f"{NAME} {NEW} is available — you have {Installation.VERSION}"
DOWNLOADS = "https://talvex.example/downloads"


def packed_as(extension, package, folder):
    """The package's bundle in an archive of another kind, as a Mac's tools would make it."""
    if extension == "tar.gz":
        return package
    unpacked = folder / "unpacked"
    shutil.unpack_archive(package, unpacked)
    file = folder / f"Trainer.{extension}"
    if extension == "zip":
        subprocess.run(["zip", "-qry", file, "."], check=True, cwd=unpacked)
    else:
        # What the stand-in for hdiutil takes for a disk image.
        with tarfile.open(file, "w") as image:
            image.add(unpacked, ".")
    return file


def tree(bundle):
    # The installer signs what it installs.
    paths = [path for path in bundle.rglob("*") if path.is_file() and "_CodeSignature" not in path.parts]
    return {str(path.relative_to(bundle)): (path.stat().st_mode, path.read_bytes()) for path in paths}


@pytest.mark.parametrize("extension", ["tar.gz", "zip", "dmg"])
def test_the_program_comes_back_as_the_new_version(program, service, installation, package, tmp_path, extension):
    file = packed_as(extension, package, tmp_path)
    service.publish(
        file,
        NEW,
        notes="# Faster\n\nTraining takes **half** the time.",
        architecture="arm64",
    )
    program.start_ready()
    # By itself, soon after the start.
    program.wait_for_texts(
        "A new version is available",
        OFFER,
        "Release notes",
        "Faster\nTraining takes half the time.",
        "macOS 13.0 · arm64",
        "Skip This Version",
        "Remind Me Later",
        "Install Update",
    )
    [(_, headers)] = [request for request in service.requests if request[0] == LATEST]
    assert headers["Authorization"] == "Bearer key-7"
    program.press("Install Update")

    assert program.wait_for_exit() == 0
    wait_until(lambda: installation.launched, "the new version's start")
    program.attach(installation.launched)
    assert installation.version() == NEW
    shutil.unpack_archive(package, tmp_path / "expected")
    assert tree(installation.bundle) == tree(tmp_path / "expected" / BUNDLE)
    assert os.readlink(f"/proc/{installation.launched}/exe").startswith(str(installation.bundle))
    program.wait_for_texts(f"Version {NEW}", within=program.show_about())
    # The download told the file's host no secret.
    [(_, headers)] = [request for request in service.requests if request[0].startswith("/files/")]
    assert not {"Authorization", "X-API-Key", "Cookie"} & set(headers)

    wait_until(lambda: os.listdir(installation.folder) == [BUNDLE], "the backup to go")
    [folder] = installation.working_folders
    log = folder.joinpath("install.log").read_text()
    assert "[updater] swap ok (user perms)" in log
    assert "[updater] relaunching" in log
    assert folder.joinpath("exited.sentinel").read_text() == "exited"
    assert [call for call in installation.calls("open")] == [[str(installation.bundle)]]
    if extension == "dmg":
        assert [call[0] for call in installation.calls("hdiutil")] == [
            "attach",
            "detach",
        ]


def test_every_state_of_an_installation(program, service, installation, package, tmp_path):
    file = packed_as("zip", package, tmp_path)
    service.publish(file, NEW)
    service.rest.clear()
    verifying = installation.hold_file(file.name)
    unpacking = installation.hold("ditto")
    launching = installation.hold("bash")
    program.start_ready()
    program.press("Install Update")
    program.wait_for_text(lambda text: text.startswith("Downloading ") and " of " in text, "progress")
    program.wait_until_gone("Install Update")
    program.wait_until_enabled("Cancel")
    service.rest.set()
    # The file is whole and about to be read for its digest.
    program.wait_for("Verifying download…")
    program.wait_until_gone("Install Update")
    program.wait_until_enabled("Cancel")
    assert not installation.calls("ditto")
    verifying()
    program.wait_for("Installing update…")
    unpacking()
    program.wait_for("Restarting Talvex LLM Trainer…")
    program.wait_until_disabled("Cancel")
    launching()
    assert program.wait_for_exit() == 0
    wait_until(lambda: installation.launched, "the new version's start")
    program.attach(installation.launched)


def test_a_cancelled_download_can_be_tried_again(program, service, installation, package):
    service.publish(package, NEW)
    service.rest.clear()
    program.start_ready()
    program.press("Install Update")
    program.press("Cancel")
    program.wait_for_texts("Update cancelled.", "Try Again", "Open Downloads Page", "Close")
    wait_until(lambda: not installation.working_folders, "what has been downloaded to go")
    service.rest.set()
    program.press("Try Again")
    assert program.wait_for_exit() == 0
    wait_until(lambda: installation.launched, "the new version's start")
    program.attach(installation.launched)
    assert installation.version() == NEW


def test_quitting_ends_a_download(program, service, installation, package):
    service.publish(package, NEW)
    service.rest.clear()
    program.start_ready()
    program.press("Install Update")
    program.wait_for_text(lambda text: text.startswith("Downloading "), "progress")
    program.press_in_menu(f"Quit {NAME}")
    assert program.wait_for_exit() == 0
    assert installation.version() == Installation.VERSION
    assert installation.working_folders == []


def test_an_administrator_is_asked_when_the_copy_fails(program, service, installation, package):
    service.publish(package, NEW)
    installation.fail("mv:1")
    program.start_ready()
    program.press("Install Update")
    assert program.wait_for_exit() == 0
    wait_until(lambda: installation.launched, "the new version's start")
    program.attach(installation.launched)
    assert len(installation.calls("osascript")) == 1
    assert installation.version() == NEW


FAILURES = {
    "no such file": (
        {},
        f"The update server returned HTTP 404. Try downloading manually from {DOWNLOADS}.",
    ),
    "nobody there": (
        {"downloadUrl": "http://127.0.0.1:1/Trainer.zip"},
        f"Couldn't reach the update server. Try downloading manually from {DOWNLOADS}.",
    ),
    "another digest": (
        {"sha256": "0" * 64},
        "Downloaded file is corrupted (expected 00000000…, got {digest}…).",
    ),
    "a digest in upper case": (
        {"sha256": "A" * 64},
        f"The update server returned an unexpected response. Try downloading manually from {DOWNLOADS}.",
    ),
    "a failing tool": (
        {},
        "Couldn't unpack the update: ditto exited with code 1: ditto: this was to be expected",
    ),
    "no bundle": ({}, "The downloaded update doesn't contain a .app bundle."),
    "a folder that is gone": (
        {},
        "This Mac account can't replace the app at {folder}. Move Talvex LLM Trainer.app to a folder you own, or "
        "sign in as an administrator and try again.",
    ),
    "a failing launcher": (
        {},
        "Couldn't relaunch into the new version: installer launcher exited 1",
    ),
}


@pytest.mark.parametrize("failure", FAILURES)
def test_a_failed_installation_says_why(program, service, installation, package, tmp_path, failure):
    changes, expected = FAILURES[failure]
    file = packed_as("zip", package, tmp_path)
    if failure == "no bundle":
        file = tmp_path / "Empty.zip"
        subprocess.run(["zip", "-q", file, __file__], check=True)
    artifact = service.publish(file, NEW, **changes)
    if failure == "no such file":
        service.file_status = 404
    elif failure == "a failing tool":
        installation.fail("ditto -x")
    elif failure == "a failing launcher":
        installation.fail("bash -c")
    unpacking = installation.hold("ditto") if failure == "a folder that is gone" else None
    program.start_ready()
    program.press("Install Update")
    if unpacking:
        program.wait_for("Installing update…")
        installation.folder.rename(program.home / "Moved")
        unpacking()
    digest = artifact["sha256"][:8]
    if failure == "another digest":
        digest = subprocess.run(["sha256sum", file], check=True, capture_output=True, text=True).stdout[:8]
    program.wait_for_texts(expected.format(digest=digest, folder=installation.folder), "Try Again")
    wait_until(lambda: not installation.working_folders, "what has been downloaded to go")
    program.press("Open Downloads Page")
    program.wait_for_call(f"xdg-open {DOWNLOADS}")
    program.press("Close")
    program.wait_until_gone("A new version is available")
    assert program.is_running
