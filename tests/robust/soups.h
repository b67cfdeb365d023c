// Random heaps of triangles with a prescribed vertex in each connected part.
#ifndef QELM_TESTS_ROBUST_SOUPS_H
#define QELM_TESTS_ROBUST_SOUPS_H

#include <vector>

#include "support/meshes.h"
#include "support/random.h"

namespace qelm::test {

enum class SoupKind {
  generic,      ///< anywhere in a cube
  lattice,      ///< on a few lattice points, so that many coincide or lie in line
  flat,         ///< all in one plane, on a lattice
  needles,      ///< nearly on one line
  nearLattice,  ///< near lattice points, at all distances down to 1e-20
  wild          ///< coordinates of 1e-18 to 1e18
};
constexpr int kSoupKinds = 6;

/// 3 to 30 vertices, in up to four times as many triangles, oriented anyhow: edges of many
/// triangles, repeated and one-sided ones.
Mesh soup(Random& random, SoupKind kind);

/// For each vertex the number of its connected part, its lowest vertex.
std::vector<int> partsOf(const Mesh& mesh);

}  // namespace qelm::test

#endif  // QELM_TESTS_ROBUST_SOUPS_H
