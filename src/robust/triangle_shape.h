// The cotangents of a triangle's angles, bounded for every triangle.
//
// In: three points. Out: three finite cotangents, all that cotangent weights need (Pinkall and
// Polthier, Computing discrete minimal surfaces and their conjugates, 1993). A triangle without
// height has none, so a flat triangle is raised: a height below q L, with L the longest edge,
// becomes q L above the same foot.
//
//            R                          R' at height q L
//   P-----------------Q      ->     P-------'---------Q      foot at s L from P
//
// Sharp and Crane (A Laplacian for nonmanifold triangle meshes, 2020) lengthen all edges of a mesh
// by one amount instead. A rule for single triangles leaves the others as they are and needs no
// length scale of the mesh.
#ifndef QELM_ROBUST_TRIANGLE_SHAPE_H
#define QELM_ROBUST_TRIANGLE_SHAPE_H

#include <array>

#include "mesh/vec3.h"

namespace qelm {

/// q: the lowest height, as a share of the longest edge. A cap of this height has a cotangent of
/// about -2^24 at its apex, and of 2^25 to 2^26 at its base: the square of their ratio to a good
/// triangle's is what the factorisation's 53 bits can still hold.
constexpr double kLeastHeight = 0x1p-26;

/// q for a triangle whose foot is this near to an end of the longest edge, as in a needle whose
/// short edge has shrunk to a point. The three vertices are near a line and two are near each
/// other, so the triangle couples those two with the square of a cap's weight.
constexpr double kLeastHeightOfNeedle = 0x1p-22;

/// The cotangents of the angles at three corners.
struct Cotangents {
  std::array<double, 3> at;
  bool wasFlat;  ///< whether the height was raised
};

/// For the triangle p0 p1 p2 of finite points. Cotangents are at most 2^26 in size. Three equal
/// points count as an equilateral triangle, two equal ones as an isosceles needle. Exchanging
/// corners exchanges results, bit for bit.
Cotangents cotangentsOf(Vec3 p0, Vec3 p1, Vec3 p2);

/// Whether the triangle p0 p1 p2 is steep: the size of a cotangent, before the height is raised, is
/// above kSteepCotangent. An angle is then below 1.8 or above 178.2 degrees. Weights round by about
/// 2^-52 of the square of the largest cotangent, so by 2^-42 where no triangle is steep. Three
/// equal points are not steep.
bool isSteep(Vec3 p0, Vec3 p1, Vec3 p2);
constexpr double kSteepCotangent = 0x1p5;

/// For the triangle whose cotangents are numerators / denominator. A denominator that is too small
/// means a flat triangle.
Cotangents cotangentsOf(const std::array<double, 3>& numerators, double denominator);

}  // namespace qelm

#endif  // QELM_ROBUST_TRIANGLE_SHAPE_H
