// A row's entries are taken in the order in which they are stored, and from each the tree is
// walked upwards to a column that was visited before, or to the row's own supernode. The
// columns that are new make a path. Where a path ends just where the one before begins, the
// two run one after the other in any case and count as one.
//
//   the tree            2 -> 3 -> 6 -> 8,  4 -> 6,  7 -> 8
//   row 9 of A          entries at 4, 7, 2 in this order
//   its paths           {4, 6, 8}, {7}, {2, 3}
//   updates come by     2, 3, then 7, then 4, 6, 8
//
// A supernode counts as one node, but a path may begin inside it. A later one then takes the
// rest of its columns, and if others were found between the two, the supernode is split for
// this row.
#include "factor/row_paths.h"

#include <algorithm>
#include <tuple>

namespace qelm::factor {
class RowPaths::Walk {
  /// What a walk knows of a supernode.
  struct Visited {
    int row = kNoColumn;  ///< the last row that came by
    int lowest = 0;       ///< the lowest of its columns that this row visited
    int position = -1;    ///< of this row in the tail
  };

 public:
  Walk(RowPaths& paths, const EliminationTree& tree, const Supernodes& supernodes,
       const FactorArrays& factor)
      : paths_(paths),
        tree_(tree),
        supernodes_(supernodes),
        factor_(factor),
        visited_(static_cast<std::size_t>(supernodes.count())) {}

  void beginRow(int row) {
    row_ = row;
    own_ = supernodes_.ofColumn[row];
    number_ = -1;
    begin_ = kNoColumn;
    factor_.diagonal[row] = 0;
  }

  /// Values start from zero: -0.0 becomes 0.0.
  void add(int column, double value) {
    if (column == row_) {
      factor_.diagonal[row_] += value;
      return;
    }
    followPath(column);
    const int s = supernodes_.ofColumn[column];
    const Panel panel(factor_, supernodes_, s);
    double* const entries = s == own_ ? panel.triangleRow(row_ - panel.first)
                                      : panel.tailRow(visited_[index(s)].position);
    entries[column - panel.first] += value;
  }

 private:
  static std::size_t index(int s) { return static_cast<std::size_t>(s); }

  void followPath(int column) {
    path_.clear();
    int node = column;
    int s = supernodes_.ofColumn[node];
    for (; s != own_ && visited_[index(s)].row != row_; s = supernodes_.ofColumn[node]) {
      enter(s, node);
      path_.push_back(s);
      node = tree_.parent[supernodes_.starts[s + 1] - 1];
    }
    const bool takesTheRest = s != own_ && node < visited_[index(s)].lowest;
    if (path_.empty() && !takesTheRest) return;
    const bool goesOn = s != own_ && (takesTheRest ? visited_[index(s)].lowest : node) == begin_;
    if (!goesOn) ++number_;
    begin_ = column;
    if (number_ >= kSplit) paths_.fits_ = false;
    for (const int passed : path_) number(passed) = static_cast<Number>(number_);
    if (takesTheRest) takeRest(s, node);
  }

  void enter(int s, int column) {
    Visited& visited = visited_[index(s)];
    const Panel panel(factor_, supernodes_, s);
    visited.row = row_;
    visited.lowest = column;
    panel.rows[++visited.position] = row_;
  }

  Number& number(int s) {
    return paths_.numbers_[paths_.tailStarts_[index(s)] + index(visited_[index(s)].position)];
  }

  /// The path enters a supernode below the columns that were visited before.
  void takeRest(int s, int column) {
    Visited& visited = visited_[index(s)];
    const auto path = static_cast<Number>(number_);
    const int first = supernodes_.starts[s];
    Number& known = number(s);
    if (known == kSplit) {
      Part& last = paths_.parts_.back();
      if (last.supernode == s && last.row == row_ && last.path == path) {
        last.begin = column - first;
      } else {
        paths_.parts_.push_back({s, row_, column - first, path});
      }
    } else if (known != path) {
      paths_.parts_.push_back({s, row_, visited.lowest - first, known});
      paths_.parts_.push_back({s, row_, column - first, path});
      known = kSplit;
    }
    visited.lowest = column;
  }

  RowPaths& paths_;
  const EliminationTree& tree_;
  const Supernodes& supernodes_;
  const FactorArrays& factor_;
  std::vector<Visited> visited_;
  int row_ = kNoColumn;
  int own_ = kNoColumn;    ///< the row's supernode
  int number_ = -1;        ///< of the last path
  int begin_ = kNoColumn;  ///< its first column
  std::vector<int> path_;  ///< supernodes on the present path
};

RowPaths::RowPaths(const Sparse& upper, const EliminationTree& tree, const Supernodes& supernodes,
                   const FactorArrays& factor) {
  tailStarts_.reserve(static_cast<std::size_t>(supernodes.count()) + 1);
  tailStarts_.push_back(0);
  for (int s = 0; s < supernodes.count(); ++s) {
    const int lastColumn = supernodes.starts[s + 1] - 1;
    tailStarts_.push_back(tailStarts_.back() + static_cast<std::size_t>(tree.counts[lastColumn]));
  }
  numbers_.resize(tailStarts_.back());
  std::fill_n(factor.values, factor.starts[upper.cols()], 0.0);

  Walk walk(*this, tree, supernodes, factor);
  for (int row = 0; row < upper.cols(); ++row) {
    walk.beginRow(row);
    for (Sparse::InnerIterator entry(upper, row); entry; ++entry) {
      if (entry.row() <= row) walk.add(static_cast<int>(entry.row()), entry.value());
    }
  }
  std::sort(parts_.begin(), parts_.end(), [](const Part& a, const Part& b) {
    return std::tie(a.supernode, a.row, a.begin) < std::tie(b.supernode, b.row, b.begin);
  });
}

std::span<const RowPaths::Part> RowPaths::partsOf(int supernode, int row) const {
  const auto [begin, end] = std::equal_range(
      parts_.begin(), parts_.end(), Part{supernode, row, 0, 0}, [](const Part& a, const Part& b) {
        return std::tie(a.supernode, a.row) < std::tie(b.supernode, b.row);
      });
  return std::span<const Part>(parts_).subspan(static_cast<std::size_t>(begin - parts_.begin()),
                                               static_cast<std::size_t>(end - begin));
}

}  // namespace qelm::factor
