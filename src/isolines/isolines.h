// Straight pieces of level curves, one triangle row and one level at a time.
#ifndef QELM_ISOLINES_ISOLINES_H
#define QELM_ISOLINES_ISOLINES_H

#include <array>
#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

#include "isolines/column_major_view.h"
#include "isolines/level_set.h"

namespace qelm {

/// What is cut: tables of three columns each, one field value for each vertex.
struct IsolineInput {
  ColumnMajorView<const double> vertices;         ///< x, y, z; a row for each vertex
  ColumnMajorView<const std::int32_t> triangles;  ///< corners; rows beyond the array are skipped
  std::span<const double> field;
};

/// A triangle row that a level crosses.
struct Crossing {
  std::int32_t triangle;
  std::int32_t level;  ///< the caller's number
};

/// Crossings by the corner between the two crossed edges: group 0 for corner 2,
/// 1 for corner 0, 2 for corner 1. In each, triangles ascend, and levels within.
using CrossingGroups = std::array<std::vector<Crossing>, 3>;

CrossingGroups findCrossings(const IsolineInput& input, LevelSet& levels);

/// Writes the ends of s segments, s being the number of crossings, to a table of
/// 2s rows: first ends in rows 0 .. s-1, second ends in rows s .. 2s-1, segments in
/// the order of the groups.
void writeSegmentEnds(const IsolineInput& input, const LevelSet& levels,
                      const CrossingGroups& groups, ColumnMajorView<double> points);

}  // namespace qelm

#endif  // QELM_ISOLINES_ISOLINES_H
