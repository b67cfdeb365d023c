"""What of other people's work is compiled into a file, from the build itself, and its licences.

Three records of the build are read: which headers each object was compiled from (Ninja's log of
dependencies), which members the linker took from archives (its map), and whether the page of
`qelm view` is in it. Each file belongs to a package of the system, and SOFTWARE says what that is.
A package that is not in SOFTWARE is an error: nobody has looked at its licence yet.
"""

import pathlib
import re
import subprocess
from typing import NamedTuple

ROOT = pathlib.Path(__file__).resolve().parents[1]
COMMON = pathlib.Path("/usr/share/common-licenses")
DOCUMENTATION = pathlib.Path("/usr/share/doc")


class Software(NamedTuple):
    packages: str  # a pattern for their names
    name: str
    address: str
    licence: str
    texts: dict  # name in the licences folder: where it comes from


def debian(package):
    return DOCUMENTATION / package / "copyright"


SOFTWARE = [
    Software("libeigen3-dev", "Eigen", "https://eigen.tuxfamily.org",
             "MPL-2.0; a few files BSD",
             {"MPL-2.0.txt": COMMON / "MPL-2.0", "eigen.txt": debian("libeigen3-dev")}),
    Software("libnanoflann-dev", "nanoflann", "https://github.com/jlblancoc/nanoflann",
             "BSD-2-Clause", {"nanoflann.txt": debian("libnanoflann-dev")}),
    Software("libcli11-dev", "CLI11", "https://github.com/CLIUtils/CLI11", "BSD-3-Clause",
             {"cli11.txt": debian("libcli11-dev")}),
    Software("libfmt-dev", "fmt", "https://fmt.dev", "MIT", {"fmt.txt": debian("libfmt-dev")}),
    Software("nlohmann-json3-dev", "JSON for Modern C++", "https://json.nlohmann.me", "MIT",
             {"nlohmann-json.txt": debian("nlohmann-json3-dev")}),
    Software("libstb-dev", "stb_image and stb_image_write", "https://github.com/nothings/stb",
             "MIT or public domain", {"stb.txt": debian("libstb-dev")}),
    Software("zlib1g-dev|libz-mingw-w64-dev", "zlib", "https://zlib.net", "Zlib",
             {"zlib.txt": debian("zlib1g-dev")}),
    Software("libdeflate-dev", "libdeflate", "https://github.com/ebiggers/libdeflate", "MIT",
             {"libdeflate.txt": debian("libdeflate-dev")}),
    Software(r"(g\+\+|gcc)-mingw-w64-x86-64-posix(-runtime)?|libstdc\+\+-\d+-dev|libgcc-\d+-dev",
             "GCC's run-time library and C++ library", "https://gcc.gnu.org",
             "GPL-3.0-or-later with the GCC Runtime Library Exception",
             {"gcc.txt": debian("gcc-12-base"), "GPL-3.txt": COMMON / "GPL-3"}),
    Software(r"mingw-w64-(common|x86-64-dev)", "mingw-w64's run-time library and winpthreads",
             "https://www.mingw-w64.org", "ZPL-2.1, MIT, BSD and public domain",
             {"mingw-w64.txt": debian("mingw-w64-common")}),
    Software("libc6-dev|linux-libc-dev", "the GNU C library's headers and start-up files",
             "https://www.gnu.org/software/libc", "LGPL-2.1-or-later, with leave to link them in",
             {"glibc.txt": debian("libc6"), "LGPL-2.1.txt": COMMON / "LGPL-2.1"}),
]  # fmt: skip

INTRODUCTION = """# Third-party software in these files

Made from the record of the build: what the compiled files contain besides qelm itself. The texts
of all licences are in this folder.

| Software | Version | In | Licence | Text |
|---|---|---|---|---|
"""
CLOSING = """
All of it is used unchanged, but for the colour ramps, whose text says what was changed, and its source code is at the addresses above. The GCC Runtime Library
Exception lets programs that contain GCC's libraries be passed on under any terms.
"""


def _lines(*command, **options):
    done = subprocess.run([str(word) for word in command], capture_output=True, text=True, **options)
    return done.stdout.splitlines()


def _dependencies(tree):
    """{object: [files it was compiled from]}, from Ninja's log."""
    known, current = {}, None
    for line in _lines("ninja", "-C", tree, "-t", "deps"):
        if line.startswith("    "):
            current.append(line.strip())
        elif ":" in line:
            current = known.setdefault(line.split(":")[0], [])
    return known


