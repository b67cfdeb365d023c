// What formats write to.
#ifndef QELM_TOOLS_BYTE_SINK_H
#define QELM_TOOLS_BYTE_SINK_H

#include <string_view>

namespace qelm::tool {

class ByteSink {
 public:
  virtual ~ByteSink() = default;
  virtual void write(std::string_view bytes) = 0;
};

}  // namespace qelm::tool

#endif
