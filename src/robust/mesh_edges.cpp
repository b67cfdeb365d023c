#include "robust/mesh_edges.h"

#include <algorithm>
#include <numeric>

#include "interface/index.h"

namespace qelm {

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
  for (std::size_t v = 0; v < vertexCount; ++v) {
    std::sort(halfEdges_.begin() + static_cast<std::ptrdiff_t>(starts_[v]),
              halfEdges_.begin() + static_cast<std::ptrdiff_t>(starts_[v + 1]),
              [](const MeshHalfEdge& a, const MeshHalfEdge& b) {
                return a.higherVertex != b.higherVertex ? a.higherVertex < b.higherVertex
                                                        : a.number < b.number;
              });
  }
}

}  // namespace qelm
