#include "encodings/inflate.h"

#include <zlib.h>

#include <algorithm>
#include <limits>

namespace qelm::tool {
namespace {

// No byte stands for more: 258 bytes for each two bits (RFC 1951).
constexpr std::size_t kMostPerByte = 1032;

constexpr std::size_t kMostAtOnce = std::numeric_limits<uInt>::max();

uInt part(std::size_t size) { return static_cast<uInt>(std::min(size, kMostAtOnce)); }

class Stream {
 public:
  explicit Stream(Wrapping wrapping) {
    constexpr int kWindow = MAX_WBITS;
    isOpen_ = inflateInit2(&z_, wrapping == Wrapping::kZlib ? kWindow : -kWindow) == Z_OK;
  }
  ~Stream() {
    if (isOpen_) inflateEnd(&z_);
  }
  Stream(const Stream&) = delete;
  Stream& operator=(const Stream&) = delete;

  bool run(std::string_view from, char* to, std::size_t size) {
    const char* const end = from.data() + from.size();
    char* const toEnd = to + size;
    int state = isOpen_ ? Z_OK : Z_MEM_ERROR;
    // zlib only reads its input, whatever the type says.
    z_.next_in = reinterpret_cast<Bytef*>(const_cast<char*>(from.data()));
    z_.next_out = reinterpret_cast<Bytef*>(to);
    while (state == Z_OK) {
      z_.avail_in = part(static_cast<std::size_t>(end - reinterpret_cast<char*>(z_.next_in)));
      z_.avail_out = part(static_cast<std::size_t>(toEnd - reinterpret_cast<char*>(z_.next_out)));
      state = ::inflate(&z_, Z_NO_FLUSH);
    }
    return state == Z_STREAM_END && reinterpret_cast<char*>(z_.next_out) == toEnd;
  }

 private:
  z_stream z_{};
  bool isOpen_ = false;
};

}  // namespace

bool inflate(std::string_view compressed, Wrapping wrapping, std::size_t size, std::string& bytes) {
  if (size / kMostPerByte > compressed.size()) return false;
  const std::size_t begin = bytes.size();
  bytes.resize(begin + size);
  return Stream(wrapping).run(compressed, bytes.data() + begin, size);
}

unsigned long crc32Of(std::string_view bytes) {
  uLong sum = crc32(0, nullptr, 0);
  while (!bytes.empty()) {
    const uInt size = part(bytes.size());
    sum = crc32(sum, reinterpret_cast<const Bytef*>(bytes.data()), size);
    bytes.remove_prefix(size);
  }
  return sum;
}

}  // namespace qelm::tool
