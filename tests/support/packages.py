"""The release packages: their names, and how they are built."""

import re

from built import SOURCE, run

VERSION = ".".join(
    re.search(rf"QELM_VERSION_{part} (\d+)", (SOURCE / "include/qelm.h").read_text()).group(1)
    for part in ("MAJOR", "MINOR", "PATCH")
)
ZIP = f"qelm-{VERSION}.zip"
NUPKG = f"Qelm.{VERSION}.nupkg"
WINDOWS = f"qelm-{VERSION}-windows-x64.zip"
LINUX = f"qelm-{VERSION}-linux-x64.tar.gz"
SOURCE_ARCHIVE = f"qelm-{VERSION}-source.tar.gz"


def build_packages(folder, *names):
    run(SOURCE / "scripts/package", "--output", folder / "out", "--build", folder / "build", *names)
    return folder / "out"
