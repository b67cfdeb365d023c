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
  std::uint32_t firstVertex = 0;   ///< the smaller number
  std::uint32_t secondVertex = 0;  ///< the larger number
  std::uint32_t triangles = 0;     ///< that meet here, holes not counted
  std::uint32_t firstNode = 0;     ///< see CurveGraph
  std::uint32_t nodesTaken = 0;    ///< see CurveGraph
};

struct CrossedTriangle {
  std::uint32_t triangle = 0;
  /// Edge k joins corners k and k+1; kNoEdge if no level crosses it.
  std::array<std::uint32_t, 3> edges = {kNoEdge, kNoEdge, kNoEdge};
};

struct CrossedPart {
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
