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
def packages(tmp_path_factory):
    return build_packages(tmp_path_factory.mktemp("first"), linux_x64=BUILD)


@pytest.fixture(scope="session")
def packages_again(packages, tmp_path_factory):
    windows = packages.parent / "build/windows-x64"
    return build_packages(tmp_path_factory.mktemp("second"), linux_x64=BUILD, windows_x64=windows)
