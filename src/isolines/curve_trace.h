// From the curve graph to polylines in their final form and order.
//
// In: nodes with one or two links each. Out: for each level its polylines, the same to the bit
// however the mesh is numbered. A curve is followed from any node in both directions; then
//
//   neighbouring nodes at the same point    count as one
//   the direction                           has the higher values at the left, by the majority of
//                                           the segments
//   a curve that meets itself at a vertex   is cut into simple ones: a figure of eight into two
//                                           closed curves
//   a closed curve                          starts at its least point
//
// and the curves are sorted by level and points.
//
// Cost: linear in the nodes, and sorting the curves.
#ifndef QELM_ISOLINES_CURVE_TRACE_H
#define QELM_ISOLINES_CURVE_TRACE_H

#include <cstddef>
#include <cstdint>
#include <utility>
#include <vector>

#include "isolines/curve_graph.h"
#include "isolines/curve_loops.h"

namespace qelm {

/// A polyline of one level. No two neighbouring points are the same.
struct TracedCurve {
  std::uint32_t level = 0;  ///< index among the distinct levels
  std::uint32_t count = 0;  ///< number of points: 2 or more, 3 or more if closed
  std::size_t first = 0;    ///< the first point, in TracedCurves::points
  bool closed = false;      ///< a segment joins the last point and the first
};

struct TracedCurves {
  std::vector<Vec3> points;  ///< curve after curve
  std::vector<TracedCurve> curves;

  PointSequence pointsOf(const TracedCurve& curve) const {
    return PointSequence(points).subspan(curve.first, curve.count);
  }
};

/// The points of one curve, gathered from its nodes, which lie all over the graph.
struct CurvePath {
  std::vector<Vec3> points;
  std::vector<std::uint32_t> vertexNear;  ///< as in CurveGraph; empty if that is

  void reverse();
  void turnToLeastPoint();  ///< for a closed curve
};

/// Traces one curve after the other. Overwrites the links of the nodes that it has visited.
class CurveTracer {
 public:
  explicit CurveTracer(CurveGraph& graph) : graph_(graph) {
    traced_.points.reserve(graph.points.size());
  }

  bool isTraced(std::uint32_t node) const { return graph_.links[node][0] == kVisited; }

  /// Traces the curve through a node of this level, which is not traced yet.
  void trace(std::uint32_t node, std::uint32_t level);
  TracedCurves takeCurves() { return std::move(traced_); }

 private:
  // No node has this number. No link leads to a visited node, except to the start of the walk.
  static constexpr NodeLink kVisited = kNoLink - 1;

  void follow(std::uint32_t start);
  bool walk(std::uint32_t start, NodeLink link);
  void fetchPath();
  void orient();
  void emitSimpleParts(std::uint32_t level);
  void emit(PointSequence path, bool closed, std::uint32_t level);

  CurveGraph& graph_;
  TracedCurves traced_;
  // The present curve.
  std::vector<std::uint32_t> nodes_;
  CurvePath path_;
  bool closed_ = false;
  std::int64_t balance_ = 0;  ///< links with higher values at the left, less the others
};

/// Sorts by level, then by compareSequences(), then open before closed.
void sortCurves(TracedCurves& traced);

}  // namespace qelm

#endif  // QELM_ISOLINES_CURVE_TRACE_H
