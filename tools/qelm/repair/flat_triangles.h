// Triangles without height, removed without opening a hole.
#ifndef QELM_TOOLS_FLAT_TRIANGLES_H
#define QELM_TOOLS_FLAT_TRIANGLES_H

#include "mesh/mesh.h"

namespace qelm::tool {

struct FlatRemoval {
  int collapsedEdges = 0;  ///< of needles: both ends became one vertex
  int splitSides = 0;      ///< of caps: the neighbour was split at the corner on its side
  int left = 0;            ///< flat triangles that could not be removed
};

/// Removes the triangles that are lower than `tolerance`, or than rounding of their coordinates.
///
/// A needle has a short side, of at most twice the tolerance: its ends become one vertex, the one
/// with the lower number. Any other flat triangle is a cap: its corner c lies on its longest side
/// ab. Each other triangle (a, b, d) at that side is split at c into (a, c, d) and (c, b, d), and
/// the cap goes. No vertex moves by more than twice the tolerance, and where triangles met at ab
/// they meet at ac and cb now.
///
///   (0, 0) (4, 0) (2, 0) (2, -3): the cap (0, 1, 2) and its neighbour (1, 0, 3) become
///   (2, 0, 3) and (1, 2, 3).
///
/// The flat triangle with the longest side comes first, so that new ones have shorter sides: the
/// chain of neighbours that are flat themselves ends.
FlatRemoval removeFlatTriangles(Mesh& mesh, double tolerance);

}  // namespace qelm::tool

#endif
