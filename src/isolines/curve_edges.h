// The part of a mesh that some level crosses: its triangles, and each of its edges once.
//
// In: triangles and the rank of each vertex (curve_levels.h). An edge is crossed if its ends differ
// in rank. The edge between the lowest and the highest corner, the long edge, is crossed by every
// level that crosses the triangle, and each of these levels crosses one of the two short edges:
//
//   ranks 0, 2, 5              high 5
//                               /|            levels 2, 3, 4   upper short edge
//                     middle 2 / |
//                              \ |            levels 0, 1      lower short edge
//                                \|
//                              low 0          levels 0 to 4    long edge
//
// Triangles find their edges in a hash table by the two ends. Vertices and edges are numbered as
// the triangles come by them: neighbours in the mesh are neighbours in memory, however the vertices
// are numbered.
//
// Cost: a look at each triangle's ranks, and two or three hash look-ups for each crossed triangle.
#ifndef QELM_ISOLINES_CURVE_EDGES_H
#define QELM_ISOLINES_CURVE_EDGES_H

#include <array>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <span>
#include <vector>

namespace qelm {

inline constexpr std::uint32_t kNoEdge = std::numeric_limits<std::uint32_t>::max();

using TriangleCorners = std::array<std::uint32_t, 3>;

/// The corners of triangle j.
inline TriangleCorners cornersOf(std::span<const std::int32_t> triangles, std::size_t j) {
  return {static_cast<std::uint32_t>(triangles[3 * j]),
          static_cast<std::uint32_t>(triangles[3 * j + 1]),
          static_cast<std::uint32_t>(triangles[3 * j + 2])};
}

/// An edge between vertices of different rank. The levels that cross it are those from the lower
/// rank to below the higher.
struct CrossedEdge {
  std::uint32_t low = 0;         ///< the end of lower rank, an index in CrossedPart::vertices
  std::uint32_t high = 0;        ///< the end of higher rank, likewise
  std::uint32_t levelCount = 0;  ///< levels that cross it
  std::uint32_t triangles = 0;   ///< triangles that meet here, holes not counted
  std::uint32_t nodes = 0;       ///< the first node of the next triangle to come, see CurveGraph
  std::uint32_t next = kNoEdge;  ///< in the hash table's chain
};

/// A triangle's crossed edges, see the drawing.
struct CrossedTriangle {
  std::uint32_t longEdge = kNoEdge;
  std::uint32_t shortEdge = kNoEdge;    ///< the lower one, or the upper one if it alone is crossed
  std::uint32_t secondShort = kNoEdge;  ///< the upper one if both are crossed
  bool ascending = false;  ///< the triangle's orientation is lowest, middle, highest corner
};

struct CrossedPart {
  std::vector<std::uint32_t> vertices;  ///< the ends of crossed edges, in system order
  std::vector<CrossedEdge> edges;
  std::vector<CrossedTriangle> triangles;  ///< in the mesh's order
};

/// Collects what the levels behind `ranks` cross, in expected linear time and in memory
/// proportional to the result. Throws std::bad_alloc if there are more edges than 32 bits can
/// number: their curves would not fit either.
CrossedPart findCrossed(std::span<const std::int32_t> triangles,
                        std::span<const std::uint32_t> ranks);

}  // namespace qelm

#endif  // QELM_ISOLINES_CURVE_EDGES_H
