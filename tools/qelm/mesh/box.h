// Boxes along the axes.
#ifndef QELM_TOOLS_BOX_H
#define QELM_TOOLS_BOX_H

#include <algorithm>
#include <cstddef>
#include <limits>

#include "mesh/mesh.h"
#include "mesh/vec3.h"
#include "text/index.h"

namespace qelm::tool {

/// Empty unless corners are given: low is then above high.
struct Box {
  static constexpr double kInfinity = std::numeric_limits<double>::infinity();
  Point low = {kInfinity, kInfinity, kInfinity};
  Point high = {-kInfinity, -kInfinity, -kInfinity};

  /// Makes the box as large as the point needs.
  void add(const Point& point) {
    for (std::size_t axis = 0; axis < 3; ++axis) {
      low[axis] = std::min(low[axis], point[axis]);
      high[axis] = std::max(high[axis], point[axis]);
    }
  }

  Point size() const { return high - low; }

  std::size_t longestAxis() const {
    const Point sides = size();
    return asIndex(std::max_element(sides.begin(), sides.end()) - sides.begin());
  }
};

/// The bounding box of all vertices, also of those in no triangle.
inline Box boxOf(const Mesh& mesh) {
  Box box{mesh.point(0), mesh.point(0)};
  for (int v = 1; v < mesh.vertexCount(); ++v) box.add(mesh.point(v));
  return box;
}

}  // namespace qelm::tool

#endif
