// Points that lie exactly on each other become one.
#ifndef QELM_TOOLS_POINT_MERGER_H
#define QELM_TOOLS_POINT_MERGER_H

#include <cstddef>
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
  /// The numbers of many.
  std::vector<int> addAll(std::span<const Point> points);

  std::size_t size() const { return points_.size(); }
  /// How many of them had their place already.
  std::size_t merged() const { return merged_; }
  Points finish() { return std::move(points_); }

 private:
  static std::size_t hashOf(const Point& point);
  int add(const Point& point, std::size_t hash);
  void grow(std::size_t least);

  Points points_;
  std::vector<int> table_;  ///< a point's number at the first free place after its hash, or -1
  std::size_t merged_ = 0;
};

}  // namespace qelm::tool

#endif
