#include "isolines/curve_graph.h"

#include <new>

#include "isolines/curve_crossing.h"
#include "isolines/curve_doubles.h"
#include "isolines/curve_points.h"

namespace qelm {
namespace {

/// Gives every edge its range of nodes; returns how many there are.
std::size_t numberNodes(std::span<CrossedEdge> edges) {
  std::uint64_t count = 0;
  for (CrossedEdge& edge : edges) {
    edge.nodes = static_cast<std::uint32_t>(count);
    count += nodesOn(edge);
    if (count > kMostNodes) throw std::bad_alloc();
  }
  return static_cast<std::size_t>(count);
}

/// What the points on edges are computed from.
struct EdgeEnd {
  Vec3 point;
  double value;
  std::uint32_t rank;
  std::uint32_t vertex;
};

/// Fetched once for all of a vertex's edges: in a mesh whose numbering is no order,
/// each is a wait for memory, and here many are waited for at once.
std::vector<EdgeEnd> fetchEnds(const FieldOnMesh& mesh, std::span<const std::uint32_t> ranks,
                               std::span<const std::uint32_t> vertices) {
  std::vector<EdgeEnd> ends;
  ends.reserve(vertices.size());
  for (const std::uint32_t v : vertices) {
    ends.push_back({mesh.point(v), mesh.value(v), ranks[v], v});
  }
  return ends;
}

/// Computes the points and finds which are near a vertex.
class NodePlacer {
 public:
  NodePlacer(std::span<const EdgeEnd> ends, std::span<const double> levels, CurveGraph& graph)
      : ends_(ends), levels_(levels), graph_(graph), next_(graph.points.data()) {}

  void place(const CrossedEdge& edge) {
    const EdgeEnd& low = ends_[edge.low];
    const EdgeEnd& high = ends_[edge.high];
    const CrossedLine line(low.point, high.point, low.value, high.value);
    if (edge.triangles <= 2 && line.isOrdinary()) {
      placeOrdinary(line, low, high);
      return;
    }
    for (std::uint64_t set = 0; set < nodeSetsOf(edge); ++set) placeAny(line, low, high);
  }

 private:
  void placeOrdinary(const CrossedLine& line, const EdgeEnd& low, const EdgeEnd& high) {
    for (std::uint32_t level = low.rank; level < high.rank; ++level) {
      const EdgePlace place = line.ordinaryPlaceOf(levels_[level]);
      if (place.share() <= kNear) noteVertex(place.isFromLow() ? low.vertex : high.vertex);
      *next_++ = line.ordinaryPointAt(place);
    }
  }

  void placeAny(const CrossedLine& line, const EdgeEnd& low, const EdgeEnd& high) {
    for (std::uint32_t level = low.rank; level < high.rank; ++level) {
      const EdgePlace place = line.placeOf(levels_[level]);
      const Vec3 point = line.pointAt(place);
      const bool isNear = place.share() <= kNear;
      if (isNear ? place.isFromLow() : samePlace(point, low.point)) noteVertex(low.vertex);
      if (isNear ? !place.isFromLow() : samePlace(point, high.point)) noteVertex(high.vertex);
      *next_++ = point;
    }
  }

  /// The next node lies at `vertex`.
  void noteVertex(std::uint32_t vertex) {
    if (graph_.vertexNear.empty()) graph_.vertexNear.assign(graph_.points.size(), kNoVertex);
    graph_.vertexNear[static_cast<std::size_t>(next_ - graph_.points.data())] = vertex;
  }

  std::span<const EdgeEnd> ends_;
  std::span<const double> levels_;
  CurveGraph& graph_;
  Vec3* next_;
};

/// A link that has higher values at its left goes to links[0], one that has not to
/// links[1], if that is free: between neighbours that are oriented alike it is.
void addLink(NodeLinks& links, std::uint32_t to, bool highAtLeft) {
  const std::size_t preferred = highAtLeft ? 0 : 1;
  const bool taken = links[preferred] != kNoLink;
  links[taken ? 1 - preferred : preferred] = linkTo(to, highAtLeft);
}

/// Two edges of a triangle and the levels whose pieces run between them.
struct PieceRun {
  std::uint32_t from;  ///< node of the lowest of the levels; higher values are at
  std::uint32_t to;    ///< the left on the way to the other edge's
  std::uint32_t count;
};

class PieceLinker {
 public:
  PieceLinker(std::span<const std::uint32_t> ranks, CrossedPart& part, CurveGraph& graph,
              std::vector<EdgePiece>& edgePieces)
      : ranks_(ranks), part_(part), graph_(graph), edgePieces_(edgePieces) {}

