"""The release packages: their names, and how they are built."""

import os
import re

from built import BUILD, SOURCE, run

VERSION = ".".join(
    re.search(rf"QELM_VERSION_{part} (\d+)", (SOURCE / "include/qelm.h").read_text()).group(1)
    for part in ("MAJOR", "MINOR", "PATCH")
)
ZIP = f"qelm-{VERSION}.zip"
NUPKG = f"Qelm.{VERSION}.nupkg"
WINDOWS = f"qelm-{VERSION}-windows-x64.zip"
LINUX = f"qelm-{VERSION}-linux-x64.tar.gz"
SOURCE_ARCHIVE = f"qelm-{VERSION}-source.tar.gz"


def ready_tool():
    """In continuous integration, the tool for Windows is that of its own preset."""
    tree = BUILD.parent / "windows-release"
    return [f"--tool=windows-x64={tree}"] if os.environ.get("CI") and (tree / "tool.map").exists() else []


def build_packages(folder, *names):
    run(SOURCE / "scripts/package", "--output", folder / "out", "--build", folder / "build", *ready_tool(), *names)
    return folder / "out"
