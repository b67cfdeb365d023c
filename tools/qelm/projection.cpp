#include "projection.h"

#include <fmt/format.h>

#include <Eigen/Eigenvalues>
#include <cmath>
#include <optional>

#include "error.h"
#include "vec3.h"

namespace qelm::tool {
namespace {

// With less than this part of a view's length, an axis is too close to the direction
// of view to tell what is up.
constexpr double kLeastUpward = 0.1;

Point scaled(const Point& a, double factor) {
  return {a[0] * factor, a[1] * factor, a[2] * factor};
}

Point unit(const Point& a) { return scaled(a, 1 / length(a)); }

/// The view from where `normal` points to, with z upwards on paper, or else y.
Projection seenFrom(const Point& normal) {
  const auto upward = [&](const Point& axis) { return axis - scaled(normal, dot(axis, normal)); };
  Point up = upward({0, 0, 1});
  if (length(up) < kLeastUpward) up = upward({0, 1, 0});
  up = unit(up);
  return {cross(up, normal), up};
}

Point centre(const Mesh& mesh) {
  Point sum = {0, 0, 0};
  for (int v = 0; v < mesh.vertexCount(); ++v) sum = sum + mesh.point(v);
  return scaled(sum, 1.0 / mesh.vertexCount());
}

/// Of the plane of least squares: the direction in which the vertices spread least.
Point planeNormal(const Mesh& mesh) {
  const Point middle = centre(mesh);
  Eigen::Matrix3d spread = Eigen::Matrix3d::Zero();
  for (int v = 0; v < mesh.vertexCount(); ++v) {
    const Point p = mesh.point(v) - middle;
    const Eigen::Vector3d d(p[0], p[1], p[2]);
    spread += d * d.transpose();
  }
  const Eigen::Vector3d n =
      Eigen::SelfAdjointEigenSolver<Eigen::Matrix3d>(spread).eigenvectors().col(0);
  return unit({n[0], n[1], n[2]});
}

/// Twice the sum of the triangles' oriented areas.
Point areaVector(const Mesh& mesh) {
  Point sum = {0, 0, 0};
  for (int t = 0; t < mesh.triangleCount(); ++t) {
    const auto c = mesh.corners(t);
    const Point p = mesh.point(c[0]);
    sum = sum + cross(mesh.point(c[1]) - p, mesh.point(c[2]) - p);
  }
  return sum;
}

Projection fittingPlane(const Mesh& mesh) {
  const Point normal = planeNormal(mesh);
  const double facing = dot(areaVector(mesh), normal);
  return seenFrom(facing < 0 ? scaled(normal, -1) : normal);
}

std::optional<Point> axisOf(const std::string& word) {
  const bool negative = !word.empty() && word[0] == '-';
  const std::string name = negative ? word.substr(1) : word;
  for (std::size_t k = 0; k < 3; ++k) {
    if (name != std::string(1, "xyz"[k])) continue;
    Point axis = {0, 0, 0};
    axis[k] = negative ? -1 : 1;
    return axis;
  }
  return {};
}

}  // namespace

std::array<double, 2> Projection::operator()(const Point& p) const {
  return {dot(right, p), dot(up, p)};
}

Projection projectionOf(const std::string& word, const Mesh& mesh) {
  if (word == "plane") return fittingPlane(mesh);
  const std::optional<Point> axis = axisOf(word);
  if (!axis) throw UsageError(fmt::format("--view {}: write x, y, z, -x, -y, -z or plane", word));
  return seenFrom(*axis);
}

}  // namespace qelm::tool
