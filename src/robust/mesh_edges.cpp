#include "robust/mesh_edges.h"

#include <algorithm>
#include <numeric>

namespace qelm {

MeshEdges::MeshEdges(std::size_t vertexCount, std::span<const std::int32_t> triangles)
    : starts_(vertexCount + 1), sides_(triangles.size()) {
  const auto endOf = [&](std::size_t side) {
    return triangles[side % 3 == 2 ? side - 2 : side + 1];
  };
  for (std::size_t side = 0; side < triangles.size(); ++side) {
    ++starts_[static_cast<std::size_t>(std::min(triangles[side], endOf(side)))];
  }
  std::partial_sum(starts_.begin(), starts_.end(), starts_.begin());
  // From the back, each bucket's start moves from its end to its beginning.
  for (std::size_t left = triangles.size(); left > 0; --left) {
    const std::size_t side = left - 1;
    const auto [lower, higher] = std::minmax({triangles[side], endOf(side)});
    sides_[--starts_[static_cast<std::size_t>(lower)]] = {higher, static_cast<std::int32_t>(side)};
  }
  for (std::size_t v = 0; v < vertexCount; ++v) {
    std::sort(sides_.begin() + static_cast<std::ptrdiff_t>(starts_[v]),
              sides_.begin() + static_cast<std::ptrdiff_t>(starts_[v + 1]),
              [](const Side& a, const Side& b) {
                return a.higherEnd != b.higherEnd ? a.higherEnd < b.higherEnd : a.side < b.side;
              });
  }
}

}  // namespace qelm
