// Boundary loops: the curves along which a mesh ends.
#ifndef QELM_TOOLS_BOUNDARY_H
#define QELM_TOOLS_BOUNDARY_H

#include <vector>

#include "mesh/mesh.h"

namespace qelm::tool {

struct BoundaryLoop {
  std::vector<int> vertices;  ///< in order along the loop, each once
  double length = 0;
  bool closed = true;  ///< false where it ends at an edge of three or more triangles
};

/// The boundary loops, longest first; of equally long ones the one with the
/// lower smallest vertex first.
///
/// A boundary edge has exactly one triangle. A loop goes on, at each of its
/// vertices, round the triangles there to the next boundary edge, however they
/// are oriented: surfaces that touch in a vertex keep their loops apart. A curve
/// that comes back to a vertex is cut there: so do holes that touch. Where the way
/// round meets an edge of three or more triangles, the curve ends open.
std::vector<BoundaryLoop> boundaryLoops(const Mesh& mesh);

}  // namespace qelm::tool

#endif
