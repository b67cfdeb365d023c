#include "isolines/curve_duplicates.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <tuple>
#include <utility>

#include "interface/index.h"
#include "isolines/curve_edges.h"
#include "isolines/curve_levels.h"
#include "isolines/curve_points.h"

namespace qelm {
namespace {

using VertexPair = std::pair<std::uint32_t, std::uint32_t>;

VertexPair edgeOf(const EdgeSegment& segment) {
  return {segment.firstVertex, segment.secondVertex};
}

auto sortKey(const EdgeSegment& segment) {
  return std::tie(segment.firstVertex, segment.secondVertex, segment.level);
}

bool sameEnds(const EdgeSegment& a, const EdgeSegment& b, std::span<const Vec3> points) {
  return samePoint(points[a.firstNode], points[b.firstNode]) &&
         samePoint(points[a.secondNode], points[b.secondNode]);
}

/// Indices i such that segments i and i+1, and no others, share edge and level, and have the same
/// end points.
std::vector<std::size_t> findPairs(std::span<const EdgeSegment> segments,
                                   std::span<const Vec3> points) {
  std::vector<std::size_t> pairs;
  for (std::size_t i = 0; i < segments.size();) {
    std::size_t end = i + 1;
    while (end < segments.size() && sortKey(segments[end]) == sortKey(segments[i])) ++end;
    if (end - i == 2 && sameEnds(segments[i], segments[i + 1], points)) pairs.push_back(i);
    i = end;
  }
  return pairs;
}

/// Counts the triangles at some edges, holes not counted.
class TriangleCounter {
 public:
  /// `edges` are sorted and distinct.
  TriangleCounter(std::vector<VertexPair> edges, std::size_t vertexCount)
      : edges_(std::move(edges)), counts_(edges_.size(), 0), isEnd_(vertexCount, false) {
    for (const VertexPair& edge : edges_) isEnd_[edge.first] = isEnd_[edge.second] = true;
  }

  void add(const TriangleCorners& corners) {
    for (std::size_t k = 0; k < 3; ++k) {
      const std::uint32_t a = corners[k];
      const std::uint32_t b = corners[(k + 1) % 3];
      if (!isEnd_[a] || !isEnd_[b]) continue;
      const std::size_t at = find(std::minmax(a, b));
      if (at < edges_.size()) ++counts_[at];
    }
  }

  std::size_t count(const VertexPair& edge) const { return counts_[find(edge)]; }

 private:
  /// Index of an edge, or edges_.size().
  std::size_t find(const VertexPair& edge) const {
    const auto found = std::lower_bound(edges_.begin(), edges_.end(), edge);
    if (found == edges_.end() || *found != edge) return edges_.size();
    return asIndex(found - edges_.begin());
  }

  std::vector<VertexPair> edges_;
  std::vector<std::size_t> counts_;
  std::vector<bool> isEnd_;
};

TriangleCounter countTriangles(std::span<const std::int32_t> triangles,
                               std::span<const std::uint32_t> ranks,
                               std::span<const EdgeSegment> segments,
                               std::span<const std::size_t> pairs) {
  std::vector<VertexPair> edges;
  for (const std::size_t i : pairs) edges.push_back(edgeOf(segments[i]));
  edges.erase(std::unique(edges.begin(), edges.end()), edges.end());
  TriangleCounter counter(std::move(edges), ranks.size());
  for (std::size_t j = 0; j < triangles.size() / 3; ++j) {
    const TriangleCorners c = cornersOf(triangles, j);
    const bool isHole =
        ranks[c[0]] == kHoleRank || ranks[c[1]] == kHoleRank || ranks[c[2]] == kHoleRank;
    if (!isHole) counter.add(c);
  }
  return counter;
}

/// Makes the link to `from` lead to `to`, and keeps its lowest bit.
void redirect(NodeLinks& links, std::uint32_t from, std::uint32_t to) {
  const std::size_t k = nodeOf(links[0]) == from ? 0 : 1;
  links[k] = linkTo(to, hasHighAtLeft(links[k]));
}

/// Links the two segments' nodes at the first vertex to each other, and those at the second. The
/// links of other pairs are not touched, so the order of pairs does not matter.
void exchangeEnds(const EdgeSegment& p, const EdgeSegment& q, std::span<NodeLinks> links) {
  redirect(links[p.firstNode], p.secondNode, q.firstNode);
  redirect(links[q.firstNode], q.secondNode, p.firstNode);
  redirect(links[p.secondNode], p.firstNode, q.secondNode);
  redirect(links[q.secondNode], q.firstNode, p.secondNode);
}

}  // namespace

void removeDuplicateSegments(std::span<const std::int32_t> triangles,
                             std::span<const std::uint32_t> ranks, std::span<EdgeSegment> segments,
                             CurveGraph& graph) {
  std::sort(segments.begin(), segments.end(),
            [](const EdgeSegment& a, const EdgeSegment& b) { return sortKey(a) < sortKey(b); });
  const std::vector<std::size_t> pairs = findPairs(segments, graph.points);
  if (pairs.empty()) return;
  const TriangleCounter counter = countTriangles(triangles, ranks, segments, pairs);
  for (const std::size_t i : pairs) {
    if (counter.count(edgeOf(segments[i])) == 2)
      exchangeEnds(segments[i], segments[i + 1], graph.links);
  }
}

}  // namespace qelm
