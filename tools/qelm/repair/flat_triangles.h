// Flat triangles, removed without opening a hole.
//
// A needle has one short edge, of at most twice the tolerance: the edge collapses. Any other flat
// triangle is a cap: its corner c lies on its longest edge ab. Every other triangle (a, b, d) at
// that edge is split at c into (a, c, d) and (c, b, d), and the cap goes. Where triangles met at
// ab they meet at ac and cb now. No vertex moves by more than twice the tolerance.
//
//          needle                       cap
//       a                      a---c---b        a---c---b
//       |`--..__                \     /          \  |  /      (0, 1, 2) and (1, 0, 3) become
//       b------- c  ->  a---c    \   /    ->      \ | /       (2, 0, 3) and (1, 2, 3), with
//                                  d                d         a, b, c, d = 0, 1, 2, 3
//
// A split may make new flat triangles. The one with the longest edge comes first, so that new ones
// have shorter edges and the chain ends. Takes a few steps for each flat triangle.
#ifndef QELM_TOOLS_FLAT_TRIANGLES_H
#define QELM_TOOLS_FLAT_TRIANGLES_H

#include "mesh/mesh.h"

namespace qelm::tool {

struct FlatRemoval {
  int collapsedEdges = 0;  ///< of needles
  int splitSides = 0;      ///< of caps: edges at which the neighbours were split
  int left = 0;            ///< flat triangles that could not be removed
};

/// Removes the triangles that are lower than `tolerance`, or than heightNoise(). A collapsed edge
/// becomes its end with the lower number.
FlatRemoval removeFlatTriangles(Mesh& mesh, double tolerance);

}  // namespace qelm::tool

#endif
