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

/// A sequence of points of one level, no two neighbours of it the same.
struct TracedCurve {
  std::uint32_t level = 0;  ///< position among the distinct levels
  std::uint32_t count = 0;  ///< of points: 2 or more, 3 or more if closed
  std::size_t first = 0;    ///< of its points, in TracedCurves::points
  bool closed = false;      ///< the last point leads on to the first
};

struct TracedCurves {
  std::vector<Vec3> points;  ///< curve after curve
  std::vector<TracedCurve> curves;

  PointSequence pointsOf(const TracedCurve& curve) const {
    return PointSequence(points).subspan(curve.first, curve.count);
  }
};

/// Points on the way, fetched once from the nodes that lie all over the graph.
struct CurvePath {
  std::vector<Vec3> points;
  std::vector<std::uint32_t> vertexNear;  ///< as in CurveGraph, empty if that is

  void reverse();
  void turnToLeastPoint();  ///< for a closed curve
};

/// Follows the links of one curve after the other and brings each into its final
/// form: coincident neighbours merged, direction chosen, cut into simple curves
/// where it meets itself at a vertex, closed ones turned to start at their least
/// point. The nodes' links are used up.
class CurveTracer {
 public:
  explicit CurveTracer(CurveGraph& graph) : graph_(graph) {
    traced_.points.reserve(graph.points.size());
  }

  bool isTraced(std::uint32_t node) const { return graph_.links[node][0] == kVisited; }

  /// Traces the curve through a node of this level that is not traced yet.
  void trace(std::uint32_t node, std::uint32_t level);
  TracedCurves takeCurves() { return std::move(traced_); }

 private:
  // No node has this number, and no link leads to one that has been visited other
  // than the start of the walk.
  static constexpr NodeLink kVisited = kNoLink - 1;

  void follow(std::uint32_t start);
  bool walk(std::uint32_t start, NodeLink link);
  void fetchPath();
  void orient();
  void emitSimpleParts(std::uint32_t level);
  void emit(PointSequence path, bool closed, std::uint32_t level);

  CurveGraph& graph_;
  TracedCurves traced_;
  // The curve in hand.
  std::vector<std::uint32_t> nodes_;
  CurvePath path_;
  bool closed_ = false;
  std::int64_t balance_ = 0;  ///< link ends with higher values at the left, less the others
};

/// Sorts by level, then by compareSequences(), then open before closed.
void sortCurves(TracedCurves& traced);

}  // namespace qelm

#endif  // QELM_ISOLINES_CURVE_TRACE_H
