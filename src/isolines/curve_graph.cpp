#include "isolines/curve_graph.h"

#include <new>
#include <utility>

#include "isolines/curve_crossing.h"
#include "isolines/curve_doubles.h"
#include "isolines/curve_points.h"

namespace qelm {
namespace {

/// Gives every edge its range of nodes; returns how many there are.
std::size_t numberNodes(std::span<const std::uint32_t> ranks, std::span<CrossedEdge> edges) {
  std::uint64_t count = 0;
  for (CrossedEdge& edge : edges) {
    edge.firstNode = static_cast<std::uint32_t>(count);
    count += std::uint64_t{levelsOn(edge, ranks).count} * nodeSetsOf(edge);
    if (count > kMostNodes) throw std::bad_alloc();
  }
  return static_cast<std::size_t>(count);
}

/// Share of an edge's length up to which a crossing counts as next to a vertex. Where
/// edges of length h leave a vertex with coordinates of size c, crossings beyond
/// 2^-53 c / h of them are told apart by their coordinates. A millionth is far above
/// that for any sensible h, and rare enough to cost nothing.
constexpr double kNear = 0x1p-20;

/// Computes the points and finds which are near a vertex.
class NodePlacer {
 public:
  NodePlacer(const FieldOnMesh& mesh, std::span<const double> levels, CurveGraph& graph)
      : mesh_(mesh), levels_(levels), graph_(graph) {}

  void place(const CrossedEdge& edge, std::span<const std::uint32_t> ranks) {
    std::uint32_t low = edge.firstVertex;
    std::uint32_t high = edge.secondVertex;
    if (ranks[high] < ranks[low]) std::swap(low, high);
    const Vec3 lowEnd = mesh_.point(low);
    const Vec3 highEnd = mesh_.point(high);
    const CrossedLine line(lowEnd, highEnd, mesh_.value(low), mesh_.value(high));
    for (std::uint32_t set = 0; set < nodeSetsOf(edge); ++set) {
      for (std::uint32_t level = ranks[low]; level < ranks[high]; ++level) {
        const EdgePlace place = line.placeOf(levels_[level]);
        const Vec3 point = line.pointAt(place);
        const bool isNear = place.share <= kNear;
        if (isNear ? place.fromLow : samePlace(point, lowEnd)) noteVertex(low);
        if (isNear ? !place.fromLow : samePlace(point, highEnd)) noteVertex(high);
        graph_.nodes.push_back({point, {kNoLink, kNoLink}});
      }
    }
  }

 private:
  /// The next node lies at `vertex`.
  void noteVertex(std::uint32_t vertex) {
    if (graph_.vertexNear.empty()) graph_.vertexNear.assign(graph_.nodes.capacity(), kNoVertex);
    graph_.vertexNear[graph_.nodes.size()] = vertex;
  }

  const FieldOnMesh& mesh_;
  std::span<const double> levels_;
  CurveGraph& graph_;
};

/// A link that has higher values at its left goes to links[0], one that has not to
/// links[1], if that is free: between neighbours that are oriented alike it is.
void addLink(CurveNode& node, std::uint32_t to, bool highAtLeft) {
  const std::size_t preferred = highAtLeft ? 0 : 1;
  const bool taken = node.links[preferred] != kNoLink;
  node.links[taken ? 1 - preferred : preferred] = linkTo(to, highAtLeft);
}

/// Two edges of a triangle and the levels whose pieces run between them.
struct PieceRun {
  std::uint32_t from;  ///< node of the lowest of the levels; higher values are at
  std::uint32_t to;    ///< the left on the way to the other edge's
  std::uint32_t firstLevel;
  std::uint32_t count;
};

class PieceLinker {
 public:
  PieceLinker(std::span<const std::uint32_t> ranks, std::span<CrossedEdge> edges, CurveGraph& graph,
              std::vector<EdgePiece>& edgePieces)
      : ranks_(ranks), edges_(edges), graph_(graph), edgePieces_(edgePieces) {}

