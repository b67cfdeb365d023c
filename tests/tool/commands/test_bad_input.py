"""Everything that is refused: exit code, and a message that names the element."""

import math
import struct

import pytest

import shapes
from tool import Tool, refusal, run_all

SQUARE = shapes.obj(shapes.SQUARE)
ONE_FIX = ["--fix", "vertex:0=0"]


def obj(points, faces):
    return shapes.obj((points, faces))


FLAT = ([(0, 0, 0), (1, 1, 1), (2, 2, 2), (0, 1, 0)], [(0, 1, 3), (0, 1, 2)])
BOW = [(0, 0, 0), (2, 0, 0), (1, 0.1, 0), (0, 2, 0)]  # corner 2 is bent inwards
STAR = [(math.cos(2.4 * math.pi / 3 * k), math.sin(2.4 * math.pi / 3 * k), 0) for k in range(5)]
BAD_STL = shapes.stl_binary(shapes.SQUARE)
NAN_STL = BAD_STL[:84 + 50 + 12 + 24] + struct.pack("<f", math.nan) + BAD_STL[84 + 50 + 12 + 28 :]

PLY = shapes.ply_text(shapes.SQUARE)

BAD_MESHES = {
    "not_a_mesh_by_name": ("a.step", "x", "a.step: not a mesh file by its name; give one that ends in .obj"),
    "empty": ("a.obj", " \n", "a.obj: not a mesh: empty file"),
    "prose": ("a.obj", "Dear reader,\n", "a.obj: not a mesh: no vertices"),
    "no_faces": ("a.obj", "v 0 0 0\n", "a.obj: not a mesh: no faces"),
    "index_too_high": ("a.obj", SQUARE + "f 1 2 5\n", "a.obj:7: vertex index 5 is out of range: the file has 4 vertices"),
    "index_zero": ("a.obj", SQUARE + "f 0 1 2\n", "a.obj:7: vertex index 0: OBJ files number their vertices from 1"),
    "index_too_low": ("a.obj", SQUARE + "f -1 -2 -5\n", "a.obj:7: vertex index -5 is out of range: 4 vertices come before this line"),
    "word_in_a_face": ("a.obj", SQUARE + "f 1 2 x 3\n", "a.obj:7: 'x' is not a corner of a face"),
    "number_with_a_tail": ("a.obj", SQUARE + "f 1 2 3x\n", "a.obj:7: '3x' is not a corner of a face"),
    "two_corners": ("a.obj", SQUARE + "f 1 2\n", "a.obj:7: a face needs at least three corners"),
    "word_in_a_vertex": ("a.obj", "v 0 zero 0\n", "a.obj:1: 'zero' is not a coordinate"),
    "short_vertex": ("a.obj", "v 0 0\n", "a.obj:1: a vertex needs three coordinates"),
    "nan": ("a.obj", "v 0 0 0\nv 0 nan 0\n", "a.obj:2: vertex 1: coordinate 'nan' is not finite"),
    "too_large": ("a.obj", "v 0 -1e999 0\n", "a.obj:1: vertex 0: coordinate '-1e999' is not finite"),
    "repeated_vertex": ("a.obj", SQUARE + "f 2 3 2\n", "a.obj: will not work: triangle 2 (1, 2, 1): names vertex 1 twice; remove"),
    "unused_vertex": ("a.obj", SQUARE + "v 5 6 7\nv 0 0 8\n", "a.obj: will not work: vertex 4 (5, 6, 7): in no triangle (and 1 more); remove"),
    "zero_area": ("a.obj", obj(*FLAT), "a.obj: will not work: triangle 1 (0, 1, 2): zero area; remove"),
    "zero_area_by_overflow": ("a.obj", obj([(0, 0, 0), (1e200, 0, 0), (0, 1e200, 0)], [(0, 1, 2)]), "a.obj: will not work: triangle 0 (0, 1, 2): too small or too large to compute with"),
    "zero_area_within_rounding": ("a.obj", obj([(1e6, 0, 0), (1e6 + 0.1, 0.1, 0), (1e6 + 0.3, 0.3, 0)], [(0, 1, 2)]), "a.obj: will not work: triangle 0 (0, 1, 2): zero area"),
    "not_convex": ("a.obj", obj(BOW, [(0, 1, 2, 3)]), "a.obj: face 0 (0, 1, 2, 3): a polygon that is not convex; split it"),
    "star": ("a.obj", obj(STAR, [(0, 1, 2, 3, 4)]), "a.obj: face 0 (0, 1, 2, 3, 4): a polygon that crosses itself; split it"),
    "polygon_repeats": ("a.obj", obj(STAR, [(0, 2, 4, 1, 3), (0, 1, 2, 1)]), "a.obj: face 1 (0, 1, 2, 1): a polygon that names a vertex twice"),
    "nothing_left": ("a.obj", SQUARE.split("f")[0] + "f 1 2 1\n", "a.obj: none of 1 faces has three different corners; repair"),
    "polygon_flat": ("a.obj", obj([(k, 0, 0) for k in range(4)], [(0, 1, 2, 3)]), "a.obj: face 0 (0, 1, 2, 3): a polygon without area"),
    "open_part": ("a.obj", shapes.obj(shapes.joined(shapes.SQUARE, shapes.moved(shapes.SQUARE, (5, 0, 0)))), "a.obj: will not work: the connected part with vertex 4 (5, 0, 0), 4 vertices in all, has no fixed vertex; fix a vertex in every part"),
    "stl_facet_short": ("a.stl", shapes.stl_text(shapes.SQUARE).replace("    vertex 0 1 0\n", ""), "a.stl:14: facet 1 has 2 corners instead of three"),
    "stl_four_corners": ("a.stl", shapes.stl_text(shapes.SQUARE).replace("    vertex 0 1 0\n", "    vertex 0 1 0\n" * 2), "a.stl:14: facet 1 has more than three corners"),
    "stl_cut_short": ("a.stl", shapes.stl_text(shapes.SQUARE)[:-60], "a.stl:12: the file ends within a facet"),
    "stl_nan": ("a.stl", shapes.stl_text(shapes.SQUARE).replace("vertex 0 1 0", "vertex 0 nan 0"), "a.stl:13: facet 1: coordinate 'nan' is not finite"),
    "stl_empty": ("a.stl", "solid\nendsolid\n", "a.stl: not a mesh: no facets"),
    "stl_binary_cut_short": ("a.stl", BAD_STL[:-1], "a.stl: not an STL file, or cut short: 2 facets are announced, 1 are there"),
    "stl_binary_nan": ("a.stl", NAN_STL, "a.stl: facet 1: a coordinate of corner 2 is not finite"),
    "stl_binary_empty": ("a.stl", b"".ljust(84, b"\0"), "a.stl: not a mesh: no facets"),
    "ply_not": ("a.ply", SQUARE, "a.ply: not a PLY file: it does not begin with 'ply'"),
    "ply_no_format": ("a.ply", PLY.replace("format", "formula"), "a.ply:2: the second line must be 'format"),
    "ply_unknown_format": ("a.ply", PLY.replace("ascii", "roman"), "a.ply:2: unknown format 'roman'"),
    "ply_property_first": ("a.ply", PLY.replace("element vertex 4\n", ""), "a.ply:3: a property before the first element"),
    "ply_unknown_type": ("a.ply", PLY.replace("double y", "half y"), "a.ply:5: unknown type 'half'"),
    "ply_unknown_keyword": ("a.ply", PLY.replace("element face", "elephant face"), "a.ply:7: 'elephant' does not belong into a header"),
    "ply_bad_count": ("a.ply", PLY.replace("vertex 4", "vertex -4"), "a.ply:3: an element needs a name and a count"),
    "ply_flat": ("a.ply", PLY.replace("property double z\n", ""), "a.ply:3: vertices need a float or double property 'z'"),
    "ply_no_faces": ("a.ply", PLY.replace("element face", "element edge"), "a.ply: not a mesh: no element 'face'"),
    "ply_float_indices": ("a.ply", PLY.replace("uchar int", "uchar float"), "a.ply:7: faces need a list 'vertex_indices' of whole numbers"),
    "ply_endless": ("a.ply", PLY.split("end_header")[0], "a.ply:8: the header has no 'end_header'"),
    "ply_too_many": ("a.ply", PLY.replace("vertex 4", "vertex 99999999999"), "a.ply:3: 99999999999 of 'vertex' are announced, but the file is too short"),
    "ply_cut_short": ("a.ply", shapes.ply_binary(shapes.SQUARE)[:-5], "a.ply: face 1: a list of 3 numbers, but the file is too short for them"),
    "ply_cut_in_a_number": ("a.ply", shapes.ply_binary(shapes.SQUARE)[:-1] , "a.ply: face 1: the file ends here; it may be cut short"),
    "ply_text_cut_short": ("a.ply", PLY[:-3], "a.ply:15: face 1: a list of 3 numbers, but the file is too short for them"),
    "ply_word": ("a.ply", PLY.replace("3 0 1 2", "3 0 one 2"), "a.ply:14: face 0: 'one' is not a whole number"),
    "ply_half_index": ("a.ply", PLY.replace("3 0 1 2", "3 0 1.5 2"), "a.ply:14: face 0: '1.5' is not a whole number"),
    "ply_negative_count": ("a.ply", PLY.replace("3 0 1 2", "-3 0 1 2"), "a.ply:14: face 0: a list of -3 numbers"),
    "ply_list_count_is_no_number": ("a.ply", PLY.replace("list uchar", "list float"), "a.ply:8: a list needs a whole number for its count"),
    "ply_two_corners": ("a.ply", shapes.ply_text((shapes.SQUARE[0], [(0, 1, 2), (0, 2)])), "a.ply: face 1: has only 2 corners"),
    "off_not": ("a.off", SQUARE, "a.off:1: not an OFF file: it does not begin with 'OFF'"),
    "off_four": ("a.off", shapes.off(shapes.SQUARE).replace("OFF", "4OFF"), "a.off:1: '4OFF' is not a surface in space"),
    "off_binary": ("a.off", shapes.off(shapes.SQUARE).replace("OFF", "OFF BINARY"), "are announced, but the file is too short for them"),
    "off_header_only": ("a.off", "OFF\n", "a.off:1: the file ends before the counts of vertices and faces"),
    "off_bad_count": ("a.off", shapes.off(shapes.SQUARE).replace("4 2 0", "four 2 0"), "a.off:2: 'four' is not a number of vertices"),
    "off_too_many": ("a.off", shapes.off(shapes.SQUARE).replace("4 2 0", "4 99999999 0"), "a.off:2: 99999999 faces are announced, but the file is too short for them"),
    "off_short": ("a.off", shapes.off(shapes.SQUARE).replace("3 0 2 3\n", ""), "a.off:7: the file ends before face 1 of 2; it may be cut short"),
    "off_word": ("a.off", shapes.off(shapes.SQUARE).replace("1 1 0", "1 y 0"), "a.off:5: vertex 2: 'y' is not a coordinate"),
    "off_index": ("a.off", shapes.off(shapes.SQUARE).replace("3 0 2 3", "3 0 2 4"), "a.off: face 1: vertex index 4 is out of range: the file has 4 vertices, numbered 0 to 3"),
    "off_huge_index": ("a.off", shapes.off(shapes.SQUARE).replace("3 0 2 3", "3 0 2 -9999999999"), "a.off: face 1: vertex index -2147483647 is out of range"),
    "off_word_in_a_face": ("a.off", shapes.off(shapes.SQUARE).replace("3 0 2 3", "3 0 2 x"), "a.off:8: face 1: 'x' is not a vertex's number"),
    "off_corners": ("a.off", shapes.off(shapes.SQUARE).replace("3 0 2 3", "999999 0 2 3"), "a.off:8: face 1: 999999 corners, but the file is too short for them"),
    "off_two_corners": ("a.off", shapes.off(shapes.SQUARE).replace("3 0 2 3", "2 0 2"), "a.off: face 1: has only 2 corners"),
    "off_nan": ("a.off", shapes.off(shapes.SQUARE).replace("1 1 0", "1 nan 0"), "a.off: will not work: vertex 2 (1, nan, 0): coordinates not finite"),
    "ply_index": ("a.ply", shapes.ply_text((shapes.SQUARE[0], [(0, 1, 2), (0, 2, 4)])), "a.ply: face 1: vertex index 4 is out of range: the file has 4 vertices, numbered 0 to 3"),
    "ply_negative_index": ("a.ply", shapes.ply_text((shapes.SQUARE[0], [(0, 1, 2), (0, 2, -1)])), "a.ply: face 1: vertex index -1 is out of range"),
    "ply_nan": ("a.ply", shapes.ply_binary(([(0, 0, 0), (1, math.nan, 0), (0, 1, 0)], [(0, 1, 2)])), "a.ply: will not work: vertex 1 (1, nan, 0): coordinates not finite; repair"),
}  # fmt: skip


