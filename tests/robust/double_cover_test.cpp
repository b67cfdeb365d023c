// Gluing: which faces lie at each edge, and in which order round crowded ones.
#include "robust/double_cover.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <vector>

#include "robust/edge_fan.h"
#include "robust/soups.h"
#include "robust/spatial_order.h"
#include "robust/triangle_shape.h"
#include "support/meshes.h"
#include "support/random.h"

namespace qelm::test {
namespace {

DoubleCover coverOfMesh(const Mesh& mesh, int taggedCount = 0) {
  return coverOf(taggedCount, mesh.vertices, mesh.triangles);
}

/// Twins lead the other way between the same vertices.
void expectGlued(const DoubleCover& cover, std::size_t expectedBorder) {
  std::size_t border = 0;
  for (std::size_t h = 0; h < cover.size(); ++h) {
    const auto half = static_cast<DoubleCover::HalfEdge>(h);
    const DoubleCover::HalfEdge g = cover.twin[h];
    if (g == DoubleCover::kNone) {
      ++border;
      continue;
    }
    const auto twin = static_cast<std::size_t>(g);
    ASSERT_NE(g, half);
    ASSERT_EQ(cover.twin[twin], half);
    EXPECT_EQ(cover.origin[twin], cover.origin[static_cast<std::size_t>(DoubleCover::next(half))]);
    EXPECT_EQ(cover.origin[h], cover.origin[static_cast<std::size_t>(DoubleCover::next(g))]);
  }
  EXPECT_EQ(border, expectedBorder);
}

TEST(DoubleCover, OfAClosedOrientedSurfaceHasOneSheet) {
  const DoubleCover cover = coverOfMesh(torusMesh(7, 5));
  EXPECT_EQ(cover.sheets, 1);
  EXPECT_EQ(cover.size(), 210U);
  expectGlued(cover, 0);
}

TEST(DoubleCover, TurnsTrianglesWhereThatSparesASheet) {
  Random random(testSeed());
  SCOPED_TRACE(seedTrace(testSeed()));
  const Mesh given = torusMesh(9, 7);
  for (int round = 0; round < 20; ++round) {
    Mesh mesh = given;
    for (std::size_t j = 0; j < mesh.triangles.size(); j += 3) {
      if (uniformInt(random, 0, 1) == 1) std::swap(mesh.triangles[j + 1], mesh.triangles[j + 2]);
    }
    const DoubleCover cover = coverOfMesh(mesh);
    ASSERT_EQ(cover.sheets, 1);
    expectGlued(cover, 0);
    // All runs as the first triangle does; each face keeps its corners and their angles.
    EXPECT_TRUE(std::equal(cover.origin.begin(), cover.origin.begin() + 3, mesh.triangles.begin()));
    for (std::size_t h = 0; h < cover.size(); ++h) {
      const auto half = static_cast<DoubleCover::HalfEdge>(h);
      const std::size_t opposite = static_cast<std::size_t>(DoubleCover::previous(half));
      const auto corners = mesh.triangles.begin() + static_cast<std::ptrdiff_t>(h / 3 * 3);
      const auto apex = std::find(corners, corners + 3, cover.origin[opposite]);
      ASSERT_NE(apex, corners + 3);
      const auto a = static_cast<std::size_t>(corners[(apex - corners + 1) % 3]);
      const auto b = static_cast<std::size_t>(corners[(apex - corners + 2) % 3]);
      const auto at = [&](std::size_t v) {
        return Vec3{mesh.vertices[3 * v], mesh.vertices[3 * v + 1], mesh.vertices[3 * v + 2]};
      };
      EXPECT_EQ(cover.cotangent[h],
                cotangentsOf(at(static_cast<std::size_t>(*apex)), at(a), at(b)).at[0]);
    }
  }
}

TEST(DoubleCover, OfTwoPartsTurnsEachByItself) {
  Mesh mesh = torusMesh(5, 4);
  const auto count = mesh.vertexCount();
  const std::vector<std::int32_t> first = mesh.triangles;
  for (std::size_t j = 0; j < first.size(); j += 3) {
    for (const std::size_t k : {0U, 2U, 1U}) mesh.triangles.push_back(first[j + k] + count);
  }
  const std::vector<double> again = mesh.vertices;
  mesh.vertices.insert(mesh.vertices.end(), again.begin(), again.end());
  mesh.tags.resize(static_cast<std::size_t>(2 * count));
  std::swap(mesh.triangles[4], mesh.triangles[5]);
  const DoubleCover cover = coverOfMesh(mesh);
  EXPECT_EQ(cover.sheets, 1);
  expectGlued(cover, 0);
  const std::size_t start = first.size();
  EXPECT_TRUE(std::equal(cover.origin.begin() + static_cast<std::ptrdiff_t>(start),
                         cover.origin.end(),
                         mesh.triangles.begin() + static_cast<std::ptrdiff_t>(start)));
}

TEST(DoubleCover, OfAClosedSurfaceWithOneSideHasTwoSheets) {
  Mesh plane;  // the projective plane: half of an icosahedron
  plane.triangles = {0, 1, 2, 0, 2, 3, 0, 3, 4, 0, 4, 5, 0, 5, 1,
                     1, 2, 4, 2, 3, 5, 3, 4, 1, 4, 5, 2, 5, 1, 3};
  for (int v = 0; v < 6; ++v) {
    for (const double c : {std::cos(v), std::sin(v), 0.1 * v * v}) plane.vertices.push_back(c);
  }
  plane.tags.resize(6);
  const DoubleCover cover = coverOfMesh(plane);
  EXPECT_EQ(cover.sheets, 2);
  expectGlued(cover, 0);
}

TEST(DoubleCover, HasOneSheetWhereTheBoundaryIsPrescribed) {
  const Mesh mesh = twoTriangles();
  const DoubleCover cover = coverOfMesh(mesh, 4);
  EXPECT_EQ(cover.sheets, 1);
  expectGlued(cover, 6);  // the diagonal is prescribed as well
}

TEST(DoubleCover, TurnsRoundAtABoundary) {
  const Mesh mesh = rightTriangle();
  const DoubleCover cover = coverOfMesh(mesh);
  EXPECT_EQ(cover.sheets, 2);
  EXPECT_EQ(cover.twin, (std::vector<DoubleCover::HalfEdge>{5, 4, 3, 2, 1, 0}));
  EXPECT_EQ(cover.origin, (UnsetVector<std::int32_t>{0, 1, 2, 0, 2, 1}));
  expectGlued(cover, 0);
}

TEST(DoubleCover, GluesAFlippedNeighboursBackToAFront) {
  Mesh mesh = twoTriangles();
  std::swap(mesh.triangles[4], mesh.triangles[5]);
  const DoubleCover cover = coverOfMesh(mesh);
  EXPECT_EQ(cover.sheets, 2);
  expectGlued(cover, 0);
  // The diagonal 2-0 of the front of triangle 0, half-edge 2, meets the back of triangle 1.
  EXPECT_GE(cover.twin[2], 9);
}

TEST(DoubleCover, HasTheSameAnglesOnBothSheets) {
  const DoubleCover cover = coverOfMesh(openSurface(5, 4, 1));
  for (DoubleCover::HalfEdge h = 0; h < cover.fronts(); ++h) {
    EXPECT_EQ(cover.cotangent[static_cast<std::size_t>(h)],
              cover.cotangent[static_cast<std::size_t>(cover.back(h))]);
  }
}

TEST(DoubleCover, IsClosedOverAnySoup) {
  Random random(testSeed());
  SCOPED_TRACE(seedTrace(testSeed()));
  for (int kind = 0; kind < kSoupKinds; ++kind) {
    for (int k = 0; k < 100; ++k) {
      expectGlued(coverOfMesh(soup(random, static_cast<SoupKind>(kind))), 0);
    }
  }
}

TEST(DoubleCover, InOrderOfPlacesIsTheSameForEveryNumbering) {
  Random random(testSeed());
  SCOPED_TRACE(seedTrace(testSeed()));
  const Mesh mesh = soup(random, SoupKind::generic);
  const auto newIndex = permutation(random, mesh.vertexCount());
  const Mesh other = relabelled(mesh, newIndex);
  const auto coverOfPlaces = [](const Mesh& m) {
    return coverInOrder(spatialOrder(0, m.vertices), 0, m.vertices, m.triangles);
  };
  const DoubleCover cover = coverOfPlaces(mesh);
  const DoubleCover otherCover = coverOfPlaces(other);
  EXPECT_EQ(otherCover.twin, cover.twin);
  EXPECT_EQ(otherCover.cotangent, cover.cotangent);
  for (std::size_t h = 0; h < cover.size(); ++h) {
    ASSERT_EQ(otherCover.origin[h], newIndex[static_cast<std::size_t>(cover.origin[h])]);
  }
}

/// The half-edges in the order that begins with number 0.
std::vector<std::int32_t> fromZero(const std::vector<FanTriangle>& fan) {
  std::vector<std::int32_t> halfEdges;
  for (const FanTriangle& triangle : fan) halfEdges.push_back(triangle.halfEdge);
  std::rotate(halfEdges.begin(), std::find(halfEdges.begin(), halfEdges.end(), 0), halfEdges.end());
  return halfEdges;
}

TEST(EdgeFan, IsSortedCounterClockwiseSeenFromTheEnd) {
  // Seen from z = 1: 0 in the east, 2 north-east, 3 north-west, 1 south-west.
  std::vector<FanTriangle> fan = {
      {0, {1, 0, 0}}, {1, {-1, -1, 3}}, {2, {1, 1, -2}}, {3, {-1, 5, 0}}};
  sortAroundEdge({0, 0, 0}, {0, 0, 1}, fan);
  EXPECT_EQ(fromZero(fan), (std::vector<std::int32_t>{0, 2, 3, 1}));
  sortAroundEdge({0, 0, 1}, {0, 0, 0}, fan);
  EXPECT_EQ(fromZero(fan), (std::vector<std::int32_t>{0, 1, 3, 2}));
}

TEST(EdgeFan, IsTheSameAtEverySizeAndOrder) {
  Random random(testSeed());
  SCOPED_TRACE(seedTrace(testSeed()));
  for (int round = 0; round < 200; ++round) {
    std::vector<Vec3> points;
    for (int k = 0; k < 9; ++k) {
      points.push_back({uniform(random, -1, 1), uniform(random, -1, 1), uniform(random, -1, 1)});
    }
    const auto order = [&](double unit, const std::vector<std::int32_t>& halfEdges) {
      std::vector<FanTriangle> fan;
      for (const std::int32_t halfEdge : halfEdges) {
        fan.push_back({halfEdge, unit * points[static_cast<std::size_t>(halfEdge) + 2]});
      }
      sortAroundEdge(unit * points[0], unit * points[1], fan);
      return fromZero(fan);
    };
    const auto expected = order(1, {0, 1, 2, 3, 4, 5, 6});
    EXPECT_EQ(order(1, permutation(random, 7)), expected);
    EXPECT_EQ(order(0x1p1023, {6, 5, 4, 3, 2, 1, 0}), expected);
    EXPECT_EQ(order(0x1p-900, {6, 5, 4, 3, 2, 1, 0}), expected);
  }
}

TEST(EdgeFan, OrdersByPlaceWhereAnglesAreEqual) {
  std::vector<FanTriangle> fan = {{0, {3, 0, 0}}, {1, {1, 0, 0}}, {2, {2, 0, 0}}};
  sortAroundEdge({0, 0, 0}, {0, 0, 1}, fan);
  EXPECT_EQ(fromZero(fan), (std::vector<std::int32_t>{0, 1, 2}));
  // An edge without length has no angles.
  std::vector<FanTriangle> round = {{0, {3, 0, 0}}, {1, {-1, 0, 0}}, {2, {2, 9, 0}}};
  sortAroundEdge({1, 1, 1}, {1, 1, 1}, round);
  EXPECT_EQ(fromZero(round), (std::vector<std::int32_t>{0, 1, 2}));
}

}  // namespace
}  // namespace qelm::test
