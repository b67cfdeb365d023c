// Text reaches the stream whole and in order, however it lies across blocks.
#include "export/block_writer.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <sstream>
#include <string>

namespace qelm::test {
namespace {

TEST(BlockWriter, KeepsTheOrderAcrossBlocks) {
  std::ostringstream out;
  std::string wanted;
  BlockWriter text(out);
  for (int i = 0; i < 40000; ++i) {
    const std::string line = std::to_string(i) + ' ';
    text.write(line);
    // Written in place, with less than was asked for.
    char* const room = text.roomFor(64);
    std::memcpy(room, line.data(), line.size());
    text.usedUpTo(room + line.size());
    wanted += line + line;
  }
  text.write(std::string(300000, 'x'));
  wanted += std::string(300000, 'x');
  text.finish();
  // Not EXPECT_EQ, which would print both.
  const std::string actual = out.str();
  const auto [a, w] = std::mismatch(actual.begin(), actual.end(), wanted.begin(), wanted.end());
  EXPECT_TRUE(a == actual.end() && w == wanted.end()) << "first at " << a - actual.begin();
}

}  // namespace
}  // namespace qelm::test
