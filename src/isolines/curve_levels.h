// The levels of a cut in ascending order, and each vertex's place among them.
#ifndef QELM_ISOLINES_CURVE_LEVELS_H
#define QELM_ISOLINES_CURVE_LEVELS_H

#include <cstdint>
#include <limits>
#include <span>
#include <vector>

namespace qelm {

/// Rank of a vertex whose value is NaN: its triangles are holes.
inline constexpr std::uint32_t kHoleRank = std::numeric_limits<std::uint32_t>::max();

/// A caller's level that is NaN: no curve.
inline constexpr std::int32_t kNoLevel = -1;

struct CurveLevels {
  std::vector<double> distinct;         ///< ascending, no NaN, 0.0 for -0.0
  std::vector<std::int32_t> positions;  ///< of each caller's level in distinct, or kNoLevel
};

CurveLevels arrangeLevels(std::span<const double> levels);

/// For every vertex in system order, the number of distinct levels at or below
/// its value, or kHoleRank. Level l passes between two vertices exactly if one's
/// rank is at most l and the other's is above l: a value at the level is above.
///
/// vertexOrder maps system to input order; field is in input order.
std::vector<std::uint32_t> rankVertices(std::span<const double> distinctLevels,
                                        std::span<const double> field,
                                        std::span<const std::int32_t> vertexOrder);

}  // namespace qelm

#endif  // QELM_ISOLINES_CURVE_LEVELS_H
