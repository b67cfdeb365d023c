#include "isolines/curve_edges.h"

#include <algorithm>
#include <bit>
#include <compare>
#include <new>
#include <utility>

#include "isolines/curve_levels.h"

namespace qelm {
namespace {

/// Numbers vertices in the order in which they are first used.
class UsedVertices {
 public:
  UsedVertices(std::vector<std::uint32_t>& vertices, std::size_t vertexCount)
      : vertices_(vertices), numberOf_(vertexCount, kNone) {}

  std::uint32_t use(std::uint32_t vertex) {
    std::uint32_t& number = numberOf_[vertex];
    if (number == kNone) {
      number = static_cast<std::uint32_t>(vertices_.size());
      vertices_.push_back(vertex);
    }
    return number;
  }

 private:
  static constexpr std::uint32_t kNone = std::numeric_limits<std::uint32_t>::max();

  std::vector<std::uint32_t>& vertices_;
  std::vector<std::uint32_t> numberOf_;
};

/// Ordered by rank, then by number.
struct RankedVertex {
  std::uint32_t rank;
  std::uint32_t number;  ///< index in CrossedPart::vertices

  auto operator<=>(const RankedVertex&) const = default;
};

/// Numbers edges in the order in which they are first used: a chained hash table whose chains run
/// through the edges.
class UsedEdges {
 public:
  UsedEdges(std::vector<CrossedEdge>& edges, std::size_t expected)
      : edges_(edges), heads_(std::bit_ceil(std::max(expected, kFewestSlots)), kNoEdge) {
    edges_.reserve(expected);
  }

  /// The number of the edge from `low` to `high`, which counts one more triangle.
  std::uint32_t use(const RankedVertex& low, const RankedVertex& high) {
    std::uint32_t steps = 0;
    std::uint32_t* head = &heads_[slot(low.number, high.number)];
    for (std::uint32_t e = *head; e != kNoEdge; e = edges_[e].next, ++steps) {
      CrossedEdge& edge = edges_[e];
      if (edge.low == low.number && edge.high == high.number) {
        ++edge.triangles;
        return e;
      }
    }
    if (edges_.size() == heads_.size() || steps > kLongestChain) {
      makeRoom(steps);
      head = &heads_[slot(low.number, high.number)];
    }
    const auto e = static_cast<std::uint32_t>(edges_.size());
    edges_.push_back({low.number, high.number, high.rank - low.rank, 1, 0, *head});
    *head = e;
    return e;
  }

 private:
  // Neighbouring vertices have near numbers, and slots that change little with both ends keep their
  // edges near in memory. The weights differ since a plain sum would put the edges of a strip whose
  // two sides are numbered towards each other into one slot. If a chain grows long all the same,
  // the slots are scattered.
  std::size_t slot(std::uint32_t a, std::uint32_t b) const {
    const std::uint64_t near = std::uint64_t{a} + 2 * std::uint64_t{b};
    const std::uint64_t key = (std::uint64_t{a} << 32) | b;
    // Fibonacci hashing (Knuth, The Art of Computer Programming 3, 6.4).
    const std::uint64_t far = (key ^ (key >> 29)) * 0x9e3779b97f4a7c15u >> 32;
    return static_cast<std::size_t>(scattered_ ? far : near) & (heads_.size() - 1);
  }

  void makeRoom(std::uint32_t chainLength) {
    // Half of the range is kept for the nodes' link encoding, see CurveGraph.
    if (edges_.size() >= kNoEdge / 2) throw std::bad_alloc();
    if (edges_.size() == heads_.size()) rebuild(2 * heads_.size());
    if (chainLength > kLongestChain && !scattered_) {
      scattered_ = true;
      rebuild(heads_.size());
    }
  }

  void rebuild(std::size_t slots) {
    heads_.assign(slots, kNoEdge);
    for (std::uint32_t e = 0; e < edges_.size(); ++e) {
      std::uint32_t& head = heads_[slot(edges_[e].low, edges_[e].high)];
      edges_[e].next = head;
      head = e;
    }
  }

