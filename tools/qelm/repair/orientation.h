// Neighbouring triangles are made counter-clockwise as seen from the same side.
//
// Two triangles are oriented alike when they run along their common edge in opposite directions.
// A breadth-first walk over the edges of exactly two triangles gives every triangle of a piece the
// orientation of its first one; then the smaller part is turned over. Where a walk meets a
// triangle that has another orientation already, as on a Moebius strip, the edge stays opposed.
#ifndef QELM_TOOLS_ORIENTATION_H
#define QELM_TOOLS_ORIENTATION_H

#include "mesh/mesh.h"

namespace qelm::tool {

struct Orientation {
  int turned = 0;   ///< triangles that were turned over
  int opposed = 0;  ///< edges whose two triangles cannot agree, as on a Moebius strip
};

/// Of each piece that edges of exactly two triangles join, the smaller part is turned; of equal
/// ones the part without the lowest triangle.
Orientation orientAlike(Mesh& mesh);

}  // namespace qelm::tool

#endif
