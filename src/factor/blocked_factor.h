// The numeric phase on dense blocks, with the bits of Eigen's loop over single entries.
#ifndef QELM_FACTOR_BLOCKED_FACTOR_H
#define QELM_FACTOR_BLOCKED_FACTOR_H

#include "factor/elimination_tree.h"
#include "factor/factor_arrays.h"
#include "factor/panel_kernel.h"
#include "factor/small_subtrees.h"
#include "factor/supernodes.h"

namespace qelm::factor {

/// Computes L and D of A = L D L^T and writes the row indices, values and diagonal of `factor`,
/// whose column pointers are given. `upper` is A's upper triangle, each entry once.
///
/// The bits are those of Eigen's SimplicialLDLT: every entry takes the same updates in the same
/// order, a multiplication and a subtraction at a time. Returns false, and leaves the arrays in any
/// state, if a pivot is zero or not finite, or if a row has too many paths for RowPaths: those are
/// for Eigen's own loop.
bool factorizeBlocked(const Sparse& upper, const EliminationTree& tree,
                      const Supernodes& supernodes, const SmallSubtrees& subtrees,
                      const PanelKernel& kernel, const FactorArrays& factor);

}  // namespace qelm::factor

#endif  // QELM_FACTOR_BLOCKED_FACTOR_H
