import shutil
import sys
import tempfile
from pathlib import Path

import pytest

# The system's bindings to the accessibility bus; no package index has them.
sys.path.append("/usr/lib/python3/dist-packages")
sys.path.insert(0, str(Path(__file__).resolve().parent))

from desktop import Desktop
from distribution import DistributionService, Installation, make_package
from library_sheet import Library
from program import Program
from real_training import start_trainer
from screen_reader import FocusWatch
from stages import Stages


@pytest.fixture(scope="session")
def desktop():
    desktop = Desktop("1600x1100")
    yield desktop
    desktop.stop()


@pytest.fixture
def home():
    # A short path: long ones are a test of their own.
    folder = Path(tempfile.mkdtemp(prefix="zorel"))
    yield folder
    shutil.rmtree(folder, ignore_errors=True)


@pytest.fixture
def program(desktop, home):
    program = Program(desktop, home)
    yield program
    program.stop()


@pytest.fixture(scope="session")
def package(tmp_path_factory):
    return make_package(tmp_path_factory.mktemp("package"))


@pytest.fixture
def service():
    service = DistributionService()
    yield service
    service.stop()


@pytest.fixture
def installation(program, service, package):
    installation = Installation(program, service, package)
    yield installation
    service.rest.set()
    installation.stop()


@pytest.fixture
def stages(program):
    return Stages(program)


@pytest.fixture
def trainer(program):
    return start_trainer(program)


@pytest.fixture
def focus():
    watch = FocusWatch()
    yield watch
    watch.stop()


@pytest.fixture
def library(program, focus):
    program.environment["TZ"] = "UTC"
    return Library(program, focus)
