// Boundary loops: the curves along which a mesh ends.
#ifndef QELM_TOOLS_BOUNDARY_H
#define QELM_TOOLS_BOUNDARY_H

#include <vector>

#include "mesh.h"

namespace qelm::tool {

struct BoundaryLoop {
  std::vector<int> vertices;  ///< in order along the loop, each once per passage
  double length = 0;
};

/// The boundary loops, longest first; of equally long ones the one with the
/// lower smallest vertex first.
///
/// A boundary edge has exactly one triangle. A loop goes on, at each of its
/// vertices, round the triangles there to the next boundary edge, so that loops
/// that touch in a vertex stay apart, and however the triangles are oriented.
/// Where that way meets an edge of three or more triangles, the curve ends open.
std::vector<BoundaryLoop> boundaryLoops(const Mesh& mesh);

}  // namespace qelm::tool

#endif
