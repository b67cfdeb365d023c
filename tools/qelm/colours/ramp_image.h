// The heat map's colour ramp as a PNG image.
#ifndef QELM_TOOLS_RAMP_IMAGE_H
#define QELM_TOOLS_RAMP_IMAGE_H

#include <string>

#include "colours/ramp.h"

namespace qelm::tool {

/// The bytes of a PNG image of the ramp, the colour of the largest value at the left: the heat
/// map's texture coordinate is 0 there. Of viridis it is the image that packages bring.
std::string rampImage(const Ramp& ramp);

}  // namespace qelm::tool

#endif
