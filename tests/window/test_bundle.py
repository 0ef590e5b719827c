"""The name and the version that the bundle gives."""

import os
import plistlib
import shutil
from pathlib import Path

import pytest
from program import NAME

NOT_THERE = {"CFBundleDisplayName": None, "CFBundleName": None, "CFBundleShortVersionString": None}


def use_bundle(program, **changes):
    """Starts the program from a copy of its bundle whose dictionary is changed; None takes a key away."""
    original = Path(os.environ["ZOREL_PROGRAM"]).parent.parent.parent
    bundle = program.home / "Other.app"
    shutil.copytree(original, bundle)
    file = bundle / "Contents" / "Info.plist"
    information = {**plistlib.loads(file.read_bytes()), **changes}
    file.write_bytes(plistlib.dumps({key: value for key, value in information.items() if value is not None}))
    program.executable = str(bundle / "Contents" / "MacOS" / Path(os.environ["ZOREL_PROGRAM"]).name)


@pytest.mark.parametrize(
    ("changes", "name", "version"),
    [
        (NOT_THERE, NAME, "Version unknown"),
        ({"CFBundleDisplayName": "", "CFBundleName": ""}, NAME, None),
        ({"CFBundleDisplayName": "", "CFBundleName": "Short"}, "Short", None),
        ({"CFBundleDisplayName": "Ada & <b>Söhne</b>", "CFBundleShortVersionString": "7.8"}, None, "Version 7.8"),
    ],
)
def test_the_name_is_the_bundles(program, desktop, changes, name, version):
    name = name or changes["CFBundleDisplayName"]
    use_bundle(program, **changes)
    program.title = name
    program.start_ready()
    desktop.wait_for_active_window(name)
    assert program.wait_for(name, "push button").description == f"About {name}"
    for title in f"About {name}", f"Quit {name}":
        program.wait_for(title, "menu item", hidden=True)
    program.press(name)
    sheet = program.wait_for_window(f"About {name}")
    program.wait_for_texts(name, *([version] if version else []), within=sheet)
