"""Wheels of the Python binding: the package, the native library, the command-line tool.

A wheel is built by setuptools in a folder of its own, in which everything lies that goes into it.
"""

import os
import pathlib
import re
import shutil
import subprocess
import sys

BINDING = pathlib.Path(__file__).resolve().parents[1] / "bindings/python"
WINDOWS_PLATFORM = "win_amd64"

# What a wheel takes from an installation prefix, and what it becomes below qelm/native.
NATIVE_PARTS = {
    "linux-x64": {"lib/libqelm.so.1": "lib/libqelm.so.1", "bin/qelm": "bin/qelm"},
    "windows-x64": {"bin/qelm.dll": "bin/qelm.dll", "bin/qelm.exe": "bin/qelm.exe"},
}

# The newest symbol versions of GCC's libraries that systems with a glibc have, as the tags' policies
# say (PEP 600 leaves them to the systems of a glibc's time): (library, version) -> minor of glibc.
POLICY = {
    "GLIBCXX": [((3, 4, 19), 17), ((3, 4, 22), 24), ((3, 4, 24), 27), ((3, 4, 28), 31), ((3, 4, 29), 34),
                ((3, 4, 30), 35), ((3, 4, 32), 39)],
    "CXXABI": [((1, 3, 7), 17), ((1, 3, 10), 24), ((1, 3, 11), 27), ((1, 3, 12), 31), ((1, 3, 13), 34),
               ((1, 3, 14), 39)],
    "GCC": [((4, 8, 0), 17), ((7, 0, 0), 27)],
}  # fmt: skip
# Libraries that every such system has; others would have to be in the wheel.
SYSTEM_LIBRARIES = {
    "ld-linux-x86-64.so.2", "libc.so.6", "libgcc_s.so.1", "libm.so.6", "libpthread.so.0", "libstdc++.so.6",
}  # fmt: skip


def required_versions(binary):
    """{"GLIBC": (2, 35), ...}: the newest version of each family that a binary asks for."""
    text = subprocess.run(["objdump", "-T", binary], check=True, capture_output=True, text=True).stdout
    newest = {}
    for family, number in re.findall(r"\((GLIBC|GLIBCXX|CXXABI|GCC)_(\d+(?:\.\d+)*)\)", text):
        version = tuple(map(int, number.split(".")))
        newest[family] = max(newest.get(family, ()), version)
    return newest


def needed_libraries(binary):
    text = subprocess.run(["objdump", "-p", binary], check=True, capture_output=True, text=True).stdout
    return set(re.findall(r"NEEDED\s+(\S+)", text))


def glibc_minor(binaries):
    """The oldest glibc 2.x whose systems have everything that the binaries ask for."""
    minor = 0
    for binary in binaries:
        for family, version in required_versions(binary).items():
            if family == "GLIBC":
                minor = max(minor, version[1])
                continue
            enough = [least for newest, least in POLICY[family] if version <= newest]
            if not enough:
                raise SystemExit(f"package: {binary} asks for {family}_{'.'.join(map(str, version))}; extend POLICY")
            minor = max(minor, min(enough))
    return minor


def platform_of(system, binaries):
    """The platform tag that is true of the binaries."""
    if system.startswith("windows"):
        return WINDOWS_PLATFORM
    carried = {binary.name for binary in binaries}
    for binary in binaries:
        foreign = needed_libraries(binary) - SYSTEM_LIBRARIES - carried
        if foreign:
            raise SystemExit(f"package: {binary} needs {', '.join(sorted(foreign))}, which not every system has")
    return f"manylinux_2_{glibc_minor(binaries)}_x86_64"


def stage(folder, system, prefix, header, licences):
    """Lays out what goes into a wheel; returns the native binaries there."""
    if folder.exists():
        shutil.rmtree(folder)
    shutil.copytree(BINDING / "src", folder / "src", ignore=shutil.ignore_patterns("__pycache__", "native"))
    for name in ("pyproject.toml", "setup.py", "README.md"):
        shutil.copyfile(BINDING / name, folder / name)
    shutil.copyfile(header, folder / "qelm.h")
    for name, content in licences.items():
        (folder / name).parent.mkdir(exist_ok=True)
        (folder / name).write_bytes(content)
    binaries = []
    for source, name in NATIVE_PARTS[system].items():
        target = folder / "src/qelm/native" / name
        target.parent.mkdir(parents=True, exist_ok=True)
        shutil.copyfile((prefix / source).resolve(), target)
        binaries.append(target)
    # The modes go into the wheel, and installers heed them.
    for path in folder.rglob("*"):
        path.chmod(0o755 if path.is_dir() or path in binaries else 0o644)
    return binaries


def build(folder, system, prefix, header, licences, output):
    """Builds the wheel of one system from an installation prefix; returns its path.

    `licences` is {"LICENSE": bytes, "licenses/NAME": bytes}. The same input gives the same bytes.
    """
    binaries = stage(folder, system, prefix, header, licences)
    environment = {
        **os.environ,
        "QELM_WHEEL_PLATFORM": platform_of(system, binaries),
        # The first moment that a zip entry can have.
        "SOURCE_DATE_EPOCH": "315532800",
        "PYTHONHASHSEED": "0",
        "PYTHONDONTWRITEBYTECODE": "1",
    }
    done = subprocess.run(
        [sys.executable, "-m", "build", "--wheel", "--no-isolation", "--outdir", folder / "dist", folder],
        env=environment, capture_output=True, text=True,
    )  # fmt: skip
    if done.returncode != 0:
        raise SystemExit(f"{done.stdout}{done.stderr}package: building the wheel failed, see above")
    (wheel,) = (folder / "dist").glob("*.whl")
    return pathlib.Path(shutil.copy(wheel, output))
