"""Mesh files read and written by meshio, VTK, assimp, ezdxf and numpy."""

import ctypes
import zipfile

import meshio
import numpy
import vtkmodules.vtkRenderingOpenGL2  # noqa: F401
from ezdxf.addons.r12writer import r12writer
from vtkmodules.util.numpy_support import numpy_to_vtk, numpy_to_vtkIdTypeArray, vtk_to_numpy
from vtkmodules.vtkCommonCore import vtkPoints
from vtkmodules.vtkCommonDataModel import vtkCellArray, vtkPolyData, vtkUnstructuredGrid
from vtkmodules.vtkIOExport import vtkGLTFExporter
from vtkmodules.vtkIOGeometry import vtkGLTFReader, vtkOBJReader, vtkOBJWriter, vtkSTLReader, vtkSTLWriter
from vtkmodules.vtkIOLegacy import vtkPolyDataReader, vtkPolyDataWriter, vtkUnstructuredGridReader
from vtkmodules.vtkIOPLY import vtkPLYReader, vtkPLYWriter
from vtkmodules.vtkIOXML import (
    vtkXMLPolyDataReader, vtkXMLPolyDataWriter, vtkXMLUnstructuredGridReader, vtkXMLUnstructuredGridWriter,
)  # fmt: skip
from vtkmodules.vtkRenderingCore import vtkActor, vtkPolyDataMapper, vtkRenderer, vtkRenderWindow

VTK_TRIANGLE = 5
BYTES_BEHIND_THE_TAGS = {"DataMode": 2, "EncodeAppendedData": 0}
PLAIN = {**BYTES_BEHIND_THE_TAGS, "Compressor": None}


class Surface:
    """A grid in waves with a value for each vertex, as every peer wants it."""

    def __init__(self, triangles):
        side = round((triangles / 2) ** 0.5)
        x, y = (a.ravel() for a in numpy.meshgrid(numpy.arange(side + 1.0), numpy.arange(side + 1.0)))
        self.points = numpy.stack([x / 3, y / 7, numpy.sin(x / 40) * numpy.cos(y / 30)], axis=1)
        a = (numpy.arange(side)[:, None] * (side + 1) + numpy.arange(side)).ravel()
        self.faces = numpy.concatenate([[a, a + 1, a + side + 2], [a, a + side + 2, a + side + 1]], axis=1).T.copy()
        self.values = numpy.sin(x / side * 5) + y / side
        # Of which size the vectors are makes no difference to who writes them.
        self.vectors = self.points[:, ::-1].copy(), self.points[self.faces[:, 0]].copy()
        self.poly, self.grid = vtk_surface(self.points, self.faces)

    def meshio(self, field=False, gradient=False):
        of_points, of_cells = {}, {}
        if field or gradient:
            of_points["value"] = self.values
        if gradient:
            of_points.update(gradient=self.vectors[0], slope=self.values)
            of_cells.update(gradient=[self.vectors[1]], slope=[self.vectors[1][:, 0].copy()])
        return meshio.Mesh(self.points, [("triangle", self.faces)], of_points, of_cells)

    def vtk(self, kind, gradient=False):
        """With the field."""
        data = kind()
        data.ShallowCopy(self.poly if kind is vtkPolyData else self.grid)
        add(data.GetPointData(), "value", self.values)
        if gradient:
            add(data.GetPointData(), "gradient", self.vectors[0])
            add(data.GetPointData(), "slope", self.values)
            add(data.GetCellData(), "gradient", self.vectors[1])
            add(data.GetCellData(), "slope", self.vectors[1][:, 0].copy())
        return data


def add(data, name, values):
    array = numpy_to_vtk(values, deep=True)
    array.SetName(name)
    data.AddArray(array)


