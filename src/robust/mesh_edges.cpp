#include "robust/mesh_edges.h"

#include <algorithm>
#include <numeric>

#include "interface/index.h"

namespace qelm {
namespace {

/// Most buckets have six half-edges or fewer: insertion sort.
void sortBucket(std::span<MeshHalfEdge> bucket) {
  constexpr std::size_t kFew = 16;
  if (bucket.size() > kFew) {
    std::sort(bucket.begin(), bucket.end());
    return;
  }
  for (std::size_t i = 1; i < bucket.size(); ++i) {
    const MeshHalfEdge halfEdge = bucket[i];
    std::size_t at = i;
    for (; at > 0 && halfEdge < bucket[at - 1]; --at) bucket[at] = bucket[at - 1];
    bucket[at] = halfEdge;
  }
}

}  // namespace

MeshEdges::MeshEdges(std::size_t vertexCount, std::span<const std::int32_t> triangles)
    : starts_(vertexCount + 1), halfEdges_(triangles.size()) {
  for (std::size_t j = 0; j < triangles.size(); j += 3) {
    const std::int32_t a = triangles[j], b = triangles[j + 1], c = triangles[j + 2];
    ++starts_[asIndex(std::min(a, b))];
    ++starts_[asIndex(std::min(b, c))];
    ++starts_[asIndex(std::min(c, a))];
  }
  std::partial_sum(starts_.begin(), starts_.end(), starts_.begin());
  // Filled from the back: each bucket's start moves down from its end.
  const auto put = [&](std::size_t number, std::int32_t from, std::int32_t to) {
    halfEdges_[--starts_[asIndex(std::min(from, to))]] = {std::max(from, to), asInt(number),
                                                          from < to};
  };
  for (std::size_t left = triangles.size(); left > 0; left -= 3) {
    const std::size_t j = left - 3;
    const std::int32_t a = triangles[j], b = triangles[j + 1], c = triangles[j + 2];
    put(j + 2, c, a);
    put(j + 1, b, c);
    put(j, a, b);
  }
  for (std::size_t v = 0; v < vertexCount; ++v)
    sortBucket(std::span(halfEdges_).subspan(starts_[v], starts_[v + 1] - starts_[v]));
}

}  // namespace qelm
