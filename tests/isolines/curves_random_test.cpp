// Properties of level curves on random meshes, fields and levels.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <limits>
#include <set>
#include <string>
#include <vector>

#include "isolines/curves_of.h"
#include "isolines/plain_curves.h"
#include "support/long_double.h"
#include "support/random.h"

namespace qelm::test {
namespace {

constexpr double kInf = std::numeric_limits<double>::infinity();
constexpr double kNan = std::numeric_limits<double>::quiet_NaN();

struct Case {
  Mesh mesh;
  Field field;
  std::vector<double> levels;
};

Mesh withRandomTags(Mesh mesh, Random& random) {
  for (auto& tag : mesh.tags) tag = uniformInt(random, 0, 2);
  return mesh;
}

/// Manifold and consistently oriented, open or closed, flat or bent.
Mesh randomSurface(Random& random) {
  const int columns = uniformInt(random, 3, 9);
  const int rows = uniformInt(random, 3, 9);
  switch (uniformInt(random, 0, 5)) {
    case 0:
      return gridMesh(columns, rows);
    case 1:
      return openSurface(columns, rows, random());
    case 2:
      return sphereMesh(uniformInt(random, 0, 1));
    case 3:
      return torusMesh(columns, rows);
    case 4:
      return fan(columns);
    default:
      return gridMesh(columns, rows).mapped([](Point p) {
        return Point{p.x + 1e5, 3 * p.y - 1e4, 1e6};
      });
  }
}

/// Triangles between random points, without repeated triangles: edges of many
/// triangles and every mixture of orientations.
Mesh randomTangle(Random& random) {
  const int n = uniformInt(random, 4, 10);
  Mesh mesh;
  std::set<std::set<int>> seen;
  for (int t = uniformInt(random, 3, 3 * n); t > 0; --t) {
    const int a = uniformInt(random, 0, n - 1);
    const int b = uniformInt(random, 0, n - 1);
    const int c = uniformInt(random, 0, n - 1);
    const std::set<int> corners = {a, b, c};
    if (corners.size() < 3 || !seen.insert(corners).second) continue;
    mesh.triangles.insert(mesh.triangles.end(), {a, b, c});
  }
  std::vector<std::int32_t> newIndex(static_cast<std::size_t>(n), -1);
  for (auto& v : mesh.triangles) {
    std::int32_t& index = newIndex[static_cast<std::size_t>(v)];
    if (index < 0) {
      index = mesh.vertexCount();
      for (int k = 0; k < 3; ++k) mesh.vertices.push_back(uniform(random, -1, 1));
      mesh.tags.push_back(0);
    }
    v = index;
  }
  return mesh;
}

Field generalField(const Mesh& mesh, Random& random) {
  return mesh.sample([&](Point) { return uniform(random, -1, 1); });
}

/// Whole numbers, of which levels can hit many at once.
Field steppedField(const Mesh& mesh, Random& random) {
  const int most = uniformInt(random, 1, 4);
  return mesh.sample([&](Point) { return uniformInt(random, 0, most); });
}

std::vector<double> generalLevels(Random& random) {
  std::vector<double> levels;
  for (int l = uniformInt(random, 1, 9); l > 0; --l) levels.push_back(uniform(random, -1.1, 1.1));
  return levels;
}

/// Now and then something other than a number.
void spoil(Field& field, Random& random) {
  for (double& value : field) {
    switch (uniformInt(random, 0, 30)) {
      case 0:
        value = kNan;
        break;
      case 1:
        value = kInf;
        break;
      case 2:
        value = -kInf;
        break;
      case 3:
        value = 1.7e308;
        break;
      case 4:
        value = -1.7e308;
        break;
      case 5:
        value = 5e-324;
        break;
      default:
        break;
    }
  }
}

void expectSoundPieces(const Case& c, bool directed) {
  const Polylines lines = curvesOf(c.mesh, c.field, c.levels);
  ASSERT_EQ(flawIn(lines, c.mesh, c.field, c.levels), "");
  for (std::size_t l = 0; l < c.levels.size(); ++l) {
    ASSERT_EQ(
        differenceInSegments(lines, static_cast<int>(l), c.mesh, c.field, c.levels[l], directed),
        "")
        << "at level " << l << ", " << c.levels[l];
  }
}

std::string roundTrace(int round) { return "round " + std::to_string(round); }

TEST(CurvesOfRandomFields, AreThoseOfAPlainMarchJoinedThroughMaps) {
  const std::uint64_t seed = testSeed();
  SCOPED_TRACE(seedTrace(seed));
  Random random(seed);
  for (int round = 0; round < 1500; ++round) {
    SCOPED_TRACE(roundTrace(round));
    Case c;
    c.mesh = withRandomTags(
        uniformInt(random, 0, 1) == 0 ? randomSurface(random) : randomTangle(random), random);
    if (c.mesh.triangles.empty()) continue;
    c.field = generalField(c.mesh, random);
    for (double& value : c.field) {
      if (uniformInt(random, 0, 15) == 0) value = kNan;
    }
    c.levels = generalLevels(random);
    ASSERT_EQ(curvesOf(c.mesh, c.field, c.levels), plainCurves(c.mesh, c.field, c.levels));
  }
}

TEST(CurvesOfRandomFields, HaveThePiecesOfTheTrianglesAtTheLevelsOfVerticesToo) {
  const std::uint64_t seed = testSeed() + 1;
  SCOPED_TRACE(seedTrace(testSeed()));
  Random random(seed);
  for (int round = 0; round < 3000; ++round) {
    SCOPED_TRACE(roundTrace(round));
    Case c;
    c.mesh = withRandomTags(randomSurface(random), random);
    c.field = steppedField(c.mesh, random);
    c.levels = {0, 0.5, 1, 2, 3, 1.25};
    if (round % 3 == 0) spoil(c.field, random);
    expectSoundPieces(c, true);
    if (HasFatalFailure()) return;
    ASSERT_EQ(repetitionIn(curvesOf(c.mesh, c.field, c.levels)), "");
  }
}

TEST(CurvesOfRandomFields, AreSoundInTanglesOfTriangles) {
  SCOPED_TRACE(seedTrace(testSeed()));
  Random random(testSeed() + 2);
  for (int round = 0; round < 3000; ++round) {
    SCOPED_TRACE(roundTrace(round));
    Case c;
    c.mesh = withRandomTags(randomTangle(random), random);
    if (c.mesh.triangles.empty()) continue;
    c.field = steppedField(c.mesh, random);
    if (round % 3 == 0) spoil(c.field, random);
    c.levels = {0.5, 1, 2, 3.5};
    expectSoundPieces(c, false);
    if (HasFatalFailure()) return;
  }
}

TEST(CurvesOfRandomFields, AreSoundForLevelsWithinRoundingOfTheValues) {
  SCOPED_TRACE(seedTrace(testSeed()));
  Random random(testSeed() + 3);
  for (int round = 0; round < 1500; ++round) {
    SCOPED_TRACE(roundTrace(round));
    Case c;
    c.mesh = withRandomTags(randomSurface(random), random);
    c.field = steppedField(c.mesh, random);
    for (const double level : {1.0, 2.0}) {
      for (const double off : {-1e-9, -1e-12, -1e-15, 2e-16, 1e-14, 1e-11}) {
        c.levels.push_back(level + off);
      }
    }
    expectSoundPieces(c, true);
    if (HasFatalFailure()) return;
  }
}

TEST(CurvesOfRandomFields, DoNotDependOnNumberings) {
  SCOPED_TRACE(seedTrace(testSeed()));
  Random random(testSeed() + 4);
  for (int round = 0; round < 2000; ++round) {
    SCOPED_TRACE(roundTrace(round));
    const Mesh mesh = round % 2 == 0 ? randomSurface(random) : randomTangle(random);
    if (mesh.triangles.empty()) continue;
    Field field = round % 3 == 0 ? generalField(mesh, random) : steppedField(mesh, random);
    if (round % 5 == 0) spoil(field, random);
    const std::vector<double> levels = {0.5, 1, 2, 0.1, 1 + 1e-15, 0};

    const auto newIndex = permutation(random, mesh.vertexCount());
    Mesh other = relabelled(mesh, newIndex);
    Field otherField(field.size());
    for (std::size_t i = 0; i < field.size(); ++i) {
      otherField[static_cast<std::size_t>(newIndex[i])] = field[i];
    }
    const auto order = permutation(random, mesh.triangleCount());
    const std::vector<std::int32_t> triangles = other.triangles;
    for (std::size_t t = 0; t < order.size(); ++t) {
      const auto turn = static_cast<std::size_t>(uniformInt(random, 0, 2));
      for (std::size_t k = 0; k < 3; ++k) {
        other.triangles[3 * t + k] =
            triangles[3 * static_cast<std::size_t>(order[t]) + (k + turn) % 3];
      }
    }
    ASSERT_EQ(curvesOf(withRandomTags(other, random), otherField, levels),
              curvesOf(mesh, field, levels));
  }
}

/// Where the level exactly crosses, in extended precision, and how far off a
/// coordinate may be.
struct ExactCrossing {
  long double at;
  double bound;
};

ExactCrossing exactCoordinate(long double p, long double q, long double a, long double b,
                              long double level) {
  const double u = 0x1p-53;
  const auto size = static_cast<double>(std::max(std::fabs(p), std::fabs(q)));
  return {p + (level - a) / (b - a) * (q - p), 3 * u * static_cast<double>(std::fabs(q - p)) +
                                                   u * size +
                                                   std::numeric_limits<double>::denorm_min()};
}

/// Whether a point is the crossing of some edge with a level, within the bound and
/// not beyond the edge's ends.
bool isOnSomeEdge(const Coordinates& point, const Case& c, double level) {
  for (std::size_t t = 0; t < c.mesh.triangles.size(); ++t) {
    const std::int32_t v = c.mesh.triangles[t];
    const std::int32_t w = c.mesh.triangles[t % 3 == 2 ? t - 2 : t + 1];
    const double a = c.field[static_cast<std::size_t>(v)];
    const double b = c.field[static_cast<std::size_t>(w)];
    if ((a >= level) == (b >= level)) continue;
    bool matches = true;
    for (std::size_t k = 0; k < 3; ++k) {
      const double p = c.mesh.vertices[3 * static_cast<std::size_t>(v) + k];
      const double q = c.mesh.vertices[3 * static_cast<std::size_t>(w) + k];
      const ExactCrossing exact = exactCoordinate(p, q, a, b, level);
      const auto off = static_cast<double>(std::fabs(point[k] - exact.at));
      matches =
          matches && off <= exact.bound && point[k] >= std::min(p, q) && point[k] <= std::max(p, q);
    }
    if (matches) return true;
  }
  return false;
}

TEST(CurvesOfRandomFields, LieOnTheirLevelsWithinTheBoundAndOnTheirEdges) {
  if (!longDoubleIsWide()) GTEST_SKIP() << "long double is not wide here";
  SCOPED_TRACE(seedTrace(testSeed()));
  Random random(testSeed() + 5);
  for (int round = 0; round < 600; ++round) {
    SCOPED_TRACE(roundTrace(round));
    Case c;
    c.mesh = round % 2 == 0 ? randomSurface(random) : randomTangle(random);
    if (c.mesh.triangles.empty()) continue;
    c.field = generalField(c.mesh, random);
    // Steep and gentle edges: magnitudes from denormal to huge.
    const double scale = std::ldexp(1.0, uniformInt(random, -1070, 1020));
    for (double& value : c.field) value *= round % 4 == 0 ? scale : 1;
    for (double level : generalLevels(random)) {
      c.levels.push_back(level * (round % 4 == 0 ? scale : 1));
    }
    for (const Polyline& line : curvesOf(c.mesh, c.field, c.levels)) {
      const double level = c.levels[static_cast<std::size_t>(line.level)];
      for (const Coordinates& point : line.points)
        ASSERT_TRUE(isOnSomeEdge(point, c, level)) << level;
    }
  }
}

TEST(CurvesOfRandomFields, OfManyLevelsAreThoseOfEachAlone) {
  SCOPED_TRACE(seedTrace(testSeed()));
  Random random(testSeed() + 6);
  const Mesh mesh = withRandomTags(openSurface(20, 20, 5), random);
  const Field field = generalField(mesh, random);
  std::vector<double> levels;
  for (int l = 0; l < 300; ++l) levels.push_back(uniform(random, -1.2, 1.2));
  levels[17] = levels[250];
  const MeshHandle system = construct(mesh);
  const Polylines all = polylinesOf(*cut(system, field, levels));
  Polylines expected;
  for (std::size_t l = 0; l < levels.size(); ++l) {
    for (Polyline line : polylinesOf(*cut(system, field, {levels[l]}))) {
      line.level = static_cast<int>(l);
      expected.push_back(std::move(line));
    }
  }
  EXPECT_EQ(all, expected);
}

TEST(CurvesOfRandomFields, CountOpenEndsByTheBoundaryTheyCross) {
  SCOPED_TRACE(seedTrace(testSeed()));
  Random random(testSeed() + 7);
  for (int round = 0; round < 300; ++round) {
    const Mesh mesh = randomSurface(random);
    Field signs = mesh.sample([&](Point) { return uniformInt(random, 0, 1) == 0 ? -1.0 : 1.0; });
    std::size_t ends = 0;
    for (const auto& [edge, count] : edgeUses(mesh, signs)) {
      const double a = signs[static_cast<std::size_t>(edge.first)];
      const double b = signs[static_cast<std::size_t>(edge.second)];
      if (count == 1 && a * b < 0) ++ends;
    }
    const Polylines lines = curvesOf(mesh, signs, {0});
    EXPECT_EQ(2 * (lines.size() - closedCount(lines)), ends) << "round " << round;
  }
}

TEST(CurvesOfRandomFields, SurviveNumberingsThatPileUpInAHashTable) {
  // A strip of two rows: rungs between v on one side and w on the other, numbered so
  // that v + 2 w is the same all along.
  constexpr int kRungs = 6000;
  Mesh mesh;
  mesh.vertices.resize(std::size_t{9} * kRungs);
  mesh.tags.assign(std::size_t{3} * kRungs, 1);
  const auto left = [](int i) { return 2 * i; };
  const auto right = [](int i) { return 3 * kRungs - 1 - i; };
  Field field(mesh.tags.size(), 0);
  std::vector<bool> used(mesh.tags.size(), false);
  const auto put = [&](int v, double x, double y) {
    const auto i = static_cast<std::size_t>(v);
    mesh.vertices[3 * i] = x;
    mesh.vertices[3 * i + 1] = y;
    field[i] = y;
    used[i] = true;
  };
  for (int i = 0; i < kRungs; ++i) {
    put(left(i), i, 0);
    put(right(i), i, 1);
    if (i == 0) continue;
    mesh.triangles.insert(mesh.triangles.end(), {left(i - 1), left(i), right(i - 1)});
    mesh.triangles.insert(mesh.triangles.end(), {left(i), right(i), right(i - 1)});
  }
  // The numbers in between, one triangle each, far from the level.
  for (int v = 0; v < mesh.vertexCount(); ++v) {
    if (!used[static_cast<std::size_t>(v)]) {
      mesh.triangles.insert(mesh.triangles.end(), {v, left(0), left(1)});
    }
  }
  const Polylines lines = curvesOf(mesh, field, {0.25});
  ASSERT_EQ(lines.size(), 1U);
  EXPECT_EQ(lines[0].points.size(), 2U * kRungs - 1);
}

}  // namespace
}  // namespace qelm::test
