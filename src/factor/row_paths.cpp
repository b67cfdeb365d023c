// A supernode counts as one node of the tree. Two cases need care:
//
// - A path ends just where the one before begins: one follows the other in the order of updates in
//   any case, so both get one number.
// - A path begins inside a supernode, above its first column. A later path takes the lower columns;
//   if others were found between the two, the supernode is split for this row.
//
//   supernode {0, 1, 2}; row 5 of A has entries in columns 2, 3, 0, stored in this order
//   its row paths       0: 2     1: 3     2: 0, 1
//   order of updates    0, 1, then 3, then 2: {0, 1, 2} is split into 0, 1 and 2
#include "factor/row_paths.h"

#include <algorithm>
#include <tuple>

#include "interface/index.h"

namespace qelm::factor {
class RowPaths::Walk {
  /// The last visit of a path to a supernode.
  struct Visited {
    int row = kNoColumn;   ///< the row whose path it was
    int lowestColumn = 0;  ///< the lowest column that this row's paths visited
    int position = -1;     ///< of this row among the rows below
  };

 public:
  Walk(RowPaths& paths, const EliminationTree& tree, const Supernodes& supernodes,
       const FactorArrays& factor)
      : paths_(paths),
        tree_(tree),
        supernodes_(supernodes),
        factor_(factor),
        visited_(asIndex(supernodes.count())) {}

  void beginRow(int row) {
    row_ = row;
    ownSupernode_ = supernodes_.ofColumn[row];
    path_ = -1;
    pathBegin_ = kNoColumn;
    factor_.diagonal[row] = 0;
  }

  /// An entry of the row: finds its path, and puts its value into the panel. Values are added to
  /// zero, so that -0.0 becomes 0.0.
  void add(int column, double value) {
    if (column == row_) {
      factor_.diagonal[row_] += value;
      return;
    }
    followPath(column);
    const int s = supernodes_.ofColumn[column];
    const Panel panel(factor_, supernodes_, s);
    double* const entries = s == ownSupernode_ ? panel.triangleRow(row_ - panel.firstColumn)
                                               : panel.belowRow(visited_[asIndex(s)].position);
    entries[column - panel.firstColumn] += value;
  }

 private:
  /// Walks up to a supernode that this row has visited, or to the row's own.
  void followPath(int column) {
    onPath_.clear();
    int node = column;
    int s = supernodes_.ofColumn[node];
    for (; s != ownSupernode_ && visited_[asIndex(s)].row != row_; s = supernodes_.ofColumn[node]) {
      enter(s, node);
      onPath_.push_back(s);
      node = tree_.parent[supernodes_.lastColumn(s)];
    }
    const bool takesLowerColumns = s != ownSupernode_ && node < visited_[asIndex(s)].lowestColumn;
    if (onPath_.empty() && !takesLowerColumns) return;
    const int endColumn = takesLowerColumns ? visited_[asIndex(s)].lowestColumn : node;
    const bool continuesLastPath = s != ownSupernode_ && endColumn == pathBegin_;
    if (!continuesLastPath) ++path_;
    pathBegin_ = column;
    if (path_ >= kSplit) paths_.fits_ = false;
    for (const int passed : onPath_) number(passed) = static_cast<Number>(path_);
    if (takesLowerColumns) takeLowerColumns(s, node);
  }

  void enter(int s, int column) {
    Visited& visited = visited_[asIndex(s)];
    const Panel panel(factor_, supernodes_, s);
    visited.row = row_;
    visited.lowestColumn = column;
    panel.rowIndices[++visited.position] = row_;
  }

  Number& number(int s) {
    return paths_.numbers_[paths_.offsets_[asIndex(s)] + asIndex(visited_[asIndex(s)].position)];
  }

  /// The path takes the columns of a supernode from `column` up to those visited before.
  void takeLowerColumns(int s, int column) {
    Visited& visited = visited_[asIndex(s)];
    const auto path = static_cast<Number>(path_);
    const int first = supernodes_.firstColumn(s);
    Number& known = number(s);
    if (known == kSplit) {
      Part& last = paths_.parts_.back();
      if (last.supernode == s && last.row == row_ && last.path == path) {
        last.beginColumn = column - first;
      } else {
        paths_.parts_.push_back({s, row_, column - first, path});
      }
    } else if (known != path) {
      paths_.parts_.push_back({s, row_, visited.lowestColumn - first, known});
      paths_.parts_.push_back({s, row_, column - first, path});
      known = kSplit;
    }
    visited.lowestColumn = column;
  }

  RowPaths& paths_;
  const EliminationTree& tree_;
  const Supernodes& supernodes_;
  const FactorArrays& factor_;
  std::vector<Visited> visited_;  ///< for each supernode
  int row_ = kNoColumn;
  int ownSupernode_ = kNoColumn;  ///< the one that the row is a column of
  int path_ = -1;                 ///< number of the last path
  int pathBegin_ = kNoColumn;     ///< its first column
  std::vector<int> onPath_;       ///< supernodes that the present path has entered
};

RowPaths::RowPaths(const Sparse& upper, const EliminationTree& tree, const Supernodes& supernodes,
                   const FactorArrays& factor) {
  offsets_.reserve(asIndex(supernodes.count()) + 1);
  offsets_.push_back(0);
  for (int s = 0; s < supernodes.count(); ++s) {
    const int belowCount = tree.counts[supernodes.lastColumn(s)];
    offsets_.push_back(offsets_.back() + asIndex(belowCount));
  }
  numbers_.resize(offsets_.back());
  std::fill_n(factor.values, factor.columnPointers[upper.cols()], 0.0);

  Walk walk(*this, tree, supernodes, factor);
  for (int row = 0; row < upper.cols(); ++row) {
    walk.beginRow(row);
    for (Sparse::InnerIterator entry(upper, row); entry; ++entry) {
      if (entry.row() <= row) walk.add(asInt(entry.row()), entry.value());
    }
  }
  std::sort(parts_.begin(), parts_.end(), [](const Part& a, const Part& b) {
    return std::tie(a.supernode, a.row, a.beginColumn) <
           std::tie(b.supernode, b.row, b.beginColumn);
  });
}

std::span<const RowPaths::Part> RowPaths::partsOf(int supernode, int row) const {
  const auto [begin, end] = std::equal_range(
      parts_.begin(), parts_.end(), Part{supernode, row, 0, 0}, [](const Part& a, const Part& b) {
        return std::tie(a.supernode, a.row) < std::tie(b.supernode, b.row);
      });
  return std::span<const Part>(parts_).subspan(asIndex(begin - parts_.begin()),
                                               asIndex(end - begin));
}

}  // namespace qelm::factor
