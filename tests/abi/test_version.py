"""The version is stated once, in the header; everything else follows it."""

import re

import pytest
from built import BUILD, IS_WINDOWS, LIBRARY, SOURCE


def header_version():
    text = (SOURCE / "include/qelm.h").read_text()
    parts = [
        re.search(rf"#define QELM_VERSION_{part} (\d+)", text).group(1)
        for part in ("MAJOR", "MINOR", "PATCH")
    ]
    return ".".join(parts)


def test_the_build_follows_the_header():
    cache = (BUILD / "CMakeCache.txt").read_text()
    assert re.search(r"CMAKE_PROJECT_VERSION:STATIC=(\S+)", cache).group(1) == header_version()


def test_the_pkg_config_file_and_the_cmake_package_follow_it():
    assert f"Version: {header_version()}\n" in (BUILD / "qelm.pc").read_text()
    assert f'"{header_version()}"' in (BUILD / "qelmConfigVersion.cmake").read_text()


def test_the_changelog_has_an_entry_for_it():
    assert re.search(
        rf"^## {re.escape(header_version())}\b", (SOURCE / "CHANGELOG.md").read_text(), re.MULTILINE
    )


def test_every_function_says_since_which_released_version():
    header = (SOURCE / "include/qelm.h").read_text()
    since = re.findall(r"^ \* Since: +(\S+)$", header, re.MULTILINE)
    assert len(since) == len(re.findall(r"^QELM_API ", header, re.MULTILINE))
    released = re.findall(r"^## (\S+)", (SOURCE / "CHANGELOG.md").read_text(), re.MULTILINE)
    assert set(since) <= set(released)


@pytest.mark.skipif(not IS_WINDOWS, reason="about the DLL")
def test_the_version_resource_of_the_dll_follows_it():
    wide = header_version().encode("utf-16-le")
    content = LIBRARY.read_bytes()
    for key in ("FileVersion", "ProductVersion"):
        at = content.index(key.encode("utf-16-le"))
        assert wide in content[at : at + 100], key


@pytest.mark.skipif(IS_WINDOWS, reason="about the shared object")
def test_the_file_name_of_the_shared_object_follows_it():
    assert LIBRARY.resolve().name == f"libqelm.so.{header_version()}"
