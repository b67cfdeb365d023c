#include "encodings/inflate.h"

#ifdef QELM_HAS_LIBDEFLATE
#include <libdeflate.h>
#else
#include <zlib.h>
#endif

#include <algorithm>
#include <limits>
#include <memory>

namespace qelm::tool {
namespace {

// No byte stands for more: 258 bytes for each two bits (RFC 1951).
constexpr std::size_t kMostPerByte = 1032;

#ifdef QELM_HAS_LIBDEFLATE
/// Whether `from` stands for exactly `size` bytes, which are at `to` then.
bool inflateTo(std::string_view from, Wrapping wrapping, char* to, std::size_t size) {
  const std::unique_ptr<libdeflate_decompressor, decltype(&libdeflate_free_decompressor)> state(
      libdeflate_alloc_decompressor(), &libdeflate_free_decompressor);
  if (!state) return false;
  const auto run =
      wrapping == Wrapping::kZlib ? libdeflate_zlib_decompress : libdeflate_deflate_decompress;
  return run(state.get(), from.data(), from.size(), to, size, nullptr) == LIBDEFLATE_SUCCESS;
}
#else
constexpr std::size_t kMostAtOnce = std::numeric_limits<uInt>::max();

uInt part(std::size_t size) { return static_cast<uInt>(std::min(size, kMostAtOnce)); }

/// Whether `from` stands for exactly `size` bytes, which are at `to` then.
bool inflateTo(std::string_view from, Wrapping wrapping, char* to, std::size_t size) {
  z_stream z{};
  if (inflateInit2(&z, wrapping == Wrapping::kZlib ? MAX_WBITS : -MAX_WBITS) != Z_OK) return false;
  const std::unique_ptr<z_stream, decltype(&inflateEnd)> open(&z, &inflateEnd);
  const char* const end = from.data() + from.size();
  char* const toEnd = to + size;
  // zlib only reads its input, whatever the type says.
  z.next_in = reinterpret_cast<Bytef*>(const_cast<char*>(from.data()));
  z.next_out = reinterpret_cast<Bytef*>(to);
  int state = Z_OK;
  while (state == Z_OK) {
    z.avail_in = part(static_cast<std::size_t>(end - reinterpret_cast<char*>(z.next_in)));
    z.avail_out = part(static_cast<std::size_t>(toEnd - reinterpret_cast<char*>(z.next_out)));
    state = ::inflate(&z, Z_NO_FLUSH);
  }
  return state == Z_STREAM_END && reinterpret_cast<char*>(z.next_out) == toEnd;
}
#endif

}  // namespace

bool inflate(std::string_view compressed, Wrapping wrapping, std::size_t size, std::string& bytes) {
  if (size / kMostPerByte > compressed.size()) return false;
  const std::size_t begin = bytes.size();
  bytes.resize(begin + size);
  return inflateTo(compressed, wrapping, bytes.data() + begin, size);
}

#ifdef QELM_HAS_LIBDEFLATE
std::uint32_t crc32Of(std::string_view bytes) {
  return libdeflate_crc32(0, bytes.data(), bytes.size());
}
#else
std::uint32_t crc32Of(std::string_view bytes) {
  uLong sum = crc32(0, nullptr, 0);
  while (!bytes.empty()) {
    const uInt size = part(bytes.size());
    sum = crc32(sum, reinterpret_cast<const Bytef*>(bytes.data()), size);
    bytes.remove_prefix(size);
  }
  return static_cast<std::uint32_t>(sum);
}
#endif

}  // namespace qelm::tool
