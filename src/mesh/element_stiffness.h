// The element stiffness of a P1 triangle.
//
// The gradient of a corner's hat function points from the foot of its height to the corner
// and has length 1 / height (Strang and Fix, An Analysis of the Finite Element Method, 1973,
// ch. 1). For the corner p, whose height has its foot on the edge from q towards r:
//
//            p        height = 2 area / |r - q|
//           /|\       share  = (p - q) . (r - q) / |r - q| / |r - q|, the way to the foot
//          / | \      foot   = q + share (r - q)
//         q--+--r     grad   = (p - foot) / height / height
//
// Divisions by a length come one after the other, never by its square: the square rounds
// differently and can under- or overflow. The order of operations is binding, here and in
// vec3.h: the assembled matrix has the same bits on every platform because of it. There is
// no branch either, so that the compiler can turn a loop over triangles into vector instructions.
//
// A triangle without area has heights of 0 and gives NaN or infinite entries; NaN and
// infinite coordinates do too. Nothing is tested here.
//
// Cost: 27 divisions and 4 square roots for each triangle, which take a processor some 60 cycles,
// whatever its registers' width.
#ifndef QELM_MESH_ELEMENT_STIFFNESS_H
#define QELM_MESH_ELEMENT_STIFFNESS_H

#include "mesh/vec3.h"

namespace qelm {

/// The six different entries of the symmetric 3 x 3 element stiffness
/// K_ab = area * (grad phi_a . grad phi_b).
struct ElementStiffness {
  double k00, k11, k22;
  double k01, k12, k02;
};

/// Gradient of the hat function of p; along = (p - q) . (r - q), edge = |r - q|.
inline Vec3 hatGradient(Vec3 p, Vec3 q, Vec3 r, double along, double edge, double height) {
  const double share = along / edge / edge;
  const Vec3 foot = q + share * (r - q);
  return (p - foot) / height / height;
}

inline ElementStiffness elementStiffness(Vec3 p0, Vec3 p1, Vec3 p2) {
  const double area = 0.5 * length(cross(p1 - p0, p2 - p0));
  const double edge0 = length(p2 - p1);
  const double edge1 = length(p2 - p0);
  const double edge2 = length(p1 - p0);
  const double along = dot(p0 - p1, p2 - p1);
  const Vec3 g0 = hatGradient(p0, p1, p2, along, edge0, 2 * area / edge0);
  const Vec3 g1 = hatGradient(p1, p0, p2, dot(p2 - p0, p1 - p0), edge1, 2 * area / edge1);
  const Vec3 g2 = hatGradient(p2, p1, p0, along, edge2, 2 * area / edge2);
  return {area * dot(g0, g0), area * dot(g1, g1), area * dot(g2, g2),
          area * dot(g0, g1), area * dot(g1, g2), area * dot(g0, g2)};
}

}  // namespace qelm

#endif  // QELM_MESH_ELEMENT_STIFFNESS_H
