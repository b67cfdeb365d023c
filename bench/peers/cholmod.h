// CHOLMOD's factorisations through Eigen's wrappers.
#ifndef QELM_BENCH_PEERS_CHOLMOD_H
#define QELM_BENCH_PEERS_CHOLMOD_H

#if defined(QELM_HAVE_CHOLMOD)
#include <Eigen/CholmodSupport>

#include "interface/mesh_system.h"

namespace qelm::bench {

/// CHOLMOD with its default settings: it tries AMD and, where that leaves much to do, nested
/// dissection (METIS) too, and takes the better one.
using CholmodSimplicialOwnOrder = Eigen::CholmodSimplicialLDLT<SparseBlock>;
using CholmodSupernodalOwnOrder = Eigen::CholmodSupernodalLLT<SparseBlock>;

/// Under AMD, as Eigen and the library: the same work.
template <class Solver>
class UnderAmd : public Solver {
 public:
  explicit UnderAmd(const SparseBlock& matrix) {
    this->cholmod().nmethods = 1;
    this->cholmod().method[0].ordering = CHOLMOD_AMD;
    this->cholmod().postorder = 1;
    this->compute(matrix);
  }
};
using CholmodSimplicial = UnderAmd<CholmodSimplicialOwnOrder>;
using CholmodSupernodal = UnderAmd<CholmodSupernodalOwnOrder>;

}  // namespace qelm::bench

#endif

#endif  // QELM_BENCH_PEERS_CHOLMOD_H
