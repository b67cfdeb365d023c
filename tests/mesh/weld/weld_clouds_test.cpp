// qelmWeld on clouds: against every pair compared, and on input that would defeat
// a plain radius search.
#include <gtest/gtest.h>

#include <array>
#include <bit>
#include <cmath>
#include <limits>
#include <vector>

#include "qelm.h"
#include "support/meshes.h"
#include "support/plain_weld.h"
#include "support/random.h"
#include "support/weld.h"

namespace qelm::test {
namespace {

using Ints = std::vector<std::int32_t>;

constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();
constexpr double kInfinity = std::numeric_limits<double>::infinity();
constexpr double kLargest = std::numeric_limits<double>::max();

void add(Field& cloud, double x, double y, double z) { cloud.insert(cloud.end(), {x, y, z}); }

Ints randomTriangles(Random& random, int vertexCount, int count) {
  Ints triangles;
  for (int k = 0; k < 3 * count; ++k) triangles.push_back(uniformInt(random, 0, vertexCount - 1));
  return triangles;
}

testing::AssertionResult isAllPairsWeld(const Field& vertices, const Ints& triangles,
                                        double tolerance) {
  const Welded expected = allPairsWeld(vertices, triangles, tolerance);
  const Welded actual = weld(vertices, triangles, tolerance);
  for (std::size_t i = 0; i < expected.vertexMap.size(); ++i) {
    if (actual.vertexMap[i] == expected.vertexMap[i]) continue;
    return testing::AssertionFailure()
           << "vertex " << i << " went to " << actual.vertexMap[i] << ", not "
           << expected.vertexMap[i] << ", tolerance " << tolerance;
  }
  if (actual.triangles != expected.triangles) {
    return testing::AssertionFailure() << "other triangles, tolerance " << tolerance;
  }
  for (std::size_t k = 0; k < expected.vertices.size(); ++k) {
    if (std::bit_cast<std::uint64_t>(actual.vertices[k]) ==
        std::bit_cast<std::uint64_t>(expected.vertices[k])) {
      continue;
    }
    return testing::AssertionFailure() << "welded coordinate " << k << " differs";
  }
  return testing::AssertionSuccess();
}

/// Compares `count` clouds, each made by makeCoordinate(random) per coordinate.
template <class MakeCoordinate>
void compareClouds(int count, int mostVertices, const Field& tolerances,
                   MakeCoordinate makeCoordinate) {
  const std::uint64_t seed = testSeed();
  SCOPED_TRACE(seedTrace(seed));
  Random random(seed);
  for (int k = 0; k < count; ++k) {
    const int n = uniformInt(random, 1, mostVertices);
    Field cloud;
    for (int c = 0; c < 3 * n; ++c) cloud.push_back(makeCoordinate(random));
    const Ints triangles = randomTriangles(random, n, 2 * n);
    for (const double tolerance : tolerances) {
      ASSERT_TRUE(isAllPairsWeld(cloud, triangles, tolerance)) << "cloud " << k << " of " << n;
    }
  }
}

TEST(WeldClouds, ScatteredPointsAtToleranceFromNothingToEverything) {
  compareClouds(400, 60, {0, 1e-3, 0.05, 0.1, 0.2, 0.4, 1, 2, 1e9, kInfinity},
                [](Random& random) { return uniform(random, -1, 1); });
}

TEST(WeldClouds, LatticePointsWithDuplicatesAndPairsExactlyAtTheTolerance) {
  compareClouds(400, 60, {0, 0.999, 1, 1.001, std::sqrt(2.0), std::sqrt(3.0), 2, 5},
                [](Random& random) { return uniformInt(random, -4, 4) - 0.0; });
}

TEST(WeldClouds, LatticesThatNoBinaryFractionHits) {
  compareClouds(300, 80, {0.1, 0.2, 0.3, std::sqrt(0.02), std::sqrt(0.03), 0.1 * std::sqrt(5.0)},
                [](Random& random) { return uniformInt(random, -6, 6) * 0.1; });
}

TEST(WeldClouds, NotFiniteValuesAndBothZerosAmongOrdinaryOnes) {
  const std::array special = {kNaN, kInfinity, -kInfinity, -0.0, 0.0, kLargest, -kLargest};
  compareClouds(300, 40, {0, 0.5, 1, 1e160, kInfinity, kNaN}, [&](Random& random) {
    const int k = uniformInt(random, 0, 20);
    return k < 7 ? special[static_cast<std::size_t>(k)] : uniformInt(random, -2, 2) * 0.5;
  });
}

TEST(WeldClouds, CoordinatesOfEveryMagnitude) {
  const Field tolerances = {1e-162, 3e-160, 1e-150,  1e-100,  1e-20, 1.0,      1e20,
                            1e100,  1e153,  1.3e154, 1.4e154, 1e300, kInfinity};
  compareClouds(150, 60, tolerances, [](Random& random) {
    const double sign = uniformInt(random, 0, 1) == 0 ? 1 : -1;
    return sign * std::ldexp(uniform(random, 0.5, 1), uniformInt(random, -1073, 1024));
  });
}

TEST(WeldClouds, TolerancesWhoseSquareIsSubnormal) {
  const Field tolerances = {1.6e-162, 2.3e-162, 3e-162, 5e-162, 1e-161, 3e-161, 1e-160, 1e-155};
  compareClouds(300, 60, tolerances,
                [](Random& random) { return uniform(random, -1e-161, 1e-161); });
  compareClouds(100, 200, tolerances,
                [](Random& random) { return uniform(random, -1e-160, 1e-160); });
}

TEST(WeldClouds, DistancesThatOverflow) {
  compareClouds(200, 40, {1e150, 1e154, 1.34e154, 1.35e154, 1e200, kInfinity},
                [](Random& random) { return uniform(random, -1.5e154, 1.5e154); });
  compareClouds(200, 40, {1e154, 1e300, kInfinity}, [](Random& random) {
    return uniformInt(random, 0, 3) == 0 ? kLargest : uniform(random, -1, 1) * kLargest;
  });
}

TEST(WeldClouds, CloudsMuchDenserThanTheTolerance) {
  compareClouds(30, 500, {0.15, 0.3, 0.5, 0.9},
                [](Random& random) { return uniform(random, -1, 1); });
}

/// Two tilted dense plates, `gap` apart where they are nearest.
Field plates(Random& random, int each, double gap) {
  Field cloud;
  for (int k = 0; k < each; ++k) {
    const double x = uniform(random, 0, 1);
    add(cloud, x, uniform(random, 0, 1), 0);
    add(cloud, x, uniform(random, 0, 1), gap + 0.05 * x);
  }
  return cloud;
}

TEST(WeldClouds, DensePlatesThatJustTouchOrJustDoNot) {
  const std::uint64_t seed = testSeed();
  SCOPED_TRACE(seedTrace(seed));
  Random random(seed);
  for (const double gap : {0.98, 0.99, 0.999, 0.9999, 1.0, 1.001}) {
    for (int k = 0; k < 4; ++k) {
      ASSERT_TRUE(isAllPairsWeld(plates(random, 400, gap), {}, 1)) << "gap " << gap;
    }
  }
}

/// The tolerance is small enough for the coarse grid. Some chains have a middle near a face, one
/// end in the next cube and the other end farther from the face than the tolerance.
TEST(WeldClouds, ShortChainsInAnyOrderFarFromAllOtherPoints) {
  constexpr double kTolerance = 4e-4;
  const std::uint64_t seed = testSeed();
  SCOPED_TRACE(seedTrace(seed));
  Random random(seed);
  for (int k = 0; k < 20000; ++k) {
    const std::array start = {uniform(random, 0.1, 0.9), uniform(random, 0.1, 0.9),
                              uniform(random, 0.1, 0.9)};
    const int axis = uniformInt(random, 0, 2);
    Field cloud = {0, 0, 0, 1, 1, 1};
    for (const int i : permutation(random, 3)) {
      for (int c = 0; c < 3; ++c) {
        cloud.push_back(start[static_cast<std::size_t>(c)] +
                        (c == axis ? 0.9 * i * kTolerance : 0));
      }
    }
    ASSERT_TRUE(isAllPairsWeld(cloud, {}, kTolerance)) << "chain " << k;
  }
}

/// A kd-tree bounds a branch by adding and subtracting squares. Here pairs lie
/// within the last bits of the tolerance, in directions of all kinds.
TEST(WeldClouds, PairsWithinTheLastBitsOfTheTolerance) {
  const std::uint64_t seed = testSeed();
  SCOPED_TRACE(seedTrace(seed));
  Random random(seed);
  for (int k = 0; k < 400; ++k) {
    Field cloud;
    const double tolerance = uniform(random, 0.5, 1);
    for (int pair = 0; pair < 60; ++pair) {
      const Point p{uniform(random, -9, 9), uniform(random, -9, 9), uniform(random, -9, 9)};
      const Point d{uniform(random, -1, 1), uniform(random, -1, 1), uniform(random, -1, 1)};
      const double scale = tolerance / std::sqrt(d.x * d.x + d.y * d.y + d.z * d.z);
      add(cloud, p.x, p.y, p.z);
      add(cloud, p.x + scale * d.x, p.y + scale * d.y, p.z + scale * d.z);
    }
    ASSERT_TRUE(isAllPairsWeld(cloud, {}, tolerance)) << "cloud " << k;
  }
}

TEST(WeldClouds, RelabellingVerticesKeepsThePartition) {
  const std::uint64_t seed = testSeed();
  SCOPED_TRACE(seedTrace(seed));
  Random random(seed);
  const Mesh mesh = asSoup(openSurface(20, 20, 3));
  const Welded before = weld(mesh.vertices, mesh.triangles, 0.02);
  const auto newIndex = permutation(random, mesh.vertexCount());
  const Mesh other = relabelled(mesh, newIndex);
  const Welded after = weld(other.vertices, other.triangles, 0.02);
  ASSERT_EQ(before.vertices.size(), after.vertices.size());
  // Equal counts, and a map from number to number: the same partition.
  Ints image(before.vertices.size() / 3, -1);
  for (std::size_t i = 0; i < newIndex.size(); ++i) {
    const auto number = static_cast<std::size_t>(before.vertexMap[i]);
    const std::int32_t now = after.vertexMap[static_cast<std::size_t>(newIndex[i])];
    if (image[number] < 0) image[number] = now;
    ASSERT_EQ(image[number], now) << "vertex " << i;
  }
}

// ---- Large input: these end in seconds, or not at all ----

constexpr int kMany = 1000000;

std::size_t keptVertices(const Field& cloud, double tolerance) {
  return weld(cloud, {}, tolerance).vertices.size() / 3;
}

TEST(WeldManyVertices, AllEqual) {
  const Field cloud(3 * kMany, 0.1);
  EXPECT_EQ(keptVertices(cloud, 1e-9), 1U);
  EXPECT_EQ(keptVertices(cloud, 0), 1U * kMany);
}

TEST(WeldManyVertices, InTwoEqualHeapsExactlyTheToleranceApart) {
  Field cloud;
  for (int k = 0; k < kMany / 2; ++k) {
    add(cloud, 0, 0, 0);
    add(cloud, 1, 0, 0);
  }
  EXPECT_EQ(keptVertices(cloud, 1), 2U);
}

TEST(WeldManyVertices, DifferentButAllWithinTheTolerance) {
  Random random(1);
  Field cloud;
  for (int k = 0; k < 3 * kMany; ++k) cloud.push_back(uniform(random, -1, 1));
  EXPECT_EQ(keptVertices(cloud, 10), 1U);
  EXPECT_EQ(keptVertices(cloud, 0.3), 1U) << "hundreds of cells, thousands of points in each";
  EXPECT_EQ(keptVertices(cloud, kInfinity), 1U);
}

TEST(WeldManyVertices, OnDensePlatesThatDoNotTouch) {
  Random random(1);
  EXPECT_EQ(keptVertices(plates(random, kMany / 2, 1.0), 1), 2U);
}

TEST(WeldManyVertices, AllNotFinite) {
  EXPECT_EQ(keptVertices(Field(3 * kMany, kNaN), 1), 1U * kMany);
  EXPECT_EQ(keptVertices(Field(3 * kMany, kInfinity), kInfinity), 1U * kMany);
}

TEST(WeldManyVertices, SpreadOverTheWholeRangeOfNumbers) {
  Random random(1);
  Field cloud;
  for (int k = 0; k < 300000; ++k) cloud.push_back(uniform(random, -1, 1) * kLargest);
  for (const double tolerance : {1e-160, 1e-3, 1e150, kInfinity}) {
    EXPECT_EQ(keptVertices(cloud, tolerance), 100000U);
  }
}

TEST(WeldManyVertices, AMeshWithAFarOutlier) {
  Field cloud = gridMesh(300, 300).vertices;
  add(cloud, -1.2e308, -1.2e308, -1.2e308);
  for (const double tolerance : {1e-200, 1e-100, 1e-30, 1e-6}) {
    EXPECT_EQ(keptVertices(cloud, tolerance), 90001U);
  }
}

/// Halving such a cloud in the middle peels off one point at a time: the deepest
/// tree there is. It must not exhaust the stack of a main thread on Windows.
TEST(WeldManyVertices, AtEveryPowerOfTwoOnEveryAxis) {
  Field cloud;
  for (int exponent = -1074; exponent <= 1023; ++exponent) {
    const double value = std::ldexp(1.0, exponent);
    add(cloud, value, 0, 0);
    add(cloud, 0, -value, 0);
    add(cloud, 0, 0, value);
    add(cloud, -value, value, value);
  }
  for (const double tolerance : {1e-162, 1e-100, 1.0, 1e100, kInfinity}) {
    ASSERT_TRUE(isAllPairsWeld(cloud, {}, tolerance));
  }
}

/// FNV-1a over the 64-bit words: one number for a whole result.
class Hash {
 public:
  void add(std::uint64_t word) { value_ = (value_ ^ word) * 0x100000001b3; }
  std::uint64_t value() const { return value_; }

 private:
  std::uint64_t value_ = 0xcbf29ce484222325;
};

std::uint64_t hashOf(const Welded& welded) {
  Hash hash;
  for (const double v : welded.vertices) hash.add(std::bit_cast<std::uint64_t>(v));
  for (const std::int32_t v : welded.triangles) hash.add(static_cast<std::uint64_t>(v));
  for (const std::int32_t v : welded.vertexMap) hash.add(static_cast<std::uint64_t>(v));
  return hash.value();
}

TEST(WeldBits, AreTheSameOnEveryPlatform) {
  Random random(20);
  Field cloud;
  for (int k = 0; k < 3 * 3000; ++k) cloud.push_back(uniformInt(random, -60, 60) * 0.1);
  const Ints triangles = randomTriangles(random, 3000, 9000);
  const Welded welded = weld(cloud, triangles, 0.3);
  EXPECT_EQ(welded, allPairsWeld(cloud, triangles, 0.3));
  EXPECT_EQ(hashOf(welded), 6096951676808034601U);
}

}  // namespace
}  // namespace qelm::test