  void link(const CrossedTriangle& triangle) {
    const std::uint32_t longNodes = takeNodes(part_.edges[triangle.longEdge]);
    CrossedEdge& shortEdge = part_.edges[triangle.shortEdge];
    linkRun(longNodes, shortEdge, triangle.ascending);
    if (triangle.secondShort == kNoEdge) return;
    CrossedEdge& secondShort = part_.edges[triangle.secondShort];
    linkRun(longNodes + shortEdge.levelCount, secondShort, triangle.ascending);
  }

 private:
  /// The first of the nodes that are a triangle's on an edge.
  std::uint32_t takeNodes(CrossedEdge& edge) {
    const std::uint32_t first = edge.nodes;
    if (edge.triangles > 2) edge.nodes += edge.levelCount;
    return first;
  }

  /// Where an edge falls, seen in the triangle's sense of rotation, higher values
  /// are at the left of a piece that starts there. In an ascending triangle that
  /// is its long edge, in a descending one the other.
  void linkRun(std::uint32_t longNodes, CrossedEdge& shortEdge, bool ascending) {
    const std::uint32_t shortNodes = takeNodes(shortEdge);
    const std::uint32_t from = ascending ? longNodes : shortNodes;
    const std::uint32_t to = ascending ? shortNodes : longNodes;
    linkRun({from, to, shortEdge.levelCount});
    if (!graph_.vertexNear.empty()) {
      noteEdgePieces({from, to, shortEdge.levelCount}, ranks_[part_.vertices[shortEdge.low]]);
    }
  }

  void linkRun(const PieceRun& run) {
    NodeLinks* const from = graph_.links.data() + run.from;
    NodeLinks* const to = graph_.links.data() + run.to;
    for (std::uint32_t i = 0; i < run.count; ++i) {
      addLink(from[i], run.to + i, true);
      addLink(to[i], run.from + i, false);
    }
  }

  void noteEdgePieces(const PieceRun& run, std::uint32_t firstLevel) {
    for (std::uint32_t i = 0; i < run.count; ++i) {
      const std::uint32_t a = graph_.vertexNear[run.from + i];
      const std::uint32_t b = graph_.vertexNear[run.to + i];
      if (a == kNoVertex || b == kNoVertex || a == b) continue;
      EdgePiece piece = {a, b, firstLevel + i, run.from + i, run.to + i};
      if (b < a) piece = {b, a, piece.level, piece.secondNode, piece.firstNode};
      edgePieces_.push_back(piece);
    }
  }

  std::span<const std::uint32_t> ranks_;
  CrossedPart& part_;
  CurveGraph& graph_;
  std::vector<EdgePiece>& edgePieces_;
};

void placeNodes(const FieldOnMesh& mesh, std::span<const double> distinctLevels,
                std::span<const std::uint32_t> ranks, CrossedPart& part, CurveGraph& graph) {
  const std::vector<EdgeEnd> ends = fetchEnds(mesh, ranks, part.vertices);
  graph.points.resize(numberNodes(part.edges));
  NodePlacer placer(ends, distinctLevels, graph);
  for (const CrossedEdge& edge : part.edges) placer.place(edge);
}

}  // namespace

CurveGraph linkCrossings(const FieldOnMesh& mesh, std::span<const double> distinctLevels,
                         std::span<const std::uint32_t> ranks, CrossedPart& part) {
  CurveGraph graph;
  placeNodes(mesh, distinctLevels, ranks, part, graph);
  graph.links.assign(graph.points.size(), {kNoLink, kNoLink});
  std::vector<EdgePiece> edgePieces;
  PieceLinker linker(ranks, part, graph, edgePieces);
  for (const CrossedTriangle& triangle : part.triangles) linker.link(triangle);
  part.triangles = {};
  if (!edgePieces.empty()) removeDoubledPieces(mesh.triangles, ranks, edgePieces, graph);
  return graph;
}

}  // namespace qelm
