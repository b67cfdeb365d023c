// Numbers look as the standard stream writes them.
#include "export/block_writer.h"

#include <gtest/gtest.h>

#include <bit>
#include <cmath>
#include <cstdint>
#include <limits>
#include <sstream>
#include <string>

#include "support/random.h"

namespace qelm::test {
namespace {

template <class T>
std::string written(T value) {
  std::ostringstream out;
  BlockWriter text(out);
  text << value;
  text.finish();
  return out.str();
}

template <class T>
std::string streamed(T value) {
  std::ostringstream out;
  out << value;
  return out.str();
}

TEST(BlockWriter, WritesSpecialDoublesAsTheStream) {
  using Limits = std::numeric_limits<double>;
  volatile double zero = 0;
  for (const double number : {0.0,
                              -0.0,
                              1.0,
                              -1.0,
                              0.5,
                              1e-4,
                              1e-5,
                              99999.95,
                              999999.0,
                              999999.5,
                              1e6,
                              1234567.0,
                              0.000123456789,
                              123456.5,
                              2.5,
                              0.1,
                              1.0 / 3,
                              Limits::max(),
                              Limits::lowest(),
                              Limits::min(),
                              Limits::denorm_min(),
                              -Limits::denorm_min(),
                              Limits::infinity(),
                              -Limits::infinity(),
                              Limits::quiet_NaN(),
                              -Limits::quiet_NaN(),
                              zero / zero,
                              1e100,
                              -1e-100,
                              9.999995,
                              9.9999949}) {
    EXPECT_EQ(written(number), streamed(number));
  }
}

TEST(BlockWriter, WritesAnyDoubleAsTheStream) {
  const std::uint64_t seed = testSeed();
  SCOPED_TRACE(seedTrace(seed));
  Random random(seed);
  for (int round = 0; round < 200000; ++round) {
    const auto any = std::bit_cast<double>(random());
    ASSERT_EQ(written(any), streamed(any)) << std::hexfloat << any;
  }
}

TEST(BlockWriter, WritesDoublesNearTheSixthDigitAsTheStream) {
  // Halves of the last digit kept, where rounding decides, and their neighbours.
  const std::uint64_t seed = testSeed();
  SCOPED_TRACE(seedTrace(seed));
  Random random(seed);
  for (int round = 0; round < 50000; ++round) {
    const double half = uniformInt(random, 100000, 999999) + 0.5;
    const double number = half * std::pow(10.0, uniformInt(random, -12, 12));
    for (const double near : {number, std::nextafter(number, 0), std::nextafter(number, 1e300)}) {
      ASSERT_EQ(written(near), streamed(near)) << std::hexfloat << near;
    }
  }
}

TEST(BlockWriter, WritesIntegersAsTheStream) {
  for (const std::int32_t number : {0, 1, -1, 10, 2147483647, -2147483647 - 1}) {
    EXPECT_EQ(written(number), streamed(number));
  }
}

TEST(BlockWriter, KeepsTheOrderAcrossBlocks) {
  std::ostringstream out, expected;
  BlockWriter text(out);
  for (int i = 0; i < 40000; ++i) {
    text << i << ' ' << i / 8.0 << std::string_view("\n");
    expected << i << ' ' << i / 8.0 << '\n';
  }
  text << std::string(300000, 'x');
  expected << std::string(300000, 'x');
  text.finish();
  EXPECT_EQ(out.str(), expected.str());
}

}  // namespace
}  // namespace qelm::test
