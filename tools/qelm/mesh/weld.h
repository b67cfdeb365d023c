// Welding: soups into meshes, by the library.
#ifndef QELM_TOOLS_WELD_H
#define QELM_TOOLS_WELD_H

#include "mesh/mesh.h"

namespace qelm::tool {

/// The default tolerance as a part of the bounding box's diagonal. Coordinates in single precision,
/// as in STL files, are off by 6e-8 of their size. This leaves room for some operations on them and
/// is far below any detail of a surface.
inline constexpr double kDefaultWeldPart = 1e-6;

/// The bounding box's diagonal. Throws InputError when it is not finite.
double diagonal(const Mesh& mesh);

struct Welded {
  Mesh mesh;
  int droppedTriangles = 0;  ///< collapsed, or a repetition of an earlier one
  int droppedVertices = 0;   ///< in no triangle after welding
};

/// Merges vertices closer together than `tolerance`, drops triangles that
/// collapse or repeat an earlier one, and then vertices that no triangle uses.
/// Throws InputError for coordinates that are not finite, or when nothing is left.
Welded weld(const Mesh& mesh, double tolerance);

/// The mesh as a soup: every triangle has three vertices of its own.
Mesh withOwnCorners(const Mesh& mesh);

}  // namespace qelm::tool

#endif
