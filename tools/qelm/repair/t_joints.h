// T-joints: vertices that lie on a boundary edge whose triangle does not name them.
//
// Where patches were triangulated each for itself, one has a corner in the middle of the other's
// edge, and a field does not get across. Each such edge is split at the vertices on it:
//
//       d                d        The triangle (a, b, d) has c and e, corners of the patch below,
//      / \             /| |\      on its edge ab. It becomes (a, c, d), (c, e, d) and (e, b, d):
//     /   \           / | | \     where both patches ended, they have the edges ac, ce and eb in
//    a-c-e-b          a--c-e--b    common now.
//
// The vertices of the boundary are sorted along the mesh's longest axis; each boundary edge looks
// at those between its ends on that axis. So the time is in proportion to the boundary's edges,
// times the vertices that lie beside each other along that axis.
#ifndef QELM_TOOLS_T_JOINTS_H
#define QELM_TOOLS_T_JOINTS_H

#include "mesh/mesh.h"

namespace qelm::tool {

/// Splits triangles at the boundary vertices that lie within `tolerance` of their boundary edge,
/// and farther than that from its ends. Returns how many vertices were set into edges.
int closeTJoints(Mesh& mesh, double tolerance);

}  // namespace qelm::tool

#endif
