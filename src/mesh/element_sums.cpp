#include "mesh/element_sums.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdlib>

#include "interface/compiler.h"
#include "interface/index.h"
#include "mesh/element_block.h"

namespace qelm {
namespace {

using Corners = std::span<const std::int32_t, 3>;

/// True if the vertex numbering has poor locality, as in random order: one triangle in 16 tells
/// whether many join vertices so far apart that a core's cache has no room for what lies between
/// them.
bool hasPoorLocality(std::span<const std::int32_t> triangles) {
  constexpr std::int32_t kFar = 1 << 14;  // of 40 to 100 bytes each
  std::size_t near = 0;
  std::size_t far = 0;
  for (std::size_t j = 0; j < triangles.size(); j += std::size_t{3} * 16) {
    ++(std::abs(triangles[j] - triangles[j + 1]) > kFar ? far : near);
  }
  return far > near / 8;
}

/// Prefetches vertices two blocks ahead of the block at `first`, and that block's own slots in
/// their buckets, which are written when its stiffnesses are computed. In line, since GCC leaves
/// out calls of functions that change nothing.
QELM_INLINE void prefetchAhead(std::span<const double> coordinates,
                               std::span<const std::int32_t> triangles, std::size_t first,
                               const LowerTriangle& lower) {
  const auto blockFrom = [&](std::size_t j) {
    const auto rest = triangles.subspan(std::min(3 * j, triangles.size()));
    return rest.first(std::min(3 * kBlock, rest.size()));
  };
  for (const std::int32_t v : blockFrom(first + 2 * kBlock)) {
    const double* const point = &coordinates[3 * asIndex(v)];
    prefetchToRead(point);
    prefetchToRead(point + 2);  // a quarter of the points lie on two cache lines
    lower.prefetchRow(v);
  }
  for (const std::int32_t v : blockFrom(first)) lower.prefetchBucket(v);
}

void gather(std::span<const double> coordinates, Corners c, std::size_t lane, BlockCorners& block) {
  for (std::size_t k = 0; k < 3; ++k) {
    const double* const p = &coordinates[3 * asIndex(c[k])];
    block.x[k][lane] = p[0];
    block.y[k][lane] = p[1];
    block.z[k][lane] = p[2];
  }
}

void add(Corners c, const ElementStiffness& e, LowerTriangle& lower) {
  lower.add(c[0], c[1], e.k01);
  lower.add(c[1], c[2], e.k12);
  lower.add(c[0], c[2], e.k02);
  lower.addToDiagonal(c[0], e.k00);
  lower.addToDiagonal(c[1], e.k11);
  lower.addToDiagonal(c[2], e.k22);
}

}  // namespace

// Where fewer triangles are left than a block has, the last one is repeated: zeros would make the
// processor divide 0 by 0, which a host may have asked to hear of.
bool addElements(std::span<const double> coordinates, std::span<const std::int32_t> triangles,
                 LowerTriangle& lower) {
  const auto corners = [&](std::size_t j) { return triangles.subspan(3 * j).first<3>(); };
  const std::size_t count = triangles.size() / 3;
  const bool prefetch = hasPoorLocality(triangles);
  bool repeatAVertex = false;
  BlockCorners block;
  BlockStiffness stiffness;
  for (std::size_t first = 0; first < count; first += kBlock) {
    if (prefetch) prefetchAhead(coordinates, triangles, first, lower);
    const std::size_t filled = std::min(kBlock, count - first);
    for (std::size_t lane = 0; lane < kBlock; ++lane) {
      gather(coordinates, corners(first + std::min(lane, filled - 1)), lane, block);
    }
    stiffnessOfBlock(block, stiffness);
    for (std::size_t lane = 0; lane < filled; ++lane) {
      const Corners c = corners(first + lane);
      repeatAVertex |= c[0] == c[1] || c[1] == c[2] || c[0] == c[2];
      add(c, stiffness.of(lane), lower);
    }
  }
  return repeatAVertex;
}

}  // namespace qelm
