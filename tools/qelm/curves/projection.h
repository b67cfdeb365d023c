// From where a picture looks at a mesh.
#ifndef QELM_TOOLS_PROJECTION_H
#define QELM_TOOLS_PROJECTION_H

#include <cstddef>
#include <optional>
#include <string>

#include "mesh/mesh.h"
#include "mesh/vec3.h"

namespace qelm::tool {

/// A parallel projection: to the right, up, and towards the viewer, each of length 1.
struct Projection {
  Point right, up, toward;
  std::string description;  ///< "seen from +z"

  Point operator()(const Point& p) const { return {dot(p, right), dot(p, up), dot(p, toward)}; }
};

/// What --view says: an axis, a direction, or nothing for the best plane.
struct ViewChoice {
  std::optional<Point> direction;
  std::string text;
};

/// "best", "x", "-y" and so on, or "X,Y,Z". Throws UsageError that quotes `text`.
ViewChoice parseView(const std::string& text);

/// Towards the viewer along the choice's direction or, for the best plane, across
/// the plane that fits the vertices best (least squares): from above rather than
/// from below, from the front rather than from behind. The axis `upAxis` (0, 1, 2) points up in
/// the picture, or what is behind where the viewer looks along it. The front is at -y when z
/// is up, at +z when y is, at -z when x is. Requires finite coordinates.
Projection projectionFor(const ViewChoice& choice, const Mesh& mesh, std::size_t upAxis);

}  // namespace qelm::tool

#endif
