// The gradient of a field: in which direction it grows, and how steeply.
#ifndef QELM_TOOLS_GRADIENT_H
#define QELM_TOOLS_GRADIENT_H

#include <cstddef>
#include <span>
#include <vector>

#include "mesh/mesh.h"

namespace qelm::tool {

struct Gradient {
  std::vector<double> ofTriangles;  ///< 3m, packed xyz, in the triangle's plane
  std::vector<double> ofVertices;   ///< 3n: the mean over a vertex's triangles, by their areas
  std::vector<int> withoutArea;     ///< triangles that have none, in increasing order

  Point ofTriangle(int t) const { return at(ofTriangles, t); }
  Point ofVertex(int v) const { return at(ofVertices, v); }

 private:
  static Point at(const std::vector<double>& vectors, int k) {
    const auto base = 3 * static_cast<std::size_t>(k);
    return {vectors[base], vectors[base + 1], vectors[base + 2]};
  }
};

/// Of the field's linear interpolation, in the field's unit by the mesh's unit of length. A
/// triangle whose area cannot be told from 0 has no gradient, which is not a number here, and takes
/// no part in its corners' means; nor has a vertex all of whose triangles are such. Requires finite
/// coordinates and values.
///
/// On a triangle (a, b, c) with the normal N = (b - a) x (c - a), as long as twice the area,
///
///   grad u = N x ((u_b - u_a) (a - c) + (u_c - u_a) (b - a)) / |N|^2,
///
/// from the gradients of its hat functions, each across the side that faces its corner (Botsch and
/// others, Polygon Mesh Processing, 2010, section 3.3.3). Differences of values first: the gradient
/// of a constant is 0, exactly. Which way round the corners are makes no difference.
Gradient gradientOf(const Mesh& mesh, std::span<const double> field);

}  // namespace qelm::tool

#endif
