#include "colours/ramp_image.h"

#include <cstddef>
#include <stdexcept>
#include <vector>

// The one file that holds stb_image_write's code.
#define STB_IMAGE_WRITE_IMPLEMENTATION
#define STB_IMAGE_WRITE_STATIC
#define STBI_WRITE_NO_STDIO
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wunused-function"
#pragma GCC diagnostic ignored "-Wmissing-field-initializers"
#include <stb/stb_image_write.h>
#pragma GCC diagnostic pop

#include "text/index.h"

namespace qelm::tool {
namespace {

constexpr int kWidth = kRampWidth;
// High enough to look at; the texture is read along its middle only.
constexpr int kHeight = 64;
constexpr int kChannels = 3;

}  // namespace

std::string rampImage(const Ramp& ramp) {
  std::vector<std::uint8_t> pixels;
  pixels.reserve(asIndex(kWidth) * kHeight * kChannels);
  for (int y = 0; y < kHeight; ++y)
    for (int x = 0; x < kWidth; ++x) {
      const Colour colour = ramp(1.0 - static_cast<double>(x) / (kWidth - 1));
      pixels.insert(pixels.end(), colour.begin(), colour.end());
    }
  std::string png;
  const auto append = [](void* context, void* data, int size) {
    static_cast<std::string*>(context)->append(static_cast<const char*>(data), asIndex(size));
  };
  if (stbi_write_png_to_func(append, &png, kWidth, kHeight, kChannels, pixels.data(),
                             kWidth * kChannels) == 0)
    throw std::runtime_error("the ramp image cannot be made");
  return png;
}

}  // namespace qelm::tool
