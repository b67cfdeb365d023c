"""qelm inside of another project: as its subproject, or as a static library."""

import re
import subprocess

import pytest
from built import EXE, IS_CROSS_BUILT, SOURCE, TOOLCHAIN_FILE, run, run_built

HERE = SOURCE / "tests/consumer"
EXPECTED = "0 0.5 1 0.5\n"
TOOLCHAIN = [f"-DCMAKE_TOOLCHAIN_FILE={TOOLCHAIN_FILE}"] if TOOLCHAIN_FILE else []
BEGINNING = "cmake_minimum_required(VERSION 3.25)\nproject(other LANGUAGES C CXX)\n"
PROGRAMS = f"""
add_executable(square {HERE}/square.c)
target_link_libraries(square PRIVATE qelm::qelm)
add_executable(square_static {HERE}/square.c)
target_link_libraries(square_static PRIVATE qelm::qelm_static)
"""


def configure(folder, text, *options):
    (folder / "CMakeLists.txt").write_text(BEGINNING + text)
    run("cmake", "-S", folder, "-B", folder / "tree", "-G", "Ninja", "-DCMAKE_BUILD_TYPE=None",
        "-DCMAKE_UNITY_BUILD=ON", *TOOLCHAIN, *options)
    return folder / "tree"


def targets(tree):
    return set(re.findall(r"^([\w.+-]+): ", run("ninja", "-C", tree, "-t", "targets", "all"), re.M))


def output(program):
    return run_built(program).replace("\r", "")


@pytest.mark.skipif(IS_CROSS_BUILT, reason="once is enough")
def test_fetched_into_a_project_it_brings_neither_tests_nor_tools(tmp_path):
    fetch = f"include(FetchContent)\nFetchContent_Declare(qelm SOURCE_DIR {SOURCE})\nFetchContent_MakeAvailable(qelm)\n"
    tree = configure(tmp_path, fetch + PROGRAMS)
    names = targets(tree)
    assert {"qelm", "square"} <= names
    assert not {"qelm_tool", "solve_tests", "csharp", "test"} & names
    run("cmake", "--build", tree)
    for name in ("square", "square_static"):
        assert output(tree / name) == EXPECTED
    assert (tree / "square").exists(), "its own folders, not qelm's"
    assert "libqelm" not in run("readelf", "-d", tree / "square_static")


def test_added_to_a_project_it_installs_nothing_of_its_own(tmp_path):
    tree = configure(tmp_path, f"add_subdirectory({SOURCE} qelm)\n")
    run("cmake", "--install", tree, "--prefix", tmp_path / "prefix")
    assert not [path for path in (tmp_path / "prefix").rglob("*") if path.is_file()]


def test_the_recipes_state_the_version_of_the_header():
    header = (SOURCE / "include/qelm.h").read_text()
    version = ".".join(re.search(rf"QELM_VERSION_{part} (\d+)", header).group(1) for part in ("MAJOR", "MINOR", "PATCH"))
    assert f'"version-semver": "{version}"' in (SOURCE / "packaging/vcpkg/ports/qelm/vcpkg.json").read_text()


@pytest.mark.skipif(IS_CROSS_BUILT, reason="once is enough")
def test_the_steps_of_the_recipes_build_and_install_what_others_find(tmp_path):
    """The calls of CMake that vcpkg and Conan come down to, on the sources that Conan exports."""
    portfile = (SOURCE / "packaging/vcpkg/ports/qelm/portfile.cmake").read_text()
    options = re.findall(r"-DQELM_\w+=\w+", portfile)
    conan = (SOURCE / "packaging/conan/conanfile.py").read_text()
    tools = re.search(r"for name in \((.*)\):\n.*QELM_BUILD_", conan).group(1)
    assert {f"-DQELM_BUILD_{name}=OFF" for name in re.findall(r'"(\w+)"', tools)} | {"-DQELM_STATIC=ON"} == set(options)
    for pattern in re.findall(r'"([^"]+)"', re.search(r"for pattern in \((.*)\):", conan).group(1)):
        for path in SOURCE.glob(pattern.replace("/*", "/**/*")):
            if path.is_file():
                target = tmp_path / "exported" / path.relative_to(SOURCE)
                target.parent.mkdir(parents=True, exist_ok=True)
                target.write_bytes(path.read_bytes())

    tree, prefix = tmp_path / "tree", tmp_path / "prefix"
    done = subprocess.run(
        ["cmake", "-S", tmp_path / "exported", "-B", tree, "-G", "Ninja", *options, "-DCMAKE_BUILD_TYPE=Release",
         "-DBUILD_SHARED_LIBS=ON", f"-DCMAKE_INSTALL_PREFIX={prefix}", "-DCMAKE_INSTALL_LIBDIR=lib",
         "-DCMAKE_UNITY_BUILD=ON"], capture_output=True, text=True)  # fmt: skip
    assert done.returncode == 0, done.stderr
    assert not re.search(r"not used by the project:.*QELM_", done.stderr, re.S)
    run("cmake", "--build", tree, "--target", "install")

    # What the port's next lines work on.
    assert "CONFIG_PATH lib/cmake/qelm)" in portfile and (prefix / "lib/cmake/qelm/qelmConfig.cmake").exists()
    assert (prefix / "lib/pkgconfig/qelm.pc").exists()
    user = tmp_path / "user"
    user.mkdir()
    tree = configure(user, "find_package(qelm REQUIRED)\n" + PROGRAMS, f"-Dqelm_DIR={prefix}/lib/cmake/qelm")
    run("cmake", "--build", tree)
    for name in ("square", "square_static"):
        assert output(tree / name) == EXPECTED
