"""An installed qelm is used as someone else's project would use it."""

import os
import re
import shutil

import pytest
from built import (
    BUILD,
    C_COMPILER,
    EXE,
    IS_WINDOWS,
    SOURCE,
    TOOLCHAIN_FILE,
    run,
    run_built,
)

HERE = SOURCE / "tests/consumer"
EXPECTED = "0 0.5 1 0.5\n"


@pytest.fixture(scope="module")
def prefix(tmp_path_factory):
    folder = tmp_path_factory.mktemp("installed")
    run("cmake", "--install", BUILD, "--prefix", folder)
    return folder


def library_folder(prefix):
    (pc,) = prefix.rglob("qelm.pc")
    return pc.parents[1]


def beside_its_dll(program, prefix):
    """Windows finds the DLL beside the program."""
    if IS_WINDOWS:
        shutil.copy(prefix / "bin/qelm.dll", program.parent)
    return program


def output_of(program, prefix):
    environment = dict(os.environ, LD_LIBRARY_PATH=str(library_folder(prefix)))
    return run_built(beside_its_dll(program, prefix), env=environment).replace("\r", "")


def test_through_the_cmake_package(prefix, tmp_path):
    toolchain = [f"-DCMAKE_TOOLCHAIN_FILE={TOOLCHAIN_FILE}"] if TOOLCHAIN_FILE else []
    # Cross toolchains search below their own root, so the package is named.
    run("cmake", "-S", HERE, "-B", tmp_path, "-G", "Ninja", *toolchain,
        f"-Dqelm_DIR={library_folder(prefix)}/cmake/qelm")
    run("cmake", "--build", tmp_path)
    assert output_of(tmp_path / f"square{EXE}", prefix) == EXPECTED


def test_through_pkg_config(prefix, tmp_path):
    environment = dict(os.environ, PKG_CONFIG_PATH=str(library_folder(prefix) / "pkgconfig"))
    flags = run("pkg-config", "--cflags", "--libs", "qelm", env=environment).split()
    program = tmp_path / f"square{EXE}"
    run(C_COMPILER, HERE / "square.c", "-o", program, *flags)
    assert output_of(program, prefix) == EXPECTED


@pytest.mark.parametrize("version", ["0.1", "1.99", "2.0"])
def test_the_cmake_package_refuses_another_major_version_and_a_later_one(prefix, tmp_path, version):
    (tmp_path / "CMakeLists.txt").write_text(
        "cmake_minimum_required(VERSION 3.25)\nproject(other LANGUAGES NONE)\n"
        f"find_package(qelm {version} REQUIRED)\n"
    )
    with pytest.raises(AssertionError, match=f'requested\\s+version\\s+"{version}"'):
        run("cmake", "-S", tmp_path, "-B", tmp_path / "b", "-G", "Ninja",
            f"-Dqelm_DIR={library_folder(prefix)}/cmake/qelm")


def test_the_installation_is_complete_and_has_no_path_of_the_build_in_it(prefix):
    names = {path.name for path in prefix.rglob("*") if path.is_file()}
    assert {"qelm.h", "LICENSE", "README.md", "CHANGELOG.md", "qelm.pc"} <= names
    assert ({"qelm.dll", "libqelm.dll.a", "qelm.def"} if IS_WINDOWS else {"libqelm.so.1"}) <= {
        path.name for path in prefix.rglob("*")
    }
    for path in [*prefix.rglob("*.cmake"), *prefix.rglob("*.pc")]:
        assert str(SOURCE) not in path.read_text(), path


def documented_example(text, comment=""):
    """The C program between the example's fences, freed of the comment's marks."""
    lines = [re.sub(rf"^{re.escape(comment)} {{0,3}}", "", line) for line in text.splitlines()]
    return "\n".join(lines).strip()


def test_the_readme_shows_the_program_that_is_tested():
    assert f"```c\n{(HERE / 'square.c').read_text()}```" in (SOURCE / "README.md").read_text()


def test_the_header_shows_the_program_that_is_tested():
    header = (SOURCE / "include/qelm.h").read_text()
    example = re.search(r"@code\{\.c\}\n(.*?)\n \* @endcode", header, re.DOTALL).group(1)
    assert documented_example(example, " *") == (HERE / "square.c").read_text().strip()
