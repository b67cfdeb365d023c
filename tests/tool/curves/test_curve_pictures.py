"""qelm curves -o PICTURE.svg: what it shows, from where, in which colours."""

import math
import re
import shutil
import subprocess
import xml.etree.ElementTree as ElementTree

import pytest

import built
import shapes
from png import Image

SVG = "{http://www.w3.org/2000/svg}"
LEFT_RIGHT = ["--fix", "box:0,0,0,0,9,0=0", "--fix", "box:4,0,0,4,9,0=1"]


class Picture:
    def __init__(self, path):
        self.root = ElementTree.fromstring(path.read_bytes())
        self.groups = {g.get("id"): g for g in self.root.iter(SVG + "g") if g.get("id")}

    def levels(self):
        """level -> (colour, points) of what lies in front."""
        found = {}
        for group in self.groups["curves"]:
            drawn = group.findall(SVG + "g")[-1]
            found[float(group.get("data-level"))] = (drawn.get("stroke"), self.points(drawn))
        return found

    def has_hidden(self, level):
        (group,) = (g for g in self.groups["curves"] if float(g.get("data-level")) == level)
        return any(g.get("stroke-opacity") == "0.3" for g in group)

    @staticmethod
    def points(group):
        d = "".join(path.get("d") for path in group.iter(SVG + "path"))
        return [tuple(map(float, p.split())) for p in re.findall(r"[ML]([\d. -]+)", d)]

    def texts(self, group):
        return [text.text for text in self.groups[group].iter(SVG + "text")]

    def size(self):
        return tuple(float(self.root.get(side)) for side in ("width", "height"))


@pytest.fixture
def draw(qelm):
    def run(mesh, fix, *arguments):
        qelm.write("mesh.obj", shapes.obj(mesh))
        qelm.ok("curves", "mesh.obj", *fix, *arguments, "-o", "c.svg")
        return Picture(qelm.folder / "c.svg")

    return run


def test_colours_are_those_of_the_heat_map(draw):
    picture = draw(shapes.grid(4, 3), LEFT_RIGHT, "--at", "0,0.5,0.99999")
    colours = {level: colour for level, (colour, _) in picture.levels().items()}
    assert colours[0.99999] == "#fde725"
    assert colours[0.5] == "#21918d"  # half way between #21908d and #21918c


def test_the_picture_is_to_scale_and_upright(draw):
    picture = draw(shapes.grid(4, 3), LEFT_RIGHT, "--levels", "3", "--view", "z")
    # Larger x at the right, larger y above; the mesh is four units by three.
    outline = picture.points(picture.groups["outline"])
    width = max(x for x, _ in outline)
    height = max(y for _, y in outline)
    assert min(min(p) for p in outline) == 0
    assert width / height == pytest.approx(4 / 3, rel=1e-4)
    for level, (_, points) in picture.levels().items():
        assert [x / width for x, _ in points] == pytest.approx([level] * len(points), abs=1e-4)
    page = picture.size()
    assert page[0] > width and page[1] > height


def test_the_scale_tells_levels_and_range(draw):
    picture = draw(shapes.grid(4, 3), LEFT_RIGHT, "--levels", "3")
    assert picture.texts("scale") == ["max 1", "min 0", "0.25", "0.5", "0.75"]
    # Each label twice: white below, dark above.
    assert picture.texts("labels") == ["0.25", "0.25", "0.5", "0.5", "0.75", "0.75"]


def test_the_scales_ends_are_written_out(draw):
    for value in ("100", "-25000"):
        fix = ["--fix", "box:0,0,0,0,9,0=0", "--fix", f"box:4,0,0,4,9,0={value}"]
        texts = draw(shapes.grid(4, 3), fix, "--levels", "1").texts("scale")
        assert f"max {value}" in texts or f"min {value}" in texts


def test_the_scale_tells_the_ends_of_a_narrow_range_apart(draw):
    fix = ["--fix", "box:0,0,0,0,9,0=1000000.125", "--fix", "box:4,0,0,4,9,0=1000000.25"]
    texts = draw(shapes.grid(4, 3), fix, "--levels", "1").texts("scale")
    assert texts[:2] == ["max 1000000.25", "min 1000000.125"]
    assert 1000000.125 < float(texts[2]) < 1000000.25


def test_labels_of_many_levels_keep_apart(draw):
    picture = draw(shapes.grid(4, 3), LEFT_RIGHT, "--levels", "99")
    texts = [t for t in picture.groups["scale"].findall(SVG + "text")]
    heights = sorted(float(t.get("y")) for t in texts)
    assert 10 <= len(heights) < 40
    assert min(b - a for a, b in zip(heights, heights[1:])) >= 17
    centres = []
    for text in picture.groups["labels"]:
        numbers = list(map(float, re.findall(r"-?[\d.]+", text.get("transform"))))
        assert -90 <= numbers[2] <= 90, "no text is upside down"
        centres.append(tuple(numbers[:2]))
    centres = sorted(set(centres))
    assert len(centres) > 20
    assert min(math.dist(a, b) for k, a in enumerate(centres) for b in centres[:k]) > 30


def torus(columns=48, rows=24):
    points, faces = [], []
    for i in range(columns):
        for j in range(rows):
            a, b = 2 * math.pi * i / columns, 2 * math.pi * j / rows
            r = 2 + 0.8 * math.cos(b)
            points.append((r * math.cos(a), r * math.sin(a), 0.8 * math.sin(b)))
            v = i * rows + j
            right = (i + 1) % columns * rows + j
            up = i * rows + (j + 1) % rows
            corner = (i + 1) % columns * rows + (j + 1) % rows
            faces += [(v, right, corner), (v, corner, up)]
    return points, faces


