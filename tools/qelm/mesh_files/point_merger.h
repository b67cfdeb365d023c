// Points that lie exactly on each other become one. In: points, some at a time. Out: the number of
// each, and the different points.
#ifndef QELM_TOOLS_POINT_MERGER_H
#define QELM_TOOLS_POINT_MERGER_H

#include <cstddef>
#include <cstdint>
#include <memory>
#include <span>
#include <utility>
#include <vector>

#include "mesh/mesh.h"

namespace qelm::tool {

/// Numbers points in the order of their first appearance. Zeros are equal whatever their sign;
/// a point with a coordinate that is not a number is equal to none.
class PointMerger {
 public:
  /// Makes room for so many more.
  void expect(std::size_t more);

  /// The number of the point at this place.
  int add(const Point& point) { return add(point, hashOf(point)); }
  /// The numbers of many, behind those that are in `numbers`.
  void addAll(std::span<const Point> points, std::vector<int>& numbers);

  std::size_t size() const { return points_.size(); }
  /// How many of them had their place already.
  std::size_t merged() const { return merged_; }
  Points finish() { return std::move(points_); }

 private:
  static std::uint64_t hashOf(const Point& point);
  int add(const Point& point, std::uint64_t hash);
  void growFor(std::size_t more);
  void grow(std::size_t least);

  Points points_;
  /// A table of points: each is at the first place after its hash that was free. A place has a
  /// mark, a byte of the hash, so that most other points are told apart in a table that is small
  /// enough for the cache; 0 is a free place.
  std::vector<std::uint8_t> marks_;
  std::unique_ptr<int[]> numbers_;  ///< of the points at marked places
  std::size_t merged_ = 0;
};

}  // namespace qelm::tool

#endif
