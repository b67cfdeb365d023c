"""The package is imported from its sources, with the library and the tool that were just built."""

import os
import pathlib
import sys

SOURCE = pathlib.Path(os.environ["QELM_SOURCE_DIR"])
sys.path[:0] = [str(SOURCE / "tests/support"), str(SOURCE / "bindings/python/src"), str(pathlib.Path(__file__).parent)]

import built  # noqa: E402

os.environ["QELM_LIBRARY"] = str(built.LIBRARY)
os.environ["QELM_TOOL"] = str(built.program("qelm"))
# For programs that the tests start.
os.environ["PYTHONPATH"] = str(SOURCE / "bindings/python/src")
os.environ["MPLBACKEND"] = "Agg"

from hypothesis import settings  # noqa: E402

# The same cases every time; QELM_TEST_SEED is for looking further.
settings.register_profile("repeatable", derandomize="QELM_TEST_SEED" not in os.environ, deadline=None, database=None)
settings.load_profile("repeatable")
