"""3MF files, as assimp writes them and with all that slicers put in, and Gmsh's MSH files of meshio."""

import io
import struct
import subprocess
import zipfile

import meshio
import numpy
import pytest
import shapes

SHAPE = shapes.tetrahedron()
THIRDS = [tuple(c / 3 for c in p) for p in SHAPE[0]], SHAPE[1]


def mesh_of(qelm, name):
    done = qelm.ok("weld", name, "--tolerance", "0", "-o", "out.ply")
    mesh = meshio.read(qelm.folder / "out.ply")
    return mesh.points, mesh.cells_dict["triangle"].tolist(), done.stderr


# 3MF


def mesh_xml(mesh):
    vertices = "".join('<vertex x="%r" y="%r" z="%r"/>' % tuple(map(float, p)) for p in mesh[0])
    triangles = "".join('<triangle v1="%d" v2="%d" v3="%d"/>' % f for f in mesh[1])
    return f"<mesh><vertices>{vertices}</vertices><triangles>{triangles}</triangles></mesh>"


def model(resources, build):
    return f"""<?xml version="1.0" encoding="UTF-8"?>
<model unit="millimeter" xmlns="http://schemas.microsoft.com/3dmanufacturing/core/2015/02" xmlns:p="http://schemas.microsoft.com/3dmanufacturing/production/2015/06">
<!-- a comment with <tags> -->
<resources>{resources}</resources>
<build>{build}</build>
</model>"""


PLAIN = model(f'<object id="1" type="model">{mesh_xml(THIRDS)}</object>', '<item objectid="1"/>')


def archive(files, method=zipfile.ZIP_DEFLATED, **options):
    content = io.BytesIO()
    with zipfile.ZipFile(content, "w", method) as file:
        for name, text in files.items():
            with file.open(name, "w", **options) as part:
                part.write(text.encode())
    return content.getvalue()


def threemf(text, **options):
    return archive({"[Content_Types].xml": "<Types/>", "3D/3dmodel.model": text}, **options)


@pytest.mark.parametrize("options", [{}, {"method": zipfile.ZIP_STORED}, {"force_zip64": True}], ids=str)
def test_a_3mf_keeps_its_vertices_and_their_bits(qelm, options):
    qelm.write("m.3mf", threemf(PLAIN, **options))
    points, faces, _ = mesh_of(qelm, "m.3mf")
    assert points.tolist() == [list(p) for p in THIRDS[0]]
    assert faces == [list(f) for f in THIRDS[1]]


def test_what_assimp_writes_as_3mf_is_read(qelm):
    qelm.write("m.obj", shapes.obj(SHAPE))
    done = subprocess.run(["assimp", "export", "m.obj", "m.3mf"], cwd=qelm.folder, capture_output=True)
    assert done.returncode == 0, done.stdout
    assert qelm.json("info", "m.3mf")["triangles"] == 4
    assert qelm.json("info", "m.3mf")["area"] == pytest.approx(qelm.json("info", "m.obj")["area"], rel=1e-6)


def test_components_items_and_other_models_are_placed(qelm):
    other = model(f'<object id="7">{mesh_xml(SHAPE)}</object>', "")
    resources = (
        f'<object id="1">{mesh_xml(SHAPE)}</object>'
        '<object id="2"><components><component objectid="1" transform="2 0 0 0 2 0 0 0 2 10 0 0"/>'
        '<component p:path="/3D/Objects/part.model" objectid="7" transform="-1 0 0 0 1 0 0 0 1 0 0 0"/></components></object>'
    )
    build = '<item objectid="2" transform="0 1 0 -1 0 0 0 0 1 0 0 5"/>'
    files = {"3D/3dmodel.model": model(resources, build), "3D/Objects/part.model": other}
    qelm.write("m.3mf", archive(files))
    points, faces, _ = mesh_of(qelm, "m.3mf")
    x, y, z = numpy.array(SHAPE[0], float).T
    placed = [(-2 * y, 2 * x + 10, 2 * z + 5), (-y, -x, z + 5)]
    assert points == pytest.approx(numpy.concatenate([numpy.array(p).T for p in placed]))
    for part in (faces[:4], faces[4:]):  # the outside stays outside, in the mirror as well
        a, b, c = points[numpy.array(part).T]
        assert numpy.einsum("ij,ij->i", a, numpy.cross(b, c)).sum() > 0


