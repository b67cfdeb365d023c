#include "isolines/curve_graph.h"

#include <new>

#include "interface/index.h"
#include "isolines/curve_crossing.h"
#include "isolines/curve_duplicates.h"
#include "isolines/curve_points.h"

namespace qelm {
namespace {

/// Gives every edge its range of nodes. Returns the number of nodes.
std::size_t numberNodes(std::span<CrossedEdge> edges) {
  std::uint64_t count = 0;
  for (CrossedEdge& edge : edges) {
    edge.nodes = static_cast<std::uint32_t>(count);
    count += nodesOn(edge);
    if (count > kMostNodes) throw std::bad_alloc();
  }
  return static_cast<std::size_t>(count);
}

/// One end of edges: all that the points on them are computed from.
struct EdgeEnd {
  Vec3 point;
  double value;
  std::uint32_t rank;
  std::uint32_t vertex;
};

/// Reads each vertex once for all of its edges. In a mesh with scattered numbers each vertex is a
/// cache miss; in this loop many are under way at once.
std::vector<EdgeEnd> fetchEnds(const FieldOnMesh& mesh, std::span<const std::uint32_t> ranks,
                               std::span<const std::uint32_t> vertices) {
  std::vector<EdgeEnd> ends;
  ends.reserve(vertices.size());
  for (const std::uint32_t v : vertices) {
    ends.push_back({mesh.point(v), mesh.value(v), ranks[v], v});
  }
  return ends;
}

/// Computes the points of one edge after the other, and finds which are near a vertex.
class PointWriter {
 public:
  PointWriter(std::span<const EdgeEnd> ends, std::span<const double> levels, CurveGraph& graph)
      : ends_(ends), levels_(levels), graph_(graph), next_(graph.points.data()) {}

  void write(const CrossedEdge& edge) {
    const EdgeEnd& low = ends_[edge.low];
    const EdgeEnd& high = ends_[edge.high];
    const CrossedLine line(low.point, high.point, low.value, high.value);
    if (edge.triangles <= 2 && line.isOrdinary()) {
      writeOrdinary(line, low, high);
      return;
    }
    for (std::uint64_t set = 0; set < nodeSetsOf(edge); ++set) writeAny(line, low, high);
  }

 private:
  void writeOrdinary(const CrossedLine& line, const EdgeEnd& low, const EdgeEnd& high) {
    for (std::uint32_t level = low.rank; level < high.rank; ++level) {
      const EdgePosition position = line.ordinaryPositionOf(levels_[level]);
      if (position.share() <= kNear) noteVertex(position.isFromLow() ? low.vertex : high.vertex);
      *next_++ = line.ordinaryPointAt(position);
    }
  }

  void writeAny(const CrossedLine& line, const EdgeEnd& low, const EdgeEnd& high) {
    for (std::uint32_t level = low.rank; level < high.rank; ++level) {
      const EdgePosition position = line.positionOf(levels_[level]);
      const Vec3 point = line.pointAt(position);
      const bool isNear = position.share() <= kNear;
      if (isNear ? position.isFromLow() : samePoint(point, low.point)) noteVertex(low.vertex);
      if (isNear ? !position.isFromLow() : samePoint(point, high.point)) noteVertex(high.vertex);
      *next_++ = point;
    }
  }

  /// The next node is near `vertex`.
  void noteVertex(std::uint32_t vertex) {
    if (graph_.vertexNear.empty()) graph_.vertexNear.assign(graph_.points.size(), kNoVertex);
    graph_.vertexNear[asIndex(next_ - graph_.points.data())] = vertex;
  }

  std::span<const EdgeEnd> ends_;
  std::span<const double> levels_;
  CurveGraph& graph_;
  Vec3* next_;
};

/// Stores a link with higher values at its left in links[0], another one in links[1]; in the other
/// element if that one is taken, as happens between triangles that are not oriented alike.
void addLink(NodeLinks& links, std::uint32_t to, bool highAtLeft) {
  const std::size_t preferred = highAtLeft ? 0 : 1;
  const bool taken = links[preferred] != kNoLink;
  links[taken ? 1 - preferred : preferred] = linkTo(to, highAtLeft);
}

/// The segments of consecutive levels between two edges of a triangle: from node `from` to node
/// `to`, from `from` + 1 to `to` + 1, and so on, with higher values at the left.
struct SegmentRun {
  std::uint32_t from;
  std::uint32_t to;
  std::uint32_t count;
};

class SegmentLinker {
 public:
  SegmentLinker(std::span<const std::uint32_t> ranks, CrossedPart& part, CurveGraph& graph,
                std::vector<EdgeSegment>& edgeSegments)
      : ranks_(ranks), part_(part), graph_(graph), edgeSegments_(edgeSegments) {}

