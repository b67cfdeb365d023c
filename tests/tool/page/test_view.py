"""qelm view: what stands in the page. How it behaves in a browser: tests/page."""

import base64
import html
import json
import math
import re
import struct

import pytest

import built
import shapes

LEFT_RIGHT = ["--fix", "box:0,0,0,0,9,0=0", "--fix", "box:4,0,0,4,9,0=1"]
with_page = pytest.mark.skipif(not built.HAS_VIEW_PAGE, reason="built without the page")


class Page:
    """What a page holds, read the way that decode.js does."""

    def __init__(self, path):
        self.text = path.read_text(encoding="utf-8")
        self.title = html.unescape(re.search(r"<title>(.*)</title>", self.text)[1])
        self.facts = json.loads(self.script("page-facts"))
        self.block = base64.b64decode(self.script("page-mesh"), validate=True)
        magic, version, n, m, loads, exact = struct.unpack_from("<4s5I", self.block)
        assert (magic, version) == (b"QELM", 2) and loads in (0, n) and exact in (0, 1)
        self.offset = 24
        numbers = self.take(f"<{3 * n}d") if exact else self.fractions(3 * n)
        self.points = list(zip(*[iter(numbers)] * 3))
        self.is_exact = exact == 1
        self.field = list(self.take(f"<{n}d"))
        self.load = list(self.take(f"<{loads}d"))
        self.colours = list(zip(*[iter(self.take("<768B"))] * 3))
        self.fixed_by = []
        while len(self.fixed_by) < n:
            length = self.varint()
            self.fixed_by += [self.varint()] * length
        corners = self.corners(3 * m)
        self.triangles = list(zip(*[iter(corners)] * 3))
        assert self.offset == len(self.block), "nothing comes after the corners"

    def script(self, name):
        return re.search(f'<script id="{name}"[^>]*>(.*?)</script>', self.text, re.DOTALL)[1]

    def take(self, form):
        values = struct.unpack_from(form, self.block, self.offset)
        self.offset += struct.calcsize(form)
        return values

    def fractions(self, count):
        box = self.take("<6d")
        steps = [int.from_bytes(bytes(self.take("<3B")), "little") for _ in range(count)]
        return [box[k % 3] + box[3 + k % 3] * s / 0xFFFFFF for k, s in enumerate(steps)]

    def varint(self):
        value = shift = 0
        while True:
            byte = self.block[self.offset]
            self.offset += 1
            value |= (byte & 0x7F) << shift
            shift += 7
            if byte < 0x80:
                return value

    def corners(self, count):
        corner, corners = 0, []
        for _ in range(count):
            code = self.varint()
            corner += (code >> 1) ^ -(code & 1)
            corners.append(corner)
        return corners


def view(qelm, mesh, *arguments):
    qelm.ok("view", mesh, *arguments, "-o", "page.html")
    return Page(qelm.folder / "page.html")


@with_page
def test_page_holds_the_mesh_and_its_field_bit_for_bit(qelm):
    mesh = shapes.moved(shapes.grid(40, 9), (0, 0.1, -1 / 3))
    qelm.write("grid.obj", shapes.obj(mesh))
    fixes = ["--fix", "near:0,0,0=0.1", "--fix", "near:40,9,0=0.7"]
    page = view(qelm, "grid.obj", *fixes)
    assert page.points == mesh[0]
    assert page.triangles == mesh[1]
    qelm.ok("solve", "grid.obj", *fixes, "-o", "field.csv")
    assert page.field == qelm.field()


@with_page
def test_corners_far_apart_survive_their_packing(qelm):
    points, faces = shapes.grid(130, 130)
    faces = faces[::-1] + []
    faces[0], faces[9000] = faces[9000], faces[0]
    qelm.write("grid.obj", shapes.obj((points, faces)))
    page = view(qelm, "grid.obj", "--fix", "vertex:0=0", "--fix", "vertex:17160=1")
    assert page.triangles == faces
    assert len(page.block) < 24 + 32 * len(points) + 768 + 20 + 2 * 3 * len(faces)


