// The gradient of a field: in which direction it grows, and how steeply.
#ifndef QELM_TOOLS_GRADIENT_H
#define QELM_TOOLS_GRADIENT_H

#include <cstddef>
#include <span>
#include <vector>

#include "mesh/mesh.h"
#include "text/index.h"

namespace qelm::tool {

struct Gradient {
  std::vector<double> ofTriangles;  ///< 3m, packed xyz, in the triangle's plane
  std::vector<double> ofVertices;   ///< 3n: the mean over a vertex's triangles, by their areas
  std::vector<int> withoutArea;     ///< triangles without a gradient, in increasing order

  Point ofTriangle(int t) const { return at(ofTriangles, t); }
  Point ofVertex(int v) const { return at(ofVertices, v); }

 private:
  static Point at(const std::vector<double>& vectors, int k) {
    const std::size_t base = 3 * asIndex(k);
    return {vectors[base], vectors[base + 1], vectors[base + 2]};
  }
};

/// The gradient of the field's linear interpolation, in the field's unit by the mesh's unit of
/// length. A triangle whose area cannot be told from 0 has no gradient (NaN) and takes no part in
/// its corners' means; a vertex with no other triangles has none either. Requires finite
/// coordinates and values.
///
/// On a triangle (a, b, c) with the normal N = (b - a) x (c - a), as long as twice the area,
///
///   grad u = N x ((u_b - u_a) (a - c) + (u_c - u_a) (b - a)) / |N|^2,
///
/// from the gradients of the triangle's hat functions, each at right angles to the edge that faces
/// its corner (Botsch and others, Polygon Mesh Processing, 2010, section 3.3.3). Values are
/// subtracted first, so that the gradient of a constant is exactly 0. The orientation of the
/// triangle makes no difference.
Gradient gradientOf(const Mesh& mesh, std::span<const double> field);

}  // namespace qelm::tool

#endif
