import os
import pathlib
import sys

import pytest

sys.path.insert(0, str(pathlib.Path(__file__).parents[1] / "support"))

from built import run  # noqa: E402
from packages import (  # noqa: E402
    LINUX,
    NUPKG,
    SOURCE_ARCHIVE,
    VERSION,
    WINDOWS,
    ZIP,
    build_packages,
    ready_tree,
)


def unpack(package, folder):
    # Python's own unpacking makes files of links.
    run("cmake", "-E", "tar", "xf", package, cwd=folder)
    return folder


@pytest.fixture(scope="session")
def packages(tmp_path_factory):
    """Everything that scripts/package makes; or, while one works on these tests, a folder with it."""
    ready = os.environ.get("QELM_PACKAGES")
    return pathlib.Path(ready) if ready else build_packages(
        tmp_path_factory.mktemp("first"), *ready_tree("windows-x64", "windows-release"))


@pytest.fixture(scope="session")
def zip_content(packages, tmp_path_factory):
    return unpack(packages / ZIP, tmp_path_factory.mktemp("zip")) / f"qelm-{VERSION}"


@pytest.fixture(scope="session")
def nuget(packages, tmp_path_factory):
    return unpack(packages / NUPKG, tmp_path_factory.mktemp("nupkg"))


@pytest.fixture(scope="session")
def windows(packages, tmp_path_factory):
    return unpack(packages / WINDOWS, tmp_path_factory.mktemp("windows")) / f"qelm-{VERSION}-windows-x64"


@pytest.fixture(scope="session")
def linux(packages, tmp_path_factory):
    return unpack(packages / LINUX, tmp_path_factory.mktemp("linux")) / f"qelm-{VERSION}-linux-x64"


@pytest.fixture(scope="session")
def debian(packages, tmp_path_factory):
    """The root of a system into which dpkg has put the three packages."""
    root = tmp_path_factory.mktemp("debian")
    (root / "var/lib/dpkg/info").mkdir(parents=True)
    for name in ("status", "available"):
        (root / "var/lib/dpkg" / name).write_text("")
    run("dpkg", f"--root={root}", "--force-depends", "--force-not-root", "--force-script-chrootless", "--log=/dev/null",
        "-i", *sorted(packages.glob("*.deb")))
    return root


@pytest.fixture(scope="session")
def wheel(packages, tmp_path_factory):
    (file,) = packages.glob("*manylinux*.whl")
    return unpack(file, tmp_path_factory.mktemp("wheel"))


@pytest.fixture(scope="session")
def sources(packages, tmp_path_factory):
    return unpack(packages / SOURCE_ARCHIVE, tmp_path_factory.mktemp("source")) / f"qelm-{VERSION}"
