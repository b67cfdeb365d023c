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
    if not built.IS_WINDOWS:
        yield
        return
    shell = subprocess.Popen(
        [*built.LAUNCHER, "cmd"],
        stdin=subprocess.PIPE,
        stdout=subprocess.PIPE,
        stderr=subprocess.DEVNULL,
    )
    # Wine's services must be started by this session, not by a test's program:
    # they keep the output of whatever started them open.
    shell.stdin.write(b"echo ready\r\n")
    shell.stdin.flush()
    while b"ready" not in shell.stdout.readline().split(b"echo")[-1]:
        assert shell.poll() is None, "Wine does not start"
    yield
    shell.stdin.close()  # its end of input is the shell's end
    shell.wait(timeout=30)


@pytest.fixture
def qelm(tmp_path):
    """Runs the tool in an empty folder of its own."""
    return Tool(tmp_path)
