// In which order each row of L takes its updates.
//
// The columns with an entry in row i of L form the row subtree of i in the elimination tree.
// Walking up from each entry of A(i, 0..i-1), in the order in which they are stored, until a column
// that was visited before, cuts the subtree into row paths. Eigen's loop takes the path found last
// first, and each path upwards. Since sums round, this order decides the bits of L, and the blocked
// factorisation keeps it.
//
//   the tree            2 -> 3 -> 6 -> 8,  4 -> 6,  7 -> 8
//   row 9 of A          entries in columns 4, 7, 2, stored in this order
//   its row paths       0: 4, 6, 8     1: 7     2: 2, 3
//   order of updates    2, 3, then 7, then 4, 6, 8
//
// A whole supernode usually lies on one path of a row. RowPaths stores one path number for each
// supernode and row below it: memory and time are proportional to these, not to the entries of L.
// (Davis, Direct Methods for Sparse Linear Systems, 2006, on the row by row factorisation.)
#ifndef QELM_FACTOR_ROW_PATHS_H
#define QELM_FACTOR_ROW_PATHS_H

#include <Eigen/Core>
#include <cstdint>
#include <span>
#include <vector>

#include "factor/factor_arrays.h"
#include "factor/supernodes.h"
#include "interface/index.h"

namespace qelm::factor {

/// For each supernode and each row below it, the number of the row path on which the supernode's
/// columns lie; the paths of a row are numbered 0, 1, ... in the order in which they are found.
/// Where the columns lie on several paths the number is kSplit, and the parts are in a list.
class RowPaths {
 public:
  using Number = std::uint16_t;
  static constexpr Number kSplit = 0xffff;

  /// The columns of a supernode that lie on one path of a row: from `beginColumn`, counted from the
  /// supernode's first, up to the next part's.
  struct Part {
    int supernode;
    int row;
    int beginColumn;
    Number path;
  };

  /// Finds the paths of all rows. `upper` is A's upper triangle, its entries in the order in which
  /// the paths are to be found.
  /// Also fills in `factor` what is known by then: the row indices of each supernode's last column,
  /// the diagonal of A, and the other entries of A in the panels, zero elsewhere.
  RowPaths(const Sparse& upper, const EliminationTree& tree, const Supernodes& supernodes,
           const FactorArrays& factor);

  /// False if a row has too many paths for a Number; then nothing else is of use.
  bool fits() const { return fits_; }

  /// One number for each row below the supernode.
  std::span<const Number> ofSupernode(int supernode) const {
    const std::size_t begin = offsets_[asIndex(supernode)];
    const std::size_t end = offsets_[asIndex(supernode) + 1];
    return {numbers_.data() + begin, end - begin};
  }

  /// The parts of a supernode and row with kSplit, from the first column on.
  std::span<const Part> partsOf(int supernode, int row) const;

 private:
  class Walk;

  bool fits_ = true;
  std::vector<std::size_t> offsets_;  ///< where a supernode's numbers begin
  std::vector<Number> numbers_;
  std::vector<Part> parts_;  ///< by supernode, row and column
};

}  // namespace qelm::factor

#endif  // QELM_FACTOR_ROW_PATHS_H
