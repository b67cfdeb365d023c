// What keeps a weld near n log n however dense the cloud is: cells so small that
// the points of one always belong together, and an exact test between two cells.
#ifndef QELM_MESH_WELD_CELLS_H
#define QELM_MESH_WELD_CELLS_H

#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

#include "mesh/disjoint_sets.h"
#include "mesh/vec3.h"

namespace qelm {

inline Vec3 pointAt(std::span<const double> vertices, std::int32_t i) {
  const std::size_t base = 3 * static_cast<std::size_t>(i);
  return {vertices[base], vertices[base + 1], vertices[base + 2]};
}

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

/// Finite points grouped by cell; cells in the order of their lowest point.
struct WeldCells {
  std::vector<std::int32_t> first;    ///< lowest point of each cell
  std::vector<std::int32_t> start;    ///< one more than cells: range in members
  std::vector<std::int32_t> members;  ///< first, and what is not equal to it
  std::vector<double> spread;         ///< farthest member from first, in cell edges

  std::size_t size() const { return first.size(); }
  std::span<std::int32_t> membersOf(std::int32_t cell) {
    const auto c = static_cast<std::size_t>(cell);
    return std::span(members).subspan(static_cast<std::size_t>(start[c]),
                                      static_cast<std::size_t>(start[c + 1] - start[c]));
  }
};

/// Unites those of `points`, ascending, that are in one cell. Points with a coordinate that is NaN
/// or infinite get no cell: their distance to anything, themselves included, is NaN or infinite,
/// and neither is below any radius.
WeldCells uniteWithinCells(std::span<const double> vertices, std::span<const std::int32_t> points,
                           const WeldScale& scale, DisjointSets& sets);

/// True if some pair of a and b has a squared distance below radiusSquared.
/// Exact. Reorders both.
bool anyPairWithin(std::span<const double> vertices, double radiusSquared,
                   std::span<std::int32_t> a, std::span<std::int32_t> b);

}  // namespace qelm

#endif  // QELM_MESH_WELD_CELLS_H
