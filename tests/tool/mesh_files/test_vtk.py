"""VTK's files, legacy and XML, as VTK and meshio write them in all their ways."""

import struct

import pytest

pytest.importorskip("vtkmodules")
import meshio  # noqa: E402
import numpy  # noqa: E402
import outside  # noqa: E402
import shapes  # noqa: E402

# Coordinates with all their bits.
MESH = [(x / 3, y / 7, (x * y) / 11) for x, y, _ in shapes.grid(3, 2)[0]], shapes.grid(3, 2)[1]
VALUES = [0.1 * k * k for k in range(12)]
HELD = [1 if k in (0, 11) else 0 for k in range(12)]
ARRAYS = {"value": VALUES, "held": HELD, "two parts": [(k, -k) for k in range(12)]}
VERSIONS = [{"FileVersion": 42}, {"FileVersion": 51}]


def spoken(settings):
    return "-".join(f"{key}={value}" for key, value in settings.items()) or "default"


LEGACY = [{**version, "FileType": kind} for version in VERSIONS for kind in (1, 2)]
XML = [
    {"DataMode": mode, "ByteOrder": order, "HeaderType": header, **compressor, **encoding}
    for mode, order, header, compressor, encoding in [
        (0, 1, 32, {}, {}),  # text
        (1, 1, 32, {}, {}),  # base64 within tags, compressed
        (1, 0, 64, {}, {}),
        (1, 0, 32, {"Compressor": None}, {}),
        (1, 1, 64, {"Compressor": None}, {}),
        (2, 1, 64, {}, {"EncodeAppendedData": 0}),  # bytes behind the tags
        (2, 0, 32, {}, {"EncodeAppendedData": 1}),
        (2, 1, 32, {"Compressor": None}, {"EncodeAppendedData": 0}),
        (2, 0, 64, {"Compressor": None}, {"EncodeAppendedData": 1}),
    ]
]  # fmt: skip
CASES = [
    (make, ending, settings)
    for make, endings in ((outside.polydata, (".vtk", ".vtp")), (outside.grid, (".vtk", ".vtu")))
    for ending, all_settings in zip(endings, (LEGACY, XML))
    for settings in all_settings
]


@pytest.mark.parametrize("make, ending, settings", CASES, ids=lambda v: spoken(v) if isinstance(v, dict) else getattr(v, "__name__", v))
def test_points_faces_and_arrays_are_read_with_their_bits(qelm, make, ending, settings):
    name = "m" + ending
    outside.write_vtk(qelm.folder / name, make(MESH, ARRAYS), **settings)
    qelm.ok("heatmap", name, "--field", f"{name}:value", "-o", "out.ply", "-q")
    mesh = meshio.read(qelm.folder / "out.ply")
    assert mesh.cells_dict["triangle"].tolist() == [list(face) for face in MESH[1]]
    # VTK rounds what it writes as old text.
    least = 1e-5 if settings.get("FileType") == 1 else 0
    assert mesh.points == pytest.approx(numpy.array(MESH[0]), abs=least, rel=0)
    assert mesh.point_data["value"] == pytest.approx(numpy.array(VALUES), abs=least, rel=0)


@pytest.mark.parametrize("ending, settings", [(".vtk", {"binary": True}), (".vtk", {"binary": False}), (".vtu", {}), (".vtu", {"compression": None}), (".vtu", {"binary": False})], ids=str)
def test_what_meshio_writes_is_read(qelm, ending, settings):
    data = {"value": numpy.array(VALUES), "held": numpy.array(HELD)}
    mesh = meshio.Mesh(numpy.array(MESH[0]), [("triangle", numpy.array(MESH[1]))], point_data=data)
    mesh.write(qelm.folder / f"m{ending}", **settings)
    qelm.ok("solve", f"m{ending}", "--fix", "property:held=1", "-o", "field.csv", "-q")
    # It writes twelve digits into the text of a .vtu.
    least = 1e-11 if settings == {"binary": False} else 0
    assert numpy.array(qelm.points()) == pytest.approx(numpy.array(MESH[0]), abs=least, rel=0)
    assert qelm.field() == pytest.approx([1] * 12)


def test_a_component_of_an_array_has_a_name_of_its_own(qelm):
    outside.write_vtk(qelm.folder / "m.vtp", outside.polydata(MESH, ARRAYS))
    outside.write_vtk(qelm.folder / "m.vtk", outside.polydata(MESH, ARRAYS))
    for name in ("m.vtp", "m.vtk"):
        qelm.ok("solve", name, "--fix", "property:two parts.1=*", "-o", "field.csv", "-q")
        assert qelm.field() == [-k for k in range(12)]


