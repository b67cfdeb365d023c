import pathlib
import sys

import pytest

sys.path.insert(0, str(pathlib.Path(__file__).parents[1] / "support"))

from built import BUILD, SOURCE, run  # noqa: E402


def build_packages(folder, **tools):
    """What scripts/package makes; the tools that are there are not compiled again."""
    options = [f"--tool={system.replace('_', '-')}={tree}" for system, tree in tools.items()]
    run(SOURCE / "scripts/package", "--output", folder / "out", "--build", folder / "build", *options)
    return folder / "out"


@pytest.fixture(scope="session")
def tools():
    """Trees of scripts/test that have the tool, so that it need not be compiled here once more."""
    trees = {"linux_x64": BUILD, "windows_x64": BUILD.parent / "windows-release"}
    found = {system: tree for system, tree in trees.items() if (tree / "CMakeCache.txt").is_file()}
    for tree in found.values():
        run("cmake", "--build", tree, "--target", "qelm_tool")
    return found


@pytest.fixture(scope="session")
def packages(tools, tmp_path_factory):
    return build_packages(tmp_path_factory.mktemp("first"), **tools)


@pytest.fixture(scope="session")
def packages_again(packages, tools, tmp_path_factory):
    windows = packages.parent / "build/windows-x64"
    return build_packages(tmp_path_factory.mktemp("second"), **{"windows_x64": windows, **tools})
