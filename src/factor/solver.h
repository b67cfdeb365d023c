// The factorisation that a mesh system keeps: Eigen's SimplicialLDLT under the AMD ordering, with
// the same bits in a fraction of the time.
#ifndef QELM_FACTOR_SOLVER_H
#define QELM_FACTOR_SOLVER_H

#include <Eigen/OrderingMethods>
#include <Eigen/SparseCholesky>
#include <cstdint>
#include <functional>
#include <span>

#include "factor/cost.h"
#include "factor/elimination_tree.h"
#include "factor/panel_kernel.h"
#include "factor/small_subtrees.h"

namespace qelm::factor {

/// How the numeric phase works.
struct Method {
  const PanelKernel& kernel;

  /// The blocked factorisation pays where each entry of L takes part in many multiplications. With
  /// fewer than this on average Eigen's own loop takes less time. Measured on grids and closed
  /// surfaces: both take the same at about 35, in meshes of 4 to 10 thousand vertices.
  double leastReuse;

  /// In the blocked factorisation: subtrees of at most so many columns are computed row by row.
  /// kMostSubtreeColumns or fewer.
  int smallSubtree = kMostSubtreeColumns;

  /// Supernodes are cut after so many columns; 0: after widestSupernode() columns.
  int supernodeWidth = 0;
};

/// For this processor, as measured.
Method fastestMethod();

/// Whether this method uses the blocked factorisation.
bool blocksPay(const EliminationTree& tree, const Method& method);

/// Gets what the numeric phase will take, before memory is taken for it. The numeric phase runs
/// only if the answer is true.
using CostReview = std::function<bool(const Cost&)>;

using Ldlt = Eigen::SimplicialLDLT<Sparse, Eigen::Lower, Eigen::AMDOrdering<int>>;

/// A SimplicialLDLT with the bits that its own compute() gives: permutation, L, D, elimination
/// tree, column counts and info(). A Solver can stand wherever a SimplicialLDLT can.
class Solver : public Ldlt {
 public:
  /// Factorises a symmetric matrix both of whose triangles are stored, row indices ascending within
  /// each column. Values are read from the lower triangle. info() tells how it ended.
  ///
  /// With `first`, a permutation of the unknowns, unknown first[k] counts as number k: L and D have
  /// the bits of the matrix with that numbering, and the permutation leads to them from the
  /// numbering of `matrix`.
  ///
  /// `review`, if given, is called once. Where it answers false, the object is good for nothing but
  /// to be destroyed.
  ///
  /// Throws std::bad_alloc before anything large is allocated if L has more entries than an int
  /// can count, as well as when memory runs out.
  explicit Solver(const Sparse& matrix, const Method& method = fastestMethod(),
                  std::span<const std::int32_t> first = {}, const CostReview& review = {});

 private:
  void order(const Sparse& matrix);
  void storePattern(const EliminationTree& tree);
  bool factorizeInBlocks(const Sparse& upper, const EliminationTree& tree, const Method& method);

  // Eigen 3.4 keeps the column counts in a vector, Eigen 5 at the front of a workspace, and the
  // factorisation of Eigen 5 has a parameter more. Templates: with either version one branch of
  // each would not compile.
  template <class Self>
  static void storeCounts(Self& self, const Eigen::VectorXi& counts);
  template <class Self>
  static void factorizeByEigen(Self& self, const Sparse& upper);
};

}  // namespace qelm::factor

#endif  // QELM_FACTOR_SOLVER_H
