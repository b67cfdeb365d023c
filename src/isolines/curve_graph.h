// The curve graph: a node for each crossing of an edge by a level, a link for each end of a
// segment.
//
// In: the crossed edges and triangles (curve_edges.h). Out: the nodes' points and links. The nodes
// of an edge are consecutive, level after level. A triangle links the nodes of its long edge with
// those of its short edges, as here with the ranks 0, 2 and 5 of its corners:
//
//   long edge       10 11 12 13 14         levels 0 to 4
//                    |  |  |  |  |
//   short edges     30 31 20 21 22         levels 0, 1 on the lower, 2 to 4 on the upper one
//
// A node gets one link from each triangle at its edge. An edge where more than two triangles meet
// has a set of nodes for each of them, so that curves end there: no node has more than two links,
// and following the links gives the curves.
//
// Cost: linear in the crossings.
#ifndef QELM_ISOLINES_CURVE_GRAPH_H
#define QELM_ISOLINES_CURVE_GRAPH_H

#include <array>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <span>
#include <vector>

#include "interface/index.h"
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
  double value(std::uint32_t s) const { return field[asIndex(vertexOrder[s])]; }
};

/// A neighbouring node and, in the lowest bit, whether the segment that leads there has the higher
/// values at its left, seen in its own triangle's orientation.
using NodeLink = std::uint32_t;
inline constexpr NodeLink kNoLink = std::numeric_limits<NodeLink>::max();
inline constexpr std::uint32_t kMostNodes = kNoLink / 2;

inline NodeLink linkTo(std::uint32_t node, bool highAtLeft) {
  return node << 1 | static_cast<std::uint32_t>(highAtLeft);
}
inline std::uint32_t nodeOf(NodeLink link) { return link >> 1; }
inline bool hasHighAtLeft(NodeLink link) { return (link & 1) != 0; }

/// Where both triangles are oriented alike, the first link has higher values at the left, and the
/// second, which leads back, has not.
using NodeLinks = std::array<NodeLink, 2>;

inline constexpr std::uint32_t kNoVertex = std::numeric_limits<std::uint32_t>::max();

/// Points and links are two arrays: following links touches a fraction of the memory.
struct CurveGraph {
  std::vector<Vec3> points;      ///< for each node
  std::vector<NodeLinks> links;  ///< for each node
  /// For each node the end of its edge that it is near (kNear), or kNoVertex; empty if no node is
  /// near a vertex. Only such nodes can have the same point as nodes of other edges.
  std::vector<std::uint32_t> vertexNear;
};

/// How many nodes an edge has for each level.
inline std::uint64_t nodeSetsOf(const CrossedEdge& edge) {
  return edge.triangles > 2 ? edge.triangles : 1;
}
inline std::uint64_t nodesOn(const CrossedEdge& edge) { return edge.levelCount * nodeSetsOf(edge); }

/// The graph of every crossing in `part`, its nodes in the order of the edges. Segments that run
/// along one edge of the mesh on both of its sides are left out, see curve_duplicates.h. Uses
/// CrossedEdge::nodes as a counter, and frees the triangles. Throws std::bad_alloc for more than
/// kMostNodes nodes.
CurveGraph linkCrossings(const FieldOnMesh& mesh, std::span<const double> distinctLevels,
                         std::span<const std::uint32_t> ranks, CrossedPart& part);

}  // namespace qelm

#endif  // QELM_ISOLINES_CURVE_GRAPH_H
