// Flips: their arithmetic, their end, their limit.
#include "robust/flips.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <numeric>

#include "mesh/numbering.h"
#include "robust/robust_rows.h"
#include "robust/robust_system.h"
#include "robust/soups.h"
#include "support/meshes.h"
#include "support/random.h"

namespace qelm::test {
namespace {

constexpr std::int64_t kPlenty = 1'000'000;

/// A flat quadrilateral a b c d with the diagonal a-c, all round prescribed.
Mesh quadrilateral(Point a, Point b, Point c, Point d) {
  Mesh mesh;
  for (const Point& p : {a, b, c, d}) mesh.vertices.insert(mesh.vertices.end(), {p.x, p.y, p.z});
  mesh.triangles = {0, 1, 2, 0, 2, 3};
  mesh.tags = {0, 0, 0, 0};
  return mesh;
}

/// The cotangents of its faces, by their vertices, sorted.
std::vector<std::array<double, 6>> facesOf(const DoubleCover& cover) {
  std::vector<std::array<double, 6>> faces;
  for (std::size_t f = 0; f < cover.size(); f += 3) {
    std::array<std::pair<int, double>, 3> corners;
    for (std::size_t k = 0; k < 3; ++k) {
      corners[k] = {cover.origin[f + k], cover.cotangent[f + (k + 1) % 3]};
    }
    std::sort(corners.begin(), corners.end());
    std::array<double, 6> face;
    for (std::size_t k = 0; k < 3; ++k) {
      face[k] = corners[k].first;
      face[3 + k] = corners[k].second;
    }
    faces.push_back(face);
  }
  std::sort(faces.begin(), faces.end());
  return faces;
}

TEST(Flips, LeaveAGoodTriangulationAlone) {
  DoubleCover cover = coverOf(0, torusMesh(12, 9).vertices, torusMesh(12, 9).triangles);
  const DoubleCover before = cover;
  flipToDelaunay(cover, kPlenty);
  DoubleCover again = cover;
  EXPECT_EQ(flipToDelaunay(again, kPlenty).done, 0);
  EXPECT_EQ(again.twin, cover.twin);
  EXPECT_EQ(again.cotangent, cover.cotangent);
  EXPECT_EQ(before.size(), cover.size());
}

TEST(Flips, GiveTheTrianglesOverTheOtherDiagonal) {
  // On two sheets; their outer edges, where sheets meet, stay good.
  Random random(testSeed());
  SCOPED_TRACE(seedTrace(testSeed()));
  int flipped = 0;
  for (int round = 0; round < 300; ++round) {
    const Point a{-1, uniform(random, -0.1, 0.1), 0};
    const Point c{1, uniform(random, -0.1, 0.1), 0};
    const Point b{uniform(random, -0.3, 0.3), uniform(random, -0.8, -0.5), 0};
    const Point d{uniform(random, -0.3, 0.3), uniform(random, 0.5, 0.8), 0};
    const Mesh given = quadrilateral(a, b, c, d);
    const Mesh other = quadrilateral(b, c, d, a);
    DoubleCover cover = coverOf(0, given.vertices, given.triangles);
    const Flips flips = flipToDelaunay(cover, kPlenty);
    if (flips.done != 2) continue;  // another edge was bad, too
    EXPECT_EQ(flips.notDelaunayEdges, 1);
    ++flipped;
    DoubleCover expected = coverOf(0, other.vertices, other.triangles);
    for (std::int32_t& v : expected.origin) v = (v + 1) % 4;
    const auto actualFaces = facesOf(cover);
    const auto expectedFaces = facesOf(expected);
    for (std::size_t f = 0; f < 4; ++f) {
      for (std::size_t k = 0; k < 6; ++k) {
        EXPECT_NEAR(actualFaces[f][k], expectedFaces[f][k], 1e-14);
      }
    }
  }
  EXPECT_GT(flipped, 100);
}

/// Every edge that could be flipped is good, and every face a triangle.
void expectDelaunay(const DoubleCover& cover) {
  for (std::size_t h = 0; h < cover.size(); ++h) {
    const auto g = cover.twin[h];
    if (g == DoubleCover::kNone || static_cast<std::size_t>(g) / 3 == h / 3) continue;
    const double sum = cover.cotangent[h] + cover.cotangent[static_cast<std::size_t>(g)];
    EXPECT_GE(sum, -(kDelaunayMargin + kDelaunayMarginShare * 0x1p27)) << h;
  }
}

TEST(Flips, EndOnEverySoup) {
  Random random(testSeed());
  SCOPED_TRACE(seedTrace(testSeed()));
  for (int kind = 0; kind < kSoupKinds; ++kind) {
    for (int k = 0; k < 300; ++k) {
      const Mesh mesh = soup(random, static_cast<SoupKind>(kind));
      DoubleCover cover = coverOf(uniformInt(random, 0, 3), mesh.vertices, mesh.triangles);
      ASSERT_TRUE(flipToDelaunay(cover, kPlenty).finished) << kind << ' ' << k;
      expectDelaunay(cover);
    }
  }
}

TEST(Flips, LeaveEdgesWithoutTwinWhereTheyAre) {
  const Mesh mesh = quadrilateral({-1, 0, 0}, {0, -0.1, 0}, {1, 0, 0}, {0, 0.1, 0});
  DoubleCover cover = coverOf(4, mesh.vertices, mesh.triangles);
  const DoubleCover before = cover;
  const Flips flips = flipToDelaunay(cover, kPlenty);
  EXPECT_EQ(flips.done, 0);
  EXPECT_EQ(flips.notDelaunayEdges, 0);
  EXPECT_EQ(cover.origin, before.origin);
}

/// A flat ring whose vertices are all on its two rims, close together: many flips.
Mesh washer(int around) {
  Mesh mesh = gridMesh(around + 1, 2);
  for (int i = 0; i < 2 * (around + 1); ++i) mesh.tags[static_cast<std::size_t>(i)] = 0;
  return mesh.mapped([&](Point p) {
    const double angle = 6.25 * p.x;
    const double radius = 1 + p.y;
    return Point{radius * std::cos(angle + 0.5 * p.y), radius * std::sin(angle + 0.5 * p.y), 0};
  });
}

TEST(Flips, StopAtTheirLimitAndSaySo) {
  const Mesh mesh = washer(100);
  DoubleCover cover = coverOf(0, mesh.vertices, mesh.triangles);
  const Flips all = flipToDelaunay(cover, kPlenty);
  ASSERT_TRUE(all.finished);
  ASSERT_GT(all.done, 100);
  DoubleCover short_ = coverOf(0, mesh.vertices, mesh.triangles);
  const Flips stopped = flipToDelaunay(short_, all.done - 1);
  EXPECT_FALSE(stopped.finished);
  EXPECT_EQ(stopped.done, all.done - 1);
  DoubleCover exact = coverOf(0, mesh.vertices, mesh.triangles);
  EXPECT_TRUE(flipToDelaunay(exact, all.done).finished);
}

TEST(Flips, ThatDoNotEndAreAStatusAndNoMatrix) {
  const Mesh mesh = washer(100).withTagged({0});
  const VertexNumbering numbering = numberVertices(mesh.tags);
  const auto triangles = renumberTriangles(mesh.triangles, numbering);
  const RobustRows rows =
      assembleRobustRows(1, reorderCoordinates(mesh.vertices, numbering), triangles, 10);
  EXPECT_EQ(rows.rows.status, QELM_STATUS_ENDLESS_FLIPS);
  EXPECT_EQ(rows.report.changed, 1);
  EXPECT_EQ(rows.report.flips, 10);
  EXPECT_EQ(rows.rows.blocks.freeFree.nonZeros(), 0);
}

TEST(Flips, HaveALimitFarAboveWhatARingNeeds) {
  for (const std::int64_t m : {1000, 10'000, 50'000}) {
    EXPECT_GT(flipLimit(static_cast<std::size_t>(m)), 5 * m * m / 14) << m;
  }
}

}  // namespace
}  // namespace qelm::test
