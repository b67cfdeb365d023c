#include "solve/checked_solve.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <span>

#include "interface/index.h"
#include "qelm.h"

namespace qelm {
namespace {

/// Index of the first number at these vertices of any field that is not finite; -1 without any.
std::int64_t firstNotFinite(std::span<const double> fields, std::size_t vertexCount,
                            std::span<const std::int32_t> vertices) {
  for (std::size_t field = 0; field < fields.size(); field += vertexCount) {
    std::size_t first = vertexCount;
    for (const std::int32_t v : vertices) {
      if (!std::isfinite(fields[field + asIndex(v)])) first = std::min(first, asIndex(v));
    }
    if (first < vertexCount) return static_cast<std::int64_t>(field + first);
  }
  return -1;
}

}  // namespace

CheckedOutcome solveChecked(const MeshSystem& system, const Batch& batch) {
  if (system.freeSolver->info() != Eigen::Success) return {QELM_STATUS_NOT_FACTORISED, -1};
  const auto n = asIndex(system.vertexCount);
  const std::span<const std::int32_t> order = system.vertexOrder;
  const auto fixed = order.first(asIndex(system.fixedCount));
  const auto free = order.subspan(fixed.size());
  if (const auto first = firstNotFinite(batch.values, n, fixed); first >= 0)
    return {QELM_STATUS_VALUE_NOT_FINITE, first};
  if (const auto first = firstNotFinite(batch.loads, n, free); first >= 0)
    return {QELM_STATUS_LOAD_NOT_FINITE, first};
  if (!solveBatchLooking(system, batch))
    return {QELM_STATUS_FIELD_NOT_FINITE, firstNotFinite(batch.results, n, free)};
  return {QELM_STATUS_OK, -1};
}

}  // namespace qelm