def vtk_surface(points, faces):
    corners, cells, poly, grid = vtkPoints(), vtkCellArray(), vtkPolyData(), vtkUnstructuredGrid()
    corners.SetData(numpy_to_vtk(points, deep=True))
    counted = numpy.hstack([numpy.full((len(faces), 1), 3), faces]).astype(numpy.int64)
    cells.SetCells(len(faces), numpy_to_vtkIdTypeArray(counted.ravel(), deep=True))
    for data in (poly, grid):
        data.SetPoints(corners)
    poly.SetPolys(cells)
    grid.SetCells(VTK_TRIANGLE, cells)
    return poly, grid


def vtk_reads(reader):
    def read(path):
        one = reader()
        one.SetFileName(str(path))
        one.Update()
        return one  # its output is the mesh in memory

    return read


def vtk_writes(writer, data, **settings):
    def write(path):
        one = writer()
        one.SetFileName(str(path))
        one.SetInputData(data)
        for key, value in settings.items():
            getattr(one, f"Set{key}")(value)
        assert one.Write() == 1

    return write


def meshio_reads(path):
    return meshio.read(path)


def meshio_writes(mesh, **settings):
    return lambda path: mesh.write(path, **settings)


class Assimp:
    """Its C functions. A file's scene as it is, without any of the steps that may follow."""

    def __init__(self):
        self.library = ctypes.CDLL("libassimp.so.5")
        self.library.aiImportFile.restype = ctypes.c_void_p
        self.library.aiImportFile.argtypes = [ctypes.c_char_p, ctypes.c_uint]
        self.library.aiReleaseImport.argtypes = [ctypes.c_void_p]
        self.library.aiExportScene.argtypes = [ctypes.c_void_p, ctypes.c_char_p, ctypes.c_char_p, ctypes.c_uint]

    def reads(self, path):
        scene = self.library.aiImportFile(str(path).encode(), 0)
        assert scene, path
        return AssimpScene(self, scene)


class AssimpScene:
    def __init__(self, assimp, pointer):
        self.assimp, self.pointer = assimp, pointer

    def writes(self, kind):
        def write(path):
            assert self.assimp.library.aiExportScene(self.pointer, kind, str(path).encode(), 0) == 0

        return write

    def __del__(self):
        self.assimp.library.aiReleaseImport(self.pointer)


def vtk_exports_gltf(data):
    """As a scene with colours of the vertices, all in one file."""

    def write(path):
        mapper, actor, renderer, window, exporter = vtkPolyDataMapper(), vtkActor(), vtkRenderer(), vtkRenderWindow(), vtkGLTFExporter()
        mapper.SetInputData(data)
        actor.SetMapper(mapper)
        renderer.AddActor(actor)
        window.SetOffScreenRendering(True)
        window.AddRenderer(renderer)
        exporter.SetRenderWindow(window)
        exporter.SetFileName(str(path))
        exporter.InlineDataOn()
        exporter.Write()

    return write


def curves_of(path):
    """[(level, points)] of what the tool writes as .vtp, and VTK's own data."""
    data = vtk_reads(vtkXMLPolyDataReader)(path).GetOutput()
    points, levels = vtk_to_numpy(data.GetPoints().GetData()), vtk_to_numpy(data.GetCellData().GetArray("level"))
    ends = vtk_to_numpy(data.GetLines().GetOffsetsArray())
    corners = vtk_to_numpy(data.GetLines().GetConnectivityArray())
    return [(level, points[corners[a:b]]) for level, a, b in zip(levels, ends, ends[1:])], data


def ezdxf_writes(curves):
    def write(path):
        with r12writer(str(path)) as file:
            for level, points in curves:
                file.add_polyline(points, layer=f"LEVEL_{level}".replace(".", "P"))

    return write


