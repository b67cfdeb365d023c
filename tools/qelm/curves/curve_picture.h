// Level curves and the mesh's outline, flattened for a picture.
#ifndef QELM_TOOLS_CURVE_PICTURE_H
#define QELM_TOOLS_CURVE_PICTURE_H

#include <array>
#include <cstddef>
#include <span>
#include <string>
#include <vector>

#include "curves/field_curves.h"
#include "curves/projection.h"
#include "mesh/mesh.h"

namespace qelm::tool {

using PicturePoint = std::array<double, 2>;  ///< x to the right, y down, in pixels

struct Stroke {
  std::vector<PicturePoint> points;
  bool closed = false;
};

struct LevelStrokes {
  std::vector<Stroke> front;   ///< what the mesh does not hide
  std::vector<Stroke> behind;  ///< the rest
};

struct CurvePicture {
  double width, height;
  std::vector<std::vector<LevelStrokes>> fields;  ///< of each field one for each of its levels
  /// Where the mesh ends, and where it turns away from the viewer, in front only.
  std::vector<Stroke> outline;
};

/// In pixels.
struct PictureFrame {
  double mostWidth, mostHeight;
  double scale = 0;  ///< pixels for a unit of the mesh; 0: as large as fits
};

/// Width and height of a mesh as it is seen, in its own units.
PicturePoint extentOf(const Mesh& mesh, const Projection& projection);

CurvePicture drawCurves(const Mesh& mesh, std::span<const FieldCurves> fields,
                        const Projection& projection, const PictureFrame& frame);

}  // namespace qelm::tool

#endif
