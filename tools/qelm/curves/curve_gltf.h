// Level curves as lines of glTF.
#ifndef QELM_TOOLS_CURVE_GLTF_H
#define QELM_TOOLS_CURVE_GLTF_H

#include <cstddef>

#include "curves/curve_set.h"
#include "text/byte_sink.h"

namespace qelm::tool {

/// glTF 2.0, in single precision: a node "level V" for each level that has curves, with V as
/// "level" in its extras, in the level's colour of viridis over `low` to `high`. `up` is 0, 1 or 2
/// for x, y or z.
void writeCurvesGltf(const CurveSet& curves, double low, double high, std::size_t up, bool isBinary,
                     ByteSink& file);

}  // namespace qelm::tool

#endif
