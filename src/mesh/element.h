// Stiffness of one P1 triangle.
#ifndef QELM_MESH_ELEMENT_H
#define QELM_MESH_ELEMENT_H

#include "mesh/vec3.h"

namespace qelm {

/// The six different entries of the symmetric 3 x 3 element matrix
/// K_ab = area * (grad phi_a . grad phi_b), and the area.
struct ElementStiffness {
  double area;
  double k00, k11, k22;
  double k01, k12, k02;
};

/// Stiffness of the triangle p0 p1 p2. The gradient of a corner's hat function
/// points from the foot of its height to the corner and has length 1 / height
/// (Strang and Fix, An Analysis of the Finite Element Method, 1973, ch. 1).
///
/// A triangle without area has heights of 0 and gives NaN or infinite entries;
/// NaN and infinite coordinates do too. Nothing is tested here.
ElementStiffness elementStiffness(Vec3 p0, Vec3 p1, Vec3 p2);

}  // namespace qelm

#endif  // QELM_MESH_ELEMENT_H
