// What a factorisation will take, foretold from its elimination tree.
#ifndef QELM_FACTOR_COST_H
#define QELM_FACTOR_COST_H

#include <cstdint>

#include "factor/elimination_tree.h"

namespace qelm::factor {

struct Cost {
  std::int64_t entryCount = 0;     ///< of L, below the diagonal
  double multiplicationCount = 0;  ///< of the numeric phase
  /// Bytes beside the matrix: those that Solver keeps, and the most that it has at once.
  std::int64_t keptBytes = 0;
  std::int64_t peakBytes = 0;
};

/// How Solver will factorise.
struct Plan {
  bool inBlocks;
  bool renumbered;  ///< from a copy of the matrix whose unknowns are in another order
};

/// For a matrix with `matrixEntries` in both triangles, `upperEntries` in the upper one, and this
/// tree. Also for factors that Solver refuses since an int cannot count their entries.
Cost costOf(std::int64_t matrixEntries, std::int64_t upperEntries, const EliminationTree& tree,
            const Plan& plan);

}  // namespace qelm::factor

#endif  // QELM_FACTOR_COST_H
