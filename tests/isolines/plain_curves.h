// A slow, plain way to level curves: every triangle marched on its own, segments
// joined through maps keyed by edges.
#ifndef QELM_TESTS_ISOLINES_PLAIN_CURVES_H
#define QELM_TESTS_ISOLINES_PLAIN_CURVES_H

#include <cstdint>
#include <map>
#include <string>
#include <utility>
#include <vector>

#include "isolines/curves_of.h"
#include "support/meshes.h"

namespace qelm::test {

using EdgeKey = std::pair<std::int32_t, std::int32_t>;  ///< smaller vertex first

/// Triangles at every edge, those with a NaN corner not counted.
std::map<EdgeKey, int> edgeUses(const Mesh& mesh, const Field& field);

/// One triangle's segment of a level's curve, higher values at the left.
struct TriangleSegment {
  int triangle;
  Coordinates from;
  Coordinates to;
  EdgeKey fromEdge;
  EdgeKey toEdge;
  int fromVertex;  ///< the end of fromEdge at which `from` lies, or -1
  int toVertex;
};

/// All segments, those of length zero included.
std::vector<TriangleSegment> marchTriangles(const Mesh& mesh, const Field& field, double level);

/// What must be left of the segments: none of length zero, and none along an edge of
/// two triangles that has segments from both.
std::vector<TriangleSegment> remainingSegments(const Mesh& mesh, const Field& field, double level);

/// The curves of a field that has no value at or next to a level, in their order.
Polylines plainCurves(const Mesh& mesh, const Field& field, const std::vector<double>& levels);

/// A word on the first thing that is wrong with curves that are simple, end where
/// curves may end, and come in their order; empty if nothing is. Vertices of the
/// mesh must lie at different points.
std::string flawIn(const Polylines& lines, const Mesh& mesh, const Field& field,
                   const std::vector<double>& levels);

/// A word on the first segment that is there twice at one level, in one or in both
/// directions; empty if none is.
std::string repetitionIn(const Polylines& lines);

/// Compares the segments of lines of one level with the remaining ones of the mesh;
/// with their directions, or if those do not agree, without. Segments that lead there
/// and back enclose nothing and are left aside, and so are those along edges of more
/// than two triangles.
std::string differenceInSegments(const Polylines& lines, int levelIndex, const Mesh& mesh,
                                 const Field& field, double level, bool directed);

}  // namespace qelm::test

#endif  // QELM_TESTS_ISOLINES_PLAIN_CURVES_H
