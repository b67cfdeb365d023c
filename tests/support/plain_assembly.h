// The element loop and the blocks in their plainest form: scalar arithmetic
// written out, a list of triplets, one full matrix, two block copies. The
// library must give the same bits however it gets there.
#ifndef QELM_TESTS_SUPPORT_PLAIN_ASSEMBLY_H
#define QELM_TESTS_SUPPORT_PLAIN_ASSEMBLY_H

#include "interface/mesh_system.h"

namespace qelm::test {

struct PlainBlocks {
  SparseBlock freeFree;
  SparseBlock freeFixed;
};

/// Blocks of the mesh that `system` stores, assembled anew.
PlainBlocks plainAssembly(const MeshSystem& system);

}  // namespace qelm::test

#endif  // QELM_TESTS_SUPPORT_PLAIN_ASSEMBLY_H
