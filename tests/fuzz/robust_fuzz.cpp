// Robust construction of any mesh with indices in range, and what it promises of the fields.
#include <algorithm>
#include <cmath>
#include <limits>

#include "fuzz/input.h"
#include "fuzz/require.h"
#include "interface/mesh_system.h"
#include "qelm.h"

namespace {

using qelm::fuzz::require;

bool isFixed(const qelm::fuzz::FuzzMesh& mesh, std::size_t i) {
  return mesh.tags[i] >= 1 && mesh.tags[i] <= 3;
}

/// Lowest vertices of connected parts, and a prescribed vertex in each of them.
std::vector<int> fixEveryPart(qelm::fuzz::FuzzMesh& mesh) {
  std::vector<int> part(mesh.tags.size());
  for (std::size_t i = 0; i < part.size(); ++i) part[i] = static_cast<int>(i);
  const auto partOf = [&](int corner) -> int& {
    return part[static_cast<std::size_t>(mesh.triangles[static_cast<std::size_t>(corner)])];
  };
  for (bool changed = true; changed;) {
    changed = false;
    for (int j = 0; j < 3 * mesh.triangleCount; j += 3) {
      const int lowest = std::min({partOf(j), partOf(j + 1), partOf(j + 2)});
      for (int k = j; k < j + 3; ++k) {
        changed = changed || partOf(k) != lowest;
        partOf(k) = lowest;
      }
    }
  }
  std::vector<bool> fixed(part.size());
  for (std::size_t i = 0; i < part.size(); ++i) {
    if (isFixed(mesh, i)) fixed[static_cast<std::size_t>(part[i])] = true;
  }
  for (std::size_t i = 0; i < part.size(); ++i) {
    if (part[i] == static_cast<int>(i) && !fixed[i]) mesh.tags[i] = 1;
  }
  return part;
}

void requireNoPositiveEntry(const qelm::SparseBlock& block, bool hasDiagonal) {
  for (Eigen::Index c = 0; c < block.outerSize(); ++c) {
    for (qelm::SparseBlock::InnerIterator entry(block, c); entry; ++entry) {
      require(std::isfinite(entry.value()));
      if (!hasDiagonal || entry.row() != c) require(entry.value() <= 1e-12);
    }
  }
}

void requireRange(const MeshSystem* system, const qelm::fuzz::FuzzMesh& mesh,
                  const std::vector<int>& part, qelm::fuzz::Input& input) {
  const std::size_t n = mesh.tags.size();
  std::vector<double> values = input.takeDoubles(n);
  for (double& v : values) {
    if (!(std::fabs(v) <= 1e280)) v = 0;
  }
  constexpr double kInfinity = std::numeric_limits<double>::infinity();
  std::vector<double> low(n, kInfinity), high(n, -kInfinity), result(n);
  for (std::size_t i = 0; i < n; ++i) {
    if (!isFixed(mesh, i)) continue;
    const auto p = static_cast<std::size_t>(part[i]);
    low[p] = std::min(low[p], values[i]);
    high[p] = std::max(high[p], values[i]);
  }
  int status = -1;
  qelmsolveTagged(system, values.data(), result.data(), &status);
  require(status == QELM_STATUS_OK);
  for (std::size_t i = 0; i < n; ++i) {
    const auto p = static_cast<std::size_t>(part[i]);
    require(result[i] >= low[p] && result[i] <= high[p]);
  }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  qelm::fuzz::Input input(data, size);
  qelm::fuzz::FuzzMesh mesh = qelm::fuzz::takeMesh(input);
  const std::vector<int> part = fixEveryPart(mesh);
  MeshSystem* system = nullptr;
  int status = -1;
  qelmctorRobustTagged(mesh.vertexCount, mesh.vertices.data(), mesh.triangleCount,
                       mesh.triangles.data(), mesh.tags.data(), nullptr, &status, &system);
  QelmRobustReport report;
  require(qelmcheckRobustTagged(mesh.vertexCount, mesh.vertices.data(), mesh.triangleCount,
                                mesh.triangles.data(), mesh.tags.data(), &report) == status);
  require((system != nullptr) == (status == QELM_STATUS_OK));
  require(status != QELM_STATUS_ENDLESS_FLIPS);
  if (system != nullptr) {
    requireNoPositiveEntry(*system->freeFreeBlock, true);
    requireNoPositiveEntry(*system->freeFixedBlock, false);
    if (qelminfo(system) == 0) requireRange(system, mesh, part, input);
  }
  qelmfree(system);
  return 0;
}
