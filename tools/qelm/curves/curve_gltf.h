// Level curves as lines of glTF.
#ifndef QELM_TOOLS_CURVE_GLTF_H
#define QELM_TOOLS_CURVE_GLTF_H

#include <cstddef>
#include <span>

#include "curves/field_curves.h"
#include "text/byte_sink.h"

namespace qelm::tool {

/// glTF 2.0, in single precision: a node "level V" for each level that has curves, with V as
/// "level" in its extras, in the level's colour; of several fields the name of the field comes
/// first. `up` is 0, 1 or 2 for x, y or z.
void writeCurvesGltf(std::span<const FieldCurves> fields, std::size_t up, bool isBinary,
                     ByteSink& file);

}  // namespace qelm::tool

#endif
