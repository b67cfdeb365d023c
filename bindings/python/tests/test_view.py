"""The page of a field: what it holds, how a notebook gets it, how it becomes a file."""

import base64
import html
import os
import re

import numpy as np
import pytest
import qelm
from built import HAS_VIEW_PAGE, program
from meshes import bits, grid

pytestmark = pytest.mark.skipif(not HAS_VIEW_PAGE, reason="the tool was built without its page")
VERTICES, TRIANGLES, TAGS = grid(9, 6)
N = len(VERTICES)


@pytest.fixture(scope="module")
def system():
    return qelm.MeshSystem(VERTICES, TRIANGLES, TAGS)


def runs(block, count):
    """Numbers in runs, length and value as integers of seven bits a byte, the lowest first."""
    numbers, at = [], 0
    while len(numbers) < count:
        pair = []
        for _ in range(2):
            value, shift = 0, 0
            while True:
                byte = block[at]
                at += 1
                value |= (byte & 127) << shift
                shift += 7
                if byte < 128:
                    break
            pair.append(value)
        numbers += pair[0] * [pair[1]]
    return np.array(numbers)


def data_of(page):
    """Vertices, field, load, and for each vertex by which condition it is held, from the page's block."""
    (text,) = [found for found in re.findall(r">\s*([A-Za-z0-9+/=]{400,})\s*<", page.html)]
    block = base64.b64decode(text)
    assert block[:4] == b"QELM"
    n, _, loads, exact = np.frombuffer(block, "<u4", 4, 8)
    assert exact == 1
    numbers = np.frombuffer(block, "<f8", 4 * n + loads, 24)
    held = runs(block[24 + 8 * (4 * n + loads) + 768 :], n)
    return numbers[: 3 * n].reshape(-1, 3), numbers[3 * n : 4 * n], numbers[4 * n :], held


def test_a_solved_field_is_on_the_page_bit_for_bit_with_its_fixed_vertices(system):
    field = system.solve(np.cos(np.arange(N)))
    vertices, shown, load, held = data_of(qelm.view(system, field))
    assert (bits(vertices) == bits(VERTICES)).all() and (bits(shown) == bits(field)).all()
    assert (len(load), held.tolist()) == (0, TAGS.tolist())


def test_the_legend_tells_of_fixed_vertices_in_words(system):
    page = qelm.view(system, system.solve(np.arange(N)))
    assert f'"conditions":[{{"text":"fixed vertices","vertices":{TAGS.sum()}}}]' in page.html


def test_a_field_with_a_load_comes_with_its_load(system):
    load = np.sin(np.arange(N))
    field = system.solve(np.zeros(N), load)
    _, shown, told, held = data_of(qelm.view(system, field, load))
    assert (bits(shown) == bits(field)).all() and (bits(told) == bits(load)).all()
    assert held.tolist() == TAGS.tolist()


def test_a_field_from_elsewhere_is_shown_as_it_is(system):
    field = np.cos(np.arange(N))
    _, shown, _, held = data_of(qelm.view(system, field))
    assert (bits(shown) == bits(field)).all() and not held.any()


def test_a_robust_system_with_nothing_to_mend_is_shown_bit_for_bit():
    system = qelm.MeshSystem(*grid(12, 9, height=lambda x, y: 0 * x), robust=True)
    field = system.solve(np.cos(np.arange(108)))
    _, shown, _, held = data_of(qelm.view(system, field))
    assert (bits(shown) == bits(field)).all() and held.sum() == system.fixed_count


@pytest.mark.parametrize("robust", [False, True])
def test_a_field_is_shown_as_the_robust_or_the_plain_system_solved_it(robust):
    vertices, triangles, tags = grid(40, 3, height=lambda x, y: 0 * x)
    slivers = (vertices + [[0.8, 0, 0]] * (vertices[:, 1:2] == 1)) * [1, 0.02, 1]
    system = qelm.MeshSystem(slivers, triangles, tags, robust=robust, check=False)
    other = qelm.MeshSystem(slivers, triangles, tags, robust=not robust, check=False)
    for load in (None, 1e-3 * np.sin(np.arange(120))):
        field = system.solve(np.cos(np.arange(120)), load)
        assert np.abs(other.solve(field, load) - field).max() > 1e-3
        _, shown, _, held = data_of(qelm.view(system, field, load))
        assert (bits(shown) == bits(field)).all() and held.tolist() == tags.tolist()


