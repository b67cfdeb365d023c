// Vertex renumbering: tagged vertices to the front, free ones from the back.
#ifndef QELM_MESH_NUMBERING_H
#define QELM_MESH_NUMBERING_H

#include <cstdint>
#include <span>
#include <vector>

namespace qelm {

/// Two inverse permutations of 0 .. n-1.
struct VertexNumbering {
  int taggedCount = 0;              ///< t
  std::vector<std::int32_t> place;  ///< input index -> system index
  std::vector<std::int32_t> order;  ///< system index -> input index
};

/// True for the tags that prescribe a vertex's value: 1, 2 and 3.
bool isPrescribed(std::int32_t tag);

/// Numbers the vertices of `tags`, one tag per vertex in input order.
VertexNumbering numberVertices(std::span<const std::int32_t> tags);

/// Coordinates (3n, packed xyz) moved from input order to system order.
std::vector<double> reorderCoordinates(std::span<const double> vertices,
                                       const VertexNumbering& numbering);

struct SystemTriangles {
  std::vector<std::int32_t> indices;
  /// For each vertex, how many sides of triangles have it as their higher end. A side is
  /// counted for each of its triangles.
  std::vector<std::uint32_t> higherEnds;
};

/// Triangle indices (3m) rewritten from input to system numbering. The order of
/// triangles, and of corners within each, stays. Every index must be in 0 .. n-1.
SystemTriangles renumberTriangles(std::span<const std::int32_t> triangles,
                                  const VertexNumbering& numbering);

}  // namespace qelm

#endif  // QELM_MESH_NUMBERING_H
