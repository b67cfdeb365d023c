// The order of triangles round an edge that three or more of them share.
#ifndef QELM_ROBUST_EDGE_FAN_H
#define QELM_ROBUST_EDGE_FAN_H

#include <cstdint>
#include <span>
#include <vector>

#include "mesh/vec3.h"

namespace qelm {

/// A triangle at an edge, known by one of its sides, and its corner off the edge.
struct FanBlade {
  std::int32_t side;
  Vec3 apex;
};

/// Sorts the triangles at the edge from a to b by their angle round it, counter-clockwise
/// as seen from b. Where the order starts has no meaning. Triangles at the same angle are
/// ordered by the coordinates of their apex, and so are all those at an edge without
/// length; only apexes at one place by their sides' numbers. So the cyclic order depends
/// on places alone, not on numbers, as far as places tell vertices apart.
///
/// Angles are compared by y / (|x| + |y|), which grows as they do, so that no function of
/// the mathematical library, different on each system, decides.
void sortRoundEdge(Vec3 a, Vec3 b, std::vector<FanBlade>& blades);

}  // namespace qelm

#endif  // QELM_ROBUST_EDGE_FAN_H
