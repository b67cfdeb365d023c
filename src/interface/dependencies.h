// Where the releases of Eigen and nanoflann that we accept differ, and nothing else.
//
// Built and tested with Eigen 3.4 and 5.0, nanoflann 1.4 and 1.12 (scripts/compat);
// CMake refuses what is outside, in cmake/HeaderOnlyPackages.cmake.
#ifndef QELM_INTERFACE_DEPENDENCIES_H
#define QELM_INTERFACE_DEPENDENCIES_H

#include <Eigen/Core>
#include <nanoflann.hpp>

#if !EIGEN_VERSION_AT_LEAST(3, 4, 0)
#error "qelm needs Eigen 3.4 or later"
#endif
#if NANOFLANN_VERSION < 0x140
#error "qelm needs nanoflann 1.4 or later"
#endif

namespace qelm {

/// Every point within the radius, in the order in which the tree comes across them.
/// nanoflann 1.5 dropped a number that was ignored, and renamed the type.
inline auto exactUnsortedSearch() {
#if NANOFLANN_VERSION < 0x150
  return nanoflann::SearchParams(/*ignored=*/0, /*epsilon=*/0, /*sorted=*/false);
#else
  return nanoflann::SearchParameters(/*epsilon=*/0, /*sorted=*/false);
#endif
}

}  // namespace qelm

#endif  // QELM_INTERFACE_DEPENDENCIES_H
