#include "repair/t_joints.h"

#include <algorithm>
#include <cstddef>
#include <tuple>
#include <utility>
#include <vector>

#include "mesh/vec3.h"

namespace qelm::tool {
namespace {

struct BoundarySide {
  int low, high;
  int index;  ///< 3 * triangle + k: from its corner k to the next one
};

/// Sides that exactly one triangle has.
std::vector<BoundarySide> boundarySides(const Mesh& mesh) {
  std::vector<BoundarySide> sides;
  sides.reserve(mesh.triangles.size());
  for (int t = 0; t < mesh.triangleCount(); ++t)
    for (int k = 0; k < 3; ++k) {
      const int a = mesh.corners(t)[static_cast<std::size_t>(k)];
      const int b = mesh.corners(t)[static_cast<std::size_t>((k + 1) % 3)];
      sides.push_back({std::min(a, b), std::max(a, b), 3 * t + k});
    }
  std::sort(sides.begin(), sides.end(), [](const BoundarySide& a, const BoundarySide& b) {
    return std::tie(a.low, a.high, a.index) < std::tie(b.low, b.high, b.index);
  });
  std::vector<BoundarySide> single;
  for (std::size_t first = 0; first < sides.size();) {
    std::size_t last = first + 1;
    while (last < sides.size() && sides[last].low == sides[first].low &&
           sides[last].high == sides[first].high)
      ++last;
    if (last - first == 1) single.push_back(sides[first]);
    first = last;
  }
  return single;
}

std::size_t longestAxis(const Mesh& mesh) {
  Point low = mesh.point(0);
  Point high = low;
  for (int v = 1; v < mesh.vertexCount(); ++v)
    for (std::size_t k = 0; k < 3; ++k) {
      low[k] = std::min(low[k], mesh.point(v)[k]);
      high[k] = std::max(high[k], mesh.point(v)[k]);
    }
  const Point size = high - low;
  return static_cast<std::size_t>(std::max_element(size.begin(), size.end()) - size.begin());
}

class TJoints {
 public:
  TJoints(Mesh& mesh, double tolerance)
      : mesh_(mesh), tolerance_(tolerance), axis_(longestAxis(mesh)) {}

  int run() {
    const std::vector<BoundarySide> sides = boundarySides(mesh_);
    for (const BoundarySide& side : sides)
      for (const int v : {side.low, side.high}) vertices_.emplace_back(mesh_.point(v)[axis_], v);
    std::sort(vertices_.begin(), vertices_.end());
    vertices_.erase(std::unique(vertices_.begin(), vertices_.end()), vertices_.end());
    // One side of a triangle at a time; its other sides have their turn in the next pass.
    std::vector<bool> isSplit(mesh_.triangles.size() / 3, false);
    int count = 0;
    for (const BoundarySide& side : sides) {
      const auto triangle = static_cast<std::size_t>(side.index / 3);
      if (isSplit[triangle]) continue;
      const std::vector<int> on = verticesOn(side.index);
      if (on.empty()) continue;
      isSplit[triangle] = true;
      split(side.index, on);
      count += static_cast<int>(on.size());
    }
    return count;
  }

 private:
  int corner(int triangle, int k) const {
    return mesh_.corners(triangle)[static_cast<std::size_t>(k % 3)];
  }

  /// From the side's first end to its second.
  std::vector<int> verticesOn(int side) const {
    const int t = side / 3;
    const int a = corner(t, side % 3);
    const int b = corner(t, side % 3 + 1);
    const Point p = mesh_.point(a);
    const Point q = mesh_.point(b);
    const Point along = q - p;
    const double size = length(along);
    const auto [low, high] = std::minmax(p[axis_], q[axis_]);
    std::vector<std::pair<double, int>> on;
    for (auto v =
             std::lower_bound(vertices_.begin(), vertices_.end(), std::pair(low - tolerance_, -1));
         v != vertices_.end() && v->first <= high + tolerance_; ++v) {
      if (v->second == corner(t, 0) || v->second == corner(t, 1) || v->second == corner(t, 2))
        continue;
      const Point way = mesh_.point(v->second) - p;
      const double place = dot(way, along) / size;
      const double off = length(cross(way, along)) / size;
      if (off <= tolerance_ && place > tolerance_ && place < size - tolerance_)
        on.emplace_back(place, v->second);
    }
    std::sort(on.begin(), on.end());
    std::vector<int> vertices;
    for (const auto& [place, v] : on) vertices.push_back(v);
    return vertices;
  }

  void split(int side, const std::vector<int>& on) {
    const int t = side / 3;
    const int b = corner(t, side % 3 + 1);
    const int apex = corner(t, side % 3 + 2);
    mesh_.triangles[static_cast<std::size_t>(3 * t + (side + 1) % 3)] = on[0];
    for (std::size_t k = 0; k < on.size(); ++k)
      for (const int v : {on[k], k + 1 < on.size() ? on[k + 1] : b, apex})
        mesh_.triangles.push_back(v);
  }

  Mesh& mesh_;
  double tolerance_;
  std::size_t axis_;
  std::vector<std::pair<double, int>> vertices_;  ///< of the boundary, along the axis
};

}  // namespace

int closeTJoints(Mesh& mesh, double tolerance) {
  int count = 0;
  // Each pass splits one side of a triangle, of which there are three.
  for (int pass = 0; pass < 3; ++pass) {
    const int set = TJoints(mesh, tolerance).run();
    if (set == 0) break;
    count += set;
    mesh.faceOfTriangle.clear();
  }
  return count;
}

}  // namespace qelm::tool
