// Row by row, as Eigen's own loop goes through a whole matrix, but within one subtree at a time, so
// that all it touches stays in the first cache. First come the rows that are columns of the
// subtree, then the rows above it, which all stand in the tail of its root. The entries of a row
// are gathered from the panels into x, one for each column of the subtree, and each column k of the
// row's paths in turn subtracts
//
//   x(i) -= L(i, k) * x(k)        for the rows i < r of the subtree in column k
//
// Then x goes back to the panels, as Y, and, of rows within the subtree, divided by the pivots to
// the columns of L. Supernodes are mostly one or two columns wide here; blocks would take three
// times as long. (Davis, Direct Methods for Sparse Linear Systems, 2006, up-looking.)
#include "factor/small_subtrees.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdint>

#include "factor/copy_few.h"

namespace qelm::factor {
namespace {

/// Columns from `begin` on that a row meets together, all in one panel.
struct Piece {
  int path;
  int begin;  ///< column of the subtree, counted from 0
  int end;
};

/// One subtree's columns of L after the other's.
class SmallFactor {
 public:
  SmallFactor(const SmallSubtrees& subtrees, const Supernodes& supernodes, const RowPaths& paths,
              const FactorArrays& factor)
      : subtrees_(subtrees),
        supernodes_(supernodes),
        paths_(paths),
        factor_(factor),
        firstColumn_(supernodes.count()),
        entriesOfRow_(Eigen::VectorXi::Constant(supernodes.ofColumn.size(), kNone)),
        rows_(std::size_t{kMostColumns} * kMostColumns),
        values_(rows_.size()) {}

  /// The subtree that has this root. False if a pivot is zero or not finite.
  bool factorize(int root) {
    enter(root);
    for (const int s : members_) {
      for (int r = supernodes_.starts[s]; r < supernodes_.starts[s + 1]; ++r) {
        if (!computeOwnRow(s, r)) return false;
      }
    }
    const Panel panel(factor_, supernodes_, root);
    for (int p = 0; p < panel.tailSize; ++p) computeRow(panel.rows[p]);
    return true;
  }

 private:
  static constexpr int kNone = SmallSubtrees::kNone;

  /// A panel's part of a row.
  struct Entries {
    int supernode;
    int position;  ///< in the tail
    int next;      ///< of the same row, in a later supernode
  };

  /// Numbers the subtree's columns, and lists the panels that each row has entries in, upwards.
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
      for (int p = 0; p < panel.tailSize; ++p) {
        int& first = entriesOfRow_[panel.rows[p]];
        entries_.push_back({*s, p, first});
        first = static_cast<int>(entries_.size()) - 1;
      }
    }
  }

  /// Fetches the row from the panels, and finds in which order its columns come.
  void gather(int row) {
    pieces_.clear();
    for (int e = entriesOfRow_[row]; e != kNone; e = at(e).next) {
      const int s = at(e).supernode;
      const Panel panel(factor_, supernodes_, s);
      copyFew(panel.tailRow(at(e).position), panel.width, &x_[index(firstColumn_[s])]);
      const int path = paths_.ofTail(s)[index(at(e).position)];
      if (path != RowPaths::kSplit) {
        insert({path, firstColumn_[s], firstColumn_[s] + panel.width});
        continue;
      }
      const auto parts = paths_.partsOf(s, row);
      for (std::size_t k = 0; k < parts.size(); ++k) {
        const int end = k + 1 < parts.size() ? parts[k + 1].begin : panel.width;
        insert({parts[k].path, firstColumn_[s] + parts[k].begin, firstColumn_[s] + end});
      }
    }
  }

  /// The path with the highest number comes first; on a path the lower columns.
  void insert(const Piece& piece) {
    auto to = pieces_.end();
    while (to != pieces_.begin() && (to - 1)->path < piece.path) --to;
    pieces_.insert(to, piece);
  }

  void putBack(int row) {
    for (int e = entriesOfRow_[row]; e != kNone; e = at(e).next) {
      const Panel panel(factor_, supernodes_, at(e).supernode);
      copyFew(&x_[index(firstColumn_[at(e).supernode])], panel.width,
              panel.tailRow(at(e).position));
    }
    entriesOfRow_[row] = kNone;
  }

  /// A row above the subtree.
  void computeRow(int row) {
    gather(row);
    for (const Piece& piece : pieces_) {
      for (int k = piece.begin; k < piece.end; ++k) subtract(index(k));
    }
    putBack(row);
  }

  /// A row that is a column of supernode `s`, whose columns before it come last.
  bool computeOwnRow(int s, int row) {
    gather(row);
    const Panel panel(factor_, supernodes_, s);
    const int before = row - panel.first;
    const int own = firstColumn_[s];
    copyFew(panel.triangleRow(before), before, &x_[index(own)]);
    pieces_.push_back({0, own, own + before});
    double& pivot = factor_.diagonal[row];
    for (const Piece& piece : pieces_) {
      for (int k = piece.begin; k < piece.end; ++k) {
        subtract(index(k));
        const double l = x_[index(k)] / pivots_[index(k)];
        pivot -= l * x_[index(k)];
        append(index(k), own + before, l);
      }
    }
    copyFew(&x_[index(own)], before, panel.triangleRow(before));
    putBack(row);
    pivots_[index(own + before)] = pivot;
    return pivot != 0 && std::isfinite(pivot);
  }

  void subtract(std::size_t k) {
    const double y = x_[k];
    const std::size_t begin = k * kMostColumns;
    const std::size_t end = begin + index(counts_[k]);
    for (std::size_t e = begin; e < end; ++e) x_[rows_[e]] -= values_[e] * y;
  }

  void append(std::size_t column, int row, double value) {
    const std::size_t end = column * kMostColumns + index(counts_[column]++);
    rows_[end] = static_cast<std::uint8_t>(row);
    values_[end] = value;
  }

  static std::size_t index(int k) { return static_cast<std::size_t>(k); }
  const Entries& at(int e) const { return entries_[index(e)]; }

  const SmallSubtrees& subtrees_;
  const Supernodes& supernodes_;
  const RowPaths& paths_;
  const FactorArrays& factor_;
  std::vector<int> members_;      ///< supernodes of the subtree, upwards
  Eigen::VectorXi firstColumn_;   ///< of a supernode, among those of the subtree
  Eigen::VectorXi entriesOfRow_;  ///< the first of a row's
  std::vector<Entries> entries_;
  std::vector<Piece> pieces_;
  std::array<double, kMostColumns> x_;
  std::array<double, kMostColumns> pivots_;
  std::array<int, kMostColumns> counts_;  ///< of a column's entries so far
  // Of column k from k * kMostColumns on, downwards.
  std::vector<std::uint8_t> rows_;
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
    const int column = tree.parent[supernodes.starts[s + 1] - 1];
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
  SmallFactor small(subtrees, supernodes, paths, factor);
  for (int s = 0; s < supernodes.count(); ++s) {
    if (subtrees.firstOf(s) != SmallSubtrees::kNone && !small.factorize(s)) return false;
  }
  return true;
}

}  // namespace qelm::factor
