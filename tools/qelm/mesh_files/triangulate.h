// From what a file holds to a mesh. In: a polygon soup. Out: triangles, and what was split, mended
// or left out.
#ifndef QELM_TOOLS_TRIANGULATE_H
#define QELM_TOOLS_TRIANGULATE_H

#include "mesh/mesh.h"

namespace qelm::tool {

/// How many faces something is true of, and the first of them.
struct FaceCount {
  int count = 0;
  int first = -1;
  void add(int face) {
    if (count++ == 0) first = face;
  }
};

struct Triangulation {
  Mesh mesh;
  int splitFaceCount = 0;    ///< faces that had more than three corners
  FaceCount repeatedCorner;  ///< faces that named a vertex twice in a row, without those left out
  FaceCount leftOut;         ///< faces of fewer than three different corners
  FaceCount crossing;        ///< split, but they cross or touch themselves, or have no area
  FaceCount bent;            ///< split, but a corner is off the face's plane
  double worstBend = 0;      ///< by so much, as a part of the face's size
};

/// Keeps triangles as they are and splits polygons, along the diagonals that leave the largest
/// smallest angle. The triangles of a face follow each other in the face's place.
///
/// Takes every face: corners that repeat the one before are dropped, concave, bent and crossing
/// outlines are split as well as possible (see clipEars()), faces of fewer than three different
/// corners are left out. Takes over the points, the triangles and the attributes. Throws MeshError
/// for a polygon with too many corners, and when no face is left.
Triangulation triangulate(PolygonSoup soup);

/// The same, but throws MeshError for a polygon that is not convex, has no area or names a vertex
/// twice. Triangles that do stay.
Triangulation triangulateStrictly(PolygonSoup soup);

}  // namespace qelm::tool

#endif
