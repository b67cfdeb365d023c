"""--help and help: short, nothing said twice, and examples that run as they stand."""

import re
import shlex

import pytest

import built
import shapes
from tool import Tool, run_all

COMMANDS = ["info", "check", "solve", "gradient", "heatmap", "curves", "view", "weld", "repair"]


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
    qelm.write("rail.csv", "1.2,-0.5,0\n1.8,0.5,0\n")
    house = shapes.obj(shapes.grid(4, 3)).replace("f ", "g floor\nusemtl stone\nf ", 1).replace("f 2 ", "g rest\nf 2 ", 1)
    qelm.write("house.obj", house)
    points, faces = shapes.grid(4, 3)
    lines = shapes.ply_text((points, faces)).replace("double z\n", "double z\nproperty double heated\n").split("\n")
    body = lines.index("end_header") + 1
    for k, point in enumerate(points):
        lines[body + k] += f" {max(point[0] - 2, 0)}"
    qelm.write("room.ply", "\n".join(lines))
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


def topics_of(text):
    """The topics that the end of a --help names."""
    named = re.search(r"^More: qelm help (.*)$", text, re.MULTILINE)[1].split(", ")
    return named + re.findall(r"^  --.* See 'qelm help (\w+)'$", text, re.MULTILINE)


@pytest.mark.parametrize("command", COMMANDS)
def test_help_fits_a_screen_and_says_where_the_rest_is(qelm, helps, command):
    text = helps[command].stdout
    assert len(text.splitlines()) <= 30
    assert [line for line in text.splitlines() if len(line) > 80] == []
    for topic in topics_of(text):
        assert qelm.ok("help", topic).stdout.startswith(topic + ": ")


def test_every_topic_is_listed_and_named_by_a_command(qelm, helps):
    listed = re.findall(r"^  qelm help (\w+) ", qelm.ok("help").stdout, re.MULTILINE)
    assert listed == re.findall(r"^  qelm help (\w+) ", qelm.ok("--help").stdout, re.MULTILINE)
    assert set(listed) == {topic for command in COMMANDS for topic in topics_of(helps[command].stdout)}
    assert qelm.ok("help", "solve").stdout == helps["solve"].stdout
    message = qelm.fails(2, "help", "weather")
    assert "there is no help on 'weather'; name one of: conditions|" in message


def test_nothing_is_said_twice(qelm, helps):
    listed = re.findall(r"^  qelm help (\w+) ", qelm.ok("help").stdout, re.MULTILINE)
    texts = [qelm.ok("help", topic).stdout for topic in listed]
    texts += [helps[command].stdout.partition("Examples:")[2].partition("More:")[0] for command in COMMANDS]
    lines = [line for text in texts for line in set(text.splitlines()) if len(line) > 20]
    assert sorted(lines) == sorted(set(lines))
    assert [line for line in lines if len(line) > 88] == []


def test_the_grammar_of_conditions_and_the_exit_codes_are_topics(qelm):
    text = qelm.ok("help", "conditions").stdout
    for form in (
        "--fix SELECTOR=VALUE[:TAG]", "--fix-file FILE.csv", "from 0",
    ):  # fmt: skip
        assert form in text, form
    text = qelm.ok("help", "selectors").stdout
    for form in ("vertex:I[,I...]", "loop:K", "boundary ", "near:X,Y,Z", "box:X0,Y0,Z0,X1,Y1,Z1", "A & B", "cmd.exe"):
        assert form in text, form
    assert "K u + g = 0" in qelm.ok("help", "loads").stdout
    section = qelm.ok("help", "output").stdout.partition("Exit codes:")[2]
    assert re.findall(r"^    (\d)  ", section, re.MULTILINE) == list("012345")


@pytest.mark.parametrize("page", ["boundary-conditions.md", "reading-the-picture.md", "tool.md"])
def test_examples_in_the_documents_run(qelm, page):
    text = (built.SOURCE / "docs" / page).read_text()
    write_example_files(qelm)
    for line in re.findall(r"^qelm .*$", text, re.MULTILINE):
        command = shlex.split(line)[1:]
        if command[0] != "view" or built.HAS_VIEW_PAGE:
            qelm.ok(*command)


def test_documents_name_every_command_selector_and_exit_code(qelm):
    tool = (built.SOURCE / "docs" / "tool.md").read_text()
    for command in (*COMMANDS, "completion", "manual", "help"):
        assert f"| `{command}` |" in tool
    codes = re.findall(r"^    (\d)  (.*(?:\n       .*)*)", qelm.ok("help", "output").stdout, re.MULTILINE)
    assert len(codes) == 6
    for code, meaning in codes:
        assert f"| {code} | {' '.join(meaning.split())} |" in tool
    conditions = (built.SOURCE / "docs" / "boundary-conditions.md").read_text()
    selectors = re.findall(r"^  ([a-z]+(?::\S+)?)(?:  |$)", qelm.ok("help", "selectors").stdout, re.MULTILINE)
    assert len(selectors) == 17
    for selector in selectors:
        assert f"| `{selector}` |" in conditions, selector
    values = qelm.ok("help", "conditions").stdout
    for name in re.search(r"Functions: `([^`]+)`", conditions)[1].split(", "):
        assert re.search(rf"\b{name}\b", values), name
