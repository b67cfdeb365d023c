// Welding: coincident vertices become one, and triangles follow.
#ifndef QELM_MESH_WELD_H
#define QELM_MESH_WELD_H

#include <cstdint>
#include <span>

namespace qelm {

/// Where the welded mesh goes: room for as much as went in.
struct WeldOutput {
  std::span<double> vertices;         ///< 3n
  std::span<std::int32_t> triangles;  ///< 3m
  std::span<std::int32_t> vertexMap;  ///< n
};

struct WeldCounts {
  std::int32_t vertices;
  std::int32_t triangles;
};

/// Merges clusters of vertices (see clusterRoots()) into their lowest one, keeping
/// the order of those; re-indexes the triangles; drops those with two equal corners
/// and those that repeat an earlier one's three vertices in any order.
/// Every index of `triangles` must be in 0 .. n-1.
WeldCounts weld(std::span<const double> vertices, std::span<const std::int32_t> triangles,
                double tolerance, const WeldOutput& output);

}  // namespace qelm

#endif  // QELM_MESH_WELD_H
