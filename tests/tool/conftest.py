import pathlib
import sys

import pytest

sys.path.insert(0, str(pathlib.Path(__file__).parents[1] / "support"))
sys.path.insert(0, str(pathlib.Path(__file__).parent))

from tool import Tool  # noqa: E402


@pytest.fixture
def qelm(tmp_path):
    """Runs the tool in an empty folder of its own."""
    return Tool(tmp_path)
