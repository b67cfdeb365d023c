#include "mesh_files/point_merger.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cmath>
#include <cstdint>

namespace qelm::tool {
namespace {

constexpr std::size_t kLeastTable = 64;

// Equal to nothing, itself included: thousands of them would be looked up one after another.
bool hasNan(const Point& point) {
  return std::any_of(point.begin(), point.end(), [](double c) { return std::isnan(c); });
}

/// Asks the processor to fetch what will be written soon, where the compiler knows how.
inline void prefetch([[maybe_unused]] int& number) {
#if defined(__GNUC__)
  __builtin_prefetch(&number, 1);
#endif
}

// So many places of the table are asked for before the first of them is used.
constexpr std::size_t kAtOnce = 16;

}  // namespace

/// Products that are meant to wrap (after Fowler, Noll and Vo), the high bits mixed into the low.
std::size_t PointMerger::hashOf(const Point& point) {
  std::uint64_t hash = 0xcbf29ce484222325;
  for (const double coordinate : point) {
    // -0 + 0 is 0.
    hash = (hash ^ std::bit_cast<std::uint64_t>(coordinate + 0.0)) * 0x9e3779b97f4a7c15;
    hash ^= hash >> 32;
  }
  return static_cast<std::size_t>(hash);
}

std::vector<int> PointMerger::addAll(std::span<const Point> points) {
  expect(points.size());
  std::vector<int> numbers;
  numbers.reserve(points.size());
  std::array<std::size_t, kAtOnce> hashes{};
  for (std::size_t done = 0; done < points.size(); done += kAtOnce) {
    const auto some = points.subspan(done, std::min(kAtOnce, points.size() - done));
    for (std::size_t k = 0; k < some.size(); ++k) {
      hashes[k] = hashOf(some[k]);
      prefetch(table_[hashes[k] & (table_.size() - 1)]);
    }
    for (std::size_t k = 0; k < some.size(); ++k) numbers.push_back(add(some[k], hashes[k]));
  }
  return numbers;
}

int PointMerger::add(const Point& point, std::size_t hash) {
  if (hasNan(point)) {
    points_.push_back(point);
    return static_cast<int>(points_.size()) - 1;
  }
  if (2 * (points_.size() + 1) > table_.size()) grow(2 * table_.size());
  const std::size_t mask = table_.size() - 1;
  std::size_t place = hash & mask;
  for (; table_[place] >= 0; place = (place + 1) & mask) {
    if (points_[static_cast<std::size_t>(table_[place])] != point) continue;
    ++merged_;
    return table_[place];
  }
  table_[place] = static_cast<int>(points_.size());
  points_.push_back(point);
  return table_[place];
}

void PointMerger::expect(std::size_t more) {
  if (2 * (points_.size() + more) > table_.size()) grow(2 * (points_.size() + more));
}

void PointMerger::grow(std::size_t least) {
  table_.assign(std::bit_ceil(std::max(least, kLeastTable)), -1);
  const std::size_t mask = table_.size() - 1;
  for (std::size_t k = 0; k < points_.size(); ++k) {
    if (hasNan(points_[k])) continue;
    std::size_t place = hashOf(points_[k]) & mask;
    while (table_[place] >= 0) place = (place + 1) & mask;
    table_[place] = static_cast<int>(k);
  }
}

}  // namespace qelm::tool
