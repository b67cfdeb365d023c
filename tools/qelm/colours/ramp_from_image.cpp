#include "colours/ramp_from_image.h"

#include <fmt/format.h>

#include <cstddef>
#include <memory>

#include "text/error.h"
#include "text/index.h"

// The one file that holds stb_image's code: PNG alone, from memory, and no larger than here.
#define STB_IMAGE_IMPLEMENTATION
#define STB_IMAGE_STATIC
#define STBI_ONLY_PNG
#define STBI_NO_STDIO
#define STBI_NO_LINEAR
#define STBI_NO_HDR
#define STBI_NO_FAILURE_STRINGS
#define STBI_MAX_DIMENSIONS 8192
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wunused-function"
#pragma GCC diagnostic ignored "-Wunused-but-set-variable"
#pragma GCC diagnostic ignored "-Wconversion"
#pragma GCC diagnostic ignored "-Wsign-conversion"
#pragma GCC diagnostic ignored "-Wmissing-field-initializers"
#include <stb/stb_image.h>
#pragma GCC diagnostic pop

namespace qelm::tool {
namespace {

// A ramp is some thousand pixels wide and compresses well. A hostile file, packed a thousand times
// smaller than its image, then takes some 250 MB at most.
constexpr int kMostPixels = 1 << 20;
constexpr std::size_t kMostBytes = 256 << 10;

[[noreturn]] void failImage(const std::string& name, const char* what) {
  throw FileError(fmt::format("{}: {}", name, what));
}

/// Whether all chunks up to the end chunk are in the file in full, and no data chunk is empty. The
/// decoder takes memory for chunks without looking.
bool hasItsChunks(std::string_view bytes) {
  constexpr std::size_t kSignature = 8;
  constexpr std::size_t kAround = 12;  // a chunk's length, name and check sum
  if (bytes.size() < kSignature) return false;
  bytes.remove_prefix(kSignature);
  while (bytes.size() >= kAround) {
    if (bytes.substr(4, 4) == "IEND") return true;
    std::size_t size = kAround;
    for (std::size_t k = 0; k < 4; ++k)
      size += std::size_t{static_cast<unsigned char>(bytes[k])} << (8 * (3 - k));
    const bool isEmptyData = size == kAround && bytes.substr(4, 4) == "IDAT";
    if (size > bytes.size() || isEmptyData) return false;
    bytes.remove_prefix(size);
  }
  return false;
}

struct FreePixels {
  void operator()(unsigned char* pixels) const { stbi_image_free(pixels); }
};

}  // namespace

Ramp rampOfImage(std::string_view bytes, const std::string& name) {
  if (bytes.size() > kMostBytes) failImage(name, "too large for a ramp of colours");
  const auto* const raw = reinterpret_cast<const unsigned char*>(bytes.data());
  const int size = asInt(bytes.size());
  int width = 0;
  int height = 0;
  int channels = 0;
  // A small file may announce a large image, so its size is looked at before anything is decoded.
  if (!hasItsChunks(bytes) || stbi_info_from_memory(raw, size, &width, &height, &channels) == 0)
    failImage(name, "not a PNG image, or a damaged one");
  if (width > kMostPixels / height) failImage(name, "too large for a ramp of colours");
  constexpr int kRgb = 3;
  const std::unique_ptr<unsigned char, FreePixels> pixels(
      stbi_load_from_memory(raw, size, &width, &height, &channels, kRgb));
  if (pixels == nullptr) failImage(name, "not a PNG image, or a damaged one");
  const bool isUpright = height > width;
  const int count = isUpright ? height : width;
  if (count < 2) failImage(name, "two colours at least make a ramp");
  std::vector<Colour> colours;
  for (int k = count - 1; k >= 0; --k) {  // the image begins with the largest value
    const int x = isUpright ? width / 2 : k;
    const int y = isUpright ? k : height / 2;
    const unsigned char* const pixel =
        pixels.get() + kRgb * (asIndex(y) * asIndex(width) + asIndex(x));
    colours.push_back({pixel[0], pixel[1], pixel[2]});
  }
  return {std::move(colours), ""};
}

}  // namespace qelm::tool
