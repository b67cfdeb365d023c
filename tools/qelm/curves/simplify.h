// --simplify: curves with fewer points.
#ifndef QELM_TOOLS_SIMPLIFY_H
#define QELM_TOOLS_SIMPLIFY_H

#include "curves/curve_set.h"

namespace qelm::tool {

/// Drops points that are less than `tolerance` from the polyline that stays. What stays are points
/// of the curves; ends stay, and closed curves stay closed, with three points at least. No curve
/// comes to cross or touch another one, or itself.
///
/// Why not: a curve is cut at knots into pieces, each of which runs on in one direction; so does
/// every simplification of it, which then cannot meet itself. A piece's ends are single segments
/// that never change. Every other segment knows its clearance, the distance to whatever is neither
/// of its own piece nor at its piece's ends. Points between two that stay are dropped only where
/// they are nearer to the segment between these than half the clearance of each segment that it
/// replaces. Two such segments, or anything on the way to them, then lie nearer to their own old
/// places than to each other's.
///
/// Within a piece it is the usual halving at the farthest point (Ramer 1972, Douglas and Peucker
/// 1973). Clearances come from a tree of boxes.
CurveSet simplify(const CurveSet& curves, double tolerance);

}  // namespace qelm::tool

#endif
