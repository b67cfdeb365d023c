"""Level curves as other programs read them: ezdxf, VTK."""

import json
import math

import pytest

pytest.importorskip("vtkmodules")
ezdxf = pytest.importorskip("ezdxf")
import numpy  # noqa: E402
import outside  # noqa: E402
import shapes  # noqa: E402

RING = shapes.annulus(1 / 3, 2 / 3, 24)
FIX = ["--fix", "loop:near:1,0,0=0", "--fix", "loop:near:0.3,0,0=1"]


@pytest.fixture
def curves(qelm):
    """Open and closed ones: the JSON document, after all formats are written."""
    grid = shapes.moved(shapes.grid(4, 4), (3, 0, 0))
    qelm.write("m.obj", shapes.obj(shapes.joined(RING, grid)))
    far = ["--fix", "near:3,0,0=-0.5", "--fix", "near:7,4,0=1"]
    formats = [word for ending in ("json", "dxf", "vtp", "glb") for word in ("-o", f"c.{ending}")]
    qelm.ok("curves", "m.obj", *FIX, *far, "--at", "-0.25,0.25,0.5,1e-5", *formats)
    document = json.loads((qelm.folder / "c.json").read_text())
    assert {curve["closed"] for curve in document["curves"]} == {True, False}
    return document


def test_ezdxf_reads_the_polylines_with_their_bits(qelm, curves):
    drawing = ezdxf.readfile(qelm.folder / "c.dxf")
    assert drawing.dxfversion == "AC1009" and not drawing.audit().errors
    polylines = drawing.modelspace().query("POLYLINE")
    assert len(polylines) == len(curves["curves"])
    for polyline, curve in zip(polylines, curves["curves"]):
        assert polyline.is_3d_polyline and polyline.is_closed == curve["closed"]
        assert [list(v.dxf.location) for v in polyline.vertices] == curve["points"]


def test_each_level_is_a_layer_with_its_value_as_text(qelm, curves):
    drawing = ezdxf.readfile(qelm.folder / "c.dxf")
    layers = {-0.25: "LEVEL_-0P25", 1e-5: "LEVEL_1E-05", 0.25: "LEVEL_0P25", 0.5: "LEVEL_0P5"}
    assert {layer.dxf.name for layer in drawing.layers} >= set(layers.values())
    texts = list(drawing.modelspace().query("TEXT"))
    assert len(texts) == len(curves["curves"])
    for entity, text, curve in zip(drawing.modelspace().query("POLYLINE"), texts, curves["curves"]):
        assert entity.dxf.layer == text.dxf.layer == layers[curve["value"]]
        assert float(text.dxf.text) == curve["value"]
        assert list(text.dxf.insert) in curve["points"]
    colours = [drawing.layers.get(layers[level]).dxf.color for level in sorted(layers)]
    assert colours[0] == 170 and colours[-1] == 50 and colours == sorted(colours, reverse=True)


def test_vtk_reads_the_lines_and_their_levels(qelm, curves):
    points, lines, arrays = outside.read_vtk(qelm.folder / "c.vtp")
    assert len(lines) == len(curves["curves"])
    for line, level, curve in zip(lines, arrays["level"], curves["curves"]):
        expected = curve["points"] + (curve["points"][:1] if curve["closed"] else [])
        assert points[list(line)].tolist() == expected and level == curve["value"]


def test_vtk_reads_the_lines_of_gltf(qelm, curves):
    from vtkmodules.util.numpy_support import vtk_to_numpy
    from vtkmodules.vtkIOGeometry import vtkGLTFReader

    reader = vtkGLTFReader()
    reader.SetFileName(str(qelm.folder / "c.glb"))
    reader.Update()
    length = 0
    leaves = reader.GetOutput().NewIterator()
    while not leaves.IsDoneWithTraversal():
        data = leaves.GetCurrentDataObject()
        points = vtk_to_numpy(data.GetPoints().GetData())
        cells = vtk_to_numpy(data.GetLines().GetConnectivityArray())
        assert len(cells) % 2 == 0
        length += numpy.linalg.norm(points[cells[::2]] - points[cells[1::2]], axis=1).sum()
        leaves.GoToNextItem()
    expected = 0
    for curve in curves["curves"]:
        path = curve["points"] + (curve["points"][:1] if curve["closed"] else [])
        expected += sum(math.dist(a, b) for a, b in zip(path, path[1:]))
    assert length == pytest.approx(expected, rel=1e-6)


def test_a_level_of_gltf_is_a_node_with_its_value(qelm, curves):
    content = (qelm.folder / "c.glb").read_bytes()
    document = json.loads(content[20 : 20 + int.from_bytes(content[12:16], "little")])
    assert [node["extras"]["level"] for node in document["nodes"]] == sorted(curves["levels"])
    assert document["nodes"][0]["name"] == "level -0.25"
    assert document["extensionsUsed"] == ["KHR_materials_unlit"] and "extensionsRequired" not in document
    assert all("KHR_materials_unlit" in material["extensions"] for material in document["materials"])


def test_no_curves_are_good_files_too(qelm):
    qelm.write("m.obj", shapes.obj(RING))
    qelm.ok("curves", "m.obj", *FIX, "--at", "7", "-o", "c.dxf", "-o", "c.glb", "-o", "c.gltf", "-o", "c.vtp")
    assert len(ezdxf.readfile(qelm.folder / "c.dxf").modelspace()) == 0
    assert json.loads((qelm.folder / "c.gltf").read_text()) == {"asset": {"version": "2.0", "generator": "qelm"}}
    content = (qelm.folder / "c.glb").read_bytes()
    assert int.from_bytes(content[8:12], "little") == len(content)
    assert b'NumberOfLines="0"' in (qelm.folder / "c.vtp").read_bytes()
