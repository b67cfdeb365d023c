"""What fuzzing and reading for it have found in the tool's readers, once each."""

import subprocess

import pytest

import built
import shapes

SQUARE = shapes.obj(shapes.SQUARE)
MARK = "\ufeff"


def test_a_field_with_no_number_between_its_ends_has_no_levels(qelm):
    # It went on with an empty list, and looked at that list's first.
    qelm.write("a.obj", SQUARE)
    fix = ["--fix", "vertex:0,1=0", "--fix", "vertex:2,3=5e-324"]
    message = qelm.fails(2, "curves", "a.obj", *fix, "--levels", "2", "-o", "c.csv", "-q")
    assert "a.obj: --levels 2: no number lies between 0 and 5e-324" in message


def test_multiples_of_a_step_end_where_whole_numbers_are_no_longer_doubles(qelm):
    # One added to 2^53 is 2^53: the same level was appended for ever.
    qelm.write("a.obj", SQUARE)
    low, high = 9600000000000001.0 // 2 * 2, 9600000000009800.0
    fix = ["--fix", f"vertex:0,1={low!r}", "--fix", f"vertex:2,3={high!r}"]
    command = [*built.LAUNCHER, built.program("qelm"), "curves", "a.obj", *fix, "--every", "1", "--json", "-o", "c.csv"]
    done = subprocess.run(command, cwd=qelm.folder, capture_output=True, timeout=60, encoding="utf-8")
    assert done.returncode == 0, done.stderr
    rows = (qelm.folder / "c.csv").read_text().splitlines()
    assert len(rows) > 4000


def far_apart(scale):
    points = [(0, 0, 0), (scale, 0, 0), (0, scale, 0), (4 * scale, 0, 0), (5 * scale, 0, 0), (4 * scale, scale, 0)]
    return shapes.obj((points, [(0, 1, 2), (3, 4, 5)]))


@pytest.mark.parametrize("scale", [1e-200, 1e200, 3e307])
def test_the_nearest_vertex_is_found_where_squares_of_distances_are_no_doubles(qelm, scale):
    # All distances were 0, or all infinite: vertex 0, in the other part, was taken.
    qelm.write("a.obj", far_apart(scale))
    done = qelm.run("check", "a.obj", "--fix", f"near:{5.01 * scale!r},0,0=1")
    assert "1 connected part has no fixed vertex: vertex 0 (" in done.stdout


def test_a_loop_through_what_is_no_number_does_not_upset_the_order_of_the_others(qelm):
    points = [(0, 0, 0), (1, 0, 0), (0, 1, 0)]
    points += [(5, 0, 0), (6, float("nan"), 0), (5, 1, 0)]
    points += [(9, 0, 0), (29, 0, 0), (9, 20, 0)]
    qelm.write("a.ply", shapes.ply_binary((points, [(0, 1, 2), (3, 4, 5), (6, 7, 8)])))
    message = qelm.fails(2, "check", "a.ply", "--fix", "loop:9=0")
    assert "loop:0 (nan long), loop:1 (68.2842712 long), loop:2 (3.41421356 long)" in message


def mesh_files():
    mesh = shapes.SQUARE
    return {"a.obj": shapes.obj(mesh), "a.off": shapes.off(mesh), "a.ply": shapes.ply_text(mesh), "a.stl": shapes.stl_text(mesh)}


@pytest.mark.parametrize("name", ["a.obj", "a.off", "a.ply", "a.stl"])
def test_a_byte_order_mark_in_front_of_a_mesh_does_not_matter(qelm, name):
    # In OBJ files it hid the first vertex, and all indices meant the vertex after.
    content = mesh_files()[name]
    qelm.write("plain" + name[1:], content)
    qelm.write(name, MARK + content)
    plain = qelm.json("info", "plain" + name[1:])
    marked = qelm.json("info", name)
    assert {**marked, "mesh": ""} == {**plain, "mesh": ""}


def test_a_byte_order_mark_in_front_of_a_load_does_not_hide_its_first_column(qelm):
    # Without its "vertex" the loads were taken in the order of the lines.
    qelm.write("a.obj", SQUARE)
    rows = "vertex,value\n3,4\n2,3\n1,2\n0,1\n"
    qelm.write("plain.csv", rows)
    qelm.write("marked.csv", MARK + rows)
    fields = []
    for load in ("plain.csv", "marked.csv"):
        qelm.ok("solve", "a.obj", "--fix", "vertex:0=0", "--load", load, "-o", "field.csv")
        fields.append(qelm.field())
    assert fields[0] == fields[1]


def test_messages_show_bytes_that_are_no_text_and_hidden_controls(qelm):
    # "\xc2\x9b" is the character that begins a terminal's control sequences.
    qelm.write("a.obj", b"v 0 \xc2\x9b31m\xff\xc3\xa9 0\n")
    message = qelm.fails(3, "info", "a.obj")
    assert "a.obj:1: '\\xc2\\x9b31m\\xff\u00e9' is not a coordinate" in message


def test_a_second_vertex_element_in_a_ply_file_is_refused(qelm):
    # Its vertices need not have had coordinates, and were put at 0, 0, 0.
    second = "element vertices 1\nproperty int number\nelement face"
    text = shapes.ply_text(shapes.SQUARE).replace("element face", second)
    qelm.write("a.ply", text.replace("3 0 1 2", "7\n3 0 1 2"))
    message = qelm.fails(3, "info", "a.ply")
    assert "a.ply:7: element 'vertices' comes after an element 'vertex'" in message


@pytest.mark.skipif(bool(built.CHECKER), reason="measures time, which sanitizers multiply")
def test_a_face_of_an_off_file_over_very_many_lines_does_not_take_for_ever(qelm):
    # Every line moved all the words before it.
    count = 300_000
    qelm.write("a.off", f"OFF\n3 1 0\n0 0 0\n1 0 0\n0 1 0\n{count}\n" + "0\n" * count)
    command = [*built.LAUNCHER, built.program("qelm"), "info", "a.off"]
    done = subprocess.run(command, cwd=qelm.folder, capture_output=True, timeout=20, encoding="utf-8")
    assert done.returncode == 4
    assert "a.off: none of 1 faces has three different corners" in done.stderr


def test_a_number_beyond_every_double_in_a_gltf_file_is_refused(qelm):
    qelm.write("a.gltf", '{"asset": {"version": "2.0"}, "extras": 1e999}')
    message = qelm.fails(3, "info", "a.gltf")
    assert "a.gltf: not a glTF file: a number in its JSON is beyond every double" in message


def test_a_backslash_at_the_end_of_an_obj_file_continues_nothing(qelm):
    # The backslash became part of the last word: a vertex went, and a face had a corner that is no number.
    qelm.write("a.obj", SQUARE.rstrip("\n") + "\\")
    assert "\ntriangles  2\n" in qelm.ok("info", "a.obj").stdout
    qelm.write("b.obj", SQUARE + "v\\")
    assert "b.obj:7: " in qelm.fails(3, "info", "b.obj")
