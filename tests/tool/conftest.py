import pathlib
import subprocess
import sys

import pytest

sys.path.insert(0, str(pathlib.Path(__file__).parents[1] / "support"))
sys.path.insert(0, str(pathlib.Path(__file__).parent))

import built  # noqa: E402
from tool import Tool  # noqa: E402


@pytest.fixture(scope="session", autouse=True)
def one_wine_session():
    """Keeps Wine up between the tests: each start of it costs a second."""
    if not built.LAUNCHER:
        yield
        return
    null = subprocess.DEVNULL
    shell = subprocess.Popen([*built.LAUNCHER, "cmd"], stdin=subprocess.PIPE, stdout=null, stderr=null)
    yield
    shell.communicate(b"exit\r\n")


@pytest.fixture
def qelm(tmp_path):
    """Runs the tool in an empty folder of its own."""
    return Tool(tmp_path)
