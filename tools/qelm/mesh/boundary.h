// Boundary loops: the curves along which a mesh ends.
//
// A boundary half-edge has no opposite. From its end the walk turns round that vertex, from
// triangle to triangle through opposite half-edges, until it meets the next boundary half-edge:
//
//     \   |   /        at v the fan of triangles lies between two boundary edges (=); the walk
//      \  |  /         comes along one and turns through the fan to the other
//    ===  v  ===
//
// So the orientation of triangles does not matter, and surfaces that touch in a vertex keep their
// loops apart. Takes the time of sorting the half-edges.
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

/// The boundary loops, longest first; of equally long ones the one with the lower smallest vertex
/// first. A curve that comes back to a vertex is cut there, so that holes that touch are two loops.
/// Where the turn round a vertex meets an edge of three or more triangles, the curve ends open.
std::vector<BoundaryLoop> boundaryLoops(const Mesh& mesh);

}  // namespace qelm::tool

#endif
