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


# In continuous integration, what the presets built is not built once more.
IN_CI = bool(os.environ.get("CI")) and (BUILD.parent / "windows-release/tool.map").exists()


def ready_tree(system, preset):
    return [f"--tree={system}={BUILD.parent / preset}"] if IN_CI else []


def build_packages(folder, *arguments):
    run(SOURCE / "scripts/package", "--output", folder / "out", "--build", folder / "build", *arguments)
    return folder / "out"
