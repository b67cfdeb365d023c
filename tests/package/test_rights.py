"""What is compiled in is named, with its licence, in every package."""

import re
import sys

import pytest
from built import SOURCE, run

sys.path.insert(0, str(SOURCE / "packaging"))
import third_party  # noqa: E402

# A sentence of each text.
SENTENCES = {
    "MPL-2.0.txt": "Mozilla Public License Version 2.0",
    "LGPL-2.1.txt": "GNU LESSER GENERAL PUBLIC LICENSE Version 2.1",
    "GPL-3.txt": "GNU GENERAL PUBLIC LICENSE Version 3",
    "nanoflann.txt": "Redistributions in binary form",
    "cli11.txt": "Redistributions in binary form",
    "gcc.txt": "Runtime Library Exception",
    "mingw-w64.txt": "winpthreads",
    "three.txt": "Permission is hereby granted",
    "three-mesh-bvh.txt": "Permission is hereby granted",
    "fmt.txt": "Permission is hereby granted",
    "nlohmann-json.txt": "Permission is hereby granted",
    "stb.txt": "public domain", "colour-ramps.txt": "Kenneth Moreland", "Apache-2.0.txt": "Apache License",
    "zlib.txt": "without any express or implied warranty",
    "libdeflate.txt": "Permission is hereby granted",
    "eigen.txt": "Eigen",
    "glibc.txt": "GNU C Library",
}
LIBRARY_PARTS = {"Eigen", "nanoflann", "GCC's run-time library and C++ library"}
TOOL_PARTS = {"CLI11", "fmt", "JSON for Modern C++", "stb_image and stb_image_write",
              "colour ramps: viridis and magma, cividis, turbo, coolwarm", "three", "three-mesh-bvh"}  # fmt: skip


def folder_of(request, name):
    root = request.getfixturevalue(name)
    return root / ("share/doc/qelm/licenses" if name == "linux" else "licenses")


def parts(folder):
    """{software: files it is in}, from THIRD-PARTY.md."""
    rows = re.findall(r"^\| ([^|<]+), <\S+> \| [^|]+ \| ([^|]+) \|", (folder / "THIRD-PARTY.md").read_text(), re.M)
    named = {}
    for name, files in rows:  # one row for each version
        named.setdefault(name, set()).update(re.findall("`(.+?)`", files))
    return named


@pytest.mark.parametrize("name", ["zip_content", "nuget", "windows", "linux"])
def test_every_licence_that_is_listed_is_there_and_no_other(request, name):
    folder = folder_of(request, name)
    listed = set(re.findall(r"`([\w.-]+\.txt)`", (folder / "THIRD-PARTY.md").read_text()))
    assert listed == {path.name for path in folder.glob("*.txt")}
    for file in listed:
        text = " ".join((folder / file).read_text(errors="replace").split())
        assert SENTENCES[file].lower() in text.lower(), file


@pytest.mark.parametrize("name, libraries", [
    ("zip_content", {"libqelm.so", "qelm.dll"}), ("nuget", {"libqelm.so", "qelm.dll"}),
    ("windows", {"qelm.dll"}), ("linux", {"libqelm.so"}),
])  # fmt: skip
def test_what_the_libraries_contain_is_named(request, name, libraries):
    named = parts(folder_of(request, name))
    for part in LIBRARY_PARTS:
        assert libraries <= named[part], part
    assert not {part for part, files in named.items() if files & libraries} & (TOOL_PARTS | {"zlib", "libdeflate"})


@pytest.mark.parametrize("name, tool, inflate", [("windows", "qelm.exe", "zlib"), ("linux", "qelm", "libdeflate")])
def test_what_the_tool_contains_is_named(request, name, tool, inflate):
    named = parts(folder_of(request, name))
    for part in TOOL_PARTS | {inflate}:
        assert named[part] == {tool}, part


def test_what_the_windows_files_take_from_mingw_is_named(windows):
    named = parts(windows / "licenses")
    assert named["mingw-w64's run-time library and winpthreads"] == {"qelm.dll", "qelm.exe"}


def test_the_debian_packages_name_the_same(debian):
    tool = (debian / "usr/share/doc/qelm/copyright").read_text()
    assert "CLI11" in tool and "/usr/share/common-licenses/Apache-2.0" in tool
    library = (debian / "usr/share/doc/libqelm1/copyright").read_text()
    assert "nanoflann" in library and "CLI11" not in library


def test_a_package_that_nobody_has_looked_at_is_an_error():
    assert third_party.software_of(["libeigen3-dev"])
    with pytest.raises(SystemExit, match="libssl-dev"):
        third_party.software_of(["libeigen3-dev", "libssl-dev"])


def test_the_sources_are_all_that_is_under_version_control(sources):
    held = {str(path.relative_to(sources)) for path in sources.rglob("*") if path.is_file()}
    assert held == {name for name in run("git", "ls-files", cwd=SOURCE).splitlines() if (SOURCE / name).is_file()}


def test_the_readme_says_which_licences_hold():
    last = (SOURCE / "README.md").read_text().strip().split("\n\n")[-1]
    assert "MIT" in last and "MPL-2.0" in last
    assert (SOURCE / "LICENSE").read_text().startswith("MIT")
