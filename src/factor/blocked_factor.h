// L D L^T of a sparse symmetric matrix with dense blocks, and the bits of the up-looking way.
#ifndef QELM_FACTOR_BLOCKED_FACTOR_H
#define QELM_FACTOR_BLOCKED_FACTOR_H

#include "factor/elimination_tree.h"
#include "factor/factor_arrays.h"
#include "factor/panel_kernel.h"
#include "factor/small_subtrees.h"
#include "factor/supernodes.h"

namespace qelm::factor {

/// Computes L and D of A = L D L^T and fills in the rows, values and diagonal of `factor`, the
/// starts of whose columns are given. `upper` is A's upper triangle, each entry once.
///
/// The bits are those of Eigen's SimplicialLDLT: every entry takes the same updates in the same
/// order, a multiplication and a subtraction at a time. Returns false, and leaves anything in
/// the arrays, if a pivot is zero or not finite, or if a row has too many paths to tell their
/// order: those are for Eigen's own loop.
bool factorizeBlocked(const Sparse& upper, const EliminationTree& tree,
                      const Supernodes& supernodes, const SmallSubtrees& subtrees,
                      const PanelKernel& kernel, const FactorArrays& factor);

}  // namespace qelm::factor

#endif  // QELM_FACTOR_BLOCKED_FACTOR_H
