#include "support/plain_weld.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <limits>
#include <nanoflann.hpp>
#include <numeric>
#include <set>
#include <utility>

namespace qelm::test {
namespace {

struct UnionFind {
  std::vector<std::int32_t> parent;

  explicit UnionFind(std::size_t n) : parent(n) { std::iota(parent.begin(), parent.end(), 0); }
  std::int32_t find(std::int32_t x) {
    auto p = [this](std::int32_t i) -> std::int32_t& {
      return parent[static_cast<std::size_t>(i)];
    };
    while (p(x) != x) {
      p(x) = p(p(x));
      x = p(x);
    }
    return x;
  }
  void unite(std::int32_t a, std::int32_t b) {
    a = find(a);
    b = find(b);
    if (a == b) return;
    parent[static_cast<std::size_t>(std::max(a, b))] = std::min(a, b);
  }
};

Welded collect(const std::vector<double>& vertices, const std::vector<std::int32_t>& triangles,
               UnionFind& sets) {
  const std::size_t n = vertices.size() / 3;
  Welded result;
  result.map.resize(n);
  std::vector<std::int32_t> firstIndex(n, -1);
  for (std::size_t i = 0; i < n; ++i) {
    const auto root = static_cast<std::size_t>(sets.find(static_cast<std::int32_t>(i)));
    if (firstIndex[root] < 0) {
      firstIndex[root] = static_cast<std::int32_t>(result.vertices.size() / 3);
      for (std::size_t k = 0; k < 3; ++k) result.vertices.push_back(vertices[3 * root + k]);
    }
    result.map[i] = firstIndex[root];
  }
  std::set<std::array<std::int32_t, 3>> keys;
  for (std::size_t t = 0; t < triangles.size(); t += 3) {
    std::array<std::int32_t, 3> c{};
    for (std::size_t k = 0; k < 3; ++k) {
      c[k] = result.map[static_cast<std::size_t>(triangles[t + k])];
    }
    if (c[0] == c[1] || c[1] == c[2] || c[0] == c[2]) continue;
    std::array<std::int32_t, 3> key = c;
    std::sort(key.begin(), key.end());
    if (!keys.insert(key).second) continue;
    result.triangles.insert(result.triangles.end(), c.begin(), c.end());
  }
  return result;
}

struct Cloud {
  struct Vertex {
    double xyz[3];
  };
  std::vector<Vertex> points;
  double low[3], high[3];

  explicit Cloud(const std::vector<double>& vertices) {
    for (std::size_t k = 0; k < 3; ++k) {
      low[k] = std::numeric_limits<double>::infinity();
      high[k] = -low[k];
    }
    for (std::size_t i = 0; i < vertices.size(); i += 3) {
      points.push_back({{vertices[i], vertices[i + 1], vertices[i + 2]}});
      for (std::size_t k = 0; k < 3; ++k) {
        if (vertices[i + k] < low[k]) low[k] = vertices[i + k];
        if (vertices[i + k] > high[k]) high[k] = vertices[i + k];
      }
    }
  }
  std::size_t kdtree_get_point_count() const { return points.size(); }
  double kdtree_get_pt(std::size_t i, std::size_t axis) const { return points[i].xyz[axis]; }
  template <class Box>
  bool kdtree_get_bbox(Box& box) const {
    for (std::size_t k = 0; k < 3; ++k) {
      box[k].low = low[k];
      box[k].high = high[k];
    }
    return true;
  }
};

}  // namespace

Welded allPairsWeld(const std::vector<double>& vertices, const std::vector<std::int32_t>& triangles,
                    double tolerance) {
  const std::size_t n = vertices.size() / 3;
  UnionFind sets(n);
  const double r2 = tolerance * tolerance;
  for (std::size_t i = 0; i < n; ++i) {
    for (std::size_t j = i + 1; j < n; ++j) {
      const double dx = vertices[3 * i] - vertices[3 * j];
      const double dy = vertices[3 * i + 1] - vertices[3 * j + 1];
      const double dz = vertices[3 * i + 2] - vertices[3 * j + 2];
      if (dx * dx + dy * dy + dz * dz < r2) {
        sets.unite(static_cast<std::int32_t>(i), static_cast<std::int32_t>(j));
      }
    }
  }
  return collect(vertices, triangles, sets);
}

Welded plainTreeWeld(const std::vector<double>& vertices,
                     const std::vector<std::int32_t>& triangles, double tolerance) {
  const std::size_t n = vertices.size() / 3;
  UnionFind sets(n);
  const Cloud cloud(vertices);
  using Tree = nanoflann::KDTreeSingleIndexAdaptor<nanoflann::L2_Simple_Adaptor<double, Cloud>,
                                                   Cloud, 3, std::size_t>;
  Tree tree(3, cloud, nanoflann::KDTreeSingleIndexAdaptorParams(10));
  tree.buildIndex();
  std::vector<std::pair<std::size_t, double>> found;
  for (std::size_t i = 0; i < n; ++i) {
    found.clear();
    nanoflann::RadiusResultSet<double, std::size_t> result(tolerance * tolerance, found);
    tree.findNeighbors(result, cloud.points[i].xyz, nanoflann::SearchParams(32, 0.0F, false));
    for (const auto& [j, distance] : found) {
      if (j > i) sets.unite(static_cast<std::int32_t>(i), static_cast<std::int32_t>(j));
    }
  }
  return collect(vertices, triangles, sets);
}

}  // namespace qelm::test
