// Level curves on shapes where number, form and length are known.
#include <gtest/gtest.h>

#include <algorithm>
#include <bit>
#include <cmath>
#include <cstdint>
#include <numbers>
#include <vector>

#include "isolines/curves_of.h"
#include "isolines/plain_curves.h"
#include "support/random.h"

namespace qelm::test {
namespace {

constexpr double kPi = std::numbers::pi;

double x(Point p) { return p.x; }
double z(Point p) { return p.z; }

/// Rings from radius `inner` to 1 around the origin.
Mesh annulus(int rings, int around, double inner) {
  Mesh mesh;
  for (int i = 0; i < rings; ++i) {
    const double r = inner + (1 - inner) * i / (rings - 1);
    for (int j = 0; j < around; ++j) {
      const double a = 2 * kPi * j / around;
      mesh.vertices.insert(mesh.vertices.end(), {r * std::cos(a), r * std::sin(a), 0});
      mesh.tags.push_back(0);
    }
  }
  const auto at = [&](int i, int j) { return i * around + j % around; };
  for (int i = 0; i + 1 < rings; ++i) {
    for (int j = 0; j < around; ++j) {
      for (const int v :
           {at(i, j), at(i + 1, j), at(i + 1, j + 1), at(i, j), at(i + 1, j + 1), at(i, j + 1)}) {
        mesh.triangles.push_back(v);
      }
    }
  }
  return mesh;
}

TEST(CurvesOnShapes, OfHeightOnAStandingTorusAreTwoOrOneOrNone) {
  const Mesh torus = torusMesh(60, 30);  // radii 2 and 0.75, saddles at x = +-1.25
  const Field across = torus.sample(x);
  const std::vector<double> levels = {-2.9, -2.1, -1.3, -1.2, 0.1, 1.2, 1.3, 2.7, 2.8};
  const std::vector<std::size_t> counts = {0, 1, 1, 2, 2, 2, 1, 1, 0};
  for (std::size_t l = 0; l < levels.size(); ++l) {
    const Polylines lines = curvesOf(torus, across, {levels[l]});
    EXPECT_EQ(lines.size(), counts[l]) << "at " << levels[l];
    EXPECT_EQ(closedCount(lines), counts[l]) << "at " << levels[l];
  }
}

TEST(CurvesOnShapes, OfHeightOnALyingTorusAreTwoCircles) {
  const Mesh torus = torusMesh(40, 24);
  const Field height = torus.sample(z);
  for (const double level : {-0.7, -0.3, 0.0, 0.2, 0.7}) {
    const Polylines lines = curvesOf(torus, height, {level});
    ASSERT_EQ(lines.size(), 2U) << "at " << level;
    EXPECT_EQ(closedCount(lines), 2U);
  }
}

TEST(CurvesOnShapes, OfDistanceInAnAnnulusAreOneRingEach) {
  const Mesh mesh = annulus(9, 48, 0.5);
  const Field r = mesh.sample([](Point p) { return std::hypot(p.x, p.y); });
  const Polylines lines = curvesOf(mesh, r, {0.55, 0.66, 0.77, 0.88, 0.99});
  ASSERT_EQ(lines.size(), 5U);
  for (const Polyline& line : lines) {
    EXPECT_TRUE(line.closed);
    EXPECT_NEAR(line.length(), 2 * kPi * (0.55 + 0.11 * line.level), 0.02);
    EXPECT_EQ(line.points.size(), 96U) << "every spoke and diagonal once";
  }
}

TEST(CurvesOnShapes, OfAnAngleInAnAnnulusRunFromRimToRim) {
  const Mesh mesh = annulus(6, 40, 0.5);
  const Field sine = mesh.sample([](Point p) { return p.y; });
  const Polylines lines = curvesOf(mesh, sine, {0.01, 0.75});
  ASSERT_EQ(lines.size(), 3U) << "two across the hole, and one beyond it";
  EXPECT_EQ(closedCount(lines), 0U);
}

TEST(CurvesOnShapes, OfASaddleAreTwoOnEitherSideOfIt) {
  const Mesh mesh = gridMesh(20, 20).mapped([](Point p) {
    return Point{2 * p.x - 1, 2 * p.y - 1, 0};
  });
  const Field saddle = mesh.sample([](Point p) { return p.x * p.x - p.y * p.y; });
  for (const double level : {-0.6, -0.05, 0.05, 0.6}) {
    const Polylines lines = curvesOf(mesh, saddle, {level});
    EXPECT_EQ(lines.size(), 2U) << "at " << level;
    EXPECT_EQ(closedCount(lines), 0U);
  }
}

TEST(CurvesOnShapes, OfACheckerboardRunBetweenItsDiagonals) {
  for (const int n : {2, 3, 6, 11}) {
    const Mesh mesh = gridMesh(n, n);
    Field board;
    for (int i = 0; i < n * n; ++i) board.push_back((i / n + i % n) % 2 == 0 ? 1 : -1);
    const Polylines lines = curvesOf(mesh, board, {0});
    EXPECT_EQ(lines.size(), static_cast<std::size_t>(2 * n - 2)) << n << " by " << n;
    EXPECT_EQ(flawIn(lines, mesh, board, {0}), "");
  }
}

TEST(CurvesOnShapes, OfALinearFieldAreStraightToTheLastBit) {
  const Mesh mesh = gridMesh(33, 33);
  const Polylines lines = curvesOf(mesh, mesh.sample(x), {0.3, 0.5, 0.7});
  ASSERT_EQ(lines.size(), 3U);
  EXPECT_EQ(lines[1].points.size(), 33U) << "along edges: no diagonal is cut inside";
  for (const Polyline& line : lines) {
    for (const Coordinates& p : line.points) {
      EXPECT_NEAR(p[0], std::vector<double>({0.3, 0.5, 0.7})[static_cast<std::size_t>(line.level)],
                  1e-16);
      EXPECT_EQ(p[2], 0);
    }
  }
}

/// Mean order of convergence of errors at a spacing that halves from one to the next.
/// Irregular meshes scatter around it from step to step.
double meanOrder(const std::vector<double>& errors) {
  return std::log2(errors.front() / errors.back()) / static_cast<double>(errors.size() - 1);
}

TEST(CurveLengths, ConvergeQuadraticallyForCirclesInThePlane) {
  for (const double radius : {0.4, 0.75}) {
    std::vector<double> errors;
    for (const int cells : {16, 32, 64, 128}) {
      const Mesh mesh = gridMesh(cells + 1, cells + 1).mapped([](Point p) {
        return Point{2 * p.x - 1, 2 * p.y - 1, 0};
      });
      const Field squares = mesh.sample([](Point p) { return p.x * p.x + p.y * p.y; });
      const Polylines lines = curvesOf(mesh, squares, {radius * radius});
      ASSERT_EQ(lines.size(), 1U);
      errors.push_back(std::fabs(lines[0].length() - 2 * kPi * radius));
    }
    EXPECT_LT(errors.back(), 2e-3) << "radius " << radius;
    EXPECT_NEAR(meanOrder(errors), 2, 0.3) << "radius " << radius;
  }
}

TEST(CurveLengths, ConvergeQuadraticallyForParallelsOfTheSphere) {
  for (const double height : {-0.5, 0.1, 0.6}) {
    std::vector<double> errors;
    for (const int subdivisions : {2, 3, 4, 5}) {
      const Mesh mesh = sphereMesh(subdivisions).withTagged({0});
      const Polylines lines = curvesOf(mesh, mesh.sample(z), {height});
      ASSERT_EQ(lines.size(), 1U);
      ASSERT_TRUE(lines[0].closed);
      errors.push_back(std::fabs(lines[0].length() - 2 * kPi * std::sqrt(1 - height * height)));
    }
    EXPECT_LT(errors.back(), 5e-3) << "height " << height;
    EXPECT_NEAR(meanOrder(errors), 2, 0.3) << "height " << height;
  }
}

TEST(CurvesOnShapes, OfAHarmonicFieldFollowTheExactCircles) {
  // log r is harmonic: values on the two rims give it everywhere.
  const int rings = 33;
  const int around = 200;
  Mesh mesh = annulus(rings, around, 0.25);
  for (int j = 0; j < around; ++j) {
    mesh.tags[static_cast<std::size_t>(j)] = 1;
    mesh.tags[static_cast<std::size_t>((rings - 1) * around + j)] = 2;
  }
  Field values(mesh.tags.size(), 0);
  for (int j = 0; j < around; ++j) values[static_cast<std::size_t>(j)] = std::log(0.25);
  const MeshHandle system = construct(mesh);
  const std::vector<double> levels = {std::log(0.3), std::log(0.5), std::log(0.9)};
  const Polylines lines = polylinesOf(*cut(system, solve(system, values), levels));
  ASSERT_EQ(lines.size(), 3U);
  for (const Polyline& line : lines) {
    EXPECT_TRUE(line.closed);
    const double r = std::exp(levels[static_cast<std::size_t>(line.level)]);
    for (const Coordinates& p : line.points) EXPECT_NEAR(std::hypot(p[0], p[1]), r, 2e-3);
  }
}

/// FNV-1a over words.
class WordHash {
 public:
  void add(std::uint64_t word) { hash_ = (hash_ ^ word) * 0x100000001b3; }
  std::uint64_t value() const { return hash_; }

