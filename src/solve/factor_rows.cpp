#include "solve/factor_rows.h"

#include <algorithm>

#include "interface/compiler.h"
#include "interface/vectors.h"

namespace qelm {
namespace {

template <int kWidth>
QELM_INLINE double* rowOf(double* rows, Eigen::Index i) {
  return rows + i * kWidth;
}

/// row -= pivot * entry, where the pivot is not zero. A single solve skips the column of a zero
/// pivot; each right-hand side here must do the same, or a -0.0 might become 0.0, and 0 times an
/// infinite entry NaN.
template <int kWidth>
QELM_INLINE void subtractWhereNonzero(double* row, const double* pivot, double entry) {
  for (int k = 0; k < kWidth; ++k) {
    const double difference = row[k] - pivot[k] * entry;
    row[k] = pivot[k] != 0 ? difference : row[k];
  }
}

template <int kWidth>
QELM_INLINE int nonzeroCount(const double* row) {
  int count = 0;
  for (int k = 0; k < kWidth; ++k) count += row[k] != 0;
  return count;
}

/// Holds one row in vectors.
template <int kWidth, int kMostLanes>
class RowVectors {
  static constexpr int kLanes = std::min(kWidth, kMostLanes);
  static constexpr int kVectors = kWidth / kLanes;
  using Vector = typename VectorOf<kLanes>::Type;

 public:
  QELM_INLINE explicit RowVectors(const double* row) {
    forEach([&](auto v) __attribute__((always_inline)) { load(vectors_[v], row + v * kLanes); });
  }

  QELM_INLINE void multiply(double factor) {
    forEach([&](auto v) __attribute__((always_inline)) { vectors_[v] *= factor; });
  }

  /// *this -= entry * row
  QELM_INLINE void subtract(double entry, const double* row) {
    forEach([&](auto v) __attribute__((always_inline)) {
      Vector other;
      load(other, row + v * kLanes);
      vectors_[v] -= entry * other;
    });
  }

  /// row -= *this * entry
  QELM_INLINE void subtractFrom(double* row, double entry) const {
    forEach([&](auto v) __attribute__((always_inline)) {
      Vector other;
      load(other, row + v * kLanes);
      other -= vectors_[v] * entry;
      store(other, row + v * kLanes);
    });
  }

  QELM_INLINE void storeTo(double* row) const {
    forEach([&](auto v) __attribute__((always_inline)) { store(vectors_[v], row + v * kLanes); });
  }

 private:
  template <class Body>
  QELM_INLINE static void forEach(Body body) {
    unrolled<kVectors>(body);
  }

