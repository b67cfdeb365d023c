"""Several fields at once: of --field, or of conditions with several values."""

import json
import re
import xml.etree.ElementTree as ElementTree

import pytest

import built
import shapes

np = pytest.importorskip("numpy")

SVG = "{http://www.w3.org/2000/svg}"
GRID = shapes.grid(4, 3)
FIELDS = {"u.csv": [x for x, _, _ in GRID[0]], "v.csv": [10 * y + x / 8 for x, y, _ in GRID[0]]}
GIVEN = ["--field", "u.csv", "--field", "v.csv"]


@pytest.fixture
def grid(qelm):
    for name, values in FIELDS.items():
        qelm.write(name, "".join(f"{v!r}\n" for v in values))
    return qelm.write("grid.obj", shapes.obj(GRID))


def test_curves_of_each_are_those_of_it_alone(qelm, grid):
    summary = qelm.json("curves", grid, *GIVEN, "--levels", "3", "-o", "c.json", "-o", "c.csv", "-o", "c.obj")
    both = json.loads((qelm.folder / "c.json").read_text())
    assert [field["name"] for field in both["fields"]] == ["u.csv", "v.csv"] and "levels" not in both
    table = (qelm.folder / "c.csv").read_text().splitlines()
    assert table[0] == "field,curve,level,value,closed,x,y,z"
    for k, name in enumerate(FIELDS):
        one = qelm.json("curves", grid, "--field", name, "--levels", "3", "-o", "one.json", "-o", "one.csv")
        alone = json.loads((qelm.folder / "one.json").read_text())
        assert both["fields"][k]["levels"] == alone["levels"] == summary["cuts"][k]["levels"]
        own = [curve for curve in both["curves"] if curve.pop("field", None) == k]
        own = own or [curve for curve in both["curves"] if curve["value"] in alone["levels"]]
        assert own == alone["curves"]
        assert [row[2:] for row in table if row.startswith(f"{k},")] == (qelm.folder / "one.csv").read_text().splitlines()[1:]
        assert summary["cuts"][k]["points"] == one["points"] and summary["fields"][k]["max"] == one["max"]
        assert summary["fields"][k]["field"] == name
        both = json.loads((qelm.folder / "c.json").read_text())
    text = (qelm.folder / "c.obj").read_text()
    assert re.findall(r"^o (.*)$", text, re.M) == ["u.csv", "v.csv"]
    places = len(re.findall("^v ", text, re.M))
    assert max(int(n) for line in re.findall("^l (.*)$", text, re.M) for n in line.split()) == places


def test_conditions_with_several_values_make_several_fields(qelm, grid):
    words = ["--fix", "xmin=0,5", "--fix", "xmax=1,9", "--fix", "near:2,0,0=0.5,8"]
    qelm.ok("solve", grid, *words, "-o", "two.npy")
    done = qelm.ok("curves", grid, *words, "--levels", "3", "-o", "a.json")
    assert "curves   1: 3 (" in done.stderr and "curves   2: " in done.stderr
    qelm.ok("curves", grid, "--field", "two.npy:0", "--field", "two.npy:1", "--levels", "3", "-o", "b.json")
    a, b = (json.loads((qelm.folder / name).read_text()) for name in ("a.json", "b.json"))
    assert a["curves"] == b["curves"] and [field["name"] for field in a["fields"]] == ["1", "2"]


def test_a_drawing_tells_them_apart(qelm, grid):
    qelm.ok("curves", grid, *GIVEN, "--levels", "3", "--title", "Net", "-o", "c.svg")
    root = ElementTree.fromstring((qelm.folder / "c.svg").read_bytes())
    groups = {g.get("data-field"): g for g in root.iter(SVG + "g") if g.get("data-field")}
    assert list(groups) == ["u.csv", "v.csv"]
    assert groups["u.csv"].get("stroke-dasharray") is None and groups["v.csv"].get("stroke-dasharray")
    levels = [[float(g.get("data-level")) for g in group if g.get("data-level")] for group in groups.values()]
    assert levels == [[1, 2, 3], pytest.approx([7.625, 15.25, 22.875])]
    ids = [g.get("id") for g in root.iter() if g.get("id")]
    assert len(ids) == len(set(ids)) and {"scale", "scale2", "ramp", "ramp2"} <= set(ids)
    texts = [text.text for text in root.iter(SVG + "text")]
    assert "6 level curves of 2 fields, seen from +z" in texts and {"u.csv", "v.csv", "max 4", "max 30.5"} <= set(texts)


@pytest.mark.skipif(not built.HAS_VIEW_PAGE, reason="built without the page")
def test_pages_hold_all_fields(qelm, grid):
    from base64 import b64decode

    qelm.ok("view", grid, *GIVEN, "--levels", "3", "-o", "p.html")
    page = (qelm.folder / "p.html").read_text(encoding="utf-8")
    facts = json.loads(re.search(r'<script id="page-facts"[^>]*>(.*?)</script>', page, re.S)[1])
    assert facts["fields"] == [{"name": "u.csv", "levels": [1, 2, 3]}, {"name": "v.csv", "levels": [7.625, 15.25, 22.875]}]
    block = b64decode(re.search(r'<script id="page-mesh"[^>]*>(.*?)</script>', page, re.S)[1])
    assert np.frombuffer(block[-160:]).tolist() == FIELDS["v.csv"]
    qelm.ok("view", grid, "--fix", "xmin=0,5", "--fix", "xmax=1,9", "-o", "p.html")
    assert '"value":1.0,"vertices":4,"values":[1.0,9.0]' in (qelm.folder / "p.html").read_text(encoding="utf-8")
    qelm.ok("view", grid, "--field", "u.csv", "-o", "p.html")
    assert '"fields":[]' in (qelm.folder / "p.html").read_text(encoding="utf-8")
    qelm.write("own.html", "@QELM_TITLE@@QELM_FACTS@|@QELM_MESH@|")
    message = qelm.fails(2, "view", grid, "--fix", "xmin=0,5", "--fix", "xmax=1,9", "--page", "own.html", "-o", "q.html")
    assert "--page fills in a page that solves, which it does for one field" in message


def test_what_takes_one_field_says_so(qelm, grid):
    for command, name in (("heatmap", "h.ply"), ("gradient", "g.csv")):
        message = qelm.fails(2, command, grid, *GIVEN, "-o", name)
        assert "--field is given several times, but this command takes one field; 'curves' and 'view' take several" in message
        assert "'solve', 'curves' and 'view' take several" in qelm.fails(2, command, grid, "--fix", "xmin=0,1", "-o", name)


def test_a_field_without_a_range_is_named(qelm, grid):
    qelm.write("flat.csv", "3\n" * 20)
    message = qelm.fails(2, "curves", grid, "--field", "u.csv", "--field", "flat.csv", "-o", "c.json")
    assert "the field flat.csv is 3 everywhere" in message
    assert "would overwrite v.csv" in qelm.fails(2, "curves", grid, *GIVEN, "-o", "v.csv")
