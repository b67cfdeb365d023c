// Supernodes are mostly one or two columns wide at the bottom of the elimination tree; dense blocks
// would take three times as long there. Small subtrees are computed row by row, as Eigen's loop
// computes a whole matrix, but within one subtree at a time, so that all its columns stay in the
// first cache:
//
//         0  1  2          first the rows that are columns of the subtree,
//   0     p                each divided by the pivots p into columns of L,
//   1     .  p             then the rows below its root: all rows with entries
//   2     x  x  p          in the subtree
//   6     x  .  x
//   9     .  x  x          subtree 0 -> 2, 1 -> 2; rows 6 and 9 below
//
// A row's entries are gathered from the panels into a dense vector x, one element for each column
// of the subtree. Each column k of the row's paths in turn updates it,
//
//   x(i) -= L(i, k) * x(k)        for the rows i < r of the subtree in column k
//
// and x goes back to the panels as Y. (Davis, Direct Methods for Sparse Linear Systems, 2006, on
// up-looking factorisation.)
#include "factor/small_subtrees.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdint>

#include "factor/copy_few.h"
#include "interface/index.h"

namespace qelm::factor {
namespace {

/// Columns of one panel that lie on one path of a row.
struct PathColumns {
  int path;
  int begin;  ///< columns of the subtree, counted from 0
  int end;
};

/// Computes one subtree after the other.
class SubtreeFactorizer {
 public:
  SubtreeFactorizer(const SmallSubtrees& subtrees, const Supernodes& supernodes,
                    const RowPaths& paths, const FactorArrays& factor)
      : subtrees_(subtrees),
        supernodes_(supernodes),
        paths_(paths),
        factor_(factor),
        firstColumn_(supernodes.count()),
        entriesOfRow_(Eigen::VectorXi::Constant(supernodes.ofColumn.size(), kNone)),
        rowIndices_(std::size_t{kMostSubtreeColumns} * kMostSubtreeColumns),
        values_(rowIndices_.size()) {}

  /// The subtree that has this root. False if a pivot is zero or not finite.
  bool factorize(int root) {
    enter(root);
    for (const int s : members_) {
      for (int r = supernodes_.firstColumn(s); r < supernodes_.pastColumn(s); ++r) {
        if (!computeOwnRow(s, r)) return false;
      }
    }
    const Panel panel(factor_, supernodes_, root);
    for (int p = 0; p < panel.belowCount; ++p) computeRow(panel.rowIndices[p]);
    return true;
  }

 private:
  static constexpr int kNone = SmallSubtrees::kNone;

  /// The entries of a row in one panel.
  struct RowEntries {
    int supernode;
    int position;  ///< among the rows below the panel
    int next;      ///< those of the same row in the next higher supernode
  };

  /// Numbers the subtree's columns, and lists the entries of each row below a panel.
  void enter(int root) {
    members_.clear();
    for (int s = subtrees_.firstOf(root); s != kNone; s = subtrees_.nextOf(s)) {
      members_.push_back(s);
    }
    int count = 0;
    for (const int s : members_) {
      firstColumn_[s] = count;
      count += supernodes_.width(s);
    }
    std::fill_n(counts_.begin(), count, 0);
    entries_.clear();
    for (auto s = members_.rbegin(); s != members_.rend(); ++s) {
      const Panel panel(factor_, supernodes_, *s);
      for (int p = 0; p < panel.belowCount; ++p) {
        int& first = entriesOfRow_[panel.rowIndices[p]];
        entries_.push_back({*s, p, first});
        first = asInt(entries_.size()) - 1;
      }
    }
  }

  /// Gathers the row in x, and finds the order of its columns.
  void gather(int row) {
    columns_.clear();
    for (int e = entriesOfRow_[row]; e != kNone; e = at(e).next) {
      const int s = at(e).supernode;
      const Panel panel(factor_, supernodes_, s);
      copyFew(panel.belowRow(at(e).position), panel.width, &x_[asIndex(firstColumn_[s])]);
      const int path = paths_.ofSupernode(s)[asIndex(at(e).position)];
      if (path != RowPaths::kSplit) {
        insert({path, firstColumn_[s], firstColumn_[s] + panel.width});
        continue;
      }
      const auto parts = paths_.partsOf(s, row);
      for (std::size_t k = 0; k < parts.size(); ++k) {
        const int end = k + 1 < parts.size() ? parts[k + 1].beginColumn : panel.width;
        insert({parts[k].path, firstColumn_[s] + parts[k].beginColumn, firstColumn_[s] + end});
      }
    }
  }

  /// The path with the highest number comes first. The columns of a path are inserted in ascending
  /// order.
  void insert(const PathColumns& columns) {
    auto to = columns_.end();
    while (to != columns_.begin() && (to - 1)->path < columns.path) --to;
    columns_.insert(to, columns);
  }