  Vector vectors_[kVectors];
};

constexpr int kAhead = 512;  // entries

/// Prefetches as many values and row indices as the column has, `distance` entries away. Processors
/// fetch ahead in rising order only, and the rows that a column reads lie between.
QELM_INLINE void prefetchAt(const SparseBlock& lower, Eigen::Index column, int distance) {
  constexpr int kCacheLine = 64;
  constexpr int kValues = kCacheLine / sizeof(double);
  constexpr int kIndices = kCacheLine / sizeof(int);
  const int* const columnPointers = lower.outerIndexPtr() + column;
  for (int k = columnPointers[0]; k < columnPointers[1]; k += kValues) {
    prefetchToRead(lower.valuePtr() + k + distance);
  }
  for (int k = columnPointers[0]; k < columnPointers[1]; k += kIndices) {
    prefetchToRead(lower.innerIndexPtr() + k + distance);
  }
}

template <int kWidth, int kLanes>
QELM_INLINE void forward(const SparseBlock& lower, double* rows) {
  const int* const columnPointers = lower.outerIndexPtr();
  const int* const rowIndices = lower.innerIndexPtr();
  const double* const values = lower.valuePtr();
  for (Eigen::Index j = 0; j < lower.cols(); ++j) {
    const double* const pivot = rowOf<kWidth>(rows, j);
    prefetchAt(lower, j, kAhead);
    const int nonzero = nonzeroCount<kWidth>(pivot);
    if (nonzero == kWidth) {
      const RowVectors<kWidth, kLanes> pivots(pivot);
      for (int k = columnPointers[j]; k < columnPointers[j + 1]; ++k) {
        pivots.subtractFrom(rowOf<kWidth>(rows, rowIndices[k]), values[k]);
      }
    } else if (nonzero > 0) {
      for (int k = columnPointers[j]; k < columnPointers[j + 1]; ++k) {
        subtractWhereNonzero<kWidth>(rowOf<kWidth>(rows, rowIndices[k]), pivot, values[k]);
      }
    }
  }
}

template <int kWidth, int kLanes>
QELM_INLINE void back(const SparseBlock& lower, const Eigen::VectorXd& diagonal, double* rows) {
  const int* const columnPointers = lower.outerIndexPtr();
  const int* const rowIndices = lower.innerIndexPtr();
  const double* const values = lower.valuePtr();
  for (Eigen::Index j = lower.cols() - 1; j >= 0; --j) {
    prefetchAt(lower, j, -kAhead);
    RowVectors<kWidth, kLanes> sums(rowOf<kWidth>(rows, j));
    sums.multiply(1.0 / diagonal.data()[j]);
    for (int k = columnPointers[j]; k < columnPointers[j + 1]; ++k) {
      sums.subtract(values[k], rowOf<kWidth>(rows, rowIndices[k]));
    }
    sums.storeTo(rowOf<kWidth>(rows, j));
  }
}

template <int kWidth>
void forwardBaseline(const SparseBlock& lower, double* rows) {
  forward<kWidth, 2>(lower, rows);
}
template <int kWidth>
void backBaseline(const SparseBlock& lower, const Eigen::VectorXd& diagonal, double* rows) {
  back<kWidth, 2>(lower, diagonal, rows);
}

#if defined(QELM_X86)
template <int kWidth>
__attribute__((target("avx2"))) void forwardAvx2(const SparseBlock& lower, double* rows) {
  forward<kWidth, 4>(lower, rows);
}
template <int kWidth>
__attribute__((target("avx2"))) void backAvx2(const SparseBlock& lower,
                                              const Eigen::VectorXd& diagonal, double* rows) {
  back<kWidth, 4>(lower, diagonal, rows);
}

template <int kWidth>
__attribute__((target("avx512f"))) void forwardAvx512(const SparseBlock& lower, double* rows) {
  forward<kWidth, 8>(lower, rows);
}
template <int kWidth>
__attribute__((target("avx512f"))) void backAvx512(const SparseBlock& lower,
                                                   const Eigen::VectorXd& diagonal, double* rows) {
  back<kWidth, 8>(lower, diagonal, rows);
}

template <int kWidth>
constexpr RowSubstitution kAll[] = {{"AVX-512", forwardAvx512<kWidth>, backAvx512<kWidth>},
                                    {"AVX2", forwardAvx2<kWidth>, backAvx2<kWidth>},
                                    {"baseline", forwardBaseline<kWidth>, backBaseline<kWidth>}};

std::size_t fastest() { return hasAvx512() ? 0 : hasAvx2() ? 1 : 2; }
#else
template <int kWidth>
constexpr RowSubstitution kAll[] = {{"baseline", forwardBaseline<kWidth>, backBaseline<kWidth>}};

std::size_t fastest() { return 0; }
#endif

}  // namespace

template <int Width>
std::span<const RowSubstitution> rowSubstitutions() {
  return std::span<const RowSubstitution>(kAll<Width>).subspan(fastest());
}

template std::span<const RowSubstitution> rowSubstitutions<2>();
template std::span<const RowSubstitution> rowSubstitutions<4>();
template std::span<const RowSubstitution> rowSubstitutions<8>();
template std::span<const RowSubstitution> rowSubstitutions<16>();
template std::span<const RowSubstitution> rowSubstitutions<32>();

}  // namespace qelm
