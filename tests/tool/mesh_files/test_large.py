"""Files of several blocks: numbers are converted some at a time, and large files are not copied."""

import struct
import subprocess
import zlib

import pytest

pytest.importorskip("vtkmodules")
import built  # noqa: E402
import meshio  # noqa: E402
import numpy  # noqa: E402
import outside  # noqa: E402
import shapes  # noqa: E402

SIDE = 80
POINTS = numpy.array([(x / 3, y / 7, (x * y) / 11) for x, y, _ in shapes.grid(SIDE, SIDE)[0]])
FACES = numpy.array(shapes.grid(SIDE, SIDE)[1])
LATE = 5000  # a face several blocks behind the first


def vtp(points, faces, block=None, word="Q"):
    """Bytes behind the tags; compressed, if there is a size for the blocks."""
    ends = numpy.arange(3, faces.size + 1, 3)
    arrays = [numpy.ascontiguousarray(a) for a in (points, faces.astype(numpy.int64), ends)]
    offsets, behind = [], b""
    for array in arrays:
        offsets.append(len(behind))
        behind += compressed(array.tobytes(), block, word) if block else struct.pack("<" + word, array.nbytes) + array.tobytes()
    kind = {"Q": "UInt64", "I": "UInt32"}[word]
    compressor = ' compressor="vtkZLibDataCompressor"' if block else ""
    tags = f"""<VTKFile type="PolyData" byte_order="LittleEndian" header_type="{kind}"{compressor}><PolyData>
<Piece NumberOfPoints="{len(points)}" NumberOfPolys="{len(faces)}">
<Points><DataArray type="Float64" Name="p" NumberOfComponents="3" format="appended" offset="{offsets[0]}"/></Points>
<Polys><DataArray type="Int64" Name="connectivity" format="appended" offset="{offsets[1]}"/>
<DataArray type="Int64" Name="offsets" format="appended" offset="{offsets[2]}"/></Polys>
</Piece></PolyData><AppendedData encoding="raw">_"""
    return tags.encode() + behind + b"</AppendedData></VTKFile>"


def compressed(data, block, word):
    parts = [zlib.compress(data[k : k + block]) for k in range(0, len(data), block)]
    head = [len(parts), block, len(data) % block, *map(len, parts)]
    return struct.pack(f"<{len(head)}{word}", *head) + b"".join(parts)


def of_meshio(ending, **settings):
    def make(folder, points, faces):
        path = folder / f"made{ending}"
        meshio.Mesh(points, [("triangle", faces)]).write(path, **settings)
        return path.read_bytes()

    return make


def of_vtk(**settings):
    def make(folder, points, faces):
        path = folder / "made.vtk"
        outside.write_vtk(path, outside.polydata((points.tolist(), faces.tolist())), **settings)
        return path.read_bytes()

    return make


FILES = {
    "plain.vtp": lambda folder, *mesh: vtp(*mesh),
    # Of no whole number of numbers; and all in one.
    "blocks.vtp": lambda folder, *mesh: vtp(*mesh, block=1001, word="I"),
    "block.vtp": lambda folder, *mesh: vtp(*mesh, block=10_000_000),
    "new.vtk": of_vtk(FileVersion=51, FileType=2),
    "old.vtk": of_vtk(FileVersion=42, FileType=2),
    "two.msh": of_meshio(".msh", file_format="gmsh22", binary=True),
    "four.msh": of_meshio(".msh", file_format="gmsh", binary=True),
    "text.msh": of_meshio(".msh", file_format="gmsh", binary=False),
    "m.ply": of_meshio(".ply", binary=True),
    "m.obj": of_meshio(".obj"),
}


@pytest.mark.parametrize("name", FILES)
def test_a_large_file_keeps_every_bit(qelm, name):
    content = FILES[name](qelm.folder, POINTS, FACES)
    assert len(content) > 2**18 or "block" in name
    qelm.write(name, content)
    qelm.ok("weld", name, "--tolerance", "0", "-o", "out.ply", "-q")
    mesh = meshio.read(qelm.folder / "out.ply")
    assert (mesh.points == POINTS).all() and (mesh.cells_dict["triangle"] == FACES).all()


@pytest.mark.parametrize("name", ["plain.vtp", "blocks.vtp", "new.vtk", "old.vtk", "m.ply"])
@pytest.mark.parametrize("bad", [len(POINTS), -1])
def test_a_late_corner_out_of_range_is_named_with_its_face(qelm, name, bad):
    faces = FACES.copy()
    faces[LATE, 1] = bad
    qelm.write(name, FILES[name](qelm.folder, POINTS, faces))
    assert f"face {LATE}: vertex index {bad} is out of range" in qelm.fails(4, "info", name)


def test_a_late_element_of_an_msh_whose_node_is_not_there_is_named(qelm):
    faces = FACES.copy()
    faces[LATE, 1] = len(POINTS)
    qelm.write("m.msh", FILES["four.msh"](qelm.folder, POINTS, faces))
    assert f"element {LATE + 1} has a node {len(POINTS) + 1}, which is not there" in qelm.fails(3, "info", "m.msh")


@pytest.mark.parametrize("name", ["plain.vtp", "blocks.vtp", "new.vtk", "old.vtk", "four.msh"])
def test_a_late_corner_that_is_repeated_is_found(qelm, name):
    faces = FACES.copy()
    faces[LATE, 2] = faces[LATE, 0]
    qelm.write(name, FILES[name](qelm.folder, POINTS, faces))
    done = qelm.ok("weld", name, "--tolerance", "0", "-o", "out.ply")
    assert f"face {LATE} has fewer than three different corners" in done.stderr


@pytest.mark.parametrize("name", ["plain.vtp", "blocks.vtp", "new.vtk", "four.msh"])
def test_a_file_that_ends_within_a_late_block_is_refused(qelm, name):
    content = FILES[name](qelm.folder, POINTS, FACES)
    for part in (3, 2):
        qelm.write(name, content[: len(content) * (part - 1) // part])
        qelm.fails(3, "info", name)


def test_a_late_block_that_is_damaged_is_named(qelm):
    content = bytearray(FILES["blocks.vtp"](qelm.folder, POINTS, FACES))
    begin = content.index(b"_", content.index(b"AppendedData")) + 1
    blocks, size, last, *sizes = struct.unpack_from("<7I", content, begin)
    place = begin + 4 * (3 + blocks) + sum(sizes[:2]) + 20
    content[place : place + 8] = bytes(8)
    qelm.write("m.vtp", bytes(content))
    assert "the array 'p': block 2 is damaged" in qelm.fails(3, "info", "m.vtp")


def test_the_standard_input_gives_the_same_as_the_file(qelm):
    content = FILES["plain.vtp"](qelm.folder, POINTS, FACES)
    qelm.write("m.vtp", content)
    qelm.ok("weld", "m.vtp", "--tolerance", "0", "-o", "a.ply", "-q")
    command = [*built.LAUNCHER, built.program("qelm"), "weld", "-", "--read-as", "vtp", "--tolerance", "0", "-o", "b.ply", "-q"]
    subprocess.run(command, cwd=qelm.folder, input=content, check=True)
    assert (qelm.folder / "a.ply").read_bytes() == (qelm.folder / "b.ply").read_bytes()
