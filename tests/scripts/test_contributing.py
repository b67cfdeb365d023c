"""CONTRIBUTING.md: its paths are there, and what exists has been through its checklists."""

import re

import pytest
from built import SOURCE

PAGE = (SOURCE / "CONTRIBUTING.md").read_text()
FOLDERS = "bench|bindings|cmake|docs|include|packaging|scripts|src|tests|tools"


def text(path):
    return (SOURCE / path).read_text()


def section(title):
    return PAGE.partition(f"\n## {title}\n")[2].partition("\n## ")[0]


def paths(part):
    """What looks like a path of these sources, but for names that stand for any (NAME_fuzz.cpp)."""
    quoted = re.findall(r"`([\w./-]+)`|\]\(([\w./-]+)", part)
    found = {path for pair in quoted for path in pair if re.match(rf"({FOLDERS})(/|$)", path)}
    return {path for path in found if not re.search("[A-Z]{3,}", path.rpartition("/")[2].partition(".")[0])}


def test_every_path_is_there():
    assert len(paths(PAGE)) > 30
    assert [path for path in sorted(paths(PAGE)) if not (SOURCE / path).exists()] == []


def test_ten_files_are_to_be_read():
    steps = re.findall(r"^(\d+)\. \[(.*?)\]\((.*?)\)", section("How to read this code"), re.MULTILINE)
    assert [int(number) for number, _, _ in steps] == list(range(1, 11))
    assert all(shown == target for _, shown, target in steps)


# ---- exports

PORTABLE = text("src/exports.txt").split()


def declaration(name):
    return re.search(rf"^QELM_API [\w\s*]*?\b{name}\((.*?)\);", text("include/qelm.h"), re.MULTILINE | re.DOTALL)[1]


@pytest.mark.parametrize("name", [*PORTABLE, *text("src/exports-windows.txt").split()])
def test_every_export_is_written_up_and_tested(name):
    assert re.search(rf"\b{name}\b", text("CHANGELOG.md"))
    suites = [*SOURCE.glob("tests/**/*_test.cpp")]
    assert any(re.search(rf"\b{name}\(", suite.read_text()) for suite in suites)


TAKE_ARRAYS = [name for name in PORTABLE if re.search(r"const (double|int) *\*", declaration(name))]


# heat_map_fuzz calls what is below wobj(): it compares text in memory.
@pytest.mark.parametrize("name", [name for name in TAKE_ARRAYS if name != "wobj"])
def test_every_export_that_takes_arrays_is_fuzzed(name):
    assert any(re.search(rf"\b{name}\(", fuzzer.read_text()) for fuzzer in SOURCE.glob("tests/fuzz/*_fuzz.cpp"))


# ---- fuzzers, of exports and of formats alike


@pytest.mark.parametrize("name", sorted(path.stem for path in SOURCE.glob("tests/fuzz/*_fuzz.cpp") if path.stem != "mesh_file_fuzz"))
def test_every_fuzzer_has_a_row_and_sources_that_are_there(name):
    assert f"| `{name}` |" in text("docs/fuzzing.md")
    of = re.search(rf'^    "{name.removesuffix("_fuzz")}": \[(.*?)\],$', text("scripts/fuzz-coverage-table"), re.MULTILINE | re.DOTALL)
    sources = re.findall(r'"([\w/*.]+)"', of[1])
    assert sources
    for source in sources:
        assert [*SOURCE.glob(f"src/{source}"), *SOURCE.glob(f"tools/qelm/{source}.cpp")], source


# ---- formats


def listed(path, constant):
    """The extensions in a text for messages: ".obj, .off or .ply"."""
    return re.findall(r"\.(\w+)", re.search(rf"{constant} *=\s*((?:\"[^\"]*\"\s*)+);", text(path))[1])


READ = listed("tools/qelm/mesh_files/mesh_reader.h", "kReadableFormats")
WRITTEN = listed("tools/qelm/mesh_files/mesh_writer.h", "kWritableFormats")
CUT = listed("tools/qelm/commands/curves_command.cpp", "kFormatNames")


def first_cells():
    """Of the table of formats in docs/tool.md, which an empty line would end."""
    table = re.search(r"(^\|.*\n)+", text("docs/tool.md").partition("\n## Files\n")[2], re.MULTILINE)[0]
    return " ".join(re.findall(r"^\| (.*?) \|", table, re.MULTILINE))


@pytest.mark.parametrize("extension", sorted({*READ, *WRITTEN, *CUT}))
def test_every_format_is_written_up_and_tested(extension):
    assert re.search(rf"\b{extension}\b", first_cells(), re.IGNORECASE) or extension in ("svg", "csv", "json")
    assert f".{extension}" in text("tools/qelm/terminal/help_texts.cpp")
    tests = [*SOURCE.glob("tests/tool/mesh_files/*.py"), *SOURCE.glob("tests/tool/curves/*.py"), *SOURCE.glob("tests/tool/commands/*.py")]
    assert any(re.search(rf"\.{extension}\b", test.read_text()) for test in tests)


def readers():
    """For each reader its extensions: .vtp and .vtu have one."""
    lines = re.findall(r"^  if \((extension == .*)\) return Format::", text("tools/qelm/mesh_files/mesh_reader.cpp"), re.MULTILINE)
    return [re.findall(r'"\.(\w+)"', line) for line in lines]


def test_every_format_for_messages_has_a_reader():
    assert sorted(READ) == sorted(extension for reader in readers() for extension in reader)


@pytest.mark.parametrize("extensions", readers(), ids="|".join)
def test_every_reader_is_fuzzed_from_seeds(extensions):
    pattern = rf"\.({'|'.join(extensions)})\b"
    programs = [path for path in SOURCE.glob("tests/fuzz/*_file_fuzz.cpp") if path.stem != "mesh_file_fuzz"]
    fuzzers = [path for path in programs if re.search(pattern, path.read_text())]
    assert fuzzers and all(any((SOURCE / "tests/fuzz/seeds" / path.stem).iterdir()) for path in fuzzers)


def test_shells_complete_every_format_that_is_read():
    assert re.search(r'kMeshFiles = "(.*)"', text("tools/qelm/terminal/completion.cpp"))[1].split("|") == READ


# ---- selectors

KINDS = re.findall(r'kind_ == "(\w+)"(?!\s*&&)', text("tools/qelm/conditions/selectors.cpp"))


def test_selectors_are_found_where_they_are_looked_for():
    types = re.search(r"using Selector = std::variant<(.*?)>;", text("tools/qelm/conditions/selectors.h"), re.DOTALL)[1]
    # Planes have three words, loops and parts a second form; boundary and the ends of the box have no colon.
    assert len(KINDS) + 2 + 2 - 2 == len(types.split(","))


@pytest.mark.parametrize("kind", KINDS)
def test_every_selector_is_written_up_completed_fuzzed_and_tested(kind):
    assert re.search(rf'^ +"  {kind}:', text("tools/qelm/terminal/help_texts.cpp"), re.MULTILINE)
    assert re.search(rf"^\| `{kind}:", text("docs/boundary-conditions.md"), re.MULTILINE)
    assert re.search(rf'[" ]{kind}:', re.search(r"kSelectors =(.*?);", text("tools/qelm/terminal/completion.cpp"), re.DOTALL)[1])
    assert re.search(rf'^"{kind}:', text("tests/fuzz/conditions_fuzz.dict"), re.MULTILINE)
    tests = [*SOURCE.glob("tests/tool/conditions/*.py")]
    assert any(f"{kind}:" in test.read_text() for test in tests)
