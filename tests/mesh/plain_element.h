// Stiffness of one P1 triangle, in its plainest form.
#ifndef QELM_TESTS_MESH_PLAIN_ELEMENT_H
#define QELM_TESTS_MESH_PLAIN_ELEMENT_H

#include "mesh/element_stiffness.h"
#include "mesh/vec3.h"

namespace qelm::test {

/// Gradient of the hat function of `apex` in a triangle whose opposite edge
/// runs from `edgeStart` along `edge`; `along` is (q . edge) for the vector q
/// that locates the foot of the height on the edge.
inline Vec3 plainGradient(Vec3 apex, Vec3 edgeStart, Vec3 edge, double along, double edgeLength,
                          double height) {
  // Divisions by the length and the height come one after the other, never by
  // a square: the square rounds differently and can under- or overflow.
  const double s = along / edgeLength / edgeLength;
  const Vec3 foot = edgeStart + s * edge;
  return (apex - foot) / height / height;
}

/// Stiffness of the triangle p0 p1 p2.
inline ElementStiffness plainElement(Vec3 p0, Vec3 p1, Vec3 p2) {
  const double area = 0.5 * length(cross(p1 - p0, p2 - p0));

  const double l12 = length(p2 - p1);
  const double l01 = length(p1 - p0);
  const double l02 = length(p2 - p0);

  const double h0 = 2 * area / l12;
  const double h1 = 2 * area / l02;
  const double h2 = 2 * area / l01;

  const Vec3 g0 = plainGradient(p0, p1, p2 - p1, dot(p0 - p1, p2 - p1), l12, h0);
  const Vec3 g1 = plainGradient(p1, p0, p2 - p0, dot(p2 - p0, p1 - p0), l02, h1);
  const Vec3 g2 = plainGradient(p2, p1, p0 - p1, dot(p0 - p1, p2 - p1), l01, h2);

  return {area * dot(g0, g0), area * dot(g1, g1), area * dot(g2, g2),
          area * dot(g0, g1), area * dot(g1, g2), area * dot(g0, g2)};
}

}  // namespace qelm::test

#endif  // QELM_TESTS_MESH_PLAIN_ELEMENT_H
