// Level curves as VTK's polylines.
#ifndef QELM_TOOLS_CURVE_VTP_H
#define QELM_TOOLS_CURVE_VTP_H

#include "curves/curve_set.h"
#include "text/byte_sink.h"

namespace qelm::tool {

/// PolyData (.vtp): a line for each curve, with its level as cell data "level"; closed curves
/// come back to their first point.
void writeCurvesVtp(const CurveSet& curves, ByteSink& file);

}  // namespace qelm::tool

#endif
