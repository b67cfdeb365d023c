// Level curves of a field, joined into polylines.
//
// Marching triangles: a level crosses a triangle in one piece or not at all, since
// a value at the level counts as above it. Crossings are found edge by edge and
// computed once each; the pieces link them; following the links gives the curves.
#ifndef QELM_ISOLINES_CURVES_H
#define QELM_ISOLINES_CURVES_H

#include <cstdint>
#include <span>
#include <vector>

#include "isolines/curve_graph.h"
#include "isolines/curve_trace.h"

namespace qelm {

/// The curves of every distinct level, and which of them each caller's level has.
struct LevelCurves {
  TracedCurves traced;  ///< sorted
  /// For each of the caller's levels, the range of its curves in traced.curves.
  struct Range {
    std::size_t first;
    std::size_t last;
  };
  std::vector<Range> rangeOf;
};

/// Cuts `mesh` at `levels`, which may come in any order, repeat or be NaN.
LevelCurves cutCurves(const FieldOnMesh& mesh, std::span<const double> levels);

}  // namespace qelm

#endif  // QELM_ISOLINES_CURVES_H
