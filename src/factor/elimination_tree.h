// The elimination tree of a symmetric matrix and the number of entries in each column of its
// factor: the symbolic phase, before memory is taken for the factor.
#ifndef QELM_FACTOR_ELIMINATION_TREE_H
#define QELM_FACTOR_ELIMINATION_TREE_H

#include <Eigen/Core>
#include <Eigen/SparseCore>
#include <cstdint>

namespace qelm::factor {

/// Compressed columns, as everywhere in the library.
using Sparse = Eigen::SparseMatrix<double, Eigen::ColMajor, int>;

constexpr int kNoColumn = -1;

/// For L of A = L D L^T, n x n.
struct EliminationTree {
  /// parent[j]: the row of the first entry below the diagonal in column j; kNoColumn for a root.
  Eigen::VectorXi parent;
  /// counts[j]: the number of entries below the diagonal in column j.
  Eigen::VectorXi counts;

  /// The entries of L below the diagonal.
  std::int64_t entryCount() const;
  /// The multiplications that the numeric phase takes.
  double multiplicationCount() const;
};

/// `upper` holds A's upper triangle (or all of A), the entries of a column in any order. Takes time
/// nearly proportional to the entries of A, not of L, and five int for each row and one for each
/// entry.
EliminationTree eliminationTree(const Sparse& upper);

}  // namespace qelm::factor

#endif  // QELM_FACTOR_ELIMINATION_TREE_H
