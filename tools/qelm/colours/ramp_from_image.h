// Colour ramps from images.
#ifndef QELM_TOOLS_RAMP_FROM_IMAGE_H
#define QELM_TOOLS_RAMP_FROM_IMAGE_H

#include <string>
#include <string_view>

#include "colours/ramp.h"

namespace qelm::tool {

/// The ramp of a PNG image's bytes, along the middle of its longer side, where the colour of the
/// largest value comes first: at the left or, of an image that is higher than wide, at the top.
/// `name` is for messages. Throws FileError.
Ramp rampOfImage(std::string_view bytes, const std::string& name);

}  // namespace qelm::tool

#endif
