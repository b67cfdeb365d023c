#include "level_curves.h"

#include <fmt/format.h>

#include <cmath>
#include <utility>

#include "error.h"
#include "text.h"

namespace qelm::tool {

LevelCurves::LevelCurves(const FieldSystem& system, std::span<const double> field,
                         std::vector<double> levels)
    : levels_(std::move(levels)) {
  QelmCurves* curves = nullptr;
  int status = -1;
  qelmcurvesTagged(system.handle(), field.data(), static_cast<int>(levels_.size()), levels_.data(),
                   &curves, &status);
  curves_.reset(curves);
  if (status != QELM_STATUS_OK)
    throw InputError(fmt::format("the library refuses to cut: {}", qelmstatustext(status)));
}

Curve LevelCurves::operator[](std::size_t k) const {
  const auto start = static_cast<std::size_t>(curves_->starts[k]);
  const auto end = static_cast<std::size_t>(curves_->starts[k + 1]);
  return {static_cast<std::size_t>(curves_->levels[k]),
          curves_->closed[k] != 0,
          {curves_->points + 3 * start, 3 * (end - start)}};
}

std::vector<double> evenLevels(double low, double high, int count) {
  std::vector<double> levels;
  for (int k = 1; k <= count; ++k) {
    const double part = static_cast<double>(k) / (count + 1);
    levels.push_back((1 - part) * low + part * high);
  }
  return levels;
}

std::vector<double> parseLevels(const std::string& text) {
  std::vector<double> levels;
  for (const std::string_view word : splitAt(text, ',')) {
    const auto value = parseDouble(trimmed(word));
    if (!value || !std::isfinite(*value))
      throw UsageError(fmt::format("--at {}: '{}' is not a number", text, word));
    levels.push_back(*value);
  }
  return levels;
}

}  // namespace qelm::tool
