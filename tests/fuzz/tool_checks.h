// What must hold for everything that the command-line tool takes in.
#ifndef QELM_TESTS_FUZZ_TOOL_CHECKS_H
#define QELM_TESTS_FUZZ_TOOL_CHECKS_H

#include <algorithm>
#include <bit>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <span>
#include <string>
#include <string_view>

#include "text/byte_sink.h"
#include "text/text.h"

namespace qelm::fuzz {

/// Not assert(): it must hold in every build.
inline void require(bool holds, const char* what) {
  if (holds) return;
  std::fprintf(stderr, "does not hold: %s\n", what);
  std::abort();
}

/// A refusal says where, says something, and cannot steer a terminal.
inline void requireMessage(std::string_view message, std::string_view place) {
  require(message.starts_with(place), "a message begins with the place");
  require(message.size() > place.size() + 5, "a message says what is wrong");
  require(tool::printable(message) == message, "a message can be printed");
}

inline bool sameBits(std::span<const double> a, std::span<const double> b) {
  return std::ranges::equal(a, b, {}, std::bit_cast<std::uint64_t, double>,
                            std::bit_cast<std::uint64_t, double>);
}

struct Memory : tool::ByteSink {
  void write(std::string_view more) override { bytes += more; }
  std::string bytes;
};

}  // namespace qelm::fuzz

#endif  // QELM_TESTS_FUZZ_TOOL_CHECKS_H
