#include "mesh_files/point_merger.h"

#include <algorithm>
#include <bit>
#include <cmath>
#include <cstdint>

namespace qelm::tool {
namespace {

constexpr std::size_t kLeastTable = 64;

/// Products that are meant to wrap (after Fowler, Noll and Vo), the high bits mixed into the low.
std::size_t hashOf(const Point& point) {
  std::uint64_t hash = 0xcbf29ce484222325;
  for (const double coordinate : point) {
    // -0 + 0 is 0.
    hash = (hash ^ std::bit_cast<std::uint64_t>(coordinate + 0.0)) * 0x9e3779b97f4a7c15;
    hash ^= hash >> 32;
  }
  return static_cast<std::size_t>(hash);
}

// Equal to nothing, itself included: thousands of them would be looked up one after another.
bool hasNan(const Point& point) {
  return std::any_of(point.begin(), point.end(), [](double c) { return std::isnan(c); });
}

}  // namespace

int PointMerger::add(const Point& point) {
  if (hasNan(point)) {
    points_.push_back(point);
    return static_cast<int>(points_.size()) - 1;
  }
  if (2 * (points_.size() + 1) > table_.size()) grow(2 * table_.size());
  const std::size_t mask = table_.size() - 1;
  std::size_t place = hashOf(point) & mask;
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
