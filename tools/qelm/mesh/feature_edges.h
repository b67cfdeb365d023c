// Edges at which a surface bends.
#ifndef QELM_TOOLS_FEATURE_EDGES_H
#define QELM_TOOLS_FEATURE_EDGES_H

#include <vector>

#include "mesh/mesh.h"

namespace qelm::tool {

/// The vertices of edges whose two triangles' normals differ by more than `degrees`, however the
/// triangles are oriented, and of edges with three triangles or more. Boundary edges are none.
std::vector<int> featureVertices(const Mesh& mesh, double degrees);

}  // namespace qelm::tool

#endif
