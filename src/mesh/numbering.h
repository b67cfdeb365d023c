// Vertex renumbering, from input order to system order: prescribed vertices to the front, free
// vertices from the back.
//
//   input order     0  1  2  3  4        tags 0 1 0 0 2: vertices 1 and 4 are prescribed
//   system order    4  0  3  2  1        toSystem[input index]
//
//   system order    0  1  2  3  4
//   input order     1  4  3  2  0        toInput[system index], its inverse
//
// Cost: one pass over the tags, one over the coordinates, one over the triangles.
#ifndef QELM_MESH_NUMBERING_H
#define QELM_MESH_NUMBERING_H

#include <cstdint>
#include <span>
#include <vector>

namespace qelm {

/// Two inverse permutations of 0 .. n-1.
struct VertexNumbering {
  int taggedCount = 0;                 ///< t
  std::vector<std::int32_t> toSystem;  ///< input index -> system index
  std::vector<std::int32_t> toInput;   ///< system index -> input index
};

/// True for the tags that prescribe a vertex's value: 1, 2 and 3.
bool isPrescribed(std::int32_t tag);

/// Numbers the vertices of `tags`, one tag per vertex in input order.
VertexNumbering numberVertices(std::span<const std::int32_t> tags);

/// Coordinates (3n, packed xyz) moved from input order to system order.
std::vector<double> reorderCoordinates(std::span<const double> vertices,
                                       const VertexNumbering& numbering);

/// Triangle indices (3m) rewritten from input to system order. The order of triangles, and of
/// corners within each, stays. Every index must be in 0 .. n-1.
std::vector<std::int32_t> renumberTriangles(std::span<const std::int32_t> triangles,
                                            const VertexNumbering& numbering);

}  // namespace qelm

#endif  // QELM_MESH_NUMBERING_H
