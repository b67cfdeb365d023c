// Numbers look as the standard stream writes them.
#include "export/number_text.h"

#include <gtest/gtest.h>

#include <array>
#include <bit>
#include <cmath>
#include <cstdint>
#include <limits>
#include <sstream>
#include <string>
#include <vector>

#include "support/random.h"

namespace qelm::test {
namespace {

template <class T>
std::string written(const std::vector<T>& values) {
  std::string text;
  std::array<char, kNumberRoom> room;
  for (const T value : values) {
    text.append(room.data(), writeNumber(room.data(), value));
    text += ' ';
  }
  return text;
}

template <class T>
std::string streamed(const std::vector<T>& values) {
  std::ostringstream out;
  for (const T value : values) out << value << ' ';
  return out.str();
}

/// All in one go, since a stream for each number takes long; one by one if that
/// shows a difference.
template <class T>
void expectStreamed(const std::vector<T>& values) {
  if (written(values) == streamed(values)) return;
  for (const T value : values) {
    ASSERT_EQ(written(std::vector{value}), streamed(std::vector{value})) << std::hexfloat << value;
  }
  FAIL() << "only together";
}

TEST(NumberText, WritesSpecialDoublesAsTheStream) {
  using Limits = std::numeric_limits<double>;
  volatile double zero = 0;
  expectStreamed<double>({0.0,
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
                          9.9999949});
}

TEST(NumberText, WritesAnyDoubleAsTheStream) {
  const std::uint64_t seed = testSeed();
  SCOPED_TRACE(seedTrace(seed));
  Random random(seed);
  std::vector<double> numbers;
  for (int i = 0; i < 200000; ++i) numbers.push_back(std::bit_cast<double>(random()));
  expectStreamed(numbers);
}

TEST(NumberText, WritesDoublesNearTheSixthDigitAsTheStream) {
  // Halves of the last digit kept, where rounding decides, and their neighbours.
  const std::uint64_t seed = testSeed();
  SCOPED_TRACE(seedTrace(seed));
  Random random(seed);
  std::vector<double> numbers;
  for (int i = 0; i < 50000; ++i) {
    const double half = uniformInt(random, 100000, 999999) + 0.5;
    const double number = half * std::pow(10.0, uniformInt(random, -12, 12));
    numbers.insert(numbers.end(),
                   {number, std::nextafter(number, 0), std::nextafter(number, 1e300)});
  }
  expectStreamed(numbers);
}

TEST(NumberText, WritesDoublesInPlainNotationAsTheStream) {
  // Where most of a mesh lies, a short way takes the place of the library's.
  const std::uint64_t seed = testSeed();
  SCOPED_TRACE(seedTrace(seed));
  Random random(seed);
  std::vector<double> numbers;
  for (int i = 0; i < 300000; ++i) {
    const double number = uniform(random, 0, 1) * std::pow(10.0, uniformInt(random, -5, 7));
    numbers.push_back(uniformInt(random, 0, 1) == 0 ? number : -number);
    // Few digits: zeros at the end, and halves of the last digit kept as they are.
    numbers.push_back(uniformInt(random, 0, 2000000) / std::exp2(uniformInt(random, 0, 20)));
  }
  expectStreamed(numbers);
}

TEST(NumberText, WritesDoublesAroundPowersOfTenAsTheStream) {
  std::vector<double> numbers;
  for (int exponent = -6; exponent <= 8; ++exponent) {
    const double power = std::pow(10.0, exponent);
    double below = power;
    double above = power;
    for (int step = 0; step < 50; ++step) {
      numbers.insert(numbers.end(), {below, above, power * (1 - 1e-8 * step)});
      below = std::nextafter(below, 0);
      above = std::nextafter(above, 1e300);
    }
  }
  expectStreamed(numbers);
}

TEST(NumberText, WritesIntegersAsTheStream) {
  expectStreamed<std::int32_t>({0, 1, -1, 10, 2147483647, -2147483647 - 1});
  std::vector<std::int32_t> numbers;
  for (int i = 0; i < 200000; ++i) numbers.push_back(i);
  for (std::int64_t power = 10; power < 2147483647; power *= 10) {
    for (const int step : {-1, 0, 1}) {
      numbers.push_back(static_cast<std::int32_t>(power + step));
      numbers.push_back(static_cast<std::int32_t>(-power + step));
    }
  }
  expectStreamed(numbers);
}

}  // namespace
}  // namespace qelm::test
