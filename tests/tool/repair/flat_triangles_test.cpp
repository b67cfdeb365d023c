// Needles and caps go, holes do not come.
#include "repair/flat_triangles.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <random>
#include <string>
#include <vector>

#include "mesh/boundary.h"
#include "mesh/vec3.h"

namespace {

using qelm::tool::operator-;
using qelm::tool::cross;
using qelm::tool::FlatRemoval;
using qelm::tool::length;
using qelm::tool::Mesh;
using qelm::tool::Point;
using qelm::tool::removeFlatTriangles;

constexpr double kTolerance = 1e-6;

std::vector<std::array<int, 3>> sorted(const Mesh& mesh) {
  std::vector<std::array<int, 3>> triangles;
  for (int t = 0; t < mesh.triangleCount(); ++t) {
    std::array<int, 3> c = {mesh.corners(t)[0], mesh.corners(t)[1], mesh.corners(t)[2]};
    std::rotate(c.begin(), std::min_element(c.begin(), c.end()), c.end());
    triangles.push_back(c);
  }
  std::sort(triangles.begin(), triangles.end());
  return triangles;
}

double areaOf(const Mesh& mesh) {
  double twice = 0;
  for (int t = 0; t < mesh.triangleCount(); ++t) {
    const Point p = mesh.point(mesh.corners(t)[0]);
    twice += length(cross(mesh.point(mesh.corners(t)[1]) - p, mesh.point(mesh.corners(t)[2]) - p));
  }
  return twice / 2;
}

TEST(FlatTriangles, LeavesAGoodMeshAlone) {
  Mesh mesh{{0, 0, 0, 1, 0, 0, 0, 1, 0}, {0, 1, 2}, {}};
  const FlatRemoval done = removeFlatTriangles(mesh, kTolerance);
  EXPECT_EQ(done.collapsedEdges + done.splitSides + done.left, 0);
  EXPECT_EQ(mesh.triangles, (std::vector<int>{0, 1, 2}));
}

TEST(FlatTriangles, SplitsTheNeighbourOfACap) {
  // The example of the header: vertex 2 lies on the side from 0 to 1.
  Mesh mesh{{0, 0, 0, 4, 0, 0, 2, 0, 0, 2, -3, 0}, {0, 1, 2, 1, 0, 3}, {}};
  const FlatRemoval done = removeFlatTriangles(mesh, kTolerance);
  EXPECT_EQ(done.splitSides, 1);
  EXPECT_EQ(done.left, 0);
  EXPECT_EQ(sorted(mesh), (std::vector<std::array<int, 3>>{{0, 3, 2}, {1, 2, 3}}));
}

TEST(FlatTriangles, SplitsAllNeighboursOfACapAtACrowdedSide) {
  Mesh mesh{{0, 0, 0, 4, 0, 0, 2, 0, 0, 2, -3, 0, 2, 0, 3}, {0, 1, 2, 1, 0, 3, 0, 1, 4}, {}};
  EXPECT_EQ(removeFlatTriangles(mesh, kTolerance).splitSides, 1);
  EXPECT_EQ(mesh.triangleCount(), 4);
  EXPECT_NEAR(areaOf(mesh), 12, 1e-12);
}

TEST(FlatTriangles, DropsACapAtTheBoundary) {
  Mesh mesh{{0, 0, 0, 4, 0, 0, 2, 0, 0, 2, 3, 0}, {0, 1, 2, 0, 2, 3, 2, 1, 3}, {}};
  removeFlatTriangles(mesh, kTolerance);
  EXPECT_EQ(sorted(mesh), (std::vector<std::array<int, 3>>{{0, 2, 3}, {1, 3, 2}}));
}

TEST(FlatTriangles, CollapsesTheShortSideOfANeedle) {
  // 0 and 4 are a tenth of the tolerance apart; three triangles are at 4.
  Mesh mesh{{0, 0, 0, 1, 0, 0, 1, 1, 0, 0, 1, 0, 0, 1e-7, 0}, {0, 1, 4, 4, 1, 2, 4, 2, 3}, {}};
  const FlatRemoval done = removeFlatTriangles(mesh, kTolerance);
  EXPECT_EQ(done.collapsedEdges, 1);
  EXPECT_EQ(done.splitSides, 0);
  EXPECT_EQ(sorted(mesh), (std::vector<std::array<int, 3>>{{0, 1, 2}, {0, 2, 3}}));
}

TEST(FlatTriangles, EndsAChainOfCaps) {
  // A row of points between two corners, as caps fanned from vertex 0, and one triangle beyond.
  const int count = 50;
  Mesh mesh;
  for (int k = 0; k <= count; ++k)
    for (const double c : {static_cast<double>(k), 0.0, 0.0}) mesh.vertices.push_back(c);
  for (const double c : {25.0, 20.0, 0.0}) mesh.vertices.push_back(c);
  for (int k = 1; k < count; ++k)
    for (const int v : {0, k + 1, k}) mesh.triangles.push_back(v);
  for (const int v : {0, count, count + 1}) mesh.triangles.push_back(v);
  EXPECT_EQ(removeFlatTriangles(mesh, kTolerance).left, 0);
  EXPECT_EQ(mesh.triangleCount(), count);
  EXPECT_NEAR(areaOf(mesh), 500, 1e-9);
  EXPECT_EQ(boundaryLoops(mesh).size(), 1U);
}

TEST(FlatTriangles, RepeatsOfACapGoWithIt) {
  Mesh mesh{{0, 0, 0, 4, 0, 0, 2, 0, 0, 2, -3, 0}, {0, 1, 2, 2, 1, 0, 1, 0, 3}, {}};
  EXPECT_EQ(removeFlatTriangles(mesh, kTolerance).left, 0);
  EXPECT_EQ(mesh.triangleCount(), 2);
}

TEST(FlatTriangles, MakesNothingOfAMeshWithoutArea) {
  Mesh mesh{{0, 0, 0, 1, 0, 0, 2, 0, 0, 3, 0, 0}, {0, 1, 2, 1, 2, 3, 0, 2, 3}, {}};
  removeFlatTriangles(mesh, kTolerance);
  EXPECT_EQ(mesh.triangleCount(), 0);
}

TEST(FlatTriangles, RoundingIsFlatEvenWithoutTolerance) {
  Mesh mesh{{1e6, 0, 0, 1e6 + 0.1, 0.1, 0, 1e6 + 0.3, 0.3, 0}, {0, 1, 2}, {}};
  removeFlatTriangles(mesh, 0);
  EXPECT_EQ(mesh.triangleCount(), 0);
}

/// A closed octahedron whose triangles are split at random points of random edges without telling
/// the neighbour: a cap joins both.
Mesh closedWithCaps(std::mt19937& random) {
  Mesh mesh{{1, 0, 0, 0, 1, 0, -1, 0, 0, 0, -1, 0, 0, 0, 1, 0, 0, -1},
            {0, 1, 4, 1, 2, 4, 2, 3, 4, 3, 0, 4, 1, 0, 5, 2, 1, 5, 3, 2, 5, 0, 3, 5},
            {}};
  std::uniform_real_distribution<double> share(0.2, 0.8);
  for (int k = 0; k < 40; ++k) {
    const int t = std::uniform_int_distribution<int>(0, mesh.triangleCount() - 1)(random);
    const std::array<int, 3> c = {mesh.corners(t)[0], mesh.corners(t)[1], mesh.corners(t)[2]};
    const double part = share(random);
    const int made = mesh.vertexCount();
    for (std::size_t axis = 0; axis < 3; ++axis)
      mesh.vertices.push_back((1 - part) * mesh.point(c[0])[axis] + part * mesh.point(c[1])[axis]);
    // (0, 1, 2) becomes (0, m, 2), (m, 1, 2) and the cap (0, 1, m).
    mesh.triangles[static_cast<std::size_t>(3 * t + 1)] = made;
    for (const int v : {made, c[1], c[2], c[0], c[1], made}) mesh.triangles.push_back(v);
  }
  return mesh;
}

TEST(FlatTriangles, AClosedSurfaceStaysClosedAndKeepsItsArea) {
  const unsigned seed = std::random_device{}();
  SCOPED_TRACE("seed " + std::to_string(seed));
  std::mt19937 random(seed);
  for (int trial = 0; trial < 50; ++trial) {
    Mesh mesh = closedWithCaps(random);
    const FlatRemoval done = removeFlatTriangles(mesh, 1e-9);
    EXPECT_EQ(done.left, 0);
    EXPECT_GT(done.splitSides, 0);
    EXPECT_EQ(boundaryLoops(mesh).size(), 0U);
    EXPECT_NEAR(areaOf(mesh), 4 * std::sqrt(3), 1e-9);
  }
}

TEST(FlatTriangles, ALongChainOfCapsEnds) {
  std::mt19937 random(1861);  // 182 splits, and more steps than four for each triangle
  Mesh mesh = closedWithCaps(random);
  EXPECT_EQ(removeFlatTriangles(mesh, 1e-9).left, 0);
  EXPECT_EQ(boundaryLoops(mesh).size(), 0U);
}

}  // namespace
