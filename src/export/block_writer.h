// Text for a stream, collected into large blocks.
#ifndef QELM_EXPORT_BLOCK_WRITER_H
#define QELM_EXPORT_BLOCK_WRITER_H

#include <cstddef>
#include <ostream>
#include <string_view>
#include <vector>

#include "interface/index.h"

namespace qelm {

/// Lines end with a newline, which a stream in text mode translates. Text may reach the stream only
/// with finish().
class BlockWriter {
 public:
  explicit BlockWriter(std::ostream& out);

  void write(std::string_view text);

  /// Room for `length` characters, much less than a block, to be written in place.
  char* roomFor(std::size_t length) {
    if (block_.size() - used_ < length) finish();
    return block_.data() + used_;
  }

  /// Takes the characters that were written into the room, up to `end`.
  void usedUpTo(const char* end) { used_ = asIndex(end - block_.data()); }

  void finish();

 private:
  std::ostream& out_;
  std::vector<char> block_;
  std::size_t used_ = 0;
};

}  // namespace qelm

#endif  // QELM_EXPORT_BLOCK_WRITER_H
