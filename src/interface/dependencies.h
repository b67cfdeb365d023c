// The differences between the releases of Eigen and nanoflann that we accept, and nothing else.
//
// Built and tested with Eigen 3.4 and 5.0, nanoflann 1.4 and 1.12 (scripts/compat);
// CMake refuses other releases, in cmake/HeaderOnlyPackages.cmake.
#ifndef QELM_INTERFACE_DEPENDENCIES_H
#define QELM_INTERFACE_DEPENDENCIES_H

#include <Eigen/Core>
#include <cstdint>
#include <nanoflann.hpp>

#if !EIGEN_VERSION_AT_LEAST(3, 4, 0)
#error "qelm needs Eigen 3.4 or later"
#endif
#if NANOFLANN_VERSION < 0x140
#error "qelm needs nanoflann 1.4 or later"
#endif

namespace qelm {

/// Parameters of an exact search that does not sort the points it finds. nanoflann 1.5 renamed the
/// type and dropped a number that was ignored.
inline auto exactUnsortedSearch() {
#if NANOFLANN_VERSION < 0x150
  return nanoflann::SearchParams(/*ignored=*/0, /*epsilon=*/0, /*sorted=*/false);
#else
  return nanoflann::SearchParameters(/*epsilon=*/0, /*sorted=*/false);
#endif
}

/// How many int SimplicialLDLT keeps for each column besides L, D, the two permutations and the
/// elimination tree: Eigen 3.4 counts entries there, later releases keep their working arrays as
/// well, which 3.4 takes for the time of a factorisation.
#if EIGEN_VERSION_AT_LEAST(3, 4, 90)
inline constexpr int kIntsKeptForWork = 4;
inline constexpr int kIntsTakenForWork = 0;
#else
inline constexpr int kIntsKeptForWork = 1;
inline constexpr int kIntsTakenForWork = 2;
#endif

/// What a tree's search needs of a result set besides worstDist() and addPoint(). Later releases
/// want the types of numbers named, and call sort().
struct UnsortedResultSet {
  using DistanceType = double;
  using IndexType = std::int32_t;
  bool full() const { return true; }
  void sort() const {}
};

}  // namespace qelm

#endif  // QELM_INTERFACE_DEPENDENCIES_H
