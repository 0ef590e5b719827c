"""What ./run decides: window or terminal, what it installs, and what it leaves alone."""

import pytest
from displays import wayland_display, x11_display

WINDOW = "Talvex LLM Trainer "
TRAINER = "zorel-train"


@pytest.fixture
def display():
    with x11_display() as name:
        yield name


def test_with_a_display_the_window_opens(checkout, display):
    finished = checkout.run(DISPLAY=display)
    assert finished.returncode == 0, finished.stderr
    assert checkout.started()[-1] == WINDOW
    assert checkout.started(TRAINER) == []


def test_the_window_gets_something_to_train_on_first(checkout, display):
    checkout.run(DISPLAY=display)
    assert checkout.started("python3", WINDOW) == [f"python3 sidecar/sample_corpus {checkout.training_data}", WINDOW]


@pytest.mark.parametrize("name", ["mine.txt", "photo.png", "corpus/"])
def test_training_data_of_the_user_is_left_alone(checkout, display, name):
    checkout.training_data.mkdir(parents=True)
    if name.endswith("/"):
        (checkout.training_data / name).mkdir()
    else:
        (checkout.training_data / name).write_text("mine")
    checkout.run(DISPLAY=display)
    assert checkout.started("python3", WINDOW) == [WINDOW]


def test_the_window_opens_also_without_a_sample(checkout, display):
    finished = checkout.run(DISPLAY=display, PYTHON_STATUS="1")
    assert finished.returncode == 0
    assert checkout.started()[-1] == WINDOW


def test_the_status_of_the_window_is_handed_on(checkout, display):
    assert checkout.run(DISPLAY=display, PROGRAM_STATUS="7").returncode == 7


def test_without_a_display_it_trains_in_the_terminal(checkout):
    finished = checkout.run()
    assert finished.returncode == 0, finished.stderr
    assert checkout.started("python3", TRAINER, WINDOW) == [
        f"python3 sidecar/sample_corpus {checkout.training_data}",
        "zorel-train --steps 200",
        "python3 sidecar/generate --tokens 120",
    ]
    assert "training in the terminal" in finished.stdout


def test_a_display_that_does_not_answer_is_none(checkout):
    with x11_display() as name:
        gone = name
    checkout.run(DISPLAY=gone, WAYLAND_DISPLAY="wayland-0", XDG_RUNTIME_DIR="/nowhere")
    assert checkout.started(TRAINER) == ["zorel-train --steps 200"]


def test_terminal_forces_the_terminal(checkout, display):
    finished = checkout.run("--terminal", DISPLAY=display)
    assert checkout.started(TRAINER, WINDOW) == ["zorel-train --steps 200"]
    assert "No window" not in finished.stdout


def test_options_of_the_trainer_mean_the_terminal(checkout, display):
    checkout.run("--steps", "5", "--model-name", "My Poet", DISPLAY=display)
    assert checkout.started(TRAINER, WINDOW) == ["zorel-train --steps 5 --model-name My Poet"]
    assert checkout.started("python3 sidecar/generate") == []


def test_commands_of_the_trainer_train_nothing(checkout, display):
    checkout.run("list", "Poet", DISPLAY=display)
    assert checkout.started("python3", TRAINER, WINDOW) == ["zorel-train list Poet"]


def test_help_of_the_trainer_is_shown(checkout):
    checkout.run("--help-train")
    assert checkout.started("python3", TRAINER, WINDOW) == ["zorel-train --help"]


def test_training_data_of_ones_own_needs_no_sample(checkout):
    checkout.run("--training-data", "/texts")
    assert checkout.started("python3", TRAINER) == ["zorel-train --training-data /texts"]


def test_build_only_stops_after_the_build(checkout, display):
    finished = checkout.run("--build-only", DISPLAY=display)
    assert finished.returncode == 0, finished.stderr
    assert checkout.started()[-1] == "cmake --build --preset release"
    assert checkout.started("python3", TRAINER, WINDOW) == []
    assert "Talvex LLM Trainer.app" in finished.stdout


def test_help_installs_and_builds_nothing(checkout):
    finished = checkout.run("--help")
    assert finished.returncode == 0
    assert finished.stdout.startswith("Usage: ./run")
    assert checkout.started() == []


def test_a_failed_build_starts_nothing(checkout, display):
    checkout.tool("cmake", 'echo "no compiler"; exit 1')
    finished = checkout.run(DISPLAY=display)
    assert finished.returncode != 0
    assert "no compiler" in finished.stderr
    assert checkout.started("python3", TRAINER, WINDOW) == []


def missing(checkout, *packages: str):
    """Has the system lack these packages."""
    names = "|".join(packages)
    checkout.tool("dpkg-query", f'case "$3" in {names}) ;; *) echo "install ok installed" ;; esac', logged=False)


WINDOW_PACKAGES = ("xdg-utils", "dbus-bin", "qt6-wayland")


def test_what_the_window_needs_is_installed_only_for_the_window(checkout, display):
    missing(checkout, *WINDOW_PACKAGES)
    checkout.run()
    checkout.run("--terminal", DISPLAY=display)
    checkout.run("--build-only", DISPLAY=display)
    assert checkout.installed == []


def test_on_x11_the_window_needs_no_wayland(checkout, display):
    missing(checkout, *WINDOW_PACKAGES)
    checkout.run(DISPLAY=display)
    assert checkout.installed == ["xdg-utils dbus-bin"]


def test_on_wayland_the_window_is_native(checkout, tmp_path):
    missing(checkout, *WINDOW_PACKAGES)
    with wayland_display(tmp_path) as folder:
        checkout.run(WAYLAND_DISPLAY="wayland-7", XDG_RUNTIME_DIR=folder)
    assert checkout.installed == ["xdg-utils dbus-bin qt6-wayland"]
    assert checkout.started()[-1] == WINDOW


def test_nothing_is_installed_when_nothing_is_missing(checkout, display):
    checkout.run(DISPLAY=display)
    assert checkout.installed == []


@pytest.fixture
def mac(checkout):
    checkout.tool("uname", "echo Darwin", logged=False)
    checkout.tool("brew", '[ "$1" != --prefix ] || echo /opt/homebrew/opt/qt')
    return checkout


def test_a_mac_has_a_display(mac):
    finished = mac.run()
    assert finished.returncode == 0, finished.stderr
    assert mac.started()[-1] == WINDOW
    assert mac.started("brew install") == []
    assert mac.installed == []


def test_a_mac_trains_in_the_terminal_when_told_to(mac):
    mac.run("--terminal")
    assert mac.started(TRAINER, WINDOW) == ["zorel-train --steps 200"]
