"""How library and tool are found, and what is said when they are not."""

import os
import re
import shutil
import subprocess
import sys

import pytest
from built import BUILD, LIBRARY, SOURCE, program, run

PACKAGES = SOURCE / "bindings/python/src"
CHECK = "import qelm; assert qelm.__version__ == qelm.library_version()"


def python(code, packages=PACKAGES, **changed):
    environment = {**os.environ, "PYTHONPATH": str(packages), **changed}
    environment = {name: value for name, value in environment.items() if value is not None}
    return subprocess.run([sys.executable, *code], env=environment, capture_output=True, text=True)


@pytest.fixture
def carrying(tmp_path):
    """A copy of the package with native parts of its own, as a wheel has it."""
    shutil.copytree(PACKAGES, tmp_path, dirs_exist_ok=True, ignore=shutil.ignore_patterns("__pycache__"))
    run("cmake", "--install", BUILD, "--prefix", tmp_path / "prefix")
    native = tmp_path / "qelm/native"
    for name, source in {"lib": LIBRARY, "bin": tmp_path / "prefix/bin/qelm"}.items():
        (native / name).mkdir(parents=True)
        shutil.copy(source, native / name / ("libqelm.so.1" if name == "lib" else "qelm"))
    return tmp_path


def test_what_the_package_carries_is_found(carrying):
    done = python(["-c", CHECK], carrying, QELM_LIBRARY=None, QELM_TOOL=None)
    assert done.returncode == 0, done.stderr


@pytest.mark.parametrize("form", [["-m", "qelm"], ["-m", "qelm_command"]])
def test_the_command_is_the_tool_that_the_package_carries(carrying, form):
    version = run(program("qelm"), "--version")
    assert python([*form, "--version"], carrying, QELM_TOOL=None).stdout == version
    refused = python([*form, "solve"], carrying, QELM_TOOL=None)
    assert refused.returncode == 2 and refused.stderr.startswith("qelm: error: ")


def test_the_command_starts_without_numpy():
    code = "import sys, qelm_command; print('numpy' in sys.modules, 'qelm' in sys.modules)"
    assert python(["-c", code]).stdout == "False False\n"


def test_a_command_without_tool_says_so(tmp_path):
    done = python(["-m", "qelm_command"], QELM_TOOL=str(tmp_path / "none"))
    assert done.returncode == 1 and "has no command-line tool at" in done.stderr


def test_a_tool_that_is_no_program_is_named(tmp_path):
    (tmp_path / "tool").write_text("no program")
    done = python(["-m", "qelm_command"], QELM_TOOL=str(tmp_path / "tool"))
    assert done.returncode == 1
    assert done.stderr == f"qelm: the command-line tool {tmp_path / 'tool'} cannot be run: Permission denied\n"


def test_without_library_the_error_says_where_it_was_looked_for():
    done = python(["-c", CHECK], QELM_LIBRARY=None)
    last = done.stderr.strip().splitlines()[-1]
    assert last.startswith("qelm.errors.LibraryError: the native library cannot be loaded: ")
    assert f"it is neither at {PACKAGES / 'qelm/native/lib/libqelm.so.1'}" in last and "QELM_LIBRARY" in last


def test_another_library_is_refused_by_what_it_lacks(tmp_path):
    (tmp_path / "other.c").write_text("int qelmctorTagged(void) { return 0; }\n")
    run("cc", "-shared", "-fPIC", "other.c", "-o", "other.so", cwd=tmp_path)
    last = python(["-c", CHECK], QELM_LIBRARY=str(tmp_path / "other.so")).stderr.strip().splitlines()[-1]
    found = re.match(rf"qelm.errors.LibraryError: {tmp_path / 'other.so'} has no (\w+): ", last)
    assert found and found.group(1) in (SOURCE / "src/exports.txt").read_text().split()


def test_importing_needs_no_library():
    done = python(["-c", "import qelm"], QELM_LIBRARY="/nowhere.so")
    assert done.returncode == 0, done.stderr
