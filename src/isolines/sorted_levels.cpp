#include "isolines/sorted_levels.h"

#include <algorithm>
#include <cmath>
#include <numeric>

#include "interface/index.h"

namespace qelm {

SortedLevels::SortedLevels(std::span<const double> levels)
    : levels_(levels.begin(), levels.end()), all_(levels.size()) {
  std::iota(all_.begin(), all_.end(), 0);
  for (const std::int32_t j : all_) (std::isnan((*this)[j]) ? nans_ : sortedIds_).push_back(j);
  // Equal levels stay in the caller's order.
  std::sort(sortedIds_.begin(), sortedIds_.end(), [this](std::int32_t a, std::int32_t b) {
    return (*this)[a] < (*this)[b] || ((*this)[a] == (*this)[b] && a < b);
  });
  for (const std::int32_t j : sortedIds_) sorted_.push_back((*this)[j]);
  idsAscend_ = std::is_sorted(sortedIds_.begin(), sortedIds_.end());
  found_.reserve(levels.size());
}

std::span<const std::int32_t> SortedLevels::within(double low, double high) {
  // Most triangles lie between two levels, or beyond them all.
  if (sorted_.empty() || high < sorted_.front() || low > sorted_.back()) return nans_;
  const auto first = std::lower_bound(sorted_.begin(), sorted_.end(), low);
  const auto last = std::upper_bound(first, sorted_.end(), high);
  if (first == last) return nans_;
  const std::span ids(sortedIds_.data() + (first - sorted_.begin()), asIndex(last - first));
  if (idsAscend_ && nans_.empty()) return ids;
  found_.assign(ids.begin(), ids.end());
  found_.insert(found_.end(), nans_.begin(), nans_.end());
  std::sort(found_.begin(), found_.end());
  return found_;
}

}  // namespace qelm
