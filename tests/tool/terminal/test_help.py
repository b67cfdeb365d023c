"""--help: the grammar, the exit codes, and examples that run as they stand."""

import re
import shlex

import pytest

import built
import shapes
from tool import Tool, run_all

COMMANDS = ["info", "check", "solve", "heatmap", "curves", "view", "weld"]


@pytest.fixture(scope="module")
def helps(tmp_path_factory):
    folder = tmp_path_factory.mktemp("help")
    tool = Tool(folder)
    done = run_all([(tool, [command, "--help"]) for command in COMMANDS])
    return dict(zip(COMMANDS, done))


def examples(text):
    return [shlex.split(line)[1:] for line in re.findall(r"^  (qelm .*)$", text, re.MULTILINE)]


def write_example_files(qelm):
    roof = shapes.annulus(1, 2)
    qelm.write("roof.obj", shapes.obj(roof))
    qelm.write("part.stl", shapes.stl_text(shapes.grid(4, 3)))
    qelm.write("fixed.csv", "0,1\n12,0.5\n")
    qelm.write("snow.csv", "0.01\n" * len(roof[0]))


@pytest.mark.parametrize("command", COMMANDS)
def test_every_example_runs(qelm, helps, command):
    if command == "view" and not built.HAS_VIEW_PAGE:
        pytest.skip("built without the page")
    assert helps[command].returncode == 0 and helps[command].stderr == ""
    found = examples(helps[command].stdout)
    assert len(found) >= 2 and all(example[0] == command for example in found)
    write_example_files(qelm)
    for example in found:
        qelm.ok(*example)


@pytest.mark.parametrize("command", ["solve", "heatmap", "curves", "view"])
def test_every_command_with_a_field_shows_the_same_grammar(helps, command):
    text = helps[command].stdout
    for form in (
        "--fix SELECTOR=VALUE[:TAG]", "--fix-file FILE.csv", "--load FILE.csv", "vertex:I[,I...]", "loop:K",
        "boundary ", "near:X,Y,Z", "box:X0,Y0,Z0,X1,Y1,Z1", "from 0",
    ):  # fmt: skip
        assert form in text, form


@pytest.mark.parametrize("command", COMMANDS)
def test_every_command_shows_the_exit_codes_and_fits_a_terminal(helps, command):
    text = helps[command].stdout
    section = text[text.index("Exit codes:") :]
    assert re.findall(r"^  (\d)  ", section, re.MULTILINE) == list("012345")
    long = [line for line in text.splitlines() if len(line) > 88 and not line.startswith("  qelm ")]
    assert long == []


@pytest.mark.parametrize("page", ["boundary-conditions.md", "tool.md"])
def test_examples_in_the_documents_run(qelm, page):
    text = (built.SOURCE / "docs" / page).read_text()
    write_example_files(qelm)
    for line in re.findall(r"^qelm .*$", text, re.MULTILINE):
        qelm.ok(*shlex.split(line)[1:])


def test_documents_name_every_command_selector_and_exit_code(helps):
    tool = (built.SOURCE / "docs" / "tool.md").read_text()
    for command in (*COMMANDS, "completion", "manual"):
        assert f"| `{command}` |" in tool
    help_text = helps["solve"].stdout
    codes = re.findall(r"^  (\d)  (.*(?:\n     .*)*)", help_text, re.MULTILINE)
    assert len(codes) == 6
    for code, meaning in codes:
        assert f"| {code} | {' '.join(meaning.split())} |" in tool
    conditions = (built.SOURCE / "docs" / "boundary-conditions.md").read_text()
    for selector in re.findall(r"^    ([a-z]+(?::\S+)?)  ", help_text.split("Selectors:")[1], re.MULTILINE)[:5]:
        assert f"| `{selector}` |" in conditions, selector
