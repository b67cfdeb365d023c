#include "curves/clearance.h"

#include <algorithm>
#include <cmath>
#include <limits>

#include "mesh/vec3.h"

namespace qelm::tool {
namespace {

constexpr int kMixed = -1;
constexpr std::size_t kFewSegments = 4;  // in a box without halves

Point along(const Point& p, const Point& direction, double t) {
  return {p[0] + t * direction[0], p[1] + t * direction[1], p[2] + t * direction[2]};
}

double partOf(double numerator, double denominator) {
  return denominator > 0 ? std::clamp(numerator / denominator, 0.0, 1.0) : 0;
}

double squared(const Point& p) { return dot(p, p); }

}  // namespace

// The nearest points s of a and t of b: the lines' own, then each clamped to its segment for the
// other (Ericson, Real-Time Collision Detection, 2005, section 5.1.9).
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
  // Of nearly parallel ones rounding may have put s anywhere: an end is nearest then.
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
  constexpr double kInfinity = std::numeric_limits<double>::infinity();
  Box box{{kInfinity, kInfinity, kInfinity},
          {-kInfinity, -kInfinity, -kInfinity},
          segments_[begin].piece,
          begin,
          end,
          0};
  for (std::size_t k = begin; k < end; ++k) {
    const PieceSegment& segment = segments_[k];
    if (segment.piece != box.piece) box.piece = kMixed;
    for (std::size_t axis = 0; axis < 3; ++axis) {
      box.low[axis] = std::min({box.low[axis], segment.from[axis], segment.to[axis]});
      box.high[axis] = std::max({box.high[axis], segment.from[axis], segment.to[axis]});
    }
  }
  const std::size_t own = boxes_.size();
  boxes_.push_back(box);
  if (end - begin <= kFewSegments) return own;
  const Point size = box.high - box.low;
  const auto axis =
      static_cast<std::size_t>(std::max_element(size.begin(), size.end()) - size.begin());
  const auto middle = segments_.begin() + static_cast<std::ptrdiff_t>((begin + end) / 2);
  std::nth_element(segments_.begin() + static_cast<std::ptrdiff_t>(begin), middle,
                   segments_.begin() + static_cast<std::ptrdiff_t>(end),
                   [axis](const PieceSegment& a, const PieceSegment& b) {
                     return a.from[axis] + a.to[axis] < b.from[axis] + b.to[axis];
                   });
  build(begin, (begin + end) / 2);
  boxes_[own].second = build((begin + end) / 2, end);
  return own;
}

double ClearanceTree::distance(const Box& box, const Box& to) {
  Point gap{};
  for (std::size_t axis = 0; axis < 3; ++axis)
    gap[axis] = std::max({0.0, to.low[axis] - box.high[axis], box.low[axis] - to.high[axis]});
  return length(gap);
}

double ClearanceTree::clearance(const PieceSegment& segment, int before, int after,
                                double most) const {
  Box around{};
  for (std::size_t axis = 0; axis < 3; ++axis) {
    around.low[axis] = std::min(segment.from[axis], segment.to[axis]);
    around.high[axis] = std::max(segment.from[axis], segment.to[axis]);
  }
  const auto isOwn = [&](int piece) {
    return piece == segment.piece || piece == before || piece == after;
  };
  double least = most;
  std::vector<std::size_t> open = {0};
  while (!open.empty()) {
    const Box& box = boxes_[open.back()];
    const std::size_t first = open.back() + 1;
    open.pop_back();
    if (isOwn(box.piece) || !(distance(box, around) < least)) continue;
    if (box.second == 0) {
      for (std::size_t k = box.begin; k < box.end; ++k)
        if (!isOwn(segments_[k].piece))
          least = std::min(least, distanceBetween(segment, segments_[k]));
      continue;
    }
    // The nearer half last, so that it is looked at first.
    const bool firstIsNearer =
        distance(boxes_[first], around) <= distance(boxes_[box.second], around);
    open.push_back(firstIsNearer ? box.second : first);
    open.push_back(firstIsNearer ? first : box.second);
  }
  return least;
}

}  // namespace qelm::tool
