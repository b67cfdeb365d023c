#include "curves/upright.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <limits>
#include <string_view>
#include <vector>

#include "mesh/boundary.h"
#include "mesh_files/mesh_reader.h"
#include "text/error.h"
#include "text/text.h"

namespace qelm::tool {
namespace {

// Of the height: what the ground touches once a body has sunk in a little.
constexpr double kFoot = 0.03;

// Height by the smaller side of the plan, up to which a mesh is a roof or a terrain: it lies on
// whatever it was modelled on, and its lowest points say nothing.
constexpr double kRoof = 0.35;
constexpr double kOpenRoof = 0.6;

// Of the plan: with less a body, such as a hull of a boat, stands on nothing, and only lies along
// its longest side.
constexpr double kLeastFoot = 0.2;

// How much larger a foot must be for y instead of z, and for x, along which hardly anybody models.
constexpr double kClearlyBetter = 1.25;
constexpr double kFarBetter = 2;

// Of the plan: a standing wall's foot takes more, a terrain's that stands on its edge less.
constexpr double kWallsFoot = 0.5;

// Thinner than this part of its largest side a mesh is a drawing in a plane, not a terrain.
constexpr double kFlat = 1e-3;

constexpr std::string_view kAxes = "xyz";

using PlanPoint = std::array<double, 2>;

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

struct Bounds {
  Point low, size;
};

Bounds boundsOf(const Mesh& mesh) {
  constexpr double kInfinity = std::numeric_limits<double>::infinity();
  Point low = {kInfinity, kInfinity, kInfinity};
  Point high = {-kInfinity, -kInfinity, -kInfinity};
  for (int v = 0; v < mesh.vertexCount(); ++v)
    for (std::size_t k = 0; k < 3; ++k) {
      low[k] = std::min(low[k], mesh.point(v)[k]);
      high[k] = std::max(high[k], mesh.point(v)[k]);
    }
  return {low, {high[0] - low[0], high[1] - low[1], high[2] - low[2]}};
}

/// The foot's part of the plan, 0 to 1; the plan in fractions of its sides, so that no product
/// overflows.
double support(const Mesh& mesh, const Bounds& box, std::size_t up) {
  const std::array<std::size_t, 2> across = {(up + 1) % 3, (up + 2) % 3};
  if (!(box.size[across[0]] > 0 && box.size[across[1]] > 0)) return 0;
  std::vector<PlanPoint> foot;
  for (int v = 0; v < mesh.vertexCount(); ++v) {
    const Point p = mesh.point(v);
    if (p[up] - box.low[up] > kFoot * box.size[up]) continue;
    foot.push_back({(p[across[0]] - box.low[across[0]]) / box.size[across[0]],
                    (p[across[1]] - box.low[across[1]]) / box.size[across[1]]});
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
  const Bounds box = boundsOf(mesh);
  const auto& [x, y, z] = box.size;
  // What ends somewhere is a surface rather than a body, and may be steeper.
  const double roof = boundaryLoops(mesh).empty() ? kRoof : kOpenRoof;
  if (z <= roof * std::min(x, y)) return 2;
  const double onZ = support(mesh, box, 2);
  if (y <= roof * std::min(x, z)) return onZ < kWallsFoot && y > kFlat * std::max(x, z) ? 1 : 2;
  const double onX = support(mesh, box, 0);
  const double onY = support(mesh, box, 1);
  if (std::max({onX, onY, onZ}) < kLeastFoot) return z > std::max(x, y) ? 1 : 2;
  const std::size_t best = onY > kClearlyBetter * onZ ? 1 : 2;
  // Nothing stands on its end.
  const bool isLongAlongX = x > std::max(y, z);
  return !isLongAlongX && onX > kFarBetter * std::max(onY, onZ) ? 0 : best;
}

}  // namespace qelm::tool
