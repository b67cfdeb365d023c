// Many fields of one system, several at each pass through the factor.
#ifndef QELM_SOLVE_BATCH_SOLVE_H
#define QELM_SOLVE_BATCH_SOLVE_H

#include <span>

#include "interface/mesh_system.h"

namespace qelm {

/// Fields of n values each, one after another, input order throughout. `loads` may
/// be empty: then there are none. Any two of the three arrays may be the same, but
/// may not overlap otherwise.
struct Batch {
  std::span<const double> values;
  std::span<const double> loads;
  std::span<double> results;
};

/// How many right-hand sides go through the factor together. Powers of two, 1 to
/// 32, are possible.
///
/// WIDTH_NOTE
constexpr int kBatchWidth = 8;

/// Solves every field of the batch as solveDirichlet() and solveWithLoad() do, with
/// the same bits. `width` bounds how many go together; it has no influence on the
/// results. Needs width + 1 doubles for each vertex, all allocated before the first
/// result is written.
void solveBatch(const MeshSystem& system, const Batch& batch, int width = kBatchWidth);

}  // namespace qelm

#endif  // QELM_SOLVE_BATCH_SOLVE_H
