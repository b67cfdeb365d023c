#include "robust/flips.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <utility>
#include <vector>

#include "robust/triangle_shape.h"

namespace qelm {
namespace {

using HalfEdge = DoubleCover::HalfEdge;

/// The cotangents of a face with the edge ab, by corner; `apex` is the third one.
struct AtCorners {
  double a, b, apex;
};

/// cot(a) + cot(b), which is the length of ab over the height on it. Where one of the two
/// is negative, by the identity ab + bc + ca = 1 of a triangle's cotangents: without
/// cancellation.
double baseOverHeight(const AtCorners& c) {
  if (c.a < 0) return (1 + c.b * c.b) / (c.b + c.apex);
  if (c.b < 0) return (1 + c.a * c.a) / (c.a + c.apex);
  return c.a + c.b;
}

/// Of the face at corner a after the flip: at c, at d and at a, where the angles of the two
/// faces have become one. `ratio` is the height of c over that of d.
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
    const std::int64_t badEdges = enqueueBadEdges();
    std::int64_t done = 0;
    while (!later_.empty()) {
      now_.swap(later_);
      later_.clear();
      for (const HalfEdge h : now_) {
        isQueued_[asIndex(h)] = false;
        if (cover_.twin[asIndex(h)] == DoubleCover::kNone || !isBad(h)) continue;
        if (done == limit) return {badEdges, done, false};
        flip(h);
        ++done;
      }
    }
    return {badEdges, done, true};
  }

 private:
  double cotangent(HalfEdge h) const { return cover_.cotangent[asIndex(h)]; }

  double largestInFace(HalfEdge h) const {
    return std::max({std::fabs(cotangent(h)), std::fabs(cotangent(DoubleCover::next(h))),
                     std::fabs(cotangent(DoubleCover::previous(h)))});
  }

  bool isBad(HalfEdge h) const {
    const HalfEdge g = cover_.twin[asIndex(h)];
    const double sum = cotangent(h) + cotangent(g);
    if (sum >= -kBadSum || h / 3 == g / 3) return false;
    return sum < -(kBadSum + kBadSumShare * std::max(largestInFace(h), largestInFace(g)));
  }

  /// Counts them on the triangles' fronts, where an edge of two triangles is seen twice.
  std::int64_t enqueueBadEdges() {
    std::int64_t seen = 0;
    for (HalfEdge h = 0; asIndex(h) < cover_.size(); ++h) {
      const HalfEdge g = cover_.twin[asIndex(h)];
      if (g < h || !isBad(h)) continue;  // without twin, or seen from there
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
    later_.push_back(h);
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

  /// h leads from a to b with c at its left and d at its right; it and its twin g become
  /// dc and cd. Half-edges keep their faces' numbers, so the outer four move round by one:
  /// ca and ad stay at h's face, db and bc at g's.
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
    // The edge itself, too: it is good as it comes, but heights may have been raised.
    for (const HalfEdge edge : {bc, ca, ad, db, h}) {
      if (cover_.twin[asIndex(edge)] != DoubleCover::kNone && isBad(edge)) enqueue(edge);
    }
  }

  /// Half-edge from[i] becomes to[i]; some of them may be each other's twins.
  void moveTwins(const std::array<HalfEdge, 4>& from, const std::array<HalfEdge, 4>& to) {
    std::array<HalfEdge, 4> twins;
    for (std::size_t i = 0; i < 4; ++i) {
      twins[i] = cover_.twin[asIndex(from[i])];
      const auto moved = std::find(from.begin(), from.end(), twins[i]);
      if (moved != from.end()) twins[i] = to[static_cast<std::size_t>(moved - from.begin())];
    }
    for (std::size_t i = 0; i < 4; ++i) {
      cover_.twin[asIndex(to[i])] = twins[i];
      if (twins[i] != DoubleCover::kNone) cover_.twin[asIndex(twins[i])] = to[i];
    }
  }

  DoubleCover& cover_;
  std::vector<bool> isQueued_;
  std::vector<HalfEdge> now_;  // first in, first out, in two halves
  std::vector<HalfEdge> later_;
};

}  // namespace

Flips flipBadEdges(DoubleCover& cover, std::int64_t limit) { return Flipper(cover).run(limit); }

}  // namespace qelm