def test_files_that_are_not_there_and_folders_are_refused(qelm):
    message = qelm.fails(3, "solve", "none.obj", *ONE_FIX)
    assert "none.obj: no such file; check the name" in message
    (qelm.folder / "folder.obj").mkdir()
    assert "folder.obj: is a folder" in qelm.fails(3, "solve", "folder.obj", *ONE_FIX)


BAD_FOR_THE_MESH = {
    "vertex:4=0": "there is no vertex 4; the mesh has 4 vertices, numbered 0 to 3",
    "vertex:0,99999999999=0": "there is no vertex 99999999999",
    "loop:1=0": "there is no loop 1; the mesh has 1 boundary loop: loop:0 (4 long)",
    "box:0.2,0.2,0,0.8,0.8,0=0": "no vertex lies in this box; the mesh spans 0,0,0 to 1,1,0",
}


def test_a_closed_mesh_has_no_loop(qelm):
    qelm.write("a.obj", shapes.obj(shapes.tetrahedron()))
    message = qelm.fails(2, "solve", "a.obj", "--fix", "loop:0=0")
    assert "the mesh is closed: it has no boundary loop" in message


BAD_USAGE = {
    "no_fix": (["solve", "a.obj"], "no vertex is fixed; give at least one --fix"),
    "no_mesh": (["solve", *ONE_FIX], "mesh is required"),
    "no_command": ([], "no command; name one of: info, check, solve"),
    "unknown_command": (["sove", "a.obj"], "there is no command 'sove'; name one of: info, check, solve"),
    "unknown_option": (["solve", "a.obj", *ONE_FIX, "--colour"], "--colour"),
    "no_value": (["solve", "a.obj", "--fix", "vertex:0"], "--fix vertex:0: no value; write it behind the selector"),
    "empty_value": (["solve", "a.obj", "--fix", "vertex:0="], "'' is not a number"),
    "nan_value": (["solve", "a.obj", "--fix", "vertex:0=nan"], "--fix vertex:0=nan: 'nan' is not finite"),
    "infinite_value": (["solve", "a.obj", "--fix", "vertex:0=1e999"], "'1e999' is not finite"),
    "value_with_a_tail": (["solve", "a.obj", "--fix", "vertex:0=1mm"], "'1mm' is not a number"),
    "no_kind": (["solve", "a.obj", "--fix", "0=1"], "--fix 0=1: write vertex:I"),
    "unknown_kind": (["solve", "a.obj", "--fix", "vertices:0=1"], "no selector 'vertices'; write vertex:I"),
    "negative_vertex": (["solve", "a.obj", "--fix", "vertex:-1=1"], "'-1' is not a number counted from 0"),
    "half_vertex": (["solve", "a.obj", "--fix", "vertex:1.5=1"], "'1.5' is not a number counted from 0"),
    "negative_loop": (["solve", "a.obj", "--fix", "loop:-1=1"], "'-1' is not a number counted from 0"),
    "short_point": (["solve", "a.obj", "--fix", "near:1,2=1"], "3 numbers are needed here, 2 given"),
    "long_box": (["solve", "a.obj", "--fix", "box:1,2,3,4,5,6,7=1"], "6 numbers are needed here, 7 given"),
    "nan_box": (["solve", "a.obj", "--fix", "box:1,2,3,4,5,nan=1"], "'nan' is not finite"),
    "two_outputs_for_one_stream": (["solve", "a.obj", *ONE_FIX, "--json", "-o", "-"], "not both"),
}  # fmt: skip



