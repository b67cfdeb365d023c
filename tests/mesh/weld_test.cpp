// Welding: hand-made cases, every rule about what counts as close, and the
// all-pairs oracle.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <limits>
#include <vector>

#include "qelm.h"
#include "support/compare.h"
#include "support/meshes.h"
#include "support/plain_weld.h"
#include "support/random.h"

namespace qelm::test {
namespace {

using Ints = std::vector<std::int32_t>;

constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();
constexpr double kInfinity = std::numeric_limits<double>::infinity();
constexpr std::int32_t kGuard = -777;
constexpr double kGuardValue = -777.25;

/// Calls with guarded outputs: past the counts nothing may be written.
Welded weld(const std::vector<double>& vertices, const Ints& triangles, double tolerance) {
  Welded result{std::vector<double>(vertices.size() + 3, kGuardValue),
                Ints(triangles.size() + 3, kGuard), Ints(vertices.size() / 3 + 1, kGuard)};
  int vertexCount = kGuard;
  int triangleCount = kGuard;
  EXPECT_EQ(qelmWeld(static_cast<int>(vertices.size() / 3), vertices.data(),
                     static_cast<int>(triangles.size() / 3), triangles.data(), tolerance,
                     result.vertices.data(), result.triangles.data(), result.map.data(),
                     &vertexCount, &triangleCount),
            0);
  const auto usedVertices = static_cast<std::ptrdiff_t>(3 * vertexCount);
  const auto usedTriangles = static_cast<std::ptrdiff_t>(3 * triangleCount);
  EXPECT_EQ(std::count(result.vertices.begin() + usedVertices, result.vertices.end(), kGuardValue),
            result.vertices.end() - result.vertices.begin() - usedVertices);
  EXPECT_EQ(std::count(result.triangles.begin() + usedTriangles, result.triangles.end(), kGuard),
            result.triangles.end() - result.triangles.begin() - usedTriangles);
  EXPECT_EQ(result.map.back(), kGuard);
  result.vertices.resize(static_cast<std::size_t>(usedVertices));
  result.triangles.resize(static_cast<std::size_t>(usedTriangles));
  result.map.pop_back();
  return result;
}

void expectSame(const Welded& actual, const Welded& expected) {
  ASSERT_EQ(actual.map, expected.map);
  ASSERT_EQ(actual.triangles, expected.triangles);
  ASSERT_TRUE(sameBits(actual.vertices, expected.vertices));
}

void expectAllPairs(const std::vector<double>& vertices, const Ints& triangles, double tolerance) {
  expectSame(weld(vertices, triangles, tolerance), allPairsWeld(vertices, triangles, tolerance));
}

/// Points on the x axis.
std::vector<double> onALine(const std::vector<double>& xs) {
  std::vector<double> vertices;
  for (const double x : xs) vertices.insert(vertices.end(), {x, 0, 0});
  return vertices;
}

TEST(WeldArguments, NegativeOnesReturn1AndTouchNothing) {
  const std::vector<double> vertices = {0, 0, 0};
  double outVertices[3] = {7, 7, 7};
  int outTriangles[3] = {7, 7, 7};
  int map = 7, vertexCount = 7, triangleCount = 7;
  const auto call = [&](int nv, int nt, double tolerance) {
    return qelmWeld(nv, vertices.data(), nt, outTriangles, tolerance, outVertices, outTriangles,
                    &map, &vertexCount, &triangleCount);
  };
  EXPECT_EQ(call(-1, 0, 1), 1);
  EXPECT_EQ(call(1, -1, 1), 1);
  EXPECT_EQ(call(1, 0, -1e-300), 1);
  EXPECT_EQ(call(1, 0, -kInfinity), 1);
  EXPECT_EQ(call(0, -1, 1), 1) << "checked before the empty mesh";
  EXPECT_EQ(vertexCount, 7);
  EXPECT_EQ(triangleCount, 7);
  EXPECT_EQ(map, 7);
  EXPECT_EQ(outVertices[0], 7);
}

TEST(WeldArguments, AnEmptyMeshHasCountsOfZeroAndNothingElseIsLookedAt) {
  int vertexCount = 7, triangleCount = 7;
  EXPECT_EQ(
      qelmWeld(0, nullptr, 5, nullptr, 1, nullptr, nullptr, nullptr, &vertexCount, &triangleCount),
      0);
  EXPECT_EQ(vertexCount, 0);
  EXPECT_EQ(triangleCount, 0);
  EXPECT_EQ(qelmWeld(0, nullptr, 0, nullptr, kNaN, nullptr, nullptr, nullptr, nullptr, nullptr), 0);
}

TEST(Weld, WithToleranceZeroMergesNothingNotEvenEqualVertices) {
  for (const double zero : {0.0, -0.0}) {
    const Welded w = weld(onALine({1, 1, 2, 1}), {0, 1, 2, 2, 0, 1, 3, 3, 2}, zero);
    EXPECT_EQ(w.map, (Ints{0, 1, 2, 3}));
    EXPECT_EQ(w.triangles, (Ints{0, 1, 2})) << "a repeated one and one with a repeated vertex go";
  }
}

TEST(Weld, WithAToleranceWhoseSquareUnderflowsMergesNothing) {
  EXPECT_EQ(weld(onALine({1, 1}), {}, 1e-170).map, (Ints{0, 1}));
  EXPECT_EQ(weld(onALine({1, 1}), {}, 1e-160).map, (Ints{0, 0})) << "a denormal square is one";
}

TEST(Weld, WithANaNToleranceMergesNothing) {
  EXPECT_EQ(weld(onALine({1, 1, 1}), {0, 1, 2}, kNaN).map, (Ints{0, 1, 2}));
}

TEST(Weld, LeavesVerticesExactlyAtTheToleranceApart) {
  EXPECT_EQ(weld(onALine({0, 0.5}), {}, 0.5).map, (Ints{0, 1}));
  EXPECT_EQ(weld(onALine({0, std::nextafter(0.5, 0)}), {}, 0.5).map, (Ints{0, 0}));
  EXPECT_EQ(weld({0, 0, 0, 3, 4, 0}, {}, 5).map, (Ints{0, 1}));
  EXPECT_EQ(weld({0, 0, 0, 3, 4, 0}, {}, std::nextafter(5.0, 6)).map, (Ints{0, 0}));
}

TEST(Weld, JoinsChainsWhoseEndsAreFarApart) {
  const Welded w = weld(onALine({0, 0.9, 1.8}), {0, 1, 2}, 1);
  EXPECT_EQ(w.map, (Ints{0, 0, 0}));
  EXPECT_EQ(w.vertices, (std::vector<double>{0, 0, 0}));
  EXPECT_TRUE(w.triangles.empty());
}

TEST(Weld, NumbersAClusterByItsLowestMemberAndKeepsThatOnesPlace) {
  // {5, 2, 9} are close; 0, 1, 3, 4, 6, 7, 8 are alone.
  std::vector<double> xs = {0, 10, 20, 30, 40, 20.2, 60, 70, 80, 19.9};
  const Welded w = weld(onALine(xs), {}, 0.5);
  EXPECT_EQ(w.map, (Ints{0, 1, 2, 3, 4, 2, 5, 6, 7, 2}));
  EXPECT_EQ(w.vertices[6], 20);
}

TEST(Weld, KeepsTheSignOfAZeroOfTheLowestMember) {
  const Welded w = weld({-0.0, 0, -0.0, 0, -0.0, 0}, {}, 1);
  EXPECT_EQ(w.map, (Ints{0, 0}));
  EXPECT_TRUE(sameBits(w.vertices, std::vector<double>{-0.0, 0, -0.0}));
}

TEST(Weld, KeepsTheFirstOfRepeatedTrianglesInItsOwnOrientation) {
  const std::vector<double> vertices = {0, 0, 0, 1, 0, 0, 0, 1, 0, 5, 5, 5};
  EXPECT_EQ(weld(vertices, {0, 1, 2, 2, 1, 0, 1, 2, 0, 0, 1, 3}, 0.1).triangles,
            (Ints{0, 1, 2, 0, 1, 3}));
  EXPECT_EQ(weld(vertices, {2, 1, 0, 0, 1, 2}, 0.1).triangles, (Ints{2, 1, 0}));
}

TEST(Weld, TurnsASoupBackIntoItsMesh) {
  for (const Mesh& mesh : {torusMesh(20, 12), sphereMesh(3), openSurface(20, 18, 4)}) {
    const Mesh soup = asSoup(mesh);
    const Welded w = weld(soup.vertices, soup.triangles, 1e-9);
    EXPECT_EQ(w.vertices.size(), mesh.vertices.size());
    EXPECT_EQ(w.triangles.size(), mesh.triangles.size());
    expectSame(w, allPairsWeld(soup.vertices, soup.triangles, 1e-9));
  }
}

TEST(Weld, NeverMergesNaNOrInfinity) {
  const std::vector<double> vertices = {
      kNaN, 0, 0, kNaN, 0, 0, kInfinity, 0, 0, kInfinity, 0, 0, 0, -kInfinity, 0, 0, 0, 0, 0, 0, 0};
  for (const double tolerance : {1.0, 1e200, kInfinity}) {
    EXPECT_EQ(weld(vertices, {}, tolerance).map, (Ints{0, 1, 2, 3, 4, 5, 5})) << tolerance;
    expectAllPairs(vertices, {0, 1, 2, 5, 6, 0, 4, 5, 6, 2, 4, 6}, tolerance);
  }
  expectAllPairs({kNaN, kNaN, kNaN}, {}, 1);
  expectAllPairs({kInfinity, 0, 0, kInfinity, 0, 0}, {}, kInfinity);
}

TEST(Weld, WithAnInfiniteToleranceJoinsWhatHasAFiniteSquaredDistance) {
  // The squared distance of 1e200 to the others overflows, and infinity is not less.
  const std::vector<double> vertices = onALine({0, 1e150, 1e200, -3, 1.1e200, 1e200});
  EXPECT_EQ(weld(vertices, {}, kInfinity).map, (Ints{0, 0, 1, 0, 2, 1}));
  expectAllPairs(vertices, {}, kInfinity);
  expectAllPairs(vertices, {}, 1e160);
}

TEST(Weld, SurvivesHugeCoordinates) {
  const double top = std::numeric_limits<double>::max();
  for (const double tolerance : {1.0, 1e150, 1e308, kInfinity}) {
    expectAllPairs({top, top, top, -top, -top, -top, top, top, top, 0, 0, 0, top, 0, -top}, {},
                   tolerance);
  }
}

enum class CloudKind { lattice, duplicates, chain, scattered, wild };

/// Coordinates that meet, or just miss, a tolerance of about 1.
std::vector<double> cloud(Random& random, CloudKind kind, int n) {
  std::vector<double> xyz;
  for (int i = 0; i < 3 * n; ++i) {
    switch (kind) {
      case CloudKind::lattice:
        xyz.push_back(uniformInt(random, 0, 5));
        break;
      case CloudKind::duplicates:
        xyz.push_back(uniformInt(random, 0, 2) * 7.5);
        break;
      case CloudKind::chain:
        xyz.push_back(i % 3 == 0 ? 0.9 * uniformInt(random, 0, n) : 0);
        break;
      case CloudKind::scattered:
        xyz.push_back(uniform(random, -4, 4));
        break;
      case CloudKind::wild: {
        const double odd[] = {kNaN,   kInfinity, -kInfinity, 1e200, -1e308,
                              5e-324, -0.0,      0,          1,     1e160};
        xyz.push_back(uniformInt(random, 0, 3) == 0 ? odd[uniformInt(random, 0, 9)]
                                                    : uniformInt(random, -2, 2));
        break;
      }
    }
  }
  return xyz;
}

TEST(Weld, AgreesWithAllPairsOnRandomClouds) {
  const std::uint64_t seed = testSeed();
  SCOPED_TRACE(seedTrace(seed));
  Random random(seed);
  const double tolerances[] = {1,
                               std::sqrt(2.0),
                               std::sqrt(3.0),
                               std::nextafter(1.0, 2),
                               0.9,
                               0,
                               kNaN,
                               2.5,
                               1e-12,
                               100,
                               kInfinity,
                               1e-160,
                               1e155};
  for (int round = 0; round < 4000; ++round) {
    SCOPED_TRACE(round);
    const auto kind = static_cast<CloudKind>(uniformInt(random, 0, 4));
    const int n = uniformInt(random, 1, 60);
    const std::vector<double> vertices = cloud(random, kind, n);
    Ints triangles;
    for (int i = 3 * uniformInt(random, 0, 2 * n); i > 0; --i) {
      triangles.push_back(uniformInt(random, 0, n - 1));
    }
    expectAllPairs(vertices, triangles, tolerances[uniformInt(random, 0, 12)]);
    if (HasFatalFailure()) return;
  }
}

TEST(Weld, AgreesWithAllPairsAtTheVeryToleranceWhateverTheScale) {
  // Pairs whose squared distance is the squared tolerance, or a rounding off it: the
  // tree must not cut off what its points' own distances would take.
  const std::uint64_t seed = testSeed();
  SCOPED_TRACE(seedTrace(seed));
  Random random(seed);
  for (int round = 0; round < 2000; ++round) {
    SCOPED_TRACE(round);
    const double scale = std::ldexp(1.0, uniformInt(random, -300, 300));
    std::vector<double> vertices;
    for (int i = 0; i < 3 * 40; ++i) vertices.push_back(uniform(random, -3, 3) * scale);
    const auto a = static_cast<std::size_t>(uniformInt(random, 0, 39));
    const auto b = static_cast<std::size_t>(uniformInt(random, 0, 39));
    double square = 0;
    for (std::size_t k = 0; k < 3; ++k) {
      const double d = vertices[3 * a + k] - vertices[3 * b + k];
      square += d * d;
    }
    double tolerance = std::sqrt(square);
    for (int step = uniformInt(random, -2, 2); step != 0; step += step < 0 ? 1 : -1) {
      tolerance = std::nextafter(tolerance, step < 0 ? 0 : kInfinity);
    }
    expectAllPairs(vertices, {}, tolerance);
    if (HasFatalFailure()) return;
  }
}

TEST(Weld, AgreesWithAllPairsOnCrowdedClouds) {
  // Many points within the tolerance of each other, in separate crowds.
  Random random(5);
  for (const double gap : {1.2, 2.1, 5.0}) {
    std::vector<double> vertices;
    for (int crowd = 0; crowd < 3; ++crowd) {
      for (int i = 0; i < 300; ++i) {
        vertices.push_back(crowd * gap + uniform(random, 0, 0.4));
        vertices.push_back(uniform(random, 0, 0.4));
        vertices.push_back(uniform(random, 0, 0.4));
      }
    }
    for (const double tolerance : {0.05, 0.3, 0.81, 1.0, 1.7}) {
      expectAllPairs(vertices, {}, tolerance);
    }
  }
}

TEST(Weld, OfAHundredThousandPointsInOneCrowdEnds) {
  // By queries alone this would visit ten thousand million pairs.
  Random random(6);
  std::vector<double> vertices;
  for (int i = 0; i < 300000; ++i) vertices.push_back(uniform(random, 0, 1));
  const Welded w = weld(vertices, {}, 0.9);
  EXPECT_EQ(w.vertices.size(), 3U);
}

TEST(Weld, OfAHundredThousandPointsAtOnePlaceEnds) {
  const Welded w = weld(std::vector<double>(300000, 0.1), {0, 1, 2}, 1e-6);
  EXPECT_EQ(w.vertices.size(), 3U);
  EXPECT_EQ(w.map, Ints(100000, 0));
}

TEST(Weld, HasTheSameBitsOnEveryPlatform) {
  Random random(9);
  std::vector<double> vertices;
  Ints triangles;
  for (int i = 0; i < 3 * 5000; ++i) vertices.push_back(uniform(random, 0, 10));
  for (int i = 0; i < 3 * 5000; ++i) triangles.push_back(uniformInt(random, 0, 4999));
  const Welded w = weld(vertices, triangles, 0.3);
  std::uint64_t hash = 0xcbf29ce484222325;  // FNV-1a
  for (const Ints* ints : {&w.map, &w.triangles}) {
    for (const std::int32_t i : *ints)
      hash = (hash ^ static_cast<std::uint32_t>(i)) * 0x100000001b3;
  }
  EXPECT_EQ(hash, 0x5033eb0afd0de7e3ULL);
}

}  // namespace
}  // namespace qelm::test
