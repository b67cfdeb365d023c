// Left-looking: supernodes are computed in ascending order, each from those before it. With Y = L
// D, the entry of row r and column c starts from A(r, c) and takes
//
//   Y(r, c) -= L(c, k) * Y(r, k)
//
// for the columns k < c that both rows share, in the order of row r's paths. A supernode that has
// the columns k, a source, has all its rows of Y together, and the supernode of c, the target, all
// its columns: a product of two dense blocks, but one that is subtracted term by term.
//
//             k k k                    c c           1. the target's panel starts from A
//        c    L L L   columns     c    t t           2. each source's rows, from the first one in
//        c    L L L               c    t t              the target's columns on, update the panel
//        r    Y Y Y   rows        r    t t           3. the panel's own columns update each other
//        r    Y Y Y               r    t t           4. it is put back and becomes a source
//           a source             the target
//
// Supernodes of small subtrees at the bottom of the tree are computed before, row by row
// (factorizeSmall()); they are sources all the same.
//
// A source waits in the list of the supernode that its next row is a column of. Panels keep Y until
// all is done: as a row it is needed undivided, as a column it is divided when it is packed for the
// kernel. Cost: as many multiplications as any factorisation under this ordering; what is gained is
// that each number that is loaded is used many times. (George and Liu, Computer Solution of Large
// Sparse Positive Definite Systems, 1981, on supernodes; Ng and Peyton, Block sparse Cholesky
// algorithms on advanced uniprocessor computers, SIAM J. Sci. Comput. 14, 1993, on left-looking
// blocks; Davis, Direct Methods for Sparse Linear Systems, 2006, on the row by row way of which
// this keeps the bits.)
#include "factor/blocked_factor.h"

#include <algorithm>
#include <vector>

#include "factor/columns.h"
#include "factor/passes.h"
#include "factor/row_paths.h"
#include "factor/small_subtrees.h"
#include "factor/target_panel.h"
#include "interface/compiler.h"

namespace qelm::factor {
namespace {

constexpr int kNoSupernode = -1;

/// For each supernode those before it whose next row is in its columns.
class Waiting {
 public:
  explicit Waiting(int supernodeCount)
      : first_(Eigen::VectorXi::Constant(supernodeCount, kNoSupernode)),
        next_(supernodeCount),
        firstRow_(Eigen::VectorXi::Zero(supernodeCount)) {}

  /// `s` has given updates for the rows of its tail before `firstRow`.
  void put(int s, const Panel& panel, int firstRow, const Supernodes& supernodes) {
    if (firstRow == panel.tailSize) return;
    firstRow_[s] = firstRow;
    const int target = supernodes.ofColumn[panel.rows[firstRow]];
    next_[s] = first_[target];
    first_[target] = s;
  }

  /// Sources lie anywhere: the memory of all is asked for before the first is looked at.
  void take(int target, const FactorArrays& factor, const Supernodes& supernodes,
            std::vector<Source>& sources) const {
    sources.clear();
    for (int s = first_[target]; s != kNoSupernode; s = next_[s]) {
      const Panel panel(factor, supernodes, s);
      sources.push_back({s, panel, firstRow_[s], 0});
      prefetchToRead(panel.rows + firstRow_[s]);
      prefetchToRead(panel.tailRow(firstRow_[s]));
    }
    const int pastTarget = supernodes.starts[target + 1];
    for (Source& source : sources) {
      const int* const tail = source.panel.rows;
      const int* const past =
          std::lower_bound(tail + source.firstRow, tail + source.panel.tailSize, pastTarget);
      source.pastColumns = static_cast<int>(past - tail);
    }
    std::sort(sources.begin(), sources.end(),
              [](const Source& a, const Source& b) { return a.supernode < b.supernode; });
  }

 private:
  Eigen::VectorXi first_;
  Eigen::VectorXi next_;
  Eigen::VectorXi firstRow_;
};

/// How many of the tail's rows are columns of the same small subtree: the first ones.
int rowsWithin(const SmallSubtrees& subtrees, const Supernodes& supernodes, const Panel& panel) {
  const int* const past =
      std::partition_point(panel.rows, panel.rows + panel.tailSize,
                           [&](int row) { return subtrees.contains(supernodes.ofColumn[row]); });
  return static_cast<int>(past - panel.rows);
}

/// Everything but the last step. False as factorizeBlocked().
bool computePanels(const Sparse& upper, const EliminationTree& tree, const Supernodes& supernodes,
                   const SmallSubtrees& subtrees, const PanelKernel& kernel,
                   const FactorArrays& factor) {
  const RowPaths paths(upper, tree, supernodes, factor);
  if (!paths.fits()) return false;

  if (!factorizeSmall(subtrees, supernodes, paths, factor)) return false;

  Passes passes(paths, static_cast<std::size_t>(upper.cols()));
  Waiting waiting(supernodes.count());
  TargetPanel target(factor, kernel, upper.cols());
  std::vector<Source> sources;
  for (int s = 0; s < supernodes.count(); ++s) {
    const Panel panel(factor, supernodes, s);
    if (subtrees.contains(s)) {
      waiting.put(s, panel, rowsWithin(subtrees, supernodes, panel), supernodes);
      continue;
    }
    waiting.take(s, factor, supernodes, sources);
    target.load(panel);
    passes.visitAll(sources,
                    [&](const Visit& visit) { target.update(sources[visit.source], visit); });
    if (!target.factorize()) return false;
    target.storeTo(panel);
    for (const Source& source : sources) {
      waiting.put(source.supernode, source.panel, source.pastColumns, supernodes);
    }
    waiting.put(s, panel, 0, supernodes);
  }
  return true;
}

}  // namespace

bool factorizeBlocked(const Sparse& upper, const EliminationTree& tree,
                      const Supernodes& supernodes, const SmallSubtrees& subtrees,
                      const PanelKernel& kernel, const FactorArrays& factor) {
  if (!computePanels(upper, tree, supernodes, subtrees, kernel, factor)) return false;
  toColumns(supernodes, factor);
  return true;
}

}  // namespace qelm::factor
