// Solving for callers who do not know what their arrays hold: looks at what is read before anything
// is written, and at what comes out.
//
// Cost: a look at each value and load that is read, one or two hundredths of the solve in all.
#ifndef QELM_SOLVE_CHECKED_SOLVE_H
#define QELM_SOLVE_CHECKED_SOLVE_H

#include <cstdint>

#include "interface/mesh_system.h"
#include "solve/batch_solve.h"

namespace qelm {

struct CheckedOutcome {
  int status;          ///< one of QELM_STATUS_*
  std::int64_t first;  ///< index in the array that the status is about; -1 for none
};

/// solveBatch() if the factorisation succeeded and every number that is read is finite; else the
/// results are not touched. The first number that is wrong has the lowest index in its array.
CheckedOutcome solveChecked(const MeshSystem& system, const Batch& batch);

}  // namespace qelm

#endif  // QELM_SOLVE_CHECKED_SOLVE_H