@with_page
def test_large_pages_round_places_to_what_a_screen_shows_and_keep_values(qelm):
    points, faces = shapes.moved(shapes.grid(400, 250), (6.5e6, 0.1, -3))
    qelm.write("grid.obj", shapes.obj((points, faces)))
    fixes = ["--fix", "vertex:0=0", "--fix", "vertex:100650=1"]
    page = view(qelm, "grid.obj", *fixes)
    assert len(page.points) == 100651 and not page.is_exact
    assert len(page.text) < 5e6, "200,000 triangles; five times as many stay below 25 MB"
    assert page.triangles == faces
    # Half a step of 24 bits across 400, and what a double of 6.5e6 is off by.
    worst = max(abs(a - b) for p, q in zip(page.points, points) for a, b in zip(p, q))
    assert worst <= 400 / 2**25 + 1e-9
    qelm.ok("solve", "grid.obj", *fixes, "-o", "field.csv")
    assert page.field == qelm.field()
    qelm.write("own.html", "@QELM_TITLE@@QELM_FACTS@|@QELM_MESH@|")
    qelm.ok("view", "grid.obj", *fixes, "--page", "own.html", "-o", "filled.html")
    block = base64.b64decode((qelm.folder / "filled.html").read_text().split("|")[1])
    assert struct.unpack_from("<I", block, 20)[0] == 1, "who solves has all digits"


def four_legged():
    """Boxes for a body, a tail, a head and four legs, y up."""
    def box(x, y, z, dx, dy, dz):
        corners = [(x + i * dx, y + j * dy, z + k * dz) for k in (0, 1) for j in (0, 1) for i in (0, 1)]
        sides = [(0, 2, 3, 1), (4, 5, 7, 6), (0, 1, 5, 4), (2, 6, 7, 3), (0, 4, 6, 2), (1, 3, 7, 5)]
        return corners, [t for a, b, c, d in sides for t in ((a, b, c), (a, c, d))]

    legs = [box(x, 0, z, 0.2, 1.2, 0.2) for x in (0, 0.8) for z in (0, 1.8)]
    body, tail = box(0, 1.2, 0, 1, 1, 2), box(0.45, 1.8, -0.4, 0.1, 0.1, 0.4)
    head_with_ears = box(-0.2, 1.9, 2, 1.4, 0.5, 0.6)
    return shapes.joined(*legs, body, tail, head_with_ears)


def turned(mesh, turn):
    return [turn(*p) for p in mesh[0]], mesh[1]


@with_page
def test_an_obj_file_stands_on_its_firmest_base(qelm):
    mesh = four_legged()
    one_of_each = [f"--fix=vertex:{8 * k},{8 * k + 1}={k}" for k in range(7)]
    for axis, turn in {
        "y": lambda x, y, z: (x, y, z),
        "z": lambda x, y, z: (x, -z, y),
        "x": lambda x, y, z: (y, z, x),
    }.items():
        qelm.write("animal.obj", shapes.obj(turned(mesh, turn)))
        assert view(qelm, "animal.obj", *one_of_each).facts["up"] == axis
        assert view(qelm, "animal.obj", *one_of_each, "--up", "x").facts["up"] == "x"
    qelm.write("animal.off", shapes.off(mesh))
    assert view(qelm, "animal.off", *one_of_each).facts["up"] == "z", "as the format has it"
    qelm.write("roof.obj", shapes.obj(shapes.grid(4, 3)))
    assert view(qelm, "roof.obj", *LEFT_RIGHT).facts["up"] == "z"
    points, faces = shapes.grid(20, 15)
    hills = [(x, y, 1.5 * math.sin(x / 2) * math.cos(y / 2)) for x, y, _ in points], faces
    ends = ["--fix", "vertex:0=0", "--fix", "vertex:9=1"]
    qelm.write("hills.obj", shapes.obj(hills))
    assert view(qelm, "hills.obj", *ends).facts["up"] == "z"
    qelm.write("hills.obj", shapes.obj(turned(hills, lambda x, y, z: (x, z, -y))))
    assert view(qelm, "hills.obj", *ends).facts["up"] == "y"
    text = qelm.fails(2, "view", "roof.obj", *LEFT_RIGHT, "--up", "-z", "-o", "no.html")
    assert "--up -z: give x, y, z or auto" in text


