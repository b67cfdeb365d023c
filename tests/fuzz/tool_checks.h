// What must hold for everything that the command-line tool takes in.
#ifndef QELM_TESTS_FUZZ_TOOL_CHECKS_H
#define QELM_TESTS_FUZZ_TOOL_CHECKS_H

#include <string>
#include <string_view>

#include "fuzz/require.h"
#include "text/byte_sink.h"
#include "text/text.h"

namespace qelm::fuzz {

/// A message names the place, says what is wrong, and has no control characters.
inline void requireMessage(std::string_view message, std::string_view place) {
  require(message.starts_with(place), "a message begins with the place");
  require(message.size() > place.size() + 5, "a message says what is wrong");
  require(tool::printable(message) == message, "a message can be printed");
}

struct Memory : tool::ByteSink {
  void write(std::string_view more) override { bytes += more; }
  std::string bytes;
};

}  // namespace qelm::fuzz

#endif  // QELM_TESTS_FUZZ_TOOL_CHECKS_H
