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
#include "mesh/element_block.h"
#include "qelm.h"

namespace qelm {
namespace {

using Corners = std::array<std::int32_t, 3>;

Corners cornersOf(std::span<const std::int32_t> triangles, std::size_t j) {
  return {triangles[3 * j], triangles[3 * j + 1], triangles[3 * j + 2]};
}

bool repeatsAVertex(const Corners& c) { return c[0] == c[1] || c[1] == c[2] || c[0] == c[2]; }

void gather(std::span<const double> coordinates, const Corners& corners, std::size_t lane,
            BlockCorners& block) {
  for (std::size_t k = 0; k < 3; ++k) {
    const auto base = 3 * static_cast<std::size_t>(corners[k]);
    block.x[k][lane] = coordinates[base];
    block.y[k][lane] = coordinates[base + 1];
    block.z[k][lane] = coordinates[base + 2];
  }
}

/// Has the memory of the next block's vertices ready.
void prefetch(std::span<const double> coordinates, const EdgeSums& sums,
              std::span<const std::int32_t> triangles) {
#if defined(__GNUC__)
  for (const std::int32_t v : triangles.first(std::min(triangles.size(), 3 * kBlock))) {
    const double* const point = coordinates.data() + 3 * static_cast<std::size_t>(v);
    __builtin_prefetch(point);
    __builtin_prefetch(point + 2);
    sums.prefetchOwner(v);
  }
#endif
}

void addElement(EdgeSums& sums, const Corners& c, const ElementStiffness& e) {
  sums.add(c[0], c[1], e.k01);
  sums.add(c[1], c[2], e.k12);
  sums.add(c[0], c[2], e.k02);
  sums.addToDiagonal(c[0], e.k00);
  sums.addToDiagonal(c[1], e.k11);
  sums.addToDiagonal(c[2], e.k22);
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
  const StiffnessOfBlock stiffnessOfBlock = fastestStiffnessOfBlock();
  EdgeSums sums(taggedCount, vertexCount, triangles);
  const std::size_t m = triangles.size() / 3;
  BlockCorners corners{};  // lanes that a last block leaves over hold some numbers
  BlockStiffness stiffness;
  for (std::size_t first = 0; first < m; first += kBlock) {
    const std::size_t count = std::min(kBlock, m - first);
    if (sums.isScattered()) {
      prefetch(coordinates, sums, triangles.subspan(3 * std::min(first + kBlock, m)));
      for (const std::int32_t v : triangles.subspan(3 * first, 3 * count)) sums.prefetchList(v);
    }
    for (std::size_t lane = 0; lane < count; ++lane) {
      gather(coordinates, cornersOf(triangles, first + lane), lane, corners);
    }
    stiffnessOfBlock(corners, stiffness);
    for (std::size_t lane = 0; lane < count; ++lane) {
      addElement(sums, cornersOf(triangles, first + lane), stiffness.of(lane));
    }
  }
  EdgeSums::Counts counts = sums.addUp();
  return blocksOf(sums, std::move(counts), taggedCount);
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
