// The heat map's colour ramp as a PNG image.
#ifndef QELM_TOOLS_RAMP_IMAGE_H
#define QELM_TOOLS_RAMP_IMAGE_H

#include <string>

#include "colours/ramp.h"

namespace qelm::tool {

// Viewers repeat textures: at u = 0 and u = 1 they mix the first and the last column. The wider the
// image, the narrower the band of values in which that shows: a quarter of a thousandth of the
// field's range at 2048.
inline constexpr int kRampWidth = 2048;

/// The bytes of a PNG image of the ramp, the colour of the largest value at the left: the heat
/// map's texture coordinate is 0 there. Of viridis it is the image that packages bring.
std::string rampImage(const Ramp& ramp);

}  // namespace qelm::tool

#endif
