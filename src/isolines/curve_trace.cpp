#include "isolines/curve_trace.h"

#include <algorithm>
#include <cstddef>

#include "isolines/curve_loops.h"
#include "isolines/curve_points.h"

namespace qelm {
namespace {

constexpr std::size_t kNever = static_cast<std::size_t>(-1);

}  // namespace

void CurvePath::reverse() {
  std::reverse(points.begin(), points.end());
  std::reverse(vertexNear.begin(), vertexNear.end());
}

void CurvePath::turnToLeastPoint() {
  const auto start = static_cast<std::ptrdiff_t>(leastStart(points));
  std::rotate(points.begin(), points.begin() + start, points.end());
  if (vertexNear.empty()) return;
  std::rotate(vertexNear.begin(), vertexNear.begin() + start, vertexNear.end());
}

void CurveTracer::trace(std::uint32_t node, std::uint32_t level) {
  follow(node);
  fetchPath();
  orient();
  emitSimpleParts(level);
}

/// Fills nodes_ with the whole curve through `start`, and balance_.
void CurveTracer::follow(std::uint32_t start) {
  const NodeLinks links = graph_.links[start];
  graph_.links[start] = {kVisited, kVisited};
  nodes_.assign(1, start);
  balance_ = 0;
  closed_ = walk(start, links[0]);
  if (closed_) {
    balance_ += hasHighAtLeft(links[1]) ? -1 : 1;
    return;
  }
  // The other direction: walked from the start with everything reversed.
  std::reverse(nodes_.begin(), nodes_.end());
  balance_ = -balance_;
  walk(start, links[1]);
  std::reverse(nodes_.begin(), nodes_.end());
  balance_ = -balance_;
}

/// Appends the nodes after `start`, along `link`. True if the walk comes back to `start`.
bool CurveTracer::walk(std::uint32_t start, NodeLink link) {
  std::uint32_t from = start;
  while (link != kNoLink) {
    balance_ += hasHighAtLeft(link) ? 1 : -1;
    const std::uint32_t to = nodeOf(link);
    if (to == start) return true;
    NodeLinks& links = graph_.links[to];
    const std::size_t back = nodeOf(links[0]) == from ? 0 : 1;
    balance_ += hasHighAtLeft(links[back]) ? -1 : 1;
    link = links[1 - back];
    links = {kVisited, kVisited};
    nodes_.push_back(to);
    from = to;
  }
  return false;
}

/// Fills path_ from nodes_. Of neighbouring nodes at the same point, keeps the first.
void CurveTracer::fetchPath() {
  path_.points.clear();
  path_.vertexNear.clear();
  for (const std::uint32_t node : nodes_) {
    const Vec3& point = graph_.points[node];
    if (!path_.points.empty() && samePoint(path_.points.back(), point)) continue;
    path_.points.push_back(point);
    if (!graph_.vertexNear.empty()) path_.vertexNear.push_back(graph_.vertexNear[node]);
  }
  const std::vector<Vec3>& points = path_.points;
  if (closed_ && points.size() > 1 && samePoint(points.front(), points.back())) {
    path_.points.pop_back();
    if (!path_.vertexNear.empty()) path_.vertexNear.pop_back();
  }
}

/// Neighbouring triangles that are not oriented alike disagree on which side is the left. The
/// majority decides; if there is none, the direction that comes first in the order of curves.
void CurveTracer::orient() {
  if (balance_ > 0) return;
  if (balance_ < 0) {
    path_.reverse();
    return;
  }
  CurvePath reversed = path_;
  reversed.reverse();
  if (closed_) {
    path_.turnToLeastPoint();
    reversed.turnToLeastPoint();
  }
  if (compareSequences(reversed.points, path_.points) < 0) std::swap(path_, reversed);
}

/// A curve may come back to a vertex at its level, a saddle between two peaks. The points between
/// the two visits become a closed curve, and the others go on from the vertex. With the points on a
/// stack, loops within loops come off first:
///
///   points  a V b c V d      V twice: emits the loop V b c, goes on with a V d
void CurveTracer::emitSimpleParts(std::uint32_t level) {
  std::vector<std::uint32_t> shared = sharedPoints(path_.points, path_.vertexNear);
  if (!shared.empty() && closed_) {
    path_.turnToLeastPoint();  // the loops may depend on the start, as on a torus
    shared = sharedPoints(path_.points, path_.vertexNear);
  }
  if (shared.empty()) {
    emit(path_.points, closed_, level);
    return;
  }
  std::vector<Vec3> open;                                       // the stack: points not emitted yet
  std::vector<std::uint32_t> openShared;                        // their numbers in `shared`
  std::vector<std::size_t> visitOf(shared.size() + 1, kNever);  // from such a number to `open`
  for (std::size_t i = 0; i < shared.size(); ++i) {
    const std::size_t visit = shared[i] == 0 ? kNever : visitOf[shared[i]];
    if (visit != kNever) {
      emit(PointSequence(open).subspan(visit), true, level);
      for (std::size_t k = visit; k < open.size(); ++k) visitOf[openShared[k]] = kNever;
      open.resize(visit);
      openShared.resize(visit);
    }
    if (shared[i] != 0) visitOf[shared[i]] = open.size();
    open.push_back(path_.points[i]);
    openShared.push_back(shared[i]);
  }
  emit(open, closed_, level);
}

/// Leaves out what is too short: a closed curve of two points would be one line twice.
void CurveTracer::emit(PointSequence path, bool closed, std::uint32_t level) {
  if (path.size() < (closed ? 3U : 2U)) return;
  const std::size_t first = traced_.points.size();
  const auto start = closed ? static_cast<std::ptrdiff_t>(leastStart(path)) : 0;
  traced_.points.insert(traced_.points.end(), path.begin() + start, path.end());
  traced_.points.insert(traced_.points.end(), path.begin(), path.begin() + start);
  traced_.curves.push_back({level, static_cast<std::uint32_t>(path.size()), first, closed});
}

void sortCurves(TracedCurves& traced) {
  std::sort(traced.curves.begin(), traced.curves.end(),
            [&](const TracedCurve& a, const TracedCurve& b) {
              if (a.level != b.level) return a.level < b.level;
              const auto order = compareSequences(traced.pointsOf(a), traced.pointsOf(b));
              return order != 0 ? order < 0 : a.closed < b.closed;
            });
}

}  // namespace qelm
