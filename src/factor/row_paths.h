// In which order each row of the factor takes its updates.
#ifndef QELM_FACTOR_ROW_PATHS_H
#define QELM_FACTOR_ROW_PATHS_H

#include <Eigen/Core>
#include <cstdint>
#include <span>
#include <vector>

#include "factor/factor_arrays.h"
#include "factor/supernodes.h"

namespace qelm::factor {

/// Row k's pattern is a union of paths in the elimination tree, one for each entry of A(k, 0 ..
/// k-1) that leads somewhere new. Updates come along these paths: the path found last first, each
/// path upwards. That order decides the bits of L, since A's columns are not sorted and sums
/// round.
///
/// For each supernode, for each row of its tail: the number of the path that the supernode's
/// columns lie on, counted from 0 in the order of finding. Where they lie on several, kSplit,
/// and the parts are listed apart.
class RowPaths {
 public:
  using Number = std::uint16_t;
  static constexpr Number kSplit = 0xffff;

  /// Columns of one supernode from `begin` (0: its first) up to the next part's.
  struct Part {
    int supernode;
    int row;
    int begin;
    Number path;
  };

  /// Walks the paths of all rows, in time proportional to the supernodes that they visit.
  /// Besides fills in `factor` what is known by then: the rows of each supernode's tail, in its
  /// last column, the diagonal of A, and A's other entries in the panels, zero elsewhere.
  /// `upper` is A's upper triangle, in which the order of entries is the order of finding.
  RowPaths(const Sparse& upper, const EliminationTree& tree, const Supernodes& supernodes,
           const FactorArrays& factor);

  /// False if some row has too many paths for a Number; nothing else is of use then.
  bool fits() const { return fits_; }

  /// One for each row of the supernode's tail.
  std::span<const Number> ofTail(int supernode) const {
    const std::size_t begin = tailStarts_[static_cast<std::size_t>(supernode)];
    const std::size_t end = tailStarts_[static_cast<std::size_t>(supernode) + 1];
    return {numbers_.data() + begin, end - begin};
  }

  /// The parts of a supernode and row with kSplit, from the first column on.
  std::span<const Part> partsOf(int supernode, int row) const;

 private:
  class Walk;

  bool fits_ = true;
  std::vector<std::size_t> tailStarts_;
  std::vector<Number> numbers_;
  std::vector<Part> parts_;  ///< by supernode, row and column
};

}  // namespace qelm::factor

#endif  // QELM_FACTOR_ROW_PATHS_H
