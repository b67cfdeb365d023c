// Stiffness of one P1 triangle.
#ifndef QELM_MESH_ELEMENT_H
#define QELM_MESH_ELEMENT_H

#include "mesh/vec3.h"

namespace qelm {

/// The six different entries of the symmetric 3 x 3 element matrix
/// K_ab = area * (grad phi_a . grad phi_b).
struct ElementStiffness {
  double k00, k11, k22;
  double k01, k12, k02;
};

/// Gradient of the hat function of `apex` in a triangle whose opposite edge
/// runs from `edgeStart` along `edge`; `along` is (q . edge) for the vector q
/// that locates the foot of the height on the edge.
inline Vec3 hatGradient(Vec3 apex, Vec3 edgeStart, Vec3 edge, double along, double edgeLength,
                        double height) {
  // Divisions by the length and the height come one after the other, never by
  // a square: the square rounds differently and can under- or overflow.
  const double s = along / edgeLength / edgeLength;
  const Vec3 foot = edgeStart + s * edge;
  return (apex - foot) / height / height;
}

/// Stiffness of the triangle p0 p1 p2. The gradient of a corner's hat function
/// points from the foot of its height to the corner and has length 1 / height
/// (Strang and Fix, An Analysis of the Finite Element Method, 1973, ch. 1).
///
/// A triangle without area has heights of 0 and gives NaN or infinite entries;
/// NaN and infinite coordinates do too. Nothing is tested here.
///
/// The order of operations is binding, here and in vec3.h: the assembled matrix
/// has the same bits on every platform because of it. There is no branch either,
/// so that a compiler can evaluate several triangles side by side.
inline ElementStiffness elementStiffness(Vec3 p0, Vec3 p1, Vec3 p2) {
  const double area = 0.5 * length(cross(p1 - p0, p2 - p0));

  const double l12 = length(p2 - p1);
  const double l01 = length(p1 - p0);
  const double l02 = length(p2 - p0);

  const double h0 = 2 * area / l12;
  const double h1 = 2 * area / l02;
  const double h2 = 2 * area / l01;

  const Vec3 g0 = hatGradient(p0, p1, p2 - p1, dot(p0 - p1, p2 - p1), l12, h0);
  const Vec3 g1 = hatGradient(p1, p0, p2 - p0, dot(p2 - p0, p1 - p0), l02, h1);
  const Vec3 g2 = hatGradient(p2, p1, p0 - p1, dot(p0 - p1, p2 - p1), l01, h2);

  return {area * dot(g0, g0), area * dot(g1, g1), area * dot(g2, g2),
          area * dot(g0, g1), area * dot(g1, g2), area * dot(g0, g2)};
}

}  // namespace qelm

#endif  // QELM_MESH_ELEMENT_H
