// The stiffness matrix K is never formed as a whole, nor is a list of its
// contributions: element matrices are evaluated in blocks of triangles, added up over
// edges and vertices in input order, and laid out in the free rows' two blocks. The
// order of those sums is what decides the bits. A mesh's defects come to light on the
// way, where looking for them takes no time of its own.
#include "mesh/assembly.h"

#include <span>
#include <utility>

#include "factor/solver.h"
#include "mesh/edge_sums.h"
#include "mesh/element_sums.h"
#include "qelm.h"

namespace qelm {
namespace {

/// Moves a block behind a shared pointer. By swapping: Eigen's sparse matrices copy
/// where others move, and such a copy leaks when memory runs out halfway.
std::shared_ptr<const SparseBlock> shared(SparseBlock& block) {
  auto owner = std::make_shared<SparseBlock>();
  owner->swap(block);
  return owner;
}

}  // namespace

AssembledRows assembleFreeRows(int taggedCount, std::span<const double> coordinates,
                               std::span<const std::int32_t> triangles,
                               std::vector<std::uint32_t> higherEnds) {
  EdgeSums sums(taggedCount, triangles, std::exchange(higherEnds, {}));
  const bool repeatAVertex = fastestAddElements()(coordinates, triangles, sums);
  if (repeatAVertex) return {QELM_STATUS_REPEATED_VERTEX, {}};
  if (!sums.haveEveryVertex()) return {QELM_STATUS_UNUSED_VERTEX, {}};
  EdgeSums::Counts counts = sums.addUp();
  return {QELM_STATUS_OK, blocksOf(std::move(sums), std::move(counts), taggedCount)};
}

std::unique_ptr<MeshSystem> assembleSystem(int taggedCount, int vertexCount,
                                           std::vector<double> coordinates,
                                           SystemTriangles triangles, SizeLimit* limit,
                                           int& status) {
  if (vertexCount == 0) return nullptr;
  AssembledRows rows = assembleFreeRows(taggedCount, coordinates, triangles.indices,
                                        std::move(triangles.higherEnds));
  if (rows.status != QELM_STATUS_OK) {
    status = rows.status;
    return nullptr;
  }

  auto system = factorisedSystem(taggedCount, std::move(coordinates), std::move(triangles.indices),
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
