// Neighbours that are counter-clockwise seen from the same side.
#ifndef QELM_TOOLS_ORIENTATION_H
#define QELM_TOOLS_ORIENTATION_H

#include "mesh/mesh.h"

namespace qelm::tool {

struct Orientation {
  int turned = 0;   ///< triangles that were turned over
  int opposed = 0;  ///< sides whose two triangles cannot agree, as on a Moebius strip
};

/// Turns triangles over until the two at every side that has exactly two run along it in opposite
/// directions, wherever that is possible. Of each piece that is joined by such sides the smaller
/// part is turned; of equal ones the part without the lowest triangle.
Orientation orientAlike(Mesh& mesh);

}  // namespace qelm::tool

#endif
