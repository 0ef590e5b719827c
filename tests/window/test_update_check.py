"""What the program says when it looks for updates, in its sheet, its alerts and the About sheet."""

import json
import os

import pytest
from distribution import NAME, Installation
from waiting import wait_until

NEW = os.environ["ZOREL_VERSION"]
OFFER = "A new version is available"
DOWNLOADS = "https://talvex.example/downloads"
MANUALLY = f" Try downloading manually from {DOWNLOADS}."


def check(program):
    """The user's own check, from the menu."""
    program.press_in_menu("Check for Updates…")


def stored(program, key):
    file = program.home / ".config" / "Talvex" / "zorel.json"
    return json.loads(file.read_text()).get(key) if file.exists() else None


def test_an_offer_without_notes_or_details(program, service, installation, package):
    service.publish(package, NEW, minOsVersion=None, architecture=None)
    program.start_ready()
    sheet = program.wait_for_window(OFFER)
    program.wait_for_texts("No release notes were provided for this version.", within=sheet)
    wait_until(lambda: not any("macOS" in text for text in program.texts(within=sheet)), program.texts)


def test_reminding_later(program, service, installation, package):
    service.publish(package, NEW)
    program.start_ready()
    program.press("Remind Me Later")
    program.wait_until_gone(OFFER)
    check(program)
    program.wait_for(OFFER)
    assert not stored(program, "talvex.updater.skippedVersion")


def test_the_keyboard(program, service, installation, package, desktop):
    service.publish(package, NEW)
    program.start_ready()
    program.wait_for_window(OFFER)
    desktop.key("Escape")
    program.wait_until_gone(OFFER)
    check(program)
    program.wait_for_window(OFFER)
    # Return is for the offer's own button.
    desktop.key("Return")
    assert program.wait_for_exit() == 0
    wait_until(lambda: installation.launched, "the new version's start")
    program.attach(installation.launched)


def test_a_skipped_version(program, service, installation, package, desktop):
    service.publish(package, NEW)
    program.start_ready()
    program.press("Skip This Version")
    program.wait_until_gone(OFFER)
    wait_until(lambda: stored(program, "talvex.updater.skippedVersion") == NEW, "the version to be stored")
    desktop.key("ctrl+q")
    assert program.wait_for_exit() == 0

    before = stored(program, "talvex.updater.lastCheckAt")
    program.start_ready()
    # The check of the start finds it and says nothing.
    wait_until(
        lambda: stored(program, "talvex.updater.lastCheckAt") != before,
        "the first check",
    )
    assert not program.find(OFFER)
    check(program)
    program.wait_for(OFFER)


def test_nothing_newer(program, service, installation, package, desktop):
    service.publish(package, Installation.VERSION)
    program.start_ready()
    wait_until(lambda: stored(program, "talvex.updater.lastCheckAt"), "the first check")
    assert not program.find("You're up to date")
    check(program)
    alert = program.wait_for_window("You're up to date")
    program.wait_for_texts(f"{NAME} {Installation.VERSION} is the latest version available.", within=alert)
    desktop.key("Return")
    program.wait_until_gone("You're up to date")
    program.wait_for_window(NAME)
    about = program.show_about()
    program.wait_for_texts(
        f"Version {Installation.VERSION}",
        "Check for Updates",
        "Updates are checked automatically once a day.",
        within=about,
    )
    program.wait_for_text(lambda text: text.startswith("Last checked: "), "the time of the check", within=about)


NO_ANSWER = "The update server returned an unexpected response."
FAILED_CHECKS = {
    "no release": (
        (404, {"error": {"code": "not_found", "message": "none"}}),
        "No release has been published yet.",
    ),
    "an error of the service": (
        (503, {"error": {"code": "busy", "message": "Too many."}}),
        "The update server returned HTTP 503." + MANUALLY,
    ),
    "an answer of another kind": (
        (200, b"<html>hotel network</html>"),
        NO_ANSWER + MANUALLY,
    ),
    "an error without a body": (
        (502, b""),
        "The update server returned HTTP 502." + MANUALLY,
    ),
}


@pytest.mark.parametrize("kind", FAILED_CHECKS)
def test_a_failed_check(program, service, installation, kind):
    service.latest, message = FAILED_CHECKS[kind]
    program.start_ready()
    # The check of the start keeps its failure to itself, and to the About sheet.
    about = program.show_about()
    program.wait_for_texts(f"Last check failed: {message}", "Not checked yet.", within=about)
    program.press("Check for Updates", within=about)
    alert = program.wait_for_window("Couldn't check for updates")
    program.wait_for_texts(message, within=alert)
    program.press("Open Downloads Page", within=alert)
    program.wait_for_call(f"xdg-open {DOWNLOADS}")
    assert not program.find(OFFER)


def test_an_unreachable_service(program, service, installation):
    service.stop()
    program.start_ready()
    check(program)
    alert = program.wait_for_window("Couldn't check for updates")
    program.wait_for_texts("Couldn't reach the update server." + MANUALLY, within=alert)


def test_a_build_without_the_keys_of_the_services(program):
    program.start_ready()
    check(program)
    alert = program.wait_for_window("Couldn't check for updates")
    program.wait_for_texts(
        "Caldra is not configured. Add CaldraAPIKey and CaldraOrganizationId to Info.plist.",
        within=alert,
    )