@pytest.mark.parametrize(
    "content, says",
    [
        (PLAIN.encode(), "m.3mf: not a ZIP archive"),
        (threemf(PLAIN)[:300], "m.3mf: not a ZIP archive"),
        (archive({"a.txt": "a"}), "m.3mf: not a 3MF file: there is no model in it"),
        (threemf(PLAIN.replace('x="0.0"', 'x="a"', 1)), '3d/3dmodel.model:4: a vertex with x="a"'),
        (threemf(PLAIN.replace('v3="1"', 'v3="9"', 1)), 'a triangle with v3="9"; its object has 4 vertices'),
        (threemf(PLAIN.replace('objectid="1"', 'objectid="2"')), "there is no object '2'"),
        (threemf(PLAIN.replace("<item", '<item transform="1 2"')), "a transform of 2 numbers instead of 12"),
        (threemf(model('<object id="1"><components><component objectid="1"/></components></object>', '<item objectid="1"/>')), "object '1' is a part of itself"),
        (threemf(model(f'<object id="0">{mesh_xml(SHAPE)}</object>' + "".join(f'<object id="{k}"><components>{f"<component objectid=%s/>" * 9 % ((chr(34) + str(k - 1) + chr(34),) * 9)}</components></object>' for k in range(1, 9)), '<item objectid="8"/>')), "is used too often"),
        (threemf(model("", "")), "its build has no triangles"),
        (bytes(threemf(PLAIN, method=zipfile.ZIP_STORED)).replace(b'z="1.0"', b'z="2.0"').replace(b"0.3333", b"0.3334"), "is damaged"),
    ],
    ids=lambda value: value if isinstance(value, str) else "file",
)  # fmt: skip
def test_what_is_wrong_in_a_3mf_is_said(qelm, content, says):
    qelm.write("m.3mf", content)
    assert says in qelm.fails(3, "info", "m.3mf")


# MSH

MSH = [("gmsh22", True), ("gmsh22", False), ("gmsh", True), ("gmsh", False), ("gmsh40", True), ("gmsh40", False)]


@pytest.mark.parametrize("kind, binary", MSH)
def test_what_meshio_writes_for_gmsh_is_read(qelm, kind, binary):
    points = numpy.array([(x / 3, y / 7, 0) for x, y, _ in shapes.grid(3, 2)[0]])
    cells = [("triangle", numpy.array([(0, 1, 5), (0, 5, 4), (2, 3, 7)])), ("line", numpy.array([(0, 1)])),
             ("quad", numpy.array([(1, 2, 6, 5), (4, 5, 9, 8)])), ("tetra", numpy.array([(2, 3, 7, 11)])),
             ("triangle6", numpy.array([(5, 7, 11, 6, 10, 9)]))]  # fmt: skip
    # The geometry's entity that has each node.
    mesh = meshio.Mesh(points, cells, point_data={"gmsh:dim_tags": numpy.array([(2, 1)] * len(points))},
                       cell_data={f"gmsh:{tag}": [numpy.full(len(c[1]), k + 1) for k, c in enumerate(cells)] for tag in ("geometrical", "physical")})
    if kind == "gmsh40":
        mesh.point_data.clear()
        meshio.gmsh._gmsh40.write(str(qelm.folder / "m.msh"), mesh, binary=binary)
    else:
        mesh.write(qelm.folder / "m.msh", file_format=kind, binary=binary)
    found, faces, notes = mesh_of(qelm, "m.msh")
    assert (found == points).all() if binary or kind != "gmsh22" else found == pytest.approx(points, abs=1e-12)
    assert len(faces) == 3 + 4 + 4 and faces[:2] == [[0, 1, 5], [0, 5, 4]]
    assert "points and lines, volumes" in notes


TEXT = """$MeshFormat
2.2 0 8
$EndMeshFormat
$PhysicalNames
1
2 1 "a $Nodes b"
$EndPhysicalNames
$Nodes
4
10 0 0 0
7 1 0 0
3 1 1 0
99 0 1 0
$EndNodes
$Elements
2
1 2 2 0 1 10 7 3
2 2 2 0 1 10 3 99
$EndElements
"""


