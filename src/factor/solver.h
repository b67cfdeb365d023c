// The factorisation that a mesh system keeps: Eigen's SimplicialLDLT under the AMD ordering, filled
// several times as fast.
#ifndef QELM_FACTOR_SOLVER_H
#define QELM_FACTOR_SOLVER_H

#include <Eigen/OrderingMethods>
#include <Eigen/SparseCholesky>
#include <cstdint>
#include <functional>
#include <span>

#include "factor/elimination_tree.h"
#include "factor/panel_kernel.h"
#include "factor/small_subtrees.h"
#include "factor/symbolic.h"

namespace qelm::factor {

/// How the numeric phase is done.
struct Method {
  const PanelKernel& kernel;

  /// Blocks pay where each entry of L is used in many multiplications. The fewest, on average,
  /// with which they are tried; below, Eigen's own loop takes less time. Measured on grids and
  /// closed surfaces: both take the same at about 35, meshes of 4 to 10 thousand vertices.
  double leastReuse;

  /// Within blocks: subtrees of at most so many columns, kMostColumns or fewer, go row by row.
  int smallSubtree = kMostColumns;
};

/// For this processor, as measured.
Method fastestMethod();

/// Whether a factorisation by this method takes blocks.
bool blocksPay(const EliminationTree& tree, const Method& method);

/// Told what the numeric phase will take before it begins, which it does if the answer is true.
using CostReview = std::function<bool(const Cost&)>;

using Ldlt = Eigen::SimplicialLDLT<Sparse, Eigen::Lower, Eigen::AMDOrdering<int>>;

/// A SimplicialLDLT with the bits that its own compute() gives: permutation, factor, diagonal,
/// tree, counts and info(). Everything that takes one takes this.
class Solver : public Ldlt {
 public:
  /// Factorises a symmetric matrix both of whose triangles are stored, rows ascending within
  /// columns; values are read from the lower one. How it ended is in info().
  /// `review`, if there is one, is called once; where it answers false, the object is good for
  /// nothing but to be destroyed.
  ///
  /// With `first`, a permutation of the unknowns, it does so as if first[0], first[1], ... had
  /// been numbered 0, 1, ...: factor and diagonal have the bits of that matrix, and the
  /// permutation leads to them from the numbers as they are.
  ///
  /// Throws std::bad_alloc before anything large is allocated if L has more entries than an int
  /// can count, as well as when memory runs out.
  explicit Solver(const Sparse& matrix, const Method& method = fastestMethod(),
                  std::span<const std::int32_t> first = {}, const CostReview& review = {});

 private:
  void order(const Sparse& matrix);
  void keepPattern(const EliminationTree& tree);
  bool tryBlocks(const Sparse& upper, const EliminationTree& tree, const Method& method);
  void factorizePlainly(const Sparse& upper);

  // Eigen 3.4 keeps the columns' counts apart, Eigen 5 at the front of a workspace, and its
  // factorisation has a parameter more. Templates, since only one of each compiles.
  template <class Self>
  static void keepCounts(Self& self, const Eigen::VectorXi& counts);
  template <class Self>
  static void callFactorize(Self& self, const Sparse& upper);
};

}  // namespace qelm::factor

#endif  // QELM_FACTOR_SOLVER_H
