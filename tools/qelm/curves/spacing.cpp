#include "curves/spacing.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <optional>

#include "curves/levels.h"
#include "mesh/vec3.h"
#include "text/error.h"

namespace qelm::tool {
namespace {

// Of the spacing: what rounding may leave. A last level that is nearer to the end lies on it.
constexpr double kRounding = 1e-9;
constexpr double kClose = 1e-13;

// On a smooth quotient false position takes some eight steps, bisection fifty.
constexpr int kFalsePositions = 30;
constexpr int kMostTrials = 100;

/// A triangle with its values in order, low <= middle <= high, low < high.
struct Slice {
  double low, middle, high;
  double area;
  double longest;  ///< length of the curve at `middle`; of the side with one value, if there is one

  /// Length of the curve at v; where the triangle has a side at v, as just above v.
  double lengthAbove(double v) const {
    if (v < low || v >= high) return 0;
    return v < middle ? longest * ((v - low) / (middle - low))
                      : longest * ((high - v) / (high - middle));
  }
  /// The same, as just below v.
  double lengthBelow(double v) const {
    if (v <= low || v > high) return 0;
    return v <= middle ? longest * ((v - low) / (middle - low))
                       : longest * ((high - v) / (high - middle));
  }

  /// Area where the field is less than v.
  double areaBelow(double v) const {
    if (v <= low) return 0;
    if (v >= high) return area;
    if (v < middle) return area * ((v - low) / (middle - low)) * ((v - low) / (high - low));
    return area * (1 - ((high - v) / (high - middle)) * ((high - v) / (high - low)));
  }
};

Slice sliceOf(const Mesh& mesh, std::span<const double> field, int t) {
  const auto c = mesh.corners(t);
  std::array<int, 3> v = {c[0], c[1], c[2]};
  const auto value = [&](int k) { return field[static_cast<std::size_t>(k)]; };
  std::sort(v.begin(), v.end(), [&](int a, int b) { return value(a) < value(b); });
  const std::array<Point, 3> p = {mesh.point(v[0]), mesh.point(v[1]), mesh.point(v[2])};
  Slice slice{value(v[0]), value(v[1]), value(v[2]), length(cross(p[1] - p[0], p[2] - p[0])) / 2,
              0};
  if (slice.low == slice.high) return slice;
  const double part = (slice.middle - slice.low) / (slice.high - slice.low);
  Point facing{};  // on the side from the lowest corner to the highest, at the middle value
  for (std::size_t axis = 0; axis < 3; ++axis)
    facing[axis] = std::lerp(p[0][axis], p[2][axis], part);
  slice.longest = length(p[1] - facing);
  return slice;
}

class Spacer {
 public:
  Spacer(const Mesh& mesh, std::span<const double> field, double spacing) : spacing_(spacing) {
    for (int t = 0; t < mesh.triangleCount(); ++t)
      if (const Slice slice = sliceOf(mesh, field, t); slice.low < slice.high)
        slices_.push_back(slice);
    std::sort(slices_.begin(), slices_.end(),
              [](const Slice& a, const Slice& b) { return a.low < b.low; });
    low_ = high_ = slices_.front().low;
    for (const Slice& slice : slices_) high_ = std::max(high_, slice.high);
  }

  std::vector<double> run() {
    std::vector<double> levels;
    double step = (high_ - low_) / 64;
    admit(low_);
    begin(low_);
    while (const std::optional<double> level = next(step)) {
      if (levels.size() == static_cast<std::size_t>(kMostLevels))
        throw RequestError(fmt::format("--spacing {}: more than {} levels; take a larger spacing",
                                       spacing_, kMostLevels));
      step = *level - base_;
      levels.push_back(*level + 0.0);  // no negative zero
      begin(*level);
    }
    return levels;
  }

 private:
  /// A triangle that reaches beyond the level that was found last.
  struct Active {
    Slice slice;
    double areaBelowBase;
  };

  /// Takes in the triangles that begin at v or below.
  void admit(double v) {
    for (; admitted_ < slices_.size() && slices_[admitted_].low <= v; ++admitted_)
      active_.push_back({slices_[admitted_], 0});
  }

  void begin(double level) {
    base_ = level;
    baseLength_ = 0;
    std::erase_if(active_, [level](const Active& a) { return a.slice.high <= level; });
    for (Active& a : active_) {
      a.areaBelowBase = a.slice.areaBelow(level);
      baseLength_ += a.slice.lengthAbove(level);
    }
  }

  /// How far the quotient at v is above the spacing, all triangles up to v being admitted.
  double excess(double v) const {
    double area = 0;
    double length = baseLength_;
    for (const Active& a : active_) {
      area += a.slice.areaBelow(v) - a.areaBelowBase;
      length += v < high_ ? a.slice.lengthAbove(v) : a.slice.lengthBelow(v);
    }
    return 2 * area / length - spacing_;
  }

  std::optional<double> next(double step) {
    double under = base_;
    double underBy = -spacing_;
    for (double growth = 1;; growth *= 1.5) {
      double over = std::min(base_ + growth * step, high_);
      if (!(over > base_)) over = std::nextafter(base_, high_);
      admit(over);
      const double overBy = excess(over);
      if (over == high_ && !(overBy > kRounding * spacing_)) return {};
      // Steps are often equal: the first guess is then the level itself.
      if (std::abs(overBy) <= kClose * spacing_) return over;
      if (overBy > 0) return between(under, underBy, over, overBy);
      under = over;
      underBy = overBy;
    }
  }

  /// Where the excess turns from negative to positive: false position (the Illinois form, which
  /// halves the value of an end that stays), or bisection where that does not close in.
  std::optional<double> between(double under, double underBy, double over, double overBy) const {
    int moved = 0;  // the end that moved last: -1 the lower, 1 the upper
    for (int k = 0; k < kMostTrials; ++k) {
      const double part = k < kFalsePositions ? overBy / (overBy - underBy) : 0.5;
      const double middle = over - part * (over - under);
      if (!(middle > under && middle < over)) {
        if (k >= kFalsePositions) break;
        k = kFalsePositions - 1;  // an end is all but there
        continue;
      }
      const double by = excess(middle);
      if (std::abs(by) <= kClose * spacing_) return middle;
      if (by < 0) {
        under = middle;
        underBy = by;
        if (moved < 0) overBy /= 2;
        moved = -1;
      } else {
        over = middle;
        overBy = by;
        if (moved > 0) underBy /= 2;
        moved = 1;
      }
    }
    return over < high_ ? std::optional(over) : std::nullopt;
  }

  double spacing_;
  std::vector<Slice> slices_;  ///< by their lowest value
  double low_;
  double high_;
  std::size_t admitted_ = 0;
  std::vector<Active> active_;
  double base_ = 0;  ///< the level that was found last
  double baseLength_ = 0;
};

}  // namespace

std::vector<double> spacedLevels(const Mesh& mesh, std::span<const double> field, double spacing) {
  const std::vector<double> levels = Spacer(mesh, field, spacing).run();
  if (levels.empty())
    throw RequestError(fmt::format(
        "--spacing {}: the surface is no wider than that between the field's ends; take a smaller "
        "spacing",
        spacing));
  return levels;
}

}  // namespace qelm::tool
