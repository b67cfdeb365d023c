#include "curves/clearance.h"

#include <algorithm>
#include <cmath>

#include "mesh/vec3.h"

namespace qelm::tool {
namespace {

constexpr int kMixed = -1;
constexpr std::size_t kMostInLeaf = 4;

Point along(const Point& p, const Point& direction, double t) {
  return {p[0] + t * direction[0], p[1] + t * direction[1], p[2] + t * direction[2]};
}

double partOf(double numerator, double denominator) {
  return denominator > 0 ? std::clamp(numerator / denominator, 0.0, 1.0) : 0;
}

double squared(const Point& p) { return dot(p, p); }

Box boxOf(const PieceSegment& segment) {
  Box box;
  box.add(segment.from);
  box.add(segment.to);
  return box;
}

double distance(const Box& a, const Box& b) {
  Point gap{};
  for (std::size_t axis = 0; axis < 3; ++axis)
    gap[axis] = std::max({0.0, b.low[axis] - a.high[axis], a.low[axis] - b.high[axis]});
  return length(gap);
}

}  // namespace

// s and t are the parameters of the nearest points along a and b, from 0 to 1: first those of the
// whole lines; then each is clamped to its segment, and the other follows to the nearest point
// (Ericson, Real-Time Collision Detection, 2005, section 5.1.9).
double distanceBetween(const PieceSegment& a, const PieceSegment& b) {
  const Point u = a.to - a.from;
  const Point v = b.to - b.from;
  const Point r = a.from - b.from;
  const double uu = dot(u, u);
  const double uv = dot(u, v);
  const double vv = dot(v, v);
  double s = partOf(uv * dot(v, r) - dot(u, r) * vv, uu * vv - uv * uv);
  const double t = partOf(uv * s + dot(v, r), vv);
  s = partOf(uv * t - dot(u, r), uu);
  double least = squared(along(a.from, u, s) - along(b.from, v, t));
  // Rounding may have put s anywhere if the segments are nearly parallel. Then some end is nearest.
  const auto tryEnd = [&least](const Point& p, const Point& from, const Point& w, double ww) {
    least = std::min(least, squared(along(from, w, partOf(dot(p - from, w), ww)) - p));
  };
  tryEnd(a.from, b.from, v, vv);
  tryEnd(a.to, b.from, v, vv);
  tryEnd(b.from, a.from, u, uu);
  tryEnd(b.to, a.from, u, uu);
  return std::sqrt(least);
}

ClearanceTree::ClearanceTree(std::vector<PieceSegment> segments) : segments_(std::move(segments)) {
  if (!segments_.empty()) build(0, segments_.size());
}

std::size_t ClearanceTree::build(std::size_t begin, std::size_t end) {
  Node node{{}, segments_[begin].piece, begin, end, 0};
  for (std::size_t k = begin; k < end; ++k) {
    if (segments_[k].piece != node.piece) node.piece = kMixed;
    node.box.add(segments_[k].from);
    node.box.add(segments_[k].to);
  }
  const std::size_t own = nodes_.size();
  nodes_.push_back(node);
  if (end - begin <= kMostInLeaf) return own;
  const std::size_t axis = node.box.longestAxis();
  const auto iterator = [this](std::size_t k) {
    return segments_.begin() + static_cast<std::ptrdiff_t>(k);
  };
  const std::size_t middle = (begin + end) / 2;
  std::nth_element(iterator(begin), iterator(middle), iterator(end),
                   [axis](const PieceSegment& a, const PieceSegment& b) {
                     return a.from[axis] + a.to[axis] < b.from[axis] + b.to[axis];
                   });
  build(begin, middle);
  nodes_[own].second = build(middle, end);
  return own;
}

double ClearanceTree::clearance(const PieceSegment& segment, int before, int after,
                                double most) const {
  const Box own = boxOf(segment);
  const auto countsNot = [&](int piece) {
    return piece == segment.piece || piece == before || piece == after;
  };
  double least = most;
  std::vector<std::size_t> open = {0};
  while (!open.empty()) {
    const Node& node = nodes_[open.back()];
    const std::size_t first = open.back() + 1;
    open.pop_back();
    if (countsNot(node.piece) || !(distance(node.box, own) < least)) continue;
    if (node.second == 0) {
      for (std::size_t k = node.begin; k < node.end; ++k)
        if (!countsNot(segments_[k].piece))
          least = std::min(least, distanceBetween(segment, segments_[k]));
      continue;
    }
    // The nearer child goes last onto the stack and comes first off it.
    const bool firstIsNearer =
        distance(nodes_[first].box, own) <= distance(nodes_[node.second].box, own);
    open.push_back(firstIsNearer ? node.second : first);
    open.push_back(firstIsNearer ? first : node.second);
  }
  return least;
}

}  // namespace qelm::tool
