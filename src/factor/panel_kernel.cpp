// A group of rows by a block of columns, the tile, is held in registers while the depth k is
// walked:
//
//              block of columns
//   row        t t t t  t t t t        for each k: load the block's L(c, k) as vectors, spread each
//   row        t t t t  t t t t        row's Y(r, k) over a vector, multiply, subtract
//              vector   vector
//
// The subtractions of one entry are a chain whose order is fixed, so vectors lie across entries.
// Nothing is added up beforehand and no product is fused with its subtraction: that is how the bits
// stay the same with vectors of any length.
#include "factor/panel_kernel.h"

#include <array>

#include "interface/compiler.h"
#include "interface/vectors.h"

namespace qelm::factor {
namespace {

/// kRows rows by one block of columns, in vectors of kLanes.
template <int kLanes, int kRows>
class Tile {
 public:
  using Vector = typename VectorOf<kLanes>::Type;
  static constexpr int kVectors = kBlock / kLanes;

  QELM_INLINE explicit Tile(const RowPair* rows) : rows_(rows) {
    forEach([&](auto r, auto v) __attribute__((always_inline)) {
      load(sums_[r][v], rows_[r].target + v * kLanes);
    });
  }

  QELM_INLINE void subtract(const double* columns, std::ptrdiff_t k) {
    unrolled<kVectors>([&](auto v) __attribute__((always_inline)) {
      Vector column;
      load(column, columns + k * kBlock + std::ptrdiff_t{v * kLanes});
      unrolled<kRows>([&](auto r) __attribute__((always_inline)) {
        sums_[r][v] -= column * rows_[r].source[k];
      });
    });
  }

  template <int k>
  QELM_INLINE void substitute(const double* columns) {
    std::array<double, kRows> solved;
    unrolled<kRows>([&](auto r) __attribute__((always_inline)) {
      solved[r] = sums_[r][k / kLanes][k % kLanes];
    });
    // Vectors before k's are solved.
    unrolled<kVectors - k / kLanes>([&](auto v) __attribute__((always_inline)) {
      constexpr int kVector = k / kLanes + v;
      Vector column;
      load(column, columns + std::ptrdiff_t{k * kBlock + kVector * kLanes});
      unrolled<kRows>([&](auto r) __attribute__((always_inline)) {
        sums_[r][kVector] -= column * solved[r];
      });
    });
  }

  QELM_INLINE void finish() const {
    forEach([&](auto r, auto v) __attribute__((always_inline)) {
      store(sums_[r][v], rows_[r].target + v * kLanes);
    });
  }

 private:
  template <class Body>
  QELM_INLINE static void forEach(Body body) {
    unrolled<kRows>([&](auto r) __attribute__((always_inline)) {
      unrolled<kVectors>([&](auto v) __attribute__((always_inline)) { body(r, v); });
    });
  }

  const RowPair* rows_;
  Vector sums_[kRows][kVectors];
};

template <int kLanes, int kRows>
QELM_INLINE void updateRows(std::span<const RowPair> rows, const double* columns, int depth) {
  for (std::size_t r = 0; r < rows.size(); r += kRows) {
    Tile<kLanes, kRows> tile(rows.data() + r);
    for (int k = 0; k < depth; ++k) tile.subtract(columns, k);
    tile.finish();
  }
}

template <int kLanes, int kRows>
QELM_INLINE void substituteRows(std::span<const RowPair> rows, const double* columns) {
  for (std::size_t r = 0; r < rows.size(); r += kRows) {
    Tile<kLanes, kRows> tile(rows.data() + r);
    unrolled<kBlock - 1>([&](auto k) __attribute__((always_inline)) {
      tile.template substitute<k>(columns);
    });
    tile.finish();
  }
}

// 16 registers of two doubles: 2 x 4 sums, 4 of the columns, 2 of the rows.
void updateBaseline(std::span<const RowPair> rows, const double* columns, int depth) {
  updateRows<2, 2>(rows, columns, depth);
}
void substituteBaseline(std::span<const RowPair> rows, const double* columns) {
  substituteRows<2, 2>(rows, columns);
}

#if defined(QELM_X86)
// 16 registers of four doubles.
__attribute__((target("avx2"))) void updateAvx2(std::span<const RowPair> rows,
                                                const double* columns, int depth) {
  updateRows<4, 4>(rows, columns, depth);
}
__attribute__((target("avx2"))) void substituteAvx2(std::span<const RowPair> rows,
                                                    const double* columns) {
  substituteRows<4, 4>(rows, columns);
}

// 32 registers of eight doubles.
__attribute__((target("avx512f"))) void updateAvx512(std::span<const RowPair> rows,
                                                     const double* columns, int depth) {
  updateRows<8, 8>(rows, columns, depth);
}
__attribute__((target("avx512f"))) void substituteAvx512(std::span<const RowPair> rows,
                                                         const double* columns) {
  substituteRows<8, 8>(rows, columns);
}

constexpr PanelKernel kAll[] = {{"AVX-512", 8, updateAvx512, substituteAvx512},
                                {"AVX2", 4, updateAvx2, substituteAvx2},
                                {"baseline", 2, updateBaseline, substituteBaseline}};

std::size_t fastest() { return hasAvx512() ? 0 : hasAvx2() ? 1 : 2; }
#else
constexpr PanelKernel kAll[] = {{"baseline", 2, updateBaseline, substituteBaseline}};

std::size_t fastest() { return 0; }
#endif

}  // namespace

std::span<const PanelKernel> panelKernels() {
  return std::span<const PanelKernel>(kAll).subspan(fastest());
}

}  // namespace qelm::factor
