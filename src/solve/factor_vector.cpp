// Most of L lies in supernodes: runs of columns that have the same rows below the run (the
// tail).
//
//   column   4 5 6        x's entries of the tail, 9 and 12, are gathered once for the run.
//   row 5    x            Then all columns read and write them side by side, as vectors, and
//       6    x x          of L only the values are read, not the row numbers: 8 bytes for an
//       9    x x x        entry in place of 12.
//      12    x x x
//
// Going up, the entries of a column are subtracted one after the other, and the columns are read
// from the last to the first.
//
// Where L is larger than the caches, both ways wait for memory. Processors fetch ahead in rising
// order only, and begin anew with every column of a group, so the values that come next are asked
// for here.
#include "solve/factor_vector.h"

#include "interface/compiler.h"
#include "interface/index.h"

namespace qelm {
namespace {

using Numbers = Eigen::Map<Eigen::ArrayXd>;
using ConstNumbers = Eigen::Map<const Eigen::ArrayXd>;

/// Entries, 16 MB of values. With fewer, asking for them takes longer than it saves.
constexpr Eigen::Index kCached = 2'000'000;

/// L's arrays, and what can be told from them about runs of columns.
template <bool kIsCached>
class Columns {
 public:
  explicit Columns(const SparseBlock& lower)
      : count_(asInt(lower.cols())),
        starts_(lower.outerIndexPtr()),
        rows_(lower.innerIndexPtr()),
        values_(lower.valuePtr()) {}

  int count() const { return count_; }
  int size(int column) const { return starts_[column + 1] - starts_[column]; }
  const int* rows(int column) const { return rows_ + starts_[column]; }
  const double* values(int column) const { return values_ + starts_[column]; }

  /// Whether the next column has the same rows as this one, but for the first, which is itself.
  bool goesOn(int column) const {
    return size(column) > 0 && *rows(column) == column + 1 && size(column + 1) == size(column) - 1;
  }
  int pastRunFrom(int first) const {
    int past = first + 1;
    while (past < count_ && goesOn(past - 1)) ++past;
    return past;
  }
  int firstOfRunUpTo(int last) const {
    int first = last;
    while (first > 0 && goesOn(first - 1)) --first;
    return first;
  }

  /// Has the values ready that lie some kilobytes before or after the column's. In line, since GCC
  /// leaves out calls of functions that change nothing.
  QELM_INLINE void prefetchBefore(int column) const { prefetchAt(column, -kAhead); }
  QELM_INLINE void prefetchAfter(int column) const { prefetchAt(column, kAhead); }

 private:
  static constexpr int kAhead = 512;  // entries; twice and half of it give the same

  QELM_INLINE void prefetchAt(int column, int distance) const {
    if constexpr (kIsCached) return;
    constexpr int kCacheLine = 8;
    const double* const first = values(column);
    for (int k = 0; k < size(column); k += kCacheLine) prefetchToRead(first + k + distance);
  }

  int count_;
  const int* starts_;
  const int* rows_;
  const double* values_;
};

/// Shorter runs take no less time than their columns one by one.
constexpr int kShortestRun = 3;

/// Some columns of a run whose entries of x are not zero, in ascending order.
struct Group {
  static constexpr int kSize = 4;
  int count = 0;
  const double* tails[kSize];
  double pivots[kSize];
};

/// Each entry of the tail takes the columns one after the other.
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
void solveLowerAlone(const Columns& lower, int column, double* x) {
  const double pivot = x[column];
  if (pivot == 0) return;
  lower.prefetchAfter(column);
  const int* const rows = lower.rows(column);
  const double* const values = lower.values(column);
  for (int k = 0; k < lower.size(column); ++k) x[rows[k]] -= pivot * values[k];
}

template <class Columns>
void solveLowerRun(const Columns& lower, int first, int past, double* x, double* scratch) {
  const int* const rows = lower.rows(past - 1);
  Numbers tail(scratch, lower.size(past - 1));
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
  for (int column = first; column < past; ++column) {
    const double pivot = x[column];
    if (pivot == 0) continue;
    lower.prefetchAfter(column);
    const int inRun = past - 1 - column;
    const double* const values = lower.values(column);
    Numbers(x + column + 1, inRun) -= pivot * ConstNumbers(values, inRun);
    group.tails[group.count] = values + inRun;
    group.pivots[group.count++] = pivot;
    if (group.count == Group::kSize) flush();
  }
  flush();
  if (!gathered) return;
  for (int k = 0; k < tail.size(); ++k) x[rows[k]] = tail[k];
}

template <class Columns>
void solveUpperAlone(const Columns& lower, int column, const Eigen::VectorXd& diagonal, double* x) {
  lower.prefetchBefore(column);
  const int* const rows = lower.rows(column);
  const double* const values = lower.values(column);
  double sum = x[column] * (1.0 / diagonal[column]);
  for (int k = 0; k < lower.size(column); ++k) sum -= values[k] * x[rows[k]];
  x[column] = sum;
}

template <class Columns>
void solveUpperRun(const Columns& lower, int first, int last, const Eigen::VectorXd& diagonal,
                   double* x, double* scratch) {
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
void solveLower(const Columns& lower, double* x, double* scratch) {
  for (int first = 0; first < lower.count();) {
    const int past = lower.pastRunFrom(first);
    if (past - first >= kShortestRun) {
      solveLowerRun(lower, first, past, x, scratch);
    } else {
      for (int column = first; column < past; ++column) solveLowerAlone(lower, column, x);
    }
    first = past;
  }
}

template <class Columns>
void solveUpper(const Columns& lower, const Eigen::VectorXd& diagonal, double* x, double* scratch) {
  for (int last = lower.count() - 1; last >= 0;) {
    const int first = lower.firstOfRunUpTo(last);
    if (first == last) {
      solveUpperAlone(lower, last, diagonal, x);
    } else {
      solveUpperRun(lower, first, last, diagonal, x, scratch);
    }
    last = first - 1;
  }
}

template <class Solve>
void withColumnsOf(const SparseBlock& lower, Solve solve) {
  if (lower.nonZeros() <= kCached) {
    solve(Columns<true>(lower));
  } else {
    solve(Columns<false>(lower));
  }
}

}  // namespace

void solveLower(const SparseBlock& lower, double* x, double* scratch) {
  withColumnsOf(lower, [&](const auto& columns) { solveLower(columns, x, scratch); });
}

void solveDiagonalAndUpper(const SparseBlock& lower, const Eigen::VectorXd& diagonal, double* x,
                           double* scratch) {
  withColumnsOf(lower, [&](const auto& columns) { solveUpper(columns, diagonal, x, scratch); });
}

}  // namespace qelm
