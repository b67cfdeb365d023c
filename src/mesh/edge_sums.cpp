#include "mesh/edge_sums.h"

#include <utility>

namespace qelm {

// -0.0 is the number to start a sum from: -0.0 + x has the bits of x for every x,
// where 0.0 + -0.0 has not.
EdgeSums::EdgeSums(std::int32_t t, std::int32_t n, std::span<const std::int32_t> triangles)
    : t_(t),
      start_(static_cast<std::size_t>(n - t), 0),
      length_(start_.size(), 0),
      diagonal_(start_.size(), -0.0) {
  const auto count = [&](std::int32_t a, std::int32_t b) {
    const std::int32_t owner = std::max(a, b);
    if (owner >= t) ++start_[static_cast<std::size_t>(owner - t)];
  };
  for (std::size_t j = 0; j < triangles.size(); j += 3) {
    count(triangles[j], triangles[j + 1]);
    count(triangles[j + 1], triangles[j + 2]);
    count(triangles[j], triangles[j + 2]);
  }
  std::size_t end = 0;
  for (std::size_t& entry : start_) end += std::exchange(entry, end);
  neighbours_ = std::make_unique_for_overwrite<std::int32_t[]>(end);
  sums_ = std::make_unique_for_overwrite<double[]>(end);
}

void EdgeSums::sortLists() {
  for (std::size_t v = 0; v < length_.size(); ++v) {
    if (length_[v] <= kSearched) {
      sortShortList(v);
    } else {
      sortLongList(v);
    }
  }
}

/// By insertion: three or so, all different.
void EdgeSums::sortShortList(std::size_t v) {
  std::int32_t* const list = neighbours_.get() + start_[v];
  double* const sums = sums_.get() + start_[v];
  for (std::int32_t i = 1; i < length_[v]; ++i) {
    const std::int32_t neighbour = list[i];
    const double sum = sums[i];
    std::int32_t k = i;
    for (; k > 0 && list[k - 1] > neighbour; --k) {
      list[k] = list[k - 1];
      sums[k] = sums[k - 1];
    }
    list[k] = neighbour;
    sums[k] = sum;
  }
}

/// Contributions to one entry stay in their order, and are added up in it.
void EdgeSums::sortLongList(std::size_t v) {
  std::int32_t* const list = neighbours_.get() + start_[v];
  double* const sums = sums_.get() + start_[v];
  std::vector<std::pair<std::int32_t, double>> entries;
  entries.reserve(static_cast<std::size_t>(length_[v]));
  for (std::int32_t i = 0; i < length_[v]; ++i) entries.emplace_back(list[i], sums[i]);
  std::stable_sort(entries.begin(), entries.end(),
                   [](const auto& a, const auto& b) { return a.first < b.first; });
  std::int32_t length = 0;
  for (const auto& [neighbour, sum] : entries) {
    if (length > 0 && list[length - 1] == neighbour) {
      sums[length - 1] += sum;
      continue;
    }
    list[length] = neighbour;
    sums[length] = sum;
    ++length;
  }
  length_[v] = length;
}

}  // namespace qelm
