// Supernodes: successive columns of L that have the same rows below them.
//
//        0  1  2  3  4  5  6
//   0    1                          supernodes {0}, {1, 2, 3}, {4}, {5, 6}
//   1    x  1
//   2    .  x  1                    {1, 2, 3}: its diagonal block are rows 1 to 3,
//   3    .  x  x  1                 a full triangle; below, each of its columns
//   4    .  .  .  .  1              has rows 5 and 6
//   5    .  x  x  x  x  1
//   6    x  x  x  x  .  x  1
//
// All columns of a supernode update the same entries of later columns, so the numeric phase works
// on dense blocks. The parent and the count of each column tell where supernodes begin; L itself is
// not needed. (Liu, Ng and Peyton, On finding supernodes for sparse matrix computations, SIAM J.
// Matrix Anal. Appl. 14, 1993.)
#ifndef QELM_FACTOR_SUPERNODES_H
#define QELM_FACTOR_SUPERNODES_H

#include <Eigen/Core>
#include <cstdint>

#include "factor/elimination_tree.h"
#include "interface/index.h"

namespace qelm::factor {

/// Fundamental supernodes: column j belongs to the supernode of j - 1 if j - 1 is its only child in
/// the elimination tree and the rows of column j - 1 are j and the rows of column j. Only the first
/// column of a supernode has children elsewhere.
struct Supernodes {
  Eigen::VectorXi starts;    ///< first column of each, and the number of columns
  Eigen::VectorXi ofColumn;  ///< the supernode that each column is in

  int count() const { return asInt(starts.size()) - 1; }
  int firstColumn(int s) const { return starts[s]; }
  int lastColumn(int s) const { return starts[s + 1] - 1; }
  int pastColumn(int s) const { return starts[s + 1]; }
  int width(int s) const { return starts[s + 1] - starts[s]; }
};

/// A wider supernode is cut after so many columns, and each part is the parent of the one before.
/// The panels of one supernode then take a small part of the memory of L, and a block of so many
/// columns and rows (1.2 MB at most) stays in a core's second cache while it updates other columns.
int widestSupernode(std::int64_t entryCount);

Supernodes fundamentalSupernodes(const EliminationTree& tree, int widest);
inline Supernodes fundamentalSupernodes(const EliminationTree& tree) {
  return fundamentalSupernodes(tree, widestSupernode(tree.entryCount()));
}

}  // namespace qelm::factor

#endif  // QELM_FACTOR_SUPERNODES_H
