// Segments of level curves, not joined: one for each triangle row and level that crosses it.
#ifndef QELM_ISOLINES_ISOLINES_H
#define QELM_ISOLINES_ISOLINES_H

#include <array>
#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

#include "isolines/column_major_view.h"
#include "isolines/sorted_levels.h"

namespace qelm {

/// Two tables of three columns each, and a value for each vertex.
struct IsolineInput {
  ColumnMajorView<const double> vertices;         ///< x, y, z; a row for each vertex
  ColumnMajorView<const std::int32_t> triangles;  ///< corners; rows beyond the array are skipped
  std::span<const double> field;
};

/// A level that crosses a triangle row: one segment.
struct Crossing {
  std::int32_t triangle;
  std::int32_t level;  ///< index of the caller's level
};

/// Crossings grouped by the corner between the two crossed edges: group 0 has corner 2, group 1
/// corner 0, group 2 corner 1. In each group, triangles ascend, and levels within a triangle.
using CrossingGroups = std::array<std::vector<Crossing>, 3>;

CrossingGroups findCrossings(const IsolineInput& input, SortedLevels& levels);

/// Writes the ends of s segments, s being the number of crossings, to a table of
/// 2s rows: first ends in rows 0 .. s-1, second ends in rows s .. 2s-1, segments in
/// the order of the groups.
void writeSegmentEnds(const IsolineInput& input, const SortedLevels& levels,
                      const CrossingGroups& groups, ColumnMajorView<double> points);

}  // namespace qelm

#endif  // QELM_ISOLINES_ISOLINES_H
