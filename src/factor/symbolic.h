// The symbolic phase: what the pattern of a matrix alone says of its factorisation.
#ifndef QELM_FACTOR_SYMBOLIC_H
#define QELM_FACTOR_SYMBOLIC_H

#include <Eigen/Core>
#include <cstdint>

#include "factor/elimination_tree.h"

namespace qelm::factor {

using Permutation = Eigen::PermutationMatrix<Eigen::Dynamic, Eigen::Dynamic, int>;

/// P^-1 for the approximate minimum degree ordering of a symmetric matrix with both triangles: row
/// k of P A P^T is row indices()[k] of A. Works on a copy.
Permutation amdOrder(const Sparse& matrix);

/// The upper triangle of P A P^T; of A the lower triangle is read.
Sparse upperTriangle(const Sparse& matrix, const Permutation& p);

/// What factorising a matrix takes.
struct Cost {
  std::int64_t entryCount = 0;     ///< of L, below the diagonal
  double multiplicationCount = 0;  ///< of the numeric phase
  /// Bytes beside the matrix: what Solver keeps, and the most that it holds at once.
  std::int64_t keptBytes = 0;
  std::int64_t peakBytes = 0;
};

/// How a factorisation goes about it.
struct Way {
  bool inBlocks;
  bool renumbered;  ///< ordered from a copy of the matrix under other numbers
};

/// Of a matrix with so many entries in both triangles, and in the upper one, and this tree. Counts
/// beyond what an int can, where Solver would throw.
Cost costOf(std::int64_t matrixEntries, std::int64_t upperEntries, const EliminationTree& tree,
            const Way& way);

}  // namespace qelm::factor

#endif  // QELM_FACTOR_SYMBOLIC_H
