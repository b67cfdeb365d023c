// The bytes are those of the arrays that Solver and its parts allocate, added up for the two
// stages that can be the highest: while AMD works on its copy of the matrix, and while L is
// computed. What does not grow with the matrix is left out, as are a few lists of a supernode's
// rows.
#include "factor/symbolic.h"

#include <Eigen/OrderingMethods>
#include <algorithm>

#include "factor/panel_kernel.h"
#include "factor/supernodes.h"
#include "interface/index.h"

namespace qelm::factor {
namespace {

constexpr std::int64_t kInt = sizeof(int);
constexpr std::int64_t kDouble = sizeof(double);

std::int64_t bytesOfColumns(std::int64_t columns, std::int64_t entries) {
  return kInt * (columns + 1) + (kInt + kDouble) * entries;
}

/// Of AMD's copy, which Eigen counts in int.
int roomyEntryCount(std::int64_t n, std::int64_t entries) {
  return indexable(entries + entries / 5 + 2 * n);
}

/// Of an array that Eigen puts on the stack where it is small.
std::int64_t heapBytes(std::int64_t bytes) {
  return bytes > EIGEN_STACK_ALLOCATION_LIMIT ? bytes : 0;
}

/// AMD's copy, with a fifth and two entries for each column as elbow room; nine numbers for each
/// column.
std::int64_t orderingBytes(std::int64_t n, std::int64_t entries) {
  return kInt * (n + 1) + (kInt + 1) * std::int64_t{roomyEntryCount(n, entries)} + kInt * n +
         heapBytes(8 * kInt * n);
}

/// RowPaths, SmallSubtrees, Passes, Waiting and TargetPanel, see there.
std::int64_t blockedBytes(const EliminationTree& tree) {
  const Supernodes supernodes = fundamentalSupernodes(tree);
  const std::int64_t n = tree.parent.size();
  std::int64_t tails = 0;
  std::int64_t largestPanel = 0;
  std::int64_t widest = 0;
  for (int s = 0; s < supernodes.count(); ++s) {
    const std::int64_t width = supernodes.width(s);
    const std::int64_t tail = tree.counts[supernodes.starts[s + 1] - 1];
    const std::int64_t stride = (width + kBlock - 1) / kBlock * kBlock;
    tails += tail;
    largestPanel = std::max(largestPanel, (width + tail) * stride);
    widest = std::max(widest, stride);
  }
  const std::int64_t forEachRow = 7 * kInt;        // Supernodes, Passes, TargetPanel
  const std::int64_t forEachSupernode = 9 * kInt;  // Supernodes, RowPaths, Waiting, SmallSubtrees
  return forEachRow * n + forEachSupernode * supernodes.count() + 2 * tails +
         kDouble * (largestPanel + widest * (widest + kBlock));
}

/// Eigen's own loop: one double and two int for each row.
std::int64_t plainBytes(std::int64_t n) { return heapBytes(kDouble * n) + 2 * heapBytes(kInt * n); }

}  // namespace

/// What AMDOrdering does, but without making the matrix symmetric, which it is: a third of the
/// time at 100 thousand unknowns. The values, which nobody reads, are bytes, and there is elbow
/// room from the beginning.
Permutation amdOrder(const Sparse& matrix) {
  Permutation order;
  Eigen::SparseMatrix<char, Eigen::ColMajor, int> pattern(matrix.rows(), matrix.cols());
  pattern.resizeNonZeros(roomyEntryCount(matrix.cols(), matrix.nonZeros()));
  std::copy_n(matrix.outerIndexPtr(), matrix.cols() + 1, pattern.outerIndexPtr());
  std::copy_n(matrix.innerIndexPtr(), matrix.nonZeros(), pattern.innerIndexPtr());
  Eigen::internal::minimum_degree_ordering(pattern, order);
  return order;
}

Sparse upperTriangle(const Sparse& matrix, const Permutation& p) {
  Sparse upper(matrix.rows(), matrix.cols());
  upper.selfadjointView<Eigen::Upper>() = matrix.selfadjointView<Eigen::Lower>().twistedBy(p);
  return upper;
}

Cost costOf(std::int64_t matrixEntries, std::int64_t upperEntries, const EliminationTree& tree,
            const Way& way) {
  const std::int64_t n = tree.parent.size();
  Cost cost;
  cost.entryCount = tree.entryCount();
  cost.multiplicationCount = tree.multiplicationCount();
  // L, D, the two permutations, the tree and the counts.
  cost.keptBytes = bytesOfColumns(n, cost.entryCount) + (kDouble + 4 * kInt) * n;
  const std::int64_t besides = bytesOfColumns(n, upperEntries) + 2 * kInt * n;  // the tree again
  const std::int64_t working = way.inBlocks ? blockedBytes(tree) : plainBytes(n);
  const std::int64_t copy = way.renumbered ? bytesOfColumns(n, matrixEntries) + kInt * n : 0;
  cost.peakBytes =
      std::max(copy + orderingBytes(n, matrixEntries), cost.keptBytes + besides + working);
  return cost;
}

}  // namespace qelm::factor
