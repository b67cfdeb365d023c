// The solve exports: they check their arguments in the documented order, make views of the arrays,
// solve, and write the status.
#include <cstddef>
#include <cstdint>
#include <span>

#include "interface/index.h"
#include "interface/mesh_system.h"
#include "qelm.h"
#include "solve/batch_solve.h"
#include "solve/checked_solve.h"

namespace {

int handleStatus(const MeshSystem* handle) {
  if (handle == nullptr) return QELM_STATUS_BAD_COUNT_OR_HANDLE;
  if (handle->vertexOrder.empty()) return QELM_STATUS_NO_VERTEX_ORDER;
  return QELM_STATUS_OK;
}

int batchStatus(const MeshSystem* handle, int count) {
  const int status = handleStatus(handle);
  return status == QELM_STATUS_OK && count < 0 ? QELM_STATUS_BAD_COUNT_OR_HANDLE : status;
}

/// One span over `count` fields; an empty one for a null array.
template <class T>
std::span<T> fieldsAt(T* fields, int count, std::size_t n) {
  return fields == nullptr ? std::span<T>() : std::span<T>(fields, qelm::asIndex(count) * n);
}

qelm::Batch batchAt(const MeshSystem& system, int count, const double* values, const double* loads,
                    double* results) {
  const auto n = qelm::asIndex(system.vertexCount);
  return {fieldsAt(values, count, n), fieldsAt(loads, count, n), fieldsAt(results, count, n)};
}

}  // namespace

extern "C" void qelmsolveTagged(const MeshSystem* handle, const double* values, double* result,
                                int* status) {
  const int outcome = handleStatus(handle);
  if (outcome == QELM_STATUS_OK) {
    const auto n = qelm::asIndex(handle->vertexCount);
    qelm::solveBatch(*handle, {{values, n}, {}, {result, n}});
  }
  *status = outcome;
}

extern "C" void qelmsolvePTagged(const MeshSystem* handle, const double* values, const double* load,
                                 double* result, int* status) {
  const int outcome = handleStatus(handle);
  if (outcome == QELM_STATUS_OK) {
    const auto n = qelm::asIndex(handle->vertexCount);
    qelm::solveBatch(*handle, {{values, n}, {load, n}, {result, n}});
  }
  *status = outcome;
}

extern "C" void qelmsolveManyTagged(const MeshSystem* handle, int count, const double* values,
                                    const double* loads, double* results, int* status) {
  const int outcome = batchStatus(handle, count);
  if (outcome == QELM_STATUS_OK && count > 0)
    qelm::solveBatch(*handle, batchAt(*handle, count, values, loads, results));
  *status = outcome;
}

extern "C" void qelmsolveCheckedTagged(const MeshSystem* handle, int count, const double* values,
                                       const double* loads, double* results, std::int64_t* firstOut,
                                       int* status) {
  qelm::CheckedOutcome outcome = {batchStatus(handle, count), -1};
  if (outcome.status == QELM_STATUS_OK && count > 0)
    outcome = qelm::solveChecked(*handle, batchAt(*handle, count, values, loads, results));
  if (firstOut != nullptr) *firstOut = outcome.first;
  *status = outcome.status;
}
