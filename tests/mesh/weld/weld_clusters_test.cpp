// qelmWeld on clusters of points that are small beside the distances between them, as
// the corners of a mesh's triangles are: most are welded without a search, and where
// that ends nothing may be seen.
#include <gtest/gtest.h>
#include <array>

#include <cmath>
#include <vector>

#include "support/meshes.h"
#include "support/plain_weld.h"
#include "support/random.h"
#include "support/weld.h"

namespace qelm::test {
namespace {

void add(Field& cloud, Point p) { cloud.insert(cloud.end(), {p.x, p.y, p.z}); }

Point near(Random& random, Point p, double distance) {
  return {p.x + uniform(random, -distance, distance), p.y + uniform(random, -distance, distance),
          p.z + uniform(random, -distance, distance)};
}

/// Points that all belong together, or a chain of them whose steps are about as long
/// as the tolerance.
void addCluster(Random& random, double tolerance, Field& cloud) {
  Point p = near(random, {0, 0, 0}, 1);
  const bool isChain = uniformInt(random, 0, 3) == 0;
  const int count = isChain ? uniformInt(random, 2, 120) : uniformInt(random, 1, 6);
  for (int k = 0; k < count; ++k) {
    add(cloud, isChain ? p : near(random, p, 0.3 * tolerance));
    if (isChain) p = near(random, p, 0.72 * tolerance);
  }
}

Field clustersInRandomOrder(Random& random, double tolerance) {
  Field cloud;
  for (int k = 0; k < 40; ++k) addCluster(random, tolerance, cloud);
  Field shuffled;
  for (const std::int32_t i : permutation(random, static_cast<int>(cloud.size() / 3))) {
    const auto base = 3 * static_cast<std::size_t>(i);
    add(shuffled, {cloud[base], cloud[base + 1], cloud[base + 2]});
  }
  return shuffled;
}

TEST(WeldClusters, AreTheOnesThatComparingAllPairsFinds) {
  const std::uint64_t seed = testSeed();
  SCOPED_TRACE(seedTrace(seed));
  Random random(seed);
  for (int round = 0; round < 20; ++round) {
    for (const double tolerance : {1e-9, 1e-6, 1e-5, 3e-5, 1e-4, 1e-3}) {
      const Field cloud = clustersInRandomOrder(random, tolerance);
      ASSERT_EQ(weld(cloud, {}, tolerance), allPairsWeld(cloud, {}, tolerance))
          << "round " << round << ", tolerance " << tolerance;
    }
  }
}

/// side * side pairs of points that lie along an axis so far apart, their positions drawn
/// at random from a square or, for the third axis, from a line.
Field pairs(Random& random, int side, std::size_t axis, double apart, double offset) {
  Field cloud;
  for (int k = 0; k < side * side; ++k) {
    const double x = (k % side + uniform(random, 0, 0.5)) / side + offset;
    const double y = (k / side + uniform(random, 0, 0.5)) / side + offset;
    const double z = uniform(random, -0.5, 0.5) + offset;
    for (const double shift : {0.0, apart}) {
      cloud.insert(cloud.end(), {x, y, z});
      cloud[cloud.size() - 3 + axis] += shift;
    }
  }
  return cloud;
}

// The grid that welds without a search has its faces somewhere; of so many pairs some
// hundred lie across one.
TEST(WeldClusters, OfTwoAreWeldedWhereverTheyLie) {
  constexpr int kSide = 200;
  constexpr double kTolerance = 1e-6;
  Random random(1);
  for (const std::size_t axis : {0U, 1U, 2U}) {
    for (const double offset : {0.0, -0.5, 1000.0}) {
      const auto kept = [&](double apart) {
        return weld(pairs(random, kSide, axis, apart, offset), {}, kTolerance).vertices.size() / 3;
      };
      EXPECT_EQ(kept(0.999 * kTolerance), 1U * kSide * kSide) << axis << ' ' << offset;
      EXPECT_EQ(kept(1.001 * kTolerance), 2U * kSide * kSide) << axis << ' ' << offset;
    }
  }
}

// Neither has the grid a cell for all of them, nor do its cubes' faces lie where
// they should any more.
TEST(WeldClusters, FarFromTheOriginAreWelded) {
  constexpr double kFar = 0x1p40;
  Random random(1);
  Field cloud;
  for (int k = 0; k < 20000; ++k) {
    const Point p{kFar + uniform(random, 0, 1), uniform(random, 0, 1), 0};
    add(cloud, p);
    add(cloud, {p.x, p.y + 0.9e-6, 0});
  }
  const Welded welded = weld(cloud, {}, 1e-6);
  for (std::size_t i = 0; i < cloud.size() / 3; i += 2) {
    ASSERT_EQ(welded.vertexMap[i], welded.vertexMap[i + 1]) << i;
  }
}

// 0, 0.45 and 0.01 share a cell of half the tolerance. Only 0.45, neither its first nor its last
// member, is near enough to 1.4, so the cell has to know how far away from its first one that is.
TEST(WeldClusters, ReachAsFarAsTheirFarthestMember) {
  const Welded welded = weld(onALine({0, 0.45, 0.01, 1.40}), {}, 1);
  EXPECT_EQ(welded.vertexMap, (std::vector<std::int32_t>{0, 0, 0, 0}));
}

// 13, 84 and 85 are sides of a right triangle: (14, 84) lies exactly at the tolerance from both
// ends of a box, which is not within it. So many points that boxes are asked first.
TEST(WeldClusters, WhoseBoxesAreExactlyTheToleranceApartStayTwo) {
  Field cloud = {1, 0, 0};
  for (int k = 0; k < 64; ++k) add(cloud, {27, 0, 0});
  add(cloud, {14, 84, 0});
  const Welded welded = weld(cloud, {}, 85);
  EXPECT_EQ(welded.vertices, (Field{1, 0, 0, 14, 84, 0}));
}

// A cell, 32 wide, with points at both ends of a line, most at one, and one point opposite the
// line's middle: within the tolerance from the cell's box, but from none of its points. So many
// that boxes are asked first, also for how far apart their points may be: along every axis, on
// either side of the origin.
TEST(WeldClusters, NearABoxButNotItsPointsStayTwo) {
  for (std::size_t axis = 0; axis < 3; ++axis) {
    for (const double side : {-32.3, 32.3}) {
      const auto point = [&](double along, double across) {
        std::array<double, 3> p = {};
        p[axis] = along;
        p[(axis + 1) % 3] = across;
        return Point{p[0], p[1], p[2]};
      };
      Field cloud;
      for (int k = 0; k < 65; ++k) add(cloud, point(side, k == 0 ? 0 : 31));
      add(cloud, point(-side, 15.5));
      EXPECT_EQ(weld(cloud, {}, 66).vertices.size(), 6U) << axis << ' ' << side;
      EXPECT_EQ(weld(cloud, {}, 67).vertices.size(), 3U) << axis << ' ' << side;
    }
  }
}

// All on one face of any grid that begins at the origin.
TEST(WeldClusters, OnAPlaneThroughTheOriginAreWelded) {
  Random random(1);
  Mesh soup = asSoup(gridMesh(60, 60));
  for (double& x : soup.vertices) x += uniform(random, -1e-10, 1e-10);
  const Welded welded = weld(soup.vertices, soup.triangles, 1e-9);
  EXPECT_EQ(welded.vertices.size() / 3, 60U * 60U);
  EXPECT_EQ(welded, plainWeld(soup.vertices, soup.triangles, 1e-9));
}

TEST(WeldClusters, AreFoundBehindAFirstVertexThatIsNotFinite) {
  // Two cells with so many points that boxes around them are compared first.
  Field cloud = {std::nan(""), 0, 0};
  for (int k = 0; k < 10; ++k) add(cloud, {0.05 * k, 0, 0});
  for (int k = 0; k < 10; ++k) add(cloud, {1.04 + 0.04 * k, 0, 0});
  const Welded welded = weld(cloud, {}, 1.0);
  EXPECT_EQ(welded.vertices.size(), 2U * 3U);
  EXPECT_EQ(welded.vertexMap.back(), 1);
}

}  // namespace
}  // namespace qelm::test
