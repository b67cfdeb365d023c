// The robust constructor and its check, called and looked into.
#ifndef QELM_TESTS_ROBUST_ROBUST_OF_H
#define QELM_TESTS_ROBUST_ROBUST_OF_H

#include <cstddef>

#include "interface/mesh_system.h"
#include "support/handle.h"
#include "support/meshes.h"

namespace qelm::test {

inline Construction tryConstructRobust(const Mesh& mesh) {
  Construction c;
  MeshSystem* raw = nullptr;
  c.returned = qelmctorRobustTagged(mesh.vertexCount(), mesh.vertices.data(), mesh.triangleCount(),
                                    mesh.triangles.data(), mesh.tags.data(), &c.taggedCount,
                                    &c.status, &raw);
  c.handle.reset(raw);
  return c;
}

inline MeshHandle constructRobust(const Mesh& mesh) {
  Construction c = tryConstructRobust(mesh);
  EXPECT_EQ(c.status, QELM_STATUS_OK);
  EXPECT_NE(c.handle, nullptr);
  return std::move(c.handle);
}

inline QelmRobustReport robustReportOf(const Mesh& mesh, int expectedStatus = QELM_STATUS_OK) {
  QelmRobustReport report = {-1, -1, -1, -1, -1};
  EXPECT_EQ(qelmcheckRobustTagged(mesh.vertexCount(), mesh.vertices.data(), mesh.triangleCount(),
                                  mesh.triangles.data(), mesh.tags.data(), &report),
            expectedStatus);
  return report;
}

/// visit(row, column, entry) for every stored entry of the free rows, in input order.
template <class Visit>
void forEachEntry(const MeshSystem& system, Visit visit) {
  const auto input = [&](Eigen::Index s) {
    return system.vertexOrder[static_cast<std::size_t>(s)];
  };
  const auto t = static_cast<Eigen::Index>(system.fixedCount);
  for (Eigen::Index c = 0; c < system.freeFreeBlock->outerSize(); ++c) {
    for (SparseBlock::InnerIterator e(*system.freeFreeBlock, c); e; ++e) {
      visit(input(t + e.row()), input(t + c), e.value());
    }
  }
  for (Eigen::Index c = 0; c < system.freeFixedBlock->outerSize(); ++c) {
    for (SparseBlock::InnerIterator e(*system.freeFixedBlock, c); e; ++e) {
      visit(input(t + e.row()), input(c), e.value());
    }
  }
}

/// The free rows as a table of n x n, row after row, in input order; other rows are 0.
inline Field denseRows(const MeshSystem& system) {
  const auto n = static_cast<std::size_t>(system.vertexCount);
  Field table(n * n, 0.0);
  forEachEntry(system, [&](std::int32_t row, std::int32_t column, double entry) {
    table[static_cast<std::size_t>(row) * n + static_cast<std::size_t>(column)] = entry;
  });
  return table;
}

}  // namespace qelm::test

#endif  // QELM_TESTS_ROBUST_ROBUST_OF_H
