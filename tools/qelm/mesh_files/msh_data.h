// Reads Gmsh's mesh files. In: the bytes of an MSH file. Out: a polygon soup: points, and faces
// that name them.
#ifndef QELM_TOOLS_MSH_DATA_H
#define QELM_TOOLS_MSH_DATA_H

#include <string>
#include <string_view>

#include "mesh/mesh.h"

namespace qelm::tool {

/// Reads the nodes, triangles and quadrilaterals of an MSH file of version 2, 4.0 or 4.1, text or
/// binary of either byte order. Nodes are numbered in the file's order. Quadratic elements use all
/// their nodes, those of higher order their corners. Throws FileError that names the line of a
/// text, the section of a binary file. Format: Gmsh reference manual, "MSH file format".
PolygonSoup readMsh(std::string_view bytes, const std::string& name);

}  // namespace qelm::tool

#endif
