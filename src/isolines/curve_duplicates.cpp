#include "isolines/curve_doubles.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <tuple>
#include <utility>

#include "isolines/curve_edges.h"
#include "isolines/curve_levels.h"
#include "isolines/curve_points.h"

namespace qelm {
namespace {

using VertexPair = std::pair<std::uint32_t, std::uint32_t>;

VertexPair edgeOf(const EdgePiece& piece) { return {piece.firstVertex, piece.secondVertex}; }

auto sortKey(const EdgePiece& piece) {
  return std::tie(piece.firstVertex, piece.secondVertex, piece.level);
}

bool samePlaces(const EdgePiece& a, const EdgePiece& b, std::span<const Vec3> points) {
  return samePlace(points[a.firstNode], points[b.firstNode]) &&
         samePlace(points[a.secondNode], points[b.secondNode]);
}

/// Indices i such that pieces i and i+1, and no others, share edge and level, and
/// their end points.
std::vector<std::size_t> findPairs(std::span<const EdgePiece> pieces,
                                   std::span<const Vec3> points) {
  std::vector<std::size_t> pairs;
  for (std::size_t i = 0; i < pieces.size();) {
    std::size_t end = i + 1;
    while (end < pieces.size() && sortKey(pieces[end]) == sortKey(pieces[i])) ++end;
    if (end - i == 2 && samePlaces(pieces[i], pieces[i + 1], points)) pairs.push_back(i);
    i = end;
  }
  return pairs;
}

/// Counts, for some edges, the triangles that meet there and are no holes.
class TriangleCounter {
 public:
  /// `edges` sorted, without doubles.
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
    return static_cast<std::size_t>(found - edges_.begin());
  }

  std::vector<VertexPair> edges_;
  std::vector<std::size_t> counts_;
  std::vector<bool> isEnd_;
};

TriangleCounter countTriangles(std::span<const std::int32_t> triangles,
                               std::span<const std::uint32_t> ranks,
                               std::span<const EdgePiece> pieces,
                               std::span<const std::size_t> pairs) {
  std::vector<VertexPair> edges;
  for (const std::size_t i : pairs) edges.push_back(edgeOf(pieces[i]));
  edges.erase(std::unique(edges.begin(), edges.end()), edges.end());
  TriangleCounter counter(std::move(edges), ranks.size());
  for (std::size_t j = 0; j < triangles.size() / 3; ++j) {
    const TriangleCorners c = triangleCorners(triangles, j);
    const bool isHole =
        ranks[c[0]] == kHoleRank || ranks[c[1]] == kHoleRank || ranks[c[2]] == kHoleRank;
    if (!isHole) counter.add(c);
  }
  return counter;
}

/// Makes the link to `from` lead to `to`; its sense stays.
void redirect(NodeLinks& links, std::uint32_t from, std::uint32_t to) {
  const std::size_t k = nodeOf(links[0]) == from ? 0 : 1;
  links[k] = linkTo(to, hasHighAtLeft(links[k]));
}

/// Joins two pieces' ends at their first vertex, and those at the second. The
/// exchanges touch no link of another pair, so their order does not matter.
void exchangeEnds(const EdgePiece& p, const EdgePiece& q, std::span<NodeLinks> links) {
  redirect(links[p.firstNode], p.secondNode, q.firstNode);
  redirect(links[q.firstNode], q.secondNode, p.firstNode);
  redirect(links[p.secondNode], p.firstNode, q.secondNode);
  redirect(links[q.secondNode], q.firstNode, p.secondNode);
}

}  // namespace

void removeDoubledPieces(std::span<const std::int32_t> triangles,
                         std::span<const std::uint32_t> ranks, std::span<EdgePiece> pieces,
                         CurveGraph& graph) {
  std::sort(pieces.begin(), pieces.end(),
            [](const EdgePiece& a, const EdgePiece& b) { return sortKey(a) < sortKey(b); });
  const std::vector<std::size_t> pairs = findPairs(pieces, graph.points);
  if (pairs.empty()) return;
  const TriangleCounter counter = countTriangles(triangles, ranks, pieces, pairs);
  for (const std::size_t i : pairs) {
    if (counter.count(edgeOf(pieces[i])) == 2) exchangeEnds(pieces[i], pieces[i + 1], graph.links);
  }
}

}  // namespace qelm