  // Chains of ordinary meshes stay below 10; with scattered slots none reaches 40.
  static constexpr std::uint32_t kLongestChain = 40;
  static constexpr std::size_t kFewestSlots = 64;

  std::vector<CrossedEdge>& edges_;
  std::vector<std::uint32_t> heads_;  ///< a power of two of them
  bool scattered_ = false;
};

using Ranks = std::array<std::uint32_t, 3>;

bool isCrossed(const Ranks& ranks) {
  if (ranks[0] == ranks[1] && ranks[1] == ranks[2]) return false;
  return ranks[0] != kHoleRank && ranks[1] != kHoleRank && ranks[2] != kHoleRank;
}

Ranks ranksOf(const TriangleCorners& c, std::span<const std::uint32_t> ranks) {
  return {ranks[c[0]], ranks[c[1]], ranks[c[2]]};
}

/// Looks up a triangle's crossed edges.
CrossedTriangle useEdges(std::array<RankedVertex, 3> corners, UsedEdges& edges) {
  auto& [low, middle, high] = corners;
  CrossedTriangle triangle;
  // Each exchange of two corners reverses the orientation.
  triangle.ascending = true;
  const auto sort = [&](RankedVertex& a, RankedVertex& b) {
    if (!(b < a)) return;
    std::swap(a, b);
    triangle.ascending = !triangle.ascending;
  };
  sort(low, middle);
  sort(middle, high);
  sort(low, middle);
  triangle.longEdge = edges.use(low, high);
  if (low.rank != middle.rank) triangle.shortEdge = edges.use(low, middle);
  if (middle.rank != high.rank) {
    const bool both = triangle.shortEdge != kNoEdge;
    (both ? triangle.secondShort : triangle.shortEdge) = edges.use(middle, high);
  }
  return triangle;
}

struct CrossedCounts {
  std::size_t triangles = 0;
  std::size_t edges = 0;
};

/// Estimates from a sample how many triangles and edges are crossed: arrays of about the right size
/// need not grow.
CrossedCounts estimateCrossed(std::span<const std::int32_t> triangles,
                              std::span<const std::uint32_t> ranks) {
  constexpr std::size_t kStride = 61;  // a prime: no period of a grid's rows
  CrossedCounts found;
  for (std::size_t j = 0; j < triangles.size() / 3; j += kStride) {
    const Ranks r = ranksOf(cornersOf(triangles, j), ranks);
    if (!isCrossed(r)) continue;
    ++found.triangles;
    found.edges += r[0] == r[1] || r[1] == r[2] || r[2] == r[0] ? 2 : 3;
  }
  // A sixteenth more: an array that is a little too small would be doubled.
  const auto scaled = [](std::size_t count) { return count * kStride + count * kStride / 16; };
  return {scaled(found.triangles), scaled(found.edges) / 2};  // two triangles share an edge
}

}  // namespace

CrossedPart findCrossed(std::span<const std::int32_t> triangles,
                        std::span<const std::uint32_t> ranks) {
  CrossedPart part;
  const CrossedCounts expected = estimateCrossed(triangles, ranks);
  part.triangles.reserve(expected.triangles);
  UsedVertices vertices(part.vertices, ranks.size());
  UsedEdges edges(part.edges, expected.edges);
  for (std::size_t j = 0; j < triangles.size() / 3; ++j) {
    const TriangleCorners corners = cornersOf(triangles, j);
    const Ranks r = ranksOf(corners, ranks);
    if (!isCrossed(r)) continue;
    std::array<RankedVertex, 3> ranked;
    for (std::size_t k = 0; k < 3; ++k) ranked[k] = {r[k], vertices.use(corners[k])};
    part.triangles.push_back(useEdges(ranked, edges));
  }
  return part;
}

}  // namespace qelm
