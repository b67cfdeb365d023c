// A 16-bit integer as a point on the upper unit hemisphere, and back.
//
//   integer   256 high + low     (-1 for 65535)
//   point     x = (low - 127.5) / 255,  y = (high - 127.5) / 255,  z = sqrt(1 - x x - y y)
//
// Single precision throughout, one rounding for each operation written.
#include <algorithm>
#include <cfloat>
#include <cmath>
#include <cstdint>
#include <limits>

#include "qelm.h"

namespace {

static_assert(FLT_EVAL_METHOD == 0, "float expressions must round to float at every step");

constexpr std::uint32_t kByteMax = 255;
constexpr std::int32_t kAllBytesSet = 65535;  // the code of -1

/// -0.5 for the byte 0, 0.5 for 255.
float coordinateOfByte(std::int32_t byte) { return (static_cast<float>(byte) - 127.5F) / 255.0F; }

/// Truncation toward zero. NaN and numbers that do not fit give the most negative integer. Callers
/// rely on that: it is the result of x86-64's conversion; the plain cast would be undefined in C++.
std::int64_t truncated(float number) {
  const bool fits = number >= -0x1p63F && number < 0x1p63F;  // false for NaN
  return fits ? static_cast<std::int64_t>(number) : std::numeric_limits<std::int64_t>::min();
}

/// The clamp takes the low 32 bits as an unsigned number, on purpose: a coordinate that truncates
/// to a negative number is huge there, and becomes 255 as well, not 0. The low bits of the most
/// negative integer are 0.
std::int32_t byteOfCoordinate(float coordinate) {
  const float scaled = (coordinate * 255.0F + 127.5F) + 0.5F;
  const auto low = static_cast<std::uint32_t>(static_cast<std::uint64_t>(truncated(scaled)));
  return static_cast<std::int32_t>(std::min(low, kByteMax));
}

}  // namespace

extern "C" int encode_integer_to_sphere(int value, float* x, float* y, float* z) {
  if (x == nullptr || y == nullptr || z == nullptr) return -1;
  // 65535 is refused on purpose: its bytes are the code of -1.
  if (value < -1 || value > 65534) {
    *x = *y = *z = 0.0F;
    return -1;
  }
  const std::int32_t code = value == -1 ? kAllBytesSet : value;
  const float px = coordinateOfByte(code % 256);
  const float py = coordinateOfByte(code / 256 % 256);
  *x = px;
  *y = py;
  *z = std::sqrt((1.0F - px * px) - py * py);
  return 0;
}

extern "C" int decode_integer_from_sphere(float x, float y, float z) {
  // -0.0 and NaN do not count as below: they leave x and y as they are.
  const bool reversed = z < 0.0F;
  const std::int32_t low = byteOfCoordinate(reversed ? -x : x);
  const std::int32_t high = byteOfCoordinate(reversed ? -y : y);
  const std::int32_t code = high * 256 + low;
  return code == kAllBytesSet ? -1 : code;
}