def _from_archives(link_map):
    """Archives that gave members, and start-up files."""
    text = link_map.read_text()
    members = re.findall(r"^(/\S+\.a)\(", text.split("Discarded input sections")[0], re.M)
    startup = re.findall(r"^LOAD (/usr/\S+\.o)$", text, re.M)
    return set(members) | set(startup)


def files_in(tree, artefact, sources, link_map):
    """Files outside of the build tree that an artefact's objects below `sources` were made of."""
    tree = tree.resolve()
    dependencies = _dependencies(tree)
    inputs = [name for name in _lines("ninja", "-C", tree, "-t", "inputs", artefact) if name.startswith(sources)]
    named = {file for item in inputs for file in dependencies.get(item, [])}
    found = {(tree / file).resolve() for file in named | _from_archives(tree / link_map)}
    return {file for file in found if tree not in file.parents}


def packages_of(files, root):
    """{package: files}. A file of no package, outside of the project, is an error."""
    outside = sorted(str(file) for file in files if root not in file.parents)
    owners, found = {}, set()
    for line in _lines("dpkg-query", "-S", *outside):
        package, _, file = line.rpartition(": ")
        owners.setdefault(package.split(":")[0], set()).add(file)
        found.add(file)
    lost = [file for file in outside if file not in found]
    if lost:
        raise SystemExit(f"third_party: no package has {lost[0]}, which is compiled in")
    return owners


def software_of(packages):
    for package in packages:
        if not any(re.fullmatch(known.packages, package) for known in SOFTWARE):
            raise SystemExit(f"third_party: nobody has looked at the licence of {package}, which is compiled in")
    return [known for known in SOFTWARE if any(re.fullmatch(known.packages, name) for name in packages)]


def _version(package):
    (version,) = _lines("dpkg-query", "-W", "-f", "${source:Upstream-Version}\n", package)[:1]
    version = re.split(r"[+~]", version)[0]
    return "of no version" if version == "0.0" else version


def of_page(page_folder):
    """What npm's packages bring into the page, by the page's own list."""
    script = (page_folder / "build.mjs").read_text()
    names = re.findall(r"'([^']+)'", re.search(r"const packages = \[(.*)\]", script).group(1))
    entries = []
    for name in names:
        folder = page_folder / "node_modules" / name
        version = re.search(r'"version": "([^"]+)"', (folder / "package.json").read_text()).group(1)
        entries.append((Software(name, name, f"https://www.npmjs.com/package/{name}", "MIT",
                                 {f"{name}.txt": folder / "LICENSE"}), version))
    return entries


COLOUR_RAMPS = Software(
    "", "colour ramps: viridis and magma, cividis, turbo, coolwarm",
    "https://matplotlib.org/stable/users/explain/colors/colormaps.html",
    "CC0; Matplotlib's; Apache-2.0; Matplotlib's",
    {"colour-ramps.txt": ROOT / "packaging/licenses/colour-ramps.txt", "Apache-2.0.txt": COMMON / "Apache-2.0"},
)  # fmt: skip


class Contents(NamedTuple):
    """What one compiled file contains."""
    file: str
    software: list  # of (Software, version)


def contents_of(file, tree, artefact, sources, link_map, root):
    files = files_in(tree, artefact, sources, link_map)
    packages = packages_of(files, root)
    software = []
    if any(item.endswith("view.html") for item in _lines("ninja", "-C", tree, "-t", "inputs", artefact)):
        software += of_page(root / "tools/page")
    if any(path.name == "published_ramps.cpp" for path in files):
        software.append((COLOUR_RAMPS, "of no version"))
    for known in software_of(packages):
        first = sorted(name for name in packages if re.fullmatch(known.packages, name))[0]
        software.append((known, _version(first)))
    return Contents(file, software)


def notices(contents):
    """THIRD-PARTY.md and the licence texts for a package of compiled files: {name: bytes}."""
    rows, texts = {}, {}
    for content in contents:
        for software, version in content.software:
            rows.setdefault((software.name, version), (software, []))[1].append(content.file)
            texts.update(software.texts)
    lines = [
        f"| {software.name}, <{software.address}> | {version} | {', '.join(f'`{name}`' for name in files)}"
        f" | {software.licence} | {', '.join(f'`{name}`' for name in software.texts)} |\n"
        for (_, version), (software, files) in rows.items()
    ]
    document = INTRODUCTION + "".join(lines) + CLOSING
    entries = {name: path.read_bytes() for name, path in texts.items()}
    entries["THIRD-PARTY.md"] = document.encode()
    return entries
