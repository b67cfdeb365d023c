// How well the arithmetic of the assembly can handle a triangle.
#ifndef QELM_MESH_QUALITY_H
#define QELM_MESH_QUALITY_H

#include "mesh/vec3.h"

namespace qelm {

struct TriangleShape {
  double longestEdge;  ///< in the unit of the coordinates; infinite if too long for a double
  double quality;      ///< see shapeOf()
};

/// With L the longest edge, h the height on it, M the largest absolute coordinate
/// and W the larger of L and M:
///
///   quality = h * h / (L * W)
///
/// Independent of the unit: coordinates are scaled by powers of two first, so that
/// nothing over- or underflows. 3/4 for an equilateral triangle round the origin, 0
/// for one without area. All coordinates must be finite.
///
/// Why this. The assembly finds the foot of a height in the mesh's own coordinates,
/// with a rounding error of u * W, u = 2^-52. So a hat function's gradient, of
/// length 1 / h, is off by u * W / h of itself. The triangle resists a field that
/// varies along its longest edge with h / L, while the error adds
///
///   area * (u W / h^2)^2 = u^2 * L W^2 / h^3 / 2
///
/// to it. The error stays below what it disturbs where u L W / h^2 < 1, that is
/// where the quality is above u. Solved fields bear this out: on strips of slivers
/// and on grids far from the origin alike their relative error is about u / quality.
TriangleShape shapeOf(Vec3 p0, Vec3 p1, Vec3 p2);

/// Below this a triangle's area counts as near zero. At 2^-44, 256 times the limit
/// above, fields on a mesh of nothing but such triangles still keep two digits. A
/// triangle near the origin gets there when its height is 2^-22, or 2.4e-7, of its
/// longest edge; a well-shaped one when it is 2^-44 as long as it is far away.
constexpr double kLeastQuality = 0x1p-44;

/// Longest edges outside this range are too short or too long for the assembly: it
/// forms the square of L * h. That is at least 1e-240 * 2^-44 and at most 1e240
/// here, far inside the range of a double, to leave room for sums of such terms.
constexpr double kShortestLongestEdge = 1e-60;
constexpr double kLongestLongestEdge = 1e60;

}  // namespace qelm

#endif  // QELM_MESH_QUALITY_H
