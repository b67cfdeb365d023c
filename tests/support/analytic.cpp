#include "support/analytic.h"

#include <cmath>
#include <cstddef>
#include <numbers>

namespace qelm::test {
namespace {

constexpr double kTurn = 2 * std::numbers::pi;

/// Rows of `around` vertices, every second row shifted by half a step, so that no
/// symmetry of the mesh hides an error. surface(angle, v) gives the points,
/// field(angle, v) the exact values, v in [0, 1].
template <class Surface, class FieldFunction>
AnalyticCase closedStrip(const char* name, int resolution, Surface surface, FieldFunction field) {
  const int around = 4 * resolution;
  AnalyticCase result{name, {}, {}};
  for (int row = 0; row <= resolution; ++row) {
    const double v = static_cast<double>(row) / resolution;
    for (int i = 0; i < around; ++i) {
      const double angle = kTurn * (i + 0.5 * (row % 2)) / around;
      const Point p = surface(angle, v);
      result.mesh.vertices.insert(result.mesh.vertices.end(), {p.x, p.y, p.z});
      result.mesh.tags.push_back(row == 0 || row == resolution ? 1 : 0);
      result.exact.push_back(field(angle, v));
    }
  }
  for (int row = 0; row < resolution; ++row) {
    const int shift = row % 2;
    for (int i = 0; i < around; ++i) {
      const int a = row * around + i;
      const int b = row * around + (i + 1) % around;
      const int c = (row + 1) * around + (i + shift) % around;
      const int d = (row + 1) * around + (i + shift + around - 1) % around;
      for (const int v : {a, b, c, a, c, d}) result.mesh.triangles.push_back(v);
    }
  }
  return result;
}

}  // namespace

AnalyticCase annulusCase(int resolution) {
  const auto radius = [](double v) { return 1 + 2 * v; };
  return closedStrip(
      "annulus", resolution,
      [&](double angle, double v) {
        return Point{radius(v) * std::cos(angle), radius(v) * std::sin(angle), 0};
      },
      [&](double, double v) { return std::log(radius(v)); });
}

AnalyticCase twistedAnnulusCase(int resolution, double turn, double near) {
  AnalyticCase c = annulusCase(resolution);
  c.name = "twisted annulus";
  const int around = 4 * resolution;
  for (int i = 0; i < c.mesh.vertexCount(); ++i) {
    const int row = i / around;
    const double moved = row % 2 == 1 && row < resolution ? row + 1 - near : row;
    const double radius = 1 + 2 * moved / resolution;
    const double angle = kTurn * (i % around + 0.5 * (row % 2) + turn * row) / around;
    const auto base = 3 * static_cast<std::size_t>(i);
    c.mesh.vertices[base] = radius * std::cos(angle);
    c.mesh.vertices[base + 1] = radius * std::sin(angle);
    c.exact[static_cast<std::size_t>(i)] = std::log(radius);
  }
  return c;
}

AnalyticCase sphereZoneCase(int resolution) {
  const auto colatitude = [](double v) { return 0.4 + 1.8 * v; };
  return closedStrip(
      "sphere zone", resolution,
      [&](double angle, double v) {
        const double c = colatitude(v);
        return Point{std::sin(c) * std::cos(angle), std::sin(c) * std::sin(angle), std::cos(c)};
      },
      [&](double angle, double v) { return std::tan(colatitude(v) / 2) * std::cos(angle); });
}

AnalyticCase catenoidCase(int resolution) {
  const auto height = [](double v) { return 2 * v - 1; };
  return closedStrip(
      "catenoid", resolution,
      [&](double angle, double v) {
        const double z = height(v);
        return Point{std::cosh(z) * std::cos(angle), std::cosh(z) * std::sin(angle), z};
      },
      [&](double angle, double v) { return std::exp(height(v)) * std::cos(angle); });
}

std::vector<AnalyticCase> analyticCases(int resolution) {
  return {annulusCase(resolution), sphereZoneCase(resolution), catenoidCase(resolution)};
}

double largestError(const Field& solved, const Field& exact) {
  double largest = 0;
  for (std::size_t i = 0; i < exact.size(); ++i) {
    const double error = std::fabs(solved[i] - exact[i]);
    if (std::isnan(error)) return error;
    if (error > largest) largest = error;
  }
  return largest;
}

}  // namespace qelm::test