  /// With its corners sorted by rank, the levels of a triangle run between the
  /// edge low-high and either low-middle or middle-high.
  void link(const TriangleCorners& corners, const CrossedTriangle& crossed) {
    std::array<std::size_t, 3> k = {0, 1, 2};  // corners by rank
    const auto rank = [&](std::size_t i) { return ranks_[corners[k[i]]]; };
    if (rank(1) < rank(0)) std::swap(k[0], k[1]);
    if (rank(2) < rank(1)) std::swap(k[1], k[2]);
    if (rank(1) < rank(0)) std::swap(k[0], k[1]);
    // Edge i joins corners i and i+1, so it is 3-i-j... away from the third one.
    const auto edgeBetween = [&](std::size_t i, std::size_t j) {
      return crossed.edges[(opposite(k[i], k[j]) + 1) % 3];
    };
    const bool ascending = (k[0] + 1) % 3 == k[1];  // low, middle, high run around it
    const std::uint32_t longNodes = takeNodes(edgeBetween(0, 2));
    linkRun(longNodes, edgeBetween(0, 1), rank(0), rank(1) - rank(0), ascending);
    linkRun(longNodes + (rank(1) - rank(0)), edgeBetween(1, 2), rank(1), rank(2) - rank(1),
            ascending);
  }

 private:
  static std::size_t opposite(std::size_t i, std::size_t j) { return 3 - i - j; }

  /// The first of the nodes that are a triangle's on an edge.
  std::uint32_t takeNodes(std::uint32_t e) {
    CrossedEdge& edge = edges_[e];
    if (edge.triangles <= 2) return edge.firstNode;
    const std::uint32_t first = edge.firstNode + edge.nodesTaken;
    edge.nodesTaken += levelsOn(edge, ranks_).count;
    return first;
  }

  /// Where an edge falls, seen in the triangle's sense of rotation, higher values
  /// are at the left of a piece that starts there. In an ascending triangle that
  /// is its longest edge, in a descending one the other.
  void linkRun(std::uint32_t longNodes, std::uint32_t shortEdge, std::uint32_t firstLevel,
               std::uint32_t count, bool ascending) {
    if (count == 0) return;
    const std::uint32_t shortNodes = takeNodes(shortEdge);
    if (ascending) {
      linkRun({longNodes, shortNodes, firstLevel, count});
    } else {
      linkRun({shortNodes, longNodes, firstLevel, count});
    }
  }

  void linkRun(const PieceRun& run) {
    CurveNode* const from = graph_.nodes.data() + run.from;
    CurveNode* const to = graph_.nodes.data() + run.to;
    for (std::uint32_t i = 0; i < run.count; ++i) {
      addLink(from[i], run.to + i, true);
      addLink(to[i], run.from + i, false);
    }
    if (!graph_.vertexNear.empty()) noteEdgePieces(run);
  }

  void noteEdgePieces(const PieceRun& run) {
    for (std::uint32_t i = 0; i < run.count; ++i) {
      const std::uint32_t a = graph_.vertexNear[run.from + i];
      const std::uint32_t b = graph_.vertexNear[run.to + i];
      if (a == kNoVertex || b == kNoVertex || a == b) continue;
      EdgePiece piece = {a, b, run.firstLevel + i, run.from + i, run.to + i};
      if (b < a) piece = {b, a, piece.level, piece.secondNode, piece.firstNode};
      edgePieces_.push_back(piece);
    }
  }

  std::span<const std::uint32_t> ranks_;
  std::span<CrossedEdge> edges_;
  CurveGraph& graph_;
  std::vector<EdgePiece>& edgePieces_;
};

}  // namespace

CurveGraph linkCrossings(const FieldOnMesh& mesh, std::span<const double> distinctLevels,
                         std::span<const std::uint32_t> ranks, CrossedPart& part) {
  CurveGraph graph;
  graph.nodes.reserve(numberNodes(ranks, part.edges));
  NodePlacer placer(mesh, distinctLevels, graph);
  for (const CrossedEdge& edge : part.edges) placer.place(edge, ranks);

  std::vector<EdgePiece> edgePieces;
  PieceLinker linker(ranks, part.edges, graph, edgePieces);
  for (const CrossedTriangle& crossed : part.triangles) {
    linker.link(triangleCorners(mesh.triangles, crossed.triangle), crossed);
  }
  if (!edgePieces.empty()) removeDoubledPieces(mesh.triangles, ranks, edgePieces, graph.nodes);
  return graph;
}

}  // namespace qelm
