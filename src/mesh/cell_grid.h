// A grid of cells so small that all points in one of them are close to each other.
#ifndef QELM_MESH_CELL_GRID_H
#define QELM_MESH_CELL_GRID_H

#include <array>
#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

#include "mesh/disjoint_sets.h"
#include "mesh/hash_index.h"

namespace qelm {

/// Keeps clouds that are dense beside the tolerance from costing the square of their
/// size: the points of one cell are united at once, and a crowded cell is closed as
/// soon as nothing within reach of it can still be united.
///
/// The edge of a cell is 0.57 of the tolerance. Its diagonal is 0.988 of it, so any
/// two points of a cell belong together; and a point within the tolerance of a cell
/// is at most two cells away. Both hold with room for the rounding of coordinate /
/// edge, which is at most 2^-12 of a cell as long as that quotient is below 2^40. A
/// grid that would exceed this is not made, since its points would be alone in their
/// cells anyway; nor is one for a tolerance whose square over- or underflows.
class CellGrid {
 public:
  /// `ids` are the points to put in, and must outlive the grid; points holds 3 finite coordinates
  /// for each id below points.size() / 3. tolerance > 0. Unites what shares a cell.
  CellGrid(std::span<const double> points, std::span<const std::int32_t> ids, double tolerance,
           DisjointSets& sets);
  CellGrid(const CellGrid&) = delete;
  CellGrid& operator=(const CellGrid&) = delete;

  /// Whether every pair with the k-th of the ids is united already.
  bool isClosed(std::size_t k) const { return used_ && closed_[cell(k)]; }

  /// To be called when all pairs with the k-th of the ids have been united.
  void noteQuery(std::size_t k, DisjointSets& sets);

 private:
  using Cell = std::array<std::int64_t, 3>;
  struct KeyOfPoint {
    const CellGrid* grid;
    Triple operator()(std::int32_t id) const;
  };

  std::size_t cell(std::size_t k) const { return static_cast<std::size_t>(cellOf_[k]); }
  Cell cellAt(std::int32_t id) const;
  bool neighbourhoodIsOneSet(std::int32_t id, DisjointSets& sets) const;

  std::span<const double> points_;
  std::span<const std::int32_t> ids_;
  double edge_;
  bool used_;
  HashIndex<KeyOfPoint> firstIn_;      // a point of each cell
  std::vector<std::int32_t> cellOf_;   // by k
  std::vector<std::int32_t> members_;  // by cell
  std::vector<std::int32_t> queries_;  // by cell
  std::vector<bool> closed_;           // by cell
};

}  // namespace qelm

#endif  // QELM_MESH_CELL_GRID_H
