// Level curves: the level sets of a field on a mesh, as polylines.
//
// In: a mesh, a value at each vertex, levels. Out: for each level its level curves, open or closed.
// Marching triangles: a value at the level counts as above it, so that a level crosses a triangle
// in one segment or not at all. Each crossing of an edge is computed once and becomes a node of a
// graph; the segments link the nodes; following the links gives the curves.
//
//   c 1 ---0--- b 3             level 2 crosses cb, ab, ad: nodes 0, 1, 2
//    .       .   .
//      .   1       .            segments in the triangles: 0-1 in abc, 1-2 in adb
//       .            .
//        a 1 ---2--- d 3        level curve: 0, 1, 2
//
// Cost: linear in the triangles and the crossings, and sorting the curves. (Lorensen and Cline,
// Marching cubes, SIGGRAPH 1987, in three dimensions.)
#ifndef QELM_ISOLINES_CURVES_H
#define QELM_ISOLINES_CURVES_H

#include <cstdint>
#include <span>
#include <vector>

#include "isolines/curve_graph.h"
#include "isolines/curve_trace.h"

namespace qelm {

/// The curves of every distinct level, and which of them belong to each of the caller's levels.
struct LevelCurves {
  TracedCurves traced;  ///< sorted
  /// Curves first .. last-1 of traced.curves.
  struct Range {
    std::size_t first;
    std::size_t last;
  };
  std::vector<Range> rangeOf;  ///< for each of the caller's levels
};

/// Cuts `mesh` at `levels`, which may come in any order, repeat or be NaN.
LevelCurves cutCurves(const FieldOnMesh& mesh, std::span<const double> levels);

}  // namespace qelm

#endif  // QELM_ISOLINES_CURVES_H
