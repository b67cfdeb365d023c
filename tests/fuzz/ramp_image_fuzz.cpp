// Any bytes as a ramp's image: colours or a FileError.
#include <cstddef>
#include <cstdint>

#include "colours/ramp_from_image.h"
#include "fuzz/require.h"
#include "text/error.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  try {
    const qelm::tool::Ramp ramp =
        qelm::tool::rampOfImage({reinterpret_cast<const char*>(data), size}, "ramp.png");
    qelm::fuzz::require(ramp.reversed()(0) == ramp(1));
  } catch (const qelm::tool::FileError&) {
  }
  return 0;
}
