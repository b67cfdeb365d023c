#include "robust/robust_system.h"

#include <algorithm>
#include <cmath>
#include <utility>

#include "robust/double_cover.h"
#include "robust/flips.h"
#include "robust/robust_rows.h"
#include "robust/spatial_order.h"
#include "solve/field_bounds.h"

namespace qelm {
namespace {

bool areFinite(std::span<const double> coordinates) {
  return std::all_of(coordinates.begin(), coordinates.end(),
                     [](double c) { return std::isfinite(c); });
}

/// The free vertices of `order`, counted from 0.
std::vector<std::int32_t> freeVertices(const std::vector<std::int32_t>& order,
                                       std::int32_t taggedCount) {
  std::vector<std::int32_t> free(order.begin() + taggedCount, order.end());
  for (std::int32_t& vertex : free) vertex -= taggedCount;
  return free;
}

void swapBlocks(FreeRowBlocks& a, FreeRowBlocks&& b) {
  a.freeFree.swap(b.freeFree);
  a.freeFixed.swap(b.freeFixed);
}

}  // namespace

// Blocks are moved by swapping, see assembly.cpp.
RobustRows assembleRobustRows(int taggedCount, std::span<const double> coordinates,
                              std::span<const std::int32_t> triangles, std::int64_t flipLimit) {
  const bool steep = hasSteepTriangle(taggedCount, coordinates, triangles);
  RobustRows result{};
  result.rows.status = defectOf(coordinates.size() / 3, triangles);
  if (result.rows.status != QELM_STATUS_OK) return result;
  if (!areFinite(coordinates)) {
    result.rows.status = QELM_CHECK_NOT_FINITE;
    return result;
  }
  if (!steep) {
    // Summing the plain rows tells whether repair is needed, in a fraction of the time of repair.
    // They are freed before repair begins.
    const LowerTriangle plain = sumFreeRows(taggedCount, coordinates, triangles);
    if (hasNonnegativeWeights(plain, taggedCount)) {
      swapBlocks(result.rows.blocks, toCompressedColumns(plain, taggedCount));
      return result;
    }
  }

  DoubleCover cover{};
  if (steep) {
    const std::vector<std::int32_t> order = spatialOrder(taggedCount, coordinates);
    cover = coverInOrder(order, taggedCount, coordinates, triangles);
    result.freeOrder = freeVertices(order, taggedCount);
  } else {
    cover = coverOf(taggedCount, coordinates, triangles);
  }
  const Flips flips = flipToDelaunay(cover, flipLimit);
  result.report = {1, cover.sheets, cover.flatTriangles, flips.notDelaunayEdges, flips.done};
  if (flips.finished) {
    swapBlocks(result.rows.blocks,
               robustRows(std::move(cover), taggedCount, coordinates.size() / 3));
  } else {
    result.rows.status = QELM_STATUS_ENDLESS_FLIPS;
  }
  return result;
}

std::unique_ptr<MeshSystem> assembleRobustSystem(int taggedCount, int vertexCount,
                                                 std::vector<double> coordinates,
                                                 std::vector<std::int32_t> triangles,
                                                 SizeLimit* limit, int& status) {
  if (vertexCount == 0) return nullptr;
  RobustRows robust =
      assembleRobustRows(taggedCount, coordinates, triangles, flipLimit(triangles.size() / 3));
  status = robust.rows.status;
  if (status != QELM_STATUS_OK) return nullptr;
  auto system = factorisedSystem(taggedCount, std::move(coordinates), std::move(triangles),
                                 robust.rows.blocks, robust.freeOrder, limit);
  if (system == nullptr) {
    status = QELM_STATUS_TOO_LARGE;
    return nullptr;
  }
  system->bounds = std::make_shared<const FieldBounds>(boundsOf(*system->freeFreeBlock));
  return system;
}

}  // namespace qelm
