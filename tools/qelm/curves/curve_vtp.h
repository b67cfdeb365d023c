// Level curves as VTK's polylines.
#ifndef QELM_TOOLS_CURVE_VTP_H
#define QELM_TOOLS_CURVE_VTP_H

#include <span>

#include "curves/field_curves.h"
#include "text/byte_sink.h"

namespace qelm::tool {

/// PolyData (.vtp): a line for each curve, with its level as cell data "level" and, of several
/// fields, the field's number, from 0, as "field"; closed curves come back to their first point.
void writeCurvesVtp(std::span<const FieldCurves> fields, ByteSink& file);

}  // namespace qelm::tool

#endif
