"""Meshes from the standard input and results to the standard output, in every format."""

import subprocess

import built
import pytest
import shapes

FIX = ["--fix", "vertex:0=0", "--fix", "vertex:2=1"]
SQUARE = shapes.moved(shapes.SQUARE, (1 / 3, 0, 0))
# Line ends and the mark of the end of a text in binary files, where a system would change them.
NASTY = shapes.ply_binary(([(10 / 3, 13.0, 26.0), *shapes.grid(9, 4)[0][1:]], shapes.grid(9, 4)[1]))


def piped(qelm, *arguments, content=b""):
    command = [*built.LAUNCHER, built.program("qelm"), *arguments]
    return subprocess.run(command, cwd=qelm.folder, input=content, capture_output=True)


def test_every_format_can_be_read_from_the_standard_input(qelm):
    qelm.write("m.ply", NASTY)
    runs = [("ply", NASTY)]
    for ending in ("obj", "off", "stl", "vtp", "vtu"):
        qelm.ok("weld", "m.ply", "--tolerance", "0", "-o", f"m.{ending}", "-q")
        runs.append((ending, (qelm.folder / f"m.{ending}").read_bytes()))
    for ending in ("glb", "gltf"):
        qelm.ok("heatmap", "m.ply", *FIX, "-o", f"m.{ending}", "-q")
        runs.append((ending, (qelm.folder / f"m.{ending}").read_bytes()))
    for ending, content in runs:
        done = piped(qelm, "info", "-", "--read-as", ending, "--json", content=content)
        assert done.returncode == 0, done.stderr
        assert b'"triangles": 72' in done.stdout


@pytest.mark.parametrize("kind", ["obj", "off", "off-binary", "ply", "stl", "vtp", "vtu"])
def test_every_mesh_format_can_be_written_to_the_standard_output(qelm, kind):
    qelm.write("m.ply", NASTY)
    qelm.ok("weld", "m.ply", "-o", "out", "--format", kind)
    done = piped(qelm, "weld", "-", "--read-as", "ply", "-o", "-", "--format", kind, "-q", content=NASTY)
    assert done.returncode == 0 and done.stdout == (qelm.folder / "out").read_bytes(), done.stderr


@pytest.mark.parametrize("kind", ["ply", "glb", "gltf", "vtp", "vtu"])
def test_heat_maps_go_to_the_standard_output(qelm, kind):
    qelm.write("m.ply", NASTY)
    qelm.ok("heatmap", "m.ply", *FIX, "-o", f"out.{kind}")
    done = piped(qelm, "heatmap", "m.ply", *FIX, "-o", "-", "--format", kind, "-q")
    assert done.returncode == 0 and done.stdout == (qelm.folder / f"out.{kind}").read_bytes(), done.stderr


@pytest.mark.parametrize("kind", ["obj", "csv", "svg", "dxf", "vtp", "glb", "gltf"])
def test_curves_go_to_the_standard_output(qelm, kind):
    qelm.write("m.ply", NASTY)
    arguments = ["curves", "m.ply", *FIX, "--levels", "3", "-q"]
    qelm.ok(*arguments, "-o", f"out.{kind}")
    done = piped(qelm, *arguments, "-o", "-", "--format", kind)
    assert done.returncode == 0 and done.stdout == (qelm.folder / f"out.{kind}").read_bytes(), done.stderr


def test_what_does_not_fit_is_refused(qelm):
    qelm.write("m.obj", shapes.obj(SQUARE))
    assert "say what it holds, as in --read-as obj" in qelm.fails(2, "info", "-")
    assert "--read-as docx: what is read is .obj" in qelm.fails(2, "info", "-", "--read-as", "docx")
    assert "only the standard input (-) needs it" in qelm.fails(2, "info", "m.obj", "--read-as", "ply")
    assert "-o -: say which kind of file" in qelm.fails(2, "heatmap", "m.obj", *FIX, "-o", "-")
    assert "--format docx: one of ply" in qelm.fails(2, "heatmap", "m.obj", *FIX, "-o", "-", "--format", "docx")
    assert "--format docx: one of obj" in qelm.fails(2, "weld", "m.obj", "-o", "-", "--format", "docx")
    done = piped(qelm, "info", "-", "--read-as", "obj", content=b"v 1 2 x\n")
    assert done.returncode == 3 and b"error: standard input (obj):1: " in done.stderr
    assert "--format docx: 'solve' writes the field as" in qelm.fails(2, "solve", "m.obj", *FIX, "-o", "-", "--format", "docx")
    assert "--format stl: 'gradient' writes" in qelm.fails(2, "gradient", "m.obj", *FIX, "-o", "-", "--format", "stl")


def test_files_of_such_names_are_still_files(qelm):
    for name in ("./-.obj", "standard input (obj).obj"):
        qelm.write(name, shapes.obj(SQUARE))
        assert qelm.json("info", name)["triangles"] == 2
    assert "not a mesh file by its name" in qelm.fails(3, "info", "./standard input (obj)")
    qelm.write("-", "0\n0.5\n1\n0.25\n")
    assert qelm.json("gradient", "./-.obj", "--field", "./-")["triangles"] == 2


