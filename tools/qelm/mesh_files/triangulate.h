// Polygons into triangles.
#ifndef QELM_TOOLS_TRIANGULATE_H
#define QELM_TOOLS_TRIANGULATE_H

#include "mesh/mesh.h"

namespace qelm::tool {

struct Triangulation {
  Mesh mesh;
  int splitFaceCount = 0;  ///< faces that had more than three corners
};

/// Keeps triangles as they are and splits convex polygons, flat or nearly so,
/// along the diagonals that leave the largest smallest angle. The triangles of a
/// face follow each other in the face's place.
///
/// Throws InputError for a polygon that is not convex, has no area or names a
/// vertex twice: there is no one right way to split it.
Triangulation triangulate(const PolygonSoup& soup);

}  // namespace qelm::tool

#endif
