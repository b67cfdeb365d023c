// --through: the value of a field at the point of the surface that is nearest to another.
#ifndef QELM_TOOLS_THROUGH_H
#define QELM_TOOLS_THROUGH_H

#include <span>

#include "mesh/mesh.h"

namespace qelm::tool {

struct PointOnMesh {
  double distance;  ///< from the given point
  double value;     ///< linear between the triangle's corners
};

/// The point of the surface that is nearest to `point`; of equally near ones that of the first
/// triangle. Looks at every triangle. Requires finite coordinates and a triangle.
PointOnMesh nearestOnMesh(const Mesh& mesh, std::span<const double> field, const Point& point);

}  // namespace qelm::tool

#endif
