#include "robust/robust_system.h"

#include <algorithm>
#include <cmath>
#include <utility>

#include "mesh/vec3.h"
#include "robust/double_cover.h"
#include "robust/flips.h"
#include "robust/robust_rows.h"
#include "robust/spatial_order.h"
#include "robust/triangle_shape.h"
#include "solve/field_bounds.h"

namespace qelm {
namespace {

bool areFinite(std::span<const double> coordinates) {
  return std::all_of(coordinates.begin(), coordinates.end(),
                     [](double c) { return std::isfinite(c); });
}

/// Whether a triangle with a free vertex is steep.
bool hasSteepTriangle(std::int32_t taggedCount, std::span<const double> coordinates,
                      std::span<const std::int32_t> triangles) {
  const auto point = [&](std::int32_t v) { return pointAt(coordinates, v); };
  for (std::size_t j = 0; j < triangles.size(); j += 3) {
    const std::int32_t a = triangles[j], b = triangles[j + 1], c = triangles[j + 2];
    if (std::max({a, b, c}) < taggedCount) continue;
    if (isSteep(point(a), point(b), point(c))) return true;
  }
  return false;
}

/// The free vertices of `order`, counted from 0.
std::vector<std::int32_t> freeVertices(const std::vector<std::int32_t>& order,
                                       std::int32_t taggedCount) {
  std::vector<std::int32_t> free(order.begin() + taggedCount, order.end());
  for (std::int32_t& vertex : free) vertex -= taggedCount;
  return free;
}

// Eigen's sparse matrices copy where others move, so blocks are swapped.
void swapBlocks(FreeRowBlocks& a, FreeRowBlocks&& b) {
  a.freeFree.swap(b.freeFree);
  a.freeFixed.swap(b.freeFixed);
}

int statusOf(std::span<const double> coordinates, std::span<const std::int32_t> triangles) {
  const int defect = defectOf(coordinates.size() / 3, triangles);
  if (defect != QELM_STATUS_OK) return defect;
  if (!areFinite(coordinates)) return QELM_CHECK_NOT_FINITE;
  return QELM_STATUS_OK;
}

/// The plain rows if they can stay. Summing them tells whether repair is needed, in a fraction of
/// the time of repair.
bool keepPlainRows(int taggedCount, std::span<const double> coordinates,
                   std::span<const std::int32_t> triangles, FreeRowBlocks& blocks) {
  const LowerTriangle plain = sumFreeRows(taggedCount, coordinates, triangles);
  if (!hasNonnegativeWeights(plain, taggedCount)) return false;
  swapBlocks(blocks, toCompressedColumns(plain, taggedCount));
  return true;
}

/// The cover of the mesh: with a steep triangle in spatial order, which becomes `freeOrder`, too.
DoubleCover coverFor(bool steep, int taggedCount, std::span<const double> coordinates,
                     std::span<const std::int32_t> triangles,
                     std::vector<std::int32_t>& freeOrder) {
  if (!steep) return coverOf(taggedCount, coordinates, triangles);
  const std::vector<std::int32_t> order = spatialOrder(taggedCount, coordinates);
  DoubleCover cover = coverInOrder(order, taggedCount, coordinates, triangles);
  freeOrder = freeVertices(order, taggedCount);
  return cover;
}

}  // namespace

RobustRows assembleRobustRows(int taggedCount, std::span<const double> coordinates,
                              std::span<const std::int32_t> triangles, std::int64_t flipLimit) {
  RobustRows result{};
  AssembledRows& rows = result.rows;
  rows.status = statusOf(coordinates, triangles);
  if (rows.status != QELM_STATUS_OK) return result;
  const bool steep = hasSteepTriangle(taggedCount, coordinates, triangles);
  if (!steep && keepPlainRows(taggedCount, coordinates, triangles, rows.blocks)) return result;

  DoubleCover cover = coverFor(steep, taggedCount, coordinates, triangles, result.freeOrder);
  const Flips flips = flipToDelaunay(cover, flipLimit);
  result.report = {1, cover.sheets, cover.flatTriangles, flips.notDelaunayEdges, flips.done};
  if (flips.finished) {
    swapBlocks(rows.blocks, robustRows(std::move(cover), taggedCount, coordinates.size() / 3));
  } else {
    rows.status = QELM_STATUS_ENDLESS_FLIPS;
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
