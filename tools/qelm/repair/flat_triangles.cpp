#include "repair/flat_triangles.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <limits>
#include <queue>
#include <utility>
#include <vector>

#include "mesh/vec3.h"

namespace qelm::tool {
namespace {

// As checkMesh() has it: lower than so many roundings of a coordinate is without area.
constexpr double kFlatRoundings = 8;
// A side of a flat triangle that is shorter, in tolerances, has two ends at about one place.
constexpr double kNeedle = 2;
// Steps for each triangle, before it is given up: meshes that fold over themselves within the
// tolerance could go round for ever. Caps on sides of caps take more steps than triangles: 4 for
// each were once too few.
constexpr std::size_t kMostSteps = 64;

using Corners = std::array<int, 3>;

bool names(const Corners& corners, int vertex) {
  return std::find(corners.begin(), corners.end(), vertex) != corners.end();
}

struct Shape {
  double height, shortest, longest;
  std::size_t apex;  ///< the corner opposite the longest side
  std::size_t tip;   ///< the corner opposite the shortest side
};

class FlatRemover {
 public:
  FlatRemover(Mesh& mesh, double tolerance) : mesh_(mesh), tolerance_(tolerance) {}

  FlatRemoval run() {
    for (int t = 0; t < mesh_.triangleCount(); ++t) lookAt(t);
    if (flat_.empty()) return {};
    findTriangles();
    std::size_t steps = kMostSteps * static_cast<std::size_t>(mesh_.triangleCount());
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
      const double side = length(mesh_.point(c[(k + 2) % 3]) - mesh_.point(c[(k + 1) % 3]));
      if (side < shape.shortest) {
        shape.shortest = side;
        shape.tip = k;
      }
      if (side > shape.longest) {
        shape.longest = side;
        shape.apex = k;
      }
    }
    const Point p = mesh_.point(c[0]);
    const double twiceArea = length(cross(mesh_.point(c[1]) - p, mesh_.point(c[2]) - p));
    shape.height = shape.longest > 0 ? twiceArea / shape.longest : 0;
    return shape;
  }

  /// The tolerance, or rounding where that is more.
  double lowest(const Corners& c) const {
    double largest = 0;
    for (const int v : c)
      for (const double coordinate : mesh_.point(v))
        largest = std::max(largest, std::abs(coordinate));
    return std::max(tolerance_, kFlatRoundings * std::numeric_limits<double>::epsilon() * largest);
  }

  void lookAt(int triangle) {
    const Corners c = corners(triangle);
    const Shape shape = shapeOf(c);
    if (!(shape.height > lowest(c))) flat_.emplace(shape.longest, triangle);
  }

  void findTriangles() {
    around_.resize(static_cast<std::size_t>(mesh_.vertexCount()));
    isGone_.assign(static_cast<std::size_t>(mesh_.triangleCount()), false);
    for (int t = 0; t < mesh_.triangleCount(); ++t)
      for (const int v : corners(t)) around(v).push_back(t);
  }

  void remove(int triangle) {
    if (isGone(triangle)) return;
    const Corners c = corners(triangle);
    const Shape shape = shapeOf(c);
    if (shape.height > lowest(c)) return;  // it has changed meanwhile
    if (shape.shortest <= kNeedle * lowest(c))
      collapse(c[(shape.tip + 1) % 3], c[(shape.tip + 2) % 3]);
    else
      splitNeighbours(triangle, c[(shape.apex + 1) % 3], c[(shape.apex + 2) % 3], c[shape.apex]);
  }

  void collapse(int a, int b) {
    ++removal_.collapsedEdges;
    if (a > b) std::swap(a, b);
    const std::vector<int> moved = std::exchange(around(b), {});
    for (const int t : moved) {
      const Corners c = corners(t);
      if (isGone(t) || !names(c, b)) continue;
      if (names(c, a)) {
        isGone_[static_cast<std::size_t>(t)] = true;
        continue;
      }
      replace(t, b, a);
    }
    for (const int t : around(a))
      if (!isGone(t) && names(corners(t), a)) lookAt(t);
  }

  void splitNeighbours(int cap, int a, int b, int c) {
    ++removal_.splitSides;
    isGone_[static_cast<std::size_t>(cap)] = true;
    const std::vector<int> candidates = around(a);
    for (const int t : candidates) {
      const Corners own = corners(t);
      if (isGone(t) || !names(own, a) || !names(own, b)) continue;
      if (names(own, c)) {
        isGone_[static_cast<std::size_t>(t)] = true;  // the same cap once more
        continue;
      }
      const int other = add(own);
      replace(t, b, c);
      replace(other, a, c);
      lookAt(t);
      lookAt(other);
    }
  }

  int add(const Corners& own) {
    const int triangle = mesh_.triangleCount();
    mesh_.triangles.insert(mesh_.triangles.end(), own.begin(), own.end());
    isGone_.push_back(false);
    for (const int v : own) around(v).push_back(triangle);
    return triangle;
  }

  /// The entry of the vertex that the triangle leaves stays.
  void replace(int triangle, int from, int to) {
    const std::size_t base = 3 * static_cast<std::size_t>(triangle);
    for (std::size_t k = base; k < base + 3; ++k)
      if (mesh_.triangles[k] == from) mesh_.triangles[k] = to;
    around(to).push_back(triangle);
  }

  void compact() {
    std::size_t kept = 0;
    for (int t = 0; t < mesh_.triangleCount(); ++t) {
      if (isGone(t)) continue;
      const Corners c = corners(t);
      if (!(shapeOf(c).height > lowest(c))) ++removal_.left;
      for (const int v : c) mesh_.triangles[kept++] = v;
    }
    mesh_.triangles.resize(kept);
    mesh_.faceOfTriangle.clear();
  }

  std::vector<int>& around(int vertex) { return around_[static_cast<std::size_t>(vertex)]; }
  bool isGone(int triangle) const { return isGone_[static_cast<std::size_t>(triangle)]; }

  Mesh& mesh_;
  double tolerance_;
  std::priority_queue<std::pair<double, int>> flat_;  ///< by longest side
  std::vector<std::vector<int>> around_;  ///< for each vertex its triangles, and some former ones
  std::vector<bool> isGone_;
  FlatRemoval removal_;
};

}  // namespace

FlatRemoval removeFlatTriangles(Mesh& mesh, double tolerance) {
  return FlatRemover(mesh, tolerance).run();
}

}  // namespace qelm::tool
