// Gathers what is written into blocks.
#ifndef QELM_TOOLS_TEXT_BLOCK_H
#define QELM_TOOLS_TEXT_BLOCK_H

#include <fmt/format.h>

#include <array>
#include <cstddef>
#include <cstring>
#include <iterator>
#include <utility>

#include "text/byte_sink.h"

namespace qelm::tool {

/// Doubles formatted with {} have the shortest digits that read back as the same
/// doubles. Ends with flush().
class TextBlock {
 public:
  explicit TextBlock(ByteSink& file) : file_(file) {}

  template <class... Values>
  void text(fmt::format_string<Values...> format, Values&&... values) {
    fmt::format_to(std::back_inserter(buffer_), format, std::forward<Values>(values)...);
    if (buffer_.size() >= kSize) flush();
  }

  template <class Value>
  void bytes(const Value& value) {
    std::array<char, sizeof value> raw;
    std::memcpy(raw.data(), &value, sizeof value);
    buffer_.append(raw.data(), raw.data() + raw.size());
    if (buffer_.size() >= kSize) flush();
  }

  void flush() {
    file_.write({buffer_.data(), buffer_.size()});
    buffer_.clear();
  }

 private:
  static constexpr std::size_t kSize = 1 << 16;
  ByteSink& file_;
  fmt::memory_buffer buffer_;
};

}  // namespace qelm::tool

#endif
