// The elimination tree of a symmetric matrix and the sizes of its factor's columns: all that
// can be known of a factorisation before memory is taken for it.
#ifndef QELM_FACTOR_ELIMINATION_TREE_H
#define QELM_FACTOR_ELIMINATION_TREE_H

#include <Eigen/Core>
#include <Eigen/SparseCore>
#include <cstdint>

namespace qelm::factor {

/// Compressed columns, as everywhere in the library.
using Sparse = Eigen::SparseMatrix<double, Eigen::ColMajor, int>;

constexpr int kNoColumn = -1;

/// Of the factor L of an n x n matrix A, A = L D L^T.
struct EliminationTree {
  /// Of each column the row of its first entry below the diagonal; kNoColumn for a root.
  Eigen::VectorXi parent;
  /// Of each column the number of its entries below the diagonal.
  Eigen::VectorXi counts;

  /// All entries of L below the diagonal.
  std::int64_t entryCount() const;
  /// Multiplications that computing them takes.
  double multiplicationCount() const;
};

/// `upper` holds A's upper triangle (or all of A), its entries within a column in any order.
/// Takes time nearly in proportion to A's entries, not to those of L, and needs five int for
/// each row and one for each entry.
EliminationTree eliminationTree(const Sparse& upper);

}  // namespace qelm::factor

#endif  // QELM_FACTOR_ELIMINATION_TREE_H
