// The part of a mesh that some level crosses: its triangles, and its edges once
// each.
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

/// Three vertex numbers.
using TriangleCorners = std::array<std::uint32_t, 3>;

/// Corners of the j-th of packed triangles.
inline TriangleCorners triangleCorners(std::span<const std::int32_t> triangles, std::size_t j) {
  return {static_cast<std::uint32_t>(triangles[3 * j]),
          static_cast<std::uint32_t>(triangles[3 * j + 1]),
          static_cast<std::uint32_t>(triangles[3 * j + 2])};
}

/// An edge between vertices of different rank. The levels that cross it are
/// consecutive, from the lower rank to below the higher.
struct CrossedEdge {
  std::uint32_t low = 0;   ///< the end of lower rank; ends are places in CrossedPart::vertices
  std::uint32_t high = 0;  ///< the end of higher rank
  std::uint32_t levelCount = 0;  ///< that cross it
  std::uint32_t triangles = 0;   ///< that meet here, holes not counted
  std::uint32_t nodes = 0;       ///< first of the next triangle's, see CurveGraph
  std::uint32_t next = kNoEdge;  ///< of the edges that are looked for together
};

/// A triangle's edges by the ranks of its corners. Its levels run from the long edge,
/// which joins the lowest and the highest corner, to the other two: the lower ones to
/// that of the lowest corner, the upper ones to that of the highest.
struct CrossedTriangle {
  std::uint32_t longEdge = kNoEdge;
  std::uint32_t shortEdge = kNoEdge;    ///< the lower one, or the upper one if it alone is crossed
  std::uint32_t secondShort = kNoEdge;  ///< the upper one if both are crossed
  bool ascending = false;               ///< lowest, middle, highest corner run around it
};

/// What is read again and again lies in the order in which the triangles come by it,
/// however the vertices are numbered: neighbours in the mesh are neighbours here.
struct CrossedPart {
  std::vector<std::uint32_t> vertices;  ///< ends of edges, in system order's numbers
  std::vector<CrossedEdge> edges;
  std::vector<CrossedTriangle> triangles;  ///< in the mesh's order
};

/// Collects what the levels behind `ranks` cross. Linear in triangles expected;
/// memory in proportion to what is crossed. More edges than 32 bits can number
/// leave as std::bad_alloc: their curves would not fit either.
CrossedPart findCrossed(std::span<const std::int32_t> triangles,
                        std::span<const std::uint32_t> ranks);

}  // namespace qelm

#endif  // QELM_ISOLINES_CURVE_EDGES_H
