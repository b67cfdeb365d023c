#include "robust/flips.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <utility>
#include <vector>

#include "interface/index.h"
#include "robust/triangle_shape.h"

namespace qelm {
namespace {

using HalfEdge = DoubleCover::HalfEdge;

/// The cotangents of a face with the edge ab; `apex` is the third corner.
struct AtCorners {
  double a, b, apex;
};

/// cot(a) + cot(b), which is the length of ab over the height on it. If one of the two is negative,
/// the sum follows without cancellation from the identity cot a cot b + cot b cot c + cot c cot a =
/// 1 of a triangle.
double baseOverHeight(const AtCorners& c) {
  if (c.a < 0) return (1 + c.b * c.b) / (c.b + c.apex);
  if (c.b < 0) return (1 + c.a * c.a) / (c.a + c.apex);
  return c.a + c.b;
}

/// The cotangents of the new face with corner a, at c, at d and at a, where the angles of the two
/// old faces add up. `ratio` is the height of c over that of d, over the line ab.
///
///   cot(a1 + a2) = (A1 A2 - 1) / (A1 + A2), and the base line dc divides its height over
///   a by the law of sines, likewise over A1 + A2.
Cotangents newFace(double atAWithC, double atAWithD, double ratio) {
  const double k = 1 - atAWithC * atAWithD;
  return cotangentsOf(
      {ratio * (1 + atAWithC * atAWithC) + k, (1 + atAWithD * atAWithD) / ratio + k, -k},
      atAWithC + atAWithD);
}

class Flipper {
 public:
  explicit Flipper(DoubleCover& cover) : cover_(cover), isQueued_(cover.size()) {}

  Flips run(std::int64_t limit) {
    const std::int64_t notDelaunayEdges = enqueueNotDelaunay();
    std::int64_t done = 0;
    while (!nextQueue_.empty()) {
      queue_.swap(nextQueue_);
      nextQueue_.clear();
      for (const HalfEdge h : queue_) {
        isQueued_[asIndex(h)] = false;
        if (cover_.twin[asIndex(h)] == DoubleCover::kNone || !isNotDelaunay(h)) continue;
        if (done == limit) return {notDelaunayEdges, done, false};
        flip(h);
        ++done;
      }
    }
    return {notDelaunayEdges, done, true};
  }

 private:
  double cotangent(HalfEdge h) const { return cover_.cotangent[asIndex(h)]; }

  double largestInFace(HalfEdge h) const {
    return std::max({std::fabs(cotangent(h)), std::fabs(cotangent(DoubleCover::next(h))),
                     std::fabs(cotangent(DoubleCover::previous(h)))});
  }

  bool isNotDelaunay(HalfEdge h) const {
    const HalfEdge g = cover_.twin[asIndex(h)];
    const double sum = cotangent(h) + cotangent(g);
    if (sum >= -kDelaunayMargin || h / 3 == g / 3) return false;
    return sum <
           -(kDelaunayMargin + kDelaunayMarginShare * std::max(largestInFace(h), largestInFace(g)));
  }

  /// Counts edges by the half-edges of the fronts: an edge of two triangles has two.
  std::int64_t enqueueNotDelaunay() {
    std::int64_t seen = 0;
    for (HalfEdge h = 0; asIndex(h) < cover_.size(); ++h) {
      const HalfEdge g = cover_.twin[asIndex(h)];
      if (g < h || !isNotDelaunay(h)) continue;  // without twin, or counted at its twin
      enqueue(h);
      if (g < cover_.fronts() || (h < cover_.fronts() && g == cover_.back(h)))
        seen += 2;
      else if (h < cover_.fronts())
        seen += 1;
    }
    return (seen + 1) / 2;
  }

  void enqueue(HalfEdge h) {
    if (isQueued_[asIndex(h)]) return;
    isQueued_[asIndex(h)] = true;
    nextQueue_.push_back(h);
  }

  void setFace(HalfEdge first, std::int32_t origin0, std::int32_t origin1, std::int32_t origin2,
               const std::array<double, 3>& opposite) {
    const std::array<HalfEdge, 3> edges = {first, DoubleCover::next(first),
                                           DoubleCover::previous(first)};
    const std::array<std::int32_t, 3> origins = {origin0, origin1, origin2};
    for (std::size_t k = 0; k < 3; ++k) {
      cover_.origin[asIndex(edges[k])] = origins[k];
      cover_.cotangent[asIndex(edges[k])] = opposite[k];
    }
  }

  /// h leads from a to b with c at its left and d at its right; h and its twin g become dc and cd.
  /// The face of h becomes d, c, a, that of g becomes c, d, b: the four outer half-edges move on by
  /// one place, ca and ad to the face of h, db and bc to that of g.
  void flip(HalfEdge h) {
    const HalfEdge g = cover_.twin[asIndex(h)];
    const HalfEdge bc = DoubleCover::next(h);
    const HalfEdge ca = DoubleCover::previous(h);
    const HalfEdge ad = DoubleCover::next(g);
    const HalfEdge db = DoubleCover::previous(g);
    const AtCorners withC = {cotangent(bc), cotangent(ca), cotangent(h)};
    const AtCorners withD = {cotangent(db), cotangent(ad), cotangent(g)};
    const double ratio = baseOverHeight(withD) / baseOverHeight(withC);
    const Cotangents faceA = newFace(withC.a, withD.a, ratio);
    const Cotangents faceB = newFace(withC.b, withD.b, ratio);
    const std::int32_t a = cover_.origin[asIndex(h)];
    const std::int32_t b = cover_.origin[asIndex(g)];
    const std::int32_t c = cover_.origin[asIndex(ca)];
    const std::int32_t d = cover_.origin[asIndex(db)];

    moveTwins({bc, ca, ad, db}, {db, bc, ca, ad});
    setFace(h, d, c, a, {faceA.at[2], faceA.at[1], faceA.at[0]});
    setFace(g, c, d, b, {faceB.at[2], faceB.at[0], faceB.at[1]});
    // The new edge, too: it is Delaunay, but not always if heights were raised.
    for (const HalfEdge edge : {bc, ca, ad, db, h}) {
      if (cover_.twin[asIndex(edge)] != DoubleCover::kNone && isNotDelaunay(edge)) enqueue(edge);
    }
  }

  /// Half-edge from[i] becomes to[i]. Some of them may be each other's twins.
  void moveTwins(const std::array<HalfEdge, 4>& from, const std::array<HalfEdge, 4>& to) {
    std::array<HalfEdge, 4> twins;
    for (std::size_t i = 0; i < 4; ++i) {
      twins[i] = cover_.twin[asIndex(from[i])];
      const auto moved = std::find(from.begin(), from.end(), twins[i]);
      if (moved != from.end()) twins[i] = to[asIndex(moved - from.begin())];
    }
    for (std::size_t i = 0; i < 4; ++i) {
      cover_.twin[asIndex(to[i])] = twins[i];
      if (twins[i] != DoubleCover::kNone) cover_.twin[asIndex(twins[i])] = to[i];
    }
  }

  DoubleCover& cover_;
  std::vector<bool> isQueued_;
  std::vector<HalfEdge> queue_;  ///< first in, first out: this array, then the next one
  std::vector<HalfEdge> nextQueue_;
};

}  // namespace

Flips flipToDelaunay(DoubleCover& cover, std::int64_t limit) { return Flipper(cover).run(limit); }

}  // namespace qelm
