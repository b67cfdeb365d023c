#include "mesh/element_sums.h"

#include <algorithm>
#include <array>

#include "interface/compiler.h"
#include "interface/index.h"
#include "mesh/element_stiffness.h"

namespace qelm {
namespace {

using Indices = std::span<const std::int32_t>;
using Lanes = std::array<double, kBlock>;
using BlockCorners = std::array<std::array<Lanes, 3>, 3>;  // of corner 0, 1, 2: x, y, z

struct BlockStiffness {
  Lanes k00, k11, k22;
  Lanes k01, k12, k02;
};

/// The block of triangles from triangle `first` on: fewer at the end of the mesh, none behind it.
Indices blockFrom(Indices triangles, std::size_t first) {
  const Indices rest = triangles.subspan(std::min(3 * first, triangles.size()));
  return rest.first(std::min(3 * kBlock, rest.size()));
}

/// Prefetches the points and rows of a block's vertices. In line, since GCC leaves out calls of
/// functions that change nothing.
QELM_INLINE void prefetchVertices(std::span<const double> coordinates, Indices block,
                                  const LowerTriangle& lower) {
  for (const std::int32_t v : block) {
    const double* const point = &coordinates[3 * asIndex(v)];
    prefetchToRead(point);
    prefetchToRead(point + 2);  // a quarter of the points lie on two cache lines
    lower.prefetchRow(v);
  }
}

void gather(std::span<const double> coordinates, Indices block, BlockCorners& corners) {
  for (std::size_t i = 0; i < block.size(); ++i) {
    const double* const point = &coordinates[3 * asIndex(block[i])];
    for (std::size_t axis = 0; axis < 3; ++axis) corners[i % 3][axis][i / 3] = point[axis];
  }
}

/// The stiffness of each of `count` triangles, with the bits that it would have alone: division and
/// square root are rounded correctly in every lane, and no product is fused with a sum.
void computeStiffness(const BlockCorners& corners, std::size_t count, BlockStiffness& stiffness) {
  const auto point = [&](std::size_t corner, std::size_t lane) -> Vec3 {
    return {corners[corner][0][lane], corners[corner][1][lane], corners[corner][2][lane]};
  };
  QELM_KEEP_LOOP
  for (std::size_t lane = 0; lane < count; ++lane) {
    const ElementStiffness e = elementStiffness(point(0, lane), point(1, lane), point(2, lane));
    stiffness.k00[lane] = e.k00;
    stiffness.k11[lane] = e.k11;
    stiffness.k22[lane] = e.k22;
    stiffness.k01[lane] = e.k01;
    stiffness.k12[lane] = e.k12;
    stiffness.k02[lane] = e.k02;
  }
}

void add(const BlockStiffness& stiffness, Indices block, LowerTriangle& lower) {
  for (std::size_t lane = 0; 3 * lane < block.size(); ++lane) {
    const std::int32_t a = block[3 * lane], b = block[3 * lane + 1], c = block[3 * lane + 2];
    lower.add(a, b, stiffness.k01[lane]);
    lower.add(b, c, stiffness.k12[lane]);
    lower.add(a, c, stiffness.k02[lane]);
    lower.addToDiagonal(a, stiffness.k00[lane]);
    lower.addToDiagonal(b, stiffness.k11[lane]);
    lower.addToDiagonal(c, stiffness.k22[lane]);
  }
}

}  // namespace

void addElements(std::span<const double> coordinates, Indices triangles, LowerTriangle& lower) {
  for (std::size_t j = 0; j < triangles.size(); j += 3) {
    const std::int32_t a = triangles[j], b = triangles[j + 1], c = triangles[j + 2];
    lower.count(a, b);
    lower.count(b, c);
    lower.count(a, c);
  }
  lower.makeBuckets();
  BlockCorners corners;
  BlockStiffness stiffness;
  for (std::size_t first = 0; 3 * first < triangles.size(); first += kBlock) {
    const Indices block = blockFrom(triangles, first);
    prefetchVertices(coordinates, blockFrom(triangles, first + 2 * kBlock), lower);
    for (const std::int32_t v : block) lower.prefetchBucket(v);
    gather(coordinates, block, corners);
    computeStiffness(corners, block.size() / 3, stiffness);
    add(stiffness, block, lower);
  }
}

}  // namespace qelm
