#include "robust/mesh_edges.h"

#include <algorithm>
#include <numeric>

namespace qelm {
namespace {

std::uint64_t keyOf(Side side) {
  return std::uint64_t{static_cast<std::uint32_t>(side.higherEnd)} << 32 |
         static_cast<std::uint32_t>(side.side);
}

/// By higher end, then number. Most buckets have six sides or fewer: insertion sort.
void sortBucket(std::span<Side> bucket) {
  constexpr std::size_t kFew = 16;
  if (bucket.size() > kFew) {
    std::sort(bucket.begin(), bucket.end(), [](Side a, Side b) { return keyOf(a) < keyOf(b); });
    return;
  }
  for (std::size_t i = 1; i < bucket.size(); ++i) {
    const Side side = bucket[i];
    std::size_t place = i;
    for (; place > 0 && keyOf(side) < keyOf(bucket[place - 1]); --place)
      bucket[place] = bucket[place - 1];
    bucket[place] = side;
  }
}

}  // namespace

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
  for (std::size_t v = 0; v < vertexCount; ++v)
    sortBucket(std::span(sides_).subspan(starts_[v], starts_[v + 1] - starts_[v]));
}

}  // namespace qelm
