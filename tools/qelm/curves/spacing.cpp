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
#include "text/index.h"

namespace qelm::tool {
namespace {

// In spacings. A strip that is wider than the last one by less than this ends at the largest value:
// rounding made the difference.
constexpr double kRounding = 1e-9;
// A level whose strip is off by less than this is found.
constexpr double kClose = 1e-13;

// False position takes some eight steps on a smooth function, bisection fifty.
constexpr int kFalsePositions = 30;
constexpr int kMostTrials = 100;

/// A triangle with its values in order, low <= middle <= high, low < high.
struct Slice {
  double low, middle, high;
  double area;
  double longest;  ///< length of the curve at `middle`, or of the edge with that value

  /// Length of the curve at v. Where an edge of the triangle lies at v: just above v.
  double lengthAbove(double v) const {
    if (v < low || v >= high) return 0;
    return v < middle ? longest * ((v - low) / (middle - low))
                      : longest * ((high - v) / (high - middle));
  }
  /// The same, but just below v.
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
  const auto value = [&](int k) { return field[asIndex(k)]; };
  std::sort(v.begin(), v.end(), [&](int a, int b) { return value(a) < value(b); });
  const std::array<Point, 3> p = {mesh.point(v[0]), mesh.point(v[1]), mesh.point(v[2])};
  Slice slice{value(v[0]), value(v[1]), value(v[2]), length(areaVector(p[0], p[1], p[2])) / 2, 0};
  if (slice.low == slice.high) return slice;
  const double part = (slice.middle - slice.low) / (slice.high - slice.low);
  // The curve at the middle value runs from the middle corner to the edge that faces it.
  slice.longest = length(p[1] - between(p[0], p[2], part));
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
      if (levels.size() == asIndex(kMostLevels))
        throw RequestError(fmt::format("--spacing {}: more than {} levels; take a larger spacing",
                                       spacing_, kMostLevels));
      step = *level - base_;
      levels.push_back(*level + 0.0);  // no negative zero
      begin(*level);
    }
    return levels;
  }

 private:
  /// A triangle that reaches beyond the base, which is the last level that was found.
  struct Active {
    Slice slice;
    double areaBelowBase;
  };

  /// Makes the triangles active whose smallest value is v or less.
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

  /// How much wider than the spacing the strip from the base to v is. Requires admit(v).
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
      if (overBy > 0) return rootBetween(under, underBy, over, overBy);
      under = over;
      underBy = overBy;
    }
  }

  /// The root of the excess between two levels: by false position (the Illinois form, which halves
  /// the value at an end that stays), or by bisection where that does not close in.
  std::optional<double> rootBetween(double under, double underBy, double over,
                                    double overBy) const {
    int moved = 0;  // the end that moved last: -1 is the lower one, 1 the upper one
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
