#include "isolines/curve_levels.h"

#include <algorithm>
#include <cmath>
#include <cstddef>

#include "interface/index.h"

namespace qelm {
namespace {

/// Counts the levels at or below a value: guesses as if the levels were evenly spaced, which they
/// mostly are, and searches where the guess is wrong.
class RankFinder {
 public:
  explicit RankFinder(std::span<const double> levels) : levels_(levels) {
    if (levels.size() < 2) return;
    perUnit_ = static_cast<double>(levels.size() - 1) / (levels.back() - levels.front());
  }

  std::uint32_t operator()(double value) const {
    if (std::isnan(value)) return kHoleRank;
    const std::size_t guess = evenlySpacedRank(value);
    if (isRank(guess, value)) return static_cast<std::uint32_t>(guess);
    const auto above = std::upper_bound(levels_.begin(), levels_.end(), value);
    return static_cast<std::uint32_t>(above - levels_.begin());
  }

 private:
  /// A guess in 0 .. levels_.size(). Infinite levels or values may make `steps` NaN, for which the
  /// comparison gives 0.
  std::size_t evenlySpacedRank(double value) const {
    if (levels_.empty()) return 0;
    const double steps = (value - levels_.front()) * perUnit_;
    if (!(steps >= 0)) return 0;
    const auto last = levels_.size() - 1;
    return steps < static_cast<double>(last) ? static_cast<std::size_t>(steps) + 1 : last + 1;
  }

  bool isRank(std::size_t rank, double value) const {
    return (rank == 0 || levels_[rank - 1] <= value) &&
           (rank == levels_.size() || value < levels_[rank]);
  }

  std::span<const double> levels_;
  double perUnit_ = 0;
};

}  // namespace

CurveLevels arrangeLevels(std::span<const double> levels) {
  CurveLevels arranged;
  std::vector<double>& distinct = arranged.distinct;
  distinct.reserve(levels.size());
  for (const double level : levels) {
    if (!std::isnan(level)) distinct.push_back(level + 0.0);  // -0.0 becomes 0.0
  }
  std::sort(distinct.begin(), distinct.end());
  distinct.erase(std::unique(distinct.begin(), distinct.end()), distinct.end());

  arranged.positions.reserve(levels.size());
  for (const double level : levels) {
    const auto found = std::lower_bound(distinct.begin(), distinct.end(), level);
    const auto position = asInt(found - distinct.begin());
    arranged.positions.push_back(std::isnan(level) ? kNoLevel : position);
  }
  return arranged;
}

std::vector<std::uint32_t> rankVertices(std::span<const double> distinctLevels,
                                        std::span<const double> field,
                                        std::span<const std::int32_t> vertexOrder) {
  const RankFinder rankOf(distinctLevels);
  std::vector<std::uint32_t> ranks;
  ranks.reserve(vertexOrder.size());
  for (const std::int32_t input : vertexOrder) {
    ranks.push_back(rankOf(field[asIndex(input)]));
  }
  return ranks;
}

}  // namespace qelm
