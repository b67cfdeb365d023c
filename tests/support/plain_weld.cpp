#include "support/plain_weld.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <limits>
#include <numeric>
#include <set>
#include <utility>

#include "interface/dependencies.h"

namespace qelm::test {
namespace {

struct Cloud {
  explicit Cloud(std::span<const double> vertices) {
    for (std::size_t i = 0; i < vertices.size(); i += 3) {
      points.push_back({vertices[i], vertices[i + 1], vertices[i + 2]});
      for (std::size_t axis = 0; axis < 3; ++axis) {
        if (points.back()[axis] < low[axis]) low[axis] = points.back()[axis];
        if (points.back()[axis] > high[axis]) high[axis] = points.back()[axis];
      }
    }
  }

  std::size_t kdtree_get_point_count() const { return points.size(); }
  double kdtree_get_pt(std::size_t i, std::size_t axis) const { return points[i][axis]; }
  template <class Box>
  bool kdtree_get_bbox(Box& box) const {
    for (std::size_t axis = 0; axis < 3; ++axis) {
      box[axis].low = low[axis];
      box[axis].high = high[axis];
    }
    return true;
  }

  static constexpr double kInfinity = std::numeric_limits<double>::infinity();
  std::vector<std::array<double, 3>> points;
  std::array<double, 3> low{kInfinity, kInfinity, kInfinity};
  std::array<double, 3> high{-kInfinity, -kInfinity, -kInfinity};
};

using Tree = nanoflann::KDTreeSingleIndexAdaptor<nanoflann::L2_Adaptor<double, Cloud>, Cloud, 3>;

/// What the tree asks of a result set: the points whose squared distance is below the
/// squared radius.
struct WithinRadius {
  explicit WithinRadius(double squared) : radiusSquared(squared) {}

  double worstDist() const { return radiusSquared; }
  bool full() const { return true; }
  bool addPoint(double distance, std::uint32_t found) {
    if (distance < radiusSquared) points.push_back(static_cast<std::int32_t>(found));
    return true;
  }
  void sort() const {}  // never asked for

  double radiusSquared;
  std::vector<std::int32_t> points;
};

struct UnionFind {
  explicit UnionFind(std::size_t count) : parent(count) {
    std::iota(parent.begin(), parent.end(), 0);
  }

  std::int32_t root(std::int32_t x) {
    while (at(x) != x) {
      at(x) = at(at(x));
      x = at(x);
    }
    return x;
  }

  void unite(std::int32_t i, std::int32_t j) {
    const std::int32_t ri = root(i);
    const std::int32_t rj = root(j);
    if (ri != rj) at(std::max(ri, rj)) = std::min(ri, rj);
  }

  std::int32_t& at(std::int32_t x) { return parent[static_cast<std::size_t>(x)]; }

  std::vector<std::int32_t> parent;
};

void keepVertices(std::span<const double> vertices, UnionFind& clusters, Welded& result) {
  const std::size_t n = vertices.size() / 3;
  std::vector<std::int32_t> firstIndex(n, -1);
  std::vector<std::int32_t> representatives;
  for (std::size_t i = 0; i < n; ++i) {
    const std::int32_t root = clusters.root(static_cast<std::int32_t>(i));
    std::int32_t& first = firstIndex[static_cast<std::size_t>(root)];
    if (first < 0) {
      first = static_cast<std::int32_t>(representatives.size());
      representatives.push_back(root);
    }
    result.vertexMap.push_back(first);
  }
  for (const std::int32_t r : representatives) {
    const auto p = vertices.subspan(3 * static_cast<std::size_t>(r), 3);
    result.vertices.insert(result.vertices.end(), p.begin(), p.end());
  }
}

void keepTriangles(std::span<const std::int32_t> triangles, Welded& result) {
  std::set<std::array<std::int32_t, 3>> keys;
  for (std::size_t t = 0; t < triangles.size(); t += 3) {
    std::array<std::int32_t, 3> corners{};
    for (std::size_t k = 0; k < 3; ++k) {
      corners[k] = result.vertexMap[static_cast<std::size_t>(triangles[t + k])];
    }
    std::array<std::int32_t, 3> key = corners;
    std::ranges::sort(key);
    if (key[0] == key[1] || key[1] == key[2] || !keys.insert(key).second) continue;
    result.triangles.insert(result.triangles.end(), corners.begin(), corners.end());
  }
}

}  // namespace

Welded plainWeld(std::span<const double> vertices, std::span<const std::int32_t> triangles,
                 double tolerance) {
  if (vertices.empty()) return {};
  const Cloud cloud(vertices);
  Tree tree(3, cloud, nanoflann::KDTreeSingleIndexAdaptorParams(10));
  tree.buildIndex();
  UnionFind clusters(cloud.points.size());
  const double radiusSquared = tolerance * tolerance;
  WithinRadius found(radiusSquared);
  for (std::size_t i = 0; i < cloud.points.size(); ++i) {
    found.points.clear();
    tree.findNeighbors(found, cloud.points[i].data(), exactUnsortedSearch());
    const auto self = static_cast<std::int32_t>(i);
    for (const std::int32_t j : found.points) {
      if (j > self) clusters.unite(self, j);
    }
  }
  Welded result;
  keepVertices(vertices, clusters, result);
  keepTriangles(triangles, result);
  return result;
}

Welded allPairsWeld(std::span<const double> vertices, std::span<const std::int32_t> triangles,
                    double tolerance) {
  const auto n = static_cast<std::int32_t>(vertices.size() / 3);
  UnionFind clusters(static_cast<std::size_t>(n));
  for (std::int32_t i = 0; i < n; ++i) {
    for (std::int32_t j = i + 1; j < n; ++j) {
      double distance = 0;
      for (std::size_t axis = 0; axis < 3; ++axis) {
        const double difference = vertices[3 * static_cast<std::size_t>(i) + axis] -
                                  vertices[3 * static_cast<std::size_t>(j) + axis];
        distance += difference * difference;
      }
      if (distance < tolerance * tolerance) clusters.unite(i, j);
    }
  }
  Welded result;
  keepVertices(vertices, clusters, result);
  keepTriangles(triangles, result);
  return result;
}

}  // namespace qelm::test
