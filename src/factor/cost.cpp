// The bytes are those of the arrays that Solver and its parts allocate, added up at the two moments
// that can be the highest: while AMD works on its copy of the pattern, and while L is computed.
// Arrays that do not grow with the matrix are left out. How long the lists of one supernode's
// updates become is not known before, and their size is a measured one.
#include "factor/cost.h"

#include <algorithm>

#include "factor/ordering.h"
#include "factor/panel_kernel.h"
#include "factor/supernodes.h"
#include "interface/dependencies.h"

namespace qelm::factor {
namespace {

constexpr std::int64_t kInt = sizeof(int);
constexpr std::int64_t kDouble = sizeof(double);

std::int64_t bytesOfColumns(std::int64_t columns, std::int64_t entries) {
  return kInt * (columns + 1) + (kInt + kDouble) * entries;
}

/// Eigen puts small working arrays on the stack.
std::int64_t heapBytes(std::int64_t bytes) {
  return bytes > EIGEN_STACK_ALLOCATION_LIMIT ? bytes : 0;
}

/// AMD's copy of the pattern, the permutation, and eight int for each column.
std::int64_t orderingBytes(std::int64_t n, std::int64_t entries) {
  return kInt * (n + 1) + (kInt + 1) * std::int64_t{amdCopyEntries(n, entries)} + kInt * n +
         heapBytes(8 * kInt * n);
}

/// RowPaths, SmallSubtrees, Passes, DescendantLists and TargetPanel, see there.
std::int64_t blockedBytes(const EliminationTree& tree) {
  const Supernodes supernodes = fundamentalSupernodes(tree);
  const std::int64_t n = tree.parent.size();
  std::int64_t rowsBelow = 0;
  std::int64_t mostRows = 0;
  std::int64_t largestPanel = 0;
  std::int64_t widest = 0;
  for (int s = 0; s < supernodes.count(); ++s) {
    const std::int64_t width = supernodes.width(s);
    const std::int64_t below = tree.counts[supernodes.lastColumn(s)];
    const std::int64_t stride = (width + kBlock - 1) / kBlock * kBlock;
    rowsBelow += below;
    mostRows = std::max(mostRows, width + below);
    largestPanel = std::max(largestPanel, (width + below) * stride);
    widest = std::max(widest, stride);
  }
  // Supernodes, Passes, TargetPanel.
  const std::int64_t forEachRow = 7 * kInt;
  // Supernodes, RowPaths, DescendantLists, SmallSubtrees.
  const std::int64_t forEachSupernode = 9 * kInt;
  // Lists of updates in Passes and RowPaths: 350 to 650 bytes, on grids and closed surfaces.
  const std::int64_t forEachRowOfTallest = 100 * kInt;
  return forEachRow * n + forEachSupernode * supernodes.count() + 2 * rowsBelow +
         forEachRowOfTallest * mostRows + kDouble * (largestPanel + widest * (widest + kBlock));
}

/// Eigen's own loop.
std::int64_t eigenBytes(std::int64_t n) {
  return heapBytes(kDouble * n) + kIntsTakenForWork * heapBytes(kInt * n);
}

}  // namespace

Cost costOf(std::int64_t matrixEntries, std::int64_t upperEntries, const EliminationTree& tree,
            const Plan& plan) {
  const std::int64_t n = tree.parent.size();
  Cost cost;
  cost.entryCount = tree.entryCount();
  cost.multiplicationCount = tree.multiplicationCount();
  // L, D, the two permutations, the tree, and what Eigen works with.
  cost.keptBytes =
      bytesOfColumns(n, cost.entryCount) + (kDouble + (3 + kIntsKeptForWork) * kInt) * n;
  const std::int64_t besides = bytesOfColumns(n, upperEntries) + 2 * kInt * n;  // the tree again
  const std::int64_t working = plan.inBlocks ? blockedBytes(tree) : eigenBytes(n);
  const std::int64_t copy = plan.renumbered ? bytesOfColumns(n, matrixEntries) + kInt * n : 0;
  cost.peakBytes =
      std::max(copy + orderingBytes(n, matrixEntries), cost.keptBytes + besides + working);
  return cost;
}

}  // namespace qelm::factor
