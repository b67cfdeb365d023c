// The stiffness matrix K is never formed as a whole, nor is a list of its
// contributions: the free rows' two blocks are laid out from the triangles
// around each vertex, and the element matrices are added into place. Triangles
// are added in input order, and each entry's sum starts from its first
// contribution. The order of that sum is what decides the bits.
#include "mesh/assembly.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <span>
#include <utility>

#include "mesh/element.h"
#include "qelm.h"

namespace qelm {
namespace {

using Corners = std::array<std::int32_t, 3>;

Corners cornersOf(std::span<const std::int32_t> triangles, std::size_t j) {
  return {triangles[3 * j], triangles[3 * j + 1], triangles[3 * j + 2]};
}

bool repeatsAVertex(const Corners& c) { return c[0] == c[1] || c[1] == c[2] || c[0] == c[2]; }

/// Adds to K_rc, wherever the entry lies; rows of tagged vertices are not kept.
void addEntry(FreeRowBlocks& blocks, std::int32_t t, std::int32_t row, std::int32_t column,
              double value) {
  if (row < t) return;
  if (column < t) {
    addToEntry(blocks.freeFixed, row - t, column, value);
  } else {
    addToEntry(blocks.freeFree, row - t, column - t, value);
  }
}

void addElement(FreeRowBlocks& blocks, std::int32_t t, const Corners& c,
                const ElementStiffness& e) {
  addEntry(blocks, t, c[0], c[1], e.k01);
  addEntry(blocks, t, c[1], c[0], e.k01);
  addEntry(blocks, t, c[1], c[2], e.k12);
  addEntry(blocks, t, c[2], c[1], e.k12);
  addEntry(blocks, t, c[0], c[2], e.k02);
  addEntry(blocks, t, c[2], c[0], e.k02);
  addEntry(blocks, t, c[0], c[0], e.k00);
  addEntry(blocks, t, c[1], c[1], e.k11);
  addEntry(blocks, t, c[2], c[2], e.k22);
}

Vec3 pointAt(std::span<const double> coordinates, std::int32_t vertex) {
  const auto base = 3 * static_cast<std::size_t>(vertex);
  return {coordinates[base], coordinates[base + 1], coordinates[base + 2]};
}

/// Moves a block behind a shared pointer. By swapping: Eigen's sparse matrices copy
/// where others move, and such a copy leaks when memory runs out halfway.
std::shared_ptr<const SparseBlock> shared(SparseBlock& block) {
  auto owner = std::make_shared<SparseBlock>();
  owner->swap(block);
  return owner;
}

}  // namespace

int meshStatus(int vertexCount, std::span<const std::int32_t> triangles) {
  std::vector<bool> used(static_cast<std::size_t>(vertexCount), false);
  for (std::size_t j = 0; j < triangles.size() / 3; ++j) {
    const Corners c = cornersOf(triangles, j);
    if (repeatsAVertex(c)) return QELM_STATUS_REPEATED_VERTEX;
    for (const std::int32_t v : c) used[static_cast<std::size_t>(v)] = true;
  }
  const bool allUsed = std::find(used.begin(), used.end(), false) == used.end();
  return allUsed ? QELM_STATUS_OK : QELM_STATUS_UNUSED_VERTEX;
}

FreeRowBlocks assembleFreeRows(int taggedCount, int vertexCount,
                               std::span<const double> coordinates,
                               std::span<const std::int32_t> triangles) {
  FreeRowBlocks blocks = emptyFreeRows(taggedCount, vertexCount, triangles);
  for (std::size_t j = 0; j < triangles.size() / 3; ++j) {
    const Corners c = cornersOf(triangles, j);
    addElement(blocks, taggedCount, c,
               elementStiffness(pointAt(coordinates, c[0]), pointAt(coordinates, c[1]),
                                pointAt(coordinates, c[2])));
  }
  return blocks;
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
