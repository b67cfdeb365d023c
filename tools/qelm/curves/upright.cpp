#include "curves/upright.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <string_view>
#include <vector>

#include "mesh/boundary.h"
#include "mesh/box.h"
#include "mesh_files/mesh_reader.h"
#include "text/error.h"
#include "text/text.h"

namespace qelm::tool {
namespace {

// The foot's part of the height.
constexpr double kFoot = 0.03;

// A mesh is a roof or a terrain if its height by the smaller side of its plan is at most this; an
// open surface may be steeper than a closed body.
constexpr double kRoof = 0.35;
constexpr double kOpenRoof = 0.6;

// With less support along every axis a body, such as the hull of a boat, does not stand at all: its
// longest side decides.
constexpr double kLeastSupport = 0.2;

// How many times larger the support must be for y instead of z, and for x instead of either: hardly
// anybody models along x.
constexpr double kClearlyBetter = 1.25;
constexpr double kFarBetter = 2;

// A mesh that is flat along y is a wall that stands along z if its support there is at least this,
// else a terrain with y up.
constexpr double kWallSupport = 0.5;

// A mesh thinner than this part of its largest side is a drawing in a plane, not a terrain.
constexpr double kFlat = 1e-3;

constexpr std::string_view kAxes = "xyz";

using PlanPoint = std::array<double, 2>;

/// Twice the area of the triangle (a, b, c), positive if it is counter-clockwise.
double turn(const PlanPoint& a, const PlanPoint& b, const PlanPoint& c) {
  return (b[0] - a[0]) * (c[1] - a[1]) - (b[1] - a[1]) * (c[0] - a[0]);
}

/// One side of the convex hull of points in increasing order (Andrew's monotone chain).
std::vector<PlanPoint> chain(const std::vector<PlanPoint>& points) {
  std::vector<PlanPoint> hull;
  for (const PlanPoint& p : points) {
    while (hull.size() > 1 && turn(hull[hull.size() - 2], hull.back(), p) <= 0) hull.pop_back();
    hull.push_back(p);
  }
  return hull;
}

double hullArea(std::vector<PlanPoint> points) {
  std::sort(points.begin(), points.end());
  std::vector<PlanPoint> hull = chain(points);
  std::reverse(points.begin(), points.end());
  const std::vector<PlanPoint> back = chain(points);
  hull.insert(hull.end(), back.begin(), back.end());
  double twice = 0;
  for (std::size_t k = 1; k + 1 < hull.size(); ++k) twice += turn(hull[0], hull[k], hull[k + 1]);
  return twice / 2;
}

/// The foot's area by the plan's, from 0 to 1. In fractions of the plan's sides, so that no product
/// overflows.
double support(const Mesh& mesh, const Box& box, std::size_t up) {
  const Point size = box.size();
  const std::array<std::size_t, 2> across = {(up + 1) % 3, (up + 2) % 3};
  if (!(size[across[0]] > 0 && size[across[1]] > 0)) return 0;
  std::vector<PlanPoint> foot;
  for (int v = 0; v < mesh.vertexCount(); ++v) {
    const Point p = mesh.point(v);
    if (p[up] - box.low[up] > kFoot * size[up]) continue;
    foot.push_back({(p[across[0]] - box.low[across[0]]) / size[across[0]],
                    (p[across[1]] - box.low[across[1]]) / size[across[1]]});
  }
  return hullArea(std::move(foot));
}

}  // namespace

std::optional<std::size_t> parseUp(const std::string& text) {
  const std::string_view word = trimmed(text);
  if (word == "auto") return {};
  const std::size_t axis = word.size() == 1 ? kAxes.find(word[0]) : std::string_view::npos;
  if (axis == std::string_view::npos)
    throw UsageError(fmt::format("--up {}: give x, y, z or auto", text));
  return axis;
}

std::size_t upAxis(std::optional<std::size_t> choice, const std::string& meshName,
                   const Mesh& mesh) {
  if (choice) return *choice;
  const std::string extension = meshExtension(meshName);
  if (extension == ".gltf" || extension == ".glb") return 1;
  return extension == ".obj" ? bestSupportedAxis(mesh) : 2;
}

std::size_t bestSupportedAxis(const Mesh& mesh) {
  const Box box = boxOf(mesh);
  const auto [x, y, z] = box.size();
  const double roof = boundaryLoops(mesh).empty() ? kRoof : kOpenRoof;
  if (z <= roof * std::min(x, y)) return 2;
  const double onZ = support(mesh, box, 2);
  if (y <= roof * std::min(x, z)) return onZ < kWallSupport && y > kFlat * std::max(x, z) ? 1 : 2;
  const double onX = support(mesh, box, 0);
  const double onY = support(mesh, box, 1);
  if (std::max({onX, onY, onZ}) < kLeastSupport) return z > std::max(x, y) ? 1 : 2;
  const std::size_t best = onY > kClearlyBetter * onZ ? 1 : 2;
  // Nothing stands on its end.
  const bool isLongAlongX = x > std::max(y, z);
  return !isLongAlongX && onX > kFarBetter * std::max(onY, onZ) ? 0 : best;
}

}  // namespace qelm::tool
