// Level curves as a picture.
#ifndef QELM_TOOLS_CURVE_SVG_H
#define QELM_TOOLS_CURVE_SVG_H

#include "colours/caption.h"
#include "colours/colour_scale.h"
#include "curves/curve_set.h"
#include "curves/projection.h"
#include "files/output_file.h"
#include "mesh/mesh.h"

namespace qelm::tool {

struct CurveDrawing {
  const Mesh& mesh;
  const CurveSet& curves;
  const Projection& projection;
  FieldRange range;  ///< the field's
  const ColourScale& colours;
  const Caption& caption;
};

/// An SVG with the curves in their colours on white, what the mesh hides
/// faintly, the mesh's outline in grey, values on the curves and a scale. Every
/// level is a group with its value as data-level, for those who edit it further.
void writeCurvesSvg(const CurveDrawing& drawing, OutputFile& file);

}  // namespace qelm::tool

#endif
