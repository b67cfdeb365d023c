#include "fields/gradient.h"

#include <array>
#include <limits>

#include "mesh/mesh_checks.h"
#include "mesh/vec3.h"
#include "text/index.h"

namespace qelm::tool {
namespace {

constexpr double kNone = std::numeric_limits<double>::quiet_NaN();

Point scaledSum(double s, const Point& p, double t, const Point& q) {
  return {s * p[0] + t * q[0], s * p[1] + t * q[1], s * p[2] + t * q[2]};
}

struct TriangleGradient {
  Point vector;
  double twiceArea;
};

TriangleGradient gradientIn(const std::array<Point, 3>& p, const std::array<double, 3>& u) {
  const Point normal = areaVector(p[0], p[1], p[2]);
  const double twiceArea = length(normal);
  const Point along = scaledSum(u[1] - u[0], p[0] - p[2], u[2] - u[0], p[1] - p[0]);
  Point vector = cross(normal, along);
  // Two divisions, not one by the square, which may underflow; and no negative zero.
  for (double& component : vector) component = component / twiceArea / twiceArea + 0.0;
  return {vector, twiceArea};
}

}  // namespace

Gradient gradientOf(const Mesh& mesh, std::span<const double> field) {
  Gradient gradient;
  gradient.ofTriangles.assign(mesh.triangles.size(), kNone);
  gradient.ofVertices.assign(mesh.vertices.size(), 0.0);
  std::vector<double> weights(field.size(), 0.0);
  for (int t = 0; t < mesh.triangleCount(); ++t) {
    if (hasNoArea(mesh, t)) {
      gradient.withoutArea.push_back(t);
      continue;
    }
    std::array<Point, 3> points;
    std::array<double, 3> values;
    for (std::size_t k = 0; k < 3; ++k) {
      points[k] = mesh.point(mesh.corners(t)[k]);
      values[k] = field[asIndex(mesh.corners(t)[k])];
    }
    const auto [vector, twiceArea] = gradientIn(points, values);
    for (std::size_t axis = 0; axis < 3; ++axis)
      gradient.ofTriangles[3 * asIndex(t) + axis] = vector[axis];
    for (const int v : mesh.corners(t)) {
      const std::size_t i = asIndex(v);
      weights[i] += twiceArea;
      for (std::size_t axis = 0; axis < 3; ++axis)
        gradient.ofVertices[3 * i + axis] += twiceArea * vector[axis];
    }
  }
  for (std::size_t i = 0; i < weights.size(); ++i)
    for (std::size_t axis = 0; axis < 3; ++axis) {
      double& component = gradient.ofVertices[3 * i + axis];
      component = weights[i] > 0 ? component / weights[i] : kNone;
    }
  return gradient;
}

}  // namespace qelm::tool
