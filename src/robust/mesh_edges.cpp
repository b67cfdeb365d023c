#include "robust/mesh_edges.h"

#include <algorithm>
#include <array>
#include <numeric>

#include "interface/index.h"

namespace qelm {
namespace {

/// Most buckets have six half-edges or fewer: each counts how many come before it, without a branch.
void sortBucket(std::span<MeshHalfEdge> bucket) {
  constexpr std::size_t kFew = 8;
  if (bucket.size() > kFew) {
    std::sort(bucket.begin(), bucket.end());
    return;
  }
  std::array<MeshHalfEdge, kFew> given;
  std::copy(bucket.begin(), bucket.end(), given.begin());
  const std::span some = std::span(given).first(bucket.size());
  for (const MeshHalfEdge halfEdge : some) {
    std::size_t before = 0;
    for (const MeshHalfEdge other : some) before += other < halfEdge ? 1 : 0;
    bucket[before] = halfEdge;
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
  // Each bucket's start moves down from its end.
  const auto put = [&](std::size_t number, std::int32_t from, std::int32_t to) {
    halfEdges_[--starts_[asIndex(std::min(from, to))]] = {std::max(from, to), asInt(number),
                                                          from < to};
  };
  for (std::size_t j = 0; j < triangles.size(); j += 3) {
    const std::int32_t a = triangles[j], b = triangles[j + 1], c = triangles[j + 2];
    put(j, a, b);
    put(j + 1, b, c);
    put(j + 2, c, a);
  }
  for (std::size_t v = 0; v < vertexCount; ++v)
    sortBucket(std::span(halfEdges_).subspan(starts_[v], starts_[v + 1] - starts_[v]));
}

}  // namespace qelm