def test_an_array_that_is_alone_is_the_field(qelm):
    outside.write_vtk(qelm.folder / "m.vtp", outside.polydata(MESH, {"heat": VALUES}))
    summary = qelm.json("curves", "m.vtp", "--field", "m.vtp", "--at", "5", "-o", "out.obj")
    assert summary["max"]["value"] == VALUES[11]
    outside.write_vtk(qelm.folder / "m.vtp", outside.polydata(MESH, {"a": VALUES, "b": HELD}))
    assert "'value', but a, b" in qelm.fails(3, "curves", "m.vtp", "--field", "m.vtp", "-o", "out.csv")


def test_polygons_strips_and_pieces_become_triangles(qelm):
    data = outside.polydata((MESH[0], [(0, 1, 5, 4)]))
    data.SetStrips(outside.vtk_cells([(1, 5, 2, 6, 3, 7)]))
    data.SetLines(outside.vtk_cells([(0, 11)]))
    for name in ("m.vtp", "m.vtk"):
        outside.write_vtk(qelm.folder / name, data)
        done = qelm.ok("weld", name, "-o", "out.ply")
        assert "not carried over: points and lines" in done.stderr
        mesh = meshio.read(qelm.folder / "out.ply")
        assert len(mesh.cells_dict["triangle"]) == 6
        # Every triangle of a strip looks to the same side.
        points = mesh.points[mesh.cells_dict["triangle"]]
        normals = numpy.cross(points[:, 1] - points[:, 0], points[:, 2] - points[:, 0])
        assert (normals[2:, 2] < 0).all()


def test_quadratic_cells_use_all_their_vertices(qelm):
    points = numpy.array([(0, 0, 0), (2, 0, 0), (0, 2, 0), (1, 0, 0), (1, 1, 0), (0, 1, 0)], float)
    meshio.Mesh(points, [("triangle6", numpy.array([range(6)]))]).write(qelm.folder / "m.vtu")
    summary = qelm.json("info", "m.vtu")
    assert (summary["triangles"], summary["vertices"], summary["area"]) == (4, 6, 2)
    points = numpy.array([(0, 0, 0), (2, 0, 0), (2, 2, 0), (0, 2, 0), (1, 0, 0), (2, 1, 0), (1, 2, 0), (0, 1, 0)], float)
    meshio.Mesh(points, [("quad8", numpy.array([range(8)]))]).write(qelm.folder / "m.vtk")
    summary = qelm.json("info", "m.vtk")
    assert (summary["triangles"], summary["vertices"], summary["area"]) == (6, 8, 4)


def test_volumes_are_no_surface(qelm):
    meshio.Mesh(numpy.array(MESH[0]), [("tetra", numpy.array([(0, 1, 4, 5)]))]).write(qelm.folder / "m.vtu")
    message = qelm.fails(3, "info", "m.vtu")
    assert "m.vtu: not a surface: its 1 cells are points, lines or volumes; extract the surface first" in message


TEXT = """<?xml version="1.0"?>
<VTKFile type="PolyData" byte_order="LittleEndian">
 <PolyData>
  <Piece NumberOfPoints="3" NumberOfPolys="1">
   <Points><DataArray type="Float64" NumberOfComponents="3">0 0 0 1 0 0 0 1 0</DataArray></Points>
   <Polys>
    <DataArray type="Int32" Name="connectivity">0 1 2</DataArray>
    <DataArray type="Int32" Name="offsets">3</DataArray>
   </Polys>
  </Piece>
 </PolyData>
</VTKFile>
"""
OLD = """# vtk DataFile Version 3.0
a triangle
ASCII
DATASET POLYDATA
POINTS 3 double
0 0 0 1 0 0
0 1 0
POLYGONS 1 4
3 0 1 2
"""


