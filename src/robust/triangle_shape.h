// The shape of a triangle as three cotangents, bounded for every triangle there is.
//
// The weights of the Laplacian need no lengths: the cotangents of a triangle's angles say
// its shape (Pinkall and Polthier, Computing discrete minimal surfaces and their
// conjugates, 1993). A triangle without height has none. So a height below q L, with L
// the longest edge, is raised to q L over the foot where it stands:
//
//            R                          R' on height q L
//   P-----------------Q      ->     P-------'---------Q      foot at s L from P
//
// Sharp and Crane (A Laplacian for nonmanifold triangle meshes, 2020) lengthen all edges
// of a mesh by one amount instead; a rule for each triangle by itself leaves the others
// alone and needs no length scale of the mesh.
#ifndef QELM_ROBUST_TRIANGLE_SHAPE_H
#define QELM_ROBUST_TRIANGLE_SHAPE_H

#include <array>

#include "mesh/vec3.h"

namespace qelm {

/// The lowest height, in longest edges. A cap of this height has a cotangent of about
/// -2^24, base angles of 2^25 to 2^26: the square of their ratio to a good triangle's
/// is what the factorisation's 53 bits can still hold.
constexpr double kLeastHeight = 0x1p-26;

/// The same for a triangle whose foot stands this near to an end, as that of a needle
/// does whose short edge has shrunk to a point. All three of its vertices are near a
/// line and two near each other, so it ties those two with the square of what a cap does.
constexpr double kLeastHeightOfNeedle = 0x1p-22;

/// The cotangents of the angles at three corners.
struct Cotangents {
  std::array<double, 3> at;
  bool raised;  ///< whether the triangle was too flat as it was
};

/// Of the triangle p0 p1 p2, finite points. Cotangents are at most 2^26 in size. Three
/// equal points count as an equilateral triangle, two equal ones as an isosceles needle.
/// Exchanging corners exchanges results, bit for bit.
Cotangents cotangentsOf(Vec3 p0, Vec3 p1, Vec3 p2);

/// Whether the triangle p0 p1 p2 is steep: one of its cotangents, or what they would be before
/// the height is raised, is above kSteepCotangent in size. Its angles then go below 1.8 or
/// above 178.2 degrees. Weights round by about 2^-52 of the largest cotangent's square, 2^-42
/// where no triangle is steep. Three equal points are not.
bool isSteep(Vec3 p0, Vec3 p1, Vec3 p2);
constexpr double kSteepCotangent = 0x1p5;

/// Of the triangle whose cotangents are numerators / denominator, where the denominator
/// may be so small that it is too flat.
Cotangents cotangentsOf(const std::array<double, 3>& numerators, double denominator);

}  // namespace qelm

#endif  // QELM_ROBUST_TRIANGLE_SHAPE_H
