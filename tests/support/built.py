"""What was built and how to run it, as CTest tells it through the environment."""

import os
import pathlib
import subprocess

SOURCE = pathlib.Path(os.environ["QELM_SOURCE_DIR"])
BUILD = pathlib.Path(os.environ["QELM_BUILD_DIR"])
IS_WINDOWS = os.environ["QELM_SYSTEM"] == "Windows"
LAUNCHER = [os.environ["QELM_LAUNCHER"]] if os.environ.get("QELM_LAUNCHER") else []
C_COMPILER = os.environ["QELM_C_COMPILER"]
TOOLCHAIN_FILE = os.environ.get("QELM_TOOLCHAIN_FILE", "")
# Sanitizers or Valgrind: slow, and with libraries, memory and messages of their own.
CHECKER = os.environ.get("QELM_CHECKER", "")
HAS_TOOL = os.environ.get("QELM_HAS_TOOL") == "ON"
# Built for another system than this one.
IS_CROSS_BUILT = bool(TOOLCHAIN_FILE)
HAS_VIEW_PAGE = os.environ.get("QELM_HAS_VIEW_PAGE") == "ON"
EXE = ".exe" if IS_WINDOWS else ""
LIBRARY = BUILD / ("bin/qelm.dll" if IS_WINDOWS else "lib/libqelm.so")
OBJDUMP = "x86_64-w64-mingw32-objdump" if IS_WINDOWS else "objdump"


def program(name):
    """Path of a built program."""
    return BUILD / "bin" / (name + EXE)


def run(*command, **options):
    """Runs a host command; its output is returned, a failure raises with it."""
    done = subprocess.run(
        [str(word) for word in command], capture_output=True, text=True, **options
    )
    assert done.returncode == 0, f"{command} -> {done.returncode}\n{done.stdout}{done.stderr}"
    return done.stdout


def run_built(path, *arguments, **options):
    """Runs a program of the target system, under Wine where that is needed."""
    return run(*LAUNCHER, path, *arguments, **options)
