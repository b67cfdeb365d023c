"""The package is imported from its sources, with the library and the tool that were just built; or as installed."""

import os
import pathlib
import sys

SOURCE = pathlib.Path(os.environ["QELM_SOURCE_DIR"])
sys.path[:0] = [str(SOURCE / "tests/support"), str(pathlib.Path(__file__).parent)]

import built  # noqa: E402

# The tests of the wheel run some of these tests on what they installed there.
INSTALLED = os.environ.get("QELM_TEST_INSTALLED")
if INSTALLED:
    import qelm

    assert qelm.__file__.startswith(INSTALLED), qelm.__file__
else:
    sys.path.insert(0, str(SOURCE / "bindings/python/src"))
    os.environ["QELM_LIBRARY"] = str(built.LIBRARY)
    os.environ["QELM_TOOL"] = str(built.program("qelm"))
    # For programs that the tests start.
    os.environ["PYTHONPATH"] = str(SOURCE / "bindings/python/src")
os.environ["MPLBACKEND"] = "Agg"

from hypothesis import settings  # noqa: E402

# The same cases every time; QELM_TEST_SEED is for looking further.
settings.register_profile("repeatable", derandomize="QELM_TEST_SEED" not in os.environ, deadline=None, database=None)
settings.load_profile("repeatable")
