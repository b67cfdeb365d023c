"""--ramp, --range, --title and --unit: the same colours and words in every picture."""

import json
import re
import struct
import zlib

import pytest

import built
import shapes
from png import Image

GRID = shapes.grid(4, 3)
LEFT_RIGHT = ["--fix", "xmin=0", "--fix", "xmax=1"]
RAMPS = ["viridis", "magma", "cividis", "turbo", "coolwarm"]
with_page = pytest.mark.skipif(not built.HAS_VIEW_PAGE, reason="built without the page")


@pytest.fixture
def grid(qelm):
    return qelm.write("grid.obj", shapes.obj(GRID))


def png(rows):
    """The bytes of an image, given as rows of (red, green, blue)."""
    raw = b"".join(b"\0" + bytes(channel for pixel in row for channel in pixel) for row in rows)
    chunks = [(b"IHDR", struct.pack(">IIBBBBB", len(rows[0]), len(rows), 8, 2, 0, 0, 0)), (b"IDAT", zlib.compress(raw)), (b"IEND", b"")]
    parts = [struct.pack(">I", len(body)) + kind + body + struct.pack(">I", zlib.crc32(kind + body)) for kind, body in chunks]
    return b"\x89PNG\r\n\x1a\n" + b"".join(parts)


def colours_of(qelm, name="h.ply"):
    """{x: colour} of the grid's vertices in a PLY heat map, and its comments."""
    head, body = (qelm.folder / name).read_bytes().split(b"end_header\n")
    rows = struct.iter_unpack("<3d3Bd", body[: 20 * struct.calcsize("<3d3Bd")])
    comments = [line[8:] for line in head.decode().splitlines() if line.startswith("comment ")]
    return {row[0]: row[3:6] for row in rows}, comments


def page_colours(qelm, name="p.html"):
    import base64
    block = base64.b64decode(re.search(r'<script id="page-mesh"[^>]*>(.*?)</script>', (qelm.folder / name).read_text("utf-8"), re.S)[1])
    n = struct.unpack_from("<I", block, 8)[0]
    at = 24 + 24 * n + 8 * n
    return [tuple(block[at + 3 * k : at + 3 * k + 3]) for k in range(256)]


@with_page
@pytest.mark.parametrize("ramp", RAMPS)
def test_ramps_are_those_that_were_published(qelm, grid, ramp):
    matplotlib = pytest.importorskip("matplotlib")
    published = [tuple(round(255 * c) for c in matplotlib.colormaps[ramp](k)[:3]) for k in range(256)]
    qelm.ok("view", grid, *LEFT_RIGHT, "--ramp", ramp, "-o", "p.html")
    assert page_colours(qelm) == published


@pytest.mark.parametrize("ramp", ["magma", "reversed:magma"])
def test_a_ramp_is_the_same_in_every_format(qelm, grid, ramp):
    qelm.write("f.csv", "".join(f"{x / 4}\n" for x, _, _ in GRID[0]))
    given = ["--field", "f.csv", "--ramp", ramp]
    qelm.ok("heatmap", grid, *given, "-o", "h.ply")
    colours, comments = colours_of(qelm)
    assert comments == ["written by qelm"]
    assert [colours[0.0], colours[4.0]][:: -1 if ":" in ramp else 1] == [(0, 0, 4), (252, 253, 191)]
    qelm.ok("heatmap", grid, *given, "-o", "h")
    image = {"magma": "magma.PNG", "reversed:magma": "magma-reversed.PNG"}[ramp]
    assert f"map_Kd {image}\n" in (qelm.folder / "h.mtl").read_text()
    picture = Image(qelm.folder / image)
    for x, colour in colours.items():
        assert picture.pixel(round((1 - x / 4) * (picture.width - 1)), 30) == pytest.approx(colour, abs=1)
    qelm.ok("curves", grid, *given, "--at", "0.25,0.5", "-o", "c.svg")
    drawing = (qelm.folder / "c.svg").read_text(encoding="utf-8")
    for level in (0.25, 0.5):
        group = drawing.partition(f'data-level="{level}"')[2].partition("</g>\n</g>")[0]
        assert "#%02x%02x%02x" % colours[4 * level] in group