 private:
  std::uint64_t hash_ = 0xcbf29ce484222325;
};

TEST(CurveBits, AreTheSameOnEveryPlatform) {
  // Made with + - * / alone, so that no library function has a say.
  Random random(11);
  const Mesh mesh = gridMesh(60, 50).withBoundaryTagged().mapped([&](Point p) {
    const double u = p.x + uniform(random, -0.005, 0.005);
    const double v = p.y + uniform(random, -0.005, 0.005);
    return Point{3 * u - 1, 2 * v / (1 + u * u), u * v * (1 - u)};
  });
  Field field = mesh.sample([](Point p) { return p.x * p.x - p.y * p.y + p.z / (2 + p.x); });
  for (std::size_t i = 0; i < field.size(); i += 97) field[i] = 0.25;
  std::vector<double> levels;
  for (int l = 0; l < 60; ++l) levels.push_back(l / 16.0 - 1.5);
  const MeshHandle system = construct(mesh);
  const CurvesHandle record = cut(system, field, levels);
  WordHash hash;
  for (std::int64_t i = 0; i < 3 * record->pointCount; ++i) {
    hash.add(std::bit_cast<std::uint64_t>(record->points[i]));
  }
  for (std::int64_t c = 0; c < record->curveCount; ++c) {
    hash.add(static_cast<std::uint64_t>(record->starts[c]));
    hash.add(static_cast<std::uint64_t>(record->levels[c]));
    hash.add(static_cast<std::uint64_t>(record->closed[c]));
  }
  EXPECT_EQ(record->pointCount, 10059);
  EXPECT_EQ(hash.value(), 15787463847230651497U);
}

}  // namespace
}  // namespace qelm::test
