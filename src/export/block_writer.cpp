#include "export/block_writer.h"

#include <algorithm>
#include <charconv>
#include <cmath>

namespace qelm {
namespace {

// Large enough that the system calls vanish beside the formatting, small enough to
// stay in the processor's cache.
constexpr std::size_t kBlockSize = 64 * 1024;

// "-1.23457e-308" has 13 characters, "-2147483648" has 11.
constexpr std::size_t kLongestNumber = 16;

/// Streams write NaN as the C library does, which differs between platforms:
/// glibc shows the sign, the Windows runtime does not.
std::string_view nanText(double number) {
#ifdef _WIN32
  static_cast<void>(number);
  return "nan";
#else
  return std::signbit(number) ? "-nan" : "nan";
#endif
}

}  // namespace

BlockWriter::BlockWriter(std::ostream& out) : out_(out), block_(kBlockSize) {}

char* BlockWriter::roomFor(std::size_t length) {
  if (block_.size() - used_ < length) finish();
  return block_.data() + used_;
}

BlockWriter& BlockWriter::operator<<(std::string_view text) {
  while (!text.empty()) {
    char* const room = roomFor(1);
    const std::size_t count = std::min(text.size(), block_.size() - used_);
    std::copy_n(text.data(), count, room);
    used_ += count;
    text.remove_prefix(count);
  }
  return *this;
}

BlockWriter& BlockWriter::operator<<(char character) {
  *roomFor(1) = character;
  ++used_;
  return *this;
}

// "%g" is what to_chars calls general with a precision, digit for digit.
BlockWriter& BlockWriter::operator<<(double number) {
  if (std::isnan(number)) return *this << nanText(number);
  char* const room = roomFor(kLongestNumber);
  char* const end =
      std::to_chars(room, room + kLongestNumber, number, std::chars_format::general, 6).ptr;
  used_ += static_cast<std::size_t>(end - room);
  return *this;
}

BlockWriter& BlockWriter::operator<<(std::int32_t number) {
  char* const room = roomFor(kLongestNumber);
  char* const end = std::to_chars(room, room + kLongestNumber, number).ptr;
  used_ += static_cast<std::size_t>(end - room);
  return *this;
}

void BlockWriter::finish() {
  out_.write(block_.data(), static_cast<std::streamsize>(used_));
  used_ = 0;
}

}  // namespace qelm
