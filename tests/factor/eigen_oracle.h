// The library's factorisation beside Eigen's own.
#ifndef QELM_TESTS_FACTOR_EIGEN_ORACLE_H
#define QELM_TESTS_FACTOR_EIGEN_ORACLE_H

#include <string>

#include "factor/solver.h"

namespace qelm::test {

using factor::Sparse;

/// Factorises with every kernel of this processor, always in blocks, with the fastest also some and
/// all small subtrees row by row and supernodes of other widths, and with Eigen's own loop behind
/// the same class, and compares each with Eigen's own class: info, permutation and tree; where they
/// ended with success also counts, rows and the bits of L and D. A NaN is a NaN whatever its sign.
/// Says what differs first; empty if nothing does.
std::string differenceFromEigen(const Sparse& matrix);

}  // namespace qelm::test

#endif  // QELM_TESTS_FACTOR_EIGEN_ORACLE_H
