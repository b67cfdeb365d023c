#include "mesh/cell_grid.h"

#include <bit>
#include <cmath>

namespace qelm {
namespace {

constexpr double kEdgePerTolerance = 0.57;
constexpr double kLargestCell = 0x1p40;

// Looking at the 125 cells around costs about as much as a few queries, so cells
// with fewer points than this are not worth it.
constexpr std::int32_t kCrowd = 16;

// Squares of lengths beyond these come near infinity, or near the denormal numbers
// with their few digits, and "within the tolerance" is no longer what it seems.
constexpr double kShortestTolerance = 1e-145;
constexpr double kLongestTolerance = 1e145;

bool canBeDivided(std::span<const double> points, std::span<const std::int32_t> ids,
                  double tolerance) {
  if (!(tolerance > kShortestTolerance && tolerance < kLongestTolerance)) return false;
  const double edge = kEdgePerTolerance * tolerance;
  for (const std::int32_t id : ids) {
    for (const double c : points.subspan(3 * static_cast<std::size_t>(id), 3)) {
      if (!(std::fabs(c / edge) < kLargestCell)) return false;
    }
  }
  return true;
}

Triple keyOf(const std::array<std::int64_t, 3>& cell) {
  return {std::bit_cast<std::uint64_t>(cell[0]), std::bit_cast<std::uint64_t>(cell[1]),
          std::bit_cast<std::uint64_t>(cell[2])};
}

}  // namespace

Triple CellGrid::KeyOfPoint::operator()(std::int32_t id) const { return keyOf(grid->cellAt(id)); }

CellGrid::Cell CellGrid::cellAt(std::int32_t id) const {
  const double* p = points_.data() + 3 * static_cast<std::size_t>(id);
  return {static_cast<std::int64_t>(std::floor(p[0] / edge_)),
          static_cast<std::int64_t>(std::floor(p[1] / edge_)),
          static_cast<std::int64_t>(std::floor(p[2] / edge_))};
}

CellGrid::CellGrid(std::span<const double> points, std::span<const std::int32_t> ids,
                   double tolerance, DisjointSets& sets)
    : points_(points),
      ids_(ids),
      edge_(kEdgePerTolerance * tolerance),
      used_(canBeDivided(points, ids, tolerance)),
      firstIn_(used_ ? ids.size() : 0, KeyOfPoint{this}) {
  if (!used_) return;
  std::vector<std::int32_t> cellOfFirst(points.size() / 3);
  cellOf_.reserve(ids.size());
  for (const std::int32_t id : ids) {
    const std::int32_t first = firstIn_.findOrInsert(id);
    sets.unite(first, id);
    if (first == id) {
      cellOfFirst[static_cast<std::size_t>(id)] = static_cast<std::int32_t>(members_.size());
      members_.push_back(0);
    }
    cellOf_.push_back(cellOfFirst[static_cast<std::size_t>(first)]);
    ++members_[cell(cellOf_.size() - 1)];
  }
  queries_.assign(members_.size(), 0);
  closed_.assign(members_.size(), false);
}

bool CellGrid::neighbourhoodIsOneSet(std::int32_t id, DisjointSets& sets) const {
  constexpr std::int64_t kReach = 2;
  const Cell centre = cellAt(id);
  const std::int32_t root = sets.find(id);
  for (std::int64_t x = -kReach; x <= kReach; ++x) {
    for (std::int64_t y = -kReach; y <= kReach; ++y) {
      for (std::int64_t z = -kReach; z <= kReach; ++z) {
        const std::int32_t first =
            firstIn_.find(keyOf({centre[0] + x, centre[1] + y, centre[2] + z}));
        if (first >= 0 && sets.find(first) != root) return false;
      }
    }
  }
  return true;
}

// Asked after 1, 2, 4, 8, ... queries, so that a cell which cannot be closed costs
// little more than its queries.
void CellGrid::noteQuery(std::size_t k, DisjointSets& sets) {
  if (!used_ || members_[cell(k)] < kCrowd) return;
  const std::int32_t done = ++queries_[cell(k)];
  if (!std::has_single_bit(static_cast<std::uint32_t>(done))) return;
  closed_[cell(k)] = neighbourhoodIsOneSet(ids_[k], sets);
}

}  // namespace qelm
