"""Files made to hurt: they are refused at once, within a little memory."""

import struct
import subprocess

import pytest

import built
import shapes

FIX = ["--fix", "vertex:0=0"]
MEGABYTE = 1 << 20
# The program, its libraries and its threads' stacks take some of it; the files are a few kilobytes.
MEMORY = 256 * MEGABYTE

pytestmark = pytest.mark.skipif(
    built.IS_WINDOWS or bool(built.CHECKER), reason="needs a limit on memory, which sanitizers exceed"
)

SQUARE = shapes.obj(shapes.SQUARE)
OFF = shapes.off(shapes.SQUARE)
PLY = shapes.ply_text(shapes.SQUARE)
BINARY = shapes.ply_binary(shapes.SQUARE)
LISTS = b"""ply
format binary_little_endian 1.0
element vertex 1
property float x
property float y
property float z
element face 1
property list uint int vertex_indices
end_header
"""


def long_list(kind, count):
    head = LISTS.replace(b"list uint", b"list " + kind)
    return head + struct.pack("<3f", 0, 0, 0) + count + b"\1\0\0\0" * 100


FILES = {
    "ply_vertices": ("a.ply", PLY.replace("vertex 4", "vertex 10000000")),
    "ply_faces": ("a.ply", PLY.replace("face 2", "face 10000000")),
    "ply_binary_vertices": ("a.ply", BINARY.replace(b"vertex 4", b"vertex 10000000")),
    "ply_most_vertices": ("a.ply", PLY.replace("vertex 4", "vertex 9223372036854775807")),
    "ply_empty_lists": ("a.ply", BINARY.replace(b"face 2", b"face 4000000000")),
    "ply_long_list": ("a.ply", long_list(b"uint", b"\xff\xff\xff\xff")),
    "ply_long_list_signed": ("a.ply", long_list(b"int", b"\xff\xff\xff\x7f")),
    "ply_negative_list": ("a.ply", long_list(b"int", b"\xff\xff\xff\xff")),
    "ply_text_long_list": ("a.ply", PLY.replace("3 0 1 2", "4000000000 0 1 2").replace("uchar", "uint")),
    "off_vertices": ("a.off", OFF.replace("4 2 0", "10000000 2 0")),
    "off_faces": ("a.off", OFF.replace("4 2 0", "4 10000000 0")),
    "off_most": ("a.off", OFF.replace("4 2 0", "9223372036854775807 9223372036854775807 0")),
    "off_corners": ("a.off", OFF.replace("3 0 1 2", "4000000000 0 1 2")),
    "stl_facets": ("a.stl", b"x".ljust(80) + struct.pack("<I", 10_000_000) + b"\0" * 900),
    "stl_most_facets": ("a.stl", b"x".ljust(80) + b"\xff\xff\xff\xff" + b"\0" * 900),
    "obj_index": ("a.obj", SQUARE + "f 1 2 999999999999\n"),
    "obj_negative_index": ("a.obj", SQUARE + "f -1 -2 -9223372036854775808\n"),
    "obj_continued": ("a.obj", SQUARE + "f \\\n" * 400),
    "nul_bytes_obj": ("a.obj", b"\0" * 1000),
    "nul_bytes_off": ("a.off", b"\0" * 1000),
    "nul_bytes_ply": ("a.ply", b"\0" * 1000),
    "nul_bytes_stl": ("a.stl", b"\0" * 1000),
    "nul_in_a_number": ("a.obj", b"v 0 0 0\nv 1 0\0 0\nv 0 1 0\nf 1 2 3\n"),
}


def limited(qelm, *arguments, seconds=20, memory=MEMORY):
    import resource

    def limit():
        resource.setrlimit(resource.RLIMIT_AS, (memory, memory))

    return subprocess.run(
        [built.program("qelm"), *arguments], cwd=qelm.folder, capture_output=True, timeout=seconds,
        encoding="utf-8", preexec_fn=limit,
    )  # fmt: skip


def test_the_limit_is_enough_for_an_honest_file(qelm):
    qelm.write("a.obj", shapes.obj(shapes.grid(30, 30)))
    assert limited(qelm, "solve", "a.obj", *FIX).returncode == 0


@pytest.mark.parametrize("case", FILES)
def test_is_refused_without_believing_it(qelm, case):
    name, content = FILES[case]
    qelm.write(name, content)
    done = limited(qelm, "solve", name, *FIX, "-o", "field.csv")
    assert done.returncode in (3, 4), done.stderr
    assert done.stderr.startswith(f"qelm: error: {name}:")
    assert "memory" not in done.stderr
    assert qelm.files() == [name]


def test_a_face_with_very_many_corners_does_not_take_for_ever(qelm):
    points = [(x, x * x, 0) for x in range(100_000)]
    qelm.write("a.obj", shapes.obj((points, [tuple(range(len(points)))])))
    done = limited(qelm, "info", "a.obj", seconds=10)
    assert done.returncode == 4
    assert "a.obj: face 0 (0, 1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, ...): a polygon with too many corners" in done.stderr


def test_running_out_of_memory_is_said(qelm):
    qelm.write("a.obj", shapes.obj(shapes.grid(400, 400)))
    done = limited(qelm, "solve", "a.obj", *FIX, "-o", "field.csv", memory=100 * MEGABYTE)
    assert done.returncode == 1
    assert "qelm: error: out of memory" in done.stderr
    assert qelm.files() == ["a.obj"]


@pytest.mark.parametrize("name, whole", [("a.ply", BINARY), ("a.off", OFF.encode()), ("a.stl", shapes.stl_binary(shapes.SQUARE)), ("b.ply", PLY.encode())], ids=["ply_binary", "off", "stl_binary", "ply_text"])
def test_a_file_cut_short_anywhere_is_refused(qelm, name, whole):
    # The last byte of a text is the end of its last line, or of a number.
    last = 2 if name.endswith("off") or name == "b.ply" else 1
    for size in range(0, len(whole) - last, 1 + len(whole) // 60):
        qelm.write(name, whole[:size])
        done = limited(qelm, "solve", name, *FIX)
        assert done.returncode in (3, 4), (size, done.stderr)
