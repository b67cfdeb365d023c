#include "isolines/curve_trace.h"

#include <algorithm>
#include <array>
#include <cstddef>

#include "isolines/curve_loops.h"
#include "isolines/curve_points.h"

namespace qelm {
namespace {

// No node has this number, and no link leads to one that has been visited other
// than the start of the walk.
constexpr NodeLink kVisited = kNoLink - 1;

constexpr std::size_t kNever = static_cast<std::size_t>(-1);

}  // namespace

void CurveTracer::trace(std::uint32_t node, std::uint32_t level) {
  if (graph_.nodes[node].links[0] == kVisited) return;
  follow(node);
  mergeNeighbours();
  orient();
  emitSimpleParts(level);
}

/// Fills path_ with the whole curve through `start`.
void CurveTracer::follow(std::uint32_t start) {
  CurveNode& node = graph_.nodes[start];
  const std::array<NodeLink, 2> links = node.links;
  node.links = {kVisited, kVisited};
  path_.assign(1, start);
  balance_ = 0;
  closed_ = walk(start, links[0]);
  if (closed_) {
    balance_ += hasHighAtLeft(links[1]) ? -1 : 1;
    return;
  }
  // The other way from the start, counted the other way round, and turned over.
  std::reverse(path_.begin(), path_.end());
  balance_ = -balance_;
  walk(start, links[1]);
  std::reverse(path_.begin(), path_.end());
  balance_ = -balance_;
}

/// Appends the nodes after `start`, along `link`; true if it comes back to it.
bool CurveTracer::walk(std::uint32_t start, NodeLink link) {
  std::uint32_t from = start;
  while (link != kNoLink) {
    balance_ += hasHighAtLeft(link) ? 1 : -1;
    const std::uint32_t to = nodeOf(link);
    if (to == start) return true;
    CurveNode& node = graph_.nodes[to];
    const std::size_t back = nodeOf(node.links[0]) == from ? 0 : 1;
    balance_ += hasHighAtLeft(node.links[back]) ? -1 : 1;
    link = node.links[1 - back];
    node.links = {kVisited, kVisited};
    path_.push_back(to);
    from = to;
  }
  return false;
}

/// Of nodes at one point that follow one another, keeps the first.
void CurveTracer::mergeNeighbours() {
  const auto same = [this](std::uint32_t a, std::uint32_t b) {
    return samePlace(pointOf(a), pointOf(b));
  };
  path_.erase(std::unique(path_.begin(), path_.end(), same), path_.end());
  if (closed_ && path_.size() > 1 && same(path_.front(), path_.back())) path_.pop_back();
}

/// Neighbours that are oriented against each other do not agree on which side is
/// the left. Most pieces decide, and if they are balanced, the points: the sense
/// that comes first in the order of curves.
void CurveTracer::orient() {
  if (balance_ > 0) return;
  if (balance_ < 0) {
    std::reverse(path_.begin(), path_.end());
    return;
  }
  std::vector<std::uint32_t> reversed(path_.rbegin(), path_.rend());
  if (closed_) {
    turnToLeastPoint(path_);
    turnToLeastPoint(reversed);
  }
  if (compareSequences(graph_.nodes, reversed, path_) < 0) path_.swap(reversed);
}

void CurveTracer::turnToLeastPoint(std::vector<std::uint32_t>& path) const {
  const auto start = static_cast<std::ptrdiff_t>(leastStart(graph_.nodes, path));
  std::rotate(path.begin(), path.begin() + start, path.end());
}

/// A curve may come back to a vertex at its level, at a pass between two summits.
/// The round between the two visits is a closed curve of its own, and the rest goes
/// on from the vertex. Rounds within rounds come off first, as from a stack.
void CurveTracer::emitSimpleParts(std::uint32_t level) {
  std::vector<std::uint32_t> places = sharedPlaces(graph_.nodes, graph_.vertexNear, path_);
  if (!places.empty() && closed_) {
    turnToLeastPoint(path_);  // on a torus, it matters where to start
    places = sharedPlaces(graph_.nodes, graph_.vertexNear, path_);
  }
  if (places.empty()) {
    emit(path_, closed_, level);
    return;
  }
  std::vector<std::uint32_t> open;                              // nodes not yet in a part
  std::vector<std::uint32_t> openPlaces;                        // their places
  std::vector<std::size_t> visitOf(places.size() + 1, kNever);  // place -> index in open
  for (std::size_t i = 0; i < path_.size(); ++i) {
    const std::size_t visit = places[i] == 0 ? kNever : visitOf[places[i]];
    if (visit != kNever) {
      emit(NodeSequence(open).subspan(visit), true, level);
      for (std::size_t k = visit; k < open.size(); ++k) visitOf[openPlaces[k]] = kNever;
      open.resize(visit);
      openPlaces.resize(visit);
    }
    if (places[i] != 0) visitOf[places[i]] = open.size();
    open.push_back(path_[i]);
    openPlaces.push_back(places[i]);
  }
  emit(open, closed_, level);
}

/// Two points and the way back enclose nothing and would be one line twice.
void CurveTracer::emit(NodeSequence path, bool closed, std::uint32_t level) {
  if (path.size() < (closed ? 3U : 2U)) return;
  const std::size_t first = traced_.order.size();
  const auto start = closed ? static_cast<std::ptrdiff_t>(leastStart(graph_.nodes, path)) : 0;
  traced_.order.insert(traced_.order.end(), path.begin() + start, path.end());
  traced_.order.insert(traced_.order.end(), path.begin(), path.begin() + start);
  traced_.curves.push_back({level, static_cast<std::uint32_t>(path.size()), first, closed});
}

void sortCurves(TracedCurves& traced, const CurveGraph& graph) {
  std::sort(
      traced.curves.begin(), traced.curves.end(), [&](const TracedCurve& a, const TracedCurve& b) {
        if (a.level != b.level) return a.level < b.level;
        const auto order = compareSequences(graph.nodes, traced.nodesOf(a), traced.nodesOf(b));
        return order != 0 ? order < 0 : a.closed < b.closed;
      });
}

}  // namespace qelm
