// The distinct levels in ascending order, and each vertex's rank among them.
//
// The rank of a vertex is the number of levels at or below its value, so that comparing ranks,
// which are integers, tells which levels cross an edge:
//
//   levels            1.0   2.0   3.0           number   0     1     2
//   values            0.5   2.0   3.7           rank     0     2     3
//
//   the edge between the first two vertices, of ranks 0 and 2, is crossed by levels 0 and 1
//
// Cost: sorting the levels, and for each vertex a guess, or a binary search where the guess is
// wrong.
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
  std::vector<std::int32_t> positions;  ///< from the caller's levels to `distinct`, or kNoLevel
};

CurveLevels arrangeLevels(std::span<const double> levels);

/// The rank of every vertex in system order, kHoleRank for NaN. Level l crosses the edge between
/// two vertices exactly if one rank is at most l and the other is above l.
///
/// vertexOrder maps system to input order; field is in input order.
std::vector<std::uint32_t> rankVertices(std::span<const double> distinctLevels,
                                        std::span<const double> field,
                                        std::span<const std::int32_t> vertexOrder);

}  // namespace qelm

#endif  // QELM_ISOLINES_CURVE_LEVELS_H
