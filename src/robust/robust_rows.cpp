#include "robust/robust_rows.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <vector>

#include "interface/index.h"

namespace qelm {
namespace {

using HalfEdge = DoubleCover::HalfEdge;

/// Replaces the cotangents of an edge's two half-edges by the edge's weight and 0. An edge from a
/// vertex to itself has no weight. An edge without twin joins two prescribed vertices, and is in no
/// free row.
void replaceCotangentsByWeights(DoubleCover& cover) {
  const double share = 0.5 / cover.sheets;
  for (HalfEdge h = 0; asIndex(h) < cover.size(); ++h) {
    const HalfEdge g = cover.twin[asIndex(h)];
    if (g > h) continue;
    double weight = 0;
    if (g != DoubleCover::kNone) {
      const std::int32_t a = cover.origin[asIndex(h)], b = cover.origin[asIndex(g)];
      if (a != b)
        weight = std::max(0.0, share * (cover.cotangent[asIndex(h)] + cover.cotangent[asIndex(g)]));
      cover.cotangent[asIndex(g)] = 0;
    }
    cover.cotangent[asIndex(h)] = weight;
  }
}

/// Calls visit(a, b, weight) for each edge whose weight is not 0.
template <class Visit>
void forEachWeight(const DoubleCover& weighted, Visit visit) {
  for (HalfEdge h = 0; asIndex(h) < weighted.origin.size(); ++h) {
    const double weight = weighted.cotangent[asIndex(h)];
    if (weight > 0)
      visit(weighted.origin[asIndex(h)], weighted.origin[asIndex(DoubleCover::next(h))], weight);
  }
}

}  // namespace

// Tests for finite numbers first: NaN is not greater than anything.
bool hasNonnegativeWeights(const LowerTriangle& plain, std::int32_t taggedCount) {
  for (std::int32_t v = taggedCount; v < plain.vertexCount(); ++v) {
    if (!std::isfinite(plain.diagonal(v))) return false;
    for (const LowerTriangle::Entry& entry : plain.row(v)) {
      if (!std::isfinite(entry.value) || entry.value > kRoundingOfPlain) return false;
    }
  }
  return true;
}

FreeRowBlocks robustRows(DoubleCover cover, std::int32_t taggedCount, std::size_t vertexCount) {
  replaceCotangentsByWeights(cover);
  std::vector<HalfEdge>().swap(cover.twin);
  LowerTriangle lower(taggedCount, vertexCount);
  forEachWeight(cover, [&](std::int32_t a, std::int32_t b, double) { lower.count(a, b); });
  lower.makeBuckets();
  forEachWeight(cover, [&](std::int32_t a, std::int32_t b, double weight) {
    lower.add(a, b, -weight);
    lower.addToDiagonal(a, weight);
    lower.addToDiagonal(b, weight);
  });
  cover = {};
  lower.mergeBuckets();
  return toCompressedColumns(lower, taggedCount);
}

}  // namespace qelm
