// Reads VTK's legacy files (.vtk), text and binary. In: the file's bytes. Out: a polygon soup:
// points, faces that name them, and arrays of numbers of the points.
#ifndef QELM_TOOLS_VTK_LEGACY_H
#define QELM_TOOLS_VTK_LEGACY_H

#include <string>
#include <string_view>

#include "mesh/mesh.h"

namespace qelm::tool {

/// Reads the points, faces and point data of POLYDATA and UNSTRUCTURED_GRID, versions 1 to 5.1.
/// Whether indices are in range is for the caller to check. Throws FileError that names the line of
/// a text, the section of a binary file. Format: VTK User's Guide, "VTK File Formats".
PolygonSoup readVtkLegacy(std::string_view bytes, const std::string& name);

}  // namespace qelm::tool

#endif
