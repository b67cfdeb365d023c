// Vertices on the sides of triangles that do not name them.
#ifndef QELM_TOOLS_T_JOINTS_H
#define QELM_TOOLS_T_JOINTS_H

#include "mesh/mesh.h"

namespace qelm::tool {

/// Splits triangles whose boundary side passes another boundary vertex within `tolerance`: where
/// patches were triangulated each for itself, one has a corner in the middle of the other's side,
/// and a field does not get across. Of triangle (a, b, d) with the side ab and the vertices c, e on
/// it become (a, c, d), (c, e, d) and (e, b, d). Returns how many vertices were set into sides.
///
/// Takes time in proportion to the boundary's sides times those that lie beside each other along
/// the mesh's longest axis.
int closeTJoints(Mesh& mesh, double tolerance);

}  // namespace qelm::tool

#endif
