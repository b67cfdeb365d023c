// Level curves and the mesh's outline, projected onto a picture.
//
// The mesh is projected and drawn into a depth image. Every curve, and every edge of the outline
// (boundary edges and silhouette edges), is cut into strokes wherever it passes behind the mesh or
// comes to the front again.
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
  std::vector<std::vector<LevelStrokes>> fields;  ///< for each field, for each of its levels
  std::vector<Stroke> outline;                    ///< boundary and silhouette, in front only
};

/// In pixels.
struct PictureFrame {
  double mostWidth, mostHeight;
  double scale = 0;  ///< pixels for a unit of the mesh; 0: as large as fits
};

/// Width and height of the projected mesh, in the mesh's unit.
PicturePoint extentOf(const Mesh& mesh, const Projection& projection);

CurvePicture drawCurves(const Mesh& mesh, std::span<const FieldCurves> fields,
                        const Projection& projection, const PictureFrame& frame);

}  // namespace qelm::tool

#endif
