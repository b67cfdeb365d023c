// A spatial hash of cells so small that the points of one cell are always welded, and an exact test
// between the points of two cells. They keep a weld near n log n however dense the points are.
//
//   tolerance         |-------|
//   cells of half     | . .:| .   |:.: |     points of one cell: one cluster without a test
//   that or less                             points of two cells: anyPairWithin()
//
// The members are grouped by cell with a counting sort: those of cell c are
// members[start[c]] ... members[start[c + 1] - 1].
#ifndef QELM_MESH_WELD_CELLS_H
#define QELM_MESH_WELD_CELLS_H

#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

#include "interface/index.h"
#include "mesh/disjoint_sets.h"

namespace qelm {

/// The squared distance that decides, and the lengths that go with it.
struct WeldScale {
  double radiusSquared;  ///< pairs whose squared distance is below it are welded
  double cell;           ///< edge of a cell, a power of two
  double reach;          ///< no welded pair is farther apart, in cell edges
};

/// Requires tolerance * tolerance > 0; it may be infinite.
WeldScale weldScale(double tolerance);

/// A coordinate in cell edges, for the search tree only; see the .cpp file.
double searchCoordinate(double coordinate, double cell);

/// Finite points grouped by cell; cells in the order of their lowest points.
struct WeldCells {
  std::vector<std::int32_t> first;    ///< lowest point of each cell
  std::vector<std::int32_t> start;    ///< one more than there are cells: ranges of members
  std::vector<std::int32_t> members;  ///< the first point, and those with other coordinates
  std::vector<double> spread;         ///< distance of the farthest member from first, in cell edges

  std::size_t size() const { return first.size(); }
  std::span<std::int32_t> membersOf(std::int32_t cell) {
    const auto c = asIndex(cell);
    return std::span(members).subspan(asIndex(start[c]), asIndex(start[c + 1] - start[c]));
  }
};

/// Unites those of `points`, ascending, that lie in one cell. A point with a coordinate that is NaN
/// or infinite gets no cell: its distance to any point, itself included, is NaN or infinite, and
/// neither is below any radius.
WeldCells uniteWithinCells(std::span<const double> vertices, std::span<const std::int32_t> points,
                           const WeldScale& scale, DisjointSets& sets);

/// True if some point of a and some point of b have a squared distance below radiusSquared.
/// Exact. Reorders both lists.
bool anyPairWithin(std::span<const double> vertices, double radiusSquared,
                   std::span<std::int32_t> a, std::span<std::int32_t> b);

}  // namespace qelm

#endif  // QELM_MESH_WELD_CELLS_H
