// Groups of points that lie close together.
#ifndef QELM_MESH_CLUSTERS_H
#define QELM_MESH_CLUSTERS_H

#include <cstdint>
#include <span>
#include <vector>

namespace qelm {

/// For each of n points (3n coordinates, packed xyz) the lowest index in its
/// cluster. Two points are joined when their squared distance, computed as
/// ((dx * dx + dy * dy) + dz * dz), is strictly less than tolerance * tolerance;
/// clusters are what is connected so (single linkage).
///
/// So nothing is joined with a tolerance of 0, or so small that its square is 0, or
/// NaN; and points with a NaN or infinite coordinate are never joined. All other
/// input is fine. O(n log n) for any cloud whose points within the tolerance of each
/// other mostly end in one cluster.
std::vector<std::int32_t> clusterRoots(std::span<const double> points, double tolerance);

}  // namespace qelm

#endif  // QELM_MESH_CLUSTERS_H
