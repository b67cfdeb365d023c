// One field at a time, in the plainest form: Eigen's own substitution. The library
// must give the same bits however it gets there.
#ifndef QELM_TESTS_SUPPORT_PLAIN_SOLVE_H
#define QELM_TESTS_SUPPORT_PLAIN_SOLVE_H

#include "interface/mesh_system.h"
#include "support/meshes.h"

namespace qelm::test {

/// The field with K_ff u_f = -K_fb u_b - load_f, in input order. Without a load it is
/// empty; then the right-hand side starts from zeros, not from negated ones.
Field plainSolve(const MeshSystem& system, const Field& values, const Field& load = {});

}  // namespace qelm::test

#endif  // QELM_TESTS_SUPPORT_PLAIN_SOLVE_H
