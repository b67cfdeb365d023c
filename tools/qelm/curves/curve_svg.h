// Level curves as a picture.
#ifndef QELM_TOOLS_CURVE_SVG_H
#define QELM_TOOLS_CURVE_SVG_H

#include <optional>
#include <span>

#include "colours/caption.h"
#include "curves/field_curves.h"
#include "curves/projection.h"
#include "curves/sheet.h"
#include "mesh/mesh.h"
#include "text/byte_sink.h"

namespace qelm::tool {

struct CurveDrawing {
  const Mesh& mesh;
  std::span<const FieldCurves> fields;
  const Projection& projection;
  const Caption& caption;
  const std::optional<SheetChoice>& sheet;  ///< none: as large as a screen shows well
};

/// An SVG with the curves in their colours on white, what the mesh hides
/// faintly, the mesh's outline in grey, values on the curves and a scale. Every
/// level is a group with its value as data-level, for those who edit it further; of several fields
/// each is a group with its name as data-field and its lines are dashed in their own way. On a
/// sheet sizes are in millimetres, and a bar shows a length. Throws RequestError where the drawing
/// does not fit on its paper.
void writeCurvesSvg(const CurveDrawing& drawing, ByteSink& file);

}  // namespace qelm::tool

#endif
