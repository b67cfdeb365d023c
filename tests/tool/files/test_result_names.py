"""No command writes over what it reads, or under a name that promises another format."""

import os
import re

import pytest

import built
import shapes

FIX = ["--fix", "vertex:0=0", "--fix", "vertex:2=1"]
ENDING = {"solve": ".csv", "gradient": ".csv", "heatmap": ".ply", "curves": ".csv", "view": ".html", "weld": ".obj", "repair": ".obj"}


def arguments_of(command):
    more = {"curves": ["--levels", "2"]}.get(command, [])
    return [*more, *([] if command in ("weld", "repair") else FIX)]


@pytest.fixture
def square(qelm):
    return qelm.write("M.obj", shapes.obj(shapes.SQUARE))


def writing_commands(qelm):
    """Every command with an -o, also one that is added later."""
    commands = re.findall(r"^  ([a-z]+)  ", qelm.ok("--help").stdout.split("Subcommands:")[1], re.MULTILINE)
    return [name for name in commands if "--output" in qelm.ok(name, "--help").stdout]


def test_every_command_that_writes_files_is_tried_here(qelm):
    assert sorted(writing_commands(qelm)) == sorted(ENDING)


def links(qelm, ending):
    """Names of M.obj with this ending, as far as the system has links."""
    os.link(qelm.folder / "M.obj", qelm.folder / f"hard{ending}")
    names = [f"hard{ending}"]
    if not built.IS_WINDOWS:
        os.symlink("M.obj", qelm.folder / f"soft{ending}")
        names.append(f"soft{ending}")
    return names


@pytest.mark.parametrize("command", ENDING)
def test_no_command_writes_over_its_mesh_by_any_link(qelm, square, command):
    if command == "view" and not built.HAS_VIEW_PAGE:
        pytest.skip("built without the page")
    before = (qelm.folder / "M.obj").read_bytes()
    for name in links(qelm, ENDING[command]):
        message = qelm.fails(2, command, square, *arguments_of(command), "-o", name)
        assert f"-o {name} would overwrite M.obj, which is read" in message
        assert (qelm.folder / "M.obj").read_bytes() == before


def test_no_command_writes_over_its_mesh_by_any_spelling(qelm, square):
    (qelm.folder / "sub").mkdir()
    before = (qelm.folder / "M.obj").read_bytes()
    spellings = ["M.obj", "./M.obj", "sub/../M.obj"]
    if built.IS_WINDOWS:
        spellings += ["m.OBJ", "M.OBJ"]
    for name in spellings:
        assert "would overwrite M.obj" in qelm.fails(2, "weld", square, "-o", name)
        assert "would overwrite M.obj" in qelm.fails(2, "heatmap", square, *FIX, "-o", name)
        assert "would overwrite M.obj" in qelm.fails(2, "curves", square, *FIX, "--levels", "2", "-o", name)
        qelm.fails(2, "solve", square, *FIX, "-o", name)
    assert (qelm.folder / "M.obj").read_bytes() == before


def test_conditions_and_loads_are_not_written_over_either(qelm, square):
    qelm.write("held.csv", "0,1\n2,0\n")
    qelm.write("load.csv", "0\n0\n0\n0\n")
    for name, more in (("held.csv", []), ("load.csv", ["--fix", "vertex:0=0"])):
        given = ["--fix-file", "held.csv", "--load", "load.csv", *more]
        assert f"would overwrite {name}, which is read" in qelm.fails(2, "solve", square, *given, "-o", name)
    assert (qelm.folder / "held.csv").read_text() == "0,1\n2,0\n"
    assert (qelm.folder / "load.csv").read_text() == "0\n0\n0\n0\n"


def test_the_files_beside_a_heat_map_do_not_replace_inputs(qelm, square):
    qelm.write("heat.mtl", "0,1\n2,0\n")
    assert "would overwrite heat.mtl" in qelm.fails(2, "heatmap", square, "--fix-file", "heat.mtl", "-o", "heat")
    assert (qelm.folder / "heat.mtl").read_text() == "0,1\n2,0\n"


@pytest.mark.parametrize(
    "command, name, writes",
    [
        ("solve", "x.ply", ".csv"),
        ("solve", "x.XLSX", ".csv"),
        ("view", "a.png", ".html"),
        ("heatmap", "h.dae", ".obj (with .mtl and viridis.PNG beside it), .ply, .glb"),
        ("heatmap", "h.3mf", ".obj (with .mtl and viridis.PNG beside it), .ply, .glb"),
        ("curves", "c.dwg", ".obj, .json, .csv, .svg, .dxf, .vtp, .glb or .gltf"),
        ("weld", "w.vtk", ".obj, .off, .ply, .stl, .vtp or .vtu"),
    ],
)
def test_a_name_that_promises_another_format_is_refused_before_the_mesh_is_read(qelm, command, name, writes):
    if command == "view" and not built.HAS_VIEW_PAGE:
        pytest.skip("built without the page")
    message = qelm.fails(2, command, "none.obj", *arguments_of(command), "-o", name)
    extension = name[name.index(".") :].lower()
    assert f"-o {name}: {extension} is not written here; " in message and writes in message


def test_other_names_are_nobodys_format(qelm, square):
    qelm.ok("solve", square, *FIX, "-o", "field")
    qelm.ok("solve", square, *FIX, "-o", "field.2026")
    qelm.ok("solve", square, *FIX, "-o", "field.txt")
    qelm.ok("heatmap", square, *FIX, "-o", "roof.v1-2")
    assert {"field", "field.2026", "field.txt", "roof.v1-2.obj", "roof.v1-2.mtl"} <= set(qelm.files())
