#include "mesh/assembly.h"

#include <Eigen/SparseCore>
#include <algorithm>
#include <array>
#include <cstddef>
#include <vector>

#include "mesh/element.h"
#include "qelm.h"

namespace qelm {
namespace {

using Triplets = std::vector<Eigen::Triplet<double, std::int32_t>>;
using Corners = std::array<std::int32_t, 3>;

Corners cornersOf(std::span<const std::int32_t> triangles, std::size_t j) {
  return {triangles[3 * j], triangles[3 * j + 1], triangles[3 * j + 2]};
}

bool repeatsAVertex(const Corners& c) { return c[0] == c[1] || c[1] == c[2] || c[0] == c[2]; }

Vec3 pointAt(std::span<const double> coordinates, std::int32_t vertex) {
  const auto base = 3 * static_cast<std::size_t>(vertex);
  return {coordinates[base], coordinates[base + 1], coordinates[base + 2]};
}

// Duplicate entries are later summed in the order of this list, so the order of
// the nine decides the bits of K.
void appendElement(Triplets& triplets, const Corners& c, const ElementStiffness& e) {
  triplets.emplace_back(c[0], c[1], e.k01);
  triplets.emplace_back(c[1], c[0], e.k01);
  triplets.emplace_back(c[1], c[2], e.k12);
  triplets.emplace_back(c[2], c[1], e.k12);
  triplets.emplace_back(c[0], c[2], e.k02);
  triplets.emplace_back(c[2], c[0], e.k02);
  triplets.emplace_back(c[0], c[0], e.k00);
  triplets.emplace_back(c[1], c[1], e.k11);
  triplets.emplace_back(c[2], c[2], e.k22);
}

/// Appends every triangle's element matrix. Returns 0, or the status of the
/// first defect. Distinct indices without area are no defect: their entries are
/// non-finite, and the factorisation meets them.
int collectElements(int vertexCount, std::span<const double> coordinates,
                    std::span<const std::int32_t> triangles, Triplets& triplets) {
  std::vector<bool> used(static_cast<std::size_t>(vertexCount), false);
  for (std::size_t j = 0; j < triangles.size() / 3; ++j) {
    const Corners c = cornersOf(triangles, j);
    if (repeatsAVertex(c)) return QELM_STATUS_REPEATED_VERTEX;
    for (const std::int32_t v : c) used[static_cast<std::size_t>(v)] = true;
    appendElement(triplets, c,
                  elementStiffness(pointAt(coordinates, c[0]), pointAt(coordinates, c[1]),
                                   pointAt(coordinates, c[2])));
  }
  const bool allUsed = std::find(used.begin(), used.end(), false) == used.end();
  return allUsed ? QELM_STATUS_OK : QELM_STATUS_UNUSED_VERTEX;
}

SparseBlock stiffnessMatrix(int vertexCount, const Triplets& triplets) {
  SparseBlock k(vertexCount, vertexCount);
  k.setFromTriplets(triplets.begin(), triplets.end());
  return k;
}

/// The tagged rows are dropped: solving needs only the free ones.
void storeBlocks(MeshSystem& system, const SparseBlock& k, int t) {
  const auto free = k.rows() - t;
  system.freeFreeBlock = std::make_shared<const SparseBlock>(k.block(t, t, free, free));
  system.freeFixedBlock = std::make_shared<const SparseBlock>(k.block(t, 0, free, t));
}

}  // namespace

std::unique_ptr<MeshSystem> assembleSystem(int taggedCount, int vertexCount,
                                           std::span<const double> coordinates,
                                           std::span<const std::int32_t> triangles, int& status) {
  if (vertexCount == 0) return nullptr;
  if (triangles.empty()) {
    status = QELM_STATUS_UNUSED_VERTEX;
    return nullptr;
  }
  auto system = std::make_unique<MeshSystem>();
  system->fixedCount = taggedCount;
  system->vertexCount = vertexCount;
  system->vertices =
      std::make_shared<const std::vector<double>>(coordinates.begin(), coordinates.end());
  system->triangles =
      std::make_shared<const std::vector<std::int32_t>>(triangles.begin(), triangles.end());

  {
    Triplets triplets;
    triplets.reserve(3 * triangles.size());  // nine for each triangle, never regrown
    const int defect = collectElements(vertexCount, coordinates, triangles, triplets);
    if (defect != QELM_STATUS_OK) {
      status = defect;
      return nullptr;
    }
    storeBlocks(*system, stiffnessMatrix(vertexCount, triplets), taggedCount);
  }
  system->freeSolver = std::make_shared<const FreeSolver>(*system->freeFreeBlock);
  status = QELM_STATUS_OK;
  return system;
}

}  // namespace qelm
