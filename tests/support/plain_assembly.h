// The assembly in its plainest form, one step after the other: scalar arithmetic
// written out, a list of triplets, one full matrix, two block copies. The library must
// give the same bits however it gets there.
#ifndef QELM_TESTS_SUPPORT_PLAIN_ASSEMBLY_H
#define QELM_TESTS_SUPPORT_PLAIN_ASSEMBLY_H

#include <cstdint>
#include <memory>
#include <vector>

#include "interface/mesh_system.h"

namespace qelm::test {

struct PlainAssembly {
  int status = 0;  ///< 23, a triangle repeats a vertex, comes before 24, a vertex in none
  std::shared_ptr<const std::vector<double>> vertices;
  std::shared_ptr<const std::vector<std::int32_t>> triangles;
  SparseBlock freeFree;
  SparseBlock freeFixed;
};

/// Of a mesh in system order, its first t vertices tagged. Copies what it keeps.
PlainAssembly plainAssembly(int t, int n, const std::vector<double>& coordinates,
                            const std::vector<std::int32_t>& triangles);

}  // namespace qelm::test

#endif  // QELM_TESTS_SUPPORT_PLAIN_ASSEMBLY_H
