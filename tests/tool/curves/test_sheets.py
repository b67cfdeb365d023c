"""--scale and --paper: drawings whose lengths can be measured."""

import math
import re
import shutil
import xml.etree.ElementTree as ElementTree

import pytest

import built
import shapes
from png import Image

SVG = "{http://www.w3.org/2000/svg}"
LEFT_RIGHT = ["--fix", "xmin=0", "--fix", "xmax=1"]


class Drawing:
    """An SVG by what a ruler on its paper would say, in millimetres."""

    def __init__(self, path):
        self.root = ElementTree.fromstring(path.read_bytes())
        self.groups = {g.get("id"): g for g in self.root.iter(SVG + "g") if g.get("id")}
        sizes = [self.root.get(side) for side in ("width", "height")]
        assert all(size.endswith("mm") for size in sizes)
        self.paper = tuple(float(size[:-2]) for size in sizes)
        left, top, width, height = map(float, self.root.get("viewBox").split())
        assert (left, top) == (0, 0)
        self.ruler = self.paper[0] / width
        assert self.paper[1] / height == pytest.approx(self.ruler, rel=1e-5), "squares are squares"

    def points(self, group):
        d = "".join(path.get("d") for path in group.iter(SVG + "path"))
        return [tuple(self.ruler * float(c) for c in p.split()) for p in re.findall(r"[ML]([\d. -]+)", d)]

    def extent(self, group):
        points = self.points(self.groups[group])
        return [max(p[k] for p in points) - min(p[k] for p in points) for k in (0, 1)]

    def texts(self):
        return [text.text for text in self.root.iter(SVG + "text")]

    def length_bar(self):
        """(millimetres on paper, its text)."""
        group = self.groups["length-bar"]
        return self.ruler * float(group[0].get("width")), [t.text for t in group.iter(SVG + "text")]


@pytest.fixture
def draw(qelm):
    def run(mesh, *arguments):
        qelm.write("mesh.obj", shapes.obj(mesh))
        qelm.ok("curves", "mesh.obj", *LEFT_RIGHT, "--view", "z", *arguments, "-o", "c.svg")
        return Drawing(qelm.folder / "c.svg")

    return run


def sized(width, height):
    points, faces = shapes.grid(4, 3)
    return [(x * width / 4, y * height / 3, 0.0) for x, y, _ in points], faces


HUNDREDTH = 2 * 25.4 / 96 / 100  # of a pixel, at both ends


@pytest.mark.parametrize(
    "size, words, millimetres, paper",
    [
        ((8000, 6000), ["--unit", "mm", "--scale", "1:50"], (160, 120), (297, 210)),
        ((8, 6), ["--mesh-unit", "m", "--scale", "1:50"], (160, 120), (297, 210)),
        ((6, 8), ["--mesh-unit", "m", "--scale", "1:50"], (120, 160), (297, 210)),
        ((6, 20), ["--mesh-unit", "m", "--scale", "1:100"], (60, 200), (210, 297)),
        ((8, 6), ["--mesh-unit", "m", "--unit", "mm", "--scale", "1:20"], (400, 300), (594, 420)),
        ((8, 6), ["--mesh-unit", "cm", "--scale", "2:1", "--paper", "A3"], (160, 120), (420, 297)),
        ((8, 6), ["--mesh-unit", "in", "--scale", "1:1", "--paper", "300,250"], (203.2, 152.4), (300, 250)),
        ((8, 6), ["--mesh-unit", "ft", "--scale", "1:1"], (2438.4, 1828.8), None),
    ],
)
def test_lengths_on_paper_are_those_of_the_mesh(draw, size, words, millimetres, paper):
    drawing = draw(sized(*size), *words)
    assert drawing.extent("outline") == pytest.approx(millimetres, abs=HUNDREDTH)
    if paper:
        assert drawing.paper == pytest.approx(paper)
    assert any(f"scale {words[words.index('--scale') + 1]}" in (text or "") for text in drawing.texts())
    bar, texts = drawing.length_bar()
    length, unit = texts[-1].split()
    to_millimetres = {"mm": 1, "cm": 10, "m": 1000, "in": 25.4, "ft": 304.8}[unit]
    paper_length, real_length = map(float, words[words.index("--scale") + 1].split(":"))
    assert bar == pytest.approx(float(length) * to_millimetres * paper_length / real_length, abs=HUNDREDTH)
    assert 20 <= bar <= 60.01


