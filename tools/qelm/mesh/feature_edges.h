// Feature edges: those at which a surface bends sharply.
#ifndef QELM_TOOLS_FEATURE_EDGES_H
#define QELM_TOOLS_FEATURE_EDGES_H

#include <vector>

#include "mesh/mesh.h"

namespace qelm::tool {

/// The vertices of edges whose two triangles' normals differ by more than `degrees`, whatever the
/// triangles' orientation, and of edges with three triangles or more. Boundary edges do not count.
std::vector<int> featureVertices(const Mesh& mesh, double degrees);

}  // namespace qelm::tool

#endif
