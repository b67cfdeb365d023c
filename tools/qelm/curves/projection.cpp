#include "curves/projection.h"

#include <fmt/format.h>

#include <Eigen/Eigenvalues>
#include <algorithm>
#include <cmath>
#include <cstddef>
#include <string_view>
#include <vector>

#include "mesh/weld.h"
#include "text/error.h"
#include "text/text.h"

namespace qelm::tool {
namespace {

// Bodies about as flat along what is up as across their best plane are looked at from
// above: a picture in a known direction is worth more than a slightly larger one.
constexpr double kFlatEnough = 1.1;

// Closer to the upright axis than about 8 degrees, "it points up" says too little.
constexpr double kAlongUp = 0.99;

Point scaled(const Point& p, double factor) {
  return {p[0] * factor, p[1] * factor, p[2] * factor};
}

// By the largest part first: squares of the parts could overflow or vanish.
Point unit(const Point& p) {
  const double largest = std::max({std::abs(p[0]), std::abs(p[1]), std::abs(p[2])});
  const Point q = scaled(p, 1 / largest);
  return scaled(q, 1 / length(q));
}

/// What is above, in front and at the right of a mesh that stands along an axis.
struct Standing {
  Point above, front, right;
};

/// With z up the front is at -y, as on drawings; x, y and z take turns for another axis up, and
/// so does the front but for y up, where it is at +z, as that convention has it.
Standing standingAlong(std::size_t upAxis) {
  if (upAxis == 0) return {{1, 0, 0}, {0, 0, -1}, {0, 1, 0}};
  if (upAxis == 1) return {{0, 1, 0}, {0, 0, 1}, {1, 0, 0}};
  return {{0, 0, 1}, {0, -1, 0}, {1, 0, 0}};
}

/// Covariance of the vertices, in units of the mesh's diagonal.
Eigen::Matrix3d covariance(const Mesh& mesh) {
  const double size = diagonal(mesh);
  const Point origin = mesh.point(0);
  const auto position = [&](int v) {
    const Point p = scaled(mesh.point(v) - origin, 1 / size);
    return Eigen::Vector3d(p[0], p[1], p[2]);
  };
  Eigen::Vector3d mean = Eigen::Vector3d::Zero();
  for (int v = 0; v < mesh.vertexCount(); ++v) mean += position(v);
  mean /= mesh.vertexCount();
  Eigen::Matrix3d sum = Eigen::Matrix3d::Zero();
  for (int v = 0; v < mesh.vertexCount(); ++v)
    sum += (position(v) - mean) * (position(v) - mean).transpose();
  return sum / mesh.vertexCount();
}

/// From above, from the front or from the right, by whichever direction this one is nearest to.
Point facingTheViewer(const Point& direction, const Standing& standing) {
  Point nearest = standing.above;
  for (const Point& side : {standing.front, standing.right})
    if (std::abs(dot(direction, side)) > std::abs(dot(direction, nearest))) nearest = side;
  return scaled(direction, dot(direction, nearest) < 0 ? -1 : 1);
}

Point bestDirection(const Mesh& mesh, const Standing& standing) {
  const Eigen::Matrix3d spread = covariance(mesh);
  const Eigen::SelfAdjointEigenSolver<Eigen::Matrix3d> solver(spread);
  const Eigen::Vector3d above(standing.above[0], standing.above[1], standing.above[2]);
  if (above.dot(spread * above) <= kFlatEnough * solver.eigenvalues()[0]) return standing.above;
  const Eigen::Vector3d normal = solver.eigenvectors().col(0);
  return facingTheViewer({normal[0], normal[1], normal[2]}, standing);
}

Point parsedDirection(const std::string& text) {
  constexpr std::string_view kAxes = "xyz";
  std::string_view word = trimmed(text);
  const bool isSigned = word.size() == 2 && (word[0] == '-' || word[0] == '+');
  if (isSigned || word.size() == 1) {
    const std::size_t axis = kAxes.find(word.back());
    if (axis != std::string_view::npos) {
      Point direction{};
      direction[axis] = word[0] == '-' ? -1 : 1;
      return direction;
    }
  }
  Point direction{};
  const std::vector<std::string_view> parts = splitAt(word, ',');
  bool good = parts.size() == 3;
  for (std::size_t k = 0; good && k < 3; ++k) {
    const auto value = parseDouble(trimmed(parts[k]));
    good = value && std::isfinite(*value);
    if (good) direction[k] = *value;
  }
  if (!good || direction == Point{})
    throw UsageError(fmt::format(
        "--view {}: give best, x, y, z, -x, -y, -z, or a direction X,Y,Z towards the viewer",
        text));
  return direction;
}

}  // namespace

ViewChoice parseView(const std::string& text) {
  if (trimmed(text) == "best" || trimmed(text) == "plane") return {{}, text};
  return {parsedDirection(text), text};
}

Projection projectionFor(const ViewChoice& choice, const Mesh& mesh, std::size_t upAxis) {
  const Standing standing = standingAlong(upAxis);
  Projection result;
  result.toward = unit(choice.direction ? *choice.direction : bestDirection(mesh, standing));
  const bool isAlongUp = std::abs(dot(result.toward, standing.above)) > kAlongUp;
  const Point upright = isAlongUp ? scaled(standing.front, -1) : standing.above;
  result.right = unit(cross(upright, result.toward));
  result.up = cross(result.toward, result.right);
  const bool fromAbove = result.toward == standing.above;
  result.description = fromAbove          ? fmt::format("seen from +{}", "xyz"[upAxis])
                       : choice.direction ? fmt::format("seen from {}", choice.text)
                                          : "seen across its best plane";
  return result;
}

}  // namespace qelm::tool
