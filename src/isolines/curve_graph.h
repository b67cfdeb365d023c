// All crossings of edges by levels, as nodes, linked by the pieces of the curves
// that run through the triangles between them.
//
// An edge has one node per level that crosses it; an edge where more than two
// triangles meet has one per level and triangle, so that curves end there. With
// that, a node has one or two links, and following links gives the curves.
#ifndef QELM_ISOLINES_CURVE_GRAPH_H
#define QELM_ISOLINES_CURVE_GRAPH_H

#include <array>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <span>
#include <vector>

#include "isolines/curve_edges.h"
#include "mesh/vec3.h"

namespace qelm {

/// A mesh in system order and a field on it in input order.
struct FieldOnMesh {
  std::span<const double> vertices;           ///< 3n
  std::span<const std::int32_t> triangles;    ///< 3m
  std::span<const std::int32_t> vertexOrder;  ///< system -> input
  std::span<const double> field;              ///< n

  Vec3 point(std::uint32_t s) const {
    const std::size_t base = 3 * std::size_t{s};
    return {vertices[base], vertices[base + 1], vertices[base + 2]};
  }
  double value(std::uint32_t s) const { return field[static_cast<std::size_t>(vertexOrder[s])]; }
};

/// The neighbouring node, doubled, plus 1 if the piece that leads there has higher
/// values at its left by its own triangle's orientation.
using NodeLink = std::uint32_t;
inline constexpr NodeLink kNoLink = std::numeric_limits<NodeLink>::max();
inline constexpr std::uint32_t kMostNodes = kNoLink / 2;

inline NodeLink linkTo(std::uint32_t node, bool highAtLeft) {
  return node << 1 | static_cast<std::uint32_t>(highAtLeft);
}
inline std::uint32_t nodeOf(NodeLink link) { return link >> 1; }
inline bool hasHighAtLeft(NodeLink link) { return (link & 1) != 0; }

/// Where neighbours are oriented alike, the first leads on with higher values at the
/// left, and the second back.
using NodeLinks = std::array<NodeLink, 2>;

inline constexpr std::uint32_t kNoVertex = std::numeric_limits<std::uint32_t>::max();

/// Links lie apart from the points: following them touches a fraction of the memory.
struct CurveGraph {
  std::vector<Vec3> points;      ///< per node
  std::vector<NodeLinks> links;  ///< per node
  /// The end of its edge at or next to which a node lies, or kNoVertex; empty if all
  /// nodes are well inside their edges. Only such nodes can share their place with
  /// nodes of other edges.
  std::vector<std::uint32_t> vertexNear;
};

/// How many nodes an edge has for each of its levels.
inline std::uint64_t nodeSetsOf(const CrossedEdge& edge) {
  return edge.triangles > 2 ? edge.triangles : 1;
}
inline std::uint64_t nodesOn(const CrossedEdge& edge) { return edge.levelCount * nodeSetsOf(edge); }

/// Nodes and links for every crossing in `part`; nodes lie in the order of its edges.
/// Uses up CrossedEdge::nodes and gives up the triangles.
/// Pieces that run along one edge of the mesh on both of its sides are left out,
/// see curve_doubles.h. More than kMostNodes nodes leave as std::bad_alloc.
CurveGraph linkCrossings(const FieldOnMesh& mesh, std::span<const double> distinctLevels,
                         std::span<const std::uint32_t> ranks, CrossedPart& part);

}  // namespace qelm

#endif  // QELM_ISOLINES_CURVE_GRAPH_H
