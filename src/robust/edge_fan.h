// The edge fan: the cyclic order of the triangles around an edge that three or more of them share.
//
// In: the edge's two points, and each triangle's apex, the corner off the edge. Out: the triangles
// sorted by their angle around the edge. Seen along the edge:
//
//      1 \   | 0
//         \  |             order 0, 1, 2, wherever it starts
//          \ |______ 2
//
// Angles are compared by y / (|x| + |y|), which grows as they do: the functions of mathematical
// libraries, which differ between systems, decide nothing. Cost: sorting the triangles at the edge.
#ifndef QELM_ROBUST_EDGE_FAN_H
#define QELM_ROBUST_EDGE_FAN_H

#include <cstdint>
#include <span>
#include <vector>

#include "mesh/vec3.h"

namespace qelm {

/// A triangle at an edge, given by its half-edge there, and its apex.
struct FanTriangle {
  std::int32_t halfEdge;
  Vec3 apex;
};

/// Sorts the triangles at the edge from a to b by their angle around it, counter-clockwise as seen
/// from b. The first one has no meaning. Triangles at the same angle, and all triangles at an edge
/// without length, are sorted by the coordinates of their apexes, and those with equal apexes by
/// their half-edges' numbers. So the cyclic order depends on numbers only where apexes coincide.
void sortAroundEdge(Vec3 a, Vec3 b, std::vector<FanTriangle>& fan);

}  // namespace qelm

#endif  // QELM_ROBUST_EDGE_FAN_H
