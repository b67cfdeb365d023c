// From linked crossings to curves in their final form and order.
#ifndef QELM_ISOLINES_CURVE_TRACE_H
#define QELM_ISOLINES_CURVE_TRACE_H

#include <cstddef>
#include <cstdint>
#include <utility>
#include <vector>

#include "isolines/curve_graph.h"
#include "isolines/curve_loops.h"

namespace qelm {

/// A sequence of nodes of one level, no two neighbours of it at the same point.
struct TracedCurve {
  std::uint32_t level = 0;  ///< position among the distinct levels
  std::uint32_t count = 0;  ///< of points: 2 or more, 3 or more if closed
  std::size_t first = 0;    ///< of its nodes, in TracedCurves::order
  bool closed = false;      ///< the last point leads on to the first
};

struct TracedCurves {
  std::vector<std::uint32_t> order;  ///< the curves' nodes, curve after curve
  std::vector<TracedCurve> curves;

  NodeSequence nodesOf(const TracedCurve& curve) const {
    return NodeSequence(order).subspan(curve.first, curve.count);
  }
};

/// Follows the links of one curve after the other and brings each into its final
/// form: coincident neighbours merged, direction chosen, cut into simple curves
/// where it meets itself at a vertex, closed ones turned to start at their least
/// point. The nodes' links are used up.
class CurveTracer {
 public:
  explicit CurveTracer(CurveGraph& graph) : graph_(graph) {
    traced_.order.reserve(graph.nodes.size());
  }

  /// Traces the curve through a node of this level, unless that was done before.
  void trace(std::uint32_t node, std::uint32_t level);
  TracedCurves takeCurves() { return std::move(traced_); }

 private:
  void follow(std::uint32_t start);
  bool walk(std::uint32_t start, NodeLink link);
  void mergeNeighbours();
  void orient();
  void turnToLeastPoint(std::vector<std::uint32_t>& path) const;
  void emitSimpleParts(std::uint32_t level);
  void emit(NodeSequence path, bool closed, std::uint32_t level);

  const Vec3& pointOf(std::uint32_t node) const { return graph_.nodes[node].point; }

  CurveGraph& graph_;
  TracedCurves traced_;
  // The curve in hand.
  std::vector<std::uint32_t> path_;
  bool closed_ = false;
  std::int64_t balance_ = 0;  ///< link ends with higher values at the left, less the others
};

/// Sorts by level, then by compareSequences(), then open before closed.
void sortCurves(TracedCurves& traced, const CurveGraph& graph);

}  // namespace qelm

#endif  // QELM_ISOLINES_CURVE_TRACE_H
