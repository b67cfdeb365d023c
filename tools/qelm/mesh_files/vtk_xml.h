// Reads VTK's XML files (.vtp, .vtu). In: the file's bytes. Out: a polygon soup: points, faces that
// name them, and arrays of numbers of the points.
#ifndef QELM_TOOLS_VTK_XML_H
#define QELM_TOOLS_VTK_XML_H

#include <string>
#include <string_view>

#include "mesh/mesh.h"

namespace qelm::tool {

/// Reads the points, faces and point data of PolyData and UnstructuredGrid, of all pieces: as
/// text, base64 or bytes behind the tags, of either byte order, plain or compressed by zlib.
/// Whether indices are in range is for the caller to check. Throws FileError that names the line.
/// Format: VTK User's Guide, "VTK XML Formats".
PolygonSoup readVtkXml(std::string_view bytes, const std::string& name);

}  // namespace qelm::tool

#endif
