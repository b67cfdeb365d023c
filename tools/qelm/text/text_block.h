// Gathers what is written into blocks.
#ifndef QELM_TOOLS_TEXT_BLOCK_H
#define QELM_TOOLS_TEXT_BLOCK_H

#include <fmt/format.h>

#include <cstddef>
#include <cstring>
#include <iterator>
#include <span>
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

  /// Values as they lie in memory.
  template <class Value, std::size_t count>
  void bytes(std::span<const Value, count> values) {
    static_assert(count != std::dynamic_extent);
    const std::size_t size = buffer_.size();
    buffer_.resize(size + values.size_bytes());
    std::memcpy(buffer_.data() + size, values.data(), values.size_bytes());
    if (buffer_.size() >= kSize) flush();
  }
  template <class Value>
  void bytes(const Value& value) {
    bytes(std::span<const Value, 1>(&value, 1));
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
