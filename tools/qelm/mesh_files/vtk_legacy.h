// VTK's legacy files (.vtk), text and binary.
#ifndef QELM_TOOLS_VTK_LEGACY_H
#define QELM_TOOLS_VTK_LEGACY_H

#include <string>
#include <string_view>

#include "mesh/mesh.h"

namespace qelm::tool {

/// Reads the points, faces and point data of POLYDATA and UNSTRUCTURED_GRID, versions 1 to 5.1.
/// Indices are not looked at. Throws FileError that names the line of a text, the section of a
/// binary file. Format: VTK User's Guide, "VTK File Formats".
PolygonSoup readVtkLegacy(std::string_view bytes, const std::string& name);

}  // namespace qelm::tool

#endif
