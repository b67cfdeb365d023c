#include "mesh/assembly.h"

#include <algorithm>
#include <span>
#include <utility>

#include "factor/solver.h"
#include "interface/index.h"
#include "mesh/element_sums.h"
#include "qelm.h"

namespace qelm {
namespace {

/// Moves a block behind a shared pointer. It swaps: Eigen's sparse matrices copy where others move,
/// and such a copy leaks when memory runs out halfway.
std::shared_ptr<const SparseBlock> shared(SparseBlock& block) {
  auto owner = std::make_shared<SparseBlock>();
  owner->swap(block);
  return owner;
}

}  // namespace

int defectOf(std::size_t vertexCount, std::span<const std::int32_t> triangles) {
  std::vector<char> isUsed(vertexCount);
  for (std::size_t j = 0; j < triangles.size(); j += 3) {
    const std::int32_t a = triangles[j], b = triangles[j + 1], c = triangles[j + 2];
    if (a == b || b == c || c == a) return QELM_STATUS_REPEATED_VERTEX;
    isUsed[asIndex(a)] = isUsed[asIndex(b)] = isUsed[asIndex(c)] = 1;
  }
  const bool allAreUsed = std::find(isUsed.begin(), isUsed.end(), 0) == isUsed.end();
  return allAreUsed ? QELM_STATUS_OK : QELM_STATUS_UNUSED_VERTEX;
}

LowerTriangle sumFreeRows(int taggedCount, std::span<const double> coordinates,
                          std::span<const std::int32_t> triangles) {
  LowerTriangle lower(taggedCount, coordinates.size() / 3);
  addElements(coordinates, triangles, lower);
  lower.mergeBuckets();
  return lower;
}

AssembledRows assembleFreeRows(int taggedCount, std::span<const double> coordinates,
                               std::span<const std::int32_t> triangles) {
  const int defect = defectOf(coordinates.size() / 3, triangles);
  if (defect != QELM_STATUS_OK) return {defect, {}};
  return {QELM_STATUS_OK,
          toCompressedColumns(sumFreeRows(taggedCount, coordinates, triangles), taggedCount)};
}

std::unique_ptr<MeshSystem> assembleSystem(int taggedCount, int vertexCount,
                                           std::vector<double> coordinates,
                                           std::vector<std::int32_t> triangles, SizeLimit* limit,
                                           int& status) {
  if (vertexCount == 0) return nullptr;
  AssembledRows rows = assembleFreeRows(taggedCount, coordinates, triangles);
  if (rows.status != QELM_STATUS_OK) {
    status = rows.status;
    return nullptr;
  }
  auto system = factorisedSystem(taggedCount, std::move(coordinates), std::move(triangles),
                                 rows.blocks, {}, limit);
  status = QELM_STATUS_OK;
  if (system == nullptr) status = QELM_STATUS_TOO_LARGE;
  return system;
}

std::unique_ptr<MeshSystem> factorisedSystem(int taggedCount, std::vector<double> coordinates,
                                             std::vector<std::int32_t> triangles,
                                             FreeRowBlocks& blocks,
                                             std::span<const std::int32_t> freeOrder,
                                             SizeLimit* limit) {
  auto system = std::make_unique<MeshSystem>();
  system->fixedCount = taggedCount;
  system->vertexCount = static_cast<std::int64_t>(coordinates.size() / 3);
  system->vertices = std::make_shared<const std::vector<double>>(std::move(coordinates));
  system->triangles = std::make_shared<const std::vector<std::int32_t>>(std::move(triangles));
  system->freeFreeBlock = shared(blocks.freeFree);
  system->freeFixedBlock = shared(blocks.freeFixed);
  factor::CostReview review;
  if (limit != nullptr) {
    review = [&](const factor::Cost& cost) { return keeps(*limit, *system, cost); };
  }
  system->freeSolver = std::make_shared<const factor::Solver>(
      *system->freeFreeBlock, factor::fastestMethod(), freeOrder, review);
  if (limit != nullptr && limit->exceeded) return nullptr;
  return system;
}

}  // namespace qelm
