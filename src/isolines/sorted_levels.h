// The levels of one isoline pass, sorted: the few that can cross a triangle are found by binary
// search.
#ifndef QELM_ISOLINES_SORTED_LEVELS_H
#define QELM_ISOLINES_SORTED_LEVELS_H

#include <cstdint>
#include <span>
#include <vector>

#include "interface/index.h"

namespace qelm {

class SortedLevels {
 public:
  /// Copies the levels: any doubles, in any order, repeated or not.
  explicit SortedLevels(std::span<const double> levels);

  /// The caller's level j.
  double operator[](std::int32_t j) const { return levels_[asIndex(j)]; }

  /// The indices of all levels, ascending.
  std::span<const std::int32_t> all() const { return all_; }

  /// The indices, ascending, of the levels in [low, high] and of all NaN levels. low and high are
  /// not NaN. Valid until the next call.
  std::span<const std::int32_t> within(double low, double high);

 private:
  std::vector<double> levels_;           // as the caller gave them
  std::vector<std::int32_t> all_;        // 0, 1, 2, ...
  std::vector<std::int32_t> nans_;       // indices of the NaN levels
  std::vector<double> sorted_;           // the other levels, ascending
  std::vector<std::int32_t> sortedIds_;  // their indices
  bool idsAscend_ = true;                // whether sortedIds_ is ascending
  std::vector<std::int32_t> found_;      // scratch of within()
};

}  // namespace qelm

#endif  // QELM_ISOLINES_SORTED_LEVELS_H
