// Forward and back substitution through a stored factor for one right-hand side.
//
// Most of L lies in supernodes: runs of columns that have the same rows below the run, their tail.
//
//   column   4 5 6        x's entries of the tail, 9 and 12, are gathered once for the supernode.
//   row 5    x            Then all columns read and write them side by side, as vectors, and of L
//       6    x x          only the values are read, not the row indices: 8 bytes for an entry in
//       9    x x x        place of 12.
//      12    x x x
//
// Going down, up to four columns are subtracted from the tail in one loop. Going up, the entries of
// a column are subtracted one after the other, and the columns are read from the last to the first.
//
// Where L is larger than the caches, both ways wait for memory. Processors fetch ahead in rising
// order only, and begin anew with every column of a group, so the values that come next are
// prefetched here.
//
// Cost: two operations for each entry of L, and 8 to 12 bytes of memory read.
#ifndef QELM_SOLVE_FACTOR_VECTOR_H
#define QELM_SOLVE_FACTOR_VECTOR_H

#include <Eigen/Core>

#include "interface/mesh_system.h"

namespace qelm {

/// x = L^-1 x. `lower` holds L without its unit diagonal, rows ascending. x and `scratch` have an
/// entry for each column; `scratch` is room to work in.
///
/// The operations on each entry are those of a loop over the columns, in its order, so that the
/// bits are those of Eigen's solve(); a column whose entry of x is zero is skipped.
void substituteForward(const SparseBlock& lower, double* x, double* scratch);

/// x = L^-T D^-1 x, from the last entry up; in the same way. Multiplies by the reciprocals of D,
/// since Eigen does; a division would round differently.
void substituteBack(const SparseBlock& lower, const Eigen::VectorXd& diagonal, double* x,
                    double* scratch);

}  // namespace qelm

#endif  // QELM_SOLVE_FACTOR_VECTOR_H
