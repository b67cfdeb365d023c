// Level curves and the mesh's outline, flattened for a picture.
#ifndef QELM_TOOLS_CURVE_PICTURE_H
#define QELM_TOOLS_CURVE_PICTURE_H

#include <array>
#include <cstddef>
#include <string>
#include <vector>

#include "curves/curve_set.h"
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
  std::vector<LevelStrokes> levels;  ///< one for each of the curves' levels
  /// Where the mesh ends, and where it turns away from the viewer, in front only.
  std::vector<Stroke> outline;
};

/// Fits the mesh into a box of at most these sides, in pixels.
CurvePicture drawCurves(const Mesh& mesh, const CurveSet& curves, const Projection& projection,
                        double mostWidth, double mostHeight);

}  // namespace qelm::tool

#endif
