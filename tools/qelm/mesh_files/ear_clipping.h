// Splits polygons into triangles by clipping ears. In: an outline of vertices in space, which may
// be concave, bent, or cross itself. Out: its triangles, and what was wrong with it.
#ifndef QELM_TOOLS_EAR_CLIPPING_H
#define QELM_TOOLS_EAR_CLIPPING_H

#include <array>
#include <span>
#include <vector>

#include "mesh/mesh.h"

namespace qelm::tool {

struct ClippedPolygon {
  std::vector<std::array<int, 3>> triangles;
  bool crossesItself = false;  ///< or folds back: some triangles lie on others
  double bend = 0;  ///< the corners' largest distance from its plane, as a part of its size
};

/// The outline without corners that repeat the one before, and without spikes (a, b, a). What is
/// left of an outline that encloses nothing has fewer than three corners.
std::vector<int> withoutRepeats(std::vector<int> outline);

/// Splits a polygon that names no vertex twice in a row. It may be concave, bent, and name
/// vertices again, as an outline does that goes to a hole and back along one edge. No triangle
/// names a vertex twice.
///
/// Cuts off one ear after the other (Meisters, 1975), in the projection to the polygon's plane: a
/// corner that bends outwards and whose triangle holds no other corner. Of all ears the one whose
/// triangle has the largest smallest angle goes first. A polygon that crosses itself may have no
/// ear; then the corner with the largest angles goes, and the result says so.
///
///   (0, 0) (4, 0) (2, 1) (2, 4): corner 2 bends inwards. Corner 1 with (0, 1, 2) and corner 3
///   with (2, 3, 0) are ears; (3, 0, 1) of corner 0 holds corner 2. Two triangles: (0, 1, 2) (2, 3,
///   0).
///
/// Takes time in proportion to the corners squared.
ClippedPolygon clipEars(std::span<const double> points, std::vector<int> outline);

}  // namespace qelm::tool

#endif
