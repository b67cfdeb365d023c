// The heat map's colour ramp as a PNG image.
#ifndef QELM_TOOLS_RAMP_IMAGE_H
#define QELM_TOOLS_RAMP_IMAGE_H

#include <string>

namespace qelm::tool {

/// The name that the library writes into material files.
inline constexpr const char* kRampFileName = "viridis.PNG";

// Viewers repeat textures: at u = 0 and u = 1 they mix the first and the last
// column. The wider the image, the narrower the band of values in which that
// shows; at 2048 it is a quarter of a thousandth of the field's range.
inline constexpr int kRampWidth = 2048;

/// The bytes of a PNG image of the viridis ramp, yellow at the left: the heat
/// map's texture coordinate is 0 where the field is largest.
std::string rampImage();

}  // namespace qelm::tool

#endif
