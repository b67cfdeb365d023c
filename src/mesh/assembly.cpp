// The stiffness matrix K is never formed as a whole, nor is a list of its
// contributions: element matrices are evaluated in blocks of triangles, added up over
// edges and vertices in input order, and laid out in the free rows' two blocks. The
// order of those sums is what decides the bits.
#include "mesh/assembly.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <span>
#include <utility>

#include "mesh/edge_sums.h"
#include "mesh/element_sums.h"
#include "qelm.h"

namespace qelm {
namespace {

using Corners = std::array<std::int32_t, 3>;

Corners cornersOf(std::span<const std::int32_t> triangles, std::size_t j) {
  return {triangles[3 * j], triangles[3 * j + 1], triangles[3 * j + 2]};
}

bool repeatsAVertex(const Corners& c) { return c[0] == c[1] || c[1] == c[2] || c[0] == c[2]; }

/// Moves a block behind a shared pointer. By swapping: Eigen's sparse matrices copy
/// where others move, and such a copy leaks when memory runs out halfway.
std::shared_ptr<const SparseBlock> shared(SparseBlock& block) {
  auto owner = std::make_shared<SparseBlock>();
  owner->swap(block);
  return owner;
}

}  // namespace

int meshStatus(int vertexCount, std::span<const std::int32_t> triangles) {
  std::vector<char> used(static_cast<std::size_t>(vertexCount), 0);
  for (std::size_t j = 0; j < triangles.size() / 3; ++j) {
    const Corners c = cornersOf(triangles, j);
    if (repeatsAVertex(c)) return QELM_STATUS_REPEATED_VERTEX;
    for (const std::int32_t v : c) used[static_cast<std::size_t>(v)] = 1;
  }
  const bool allUsed = std::find(used.begin(), used.end(), 0) == used.end();
  return allUsed ? QELM_STATUS_OK : QELM_STATUS_UNUSED_VERTEX;
}

FreeRowBlocks assembleFreeRows(int taggedCount, int vertexCount,
                               std::span<const double> coordinates,
                               std::span<const std::int32_t> triangles) {
  EdgeSums sums(taggedCount, vertexCount, triangles);
  fastestAddElements()(coordinates, triangles, sums);
  EdgeSums::Counts counts = sums.addUp();
  return blocksOf(std::move(sums), std::move(counts), taggedCount);
}

std::unique_ptr<MeshSystem> assembleSystem(int taggedCount, int vertexCount,
                                           std::vector<double> coordinates,
                                           std::vector<std::int32_t> triangles, int& status) {
  if (vertexCount == 0) return nullptr;
  const int meshOutcome =
      triangles.empty() ? QELM_STATUS_UNUSED_VERTEX : meshStatus(vertexCount, triangles);
  if (meshOutcome != QELM_STATUS_OK) {
    status = meshOutcome;
    return nullptr;
  }
  FreeRowBlocks blocks = assembleFreeRows(taggedCount, vertexCount, coordinates, triangles);

  auto system = std::make_unique<MeshSystem>();
  system->fixedCount = taggedCount;
  system->vertexCount = vertexCount;
  system->vertices = std::make_shared<const std::vector<double>>(std::move(coordinates));
  system->triangles = std::make_shared<const std::vector<std::int32_t>>(std::move(triangles));
  system->freeFreeBlock = shared(blocks.freeFree);
  system->freeFixedBlock = shared(blocks.freeFixed);
  system->freeSolver = std::make_shared<const FreeSolver>(*system->freeFreeBlock);
  status = QELM_STATUS_OK;
  return system;
}

}  // namespace qelm
