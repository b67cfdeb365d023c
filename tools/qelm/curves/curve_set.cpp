#include "curves/curve_set.h"

#include <fmt/format.h>

#include <memory>

#include "qelm.h"
#include "text/error.h"
#include "text/index.h"

namespace qelm::tool {
namespace {

struct Free {
  void operator()(QelmCurves* curves) const { qelmfreecurves(curves); }
};

}  // namespace

CurveSet::CurveSet(const FieldSystem& system, std::span<const double> field,
                   std::vector<double> levels)
    : levels_(std::move(levels)) {
  int status = -1;
  QelmCurves* curves = nullptr;
  const std::vector<double> own = system.used(field);
  qelmcurvesTagged(system.handle(), own.data(), asInt(levels_.size()), levels_.data(), &curves,
                   &status);
  const std::unique_ptr<QelmCurves, Free> owner(curves);
  if (status != QELM_STATUS_OK)
    throw InputError(fmt::format("the library refuses to cut curves with status {}", status));
  for (int c = 0; c < curves->curveCount; ++c) {
    const std::size_t first = asIndex(curves->starts[c]);
    const std::size_t last = asIndex(curves->starts[c + 1]);
    add({curves->points + 3 * first, 3 * (last - first)}, asIndex(curves->levels[c]),
        curves->closed[c] != 0);
  }
}

void CurveSet::add(std::span<const double> coordinates, std::size_t level, bool closed) {
  curves_.push_back({coordinates_.size(), level, closed});
  coordinates_.insert(coordinates_.end(), coordinates.begin(), coordinates.end());
}

Curve CurveSet::operator[](std::size_t k) const {
  const Entry& curve = curves_[k];
  const std::size_t end = k + 1 < size() ? curves_[k + 1].begin : coordinates_.size();
  return {{coordinates_.data() + curve.begin, end - curve.begin}, curve.level, curve.closed};
}

}  // namespace qelm::tool