@pytest.mark.parametrize(
    "name, content, says",
    [
        ("m.vtp", TEXT.replace("1 0 0 0 1 0", "1 0 0 0 x 0"), "m.vtp:5: 'x' is not a number"),
        ("m.vtp", TEXT.replace("1 0 0 0 1 0", "1 0 0 0 1"), "m.vtp:4: 'Points' has 8 numbers, not 3 times 3"),
        ("m.vtp", TEXT.replace("0 1 2", "0 1 3"), "face 0: vertex index 3 is out of range"),
        ("m.vtp", TEXT.replace("0 1 2", "0 1 -1"), "face 0: vertex index -1 is out of range"),
        ("m.vtp", TEXT.replace(">3<", ">7<"), "cell 0: its corners end at 7"),
        ("m.vtp", TEXT.replace("</Polys>", "</Poly>"), "m.vtp:9: </Poly> ends no <Polys>"),
        ("m.vtp", TEXT.replace("</VTKFile>", ""), "m.vtp:13: the file ends within <VTKFile>"),
        ("m.vtp", TEXT.replace("<?xml", "<!DOCTYPE a><?xml"), "m.vtp:1: a document type is not taken"),
        ("m.vtp", TEXT.replace('"PolyData"', '"ImageData"'), "save its surface as PolyData"),
        ("m.vtp", TEXT.replace("byte_order", 'compressor="vtkLZ4DataCompressor" byte_order'), "only zlib is taken"),
        ("m.vtp", TEXT.replace('"Float64"', '"Float64" format="binary"'), "m.vtp:5: the array ''"),
        ("m.vtp", TEXT.replace('"Float64"', '"Float64" format="appended" offset="4"'), "beyond the appended data"),
        ("m.vtp", "PK", "m.vtp:1: not a VTK file"),
        ("m.vtk", OLD.replace("0 1 0\n", "0 1 x\n"), "m.vtk:7: 'x' is not a number"),
        ("m.vtk", OLD.replace("POINTS 3", "POINTS 3000000"), "the file is too short for them"),
        ("m.vtk", OLD.replace("3 0 1 2", "9 0 1 2"), "cell 0 does not fit into 4 numbers"),
        ("m.vtk", OLD.replace("3 0 1 2", "3 0 1 2.5"), "m.vtk:9: '2.5' is not a whole number"),
        ("m.vtk", OLD.replace("POLYDATA", "STRUCTURED_POINTS"), "save its surface as POLYDATA"),
        ("m.vtk", OLD.replace("double", "variant"), "numbers of type 'variant' cannot be read"),
        ("m.vtk", OLD + "POINT_DATA 4\n", "data of 4 points, but there are 3"),
        ("m.vtk", OLD + "WHATEVER 4\n", "'WHATEVER' is not known here"),
        ("m.vtk", "solid", "m.vtk: not a VTK file"),
    ],
)  # fmt: skip
def test_what_is_wrong_is_said_with_its_line(qelm, name, content, says):
    qelm.write(name, content)
    done = qelm.run("info", name)
    assert done.returncode in (3, 4) and says in done.stderr, done.stderr


def test_the_text_forms_here_are_good(qelm):
    qelm.write("m.vtp", TEXT)
    qelm.write("m.vtk", OLD)
    assert qelm.json("info", "m.vtp")["area"] == qelm.json("info", "m.vtk")["area"] == 0.5


def test_triangles_of_a_second_piece_count_from_its_first_point(qelm):
    piece = TEXT[TEXT.index("  <Piece") : TEXT.index(" </PolyData>")]
    qelm.write("m.vtp", TEXT.replace(piece, piece + piece.replace("0 1 2", "2 1 0")))
    assert qelm.json("info", "m.vtp")["triangles"] == 2
    qelm.write("m.vtp", TEXT.replace(piece, piece + piece.replace("0 1 2", "0 1 3")))
    assert "face 1: vertex index 6 is out of range: the file has 6 vertices" in qelm.fails(4, "info", "m.vtp")


def test_a_piece_cannot_use_the_points_of_a_later_one(qelm):
    piece = TEXT[TEXT.index("  <Piece") : TEXT.index(" </PolyData>")]
    for corners, bad in (("0 1 3", 3), ("0 5 4", 5), ("-1 1 2", -1)):
        qelm.write("m.vtp", TEXT.replace(piece, piece.replace("0 1 2", corners) + piece))
        message = qelm.fails(3, "info", "m.vtp")
        assert f"m.vtp: a cell has corner {bad}, but its piece has the points 0 .. 2" in message


def test_an_index_that_is_no_int_is_out_of_range(qelm):
    for index, said in (("9999999999", "2147483647"), ("-9999999999", "-2147483647"), ("2147483648", "2147483647")):
        qelm.write("m.vtp", TEXT.replace("Int32", "Int64").replace("0 1 2", f"0 1 {index}"))
        assert f"face 0: vertex index {said} is out of range" in qelm.fails(4, "info", "m.vtp")


def test_a_damaged_block_is_found(qelm):
    outside.write_vtk(qelm.folder / "m.vtp", outside.polydata(MESH), DataMode=2, EncodeAppendedData=0)
    content = bytearray((qelm.folder / "m.vtp").read_bytes())
    place = content.index(b'encoding="raw"') + 120
    content[place] ^= 0x55
    qelm.write("m.vtp", bytes(content))
    done = qelm.run("info", "m.vtp")
    assert done.returncode in (3, 4), done.stderr


def test_arrays_cannot_share_their_bytes(qelm):
    """Else a small file could name one block a thousand times."""
    offsets = "".join('<DataArray type="Float64" Name="a%d" format="appended" offset="0"/>' % k for k in range(9))
    content = TEXT.replace("<Points>", f"<PointData>{offsets}</PointData><Points>")
    content = content.replace("</VTKFile>", '<AppendedData encoding="raw">_').encode()
    qelm.write("m.vtp", content + struct.pack("<I", 240) + bytes(240) + b"</AppendedData></VTKFile>")
    assert qelm.run("info", "m.vtp").returncode == 3
