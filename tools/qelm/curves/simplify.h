// --simplify: curves with fewer points, of which none comes to cross or touch another one or
// itself.
//
// A curve is cut at knots into pieces, each of which runs on in one direction:
//
//      _,--._         from a to b, and from b to c. Chords between points of a piece run on in its
//   a-'      `b       direction as well: a simplified piece cannot meet itself.
//         c--'
//
// The single segments at both ends of a piece never change. Every segment between them has a
// clearance: its distance to whatever is neither in its own piece nor at its piece's ends, from a
// tree of boxes. Within a piece the farthest point from the chord is kept and both halves go on so
// (Ramer 1972, Douglas and Peucker 1973), but points are dropped only if all are nearer to their
// chord than the tolerance, and than half the clearance of each segment that the chord replaces.
// So a chord stays nearer to its own old segments than to anybody else's, and no two chords meet.
//
// Takes n log n steps for n points, unless curves run so close that the tree is of no use.
#ifndef QELM_TOOLS_SIMPLIFY_H
#define QELM_TOOLS_SIMPLIFY_H

#include "curves/curve_set.h"

namespace qelm::tool {

/// Drops points that are less than `tolerance` from the polyline that stays. What stays are points
/// of the curves; ends stay, and closed curves stay closed, with three points at least.
CurveSet simplify(const CurveSet& curves, double tolerance);

}  // namespace qelm::tool

#endif
