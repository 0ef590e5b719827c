"""Keyboard alone reaches and operates everything."""

import json

import pytest
from desktop import Desktop
from program import NAME, Program
from run_folders import CURVE, manifest
from screen_reader import State
from waiting import undisturbed, wait_until

OPERABLE = {"push button", "radio button", "text", "check box", "page tab", "combo box", "toggle button"}


def walk_with_tab(program, desktop, focus, key="Tab", check=lambda element: None):
    """Presses the key until the focus is back at the first element: what it reached, in order."""
    first = focus.after(lambda: desktop.key(key))
    order = [first]
    while True:
        check(order[-1])
        reached = focus.after(lambda: desktop.key(key))
        if reached == first:
            return order
        order.append(reached)
        assert len(order) < 200, order


def can_be_operated(window):
    """What can be used in the window. Of a group of radio buttons one is a stop, the others are its arrow keys'."""

    def fits(element):
        if element.role not in OPERABLE or not element.has(State.FOCUSABLE) or not element.is_enabled:
            return False
        return element.role != "radio button" or element.has(State.CHECKED)

    return undisturbed(lambda: [element for element in window.walk() if fits(element)])


def test_tab_reaches_everything_in_the_order_of_reading(program, desktop, focus):
    program.start_ready()
    program.press("Model Identity")
    program.wait_for("Reset Identity")
    order = walk_with_tab(program, desktop, focus)
    names = [element.name for element in order]
    for element in can_be_operated(program.wait_for_window(NAME)):
        assert element in order, f"{element} is not in {names}"

    start = names.index(NAME)
    names = names[start:] + names[:start]
    expected = [
        NAME,
        "Show log panel",
        "Text Language Model",
        "Pretrain from scratch",
        "Model Identity",
        "Name",
        "Version",
        "Author",
        "License",
        "Description",
        "Reset Identity",
        "Training round, steps",
        "Apply",
        "100",
        "50,000",
        "Start",
        "Open Training Data",
        "Open Settings (⌘,)",
        "Recent activity",
    ]
    assert [name for name in names if name in expected] == expected

    backwards = [element.name for element in reversed(walk_with_tab(program, desktop, focus, "shift+Tab"))]
    start = backwards.index(NAME)
    assert backwards[start:] + backwards[:start] == names


def is_within(element, area):
    left, top, width, height = area
    x, y, w, h = element.bounds()
    return left <= x and x + w <= left + width and top <= y and y + h <= top + height


def stays_within(area):
    def check(element):
        wait_until(lambda: is_within(element, area), lambda: f"{element} in sight, but {element.bounds()} in {area}")

    return check


def test_what_has_the_focus_is_in_sight(program, desktop, focus):
    program.start_ready()
    desktop.wait_for_active_window(NAME)
    identifier = desktop.xdotool("getactivewindow")
    desktop.resize(identifier, 900, 640)
    window = program.wait_for_window(NAME)
    wait_until(lambda: window.bounds()[2:] == (900, 640), lambda: f"900 x 640, but it is {window.bounds()}")
    walk_with_tab(program, desktop, focus, check=stays_within(desktop.geometry(identifier)))


@pytest.fixture
def small_screen(home):
    desktop = Desktop("640x480")
    program = Program(desktop, home)
    yield program
    program.stop()
    desktop.stop()


def test_a_tiny_screen_shows_everything_by_scrolling(small_screen, focus):
    desktop = small_screen.desktop
    screen = (0, 0, 640, 480)
    check = stays_within(screen)
    small_screen.start_ready()
    check(small_screen.wait_for_window(NAME))
    order = walk_with_tab(small_screen, desktop, focus, check=check)
    assert "Open Settings (⌘,)" in [element.name for element in order]
    desktop.key("ctrl+comma")
    check(small_screen.wait_for_window("Settings"))
    desktop.key("Escape")
    small_screen.wait_for_window(NAME)
    for open_it, title in (
        (lambda: small_screen.press(NAME), f"About {NAME}"),
        (lambda: desktop.key("ctrl+shift+b"), "Trained Models"),
    ):
        open_it()
        check(small_screen.wait_for_window(title))
        desktop.key("Escape")
        small_screen.wait_for_window(NAME)


