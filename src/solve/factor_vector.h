// Substitution through a stored factor for one right-hand side.
#ifndef QELM_SOLVE_FACTOR_VECTOR_H
#define QELM_SOLVE_FACTOR_VECTOR_H

#include <Eigen/Core>

#include "interface/mesh_system.h"

namespace qelm {

/// x = L^-1 x. `lower` holds L without its unit diagonal, rows ascending; x and `scratch` have an
/// entry for each column, what is in `scratch` means nothing before and after.
///
/// The operations on each entry are those of a loop over the columns, in its order, so that the
/// bits are those of Eigen's solve(); a column whose entry of x is zero is passed over.
void solveLower(const SparseBlock& lower, double* x, double* scratch);

/// x = L^-T D^-1 x, from the last entry up; in the same way. Multiplies by the reciprocals of D,
/// since Eigen does; a division would round differently.
void solveDiagonalAndUpper(const SparseBlock& lower, const Eigen::VectorXd& reciprocals, double* x,
                           double* scratch);

}  // namespace qelm

#endif  // QELM_SOLVE_FACTOR_VECTOR_H