  /// Stores x in the panels.
  void scatter(int row) {
    for (int e = entriesOfRow_[row]; e != kNone; e = at(e).next) {
      const Panel panel(factor_, supernodes_, at(e).supernode);
      copyFew(&x_[asIndex(firstColumn_[at(e).supernode])], panel.width,
              panel.belowRow(at(e).position));
    }
    entriesOfRow_[row] = kNone;
  }

  /// A row below the subtree's root.
  void computeRow(int row) {
    gather(row);
    for (const PathColumns& columns : columns_) {
      for (int k = columns.begin; k < columns.end; ++k) subtract(asIndex(k));
    }
    scatter(row);
  }

  /// A row that is a column of supernode `s`. The columns of `s` before it come last: every path
  /// goes through them up to the row.
  bool computeOwnRow(int s, int row) {
    gather(row);
    const Panel panel(factor_, supernodes_, s);
    const int before = row - panel.firstColumn;
    const int own = firstColumn_[s];
    copyFew(panel.triangleRow(before), before, &x_[asIndex(own)]);
    columns_.push_back({0, own, own + before});
    double& pivot = factor_.diagonal[row];
    for (const PathColumns& columns : columns_) {
      for (int k = columns.begin; k < columns.end; ++k) {
        subtract(asIndex(k));
        const double l = x_[asIndex(k)] / pivots_[asIndex(k)];
        pivot -= l * x_[asIndex(k)];
        append(asIndex(k), own + before, l);
      }
    }
    copyFew(&x_[asIndex(own)], before, panel.triangleRow(before));
    scatter(row);
    pivots_[asIndex(own + before)] = pivot;
    return pivot != 0 && std::isfinite(pivot);
  }

  void subtract(std::size_t k) {
    const double y = x_[k];
    const std::size_t begin = k * kMostSubtreeColumns;
    const std::size_t end = begin + asIndex(counts_[k]);
    for (std::size_t e = begin; e < end; ++e) x_[rowIndices_[e]] -= values_[e] * y;
  }

  void append(std::size_t column, int row, double value) {
    const std::size_t end = column * kMostSubtreeColumns + asIndex(counts_[column]++);
    rowIndices_[end] = static_cast<std::uint8_t>(row);
    values_[end] = value;
  }

  const RowEntries& at(int e) const { return entries_[asIndex(e)]; }

  const SmallSubtrees& subtrees_;
  const Supernodes& supernodes_;
  const RowPaths& paths_;
  const FactorArrays& factor_;
  std::vector<int> members_;      ///< supernodes of the subtree, ascending
  Eigen::VectorXi firstColumn_;   ///< of a supernode, counted from the subtree's first column
  Eigen::VectorXi entriesOfRow_;  ///< the first of a row's, index in entries_
  std::vector<RowEntries> entries_;
  std::vector<PathColumns> columns_;  ///< of the row, in the order of updates
  std::array<double, kMostSubtreeColumns> x_;
  std::array<double, kMostSubtreeColumns> pivots_;
  std::array<int, kMostSubtreeColumns> counts_;  ///< entries of each column so far
  // L within the subtree: the entries of column k from k * kMostSubtreeColumns on.
  std::vector<std::uint8_t> rowIndices_;
  std::vector<double> values_;
};

}  // namespace

SmallSubtrees::SmallSubtrees(const EliminationTree& tree, const Supernodes& supernodes,
                             int mostColumns)
    : roots_(Eigen::VectorXi::Constant(supernodes.count(), kNone)),
      first_(Eigen::VectorXi::Constant(supernodes.count(), kNone)),
      next_(supernodes.count()) {
  Eigen::VectorXi parents(supernodes.count());
  Eigen::VectorXi sizes = Eigen::VectorXi::Zero(supernodes.count());
  for (int s = 0; s < supernodes.count(); ++s) {
    const int column = tree.parent[supernodes.lastColumn(s)];
    parents[s] = column == kNoColumn ? kNone : supernodes.ofColumn[column];
    sizes[s] += supernodes.width(s);
    if (parents[s] != kNone) sizes[parents[s]] += sizes[s];
  }
  for (int s = supernodes.count() - 1; s >= 0; --s) {
    if (sizes[s] > mostColumns) continue;
    const int parent = parents[s];
    roots_[s] = parent != kNone && contains(parent) ? roots_[parent] : s;
    next_[s] = first_[roots_[s]];
    first_[roots_[s]] = s;
  }
}

bool factorizeSmall(const SmallSubtrees& subtrees, const Supernodes& supernodes,
                    const RowPaths& paths, const FactorArrays& factor) {
  SubtreeFactorizer factorizer(subtrees, supernodes, paths, factor);
  for (int s = 0; s < supernodes.count(); ++s) {
    if (subtrees.firstOf(s) != SmallSubtrees::kNone && !factorizer.factorize(s)) return false;
  }
  return true;
}

}  // namespace qelm::factor
