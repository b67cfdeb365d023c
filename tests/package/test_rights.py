"""What is compiled in is named, with its licence, in every package; and the tool can be built with a changed CGAL."""

import re
import sys

import pytest
from built import SOURCE, run

sys.path.insert(0, str(SOURCE / "packaging"))
import third_party  # noqa: E402

# A sentence of each text.
SENTENCES = {
    "MPL-2.0.txt": "Mozilla Public License Version 2.0",
    "LGPL-3.txt": "GNU LESSER GENERAL PUBLIC LICENSE Version 3",
    "LGPL-2.1.txt": "GNU LESSER GENERAL PUBLIC LICENSE Version 2.1",
    "GPL-3.txt": "GNU GENERAL PUBLIC LICENSE Version 3",
    "BSL": "Boost Software License - Version 1.0",
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
    "eigen.txt": "Eigen",
    "cgal.txt": "CGAL",
    "boost.txt": "Boost Software License - Version 1.0",
    "glibc.txt": "GNU C Library",
}
LIBRARY_PARTS = {"Eigen", "nanoflann", "GCC's run-time library and C++ library"}
TOOL_PARTS = {"CGAL, the readers of mesh files", "Boost", "CLI11", "fmt", "JSON for Modern C++", "stb_image and stb_image_write", "zlib",
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
    assert not {part for part, files in named.items() if files & libraries} & TOOL_PARTS


@pytest.mark.parametrize("name, tool", [("windows", "qelm.exe"), ("linux", "qelm")])
def test_what_the_tool_contains_is_named_and_cgal_with_what_its_licence_asks(request, name, tool):
    folder = folder_of(request, name)
    named = parts(folder)
    for part in TOOL_PARTS:
        assert named[part] == {tool}, part
    text = " ".join((folder / "THIRD-PARTY.md").read_text().split())
    assert "covered by the GNU Lesser General Public License" in text
    assert "-source.tar.gz" in text


def test_what_the_windows_files_take_from_mingw_is_named(windows):
    named = parts(windows / "licenses")
    assert named["mingw-w64's run-time library and winpthreads"] == {"qelm.dll", "qelm.exe"}


def test_the_debian_packages_name_the_same(debian):
    tool = (debian / "usr/share/doc/qelm/copyright").read_text()
    assert "CGAL" in tool and "/usr/share/common-licenses/LGPL-3" in tool
    library = (debian / "usr/share/doc/libqelm1/copyright").read_text()
    assert "nanoflann" in library and "CGAL" not in library


def test_a_package_that_nobody_has_looked_at_is_an_error():
    assert third_party.software_of(["libeigen3-dev"])
    with pytest.raises(SystemExit, match="libssl-dev"):
        third_party.software_of(["libeigen3-dev", "libssl-dev"])


def test_the_sources_hold_cgal_and_none_of_it_is_under_the_gpl(sources):
    headers = [path for path in (sources / "third-party/cgal/CGAL").rglob("*") if path.is_file()]
    assert len(headers) > 100
    for header in headers:
        licence = re.findall(r"SPDX-License-Identifier: (.*)", header.read_text(errors="replace"))
        assert all(name.startswith(("LGPL-3.0-or-later", "BSL-1.0")) for name in licence), header


def test_the_tool_is_compiled_from_the_sources_with_their_cgal(sources, tmp_path):
    """The one file that reads meshes with it; RELINKING.md says how to do the rest."""
    assert "-DQELM_CGAL_FOLDER=" in (sources / "RELINKING.md").read_text()
    cgal = sources / "third-party/cgal"
    entry = cgal / "CGAL/IO/OBJ.h"
    entry.write_text(entry.read_text() + "\n#define CHANGED_CGAL 1\n")
    run("cmake", "-S", sources, "-B", tmp_path, "-G", "Ninja", "-DCMAKE_BUILD_TYPE=None", "-DQELM_BUILD_TESTS=OFF",
        "-DQELM_BUILD_CSHARP=OFF", f"-DQELM_CGAL_FOLDER={cgal}")
    (target,) = [line.split(":")[0] for line in run("ninja", "-C", tmp_path, "-t", "targets", "all").splitlines()
                 if line.split(":")[0].endswith("mesh_reader.cpp.o")]
    run("ninja", "-C", tmp_path, target)
    used = [line.strip() for line in run("ninja", "-C", tmp_path, "-t", "deps", target).splitlines() if "/CGAL/" in line]
    assert used and all(str(sources) in line or line.startswith("..") for line in used)
    assert not [line for line in used if "/usr/include/CGAL" in line]


def test_the_readme_says_which_licences_hold():
    last = (SOURCE / "README.md").read_text().strip().split("\n\n")[-1]
    assert "MIT" in last and "LGPL" in last
    assert (SOURCE / "LICENSE").read_text().startswith("MIT")
