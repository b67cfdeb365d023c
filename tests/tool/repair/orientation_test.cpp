// Neighbours oriented alike.
#include "repair/orientation.h"

#include <gtest/gtest.h>

#include <random>
#include <string>
#include <utility>
#include <vector>

namespace {

using qelm::tool::Mesh;
using qelm::tool::orientAlike;
using qelm::tool::Orientation;

/// `count` squares in a row, each as two triangles; the ends may be joined, turned over or not.
Mesh strip(int count, bool isTwisted) {
  Mesh mesh;
  mesh.vertices.assign(static_cast<std::size_t>(6 * count), 0.0);  // positions do not matter
  for (int k = 0; k < count; ++k) {
    const int a = 2 * k;
    const int b = 2 * k + 1;
    const bool isLast = k == count - 1;
    const int c = isLast ? (isTwisted ? 1 : 0) : a + 2;
    const int d = isLast ? (isTwisted ? 0 : 1) : b + 2;
    for (const int v : {a, c, d, a, d, b}) mesh.triangles.push_back(v);
  }
  return mesh;
}

void turn(Mesh& mesh, int triangle) {
  const auto base = static_cast<std::size_t>(3 * triangle);
  std::swap(mesh.triangles[base + 1], mesh.triangles[base + 2]);
}

TEST(Orientation, TurnsTheSmallerPart) {
  const unsigned seed = std::random_device{}();
  SCOPED_TRACE("seed " + std::to_string(seed));
  std::mt19937 random(seed);
  const Mesh good = strip(20, false);
  for (int trial = 0; trial < 30; ++trial) {
    Mesh mesh = good;
    int turned = 0;
    for (int t = 0; t < mesh.triangleCount(); t += 3 + static_cast<int>(random() % 5)) {
      turn(mesh, t);
      ++turned;
    }
    const Orientation done = orientAlike(mesh);
    EXPECT_EQ(done.turned, turned);
    EXPECT_EQ(done.opposed, 0);
    EXPECT_EQ(mesh.triangles.size(), good.triangles.size());
    EXPECT_EQ(orientAlike(mesh).turned, 0);
  }
}

TEST(Orientation, AGoodMeshStaysBitForBit) {
  Mesh mesh = strip(7, false);
  const std::vector<int> before = mesh.triangles;
  EXPECT_EQ(orientAlike(mesh).turned, 0);
  EXPECT_EQ(mesh.triangles, before);
}

TEST(Orientation, OfEqualPartsTheOneWithoutTheLowestTriangleIsTurned) {
  Mesh mesh{std::vector<double>(12, 0.0), {0, 1, 2, 1, 2, 3}, {}};
  EXPECT_EQ(orientAlike(mesh).turned, 1);
  EXPECT_EQ(mesh.triangles, (std::vector<int>{0, 1, 2, 1, 3, 2}));
}

TEST(Orientation, AMoebiusStripKeepsOneOpposedSide) {
  Mesh mesh = strip(9, true);
  EXPECT_EQ(orientAlike(mesh).opposed, 1);
}

TEST(Orientation, PiecesThatMeetAtCrowdedSidesDoNotCare) {
  // Three triangles at the side from 0 to 1.
  Mesh mesh{std::vector<double>(15, 0.0), {0, 1, 2, 0, 1, 3, 0, 1, 4}, {}};
  const Orientation done = orientAlike(mesh);
  EXPECT_EQ(done.turned + done.opposed, 0);
}

}  // namespace
