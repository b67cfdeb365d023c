#include "isolines/curves.h"

#include <algorithm>
#include <cstddef>
#include <utility>

#include "interface/index.h"
#include "isolines/curve_edges.h"
#include "isolines/curve_levels.h"

namespace qelm {
namespace {

TracedCurves traceAll(const CrossedPart& part, std::span<const std::uint32_t> ranks,
                      CurveGraph& graph) {
  CurveTracer tracer(graph);
  std::uint32_t node = 0;
  for (const CrossedEdge& edge : part.edges) {
    const std::uint64_t nodes = nodesOn(edge);
    for (std::uint32_t i = 0; i < nodes; ++i, ++node) {
      if (tracer.isTraced(node)) continue;
      tracer.trace(node, ranks[part.vertices[edge.low]] + i % edge.levelCount);
    }
  }
  return tracer.takeCurves();
}

LevelCurves::Range curvesOfLevel(const std::vector<TracedCurve>& sorted, std::int32_t position) {
  if (position == kNoLevel) return {0, 0};
  const auto level = static_cast<std::uint32_t>(position);
  const auto first = std::partition_point(sorted.begin(), sorted.end(),
                                          [=](const TracedCurve& c) { return c.level < level; });
  const auto last = std::partition_point(first, sorted.end(),
                                         [=](const TracedCurve& c) { return c.level == level; });
  return {asIndex(first - sorted.begin()), asIndex(last - sorted.begin())};
}

}  // namespace

LevelCurves cutCurves(const FieldOnMesh& mesh, std::span<const double> levels) {
  const CurveLevels arranged = arrangeLevels(levels);
  LevelCurves cut;
  const auto ranks = rankVertices(arranged.distinct, mesh.field, mesh.vertexOrder);
  CrossedPart part = findCrossed(mesh.triangles, ranks);
  CurveGraph graph = linkCrossings(mesh, arranged.distinct, ranks, part);
  cut.traced = traceAll(part, ranks, graph);
  sortCurves(cut.traced);
  cut.rangeOf.reserve(levels.size());
  for (const std::int32_t position : arranged.positions) {
    cut.rangeOf.push_back(curvesOfLevel(cut.traced.curves, position));
  }
  return cut;
}

}  // namespace qelm