def test_nodes_of_any_number_keep_their_order(qelm):
    qelm.write("m.msh", TEXT)
    points, faces, _ = mesh_of(qelm, "m.msh")
    assert points.tolist() == [list(map(float, p)) for p in shapes.SQUARE[0]]
    assert faces == [list(f) for f in shapes.SQUARE[1]]


@pytest.mark.parametrize(
    "content, says",
    [
        (TEXT.replace("2.2 0 8", "1.0 0 8"), "m.msh:2: MSH 1 cannot be read; save it as MSH 4.1 or 2.2"),
        (TEXT.replace("10 3 99", "10 3 5"), "m.msh:18: element 2 has a node 5, which is not there"),
        (TEXT.replace("99 0 1 0", "7 0 1 0"), "there are two nodes 7"),
        (TEXT.replace("7 1 0 0", "7 1 x 0"), "m.msh:11: 'x' is not a number"),
        (TEXT.replace("4\n10", "40000000\n10"), "m.msh:9: 40000000 are announced, but the file is too short"),
        (TEXT.replace("1 2 2 0 1 10", "1 77 2 0 1 10"), "elements of type 77 are not known"),
        (TEXT.replace("$EndNodes", "$EndElements"), "there is no $EndNodes here"),
        (TEXT.replace("$EndElements", ""), "there is no $EndElements here"),
        ("solid", "m.msh: not an MSH file"),
    ],
)
def test_what_is_wrong_in_an_msh_is_said_with_its_line(qelm, content, says):
    qelm.write("m.msh", content)
    assert says in qelm.fails(3, "info", "m.msh")


def test_a_triangle_of_a_binary_msh_whose_node_is_not_there_is_named(qelm):
    mesh = meshio.Mesh(shapes.SQUARE[0], [("triangle", numpy.array(shapes.SQUARE[1]))])
    mesh.write(qelm.folder / "m.msh", file_format="gmsh", binary=True)
    content = (qelm.folder / "m.msh").read_bytes()
    end = content.index(b"\n$EndElements")
    for node in (99, 0, 5, 2**64 - 1):
        qelm.write("m.msh", content[: end - 8] + struct.pack("<Q", node) + content[end:])
        said = min(node, 2**63 - 1)
        assert f"element 2 has a node {said}, which is not there" in qelm.fails(3, "info", "m.msh")


# Binary OFF


def off_binary(mesh, colours=()):
    parts = [b"OFF BINARY\n", struct.pack(">3i", len(mesh[0]), len(mesh[1]), 0)]
    parts += [struct.pack(">3f", *p) for p in mesh[0]]
    parts += [struct.pack(f">{len(f) + 1}i", len(f), *f) + struct.pack(f">i{len(colours)}f", len(colours), *colours)
              for f in mesh[1]]  # fmt: skip
    return b"".join(parts)


def test_binary_off_is_read_and_written(qelm):
    for colours in ((), (1, 0, 0, 1)):
        qelm.write("m.off", off_binary(shapes.SQUARE, colours))
        points, faces, notes = mesh_of(qelm, "m.off")
        assert points.tolist() == [list(map(float, p)) for p in shapes.SQUARE[0]]
        assert faces == [list(f) for f in shapes.SQUARE[1]] and ("colours" in notes) == bool(colours)
    qelm.ok("weld", "m.off", "-o", "again.off", "--format", "off-binary")
    assert (qelm.folder / "again.off").read_bytes() == off_binary(shapes.SQUARE)
    for size in range(0, len(off_binary(shapes.SQUARE)), 7):
        qelm.write("m.off", off_binary(shapes.SQUARE)[:size])
        assert qelm.run("info", "m.off").returncode in (3, 4)


def test_assimp_reads_the_text_of_off(qelm):
    qelm.write("m.obj", shapes.obj(SHAPE))
    qelm.ok("weld", "m.obj", "-o", "m.off")
    done = subprocess.run(["assimp", "info", "m.off"], cwd=qelm.folder, capture_output=True, text=True)
    assert "Faces:              4" in done.stdout