@with_page
def test_the_units_text_is_on_the_page(qelm):
    qelm.write("grid.obj", shapes.obj(shapes.grid(4, 3)))
    assert view(qelm, "grid.obj", *LEFT_RIGHT, "--unit", "°C").facts["unit"] == "°C"
    assert view(qelm, "grid.obj", *LEFT_RIGHT).facts["unit"] == ""


@with_page
def test_facts_name_the_conditions_and_who_holds_each_vertex(qelm):
    qelm.write("grid.obj", shapes.obj(shapes.grid(4, 3)))
    qelm.write("fixed.csv", "7,0.5\n0,0.25\n")
    page = view(qelm, "grid.obj", "--fix-file", "fixed.csv", *LEFT_RIGHT, "--levels", "3")
    assert page.facts["name"] == "grid.obj" and page.title == "grid.obj – qelm"
    assert (page.facts["vertices"], page.facts["triangles"]) == (20, 24)
    assert page.facts["conditions"] == [
        {"text": "fixed.csv", "vertices": 2},
        {"text": "box:0,0,0,0,9,0", "value": 0.0, "vertices": 4},
        {"text": "box:4,0,0,4,9,0", "value": 1.0, "vertices": 4},
    ]
    assert page.facts["levels"] == [0.25, 0.5, 0.75]
    assert page.facts["toward"] is None and page.facts["load"] is False
    by_column = {0: 2, 4: 3}
    assert page.fixed_by == [1 if v == 7 else by_column.get(v % 5, 0) for v in range(20)]


@with_page
def test_without_a_file_the_first_condition_is_number_one(qelm):
    qelm.write("grid.obj", shapes.obj(shapes.grid(4, 3)))
    page = view(qelm, "grid.obj", *LEFT_RIGHT)
    assert page.fixed_by == [{0: 1, 4: 2}.get(v % 5, 0) for v in range(20)]
    assert page.facts["levels"] == [k / 10 for k in range(1, 10)], "about ten round ones"


@with_page
def test_levels_and_the_first_view_are_the_command_lines(qelm):
    qelm.write("grid.obj", shapes.obj(shapes.grid(4, 3)))
    page = view(qelm, "grid.obj", *LEFT_RIGHT, "--every", "0.2", "--view", "0,-3,4")
    assert page.facts["levels"] == pytest.approx([0.2, 0.4, 0.6, 0.8])
    assert page.facts["toward"] == pytest.approx([0, -0.6, 0.8])


@with_page
def test_page_holds_the_load_if_there_is_one(qelm):
    qelm.write("grid.obj", shapes.obj(shapes.grid(4, 3)))
    qelm.write("load.csv", "7,0.1\n8,-3\n")
    page = view(qelm, "grid.obj", *LEFT_RIGHT, "--load", "load.csv")
    assert page.load == [{7: 0.1, 8: -3}.get(v, 0) for v in range(20)]
    assert page.facts["load"] is True
    assert view(qelm, "grid.obj", *LEFT_RIGHT).load == []


def test_another_page_can_be_filled_in(qelm):
    qelm.write("grid.obj", shapes.obj(shapes.grid(4, 3)))
    qelm.write("page.html", "<a>@QELM_TITLE@</a>@QELM_FACTS@|@QELM_MESH@|end")
    qelm.ok("view", "grid.obj", *LEFT_RIGHT, "--page", "page.html", "-o", "filled.html")
    text = (qelm.folder / "filled.html").read_text(encoding="utf-8")
    head, mesh, tail = text.split("|")
    assert head.startswith("<a>grid.obj – qelm</a>{") and tail == "end"
    assert base64.b64decode(mesh, validate=True)[:4] == b"QELM"
    qelm.write("page.html", "@QELM_TITLE@ @QELM_MESH@")
    text = qelm.fails(3, "view", "grid.obj", *LEFT_RIGHT, "--page", "page.html", "-o", "no.html")
    assert "page.html" in text and "@QELM_FACTS@" in text


@with_page
def test_colours_go_from_dark_blue_to_yellow(qelm):
    qelm.write("grid.obj", shapes.obj(shapes.grid(4, 3)))
    colours = view(qelm, "grid.obj", *LEFT_RIGHT).colours
    assert colours[0] == (68, 1, 84) and colours[128] == (33, 145, 140) and colours[255] == (253, 231, 37)


