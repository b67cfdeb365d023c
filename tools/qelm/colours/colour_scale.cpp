#include "colours/colour_scale.h"

#include <fmt/format.h>

#include <algorithm>
#include <cmath>
#include <string_view>
#include <vector>

#include "text/error.h"
#include "text/text.h"

namespace qelm::tool {

std::optional<ValueRange> parseRange(const std::string& text) {
  if (text.empty()) return {};
  const std::vector<std::string_view> words = splitAt(text, ',');
  std::vector<double> ends;
  for (const std::string_view word : words)
    if (const auto end = parseDouble(trimmed(word)); end && std::isfinite(*end))
      ends.push_back(*end + 0.0);  // no negative zero
  if (words.size() != 2 || ends.size() != 2)
    throw UsageError(fmt::format("--range {}: give two numbers, as in --range 0,10", text));
  if (!(ends[0] < ends[1]))
    throw UsageError(fmt::format("--range {}: the first number must be the smaller one", text));
  if (!std::isfinite(ends[1] - ends[0]))
    throw UsageError(fmt::format("--range {}: too wide to be computed with", text));
  return ValueRange{ends[0], ends[1]};
}

double ColourScale::part(double value) const {
  const double part = (value - low) / (high - low);
  return std::isnan(part) ? part : std::clamp(part, 0.0, 1.0);
}

ColourChoice::ColourChoice(const ColourOptions& options)
    : ramp_(parseRamp(options.ramp)), range_(parseRange(options.range)) {}

ColourScale ColourChoice::scaleFor(const FieldRange& field, const Console& console) const {
  if (!range_) return {ramp_, field.low, field.high};
  const auto& [low, high] = *range_;
  if (field.low < low || field.high > high)
    console.note(fmt::format(
        "the field, {} to {}, leaves --range {},{}: values outside have the colours of its ends",
        digits(field.low), digits(field.high), low, high));
  return {ramp_, low, high, true};
}

}  // namespace qelm::tool
