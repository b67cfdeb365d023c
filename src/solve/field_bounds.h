// Keeps fields within the range of the prescribed values that bound them: the discrete maximum
// principle, made exact.
//
// With cotangent weights that are not negative, each free value of a harmonic field is a mean of
// its neighbours' values. So it lies between the least and the greatest value prescribed next to
// its region: the free vertices that entries of the matrix connect with it. Rounding can leave that
// range, and by much where the weights of one row differ so much that their sum, the diagonal,
// cannot hold the small ones. A value outside is moved to the nearest bound: no error grows by
// that, and the promise is exact.
//
//   prescribed   region 0   prescribed   region 1     the fields in region 0 stay within the values
//       A ------- . - . ------- B ------- . - .       at A and B, in region 1 within those at B
//
// Cost: union-find over the entries of the free-free block at construction; one look at each entry
// of the free-fixed block and at each free value for a field.
#ifndef QELM_SOLVE_FIELD_BOUNDS_H
#define QELM_SOLVE_FIELD_BOUNDS_H

#include <Eigen/Core>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <vector>

#include "interface/index.h"
#include "interface/mesh_system.h"

namespace qelm {

/// Regions of a system's free vertices, numbered from 0 in the order of their lowest vertices.
struct FieldBounds {
  std::vector<std::int32_t> region;  ///< of each free vertex
  std::int32_t regionCount = 0;
};

FieldBounds boundsOf(const SparseBlock& freeFree);

/// The least and the greatest prescribed value next to each region, for several fields side by
/// side.
class FieldRanges {
 public:
  FieldRanges() = default;
  FieldRanges(const FieldBounds& bounds, std::size_t width)
      : bounds_(&bounds), ranges_(2 * asIndex(bounds.regionCount) * width) {}

  bool areKept() const { return bounds_ != nullptr; }

  /// fixed(j) and free(i) give `Width` values of prescribed vertex j and free vertex i. A NaN
  /// bounds nothing and stays a NaN; a region without a bound stays as it is.
  template <int Width, class Fixed, class Free>
  void keep(const SparseBlock& freeFixed, Fixed fixed, Free free) {
    constexpr auto kInfinity = std::numeric_limits<double>::infinity();
    for (std::int32_t r = 0; r < bounds_->regionCount; ++r) {
      for (std::size_t k = 0; k < Width; ++k) {
        low<Width>(r)[k] = kInfinity;
        high<Width>(r)[k] = -kInfinity;
      }
    }
    for (Eigen::Index j = 0; j < freeFixed.outerSize(); ++j) {
      for (SparseBlock::InnerIterator entry(freeFixed, j); entry; ++entry) {
        widen<Width>(regionOf(entry.row()), fixed(j));
      }
    }
    for (std::size_t i = 0; i < bounds_->region.size(); ++i) {
      const auto vertex = static_cast<Eigen::Index>(i);
      moveInside<Width>(regionOf(vertex), free(vertex));
    }
  }

 private:
  std::int32_t regionOf(Eigen::Index vertex) const { return bounds_->region[asIndex(vertex)]; }
  template <int Width>
  double* low(std::int32_t region) {
    return ranges_.data() + 2 * asIndex(region) * Width;
  }
  template <int Width>
  double* high(std::int32_t region) {
    return low<Width>(region) + Width;
  }

  template <int Width, class Row>
  void widen(std::int32_t region, const Row& values) {
    double* const lows = low<Width>(region);
    double* const highs = high<Width>(region);
    for (int k = 0; k < Width; ++k) {
      const double value = values[k];
      lows[k] = value < lows[k] ? value : lows[k];
      highs[k] = value > highs[k] ? value : highs[k];
    }
  }

  template <int Width, class Row>
  void moveInside(std::int32_t region, Row&& values) {
    const double* const lows = low<Width>(region);
    const double* const highs = high<Width>(region);
    for (int k = 0; k < Width; ++k) {
      if (!(lows[k] <= highs[k])) continue;
      const double value = values[k];
      const double raised = value < lows[k] ? lows[k] : value;
      values[k] = raised > highs[k] ? highs[k] : raised;
    }
  }

  const FieldBounds* bounds_ = nullptr;
  std::vector<double> ranges_;
};

}  // namespace qelm

#endif  // QELM_SOLVE_FIELD_BOUNDS_H
