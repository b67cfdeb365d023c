// Level curves for drawing programs.
#ifndef QELM_TOOLS_CURVE_DXF_H
#define QELM_TOOLS_CURVE_DXF_H

#include <span>

#include "curves/field_curves.h"
#include "text/byte_sink.h"

namespace qelm::tool {

/// DXF of release 12 (AC1009), which every such program reads. For each level V a layer LEVEL_V,
/// coloured from blue to yellow; on it a 3D polyline for each curve, closed ones closed, and beside
/// its middle V as a text at that height. As release 12 takes letters, digits, $, - and _ alone
/// in names, the layer's has P for the point of V: LEVEL_0P25; of several fields FIELD1_LEVEL_0P25
/// and so on, from 0. Coordinates have the shortest digits that read back as the same doubles.
void writeCurvesDxf(std::span<const FieldCurves> fields, ByteSink& file);

}  // namespace qelm::tool

#endif
