// What formats write to.
#ifndef QELM_TOOLS_BYTE_SINK_H
#define QELM_TOOLS_BYTE_SINK_H

#include <string_view>

namespace qelm::tool {

/// A file or, in tests, memory.
class ByteSink {
 public:
  virtual ~ByteSink() = default;
  /// Adds the bytes at the end, all of them; throws OutputError when that fails.
  virtual void write(std::string_view bytes) = 0;
};

}  // namespace qelm::tool

#endif
