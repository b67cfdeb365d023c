"""Meshes and heat maps as other programs read them: VTK, assimp."""

import base64
import json
import struct
import subprocess

import pytest

pytest.importorskip("vtkmodules")
import numpy  # noqa: E402
import outside  # noqa: E402
import shapes  # noqa: E402

MESH = [(x / 3, y / 7, (x * y) / 11) for x, y, _ in shapes.grid(3, 2)[0]], shapes.grid(3, 2)[1]
FIX = ["--fix", "vertex:0=0", "--fix", "vertex:11=1"]


@pytest.fixture
def mesh(qelm):
    return qelm.write("m.obj", shapes.obj(MESH))


def parts_of(content):
    """The document and the buffer of a .glb or .gltf file, after a look at its form."""
    if content[:4] != b"glTF":
        document = json.loads(content)
        return document, base64.b64decode(document["buffers"][0]["uri"].split("base64,")[1])
    version, size, json_size, kind = struct.unpack("<4I", content[4:20])
    assert (version, size, kind) == (2, len(content), 0x4E4F534A) and json_size % 4 == 0
    buffer_size, kind = struct.unpack("<2I", content[20 + json_size : 28 + json_size])
    assert kind == 0x004E4942 and 28 + json_size + buffer_size == size
    return json.loads(content[20 : 20 + json_size]), content[28 + json_size :]


def numbers_of(document, buffer, accessor):
    accessor = document["accessors"][accessor]
    view = document["bufferViews"][accessor["bufferView"]]
    kind = {5126: "<f4", 5125: "<u4", 5121: "u1"}[accessor["componentType"]]
    width = {"SCALAR": 1, "VEC2": 2, "VEC3": 3, "VEC4": 4}[accessor["type"]]
    numbers = numpy.frombuffer(buffer, kind, accessor["count"] * width, view["byteOffset"])
    return numbers.reshape(-1, width)


@pytest.mark.parametrize("ending", [".vtp", ".vtu"])
def test_vtk_reads_the_mesh_and_its_field_with_their_bits(qelm, mesh, ending):
    qelm.ok("solve", mesh, *FIX, "-o", "field.csv")
    qelm.ok("heatmap", mesh, *FIX, "-o", "heat" + ending)
    points, faces, arrays = outside.read_vtk(qelm.folder / ("heat" + ending))
    assert points.tolist() == [list(map(float, p)) for p in MESH[0]]
    assert faces == MESH[1]
    assert arrays["value"].tolist() == qelm.field()
    qelm.ok("weld", mesh, "--tolerance", "0", "-o", "w" + ending)
    points, faces, _ = outside.read_vtk(qelm.folder / ("w" + ending))
    assert points.tolist() == [list(map(float, p)) for p in MESH[0]] and faces == MESH[1]


def test_what_is_written_for_vtk_is_read_here(qelm, mesh):
    for ending in (".vtp", ".vtu"):
        qelm.ok("heatmap", mesh, *FIX, "-o", "heat" + ending)
        qelm.ok("solve", "heat" + ending, "--fix", "property:value=*", "-o", "again.csv")
        qelm.ok("solve", mesh, *FIX, "-o", "field.csv")
        assert (qelm.folder / "again.csv").read_text() == (qelm.folder / "field.csv").read_text()


@pytest.mark.parametrize("ending", [".glb", ".gltf"])
def test_a_heat_map_as_gltf_has_the_ramp_as_its_texture(qelm, mesh, ending):
    qelm.ok("solve", mesh, *FIX, "-o", "field.csv")
    qelm.ok("heatmap", mesh, *FIX, "-o", "heat" + ending)
    document, buffer = parts_of((qelm.folder / ("heat" + ending)).read_bytes())
    (primitive,) = document["meshes"][0]["primitives"]
    uv = numbers_of(document, buffer, primitive["attributes"]["TEXCOORD_0"])
    values = numpy.array(qelm.field())
    # The middle of the first of 2048 columns is the largest value's, that of the last the smallest's.
    assert uv[:, 0] == pytest.approx(((1 - values) * 2047 + 0.5) / 2048, abs=1e-6)
    assert numbers_of(document, buffer, primitive["attributes"]["_VALUE"])[:, 0] == pytest.approx(values, rel=1e-6)
    view = document["bufferViews"][document["images"][0]["bufferView"]]
    image = buffer[view["byteOffset"] :][: view["byteLength"]]
    assert image == png_of(qelm, mesh)
    assert document["samplers"][0]["wrapS"] == 33071
    shows_its_colours_as_they_are(document)
    positions = document["accessors"][primitive["attributes"]["POSITION"]]
    numbers = numbers_of(document, buffer, primitive["attributes"]["POSITION"])
    assert positions["min"] == numbers.min(axis=0).tolist() and positions["max"] == numbers.max(axis=0).tolist()