def test_an_image_gives_its_colours_from_the_largest_value_on(qelm, grid):
    red, green, blue = (255, 0, 0), (0, 255, 0), (0, 0, 255)
    middle = [red, (128, 128, 0), green, (0, 128, 128), blue]
    noise = [(9, 9, 9)] * 5
    qelm.write("lying.png", png([noise, middle, noise]))
    qelm.write("upright.PNG", png([[c[0], c[1], c[0]] for c in zip(noise, middle)]))
    expected = {4.0 - k: colour for k, colour in enumerate(middle)}
    for name in ("lying.png", "upright.PNG"):
        qelm.ok("heatmap", grid, *LEFT_RIGHT, "--ramp", name, "-o", "h.ply")
        assert colours_of(qelm)[0] == expected
    qelm.ok("heatmap", grid, *LEFT_RIGHT, "--ramp", "reversed:lying.png", "-o", "h.ply")
    assert colours_of(qelm)[0] == {4.0 - x: colour for x, colour in expected.items()}
    qelm.ok("heatmap", grid, *LEFT_RIGHT, "--ramp", "lying.png", "-o", "h")
    assert "map_Kd h-ramp.PNG\n" in (qelm.folder / "h.mtl").read_text()
    assert Image(qelm.folder / "h-ramp.PNG").pixel(0, 0) == red


def test_the_image_that_is_written_can_be_given(qelm, grid):
    qelm.ok("heatmap", grid, *LEFT_RIGHT, "-o", "h")
    qelm.ok("heatmap", grid, *LEFT_RIGHT, "-o", "a.ply")
    qelm.ok("heatmap", grid, *LEFT_RIGHT, "--ramp", "viridis.PNG", "-o", "b.ply")
    assert (qelm.folder / "a.ply").read_bytes() == (qelm.folder / "b.ply").read_bytes()


def test_an_image_is_not_written_over(qelm, grid):
    qelm.write("h-ramp.PNG", png([[(0, 0, 0), (9, 9, 9)]]))
    message = qelm.fails(2, "heatmap", grid, *LEFT_RIGHT, "--ramp", "reversed:h-ramp.PNG", "-o", "h")
    assert "would overwrite h-ramp.PNG, which is read" in message


BAD_IMAGES = {
    "none of a file": (None, "bad.png"),
    "no image": (b"P6 1 1 255 abc", "bad.png: not a PNG image, or a damaged one"),
    "cut short": (png([[(0, 0, 0), (9, 9, 9)]])[:50], "bad.png: not a PNG image, or a damaged one"),
    "one colour": (png([[(0, 0, 0)]]), "bad.png: two colours at least make a ramp"),
    "length and name of a chunk alone": (png([[(0, 0, 0), (9, 9, 9)]])[:33] + b"\x52\0\0\x12IDATx", "bad.png: not a PNG image, or a damaged one"),
    "data without bytes": (png([[(0, 0, 0), (9, 9, 9)]])[:33] + b"\0\0\0\0IDAT" + b"x" * 4 + png([[(0, 0, 0), (9, 9, 9)]])[33:], "bad.png: not a PNG image, or a damaged one"),
    "chunk without end": (png([[(0, 0, 0), (9, 9, 9)]])[:33] + b"\x4b\0\0\0IDAT" + b"x" * 40, "bad.png: not a PNG image, or a damaged one"),
    "huge": (png([[(0, 0, 0)]])[:16] + struct.pack(">II", 8000, 8000) + png([[(0, 0, 0)]])[24:], "bad.png: "),
}


@pytest.mark.parametrize("bad", BAD_IMAGES)
def test_bad_images_are_refused(qelm, grid, bad):
    content, message = BAD_IMAGES[bad]
    if content:
        qelm.write("bad.png", content)
    assert message in qelm.fails(3, "heatmap", grid, *LEFT_RIGHT, "--ramp", "bad.png", "-o", "h.ply")


def test_a_range_fixes_the_colours(qelm, grid):
    done = qelm.ok("heatmap", grid, *LEFT_RIGHT, "--range", "-1,3", "-o", "a.ply")
    assert "leaves" not in done.stderr
    qelm.ok("heatmap", grid, "--fix", "xmin=-1", "--fix", "xmax=3", "-o", "b.ply")
    narrow, comments = colours_of(qelm, "a.ply")
    wide, _ = colours_of(qelm, "b.ply")
    assert (narrow[0.0], narrow[4.0]) == (wide[1.0], wide[2.0])
    assert comments == ["written by qelm", "colours from -1 to 3"]
    qelm.ok("heatmap", grid, *LEFT_RIGHT, "--range", "-1,3", "-o", "a")
    text = (qelm.folder / "a.obj").read_text()
    assert text.startswith("# u = 1 at -1, u = 0 at 3\nmtllib")
    u = [float(u) for u in re.findall(r"^vt (\S+)", text, re.M)]
    assert (min(u), max(u)) == pytest.approx((0.5, 0.75))


