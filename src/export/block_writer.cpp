#include "export/block_writer.h"

#include <algorithm>

namespace qelm {
namespace {

// Large enough that the system calls vanish beside the formatting, small enough to
// stay in the processor's cache.
constexpr std::size_t kBlockSize = 64 * 1024;

}  // namespace

BlockWriter::BlockWriter(std::ostream& out) : out_(out), block_(kBlockSize) {}

void BlockWriter::write(std::string_view text) {
  while (!text.empty()) {
    char* const room = roomFor(1);
    const std::size_t count = std::min(text.size(), block_.size() - used_);
    std::copy_n(text.data(), count, room);
    used_ += count;
    text.remove_prefix(count);
  }
}

void BlockWriter::finish() {
  out_.write(block_.data(), static_cast<std::streamsize>(used_));
  used_ = 0;
}

}  // namespace qelm
