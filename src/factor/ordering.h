// The fill-reducing ordering of a symmetric matrix, and the matrix under it.
#ifndef QELM_FACTOR_ORDERING_H
#define QELM_FACTOR_ORDERING_H

#include <Eigen/Core>
#include <cstdint>

#include "factor/elimination_tree.h"

namespace qelm::factor {

using Permutation = Eigen::PermutationMatrix<Eigen::Dynamic, Eigen::Dynamic, int>;

/// P^-1 for the approximate minimum degree ordering of a symmetric matrix with both triangles
/// stored: row k of P A P^T is row indices()[k] of A. Works on a copy of the pattern.
Permutation amdOrder(const Sparse& matrix);

/// The entries that amdOrder() makes room for in its copy of a pattern of n columns.
int amdCopyEntries(std::int64_t n, std::int64_t entries);

/// The upper triangle of P A P^T, from the lower triangle of A. The entries of a column are in no
/// order.
Sparse upperTriangle(const Sparse& matrix, const Permutation& p);

}  // namespace qelm::factor

#endif  // QELM_FACTOR_ORDERING_H
