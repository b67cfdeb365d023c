// What a mesh is like: its box, area, edges, connected parts and boundary.
#ifndef QELM_TOOLS_MESH_FACTS_H
#define QELM_TOOLS_MESH_FACTS_H

#include <cstddef>
#include <vector>

#include "mesh/boundary.h"
#include "mesh/box.h"
#include "mesh/mesh.h"

namespace qelm::tool {

struct MeshPart {
  int vertex;  ///< its lowest
  int vertexCount = 0;
  int triangleCount = 0;
};

struct EdgeLengths {
  std::size_t count = 0;  ///< every edge once
  double shortest = 0;
  double longest = 0;
  double mean = 0;
};

struct MeshFacts {
  Box box;  ///< of all vertices
  double area = 0;
  EdgeLengths edges;
  std::vector<MeshPart> parts;  ///< by lowest vertex; triangles that share a vertex
  std::vector<int> unused;      ///< vertices in no triangle
  std::vector<BoundaryLoop> loops;
};

/// Requires finite coordinates.
MeshFacts factsOf(const Mesh& mesh);

}  // namespace qelm::tool

#endif
