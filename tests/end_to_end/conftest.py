import os

import pytest

import mib as mib_reader
from programs import SOURCE
from system import System


@pytest.fixture(scope="session")
def mib():
    return mib_reader.read(SOURCE / "mibs")


@pytest.fixture(scope="session")
def tables(mib):
    """The tables of TARN-MIB by name."""
    return mib.tables


@pytest.fixture(scope="session")
def node_directory():
    return os.environ["TARN_NODE_DIR"]


@pytest.fixture
def start(tmp_path):
    """Starts a chassis and an agent; both must end cleanly."""
    systems = []

    def start_system(**settings):
        directory = tmp_path / str(len(systems))
        directory.mkdir()
        systems.append(System(directory, **settings))
        return systems[-1]

    yield start_system
    for system in systems:
        system.assert_clean_end()


@pytest.fixture(scope="module")
def shared(tmp_path_factory):
    """A chassis and an agent for all tests of a file that change nothing of it."""
    system = System(tmp_path_factory.mktemp("shared"))
    yield system
    system.assert_clean_end()
