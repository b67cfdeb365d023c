// The levels of one isoline pass, arranged so that the few that can cross a
// triangle are found without looking at the others.
#ifndef QELM_ISOLINES_LEVEL_SET_H
#define QELM_ISOLINES_LEVEL_SET_H

#include <cstdint>
#include <span>
#include <vector>

namespace qelm {

class LevelSet {
 public:
  /// Copies the levels: any doubles, in any order, repeated or not.
  explicit LevelSet(std::span<const double> levels);

  /// The level with the caller's number j.
  double operator[](std::int32_t j) const { return levels_[static_cast<std::size_t>(j)]; }

  /// The numbers of all levels, ascending.
  std::span<const std::int32_t> all() const { return all_; }

  /// The numbers, ascending, of the levels in [low, high] and of all NaN levels.
  /// low and high are not NaN. Valid until the next call.
  std::span<const std::int32_t> within(double low, double high);

 private:
  std::vector<double> levels_;           // as the caller gave them
  std::vector<std::int32_t> all_;        // 0, 1, 2, ...
  std::vector<std::int32_t> nans_;       // numbers of the NaN levels
  std::vector<double> sorted_;           // the other levels, ascending
  std::vector<std::int32_t> sortedIds_;  // their numbers
  bool idsAscend_ = true;                // sortedIds_ is ascending as it is
  std::vector<std::int32_t> found_;      // scratch of within()
};

}  // namespace qelm

#endif  // QELM_ISOLINES_LEVEL_SET_H
