#include "isolines/curve_crossing.h"

namespace qelm {

EdgePosition positionOnSteepEdge(double low, double high, double level) {
  if (level == high) return EdgePosition::fromHighBy(0.0);
  if (std::isinf(low) && std::isinf(high)) return EdgePosition::fromLowBy(0.5);
  if (std::isinf(high)) return EdgePosition::fromLowBy(0.0);
  if (std::isinf(low)) return EdgePosition::fromHighBy(0.0);
  // Halves of values this large are exact, and their difference is finite.
  const double rise = high / 2 - low / 2;
  const double fromLow = (level / 2 - low / 2) / rise;
  const double fromHigh = (high / 2 - level / 2) / rise;
  return fromLow <= fromHigh ? EdgePosition::fromLowBy(fromLow)
                             : EdgePosition::fromHighBy(fromHigh);
}

Vec3 pointOnLongEdge(const Vec3& from, const Vec3& to, double share) {
  const auto coordinate = [share](double a, double b) {
    return std::isfinite(b - a) ? a + share * (b - a) : (1 - share) * a + share * b;
  };
  return {coordinate(from.x, to.x), coordinate(from.y, to.y), coordinate(from.z, to.z)};
}

}  // namespace qelm
