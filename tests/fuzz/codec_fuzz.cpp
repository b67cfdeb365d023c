// The codec for any bits at all.
#include "fuzz/input.h"
#include "fuzz/require.h"
#include "qelm.h"

using qelm::fuzz::require;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  qelm::fuzz::Input input(data, size);
  const auto value = input.take<std::int32_t>();
  float x = 9, y = 9, z = 9;
  const bool inRange = value >= -1 && value <= 65534;
  require(encode_integer_to_sphere(value, &x, &y, &z) == (inRange ? 0 : -1));
  if (inRange) {
    require(decode_integer_from_sphere(x, y, z) == value);
    require(decode_integer_from_sphere(-x, -y, -z) == value);
  } else {
    require(x == 0 && y == 0 && z == 0);
  }
  const auto a = input.take<float>();
  const auto b = input.take<float>();
  const auto c = input.take<float>();
  const int decoded = decode_integer_from_sphere(a, b, c);
  require(decoded >= -1 && decoded <= 65534);
  return 0;
}
