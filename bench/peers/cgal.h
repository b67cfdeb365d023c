// What CGAL does of our jobs. Its objects stay behind this header.
#ifndef QELM_BENCH_PEERS_CGAL_H
#define QELM_BENCH_PEERS_CGAL_H

#include <cstddef>
#include <memory>

#include "support/meshes.h"

namespace qelm::bench {

struct CgalSoup;
std::shared_ptr<const CgalSoup> cgalSoup(const test::Mesh& mesh);

/// Points left by merge_duplicate_points_in_polygon_soup(), which merges equal ones only. It
/// works in place, so on a copy. It does not look for repeated triangles.
std::size_t cgalMergeEqual(const CgalSoup& soup);

/// Points left by grid_simplify_point_set() with cells of this size: one for each cell, and
/// no triangles. The nearest that CGAL has to merging with a tolerance.
std::size_t cgalGridSimplify(const CgalSoup& soup, double tolerance);

}  // namespace qelm::bench

#endif  // QELM_BENCH_PEERS_CGAL_H
