#include "robust/mesh_edges.h"

#include <algorithm>
#include <numeric>

#include "interface/index.h"

namespace qelm {
namespace {

std::uint64_t keyOf(MeshHalfEdge halfEdge) {
  return std::uint64_t{static_cast<std::uint32_t>(halfEdge.higherVertex)} << 32 |
         static_cast<std::uint32_t>(halfEdge.number);
}

/// By higher vertex, then number. Most buckets have six half-edges or fewer: insertion sort.
void sortBucket(std::span<MeshHalfEdge> bucket) {
  constexpr std::size_t kFew = 16;
  if (bucket.size() > kFew) {
    std::sort(bucket.begin(), bucket.end(),
              [](MeshHalfEdge a, MeshHalfEdge b) { return keyOf(a) < keyOf(b); });
    return;
  }
  for (std::size_t i = 1; i < bucket.size(); ++i) {
    const MeshHalfEdge halfEdge = bucket[i];
    std::size_t at = i;
    for (; at > 0 && keyOf(halfEdge) < keyOf(bucket[at - 1]); --at) bucket[at] = bucket[at - 1];
    bucket[at] = halfEdge;
  }
}

}  // namespace

MeshEdges::MeshEdges(std::size_t vertexCount, std::span<const std::int32_t> triangles)
    : starts_(vertexCount + 1), halfEdges_(triangles.size()) {
  const auto targetOf = [&](std::size_t halfEdge) {
    return triangles[halfEdge % 3 == 2 ? halfEdge - 2 : halfEdge + 1];
  };
  for (std::size_t halfEdge = 0; halfEdge < triangles.size(); ++halfEdge) {
    ++starts_[asIndex(std::min(triangles[halfEdge], targetOf(halfEdge)))];
  }
  std::partial_sum(starts_.begin(), starts_.end(), starts_.begin());
  // Filled from the back: each bucket's start moves down from its end.
  for (std::size_t left = triangles.size(); left > 0; --left) {
    const std::size_t halfEdge = left - 1;
    const auto [lower, higher] = std::minmax({triangles[halfEdge], targetOf(halfEdge)});
    halfEdges_[--starts_[asIndex(lower)]] = {higher, asInt(halfEdge)};
  }
  for (std::size_t v = 0; v < vertexCount; ++v)
    sortBucket(std::span(halfEdges_).subspan(starts_[v], starts_[v + 1] - starts_[v]));
}

}  // namespace qelm
