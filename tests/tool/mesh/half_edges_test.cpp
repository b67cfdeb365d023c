// Edges found by sorting half-edges.
#include "mesh/half_edges.h"

#include <gtest/gtest.h>

#include <utility>
#include <vector>

namespace {

using qelm::tool::forEachEdge;
using qelm::tool::HalfEdge;
using qelm::tool::Mesh;
using qelm::tool::sortedHalfEdges;

/// The vertices of an edge, and its half-edges by index.
using Edge = std::pair<std::pair<int, int>, std::vector<int>>;

std::vector<Edge> edgesOf(const Mesh& mesh) {
  std::vector<Edge> edges;
  forEachEdge(sortedHalfEdges(mesh), [&edges](std::span<const HalfEdge> edge) {
    edges.push_back({{edge[0].low, edge[0].high}, {}});
    for (const HalfEdge& halfEdge : edge) edges.back().second.push_back(halfEdge.index);
  });
  return edges;
}

TEST(HalfEdges, OfOneEdgeStandSideBySide) {
  // The example of the header.
  const Mesh mesh{std::vector<double>(12, 0.0), {0, 1, 2, 0, 2, 3}, {}};
  EXPECT_EQ(edgesOf(mesh),
            (std::vector<Edge>{
                {{0, 1}, {2}}, {{0, 2}, {1, 5}}, {{0, 3}, {4}}, {{1, 2}, {0}}, {{2, 3}, {3}}}));
}

TEST(HalfEdges, SayWhichTheyFaceAndHowTheyRun) {
  const Mesh mesh{std::vector<double>(12, 0.0), {0, 1, 2, 0, 2, 3}, {}};
  for (const HalfEdge& halfEdge : sortedHalfEdges(mesh)) {
    const auto c = mesh.corners(halfEdge.triangle());
    const int from = c[(halfEdge.facing() + 1) % 3];
    const int to = c[(halfEdge.facing() + 2) % 3];
    EXPECT_EQ(std::minmax({from, to}), std::pair(halfEdge.low, halfEdge.high)) << halfEdge.index;
    EXPECT_EQ(halfEdge.isUpward, from < to) << halfEdge.index;
  }
}

TEST(HalfEdges, OfAnEdgeWithManyTrianglesComeByIndex) {
  // Three triangles at the edge 1 2, one of them the other way round.
  const Mesh mesh{std::vector<double>(15, 0.0), {1, 2, 4, 0, 1, 2, 2, 1, 3}, {}};
  const std::vector<Edge> edges = edgesOf(mesh);
  ASSERT_EQ(edges.size(), 7U);
  EXPECT_EQ(edges[2], (Edge{{1, 2}, {2, 3, 8}}));
}

TEST(HalfEdges, OfNoTriangleAreNone) { EXPECT_TRUE(edgesOf(Mesh{{0, 0, 0}, {}, {}}).empty()); }

}  // namespace
