// In which order a supernode takes the updates of its descendants.
//
// The descendants of a target, the supernode that is being computed, are the supernodes with rows
// among its columns. In: for each descendant and each row below it, the number of the row path that
// they share (RowPaths). Out: a sequence of updates in which each row gets its descendants path by
// path, the highest number first, and each path upwards. As many rows as possible share an update,
// since that is what makes dense blocks pay.
//
// One pass over the descendants in ascending order serves every row whose path numbers descend.
// Other rows need more passes: each path goes into the first pass in which its descendants come
// after those of the paths before it.
//
//   descendants        0  1  2  3
//   row a: paths       2  2  1  0      order of updates 0 1, 2, 3: one pass
//   row b: paths       0  .  1  0      order of updates 2, 0 3: two passes
//
//   pass 0             0: a     1: a     2: a, b     3: a
//   pass 1             0: b     3: b
//
// Few targets need more than two passes. The cost is one look at each row of each descendant, and
// some more for the rows that need several passes. A supernode that is split for a row can have its
// parts in different passes.
#ifndef QELM_FACTOR_PASSES_H
#define QELM_FACTOR_PASSES_H

#include <cstddef>
#include <span>
#include <vector>

#include "factor/factor_arrays.h"
#include "factor/row_paths.h"
#include "interface/index.h"

namespace qelm::factor {

/// A descendant of the target. Its rows below that are columns of the target are those at the
/// positions firstRow .. pastColumns-1; rows at pastColumns and behind lie below the target, too.
struct Descendant {
  int supernode;
  Panel panel;
  int firstRow;
  int pastColumns;

  const int* columns() const { return panel.rowIndices + firstRow; }
  int columnCount() const { return pastColumns - firstRow; }
};

/// Rows of a descendant that take its updates together: all rows that take all of its columns, or
/// one row that takes some of them.
struct Update {
  std::size_t descendant;  ///< index among the target's descendants
  int beginColumn;         ///< columns beginColumn .. endColumn-1 of the descendant
  int endColumn;
  std::span<const int> positions;  ///< among the rows below; valid until the next update

  int depth() const { return endColumn - beginColumn; }
};

/// Orders the updates of one target after the other.
class Passes {
 public:
  /// For a matrix of so many rows.
  Passes(const RowPaths& paths, std::size_t rowCount);

  /// Calls apply(update) for one update after the other. `descendants` ascend.
  template <class Apply>
  void forEachUpdate(std::span<const Descendant> descendants, Apply apply) {
    assignPasses(descendants);
    const auto applyCollected = [&](std::size_t d) {
      if (!wholeRowsView_.empty()) {
        apply(Update{d, 0, descendants[d].panel.width, wholeRowsView_});
      }
      for (const RowUpdate& each : partRows_) {
        apply(Update{d, each.beginColumn, each.endColumn, {&each.position, 1}});
      }
    };
    for (std::size_t d = 0; d < descendants.size(); ++d) {
      collectFirstPass(descendants[d], d);
      applyCollected(d);
    }
    for (int pass = 1; pass < passCount_; ++pass) {
      for (std::size_t k = 0; k < deferred_.size();) {
        const auto d = asIndex(deferred_[k].descendant);
        k = collectDeferred(k, pass, descendants[d].panel.width);
        applyCollected(d);
      }
    }
  }

 private:
  /// The descendants on one path of a row that needs several passes.
  struct RowPath {
    int number;
    std::size_t firstDescendant;
    std::size_t lastDescendant;
    int pass;
    int next;  ///< the row's path with the next lower number
  };
  struct RowState {
    int target = -1;       ///< the last target that had this row
    int lastPath = 0;      ///< path number at the descendant looked at last
    bool ascends = false;  ///< some path number is higher than the one before it
    int highestPath = -1;  ///< index in rowPaths_
  };
  /// The columns of a descendant that one row takes in one pass.
  struct RowUpdate {
    int position;
    int beginColumn;
    int endColumn;
  };
  struct DeferredUpdate {
    int descendant;  ///< an int can count them: fewer than the entries of L in the target's rows
    int pass;        ///< 1 or more
    RowUpdate update;
  };

  void assignPasses(std::span<const Descendant> descendants);
  void findAscendingRows(std::span<const Descendant> descendants);
  void listRowPaths(std::span<const Descendant> descendants);
  int extendRowPath(int row, int number, std::size_t descendant);
  int rowPathOf(int row, int number) const;
  void assignPassesOf(int row);
  void collectFirstPass(const Descendant& descendant, std::size_t index);
  void collectAll(const Descendant& descendant);
  void collectParts(const Descendant& descendant, std::size_t index, int position);
  std::size_t collectDeferred(std::size_t from, int pass, int width);
  void collect(const RowUpdate& update, int width);

  RowState& state(int row) { return states_[asIndex(row)]; }
  RowPath& rowPath(int k) { return rowPaths_[asIndex(k)]; }
  const RowPath& rowPath(int k) const { return rowPaths_[asIndex(k)]; }

  const RowPaths& paths_;
  std::vector<RowState> states_;  ///< for each row
  int target_ = -1;
  int passCount_ = 0;
  std::vector<int> ascendingRows_;         ///< those that need several passes
  std::vector<RowPath> rowPaths_;          ///< of these rows
  std::vector<int> rowPathOfUpdate_;       ///< for each row of each descendant: index in rowPaths_
  std::vector<std::size_t> updateStarts_;  ///< where a descendant's begin
  std::vector<bool> needsOnePass_;         ///< whether all rows of a descendant need one pass only
  std::vector<int> allPositions_;          ///< 0, 1, 2, ...
  // The updates of one descendant in one pass: rows that take all of its columns, in one of the two
  // lists of positions, and rows that take some.
  std::span<const int> wholeRowsView_;
  std::vector<int> wholeRows_;
  std::vector<RowUpdate> partRows_;
  std::vector<DeferredUpdate> deferred_;  ///< by descendant
};

}  // namespace qelm::factor

#endif  // QELM_FACTOR_PASSES_H
