// A mesh that can be solved on, from one that cannot.
#ifndef QELM_TOOLS_REPAIR_H
#define QELM_TOOLS_REPAIR_H

#include "mesh/mesh.h"
#include "repair/flat_triangles.h"
#include "repair/orientation.h"

namespace qelm::tool {

struct Repaired {
  Mesh mesh;
  int mergedVertices = 0;  ///< with another one within the tolerance
  int joints = 0;          ///< vertices set into sides that pass them
  FlatRemoval flat;
  int droppedTriangles = 0;  ///< collapsed by welding, or the same as an earlier one
  int unusedVertices = 0;    ///< dropped
  Orientation orientation;
};

/// Welds within `tolerance`, removes triangles lower than that, sets vertices into sides that they
/// lie on, drops repeated triangles and unused vertices, orients neighbours alike. No vertex moves
/// by more than a few tolerances. Throws InputError for coordinates that are not finite, or when
/// nothing is left.
Repaired repair(const Mesh& mesh, double tolerance);

}  // namespace qelm::tool

#endif