def write_threemf(path, points, faces):
    """As few words as the format needs, compressed."""
    vertices = "".join(f'<vertex x="{x!r}" y="{y!r}" z="{z!r}"/>\n' for x, y, z in points.tolist())
    triangles = "".join(f'<triangle v1="{a}" v2="{b}" v3="{c}"/>\n' for a, b, c in faces.tolist())
    namespaces = "http://schemas.openxmlformats.org/package/2006"
    with zipfile.ZipFile(path, "w", zipfile.ZIP_DEFLATED) as file:
        file.writestr("[Content_Types].xml", f'<?xml version="1.0"?><Types xmlns="{namespaces}/content-types">'
                      '<Default Extension="rels" ContentType="application/vnd.openxmlformats-package.relationships+xml"/>'
                      '<Default Extension="model" ContentType="application/vnd.ms-package.3dmanufacturing-3dmodel+xml"/></Types>')  # fmt: skip
        file.writestr("_rels/.rels", f'<?xml version="1.0"?><Relationships xmlns="{namespaces}/relationships"><Relationship Id="r" '
                      'Target="/3D/3dmodel.model" Type="http://schemas.microsoft.com/3dmanufacturing/2013/01/3dmodel"/></Relationships>')  # fmt: skip
        file.writestr("3D/3dmodel.model", '<?xml version="1.0"?>\n<model unit="millimeter" '
                      'xmlns="http://schemas.microsoft.com/3dmanufacturing/core/2015/02"><resources><object id="1" type="model"><mesh>'
                      f"<vertices>\n{vertices}</vertices><triangles>\n{triangles}</triangles></mesh></object></resources>"
                      '<build><item objectid="1"/></build></model>\n')  # fmt: skip


def readings(surface, qelm):
    """{file: (what makes it, {peer: reads})}. `qelm(name)` is the tool's own writer."""
    return {**readings_of_surfaces(surface, qelm), **readings_of_vtk(surface), **readings_of_others(surface, qelm)}


def readings_of_surfaces(surface, qelm):
    """OBJ, OFF, PLY and STL."""
    mesh, assimp = surface.meshio(), Assimp().reads
    always = {"meshio": meshio_reads, "assimp": assimp}
    return {
        "text.obj": (qelm("mesh.obj"), {**always, "VTK": vtk_reads(vtkOBJReader)}),
        "text.off": (qelm("mesh.off"), always),
        "binary.off": (qelm("binary.off"), {}),
        "text.ply": (meshio_writes(mesh, binary=False), {**always, "VTK": vtk_reads(vtkPLYReader)}),
        "binary.ply": (qelm("mesh.ply"), {**always, "VTK": vtk_reads(vtkPLYReader)}),
        "text.stl": (vtk_writes(vtkSTLWriter, surface.poly, FileType=1), {**always, "VTK": vtk_reads(vtkSTLReader)}),
        "binary.stl": (qelm("mesh.stl"), {**always, "VTK": vtk_reads(vtkSTLReader)}),
    }


def readings_of_vtk(surface):
    """Legacy files, and XML in all its ways."""
    mesh, poly, grid = surface.meshio(), surface.poly, surface.grid
    of_poly, of_grid = {"VTK": vtk_reads(vtkPolyDataReader)}, {"meshio": meshio_reads, "VTK": vtk_reads(vtkUnstructuredGridReader)}
    legacy = {
        "text.vtk": (meshio_writes(mesh, binary=False), of_grid),
        "binary.vtk": (meshio_writes(mesh, binary=True), of_grid),
        "polydata-text.vtk": (vtk_writes(vtkPolyDataWriter, poly, FileType=1), of_poly),
        "polydata-binary.vtk": (vtk_writes(vtkPolyDataWriter, poly, FileType=2), of_poly),
    }
    ways = {
        "text": {"DataMode": 0},
        "base64": {"DataMode": 1, "Compressor": None},
        "base64-zlib": {"DataMode": 1},
        "appended": PLAIN,
        "appended-zlib": BYTES_BEHIND_THE_TAGS,
    }
    xml_of_poly, xml_of_grid = {"VTK": vtk_reads(vtkXMLPolyDataReader)}, {"meshio": meshio_reads, "VTK": vtk_reads(vtkXMLUnstructuredGridReader)}
    polys = {f"{way}.vtp": (vtk_writes(vtkXMLPolyDataWriter, poly, **settings), xml_of_poly) for way, settings in ways.items()}
    grids = {f"{way}.vtu": (vtk_writes(vtkXMLUnstructuredGridWriter, grid, **settings), xml_of_grid) for way, settings in ways.items()}
    return {**legacy, **polys, **grids}