@with_page
@pytest.mark.skipif(built.IS_WINDOWS, reason="no such names there")
def test_a_name_cannot_end_the_script_that_it_stands_in(qelm):
    name = "a&b<script>alert(1)</b>.obj".replace("/", "\u2215")
    qelm.write(name, shapes.obj(shapes.grid(4, 3)))
    page = view(qelm, name, *LEFT_RIGHT)
    assert page.facts["name"] == name
    assert page.title == f"{name} – qelm"
    assert "<script>alert" not in page.text


@with_page
def test_page_asks_for_nothing_from_outside(qelm):
    qelm.write("grid.obj", shapes.obj(shapes.grid(4, 3)))
    text = view(qelm, "grid.obj", *LEFT_RIGHT).text
    assert "default-src 'none'" in text
    markup = re.sub(r"<script.*?</script>|<style.*?</style>", "", text, flags=re.DOTALL)
    assert not re.search(r"\b(src|href)=", markup)
    assert "@QELM_" not in markup and "@STYLE@" not in text


@with_page
def test_summary_and_page_can_go_to_the_standard_output(qelm):
    qelm.write("grid.obj", shapes.obj(shapes.grid(4, 3)))
    done = qelm.ok("view", "grid.obj", *LEFT_RIGHT, "-o", "-", "-q")
    assert done.stdout.startswith("<!DOCTYPE html>") and done.stderr == ""
    summary = qelm.json("view", "grid.obj", *LEFT_RIGHT, "--levels", "1", "-o", "page.html")
    assert summary["levels"] == [0.5] and summary["results"] == ["page.html"]
    assert "write" in summary["seconds"]


@with_page
def test_what_cannot_be_shown_leaves_no_page(qelm):
    qelm.write("grid.obj", shapes.obj(shapes.grid(4, 3)))
    text = qelm.fails(2, "view", "grid.obj", "--fix", "boundary=1", "-o", "page.html")
    assert "there is no range to show" in text
    text = qelm.fails(2, "view", "grid.obj", *LEFT_RIGHT, "-o", "grid.obj")
    assert "grid.obj" in text
    text = qelm.fails(2, "view", "grid.obj", *LEFT_RIGHT, "-o", "-", "--json")
    assert "not both" in text
    text = qelm.fails(2, "view", "grid.obj", "--fix", "boundary=1,2", "-o", "page.html")
    assert "the field 1 is 1 everywhere, so there is no range to show" in text


@pytest.mark.skipif(built.HAS_VIEW_PAGE, reason="built with the page")
def test_a_tool_without_the_page_says_what_to_do(qelm):
    qelm.write("grid.obj", shapes.obj(shapes.grid(4, 3)))
    text = qelm.fails(1, "view", "grid.obj", *LEFT_RIGHT, "-o", "page.html")
    assert "built without the page" in text and "scripts/page" in text


@with_page
def test_page_carries_the_licences_of_what_it_contains(qelm):
    qelm.write("grid.obj", shapes.obj(shapes.grid(4, 3)))
    text = view(qelm, "grid.obj", *LEFT_RIGHT).text
    comment = text[text.rindex("<!--") :]
    for words in ("three:\n", "three-mesh-bvh:\n", "The MIT License", "Permission is hereby granted"):
        assert words in comment, words
    assert comment.endswith("-->\n</body>\n</html>\n")


def test_the_gallery_shows_the_commands_that_made_its_pictures():
    script = (built.SOURCE / "scripts" / "gallery").read_text().replace("\\\n", "")
    made = {
        f"view-{name}.png": f"qelm view {' '.join(options.split())} -o {name}.html"
        for name, options in re.findall(r"^picture (\S+) (.*?)(?: -- .*)?$", script, re.MULTILINE)
    }
    text = (built.SOURCE / "docs" / "gallery.md").read_text()
    shown = re.findall(r"```sh\n(.*)\n```\n\n!\[.*\]\(images/(.*)\)", text)
    assert len(shown) == len(re.findall(r"!\[", text)) >= 4
    for command, picture in shown:
        assert command == made[picture]
        assert (built.SOURCE / "docs" / "images" / picture).stat().st_size > 10000
