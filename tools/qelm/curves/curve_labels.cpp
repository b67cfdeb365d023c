#include "curves/curve_labels.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdlib>
#include <numbers>
#include <numeric>
#include <optional>

#include "text/index.h"

namespace qelm::tool {
namespace {

// Digits of the usual sans-serif fonts are 0.56 of their size wide.
constexpr double kDigitWidth = 0.56 * kLabelSize;

// In widths of its label: the shortest curve that has one.
constexpr double kLeastLength = 4;
// Chord by arc under a label. With less the curve bends away from the text.
constexpr double kStraight = 0.97;
// In gaps between levels: how far the text of a level may be off.
constexpr double kLabelError = 0.02;
constexpr int kFewestDigits = 3;
constexpr int kMostDigits = 17;

// The places of a label, as parts of the curve's length, in the order in which they are tried.
constexpr std::array<double, 9> kPlaces = {0.5, 0.4, 0.6, 0.3, 0.7, 0.2, 0.8, 0.1, 0.9};

// With three arguments hypot() is a template of the C++ library; with two it would be
// one of glibc 2.35 or later, for which the tool should not ask.
double distance(const PicturePoint& a, const PicturePoint& b) {
  return std::hypot(b[0] - a[0], b[1] - a[1], 0.0);
}

/// A stroke by arc length.
class MeasuredStroke {
 public:
  explicit MeasuredStroke(const Stroke& stroke) : points_(stroke.points) {
    if (stroke.closed) points_.push_back(points_.front());
    along_.push_back(0);
    for (std::size_t k = 1; k < points_.size(); ++k)
      along_.push_back(along_.back() + distance(points_[k - 1], points_[k]));
  }

  double length() const { return along_.back(); }

  /// The point at this arc length.
  PicturePoint at(double place) const {
    const auto after = std::upper_bound(along_.begin(), along_.end(), place);
    const std::size_t k = asIndex(std::clamp<std::ptrdiff_t>(
        after - along_.begin(), 1, static_cast<std::ptrdiff_t>(along_.size()) - 1));
    const double span = along_[k] - along_[k - 1];
    const double t = span > 0 ? std::clamp((place - along_[k - 1]) / span, 0.0, 1.0) : 0;
    return {std::lerp(points_[k - 1][0], points_[k][0], t),
            std::lerp(points_[k - 1][1], points_[k][1], t)};
  }

 private:
  std::vector<PicturePoint> points_;
  std::vector<double> along_;
};

class LabelPlacer {
 public:
  explicit LabelPlacer(double width, double height) : width_(width), height_(height) {}

  bool place(const Stroke& stroke, const std::string& text) {
    const double size = static_cast<double>(text.size()) * kDigitWidth;
    const MeasuredStroke curve(stroke);
    if (curve.length() < kLeastLength * size) return false;
    for (const double part : kPlaces) {
      const PicturePoint a = curve.at(part * curve.length() - size / 2);
      const PicturePoint b = curve.at(part * curve.length() + size / 2);
      if (distance(a, b) < kStraight * size) continue;
      const PicturePoint centre = {(a[0] + b[0]) / 2, (a[1] + b[1]) / 2};
      if (!isFree(centre, size)) continue;
      labels.push_back({text, centre, upright(a, b)});
      sizes_.push_back(size);
      return true;
    }
    return false;
  }

  std::vector<CurveLabel> labels;

 private:
  bool isFree(const PicturePoint& centre, double size) const {
    const double room = size / 2;
    if (centre[0] < room || centre[0] > width_ - room || centre[1] < kLabelSize ||
        centre[1] > height_ - kLabelSize)
      return false;
    for (std::size_t k = 0; k < labels.size(); ++k)
      if (distance(centre, labels[k].centre) < (size + sizes_[k]) / 2 + kLabelSize) return false;
    return true;
  }

  /// The direction from a to b in degrees, turned round where the text would be upside down.
  static double upright(const PicturePoint& a, const PicturePoint& b) {
    const double degrees = std::atan2(b[1] - a[1], b[0] - a[0]) * 180 / std::numbers::pi;
    return degrees > 90 ? degrees - 180 : degrees < -90 ? degrees + 180 : degrees;
  }

  double width_;
  double height_;
  std::vector<double> sizes_;
};

}  // namespace

std::vector<std::string> levelTexts(const std::vector<double>& levels, double span) {
  double gap = span;
  for (std::size_t k = 1; k < levels.size(); ++k) gap = std::min(gap, levels[k] - levels[k - 1]);
  int digits = kFewestDigits;
  const auto isClose = [&](double level) {
    const double shown = std::strtod(fmt::format("{:.{}g}", level, digits).c_str(), nullptr);
    return std::abs(shown - level) <= kLabelError * gap;
  };
  while (digits < kMostDigits && !std::all_of(levels.begin(), levels.end(), isClose)) ++digits;
  std::vector<std::string> texts;
  for (const double level : levels) texts.push_back(fmt::format("{:.{}g}", level, digits));
  return texts;
}

std::vector<CurveLabel> placeLabels(const CurvePicture& picture,
                                    const std::vector<std::vector<std::string>>& texts) {
  LabelPlacer placer(picture.width, picture.height);
  for (std::size_t field = 0; field < texts.size(); ++field)
    for (std::size_t level = 0; level < texts[field].size(); ++level) {
      std::vector<const Stroke*> strokes;
      for (const Stroke& stroke : picture.fields[field][level].front) strokes.push_back(&stroke);
      std::stable_sort(strokes.begin(), strokes.end(), [](const Stroke* a, const Stroke* b) {
        return MeasuredStroke(*a).length() > MeasuredStroke(*b).length();
      });
      for (const Stroke* stroke : strokes)
        if (placer.place(*stroke, texts[field][level])) break;
    }
  return std::move(placer.labels);
}

}  // namespace qelm::tool
