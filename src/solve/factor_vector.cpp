#include "solve/factor_vector.h"

#include "interface/compiler.h"
#include "interface/index.h"

namespace qelm {
namespace {

using Numbers = Eigen::Map<Eigen::ArrayXd>;
using ConstNumbers = Eigen::Map<const Eigen::ArrayXd>;

/// Entries of L, 16 MB of values. With fewer, prefetching takes longer than it saves.
constexpr Eigen::Index kMostCachedEntries = 2'000'000;

/// L's compressed columns, and the supernodes that show in them.
template <bool kIsCached>
class Columns {
 public:
  explicit Columns(const SparseBlock& lower)
      : count_(asInt(lower.cols())),
        columnPointers_(lower.outerIndexPtr()),
        rows_(lower.innerIndexPtr()),
        values_(lower.valuePtr()) {}

  int count() const { return count_; }
  int size(int column) const { return columnPointers_[column + 1] - columnPointers_[column]; }
  const int* rows(int column) const { return rows_ + columnPointers_[column]; }
  const double* values(int column) const { return values_ + columnPointers_[column]; }

  /// Whether the next column's index and its rows are the rows of this column.
  bool nextHasSameRows(int column) const {
    return size(column) > 0 && *rows(column) == column + 1 && size(column + 1) == size(column) - 1;
  }
  /// One past the last column of the supernode that starts with `first`.
  int endOfSupernode(int first) const {
    int end = first + 1;
    while (end < count_ && nextHasSameRows(end - 1)) ++end;
    return end;
  }
  /// The first column of the supernode that ends with `last`.
  int startOfSupernode(int last) const {
    int first = last;
    while (first > 0 && nextHasSameRows(first - 1)) --first;
    return first;
  }

  /// Prefetch the values that lie some kilobytes before or after the column's. In line, since GCC
  /// leaves out calls of functions that change nothing.
  QELM_INLINE void prefetchBefore(int column) const { prefetchAt(column, -kAhead); }
  QELM_INLINE void prefetchAfter(int column) const { prefetchAt(column, kAhead); }

 private:
  static constexpr int kAhead = 512;  // entries; 256 and 1024 give the same times

  QELM_INLINE void prefetchAt(int column, int distance) const {
    if constexpr (kIsCached) return;
    constexpr int kCacheLine = 8;
    const double* const first = values(column);
    for (int k = 0; k < size(column); k += kCacheLine) prefetchToRead(first + k + distance);
  }

  int count_;
  const int* columnPointers_;
  const int* rows_;
  const double* values_;
};

/// Narrower supernodes take no less time than their columns one by one.
constexpr int kNarrowestSupernode = 3;

/// Up to four columns of a supernode whose entries of x are not zero, in ascending order.
struct Group {
  static constexpr int kSize = 4;
  int count = 0;
  const double* tails[kSize];  ///< the values of each column in the tail's rows
  double pivots[kSize];        ///< the columns' entries of x
};

/// Subtracts the columns from the tail, one after the other from each entry.
void subtract(const Group& group, Numbers tail) {
  const auto product = [&](int k) {
    return group.pivots[k] * ConstNumbers(group.tails[k], tail.size());
  };
  if (group.count == Group::kSize) {
    tail = (((tail - product(0)) - product(1)) - product(2)) - product(3);
  } else {
    for (int k = 0; k < group.count; ++k) tail -= product(k);
  }
}

template <class Columns>
void substituteForwardColumn(const Columns& lower, int column, double* x) {
  const double pivot = x[column];
  if (pivot == 0) return;
  lower.prefetchAfter(column);
  const int* const rows = lower.rows(column);
  const double* const values = lower.values(column);
  for (int k = 0; k < lower.size(column); ++k) x[rows[k]] -= pivot * values[k];
}

template <class Columns>
void substituteForwardSupernode(const Columns& lower, int first, int end, double* x,
                                double* scratch) {
  const int* const rows = lower.rows(end - 1);
  Numbers tail(scratch, lower.size(end - 1));
  bool gathered = false;
  Group group;
  const auto flush = [&] {
    if (group.count == 0) return;
    if (!gathered) {
      for (int k = 0; k < tail.size(); ++k) tail[k] = x[rows[k]];
      gathered = true;
    }
    subtract(group, tail);
    group.count = 0;
  };
  for (int column = first; column < end; ++column) {
    const double pivot = x[column];
    if (pivot == 0) continue;
    lower.prefetchAfter(column);
    const int inSupernode = end - 1 - column;
    const double* const values = lower.values(column);
    Numbers(x + column + 1, inSupernode) -= pivot * ConstNumbers(values, inSupernode);
    group.tails[group.count] = values + inSupernode;
    group.pivots[group.count++] = pivot;
    if (group.count == Group::kSize) flush();
  }
  flush();
  if (!gathered) return;
  for (int k = 0; k < tail.size(); ++k) x[rows[k]] = tail[k];
}

template <class Columns>
void substituteBackColumn(const Columns& lower, int column, const Eigen::VectorXd& diagonal,
                          double* x) {
  lower.prefetchBefore(column);
  const int* const rows = lower.rows(column);
  const double* const values = lower.values(column);
  double sum = x[column] * (1.0 / diagonal[column]);
  for (int k = 0; k < lower.size(column); ++k) sum -= values[k] * x[rows[k]];
  x[column] = sum;
}

template <class Columns>
void substituteBackSupernode(const Columns& lower, int first, int last,
                             const Eigen::VectorXd& diagonal, double* x, double* scratch) {
  const int* const rows = lower.rows(last);
  const int tailSize = lower.size(last);
  for (int k = 0; k < tailSize; ++k) scratch[k] = x[rows[k]];
  for (int column = last; column >= first; --column) {
    lower.prefetchBefore(column);
    const double* values = lower.values(column);
    double sum = x[column] * (1.0 / diagonal[column]);
    for (int row = column + 1; row <= last; ++row) sum -= *values++ * x[row];
    for (int k = 0; k < tailSize; ++k) sum -= values[k] * scratch[k];
    x[column] = sum;
  }
}

template <class Columns>
void substituteForward(const Columns& lower, double* x, double* scratch) {
  for (int first = 0; first < lower.count();) {
    const int end = lower.endOfSupernode(first);
    if (end - first >= kNarrowestSupernode) {
      substituteForwardSupernode(lower, first, end, x, scratch);
    } else {
      for (int column = first; column < end; ++column) substituteForwardColumn(lower, column, x);
    }
    first = end;
  }
}

template <class Columns>
void substituteBack(const Columns& lower, const Eigen::VectorXd& diagonal, double* x,
                    double* scratch) {
  for (int last = lower.count() - 1; last >= 0;) {
    const int first = lower.startOfSupernode(last);
    if (first == last) {
      substituteBackColumn(lower, last, diagonal, x);
    } else {
      substituteBackSupernode(lower, first, last, diagonal, x, scratch);
    }
    last = first - 1;
  }
}

template <class Solve>
void withColumnsOf(const SparseBlock& lower, Solve solve) {
  if (lower.nonZeros() <= kMostCachedEntries) {
    solve(Columns<true>(lower));
  } else {
    solve(Columns<false>(lower));
  }
}

}  // namespace

void substituteForward(const SparseBlock& lower, double* x, double* scratch) {
  withColumnsOf(lower, [&](const auto& columns) { substituteForward(columns, x, scratch); });
}

void substituteBack(const SparseBlock& lower, const Eigen::VectorXd& diagonal, double* x,
                    double* scratch) {
  withColumnsOf(lower, [&](const auto& columns) { substituteBack(columns, diagonal, x, scratch); });
}

}  // namespace qelm
