#include "isolines/curve_edges.h"

#include <algorithm>
#include <bit>
#include <new>
#include <utility>

#include "isolines/curve_levels.h"

namespace qelm {
namespace {

/// Numbers edges in the order in which they are first asked for: a chained hash
/// table whose chains run through an array beside the edges.
class EdgeNumbering {
 public:
  EdgeNumbering(std::vector<CrossedEdge>& edges, std::size_t expected)
      : edges_(edges), heads_(std::bit_ceil(std::max(expected, kFewestSlots)), kNoEdge) {
    edges_.reserve(expected);
    next_.reserve(expected);
  }

  /// Number of the edge a-b; one more triangle meets there.
  std::uint32_t use(std::uint32_t a, std::uint32_t b) {
    if (b < a) std::swap(a, b);
    std::uint32_t steps = 0;
    for (std::uint32_t e = heads_[slot(a, b)]; e != kNoEdge; e = next_[e], ++steps) {
      CrossedEdge& edge = edges_[e];
      if (edge.firstVertex == a && edge.secondVertex == b) {
        ++edge.triangles;
        return e;
      }
    }
    return append(a, b, steps);
  }

 private:
  // Meshes number neighbours alike, and walk them in that order. A slot that moves
  // slowly with both vertices keeps that order and with it the cache; a sum with
  // different weights tells apart what a fan around one vertex, or a strip whose
  // sides are numbered towards each other, would send to one slot. Numberings that
  // pile up all the same are met by scattering the slots.
  std::size_t slot(std::uint32_t a, std::uint32_t b) const {
    const std::uint64_t near = std::uint64_t{a} + 2 * std::uint64_t{b};
    const std::uint64_t key = (std::uint64_t{a} << 32) | b;
    // Fibonacci hashing (Knuth, The Art of Computer Programming 3, 6.4).
    const std::uint64_t far = (key ^ (key >> 29)) * 0x9e3779b97f4a7c15u >> 32;
    return static_cast<std::size_t>(scattered_ ? far : near) & (heads_.size() - 1);
  }

  std::uint32_t append(std::uint32_t a, std::uint32_t b, std::uint32_t chainLength) {
    // Half of the range is kept for the nodes' link encoding, see CurveGraph.
    if (edges_.size() >= kNoEdge / 2) throw std::bad_alloc();
    if (edges_.size() == heads_.size()) rebuild(2 * heads_.size());
    if (chainLength > kLongestChain && !scattered_) {
      scattered_ = true;
      rebuild(heads_.size());
    }
    const auto e = static_cast<std::uint32_t>(edges_.size());
    edges_.push_back({a, b, 1, 0, 0});
    next_.push_back(kNoEdge);
    enchain(e);
    return e;
  }

  void rebuild(std::size_t slots) {
    heads_.assign(slots, kNoEdge);
    for (std::uint32_t e = 0; e < edges_.size(); ++e) enchain(e);
  }

  void enchain(std::uint32_t e) {
    std::uint32_t& head = heads_[slot(edges_[e].firstVertex, edges_[e].secondVertex)];
    next_[e] = head;
    head = e;
  }

  // Ordinary meshes stay below 10; with scattered slots 40 is out of reach.
  static constexpr std::uint32_t kLongestChain = 40;
  static constexpr std::size_t kFewestSlots = 64;

  std::vector<CrossedEdge>& edges_;
  std::vector<std::uint32_t> next_;   ///< per edge
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

/// How many triangles are crossed, from a sample: arrays that have about the right
/// size from the start are not moved about as they grow.
std::size_t estimateCrossed(std::span<const std::int32_t> triangles,
                            std::span<const std::uint32_t> ranks) {
  constexpr std::size_t kStride = 61;  // a prime: no period of a grid's rows
  std::size_t found = 0;
  for (std::size_t j = 0; j < triangles.size() / 3; j += kStride) {
    if (isCrossed(ranksOf(triangleCorners(triangles, j), ranks))) ++found;
  }
  return std::min(found * kStride, triangles.size() / 3);
}

}  // namespace

CrossedPart findCrossed(std::span<const std::int32_t> triangles,
                        std::span<const std::uint32_t> ranks) {
  CrossedPart part;
  const std::size_t expected = estimateCrossed(triangles, ranks);
  part.triangles.reserve(expected);
  EdgeNumbering numbering(part.edges, expected + expected / 2);  // two triangles an edge
  for (std::size_t j = 0; j < triangles.size() / 3; ++j) {
    const TriangleCorners c = triangleCorners(triangles, j);
    const Ranks r = ranksOf(c, ranks);
    if (!isCrossed(r)) continue;
    CrossedTriangle crossed;
    crossed.triangle = static_cast<std::uint32_t>(j);
    for (std::size_t k = 0; k < 3; ++k) {
      const std::size_t l = (k + 1) % 3;
      if (r[k] != r[l]) crossed.edges[k] = numbering.use(c[k], c[l]);
    }
    part.triangles.push_back(crossed);
  }
  return part;
}

}  // namespace qelm
