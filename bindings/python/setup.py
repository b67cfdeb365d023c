"""Version and tag of the wheel; all else is in pyproject.toml.

The version is the C header's. QELM_WHEEL_PLATFORM names the platform of the native parts in
src/qelm/native (scripts/package sets it); without them the wheel is for any platform and uses a
library that is installed.
"""

import os
import pathlib
import re

from setuptools import Distribution, setup
from wheel.bdist_wheel import bdist_wheel

HERE = pathlib.Path(__file__).resolve().parent
PLATFORM = os.environ.get("QELM_WHEEL_PLATFORM")


def header_version():
    # scripts/package puts a copy of the header beside this file.
    header = next(path for path in (HERE / "qelm.h", HERE.parents[1] / "include/qelm.h") if path.is_file())
    text = header.read_text(encoding="utf-8")
    return ".".join(re.search(rf"QELM_VERSION_{part} (\d+)", text).group(1) for part in ("MAJOR", "MINOR", "PATCH"))


class NativeDistribution(Distribution):
    def has_ext_modules(self):
        return PLATFORM is not None


class Wheel(bdist_wheel):
    """Native parts for one platform, but for every Python: nothing in it is compiled against one."""

    def get_tag(self):
        return ("py3", "none", PLATFORM or "any")


setup(version=header_version(), distclass=NativeDistribution, cmdclass={"bdist_wheel": Wheel})
