// The viridis colour map.
#ifndef QELM_TOOLS_VIRIDIS_H
#define QELM_TOOLS_VIRIDIS_H

#include <array>
#include <cstdint>

namespace qelm::tool {

using Colour = std::array<std::uint8_t, 3>;  ///< red, green, blue

/// The colour at t from 0 (dark blue) to 1 (yellow), between the published ones
/// by linear interpolation. t must be a number; values outside take an end's colour.
Colour viridis(double t);

}  // namespace qelm::tool

#endif