def test_values_outside_of_a_range_have_its_ends_colours(qelm, grid):
    done = qelm.ok("heatmap", grid, *LEFT_RIGHT, "--range", "0.25,0.75", "-o", "h.ply")
    assert "the field, 0 to 1, leaves --range 0.25,0.75: values outside have the colours of its ends" in done.stderr
    colours, _ = colours_of(qelm)
    assert colours[0.0] == colours[1.0] == (68, 1, 84) and colours[3.0] == colours[4.0] == (253, 231, 37)
    qelm.ok("curves", grid, *LEFT_RIGHT, "--range", "0.25,0.75", "--at", "0.1,0.5", "--unit", "kN", "-o", "c.svg")
    drawing = (qelm.folder / "c.svg").read_text(encoding="utf-8")
    assert ">\u2265 0.75 kN<" in drawing and ">\u2264 0.25 kN<" in drawing
    qelm.ok("curves", grid, *LEFT_RIGHT, "--range", "-1,1", "--at", "0.1,0.5", "-o", "c.svg")
    drawing = (qelm.folder / "c.svg").read_text(encoding="utf-8")
    assert ">1<" in drawing and ">-1<" in drawing and "max" not in drawing


@pytest.mark.parametrize("given, message", {
    "--range=1": "--range 1: give two numbers, as in --range 0,10",
    "--range=a,2": "--range a,2: give two numbers",
    "--range=0,inf": "--range 0,inf: give two numbers",
    "--range=1,2,3": "--range 1,2,3: give two numbers",
    "--range=2,2": "--range 2,2: the first number must be the smaller one",
    "--range=-1e308,1e308": "too wide to be computed with",
    "--ramp=jet": "--ramp jet: give viridis, magma, cividis, turbo, coolwarm or an image FILE.png",
}.items())  # fmt: skip
def test_wrong_ranges_and_ramps_are_refused(qelm, given, message):
    for command, name in (("heatmap", "h.ply"), ("heatmap", "h"), ("curves", "c.svg")):
        assert message in qelm.fails(2, command, "none.obj", *LEFT_RIGHT, given, "-o", name)


def test_titles_and_units_are_in_drawings_and_heat_maps(qelm, grid):
    given = [*LEFT_RIGHT, "--title", "Snow <&\n 2026", "--unit", "kN/m\u00b2"]
    qelm.ok("curves", grid, *given, "-o", "c.svg")
    drawing = (qelm.folder / "c.svg").read_text(encoding="utf-8")
    assert "<title>Snow &lt;&amp;  2026</title>" in drawing and ">max 1 kN/m\u00b2<" in drawing
    assert "grid.obj" not in drawing
    qelm.ok("heatmap", grid, *given, "-o", "h.ply")
    assert colours_of(qelm)[1] == ["written by qelm", "Snow <&  2026", "value in kN/m\u00b2"]
    qelm.ok("heatmap", grid, *given, "-o", "h")
    text = (qelm.folder / "h.obj").read_text(encoding="utf-8")
    assert text.startswith("# Snow <&  2026\n# u = 1 at 0 kN/m\u00b2, u = 0 at 1 kN/m\u00b2\nmtllib")


def test_titles_and_units_are_in_gltf_and_vtk(qelm, grid):
    vtk = pytest.importorskip("vtkmodules.vtkIOXML")
    given = [*LEFT_RIGHT, "--title", "Snow --<&-- \u00e4\n2026", "--unit", "kN/m\u00b2"]
    qelm.ok("heatmap", grid, *given, "-o", "h.gltf")
    (node,) = json.loads((qelm.folder / "h.gltf").read_text(encoding="utf-8"))["nodes"]
    assert node["name"] == "Snow --<&-- \u00e4\n2026" and node["extras"] == {"unit": "kN/m\u00b2"}
    qelm.ok("heatmap", grid, *given, "-o", "h.vtp")
    content = (qelm.folder / "h.vtp").read_bytes()
    assert "<!-- written by qelm: Snow - -<&- - \u00e4 2026; value in kN/m\u00b2 -->".encode() in content
    reader = vtk.vtkXMLPolyDataReader()
    reader.SetFileName(str(qelm.folder / "h.vtp"))
    reader.Update()
    assert reader.GetOutput().GetNumberOfPolys() > 0
    qelm.ok("info", "h.vtp")


@with_page
def test_pages_take_title_range_and_ramp(qelm, grid):
    qelm.ok("view", grid, *LEFT_RIGHT, "--title", "Snow <b>", "--range", "0,2", "--ramp", "coolwarm", "-o", "p.html")
    page = (qelm.folder / "p.html").read_text(encoding="utf-8")
    assert "<title>Snow &lt;b> \u2013 qelm</title>" in page
    assert '"name":"Snow \\u003cb>"' in page and '"range":[0.0,2.0]' in page
