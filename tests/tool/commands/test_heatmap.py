"""qelm heatmap: what is written, in which order, and what a viewer makes of it."""

import os
import shutil
import struct
import subprocess

import pytest

import built
import shapes
from png import Image

YELLOW = (253, 231, 37)
DARK_BLUE = (68, 1, 84)
MIDDLE = (33, 145, 140)  # the published colours' middle, between entries 127 and 128
LEFT_RIGHT = ["--fix", "box:0,0,0,0,9,0=0", "--fix", "box:4,0,0,4,9,0=1"]


def read_obj(path):
    """(mtllib, points, u values, faces) of a heat map."""
    material, points, u, faces = None, [], [], []
    for line in path.read_text().splitlines():
        kind, *rest = line.split(" ")
        if kind == "mtllib":
            material = " ".join(rest)
        elif kind == "v":
            points.append(tuple(map(float, rest)))
        elif kind == "vt":
            u.append(float(rest[0]))
        elif kind == "f":
            assert all(word.split("/")[0] == word.split("/")[1] for word in rest)
            faces.append(tuple(int(word.split("/")[0]) - 1 for word in rest))
    return material, points, u, faces


def test_every_point_carries_its_own_value(qelm):
    mesh = shapes.grid(4, 3)
    qelm.write("grid.obj", shapes.obj(mesh))
    done = qelm.ok("heatmap", "grid.obj", *LEFT_RIGHT, "-o", "heat")
    assert qelm.files() == ["grid.obj", "heat.mtl", "heat.obj", "viridis.PNG"]
    material, points, u, faces = read_obj(qelm.folder / "heat.obj")
    assert material == "heat.mtl"
    assert sorted(points) == sorted(tuple(map(float, p)) for p in mesh[0])
    assert points != [tuple(map(float, p)) for p in mesh[0]], "the order is the library's"
    assert u == pytest.approx([1 - p[0] / 4 for p in points], abs=1e-6)
    index = {p: i for i, p in enumerate(mesh[0])}
    assert [tuple(index[points[v]] for v in face) for face in faces] == mesh[1]
    assert "result   heat.obj, heat.mtl, viridis.PNG" in done.stderr


def test_the_ramp_is_the_image_that_packages_bring(qelm):
    qelm.write("grid.obj", shapes.obj(shapes.grid(4, 3)))
    qelm.ok("heatmap", "grid.obj", *LEFT_RIGHT, "-o", "heat")
    assert (qelm.folder / "viridis.PNG").read_bytes() == (built.SOURCE / "data/viridis.PNG").read_bytes()


def test_ply_holds_the_value_and_colour_of_every_vertex_in_the_meshs_order(qelm):
    mesh = shapes.grid(4, 3)
    qelm.write("grid.obj", shapes.obj(mesh))
    done = qelm.ok("heatmap", "grid.obj", *LEFT_RIGHT, "-o", "heat.ply")
    assert qelm.files() == ["grid.obj", "heat.ply"]
    assert "result   heat.ply" in done.stderr
    head, body = (qelm.folder / "heat.ply").read_bytes().split(b"end_header\n")
    assert b"property uchar red\nproperty uchar green\nproperty uchar blue\nproperty double value\n" in head
    size = struct.calcsize("<3d3Bd")
    for k, point in enumerate(mesh[0]):
        x, y, z, red, green, blue, value = struct.unpack_from("<3d3Bd", body, k * size)
        assert (x, y, z) == point
        assert value == pytest.approx(x / 4, abs=1e-14)
        expected = {0: DARK_BLUE, 2: MIDDLE, 4: YELLOW}.get(point[0])
        assert expected is None or (red, green, blue) == pytest.approx(expected, abs=1)
    faces = struct.iter_unpack("<B3i", body[len(mesh[0]) * size :])
    assert [face[1:] for face in faces] == mesh[1]
    # And the tool reads it as a mesh again.
    qelm.ok("solve", "heat.ply", *LEFT_RIGHT)


def test_the_material_names_the_image_exactly(qelm):
    qelm.write("grid.obj", shapes.obj(shapes.grid(4, 3)))
    qelm.ok("heatmap", "grid.obj", *LEFT_RIGHT, "-o", "heat.obj")
    lines = (qelm.folder / "heat.mtl").read_text().splitlines()
    assert len(lines) == 8 and lines[-1] == "map_Kd viridis.PNG"
    assert "viridis.PNG" in qelm.files()