  void link(const CrossedTriangle& triangle) {
    const std::uint32_t longNodes = takeNodes(part_.edges[triangle.longEdge]);
    CrossedEdge& shortEdge = part_.edges[triangle.shortEdge];
    linkRun(longNodes, shortEdge, triangle.ascending);
    if (triangle.secondShort == kNoEdge) return;
    CrossedEdge& secondShort = part_.edges[triangle.secondShort];
    linkRun(longNodes + shortEdge.levelCount, secondShort, triangle.ascending);
  }

 private:
  /// The first of the nodes on an edge that belong to the next triangle.
  std::uint32_t takeNodes(CrossedEdge& edge) {
    const std::uint32_t first = edge.nodes;
    if (edge.triangles > 2) edge.nodes += edge.levelCount;
    return first;
  }

  /// A segment has higher values at its left if it starts on an edge along which values fall, in
  /// the triangle's orientation. That is the long edge of an ascending triangle, and the short edge
  /// of a descending one.
  void linkRun(std::uint32_t longNodes, CrossedEdge& shortEdge, bool ascending) {
    const std::uint32_t shortNodes = takeNodes(shortEdge);
    const std::uint32_t from = ascending ? longNodes : shortNodes;
    const std::uint32_t to = ascending ? shortNodes : longNodes;
    linkRun({from, to, shortEdge.levelCount});
    if (!graph_.vertexNear.empty()) {
      noteEdgeSegments({from, to, shortEdge.levelCount}, ranks_[part_.vertices[shortEdge.low]]);
    }
  }

  void linkRun(const SegmentRun& run) {
    NodeLinks* const from = graph_.links.data() + run.from;
    NodeLinks* const to = graph_.links.data() + run.to;
    for (std::uint32_t i = 0; i < run.count; ++i) {
      addLink(from[i], run.to + i, true);
      addLink(to[i], run.from + i, false);
    }
  }

  /// Collects the segments between nodes near two different vertices.
  void noteEdgeSegments(const SegmentRun& run, std::uint32_t firstLevel) {
    for (std::uint32_t i = 0; i < run.count; ++i) {
      const std::uint32_t a = graph_.vertexNear[run.from + i];
      const std::uint32_t b = graph_.vertexNear[run.to + i];
      if (a == kNoVertex || b == kNoVertex || a == b) continue;
      EdgeSegment segment = {a, b, firstLevel + i, run.from + i, run.to + i};
      if (b < a) segment = {b, a, segment.level, segment.secondNode, segment.firstNode};
      edgeSegments_.push_back(segment);
    }
  }

  std::span<const std::uint32_t> ranks_;
  CrossedPart& part_;
  CurveGraph& graph_;
  std::vector<EdgeSegment>& edgeSegments_;
};

void writePoints(const FieldOnMesh& mesh, std::span<const double> distinctLevels,
                 std::span<const std::uint32_t> ranks, CrossedPart& part, CurveGraph& graph) {
  const std::vector<EdgeEnd> ends = fetchEnds(mesh, ranks, part.vertices);
  graph.points.resize(numberNodes(part.edges));
  PointWriter writer(ends, distinctLevels, graph);
  for (const CrossedEdge& edge : part.edges) writer.write(edge);
}

}  // namespace

CurveGraph linkCrossings(const FieldOnMesh& mesh, std::span<const double> distinctLevels,
                         std::span<const std::uint32_t> ranks, CrossedPart& part) {
  CurveGraph graph;
  writePoints(mesh, distinctLevels, ranks, part, graph);
  graph.links.assign(graph.points.size(), {kNoLink, kNoLink});
  std::vector<EdgeSegment> edgeSegments;
  SegmentLinker linker(ranks, part, graph, edgeSegments);
  for (const CrossedTriangle& triangle : part.triangles) linker.link(triangle);
  part.triangles = {};
  if (!edgeSegments.empty()) removeDuplicateSegments(mesh.triangles, ranks, edgeSegments, graph);
  return graph;
}

}  // namespace qelm