def test_a_heat_map_as_gltf_has_the_colours_of_its_vertices(qelm, mesh):
    qelm.ok("heatmap", mesh, *FIX, "-o", "heat.glb")
    qelm.ok("heatmap", mesh, *FIX, "-o", "heat.ply")
    document, buffer = parts_of((qelm.folder / "heat.glb").read_bytes())
    (primitive,) = document["meshes"][0]["primitives"]
    colours = numbers_of(document, buffer, primitive["attributes"]["_COLOR"])
    vertex = numpy.dtype([("point", "<f8", 3), ("colour", "u1", 3), ("value", "<f8")])
    body = (qelm.folder / "heat.ply").read_bytes().split(b"end_header\n", 1)[1]
    assert (colours[:, :3] == numpy.frombuffer(body, vertex, len(colours))["colour"]).all()
    assert (colours[:, 3] == 255).all()
    accessor = document["accessors"][primitive["attributes"]["_COLOR"]]
    assert accessor["normalized"] is True and "COLOR_0" not in primitive["attributes"]


def shows_its_colours_as_they_are(document):
    """Without light, in a program that knows how; others may read the file, too."""
    assert document["extensionsUsed"] == ["KHR_materials_unlit"] and "extensionsRequired" not in document
    assert all(material["extensions"] == {"KHR_materials_unlit": {}} for material in document["materials"])


def png_of(qelm, mesh):
    qelm.ok("heatmap", mesh, *FIX, "-o", "heat.obj")
    return (qelm.folder / "viridis.PNG").read_bytes()


def vtk_gltf(path):
    from vtkmodules.util.numpy_support import vtk_to_numpy
    from vtkmodules.vtkFiltersGeometry import vtkCompositeDataGeometryFilter
    from vtkmodules.vtkIOGeometry import vtkGLTFReader

    reader = vtkGLTFReader()
    reader.SetFileName(str(path))
    surface = vtkCompositeDataGeometryFilter()
    surface.SetInputConnection(reader.GetOutputPort())
    surface.Update()
    return vtk_to_numpy(surface.GetOutput().GetPoints().GetData()), surface.GetOutput()


@pytest.mark.parametrize("ending", [".glb", ".gltf"])
def test_vtk_reads_the_gltf_with_y_up(qelm, mesh, ending):
    qelm.ok("heatmap", mesh, *FIX, "-o", "heat" + ending)
    points, surface = vtk_gltf(qelm.folder / ("heat" + ending))
    assert surface.GetNumberOfPolys() == len(MESH[1])
    assert points == pytest.approx(numpy.array([(x, z, -y) for x, y, z in MESH[0]]), abs=1e-6)


def test_assimp_reads_the_gltf(qelm, mesh):
    qelm.ok("heatmap", mesh, *FIX, "-o", "heat.glb")
    done = subprocess.run(["assimp", "info", qelm.folder / "heat.glb"], capture_output=True, text=True)
    assert done.returncode == 0 and "Faces:              12" in done.stdout, done.stdout
    assert "Textures (embed.):  1" in done.stdout


def test_gltf_far_from_the_origin_keeps_what_single_precision_would_lose(qelm):
    far = shapes.moved(MESH, (5e6, 4e6, 100))
    qelm.write("far.obj", shapes.obj(far))
    qelm.ok("heatmap", "far.obj", *FIX, "-o", "heat.glb")
    document, buffer = parts_of((qelm.folder / "heat.glb").read_bytes())
    local = numbers_of(document, buffer, document["meshes"][0]["primitives"][0]["attributes"]["POSITION"])
    matrix = numpy.array(document["nodes"][0]["matrix"]).reshape(4, 4).T
    placed = local.astype(float) @ matrix[:3, :3].T + matrix[:3, 3]
    assert placed == pytest.approx(numpy.array([(x, z, -y) for x, y, z in far[0]]), abs=1e-6)