def test_the_ramp_is_viridis_with_yellow_at_the_left(qelm):
    qelm.write("grid.obj", shapes.obj(shapes.grid(4, 3)))
    qelm.ok("heatmap", "grid.obj", *LEFT_RIGHT, "-o", "heat")
    ramp = Image(qelm.folder / "viridis.PNG")
    assert ramp.width >= 2048
    middle = ramp.height // 2
    assert ramp.pixel(0, middle) == YELLOW
    assert ramp.pixel(ramp.width - 1, middle) == DARK_BLUE
    assert ramp.pixel(ramp.width // 2, middle) == pytest.approx(MIDDLE, abs=1)
    assert all(row == ramp.rows[0] for row in ramp.rows), "every row is the same"
    # viridis grows ever lighter: so does the ramp to the left.
    light = [sum(w * c for w, c in zip((0.2126, 0.7152, 0.0722), ramp.pixel(x, 0)))
             for x in range(0, ramp.width, 16)]  # fmt: skip
    assert light == sorted(light, reverse=True)


def test_the_vertex_with_the_largest_value_gets_the_yellow_end(qelm):
    qelm.write("ring.obj", shapes.obj(shapes.annulus(1, 2)))
    qelm.ok("heatmap", "ring.obj", "--fix", "loop:0=-3", "--fix", "loop:1=5", "-o", "heat")
    _, points, u, _ = read_obj(qelm.folder / "heat.obj")
    ramp = Image(qelm.folder / "viridis.PNG")
    for point, coordinate in zip(points, u):
        inner = point[0] ** 2 + point[1] ** 2 < 1.5
        colour = ramp.pixel(round(coordinate * (ramp.width - 1)), ramp.height // 2)
        assert colour == (YELLOW if inner else DARK_BLUE)


def test_files_go_to_another_folder_and_refer_to_each_other_there(qelm):
    (qelm.folder / "maps").mkdir()
    qelm.write("grid.obj", shapes.obj(shapes.grid(4, 3)))
    summary = qelm.json("heatmap", "grid.obj", *LEFT_RIGHT, "-o", "maps/heat")
    assert [name.replace("\\", "/") for name in summary["results"]] == [
        "maps/heat.obj",
        "maps/heat.mtl",
        "maps/viridis.PNG",
    ]
    assert sorted(os.listdir(qelm.folder / "maps")) == ["heat.mtl", "heat.obj", "viridis.PNG"]
    assert read_obj(qelm.folder / "maps" / "heat.obj")[0] == "heat.mtl"


def test_a_folder_outside_the_code_page_works(qelm):
    (qelm.folder / "図").mkdir()
    qelm.write("grid.obj", shapes.obj(shapes.grid(4, 3)))
    qelm.ok("heatmap", "grid.obj", *LEFT_RIGHT, "-o", "図/heat")
    assert sorted(os.listdir(qelm.folder / "図")) == ["heat.mtl", "heat.obj", "viridis.PNG"]


def test_a_name_outside_the_code_page_works(qelm):
    qelm.write("grid.obj", shapes.obj(shapes.grid(4, 3)))
    qelm.ok("heatmap", "grid.obj", *LEFT_RIGHT, "-o", "図")
    assert qelm.files() == ["grid.obj", "viridis.PNG", "図.mtl", "図.obj"]


def test_every_coordinate_keeps_its_bits(qelm):
    # Six digits would leave 21 different points of 231.
    mesh = shapes.moved(shapes.grid(20, 10), (6.5e6 + 0.1, 4.9e6, 1 / 3))
    qelm.write("far.obj", shapes.obj(mesh))
    qelm.ok("heatmap", "far.obj", "--fix", "vertex:0=0", "--fix", "vertex:230=1", "-o", "heat")
    _, points, u, _ = read_obj(qelm.folder / "heat.obj")
    assert sorted(points) == sorted(tuple(map(float, p)) for p in mesh[0])
    qelm.ok("solve", "far.obj", "--fix", "vertex:0=0", "--fix", "vertex:230=1", "-o", "field.csv")
    value = dict(zip(qelm.points(), qelm.field()))
    assert u == [1 - value[p] for p in points]


def test_the_material_is_the_librarys_byte_for_byte(qelm):
    qelm.write("grid.obj", shapes.obj(shapes.grid(4, 3)))
    qelm.ok("heatmap", "grid.obj", *LEFT_RIGHT, "-o", "heat")
    # As tests/export has it.
    assert (qelm.folder / "heat.mtl").read_bytes() == (
        b"newmtl Heat \nKd 1 1 1             \nNs 96.0784\t\t\t \nd 1\t\t\t\t\t \nillum 1\t\t\t\t \n"
        b"Ka 0 0 0\t\t\t \nKs 1 1 1\t\t\t \nmap_Kd viridis.PNG\n"
    )


def test_a_blank_in_the_name_is_noted(qelm):
    qelm.write("grid.obj", shapes.obj(shapes.grid(4, 3)))
    done = qelm.ok("heatmap", "grid.obj", *LEFT_RIGHT, "-o", "my heat")
    assert "note: many viewers do not find a material file with a blank in its name" in done.stderr
    assert read_obj(qelm.folder / "my heat.obj")[0] == "my heat.mtl"


def test_existing_files_are_replaced_only_by_success(qelm):
    qelm.write("grid.obj", shapes.obj(shapes.grid(4, 3)))
    for name in ("heat.obj", "heat.mtl", "viridis.PNG"):
        qelm.write(name, "old")
    qelm.fails(2, "heatmap", "grid.obj", "--fix", "loop:9=0", "-o", "heat")
    assert (qelm.folder / "heat.obj").read_text() == "old"
    qelm.ok("heatmap", "grid.obj", *LEFT_RIGHT, "-o", "heat")
    assert len(read_obj(qelm.folder / "heat.obj")[1]) == 20
    assert Image(qelm.folder / "viridis.PNG").pixel(0, 0) == YELLOW


def test_refusals(qelm):
    qelm.write("grid.obj", shapes.obj(shapes.grid(4, 3)))
    (qelm.folder / "taken.mtl").mkdir()
    same = ["--fix", "loop:0=2"]
    cases = [
        (2, [*same, "-o", "heat"], "grid.obj: the field is 2 everywhere, so there is no range"),
        (1, [*LEFT_RIGHT, "-o", "nowhere/heat"], "nowhere/heat.obj: cannot be written: No such file"),
        (1, [*LEFT_RIGHT, "-o", "taken"], "taken.mtl: cannot be written: it is a folder"),
        (2, [*LEFT_RIGHT, "-o", "grid"], "-o grid.obj would overwrite grid.obj"),
        (2, [*LEFT_RIGHT, "-o", "taken.mtl/"], "name the files, without extension"),
        (2, LEFT_RIGHT, "--output is required"),
        (2, ["-o", "heat"], "no vertex is fixed"),
    ]
    for code, arguments, message in cases:
        assert message in qelm.fails(code, "heatmap", "grid.obj", *arguments)


@pytest.mark.skipif(built.IS_WINDOWS, reason="needs a limit on the size of files")
def test_a_disk_that_fills_up_is_noticed(qelm):
    import resource
    import signal

    qelm.write("grid.obj", shapes.obj(shapes.grid(40, 40)))
    size = (qelm.folder / "grid.obj").stat().st_size
    fix = ["--fix", "vertex:0=0", "--fix", "vertex:1=1"]

    def limit():
        signal.signal(signal.SIGXFSZ, signal.SIG_IGN)
        resource.setrlimit(resource.RLIMIT_FSIZE, (size // 2, size // 2))

    done = subprocess.run(
        [built.program("qelm"), "heatmap", "grid.obj", *fix, "-o", "heat"],
        cwd=qelm.folder, capture_output=True, encoding="utf-8", preexec_fn=limit,
    )  # fmt: skip
    assert done.returncode == 1
    assert "heat.obj: writing failed: File too large" in done.stderr
    assert qelm.files() == ["grid.obj"]


@pytest.mark.skipif(
    built.IS_WINDOWS or bool(built.CHECKER) or not shutil.which("f3d") or not shutil.which("xvfb-run"),
    reason="needs F3D and a virtual display; once is enough",
)
def test_a_viewer_shows_the_largest_value_yellow_and_the_smallest_dark_blue(qelm):
    qelm.write("grid.obj", shapes.obj(shapes.grid(4, 3)))
    qelm.ok("heatmap", "grid.obj", *LEFT_RIGHT, "-o", "heat")
    script = built.SOURCE / "scripts" / "render-heatmap"
    built.run(script, qelm.folder / "heat.obj", qelm.folder / "heat.png", "--resolution=300,200")
    picture = Image(qelm.folder / "heat.png")
    middle = [picture.pixel(x, 100) for x in range(300)]
    shown = [pixel for pixel in middle if pixel != (255, 255, 255)]
    assert len(shown) > 100, "the mesh fills much of the picture"
    smallest, largest = shown[5], shown[-6]
    assert largest[0] > 200 and largest[1] > 180 and largest[2] < 90, largest
    assert smallest[0] < 110 and smallest[1] < 60 and 50 < smallest[2] < 150, smallest