def test_a_mesh_that_the_tool_refuses_to_solve_on_is_shown_all_the_same():
    vertices, triangles = [[0, 0], [1, 0], [2, 0], [1, 1]], [[0, 1, 3], [1, 2, 3], [0, 2, 1]]
    system = qelm.MeshSystem.from_fixed(vertices, triangles, [0, 1, 2, 3], check=False)
    assert data_of(qelm.view(system, [0, 1, 2, 3]))[1].tolist() == [0, 1, 2, 3]


def test_a_load_may_be_anything_at_fixed_vertices(system):
    load = np.where(TAGS, np.nan, 1)
    field = system.solve(np.zeros(N), load)
    _, shown, told, _ = data_of(qelm.view(system, field, load))
    assert (bits(shown) == bits(field)).all() and told.tolist() == (1 - TAGS).tolist()


@pytest.mark.parametrize("title", ["A field/ of 3", "-x", "--help", "größe", "a" * 300])
def test_the_title_is_on_the_page_as_it_is(system, title):
    assert f"<title>{title} – qelm</title>" in qelm.view(system, np.arange(N), title=title).html


def test_a_page_without_title_is_a_field(system):
    assert "<title>field – qelm</title>" in qelm.view(system, np.arange(N), title="").html


def test_a_direction_may_be_numbers(system):
    assert qelm.view(system, np.arange(N), direction=(0, -1, 0.5)).html == (
        qelm.view(system, np.arange(N), direction="0,-1,0.5").html
    )


def test_levels_are_on_the_page(system):
    field = system.solve(np.arange(N))
    page = qelm.view(system, field, levels=[0.5, -1e-3, 7])
    assert '"levels":[-0.001,0.5,7.0]' in page.html
    assert len(re.search(r'"levels":\[([^]]*)\]', qelm.view(system, field, levels=5).html).group(1).split(",")) == 5


def test_a_notebook_gets_the_whole_page_in_a_frame(system):
    page = qelm.view(system, system.solve(np.arange(N)))
    frame = re.fullmatch(r'<iframe srcdoc="([^"]*)" style="[^"]*" allowfullscreen></iframe>', page._repr_html_(), re.S)
    assert html.unescape(frame.group(1)) == page.html


def test_a_file_holds_the_page(system, tmp_path):
    page = qelm.view(system, system.solve(np.arange(N)))
    assert page.save(tmp_path / "page.html").read_bytes().decode() == page.html
    with pytest.raises(OSError):
        page.save(tmp_path / "none" / "page.html")


@pytest.mark.parametrize(
    "arguments, error, message",
    [
        ({"field": np.ones(N)}, qelm.ToolError, "^qelm view: the field is 1 everywhere"),
        ({"field": np.full(N, np.nan)}, qelm.FieldError, "field: vertex 0: nan is not finite"),
        ({"field": np.arange(N), "load": np.zeros((2, N))}, qelm.FieldError, "load: the shape is"),
        ({"field": np.arange(N), "direction": "up"}, qelm.ToolError, "--view up"),
        ({"field": np.arange(N), "levels": 0}, qelm.ToolError, "--levels 0: .* is needed$"),
        ({"field": np.arange(N), "levels": []}, qelm.FieldError, "levels: there is none"),
        ({"field": np.arange(N), "levels": np.linspace(1 / 3, 2, 9999)}, qelm.FieldError, "levels: 9999 are too many"),
        ({"field": np.arange(N), "title": None}, TypeError, "title: None is no text"),
        ({"field": np.arange(N), "direction": {1}}, TypeError, "direction: "),
    ],
)
def test_what_cannot_be_shown_is_refused_in_words(system, arguments, error, message):
    with pytest.raises(error, match=message):
        qelm.view(system, **arguments)


def test_without_the_tool_it_says_what_is_missing(system, monkeypatch):
    monkeypatch.setenv("QELM_TOOL", "/nowhere/qelm")
    with pytest.raises(qelm.ToolError, match="no command-line tool at /nowhere/qelm; install"):
        qelm.view(system, np.arange(N))


def test_a_tool_that_is_no_program_is_named(system, monkeypatch, tmp_path):
    (tmp_path / "qelm").write_text("no program")
    monkeypatch.setenv("QELM_TOOL", str(tmp_path / "qelm"))
    with pytest.raises(qelm.ToolError, match=f"qelm view: {tmp_path}/qelm cannot be run: Permission denied"):
        qelm.view(system, np.arange(N))


def test_the_tool_may_be_named_from_the_working_folder(system, monkeypatch):
    monkeypatch.chdir(program("qelm").parent)
    monkeypatch.setenv("QELM_TOOL", os.path.join(".", program("qelm").name))
    assert qelm.view(system, np.arange(N)).html