# Taken without --strict: tests/tool/mesh_files/test_faces.py.
STRICT = ("repeated_vertex", "unused_vertex", "not_convex", "star", "polygon_repeats", "polygon_flat")

# A part of the message of everything that was read, but is no mesh to compute on.
BAD_MESH = (
    "out of range", "vertex index 0", "not finite", "names vertex", "in no triangle",
    "zero area", "none of", "too large to compute", "a polygon", "has only 2",
)  # fmt: skip


def exit_code(message):
    if "has no fixed vertex" in message:
        return 5
    return 4 if any(part in message for part in BAD_MESH) else 3


def bad_runs():
    """(group, case) -> (file, its content, arguments, exit code, part of the message)."""
    runs = {}
    for case, (name, content, message) in BAD_MESHES.items():
        arguments = ["solve", name, *ONE_FIX, "-o", "field.csv", *(["--strict"] if case in STRICT else [])]
        runs["mesh", case] = (name, content, arguments, exit_code(message), message)
    for fix, message in BAD_FOR_THE_MESH.items():
        arguments = ["solve", "a.obj", "--fix", fix, "-o", "field.csv"]
        text = f"a.obj: --fix {fix.split('=')[0]}: {message}"
        runs["condition", fix] = ("a.obj", SQUARE, arguments, 2, text)
    for case, (arguments, message) in BAD_USAGE.items():
        runs["usage", case] = ("a.obj", SQUARE, arguments, 2, message)
    return runs


BAD_RUNS = bad_runs()


@pytest.fixture(scope="module")
def outcomes(tmp_path_factory):
    """Every bad run's folder and what came of it."""
    top = tmp_path_factory.mktemp("bad")
    tools = []
    for k, (name, content, *_) in enumerate(BAD_RUNS.values()):
        (top / str(k)).mkdir()
        tools.append(Tool(top / str(k)))
        tools[k].write(name, content)
    done = run_all([(tool, run[2]) for tool, run in zip(tools, BAD_RUNS.values())])
    return dict(zip(BAD_RUNS, zip(tools, done)))


@pytest.mark.parametrize("run", BAD_RUNS, ids=" ".join)
def test_is_refused_by_name_of_what_is_wrong(outcomes, run):
    name, _, _, code, message = BAD_RUNS[run]
    tool, done = outcomes[run]
    assert message in refusal(done, code)
    assert tool.files() == [name], "a failed run left files behind"


def test_quiet_still_shows_errors(qelm):
    assert "no such file" in qelm.fails(3, "solve", "none.obj", *ONE_FIX, "-q")
