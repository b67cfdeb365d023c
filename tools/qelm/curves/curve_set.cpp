#include "curves/curve_set.h"

#include <fmt/format.h>

#include "text/error.h"

namespace qelm::tool {

CurveSet::CurveSet(const FieldSystem& system, std::span<const double> field,
                   std::vector<double> levels)
    : levels_(std::move(levels)) {
  int status = -1;
  QelmCurves* curves = nullptr;
  const std::vector<double> own = system.used(field);
  qelmcurvesTagged(system.handle(), own.data(), static_cast<int>(levels_.size()), levels_.data(),
                   &curves, &status);
  curves_.reset(curves);
  if (status != QELM_STATUS_OK)
    throw InputError(fmt::format("the library refuses to cut curves with status {}", status));
}

Curve CurveSet::operator[](std::size_t k) const {
  const auto first = static_cast<std::size_t>(curves_->starts[k]);
  const auto last = static_cast<std::size_t>(curves_->starts[k + 1]);
  return {{curves_->points + 3 * first, 3 * (last - first)},
          static_cast<std::size_t>(curves_->levels[k]),
          curves_->closed[k] != 0};
}

}  // namespace qelm::tool
