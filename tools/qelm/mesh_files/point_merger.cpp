#include "mesh_files/point_merger.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cmath>
#include <cstdint>

#include "text/compiler.h"
#include "text/index.h"

namespace qelm::tool {
namespace {

constexpr std::size_t kLeastTable = 64;

// Equal to nothing, itself included: thousands of them would be looked up one after another.
bool hasNan(const Point& point) {
  return std::any_of(point.begin(), point.end(), [](double c) { return std::isnan(c); });
}

std::uint8_t markOf(std::uint64_t hash) { return static_cast<std::uint8_t>((hash >> 57) | 0x80); }

// So many places of the table are asked for before the first of them is used.
constexpr std::size_t kAtOnce = 16;

}  // namespace

/// Products that are meant to wrap (after Fowler, Noll and Vo), the high bits mixed into the low.
std::uint64_t PointMerger::hashOf(const Point& point) {
  std::uint64_t hash = 0xcbf29ce484222325;
  for (const double coordinate : point) {
    // -0 + 0 is 0.
    hash = (hash ^ std::bit_cast<std::uint64_t>(coordinate + 0.0)) * 0x9e3779b97f4a7c15;
    hash ^= hash >> 32;
  }
  return hash;
}

void PointMerger::addAll(std::span<const Point> points, std::vector<int>& numbers) {
  growFor(points.size());
  std::array<std::uint64_t, kAtOnce> hashes{};
  for (std::size_t done = 0; done < points.size(); done += kAtOnce) {
    const auto some = points.subspan(done, std::min(kAtOnce, points.size() - done));
    for (std::size_t k = 0; k < some.size(); ++k) {
      hashes[k] = hashOf(some[k]);
      const std::size_t place = hashes[k] & (marks_.size() - 1);
      prefetchToWrite(&marks_[place]);
      prefetchToWrite(&numbers_[place]);
    }
    for (std::size_t k = 0; k < some.size(); ++k) numbers.push_back(add(some[k], hashes[k]));
  }
}

int PointMerger::add(const Point& point, std::uint64_t hash) {
  const int next = asInt(points_.size());
  if (!hasNan(point)) {
    growFor(1);
    const std::uint8_t mark = markOf(hash);
    const std::size_t last = marks_.size() - 1;
    std::size_t place = hash & last;
    for (; marks_[place] != 0; place = (place + 1) & last) {
      if (marks_[place] != mark || points_[asIndex(numbers_[place])] != point) continue;
      ++merged_;
      return numbers_[place];
    }
    marks_[place] = mark;
    numbers_[place] = next;
  }
  points_.push_back(point);
  return next;
}

void PointMerger::expect(std::size_t more) {
  growFor(more);
  points_.expect(more);
}

void PointMerger::growFor(std::size_t more) {
  if (2 * (points_.size() + more) > marks_.size())
    grow(2 * std::max(points_.size() + more, marks_.size()));
}

void PointMerger::grow(std::size_t least) {
  const std::size_t size = std::bit_ceil(std::max(least, kLeastTable));
  marks_.assign(size, 0);
  numbers_ = std::make_unique_for_overwrite<int[]>(size);
  for (std::size_t k = 0; k < points_.size(); ++k) {
    if (hasNan(points_[k])) continue;
    const std::uint64_t hash = hashOf(points_[k]);
    std::size_t place = hash & (size - 1);
    while (marks_[place] != 0) place = (place + 1) & (size - 1);
    marks_[place] = markOf(hash);
    numbers_[place] = asInt(k);
  }
}

}  // namespace qelm::tool
