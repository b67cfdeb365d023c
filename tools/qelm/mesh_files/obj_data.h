// Reads OBJ files. In: a file's text. Out: a polygon soup: points, and faces that name them.
#ifndef QELM_TOOLS_OBJ_DATA_H
#define QELM_TOOLS_OBJ_DATA_H

#include <string>
#include <string_view>

#include "mesh/mesh.h"

namespace qelm::tool {

/// Vertices (v) and faces (f, fo) with any corners, relative ones as well; lines that are
/// continued; as attributes the faces' groups (g, and objects, o) and materials (usemtl).
/// Everything that carries no surface is left out. Throws InputError with the line of whatever is
/// wrong; `name` stands in its messages.
PolygonSoup readObj(std::string_view text, const std::string& name);

}  // namespace qelm::tool

#endif