def test_the_standard_input_is_called_so(qelm):
    content = shapes.obj(SQUARE).encode()
    done = piped(qelm, "curves", "-", "--read-as", "obj", *FIX, "--at", "0.5", "-o", "c.svg", content=content)
    assert done.returncode == 0 and b"mesh     standard input (obj): 4 vertices, 2 triangles" in done.stderr
    assert ">standard input (obj)<" in (qelm.folder / "c.svg").read_text()
    # And it is stood up as a file of its format.
    up = {}
    for kind in ("obj", "gltf"):
        qelm.write(f"m.{kind}", content) if kind == "obj" else qelm.ok("heatmap", "m.obj", *FIX, "-o", "m.gltf")
        bytes_of = (qelm.folder / f"m.{kind}").read_bytes()
        qelm.ok("curves", f"m.{kind}", *FIX, "--at", "0.5", "--title", "t", "-o", "file.svg")
        done = piped(qelm, "curves", "-", "--read-as", kind, *FIX, "--at", "0.5", "--title", "t", "-o", "piped.svg", content=bytes_of)
        assert done.returncode == 0, done.stderr
        up[kind] = (qelm.folder / "file.svg").read_bytes()
        assert up[kind] == (qelm.folder / "piped.svg").read_bytes()


@pytest.mark.parametrize("kind", ["csv", "npy", "vtp", "vtu"])
def test_fields_go_to_the_standard_output(qelm, kind):
    qelm.write("m.ply", NASTY)
    arguments = ["solve", "m.ply", *FIX, "--gradient", "-q"]
    qelm.ok(*arguments, "-o", f"out.{kind}")
    done = piped(qelm, *arguments, "-o", "-", "--format", kind)
    assert done.returncode == 0 and done.stdout == (qelm.folder / f"out.{kind}").read_bytes(), done.stderr


@pytest.mark.parametrize("kind", ["csv", "npy", "ply", "vtp", "vtu"])
def test_gradients_go_to_the_standard_output(qelm, kind):
    qelm.write("m.ply", NASTY)
    arguments = ["gradient", "m.ply", *FIX, "-q"]
    qelm.ok(*arguments, "-o", f"out.{kind}")
    done = piped(qelm, *arguments, "-o", "-", "--format", kind)
    assert done.returncode == 0 and done.stdout == (qelm.folder / f"out.{kind}").read_bytes(), done.stderr


@pytest.mark.parametrize("kind", ["csv", "npy"])
def test_fields_conditions_and_loads_come_from_the_standard_input(qelm, kind):
    qelm.write("m.ply", NASTY)
    qelm.ok("solve", "m.ply", *FIX, "-o", f"u.{kind}", "-q")
    content = (qelm.folder / f"u.{kind}").read_bytes()
    for file, piped_in in (
        (["curves", "m.ply", "--field", f"u.{kind}", "--at", "0.5"], ["curves", "m.ply", "--field", "-", "--at", "0.5"]),
        (["solve", "m.ply", "--fix-file", f"u.{kind}"], ["solve", "m.ply", "--fix-file", "-"]),
        (["solve", "m.ply", *FIX, "--load", f"u.{kind}"], ["solve", "m.ply", *FIX, "--load", "-"]),
    ):
        qelm.ok(*file, "-o", "file.csv", "-q")
        done = piped(qelm, *piped_in, "-o", "-", "-q", content=content)
        assert done.returncode == 0, done.stderr
        assert done.stdout == (qelm.folder / "file.csv").read_bytes()
    column = "-:value" if kind == "csv" else "-:0"
    assert piped(qelm, "curves", "m.ply", "--field", column, "--at", "0.5", "-o", "-", content=content).returncode == 0


def test_bad_fields_from_the_standard_input_are_refused(qelm):
    qelm.write("m.ply", NASTY)
    for content, arguments, message in (
        (b"1\nx\n", ["--field", "-"], b"standard input:2: 'x' is not a number"),
        (b"\x93NUMPY\x01\x00", ["--field", "-"], b"standard input: "),
        (b"0,1\n0,2\n", ["--fix-file", "-"], b"standard input:2: "),
        (b"1,1\n2,2,2\n", [*FIX, "--load", "-"], b"standard input:2: "),
    ):
        done = piped(qelm, "curves", "m.ply", *arguments, "--at", "0.5", "-o", "-", content=content)
        assert done.returncode == 3 and message in done.stderr and done.stdout == b"", done.stderr
    done = piped(qelm, "curves", "-", "--read-as", "ply", "--field", "-", "--at", "0.5", "-o", "c.csv", content=NASTY)
    assert done.returncode == 2 and b"the standard input (-) can be read once" in done.stderr
    assert not (qelm.folder / "c.csv").exists()
