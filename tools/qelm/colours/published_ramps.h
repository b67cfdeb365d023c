// Colour ramps that others have published.
#ifndef QELM_TOOLS_PUBLISHED_RAMPS_H
#define QELM_TOOLS_PUBLISHED_RAMPS_H

#include <array>
#include <cstdint>
#include <string_view>

namespace qelm::tool {

using RampTable = std::array<std::uint32_t, 256>;  ///< 0xRRGGBB, of the smallest value first

/// viridis, magma, cividis, turbo or coolwarm; null of any other name.
const RampTable* publishedRamp(std::string_view name);

}  // namespace qelm::tool

#endif
