#include "mesh/weld/weld_triangles.h"

#include <algorithm>
#include <array>
#include <cstddef>

#include "interface/index.h"
#include "mesh/index_table.h"

namespace qelm {
namespace {

using Corners = std::array<std::int32_t, 3>;

/// The corners in ascending order: one key for every rotation and orientation of a triangle.
inline Corners triangleKey(const Corners& c) {
  const auto [a, b] = std::minmax(c[0], c[1]);
  return {std::min(a, c[2]), std::max(a, std::min(b, c[2])), std::max(b, c[2])};
}

std::uint64_t hashOf(const Corners& key) {
  return hashWords(static_cast<std::uint64_t>(key[0]), static_cast<std::uint64_t>(key[1]),
                   static_cast<std::uint64_t>(key[2]));
}

/// The next triangles with their hashes, so that their slots in the table are prefetched.
struct TriangleBlock {
  static constexpr std::size_t kMost = 16;
  struct Triangle {
    Corners corners;
    Corners key;
    std::uint64_t hash;
  };
  std::array<Triangle, kMost> triangles;
  std::size_t count = 0;

  /// Takes those triangles of a span that have three different vertices.
  void fill(std::span<const std::int32_t> from, std::span<const std::int32_t> vertexMap,
            const IndexTable& known) {
    count = 0;
    for (std::size_t i = 0; i < from.size(); i += 3) {
      Triangle& t = triangles[count];
      for (std::size_t k = 0; k < 3; ++k) {
        t.corners[k] = vertexMap[asIndex(from[i + k])];
      }
      t.key = triangleKey(t.corners);
      if (t.key[0] == t.key[1] || t.key[1] == t.key[2]) continue;
      t.hash = hashOf(t.key);
      known.prefetch(t.hash);
      ++count;
    }
  }
};

}  // namespace

std::int32_t weldTriangles(std::span<const std::int32_t> triangles,
                           std::span<const std::int32_t> vertexMap,
                           std::span<std::int32_t> welded) {
  IndexTable known(triangles.size() / 3);
  TriangleBlock block;
  std::int32_t count = 0;
  // The arrays may be the same: a triangle is written where one was read before.
  for (std::size_t t = 0; t < triangles.size(); t += 3 * TriangleBlock::kMost) {
    const std::size_t length = std::min(triangles.size() - t, 3 * TriangleBlock::kMost);
    block.fill(triangles.subspan(t, length), vertexMap, known);
    for (const auto& next : std::span(block.triangles).first(block.count)) {
      const std::int32_t found = known.findOrInsert(next.hash, count, [&](std::int32_t other) {
        const std::int32_t* const corner = &welded[3 * asIndex(other)];
        return triangleKey({corner[0], corner[1], corner[2]}) == next.key;
      });
      if (found != count) continue;
      std::ranges::copy(next.corners, &welded[3 * asIndex(count)]);
      ++count;
    }
  }
  return count;
}

}  // namespace qelm