def test_everything_is_on_the_page(draw):
    for paper in ("A4", "A3", "letter", "tabloid", "A0"):
        drawing = draw(sized(8, 6), "--mesh-unit", "m", "--paper", paper)
        moved = [float(c) for c in re.findall(r"[\d.]+", next(g for g in drawing.root if g.get("transform")).get("transform"))]
        width, height = drawing.extent("outline")
        left, top = (drawing.ruler * c for c in moved)
        assert left > 5 and top > 15 and left + width < drawing.paper[0] - 25 and top + height < drawing.paper[1] - 10


@pytest.mark.parametrize("size, paper, scale", [((8, 6), "A4", "1:50"), ((8, 6), "A0", "1:10"), ((1e-3, 6e-4), "A3", "200:1"), ((900, 700), "A1", "1:2000")])
def test_without_a_scale_the_largest_round_one_is_taken(draw, size, paper, scale):
    drawing = draw(sized(*size), "--mesh-unit", "m", "--paper", paper)
    assert any(f", scale {scale}" in text for text in drawing.texts() if text)
    paper_length, real_length = map(float, scale.split(":"))
    assert drawing.extent("outline")[0] == pytest.approx(size[0] * 1000 * paper_length / real_length, abs=HUNDREDTH)


def test_curves_are_to_scale_as_well(draw):
    drawing = draw(sized(8, 6), "--mesh-unit", "m", "--scale", "1:50", "--at", "0.25,0.75")
    ends = [points[0][0] for points in (drawing.points(g) for g in drawing.groups["curves"])]
    assert abs(ends[1] - ends[0]) == pytest.approx(80, abs=HUNDREDTH)


@pytest.mark.parametrize("words, code, message", [
    (["--scale", "1:50"], 2, "needs to know what the mesh is measured in; give --mesh-unit mm, cm, m, in or ft"),
    (["--scale", "1:50", "--unit", "kN"], 2, "needs to know what the mesh is measured in"),
    (["--scale", "50", "--mesh-unit", "m"], 2, "--scale 50: write it as 1:50, or 2:1"),
    (["--scale", "1:0", "--mesh-unit", "m"], 2, "--scale 1:0: write it as"),
    (["--scale", "0:1", "--mesh-unit", "m"], 2, "--scale 0:1: write it as"),
    (["--scale", "1:nan", "--mesh-unit", "m"], 2, "--scale 1:nan: write it as"),
    (["--scale", "1:50", "--mesh-unit", "yd"], 2, "--mesh-unit yd: give mm, cm, m, in or ft"),
    (["--paper", "A9", "--mesh-unit", "m"], 2, "--paper A9: give A0 to A4, letter, tabloid, or WIDTH,HEIGHT"),
    (["--paper", "100,-5", "--mesh-unit", "m"], 2, "--paper 100,-5: give A0"),
    (["--paper", "40,40", "--mesh-unit", "m"], 2, "--paper: the page is too small"),
    (["--paper", "A4", "--scale", "1:10", "--mesh-unit", "m"], 2, "--scale 1:10: the drawing does not fit on the paper; 1:50 does"),
    (["--scale", "100:1", "--mesh-unit", "m"], 2, "--scale 100:1: the drawing would be 800 m by 600 m"),
])  # fmt: skip
def test_what_cannot_be_drawn_is_refused(qelm, words, code, message):
    qelm.write("mesh.obj", shapes.obj(sized(8, 6)))
    assert message in qelm.fails(code, "curves", "mesh.obj", *LEFT_RIGHT, *words, "-o", "c.svg")


@pytest.mark.skipif(
    built.IS_WINDOWS or bool(built.CHECKER) or not shutil.which("rsvg-convert"),
    reason="needs rsvg-convert; once is enough",
)
def test_a_renderer_makes_it_as_large(qelm, draw):
    """At 254 dots per inch ten dots are a millimetre: the outline's ends are where they should be."""
    drawing = draw(sized(8, 6), "--mesh-unit", "m", "--scale", "1:50")
    built.run("rsvg-convert", "-d", "254", "-p", "254", qelm.folder / "c.svg", "-o", qelm.folder / "c.png")
    image = Image(qelm.folder / "c.png")
    assert (image.width, image.height) == pytest.approx([10 * side for side in drawing.paper], abs=2)
    row = image.rows[image.height // 2]
    pixels = [sum(row[x * image.channels : x * image.channels + 3]) for x in range(image.width)]
    scale = next(x for x in range(image.width - 1, 0, -1) if pixels[x] < 700)  # the colours' numbers are right of it
    dark = [x for x in range(image.width) if pixels[x] < 600 and x < image.width - 300]
    assert dark[-1] - dark[0] == pytest.approx(1600, abs=6) and scale > dark[-1]
    assert math.isclose(drawing.extent("outline")[0], 160, abs_tol=HUNDREDTH)
