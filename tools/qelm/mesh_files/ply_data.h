// Reads PLY files, text and binary. In: the file's bytes. Out: a polygon soup: points, and faces
// that name them.
#ifndef QELM_TOOLS_PLY_DATA_H
#define QELM_TOOLS_PLY_DATA_H

#include <string>
#include <string_view>

#include "mesh/mesh.h"

namespace qelm::tool {

/// Reads the points and faces of a PLY file; all other elements and properties are
/// passed over. Whether indices are in range is for the caller to check. Throws FileError that
/// names the line of a text, the element of a binary file.
PolygonSoup readPly(std::string_view bytes, const std::string& name);

}  // namespace qelm::tool

#endif
