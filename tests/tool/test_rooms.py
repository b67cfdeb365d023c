"""The tool's rooms: the table of docs/architecture.md is complete, and arrows go down it only."""

import re

import built

TOOL = built.SOURCE / "tools" / "qelm"
INCLUDE = re.compile(r'^#include "(?:(\w+)/)?(\w+\.h)"', re.MULTILINE)


def rooms():
    """From the top of the table to its bottom."""
    text = (built.SOURCE / "docs" / "architecture.md").read_text()
    table = text.partition("### The tool's rooms")[2].partition("\n## ")[0]
    return re.findall(r"^\| `(\w+)` \|", table, re.MULTILINE)


def test_the_table_names_every_room():
    assert sorted(rooms()) == sorted(p.name for p in TOOL.iterdir() if p.is_dir())


def test_no_room_includes_one_above_it():
    depth = {room: k for k, room in enumerate(rooms())}
    wrong = []
    for source in sorted([*TOOL.glob("*/*.cpp"), *TOOL.glob("*/*.h")]):
        for room, name in INCLUDE.findall(source.read_text()):
            if name != "qelm.h" and depth.get(room, -1) < depth[source.parent.name]:
                wrong.append(f"{source.relative_to(TOOL)} includes {room}/{name}")
    assert wrong == []


def test_every_source_has_its_header():
    alone = {"text/fmt_library.cpp"}  # compiles another library's templates
    sources = {source for source in TOOL.glob("*/*.cpp") if str(source.relative_to(TOOL)) not in alone}
    assert [source.name for source in sorted(sources) if not source.with_suffix(".h").exists()] == []


def test_tests_mirror_the_rooms():
    folders = {p.name for p in (built.SOURCE / "tests" / "tool").iterdir() if p.is_dir() and p.name != "__pycache__"}
    assert folders <= set(rooms())


def test_construction_includes_neither_welding_nor_the_check():
    mesh = built.SOURCE / "src" / "mesh"
    for source in [*mesh.glob("*.cpp"), *mesh.glob("*.h")]:
        assert not re.search(r'"mesh/(weld|check)/', source.read_text()), source.name
