// A surface of two sheets over any set of triangles, on which every edge has two faces.
//
// Sharp and Crane (A Laplacian for nonmanifold triangle meshes, 2020): give each triangle
// a front and a back face, and glue faces along edges as paint would run round them. At an
// edge of one triangle the front goes on as the back, at an edge of two as the front or
// the back of the other, whichever side that is; at an edge of three or more, faces that
// look at each other are glued:
//
//      f2 \  | f1            seen along the edge: the side of f0 that looks up, to f1,
//          \ |               is glued to the side of f1 that looks down, and so on
//           \|_____ f0       round the edge
//
// The result is closed and orientable, so that edges can be flipped on it. An edge both of
// whose ends are prescribed is not glued at all: flips would tear it off the mesh, and a
// prescribed curve would become a row of points.
//
// Where every other edge has two triangles, and each part of the mesh has two sides, the two sheets
// are copies of each other, and one is enough: that on which the first triangle of each part runs
// through its corners in their order.
#ifndef QELM_ROBUST_DOUBLE_COVER_H
#define QELM_ROBUST_DOUBLE_COVER_H

#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

#include "interface/index.h"

namespace qelm {

/// Half-edge 3 f + k of face f leads from its k-th corner to the next one. Faces 0 .. m-1
/// are the triangles' fronts, m .. 2m-1 (with two sheets) their backs, which run through
/// the corners 0, 2, 1. On one sheet a triangle that runs through an edge as its
/// neighbour does is turned: its face runs through the corners 0, 2, 1.
struct DoubleCover {
  using HalfEdge = std::int32_t;
  static constexpr HalfEdge kNone = -1;

  int sheets;                        ///< 1 or 2
  std::vector<std::int32_t> origin;  ///< system vertex where a half-edge starts
  std::vector<HalfEdge> twin;        ///< the same edge in the face beyond it, or kNone
  std::vector<double> cotangent;     ///< of the angle opposite
  std::int64_t raisedTriangles;      ///< those too flat as they were

  std::size_t size() const { return twin.size(); }
  /// Half-edges of the triangles' fronts, which come first.
  HalfEdge fronts() const { return static_cast<HalfEdge>(size() / asIndex(sheets)); }
  /// On two sheets, before any flip: the same side of a triangle on its back.
  HalfEdge back(HalfEdge front) const { return fronts() + 3 * (front / 3) + 2 - front % 3; }
  static HalfEdge next(HalfEdge h) { return h % 3 == 2 ? h - 2 : h + 1; }
  static HalfEdge previous(HalfEdge h) { return h % 3 == 0 ? h + 2 : h - 1; }
};

/// Of a mesh in system order whose vertices 0 .. taggedCount-1 are prescribed: finite
/// coordinates, triangles of three different vertices.
///
/// The result takes 48 bytes for each triangle and sheet; 24 more, and 8 for each vertex,
/// are in use while its edges are found, before half of the result is there. Throws std::bad_alloc
/// above 2^31 / 6 triangles.
DoubleCover coverOf(std::int32_t taggedCount, std::span<const double> coordinates,
                    std::span<const std::int32_t> triangles);

}  // namespace qelm

#endif  // QELM_ROBUST_DOUBLE_COVER_H
