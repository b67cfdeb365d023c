"""Mesh files written, and read, by programs that are not ours: VTK, meshio, ezdxf, assimp."""

from types import SimpleNamespace

import numpy
from vtkmodules.util.numpy_support import numpy_to_vtk, vtk_to_numpy
from vtkmodules.vtkCommonCore import VTK_DOUBLE, vtkIdTypeArray, vtkPoints
from vtkmodules.vtkCommonDataModel import vtkCellArray, vtkPolyData, vtkUnstructuredGrid
from vtkmodules.vtkIOLegacy import vtkPolyDataWriter, vtkUnstructuredGridWriter
from vtkmodules.vtkIOXML import (
    vtkXMLPolyDataReader, vtkXMLPolyDataWriter, vtkXMLUnstructuredGridReader, vtkXMLUnstructuredGridWriter,
)  # fmt: skip

VTK_POLYGON, VTK_TRIANGLE, VTK_QUAD = 7, 5, 9


def vtk_points(points):
    result = vtkPoints()
    result.SetDataType(VTK_DOUBLE)
    result.SetData(numpy_to_vtk(numpy.array(points, float), deep=True))
    return result


def vtk_cells(faces):
    cells = vtkCellArray()
    for face in faces:
        cells.InsertNextCell(len(face))
        for v in face:
            cells.InsertCellPoint(v)
    return cells


def add_array(data, name, values):
    array = numpy_to_vtk(numpy.array(values), deep=True)
    array.SetName(name)
    data.GetPointData().AddArray(array)


def polydata(mesh, arrays=()):
    data = vtkPolyData()
    data.SetPoints(vtk_points(mesh[0]))
    data.SetPolys(vtk_cells(mesh[1]))
    for name, values in dict(arrays).items():
        add_array(data, name, values)
    return data


def grid(mesh, arrays=()):
    data = vtkUnstructuredGrid()
    data.SetPoints(vtk_points(mesh[0]))
    types = {3: VTK_TRIANGLE, 4: VTK_QUAD}
    data.SetCells([types.get(len(face), VTK_POLYGON) for face in mesh[1]], vtk_cells(mesh[1]))
    for name, values in dict(arrays).items():
        add_array(data, name, values)
    return data


def write_vtk(path, data, **settings):
    """By the name's ending; settings such as FileVersion=42 or Compressor=None."""
    name = str(path)
    is_grid = isinstance(data, vtkUnstructuredGrid)
    if name.endswith(".vtk"):
        writer = vtkUnstructuredGridWriter() if is_grid else vtkPolyDataWriter()
    else:
        writer = vtkXMLUnstructuredGridWriter() if is_grid else vtkXMLPolyDataWriter()
    writer.SetFileName(name)
    writer.SetInputData(data)
    for key, value in settings.items():
        getattr(writer, f"Set{key}")(value)
    assert writer.Write() == 1


def vtk_output(path):
    name = str(path)
    reader = vtkXMLPolyDataReader() if name.endswith(".vtp") else vtkXMLUnstructuredGridReader()
    reader.SetFileName(name)
    reader.Update()
    assert reader.GetOutput().GetNumberOfPoints() > 0, name
    return reader.GetOutput()


def arrays_of(part):
    return {part.GetArrayName(k): vtk_to_numpy(part.GetArray(k)) for k in range(part.GetNumberOfArrays())}


def read_vtk_data(path):
    """Of a .vtp or .vtu: .points and .cells, {name: values}; .active, the names of the points' scalars
    and vectors, then the cells', that VTK shows at first."""
    data = vtk_output(path)
    points, cells = data.GetPointData(), data.GetCellData()
    active = [array and array.GetName() for part in (points, cells) for array in (part.GetScalars(), part.GetVectors())]
    return SimpleNamespace(points=arrays_of(points), cells=arrays_of(cells), active=tuple(active))


def read_vtk(path):
    """(points, cells as tuples, {name: values}) of a .vtp or .vtu, cells of one kind alone."""
    name = str(path)
    data = vtk_output(path)
    if name.endswith(".vtp"):
        cells = data.GetPolys() if data.GetNumberOfPolys() else data.GetLines()
    else:
        cells = data.GetCells()
    ends = vtk_to_numpy(cells.GetOffsetsArray())
    corners = vtk_to_numpy(cells.GetConnectivityArray())
    faces = [tuple(map(int, corners[a:b])) for a, b in zip(ends, ends[1:])]
    arrays = {**arrays_of(data.GetPointData()), **arrays_of(data.GetCellData())}
    return vtk_to_numpy(data.GetPoints().GetData()), faces, arrays