def readings_of_others(surface, qelm):
    """glTF, 3MF and MSH."""
    mesh, assimp = surface.meshio(), Assimp().reads

    def msh(kind, binary):
        return meshio_writes(mesh, file_format=kind, binary=binary), {"meshio": meshio_reads}

    return {
        "binary.glb": (qelm("heat.glb"), {"VTK": vtk_reads(vtkGLTFReader), "assimp": assimp}),
        "base64.gltf": (qelm("heat.gltf"), {"VTK": vtk_reads(vtkGLTFReader), "assimp": assimp}),
        "deflated.3mf": (lambda path: write_threemf(path, surface.points, surface.faces), {"assimp": assimp}),
        "text-2.msh": msh("gmsh22", False),
        "binary-2.msh": msh("gmsh22", True),
        "text-4.msh": msh("gmsh", False),
        "binary-4.msh": msh("gmsh", True),
    }


def writings(surface, curves_file, mesh_file):
    """{result: {peer: writes}}. `curves_file` is the tool's curves.vtp, `mesh_file` its mesh.ply."""
    mesh, poly, grid = surface.meshio(), surface.poly, surface.grid
    field, gradient = surface.meshio(field=True), surface.meshio(gradient=True)
    curves, lines = curves_of(curves_file)
    scene = Assimp().reads(mesh_file)
    columns = numpy.column_stack([numpy.arange(len(surface.points)), surface.points, surface.values])
    return {
        "mesh.obj": {"meshio": meshio_writes(mesh), "VTK": vtk_writes(vtkOBJWriter, poly), "assimp": scene.writes(b"objnomtl")},
        "mesh.off": {"meshio": meshio_writes(mesh)},
        "binary.off": {},
        "mesh.ply": {"meshio": meshio_writes(mesh), "VTK": vtk_writes(vtkPLYWriter, poly, FileType=2), "assimp": scene.writes(b"plyb")},
        "mesh.stl": {"meshio": meshio_writes(mesh, binary=True), "VTK": vtk_writes(vtkSTLWriter, poly, FileType=2), "assimp": scene.writes(b"stlb")},
        "mesh.vtp": {"VTK": vtk_writes(vtkXMLPolyDataWriter, poly, **PLAIN)},
        "mesh.vtu": {"meshio": meshio_writes(mesh, compression=None), "VTK": vtk_writes(vtkXMLUnstructuredGridWriter, grid, **PLAIN)},
        "heat.ply": {"meshio": meshio_writes(field)},
        "heat.vtp": {"VTK": vtk_writes(vtkXMLPolyDataWriter, surface.vtk(vtkPolyData), **PLAIN)},
        "heat.vtu": {"meshio": meshio_writes(field, compression=None), "VTK": vtk_writes(vtkXMLUnstructuredGridWriter, surface.vtk(vtkUnstructuredGrid), **PLAIN)},
        "gradient.vtp": {"VTK": vtk_writes(vtkXMLPolyDataWriter, surface.vtk(vtkPolyData, True), **PLAIN)},
        "gradient.vtu": {"meshio": meshio_writes(gradient, compression=None), "VTK": vtk_writes(vtkXMLUnstructuredGridWriter, surface.vtk(vtkUnstructuredGrid, True), **PLAIN)},
        "heat.glb": {"assimp": scene.writes(b"glb2")},
        "heat.gltf": {"VTK": vtk_exports_gltf(surface.vtk(vtkPolyData)), "assimp": scene.writes(b"gltf2")},
        "curves.obj": {},
        "curves.dxf": {"ezdxf": ezdxf_writes(curves)},
        "curves.vtp": {"VTK": vtk_writes(vtkXMLPolyDataWriter, lines, **PLAIN)},
        "curves.glb": {},
        "curves.svg": {},
        "field.npy": {"numpy": lambda path: numpy.save(path, surface.values)},
        "field.csv": {"numpy": lambda path: numpy.savetxt(path, columns, "%.17g", ",")},
    }  # fmt: skip
