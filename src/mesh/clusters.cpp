#include "mesh/clusters.h"

#include <bit>
#include <cmath>
#include <cstddef>
#include <limits>
#include <nanoflann.hpp>

#include "mesh/cell_grid.h"
#include "mesh/disjoint_sets.h"
#include "mesh/hash_index.h"

namespace qelm {
namespace {

using Points = std::span<const double>;

const double* pointAt(Points points, std::int32_t id) {
  return points.data() + 3 * static_cast<std::size_t>(id);
}

bool isFinite(const double* p) {
  return std::isfinite(p[0]) && std::isfinite(p[1]) && std::isfinite(p[2]);
}

/// The coordinates' bits; adding 0 makes -0 and 0 alike, which are no distance apart.
struct KeyOfPosition {
  Points points;
  Triple operator()(std::int32_t id) const {
    const double* p = pointAt(points, id);
    return {std::bit_cast<std::uint64_t>(p[0] + 0.0), std::bit_cast<std::uint64_t>(p[1] + 0.0),
            std::bit_cast<std::uint64_t>(p[2] + 0.0)};
  }
};

/// Unites points at one place, whose distance 0 is less than any tolerance that
/// joins at all, and returns the first finite point at each place. In a soup that is
/// a sixth of them.
std::vector<std::int32_t> uniteEqualPoints(Points points, DisjointSets& sets) {
  const std::size_t n = points.size() / 3;
  HashIndex<KeyOfPosition> firstAt(n, KeyOfPosition{points});
  std::vector<std::int32_t> places;
  for (std::int32_t i = 0; static_cast<std::size_t>(i) < n; ++i) {
    if (!isFinite(pointAt(points, i))) continue;
    const std::int32_t first = firstAt.findOrInsert(i);
    if (first == i) {
      places.push_back(i);
    } else {
      sets.unite(first, i);
    }
  }
  return places;
}

/// What the kd-tree sees: some of the points, and their bounding box, so that it
/// does not have to find that itself.
class Cloud {
 public:
  Cloud(Points points, std::span<const std::int32_t> ids) : points_(points), ids_(ids) {
    for (const std::int32_t id : ids) widen(pointAt(points, id));
  }

  std::size_t kdtree_get_point_count() const { return ids_.size(); }
  double kdtree_get_pt(std::size_t k, std::size_t axis) const {
    return pointAt(points_, ids_[k])[axis];
  }
  template <class Box>
  bool kdtree_get_bbox(Box& box) const {
    for (std::size_t axis = 0; axis < 3; ++axis) {
      box[axis].low = low_[axis];
      box[axis].high = high_[axis];
    }
    return true;
  }

 private:
  void widen(const double* p) {
    for (std::size_t axis = 0; axis < 3; ++axis) {
      if (p[axis] < low_[axis]) low_[axis] = p[axis];
      if (p[axis] > high_[axis]) high_[axis] = p[axis];
    }
  }

  static constexpr double kInfinity = std::numeric_limits<double>::infinity();
  Points points_;
  std::span<const std::int32_t> ids_;
  double low_[3] = {kInfinity, kInfinity, kInfinity};
  double high_[3] = {-kInfinity, -kInfinity, -kInfinity};
};

using Tree = nanoflann::KDTreeSingleIndexAdaptor<nanoflann::L2_Simple_Adaptor<double, Cloud>, Cloud,
                                                 3, std::size_t>;

/// The radius that the tree cuts branches with. It adds up a branch's distance from
/// differences, with a rounding for each of at most a few thousand steps down, so
/// the bound is given room; points are still judged by their own distance alone. An
/// infinite bound would have it subtract infinities: the largest double admits every
/// pair with a finite squared distance.
double branchBound(double r2) {
  const double widened = r2 * (1 + 0x1p-30) + 0x1p-1060;
  return std::fmin(widened, std::numeric_limits<double>::max());
}

/// Takes what the tree finds around one point and unites it at once.
class UnitingResult {
 public:
  using DistanceType = double;

  UnitingResult(std::span<const std::int32_t> ids, double r2, DisjointSets& sets)
      : ids_(ids), r2_(r2), bound_(branchBound(r2)), sets_(sets) {}

  void startAt(std::size_t k) { centre_ = ids_[k]; }

  bool addPoint(double squaredDistance, std::size_t k) {
    // Each pair is met from both of its ends; one is enough.
    if (squaredDistance < r2_ && ids_[k] > centre_) sets_.unite(centre_, ids_[k]);
    return true;
  }
  double worstDist() const { return bound_; }
  bool full() const { return true; }

 private:
  std::span<const std::int32_t> ids_;
  double r2_;
  double bound_;
  DisjointSets& sets_;
  std::int32_t centre_ = 0;
};

/// Unites every pair closer than the tolerance. The tree's own order visits points
/// that are near in space, and so in memory, one after the other; which order it is
/// makes no difference to the sets.
void uniteNeighbours(Points points, std::span<const std::int32_t> ids, double tolerance,
                     DisjointSets& sets) {
  if (ids.empty()) return;
  CellGrid grid(points, ids, tolerance, sets);
  const Cloud cloud(points, ids);
  const Tree tree(3, cloud, nanoflann::KDTreeSingleIndexAdaptorParams(10));
  const nanoflann::SearchParams exact(0, 0.0F, false);
  UnitingResult result(ids, tolerance * tolerance, sets);
  for (const std::size_t k : tree.vAcc) {
    if (grid.isClosed(k)) continue;
    result.startAt(k);
    tree.findNeighbors(result, pointAt(points, ids[k]), exact);
    grid.noteQuery(k, sets);
  }
}

}  // namespace

std::vector<std::int32_t> clusterRoots(Points points, double tolerance) {
  const std::size_t n = points.size() / 3;
  DisjointSets sets(n);
  // False for NaN as well: nothing is closer than that.
  if (tolerance * tolerance > 0) {
    const std::vector<std::int32_t> places = uniteEqualPoints(points, sets);
    uniteNeighbours(points, places, tolerance, sets);
  }
  std::vector<std::int32_t> roots(n);
  for (std::size_t i = 0; i < n; ++i) roots[i] = sets.find(static_cast<std::int32_t>(i));
  return roots;
}

}  // namespace qelm