# Fixed along the top circle and the bottom one: curves run round the outer and inner sides.
TORUS_FIX = ["--fix", "box:-9,-9,0.799,9,9,9=1", "--fix", "box:-9,-9,-9,9,9,-0.799=0"]


def test_what_the_mesh_hides_is_drawn_faintly(draw):
    picture = draw(torus(), TORUS_FIX, "--at", "0.2,0.8", "--view", "z")
    # From above: the curves near the top are in front, those near the bottom behind.
    assert not picture.has_hidden(0.8)
    assert picture.has_hidden(0.2)
    (low,) = [g for g in picture.groups["curves"] if g.get("data-level") == "0.2"]
    assert [g.get("stroke-opacity") for g in low] == ["0.3"]
    below = draw(torus(), TORUS_FIX, "--at", "0.2,0.8", "--view", "-z")
    assert below.has_hidden(0.8) and not below.has_hidden(0.2)


def test_the_outline_of_a_closed_mesh_is_where_it_turns_away(draw):
    picture = draw(torus(), TORUS_FIX, "--levels", "1", "--view", "z")
    outline = picture.points(picture.groups["outline"])
    width = max(x for x, _ in outline)
    radii = [math.dist(p, (width / 2, width / 2)) / (width / 2) * 2.8 for p in outline]
    # From above: the outer circle and the inner one, nothing else.
    assert all(min(abs(r - 2.8), abs(r - 1.2)) < 0.03 for r in radii)
    assert any(r > 2.7 for r in radii) and any(r < 1.3 for r in radii)


VIEWS = {
    # A 4 x 3 grid stood upright in the plane x = 2 y; seen across it, it is whole.
    "best": (5**0.5 * 4 / 2, 3),
    "y": (4, 3),
    "x": (2, 3),
    "-y": (4, 3),
    "1,0,0": (2, 3),
}


@pytest.mark.parametrize("view", VIEWS)
def test_views_show_the_mesh_from_their_side(draw, view):
    points, faces = shapes.grid(4, 3)
    wall = [(x, x / 2, y) for x, y, _ in points], faces
    picture = draw(wall, ["--fix", "box:0,0,0,0,0,9=0", "--fix", "box:4,2,0,4,2,9=1"],
                   "--levels", "3", f"--view={view}")  # fmt: skip
    outline = picture.points(picture.groups["outline"])
    width, height = VIEWS[view]
    shown = max(x for x, _ in outline) / max(y for _, y in outline)
    assert shown == pytest.approx(width / height, rel=1e-4)


def test_names_are_text_not_markup(qelm):
    name = "a&b<c>.obj" if not built.IS_WINDOWS else "a&b.obj"
    qelm.write(name, shapes.obj(shapes.grid(4, 3)))
    qelm.ok("curves", name, *LEFT_RIGHT, "--levels", "3", "-o", "c.svg")
    title = Picture(qelm.folder / "c.svg").root.find(SVG + "title")
    assert title.text == name


@pytest.mark.skipif(
    built.IS_WINDOWS or bool(built.CHECKER) or not shutil.which("rsvg-convert"),
    reason="needs rsvg-convert; once is enough",
)
def test_a_renderer_shows_the_curves_in_their_colours(qelm, draw):
    picture = draw(shapes.grid(4, 3), LEFT_RIGHT, "--levels", "3", "--view", "z")
    built.run("rsvg-convert", qelm.folder / "c.svg", "-o", qelm.folder / "c.png")
    image = Image(qelm.folder / "c.png")
    assert (image.width, image.height) == picture.size()
    shown = {image.pixel(x, y) for y in range(0, image.height) for x in range(image.width)}
    for colour, _ in picture.levels().values():
        wanted = tuple(int(colour[k : k + 2], 16) for k in (1, 3, 5))
        assert any(math.dist(wanted, pixel[:3]) < 12 for pixel in shown), colour
    assert image.pixel(3, 3)[:3] == (255, 255, 255)


def test_up_says_which_axis_points_up(draw, qelm):
    points, faces = shapes.grid(4, 3)
    standing = [(0, a, b) for a, b, _ in points], faces
    fixes = ["--fix", "box:0,0,0,0,0,9=0", "--fix", "box:0,4,0,0,4,9=1"]

    def extents(*arguments):
        _, drawn = draw(standing, fixes, "--at", "0.5", *arguments).levels()[0.5]
        return [max(p[k] for p in drawn) - min(p[k] for p in drawn) for k in (0, 1)]

    # The curve is parallel to z.
    across, high = extents("--up", "z")
    assert high > 100 and across == pytest.approx(0, abs=0.01)
    across, high = extents("--up", "y")
    assert across > 100 and high == pytest.approx(0, abs=0.01)
    assert extents() == extents("--up", "z")


def test_from_above_is_along_what_points_up(draw):
    points, faces = shapes.grid(4, 3)
    lying = [(a, 0.0, -b) for a, b, _ in points], faces
    fixes = ["--fix", "box:0,0,-9,0,0,9=0", "--fix", "box:4,0,-9,4,0,9=1"]
    picture = draw(lying, fixes, "--levels", "3", "--up", "y", "--unit", "<mm>")
    texts = [text.text for text in picture.root.iter(SVG + "text")]
    assert any("seen from +y" in text for text in texts)
    assert "max 1 <mm>" in texts and any("0.25 to 0.75 <mm>" in text for text in texts)
