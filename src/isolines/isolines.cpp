// A plain rule fixes the result bit for bit: for every triangle row and every level, compute the
// level's position on each edge, p = (L - A) / (B - A), and take each pair of edges that both have
// p in [0, 1]:
//
//   values 0, 1, 4; level 1     p = 1 on edge 01, 0 on edge 12, 0.75 on edge 20
//                               three pairs, three segments, one of them a point
//
// Only the levels that can pass are looked at, found by binary search (sorted_levels.h), and
// positions are computed a second time where points are written, not stored: the same operations on
// the same numbers give the same bits.
//
// Cost: proportional to the triangles, the levels that are looked at, and the segments.
#include "isolines/isolines.h"

#include <algorithm>
#include <cmath>
#include <limits>

#include "interface/index.h"

namespace qelm {
namespace {

/// Field values at a row's corners; edge k runs from corner k to corner k + 1.
using CornerValues = std::array<double, 3>;

constexpr std::size_t next(std::size_t corner) { return corner == 2 ? 0 : corner + 1; }

std::size_t vertexAt(const IsolineInput& input, std::size_t triangle, std::size_t corner) {
  return asIndex(input.triangles(triangle, corner));
}

CornerValues cornerValues(const IsolineInput& input, std::size_t triangle) {
  return {input.field[vertexAt(input, triangle, 0)], input.field[vertexAt(input, triangle, 1)],
          input.field[vertexAt(input, triangle, 2)]};
}

/// The level's position on edge k, 0 at its first corner. A difference of 0 gives an infinity, or
/// NaN if the level equals both ends.
double positionOnEdge(const CornerValues& values, std::size_t k, double level) {
  const double difference = values[next(k)] - values[k];
  return (level - values[k]) / difference;
}

/// Takes both ends, and NaN, for which the comparison is false: the test must stay "not greater".
bool isOnEdge(double p) { return !(std::fabs(p - 0.5) > 0.5); }

/// A superset of the levels for which isOnEdge() holds on an edge of the row.
///
/// Let the corners be finite and their range d_max = max - min not overflow. Then
/// each edge has a finite d, |d| <= d_max, and with d != 0:
///  - L beyond the far end B: the computed L - A is at least d in size (rounding is
///    monotonic), so p >= 1; p - 0.5 is exact there, and only p = 1 passes, which
///    needs L - A within a rounding, 2^-52 |d|, of d.
///  - L before the near end A: p <= 0, and 0.5 - p rounds to 0.5 up to p = -2^-54,
///    so |L - A| <= 2^-53 |d|. That covers a quotient that underflows to -0, too.
/// With d = 0 only L = A = B passes. Infinite levels have infinite positions. So
/// min - 2^-50 d_max <= L <= max + 2^-50 d_max, and rounding these bounds to
/// nearest keeps every double that lies between the exact ones.
///
/// A NaN or infinite corner puts a p of NaN or 0 on two edges whatever the level: all
/// levels pass. So do NaN levels, for every row. Finite corners whose range overflows
/// have such a p on one edge at least and no bound for the others; all levels are
/// candidates there.
std::span<const std::int32_t> candidateLevels(const CornerValues& v, SortedLevels& levels) {
  const double low = std::min({v[0], v[1], v[2]});
  const double high = std::max({v[0], v[1], v[2]});
  const double range = high - low;
  // min and max may pass a NaN over, the sum does not.
  if (!(range <= std::numeric_limits<double>::max()) || std::isnan(v[0] + v[1] + v[2])) {
    return levels.all();
  }
  const double slack = range * 0x1p-50;
  return levels.within(low - slack, high + slack);
}

void appendCrossings(const CornerValues& values, std::int32_t triangle, std::int32_t number,
                     double level, CrossingGroups& groups) {
  const bool on0 = isOnEdge(positionOnEdge(values, 0, level));
  const bool on1 = isOnEdge(positionOnEdge(values, 1, level));
  const bool on2 = isOnEdge(positionOnEdge(values, 2, level));
  if (on1 && on2) groups[0].push_back({triangle, number});
  if (on2 && on0) groups[1].push_back({triangle, number});
  if (on0 && on1) groups[2].push_back({triangle, number});
}

/// Writes p B + (1 - p) A, added in this order.
void writePoint(const IsolineInput& input, std::size_t triangle, std::size_t edge, double p,
                std::size_t row, ColumnMajorView<double> points) {
  const std::size_t a = vertexAt(input, triangle, edge);
  const std::size_t b = vertexAt(input, triangle, next(edge));
  for (std::size_t c = 0; c < 3; ++c) {
    points(row, c) = p * input.vertices(b, c) + (1 - p) * input.vertices(a, c);
  }
}

}  // namespace

CrossingGroups findCrossings(const IsolineInput& input, SortedLevels& levels) {
  CrossingGroups groups;
  if (levels.all().empty()) return groups;
  const std::size_t rows = input.triangles.wholeRows();
  for (std::size_t t = 0; t < rows; ++t) {
    const CornerValues values = cornerValues(input, t);
    for (const std::int32_t j : candidateLevels(values, levels)) {
      appendCrossings(values, asInt(t), j, levels[j], groups);
    }
  }
  return groups;
}

void writeSegmentEnds(const IsolineInput& input, const SortedLevels& levels,
                      const CrossingGroups& groups, ColumnMajorView<double> points) {
  const std::size_t segments = points.rows() / 2;
  std::size_t i = 0;
  for (std::size_t g = 0; g < groups.size(); ++g) {
    const std::size_t firstEdge = next(g);
    const std::size_t secondEdge = next(firstEdge);
    for (const Crossing& crossing : groups[g]) {
      const auto t = asIndex(crossing.triangle);
      const CornerValues values = cornerValues(input, t);
      const double level = levels[crossing.level];
      writePoint(input, t, firstEdge, positionOnEdge(values, firstEdge, level), i, points);
      writePoint(input, t, secondEdge, positionOnEdge(values, secondEdge, level), i + segments,
                 points);
      ++i;
    }
  }
}

}  // namespace qelm
