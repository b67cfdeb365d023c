#include "repair/t_joints.h"

#include <algorithm>
#include <cstddef>
#include <utility>
#include <vector>

#include "mesh/box.h"
#include "mesh/half_edges.h"
#include "mesh/vec3.h"
#include "text/index.h"

namespace qelm::tool {
namespace {

std::vector<HalfEdge> boundaryHalfEdges(const Mesh& mesh) {
  std::vector<HalfEdge> boundary;
  forEachEdge(sortedHalfEdges(mesh), [&boundary](std::span<const HalfEdge> edge) {
    if (edge.size() == 1) boundary.push_back(edge[0]);
  });
  return boundary;
}

class TJoints {
 public:
  TJoints(Mesh& mesh, double tolerance)
      : mesh_(mesh), tolerance_(tolerance), axis_(boxOf(mesh).longestAxis()) {}

  int run() {
    const std::vector<HalfEdge> boundary = boundaryHalfEdges(mesh_);
    for (const HalfEdge& edge : boundary)
      for (const int v : {edge.low, edge.high}) vertices_.emplace_back(mesh_.point(v)[axis_], v);
    std::sort(vertices_.begin(), vertices_.end());
    vertices_.erase(std::unique(vertices_.begin(), vertices_.end()), vertices_.end());
    // One edge of a triangle at a time; its other edges have their turn in the next pass.
    std::vector<bool> isSplit(asIndex(mesh_.triangleCount()), false);
    int count = 0;
    for (const HalfEdge& edge : boundary) {
      if (isSplit[asIndex(edge.triangle())]) continue;
      const std::vector<int> on = verticesOn(edge);
      if (on.empty()) continue;
      isSplit[asIndex(edge.triangle())] = true;
      split(edge, on);
      count += asInt(on.size());
    }
    return count;
  }

 private:
  /// The vertices on an edge, from the half-edge's beginning to its end.
  std::vector<int> verticesOn(const HalfEdge& edge) const {
    const auto c = mesh_.corners(edge.triangle());
    const Point p = mesh_.point(c[(edge.facing() + 1) % 3]);
    const Point q = mesh_.point(c[(edge.facing() + 2) % 3]);
    const Point along = q - p;
    const double size = length(along);
    const auto [low, high] = std::minmax(p[axis_], q[axis_]);
    std::vector<std::pair<double, int>> on;
    for (auto v =
             std::lower_bound(vertices_.begin(), vertices_.end(), std::pair(low - tolerance_, -1));
         v != vertices_.end() && v->first <= high + tolerance_; ++v) {
      if (std::find(c.begin(), c.end(), v->second) != c.end()) continue;
      const Point way = mesh_.point(v->second) - p;
      const double distance = dot(way, along) / size;
      const double off = length(cross(way, along)) / size;
      if (off <= tolerance_ && distance > tolerance_ && distance < size - tolerance_)
        on.emplace_back(distance, v->second);
    }
    std::sort(on.begin(), on.end());
    std::vector<int> vertices;
    for (const auto& [distance, v] : on) vertices.push_back(v);
    return vertices;
  }

  /// The triangle keeps the part up to the first vertex; new triangles take the rest.
  void split(const HalfEdge& edge, const std::vector<int>& on) {
    const auto c = mesh_.corners(edge.triangle());
    const std::size_t end = (edge.facing() + 2) % 3;
    const int last = c[end];
    const int apex = c[edge.facing()];
    mesh_.triangles[3 * asIndex(edge.triangle()) + end] = on[0];
    for (std::size_t k = 0; k < on.size(); ++k)
      for (const int v : {on[k], k + 1 < on.size() ? on[k + 1] : last, apex})
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
  // Each pass splits one edge of a triangle, of which there are three.
  for (int pass = 0; pass < 3; ++pass) {
    const int found = TJoints(mesh, tolerance).run();
    if (found == 0) break;
    count += found;
    mesh.faceOfTriangle.clear();
  }
  return count;
}

}  // namespace qelm::tool
