// In: the upper triangle of A, its elimination tree and supernodes. Out: L and D. Left-looking: the
// supernodes are computed in ascending order, each from its descendants, the supernodes before it
// with rows among its columns. With Y = L D, an entry in row r and column c starts as A(r, c) and
// takes the updates
//
//   Y(r, c) -= L(c, k) * Y(r, k)     for the columns k < c that rows r and c share
//
// in the order of row r's paths. A descendant has the columns k and the target the columns c, so
// that all updates between the two make one product of dense blocks, subtracted term by term.
//
//             k k k                    c c           1. the target's panel starts as A
//        c    L L L   columns     c    t t           2. each descendant's rows, from the first one
//        c    L L L               c    t t              in the target's columns on, update it
//        r    Y Y Y   rows        r    t t           3. the panel's own columns update each other
//        r    Y Y Y               r    t t           4. it is stored, and becomes a descendant of
//         a descendant            the target            later targets
//
// A supernode has few columns at the bottom of the tree; the subtrees there are computed before,
// row by row (small_subtrees.h). Each descendant waits in a list of the supernode that its next row
// is a column of. Panels hold Y until all is done.
//
// The multiplications are those of any factorisation under this ordering; blocks gain because each
// number that is loaded is used many times. (George and Liu, Computer Solution of Large Sparse
// Positive Definite Systems, 1981, on supernodes; Ng and Peyton, Block sparse Cholesky algorithms
// on advanced uniprocessor computers, SIAM J. Sci. Comput. 14, 1993, on left-looking blocks; Davis,
// Direct Methods for Sparse Linear Systems, 2006, on the row by row way whose bits this keeps.)
#include "factor/blocked_factor.h"

#include <algorithm>
#include <vector>

#include "factor/compressed_columns.h"
#include "factor/passes.h"
#include "factor/row_paths.h"
#include "factor/small_subtrees.h"
#include "factor/target_panel.h"
#include "interface/compiler.h"
#include "interface/index.h"

namespace qelm::factor {
namespace {

constexpr int kNoSupernode = -1;

/// For each supernode the list of its descendants, complete when its turn comes. A descendant is in
/// one list at a time: of the supernode that its next row is a column of.
class DescendantLists {
 public:
  explicit DescendantLists(int supernodeCount)
      : first_(Eigen::VectorXi::Constant(supernodeCount, kNoSupernode)),
        next_(supernodeCount),
        firstRow_(Eigen::VectorXi::Zero(supernodeCount)) {}

  /// Supernode s has updated all targets that its rows before the position `firstRow` are columns
  /// of.
  void enqueue(int s, const Panel& panel, int firstRow, const Supernodes& supernodes) {
    if (firstRow == panel.belowCount) return;
    firstRow_[s] = firstRow;
    const int target = supernodes.ofColumn[panel.rowIndices[firstRow]];
    next_[s] = first_[target];
    first_[target] = s;
  }

  /// The target's descendants, ascending. They lie anywhere in memory: all are prefetched before
  /// the first is read.
  void collect(int target, const FactorArrays& factor, const Supernodes& supernodes,
               std::vector<Descendant>& descendants) const {
    descendants.clear();
    for (int s = first_[target]; s != kNoSupernode; s = next_[s]) {
      const Panel panel(factor, supernodes, s);
      descendants.push_back({s, panel, firstRow_[s], 0});
      prefetchToRead(panel.rowIndices + firstRow_[s]);
      prefetchToRead(panel.belowRow(firstRow_[s]));
    }
    const int pastTarget = supernodes.pastColumn(target);
    for (Descendant& descendant : descendants) {
      const int* const rows = descendant.panel.rowIndices;
      const int* const past = std::lower_bound(rows + descendant.firstRow,
                                               rows + descendant.panel.belowCount, pastTarget);
      descendant.pastColumns = asInt(past - rows);
    }
    std::sort(descendants.begin(), descendants.end(),
              [](const Descendant& a, const Descendant& b) { return a.supernode < b.supernode; });
  }

 private:
  // Linked lists.
  Eigen::VectorXi first_;     ///< of a target: its first descendant
  Eigen::VectorXi next_;      ///< of a descendant: the next one in the same list
  Eigen::VectorXi firstRow_;  ///< of a descendant: position of its next row
};

/// How many rows below the panel are columns of the same small subtree: the first ones.
int rowsWithin(const SmallSubtrees& subtrees, const Supernodes& supernodes, const Panel& panel) {
  const int* const past =
      std::partition_point(panel.rowIndices, panel.rowIndices + panel.belowCount,
                           [&](int row) { return subtrees.contains(supernodes.ofColumn[row]); });
  return asInt(past - panel.rowIndices);
}

/// All steps but toCompressedColumns(). False as factorizeBlocked().
bool computePanels(const Sparse& upper, const EliminationTree& tree, const Supernodes& supernodes,
                   const SmallSubtrees& subtrees, const PanelKernel& kernel,
                   const FactorArrays& factor) {
  const RowPaths paths(upper, tree, supernodes, factor);
  if (!paths.fits()) return false;

  if (!factorizeSmall(subtrees, supernodes, paths, factor)) return false;

  Passes passes(paths, asIndex(upper.cols()));
  DescendantLists lists(supernodes.count());
  TargetPanel target(factor, kernel, upper.cols());
  std::vector<Descendant> descendants;
  for (int s = 0; s < supernodes.count(); ++s) {
    const Panel panel(factor, supernodes, s);
    if (subtrees.contains(s)) {
      lists.enqueue(s, panel, rowsWithin(subtrees, supernodes, panel), supernodes);
      continue;
    }
    lists.collect(s, factor, supernodes, descendants);
    target.load(panel);
    passes.forEachUpdate(descendants, [&](const Update& update) {
      target.apply(descendants[update.descendant], update);
    });
    if (!target.factorize()) return false;
    target.storeTo(panel);
    for (const Descendant& descendant : descendants) {
      lists.enqueue(descendant.supernode, descendant.panel, descendant.pastColumns, supernodes);
    }
    lists.enqueue(s, panel, 0, supernodes);
  }
  return true;
}

}  // namespace

bool factorizeBlocked(const Sparse& upper, const EliminationTree& tree,
                      const Supernodes& supernodes, const SmallSubtrees& subtrees,
                      const PanelKernel& kernel, const FactorArrays& factor) {
  if (!computePanels(upper, tree, supernodes, subtrees, kernel, factor)) return false;
  toCompressedColumns(supernodes, factor);
  return true;
}

}  // namespace qelm::factor
