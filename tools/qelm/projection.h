// Looking at a mesh along a direction: where its points are on paper.
#ifndef QELM_TOOLS_PROJECTION_H
#define QELM_TOOLS_PROJECTION_H

#include <array>
#include <string>

#include "mesh.h"

namespace qelm::tool {

/// Orthogonal. x to the right, y upwards, both in the unit of the mesh.
struct Projection {
  Point right, up;

  std::array<double, 2> operator()(const Point& p) const;
};

/// From a word: "x", "y", "z" look from the positive end of an axis towards the
/// origin, "-x", "-y", "-z" from the negative end, with z upwards, or y where z is the
/// axis; "plane" looks at right angles at the plane that fits the vertices best
/// (least squares), from the side from which most of the surface is seen to be
/// counter-clockwise. Throws UsageError that quotes the word.
Projection projectionOf(const std::string& word, const Mesh& mesh);

}  // namespace qelm::tool

#endif