def described(elements):
    """What is heard at each stop. Rows of folders have buttons of the same name."""
    return [(element.name, element.description) for element in elements]


ON_PAGE = {"Library": "Folders", "Advanced": "Working Directory", "About": "What you can build"}
FOLDER = [("Choose…", "{}"), ("Reveal in Finder", "{}")]
BLOCKED = [("Grant Access in System Settings", "{}"), ("Re-check after granting", "{}")]


def stops(*folders, blocked=False):
    for folder in folders:
        for name, description in FOLDER + (BLOCKED if blocked else []):
            yield name, description.format(folder)


@pytest.mark.parametrize("blocked", [False, True])
def test_tab_reaches_everything_in_the_settings(program, desktop, focus, blocked):
    if blocked:
        program.home.joinpath("Documents").write_text("in the way")
    program.start_ready()
    desktop.key("ctrl+comma")
    window = program.wait_for_window("Settings")
    library = [*stops("Training Data", "Finished Models", blocked=blocked), ("Reset Folders to Defaults", "")]
    advanced = [*stops("Model Working Directory"), ("Reset Working Directory", "")]
    for page, expected in ("Library", library), ("Advanced", advanced), ("About", None):
        program.press(page, "page tab", within=window)
        program.wait_for(ON_PAGE[page], within=window)
        order = walk_with_tab(program, desktop, focus)
        start = next(index for index, element in enumerate(order) if element.role.startswith("page tab"))
        order = order[start + 1 :] + order[:start]
        for element in can_be_operated(window):
            assert element in order or element.role == "page tab", f"{element} is not in {order}"
        assert expected is None or described(order) == expected


def test_the_tabs_of_the_settings_are_changed_by_keyboard(program, desktop):
    program.start_ready()
    desktop.key("ctrl+comma")
    program.wait_for_window("Settings")
    for page in "Advanced", "About", "Library":
        desktop.key("ctrl+Tab")
        program.wait_for(ON_PAGE[page])


def test_tab_reaches_everything_in_the_library(program, desktop, focus):
    for name in "first", "second":
        folder = program.library / "Finished models" / name
        folder.mkdir(parents=True)
        folder.joinpath("manifest.json").write_text(json.dumps(manifest(name, "1.0", 1)))
        folder.joinpath("loss_curve.jsonl").write_text(CURVE)
    program.start_ready()
    desktop.key("ctrl+shift+b")
    sheet = program.wait_for_window("Trained Models")
    for name in "first", "second":
        program.wait_for_text(lambda text, name=name: text.startswith(f"{name} v1.0"), name, within=sheet)
    order = walk_with_tab(program, desktop, focus)
    names = [element.name for element in order]
    for element in can_be_operated(sheet):
        assert element in order, f"{element} is not in {names}"
    start = names.index("Refresh")
    names = names[start:] + names[:start]
    assert names[:3] == ["Refresh", "Done", "Search models"]


def test_tab_reaches_everything_in_the_about_sheet(program, desktop, focus):
    program.start_ready()
    program.press(NAME)
    sheet = program.wait_for_window(f"About {NAME}")
    order = walk_with_tab(program, desktop, focus)
    for element in can_be_operated(sheet):
        assert element in order, f"{element} is not in {order}"


def test_the_notice_of_an_archive_is_reached(program, desktop, focus):
    program.start_ready()
    program.press("100")
    program.press("Start")
    program.wait_for("Model archived")
    # The last of the window, so it is next when one goes backwards from the first.
    program.wait_for(NAME, "push button").focus()
    reached = focus.after(lambda: desktop.key("shift+Tab"))
    assert reached.name == "Reveal in Finder"
    desktop.key("space")
    program.wait_for_call("Finished%20models/")


