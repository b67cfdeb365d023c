"""Which releases of Eigen and nanoflann the configuration accepts, and what it says otherwise."""

import subprocess

import pytest
from built import SOURCE

EIGEN_3 = """#define EIGEN_WORLD_VERSION {0}
#define EIGEN_MAJOR_VERSION {1}
#define EIGEN_MINOR_VERSION {2}
"""
EIGEN_5 = """#define EIGEN_WORLD_VERSION 3
#define EIGEN_MAJOR_VERSION {0}
#define EIGEN_MINOR_VERSION {1}
#define EIGEN_PATCH_VERSION {2}
"""


def with_headers(folder, eigen=None, nanoflann=None):
    """Headers that say no more than their version."""
    if eigen:
        file, text = (("src/Core/util/Macros.h", EIGEN_3) if eigen[0] == 3 else ("Version", EIGEN_5))
        (folder / "Eigen" / file).parent.mkdir(parents=True)
        (folder / "Eigen" / file).write_text(text.format(*eigen))
    if nanoflann:
        (folder / "nanoflann.hpp").write_text(f"#define NANOFLANN_VERSION {nanoflann}\n")
    return folder


def configure(tmp_path, headers=""):
    project = tmp_path / "project"
    project.mkdir()
    (project / "CMakeLists.txt").write_text(
        "cmake_minimum_required(VERSION 3.25)\nproject(other LANGUAGES NONE)\n"
        f"include({SOURCE}/cmake/HeaderOnlyPackages.cmake)\n"
    )
    return subprocess.run(["cmake", "-S", project, "-B", tmp_path / "tree", "-G", "Ninja",
                           f"-DQELM_HEADER_FOLDERS={headers}"], capture_output=True, text=True)


def test_the_installed_packages_are_accepted(tmp_path):
    assert configure(tmp_path).returncode == 0


@pytest.mark.parametrize("headers", [
    {"eigen": (3, 4, 0)}, {"eigen": (5, 0, 0)}, {"eigen": (5, 1, 2)},
    {"nanoflann": "0x140"}, {"nanoflann": "0x155"}, {"nanoflann": "0x010600"}, {"nanoflann": "0x010C01"},
])  # fmt: skip
def test_what_works_is_accepted(tmp_path, headers):
    done = configure(tmp_path, with_headers(tmp_path, **headers))
    assert done.returncode == 0, done.stderr


@pytest.mark.parametrize("headers, complaint", [
    ({"eigen": (3, 3, 9)}, "qelm needs Eigen3 3.4 or later, below 6; this is 3.3.9"),
    ({"eigen": (6, 0, 0)}, "qelm needs Eigen3 3.4 or later, below 6; this is 6.0.0"),
    ({"nanoflann": "0x132"}, "qelm needs nanoflann 1.4 or later, below 2; this is 1.3.2"),
    ({"nanoflann": "0x020000"}, "qelm needs nanoflann 1.4 or later, below 2; this is 2.0.0"),
])  # fmt: skip
def test_what_does_not_is_refused_in_one_line(tmp_path, headers, complaint):
    done = configure(tmp_path, with_headers(tmp_path, **headers))
    assert done.returncode != 0
    assert complaint in [line.strip() for line in done.stderr.splitlines()]
