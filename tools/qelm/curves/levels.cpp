#include "curves/levels.h"

#include <fmt/format.h>

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <limits>

#include "text/error.h"
#include "text/index.h"
#include "text/text.h"

namespace qelm::tool {
namespace {

// Enough to see a field's shape, few enough to label.
constexpr int kDefaultLevels = 10;

int parsedCount(const std::string& text) {
  const auto count = parseInteger(trimmed(text));
  if (!count || *count < 1 || *count > kMostLevels)
    throw UsageError(
        fmt::format("--levels {}: a whole number from 1 to {} is needed", text, kMostLevels));
  return asInt(*count);
}

double parsedPositive(const char* option, const std::string& text, const char* what) {
  const auto value = parseDouble(trimmed(text));
  if (!value || !std::isfinite(*value) || *value <= 0)
    throw UsageError(fmt::format("{} {}: {} larger than 0 is needed", option, text, what));
  return *value;
}

std::vector<double> parsedList(const std::string& text) {
  std::vector<double> list;
  for (const std::string_view word : splitAt(text, ',')) {
    const auto level = parseDouble(trimmed(word));
    if (!level || !std::isfinite(*level))
      throw UsageError(fmt::format("--at {}: '{}' is not a number", text, word));
    list.push_back(*level + 0.0);  // no negative zero
  }
  std::sort(list.begin(), list.end());
  list.erase(std::unique(list.begin(), list.end()), list.end());
  if (list.size() > kMostLevels)
    throw UsageError(fmt::format("--at: at most {} levels, {} given", kMostLevels, list.size()));
  return list;
}

Point parsedPoint(const std::string& text) {
  constexpr std::string_view kForm = "near:";
  const std::vector<std::string_view> words =
      splitAt(std::string_view(text).substr(text.starts_with(kForm) ? kForm.size() : 0), ',');
  Point point{};
  bool isGood = text.starts_with(kForm) && words.size() == 3;
  for (std::size_t k = 0; isGood && k < 3; ++k) {
    const auto value = parseDouble(trimmed(words[k]));
    isGood = value && std::isfinite(*value);
    if (isGood) point[k] = *value;
  }
  if (!isGood) throw UsageError(fmt::format("--through {}: write a place as near:X,Y,Z", text));
  return point;
}

struct RoundStep {
  int digit;  ///< 1, 2 or 5
  int power;  ///< of ten
};

/// The step's multiples strictly between low and high, each the double nearest to its decimal
/// number: 0.3, not 3 * 0.1. None where there are too many to count. Multiples so near to an end
/// that rounding alone may have put them inside are left out: curves there would be noise.
std::vector<double> multiplesOf(RoundStep step, double low, double high) {
  constexpr double kNoise = 1e-9;        // of the range
  constexpr double kMostCounted = 1e18;  // fits 64 bits, five times as well
  const double size = *parseDouble(fmt::format("{}e{}", step.digit, step.power));
  // The double nearest to a smaller step may be off by a fifth, and its multiples by as much.
  if (size < std::numeric_limits<double>::min()) return {};
  const double margin = kNoise * (high - low);
  std::vector<double> levels;
  const double first = std::floor(low / size);
  if (!(std::abs(first) < kMostCounted) || !(std::ceil(high / size) - first <= kMostLevels))
    return levels;
  // The quotients are rounded: look at one multiple more on either side.
  for (auto i = static_cast<long long>(first) - 1;; ++i) {
    const double level = *parseDouble(fmt::format("{}e{}", step.digit * i, step.power));
    if (level >= high - margin) return levels;
    if (level > low + margin && (levels.empty() || level > levels.back()))
      levels.push_back(level + 0.0);
  }
}

}  // namespace

LevelChoice::LevelChoice(const LevelOptions& options) {
  const int given = !options.count.empty() + !options.at.empty() + !options.every.empty() +
                    !options.spacing.empty();
  if (given > 1) throw UsageError("give only one of --levels, --at, --every and --spacing");
  if (options.round && given == 1 && options.count.empty())
    throw UsageError("--round is for --levels; the others say exactly which levels");
  round_ = options.round || given == 0;
  count_ = given == 0 ? kDefaultLevels : 0;
  if (!options.count.empty()) count_ = parsedCount(options.count);
  if (!options.at.empty()) list_ = parsedList(options.at);
  if (!options.every.empty()) step_ = parsedPositive("--every", options.every, "a step");
  if (!options.spacing.empty())
    spacing_ = parsedPositive("--spacing", options.spacing, "a distance");
  for (const std::string& text : options.through) through_.push_back(parsedPoint(text));
  onlyMore_ = spacing_ > 0 || (!through_.empty() && given == 0 && !options.round);
}

std::vector<double> LevelChoice::levels(double low, double high, const Console& console,
                                        std::span<const double> more) const {
  std::vector<double> all;
  if (!onlyMore_) all = chosen(low, high, console);
  for (const double level : more) all.push_back(level + 0.0);
  std::sort(all.begin(), all.end());
  all.erase(std::unique(all.begin(), all.end()), all.end());
  return all;
}

std::vector<double> LevelChoice::chosen(double low, double high, const Console& console) const {
  if (round_) return round(low, high);
  if (count_ > 0) return even(low, high);
  if (step_ > 0) return multiples(low, high);
  for (const double level : list_)
    if (level < low || level > high)
      console.note(fmt::format("the level {} is outside of the field, {} to {}: no curve", level,
                               low, high));
  return list_;
}

std::vector<double> LevelChoice::round(double low, double high) const {
  // The range itself may be too large for a double, so halves are subtracted.
  const double rough = 2 * (high / 2 - low / 2) / (count_ + 1);
  if (!(rough > 0)) return even(low, high);
  const int power = std::isfinite(rough) ? static_cast<int>(std::floor(std::log10(rough)))
                                         : std::numeric_limits<double>::max_exponent10;
  std::vector<double> best;
  const auto distance = [this](const std::vector<double>& levels) {
    return std::abs(static_cast<double>(levels.size()) - count_);
  };
  for (const RoundStep step :
       {RoundStep{2, power + 1}, {1, power + 1}, {5, power}, {2, power}, {1, power}}) {
    std::vector<double> levels = multiplesOf(step, low, high);
    if (!levels.empty() && (best.empty() || distance(levels) < distance(best)))
      best = std::move(levels);
  }
  return best.empty() ? even(low, high) : best;
}

std::vector<double> LevelChoice::even(double low, double high) const {
  std::vector<double> levels;
  for (int k = 1; k <= count_; ++k) {
    // Weights that are whole numbers give round levels between round values.
    double level = (low * (count_ + 1 - k) + high * k) / (count_ + 1);
    if (!std::isfinite(level)) level = std::lerp(low, high, static_cast<double>(k) / (count_ + 1));
    if (level > low && level < high && (levels.empty() || level > levels.back()))
      levels.push_back(level + 0.0);
  }
  if (levels.empty())
    throw RequestError(
        fmt::format("--levels {}: no number lies between {} and {}; the field is "
                    "too narrow to be cut",
                    count_, low, high));
  return levels;
}

std::vector<double> LevelChoice::multiples(double low, double high) const {
  const double first = std::floor(low / step_);
  const double last = std::ceil(high / step_);
  if (!(last - first <= kMostLevels))
    throw RequestError(fmt::format("--every {}: more than {} levels between {} and {}", step_,
                                   kMostLevels, low, high));
  std::vector<double> levels;
  // Far from 0 neighbouring whole numbers are the same double: `first + 1` may be `first`. So i
  // counts from 0, and equal levels are left out.
  for (double i = 0; i <= last - first; ++i) {
    const double level = (first + i) * step_;
    if (level > low && level < high && (levels.empty() || level > levels.back()))
      levels.push_back(level + 0.0);
  }
  if (levels.empty())
    throw RequestError(
        fmt::format("--every {}: no multiple of it lies between {} and {}; use a smaller step",
                    step_, low, high));
  return levels;
}

}  // namespace qelm::tool
