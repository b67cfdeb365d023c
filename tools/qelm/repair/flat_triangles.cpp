#include "repair/flat_triangles.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <limits>
#include <queue>
#include <utility>
#include <vector>

#include "mesh/vec3.h"
#include "text/index.h"

namespace qelm::tool {
namespace {

// In tolerances: the longest edge that is collapsed.
constexpr double kNeedle = 2;
// Removals for each triangle of the mesh. A mesh that folds over itself within the tolerance could
// go on for ever. Caps on edges of caps take more removals than there are triangles: 4 for each
// were once too few.
constexpr std::size_t kMostSteps = 64;

using Corners = std::array<int, 3>;

bool has(const Corners& corners, int vertex) {
  return std::find(corners.begin(), corners.end(), vertex) != corners.end();
}

struct Shape {
  double height, shortest, longest;
  std::size_t apex;  ///< the corner that faces the longest edge
  std::size_t tip;   ///< the corner that faces the shortest edge
};

class FlatRemover {
 public:
  FlatRemover(Mesh& mesh, double tolerance) : mesh_(mesh), tolerance_(tolerance) {}

  FlatRemoval run() {
    for (int t = 0; t < mesh_.triangleCount(); ++t) queueIfFlat(t);
    if (flat_.empty()) return {};
    listTriangles();
    std::size_t steps = kMostSteps * asIndex(mesh_.triangleCount());
    for (; !flat_.empty() && steps > 0; --steps) {
      const int triangle = flat_.top().second;
      flat_.pop();
      remove(triangle);
    }
    compact();
    return removal_;
  }

 private:
  Corners corners(int triangle) const {
    const auto c = mesh_.corners(triangle);
    return {c[0], c[1], c[2]};
  }

  Shape shapeOf(const Corners& c) const {
    Shape shape{0, std::numeric_limits<double>::infinity(), -1, 0, 0};
    for (std::size_t k = 0; k < 3; ++k) {
      const double edge = length(mesh_.point(c[(k + 2) % 3]) - mesh_.point(c[(k + 1) % 3]));
      if (edge < shape.shortest) {
        shape.shortest = edge;
        shape.tip = k;
      }
      if (edge > shape.longest) {
        shape.longest = edge;
        shape.apex = k;
      }
    }
    const double twiceArea =
        length(areaVector(mesh_.point(c[0]), mesh_.point(c[1]), mesh_.point(c[2])));
    shape.height = shape.longest > 0 ? twiceArea / shape.longest : 0;
    return shape;
  }

  /// The height up to which a triangle is flat.
  double flatHeight(const Corners& c) const { return std::max(tolerance_, heightNoise(mesh_, c)); }

  void queueIfFlat(int triangle) {
    const Corners c = corners(triangle);
    const Shape shape = shapeOf(c);
    if (!(shape.height > flatHeight(c))) flat_.emplace(shape.longest, triangle);
  }

  void listTriangles() {
    trianglesAt_.resize(asIndex(mesh_.vertexCount()));
    isGone_.assign(asIndex(mesh_.triangleCount()), false);
    for (int t = 0; t < mesh_.triangleCount(); ++t)
      for (const int v : corners(t)) trianglesAt(v).push_back(t);
  }

  void remove(int triangle) {
    if (isGone(triangle)) return;
    const Corners c = corners(triangle);
    const Shape shape = shapeOf(c);
    if (shape.height > flatHeight(c)) return;  // the triangle has changed meanwhile
    if (shape.shortest <= kNeedle * flatHeight(c))
      collapse(c[(shape.tip + 1) % 3], c[(shape.tip + 2) % 3]);
    else
      splitNeighbours(triangle, c[(shape.apex + 1) % 3], c[(shape.apex + 2) % 3], c[shape.apex]);
  }

  /// Of a needle: the ends of the edge ab become the one with the lower number.
  void collapse(int a, int b) {
    ++removal_.collapsedEdges;
    if (a > b) std::swap(a, b);
    const std::vector<int> moved = std::exchange(trianglesAt(b), {});
    for (const int t : moved) {
      const Corners c = corners(t);
      if (isGone(t) || !has(c, b)) continue;
      if (has(c, a)) {
        isGone_[asIndex(t)] = true;
        continue;
      }
      replaceCorner(t, b, a);
    }
    for (const int t : trianglesAt(a))
      if (!isGone(t) && has(corners(t), a)) queueIfFlat(t);
  }

  /// Of a cap with the corner c on its edge ab: every other triangle at ab is split at c.
  void splitNeighbours(int cap, int a, int b, int c) {
    ++removal_.splitSides;
    isGone_[asIndex(cap)] = true;
    const std::vector<int> candidates = trianglesAt(a);
    for (const int t : candidates) {
      const Corners own = corners(t);
      if (isGone(t) || !has(own, a) || !has(own, b)) continue;
      if (has(own, c)) {
        isGone_[asIndex(t)] = true;  // the same cap once more
        continue;
      }
      const int other = add(own);
      replaceCorner(t, b, c);
      replaceCorner(other, a, c);
      queueIfFlat(t);
      queueIfFlat(other);
    }
  }

  int add(const Corners& own) {
    const int triangle = mesh_.triangleCount();
    mesh_.triangles.insert(mesh_.triangles.end(), own.begin(), own.end());
    isGone_.push_back(false);
    for (const int v : own) trianglesAt(v).push_back(triangle);
    return triangle;
  }

  /// The triangle stays in the list of `from`: readers of the lists compare corners.
  void replaceCorner(int triangle, int from, int to) {
    const std::size_t base = 3 * asIndex(triangle);
    for (std::size_t k = base; k < base + 3; ++k)
      if (mesh_.triangles[k] == from) mesh_.triangles[k] = to;
    trianglesAt(to).push_back(triangle);
  }

  void compact() {
    std::size_t kept = 0;
    for (int t = 0; t < mesh_.triangleCount(); ++t) {
      if (isGone(t)) continue;
      const Corners c = corners(t);
      if (!(shapeOf(c).height > flatHeight(c))) ++removal_.left;
      for (const int v : c) mesh_.triangles[kept++] = v;
    }
    mesh_.triangles.resize(kept);
    mesh_.faceOfTriangle.clear();
  }

  std::vector<int>& trianglesAt(int vertex) { return trianglesAt_[asIndex(vertex)]; }
  bool isGone(int triangle) const { return isGone_[asIndex(triangle)]; }

  Mesh& mesh_;
  double tolerance_;
  std::priority_queue<std::pair<double, int>> flat_;  ///< longest edge and triangle
  std::vector<std::vector<int>> trianglesAt_;         ///< of each vertex, some former ones included
  std::vector<bool> isGone_;
  FlatRemoval removal_;
};

}  // namespace

FlatRemoval removeFlatTriangles(Mesh& mesh, double tolerance) {
  return FlatRemover(mesh, tolerance).run();
}

}  // namespace qelm::tool
