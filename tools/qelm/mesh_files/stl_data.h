// Reads STL files, text and binary. In: the file's bytes. Out: a polygon soup: points, and
// triangles that name them.
#ifndef QELM_TOOLS_STL_DATA_H
#define QELM_TOOLS_STL_DATA_H

#include <string>
#include <string_view>

#include "mesh/mesh.h"

namespace qelm::tool {

/// True when `bytes` are a binary STL file. Many of those begin with "solid",
/// as text ones do; the length decides.
bool isBinaryStl(std::string_view bytes);

/// Text, in capitals or not, or binary. Corners that are exactly equal are one point, in the order
/// of their first appearance; names and normals are passed over. Throws InputError, of a text with
/// the line.
PolygonSoup readStl(std::string_view bytes, const std::string& name);

}  // namespace qelm::tool

#endif