def test_shortcuts_work_while_a_field_has_the_focus(program, desktop):
    program.scenario = [
        {"emit": {"event": "ready"}},
        {"await": "set_training_profile"},
        *[{"await": name} for name in ("start", "toggle_pause", "stop", "start")],
    ]
    program.start_ready()
    field = program.wait_for("Training round, steps")
    field.focus()
    desktop.key("ctrl+r")
    program.wait_for_command("start", resume=False)
    desktop.key("ctrl+space")
    program.wait_for_command("toggle_pause")
    desktop.key("ctrl+period")
    program.wait_for_command("stop")
    desktop.key("ctrl+shift+r")
    program.wait_for_command("start", resume=True)
    wait_until(lambda: field.content == "", lambda: f"an empty field, but there is {field.content!r}")


def test_shortcuts_show_the_folders(program, desktop):
    program.start_ready()
    library = f"file://{program.library}"
    desktop.key("ctrl+shift+t")
    program.wait_for_call(f"{library}/Training%20Data")
    desktop.key("ctrl+shift+m")
    program.wait_for_call(f"{library}/Finished%20models")
    desktop.key("ctrl+shift+l")
    program.wait_for_call(f"{library} ")


def test_shortcuts_work_in_the_settings_window(program, desktop):
    program.start_ready()
    desktop.key("ctrl+comma")
    program.wait_for_window("Settings")
    desktop.key("ctrl+r")
    program.wait_for_command("start", resume=False)


def test_menus_open_by_keyboard(program, desktop):
    program.start_ready()
    desktop.key("alt+l")
    program.wait_for("Reveal Zorel Library Folder", "menu item")
    desktop.key("Up", "Return")
    program.wait_for_call(f"file://{program.library} ")
    desktop.key("alt+r")
    program.wait_for("Pause / Resume", "menu item")
    desktop.key("Down", "Return")
    program.wait_for_command("toggle_pause")


def test_a_run_from_the_keyboard_alone(program, desktop, focus):
    """Chooses, names, sets the steps, starts, pauses, goes on and stops."""
    program.environment["ZOREL_FAKE_STEP_SECONDS"] = "0.05"
    program.start_ready()

    def go_to(name):
        focus.go_to(name, lambda: desktop.key("Tab"))

    go_to("Text Language Model")
    desktop.key("Right")
    program.wait_for_command(
        "set_training_profile", profile={"model_family": "image_generation", "training_capability": "pretrain"}
    )
    desktop.key("Left")
    program.wait_for_command(
        "set_training_profile", profile={"model_family": "text_language", "training_capability": "pretrain"}
    )
    go_to("Model Identity")
    desktop.key("space")
    go_to("Author")
    desktop.type("ada@example.com")
    identity = {"name": "MyModel", "version": "1.0.0", "author": "ada@example.com", "license": "MIT"}
    program.wait_for_command("set_model_identity", identity=identity)
    go_to("Training round, steps")
    desktop.type("+2000")
    desktop.key("Return")
    program.wait_for_command("set_max_steps", n=2000)
    go_to("Start")
    desktop.key("space")
    program.wait_for("State: Running")
    go_to("Pause")
    desktop.key("space")
    program.wait_for("State: Paused")
    program.wait_for("Resume")
    desktop.key("space")
    program.wait_for("State: Running")
    go_to("Stop")
    desktop.key("space")
    program.wait_for("State: Idle")
    assert program.wait_for_command("start")["model_identity"] == identity


@pytest.mark.parametrize("text", ["1,000", "12a", "9" * 30])
def test_what_is_no_number_is_not_sent(program, desktop, text):
    program.start_ready()
    field = program.wait_for("Training round, steps")
    field.focus()
    desktop.type(text)
    wait_until(lambda: field.content == text, text)
    program.press("Apply")
    # The next one to arrive is the first.
    program.press("10,000")
    program.wait_for_command("set_max_steps", n=10000)
    assert [command["n"] for command in program.commands() if command["cmd"] == "set_max_steps"] == [10000]
