// Supernodes: runs of columns of the factor that have the same rows below the run.
#ifndef QELM_FACTOR_SUPERNODES_H
#define QELM_FACTOR_SUPERNODES_H

#include <Eigen/Core>

#include "factor/elimination_tree.h"

namespace qelm::factor {

/// Fundamental supernodes: column j goes with j - 1 if j - 1 is its only child in the
/// elimination tree and L's column j - 1 has the rows of column j, and j itself. Only the first
/// column of a supernode has children elsewhere.
///
///   columns   0  1  2  3  4          supernodes {0}, {1}, {2, 3, 4}
///   L =       1
///             .  1                   the tail of {2, 3, 4}: the rows from 5 on
///             x  .  1                that its columns share
///             .  x  x  1
///             .  .  x  x  1
///             .  x  x  x  x  ...
///             x  .  x  x  x  ...
struct Supernodes {
  Eigen::VectorXi starts;    ///< first column of each, and the number of columns
  Eigen::VectorXi ofColumn;  ///< the supernode that each column is in

  int count() const { return static_cast<int>(starts.size()) - 1; }
  int width(int s) const { return starts[s + 1] - starts[s]; }
};

/// Wide supernodes are cut after so many columns, the next part being the parent of the one
/// before: a block of so many columns and rows (512 kB) stays in a core's second cache while
/// other columns are updated with it.
constexpr int kWidestSupernode = 256;

Supernodes fundamentalSupernodes(const EliminationTree& tree, int widest = kWidestSupernode);

}  // namespace qelm::factor

#endif  // QELM_FACTOR_SUPERNODES_H
