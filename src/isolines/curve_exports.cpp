// The curve exports: checks in order, views, one call, the record.
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <memory>
#include <new>
#include <span>

#include "interface/index.h"
#include "interface/mesh_system.h"
#include "isolines/curves.h"
#include "qelm.h"

namespace {

using qelm::LevelCurves;

/// Counts before pointers, as in the constructor.
int argumentStatus(const MeshSystem* handle, const double* field, int levelCount,
                   const double* levels) {
  if (handle == nullptr) return QELM_STATUS_BAD_COUNT_OR_HANDLE;
  if (handle->vertexOrder.empty()) return QELM_STATUS_NO_VERTEX_ORDER;
  if (levelCount < 0) return QELM_STATUS_BAD_COUNT_OR_HANDLE;
  if (field == nullptr || (levels == nullptr && levelCount > 0)) return QELM_STATUS_NULL_ARRAY;
  return QELM_STATUS_OK;
}

struct CurvesDeleter {
  void operator()(QelmCurves* curves) const { qelmfreecurves(curves); }
};
using CurvesOwner = std::unique_ptr<QelmCurves, CurvesDeleter>;

template <class Entry>
Entry* allocate(std::int64_t count) {
  void* block = std::calloc(qelm::asIndex(count), sizeof(Entry));
  if (block == nullptr) throw std::bad_alloc();
  return static_cast<Entry*>(block);
}

/// A record with room for curves and points; without curves it has no arrays.
CurvesOwner newRecord(std::int64_t curveCount, std::int64_t pointCount) {
  CurvesOwner record(allocate<QelmCurves>(1));
  if (curveCount == 0) return record;
  record->curveCount = curveCount;
  record->pointCount = pointCount;
  record->points = allocate<double>(3 * pointCount);
  record->starts = allocate<std::int64_t>(curveCount + 1);
  record->levels = allocate<std::int32_t>(curveCount);
  record->closed = allocate<std::int32_t>(curveCount);
  return record;
}

/// Calls visit(curve, index of the caller's level) in the order of the record.
template <class Visit>
void forEachCurve(const LevelCurves& cut, Visit visit) {
  for (std::size_t level = 0; level < cut.rangeOf.size(); ++level) {
    const LevelCurves::Range range = cut.rangeOf[level];
    for (std::size_t c = range.first; c < range.last; ++c) visit(cut.traced.curves[c], level);
  }
}

double* writePoints(qelm::PointSequence points, double* to) {
  for (const qelm::Vec3& point : points) {
    *to++ = point.x;
    *to++ = point.y;
    *to++ = point.z;
  }
  return to;
}

CurvesOwner pack(const LevelCurves& cut) {
  std::int64_t curveCount = 0;
  std::int64_t pointCount = 0;
  forEachCurve(cut, [&](const qelm::TracedCurve& curve, std::size_t) {
    ++curveCount;
    pointCount += curve.count;
  });
  CurvesOwner record = newRecord(curveCount, pointCount);
  double* points = record->points;
  std::size_t c = 0;
  forEachCurve(cut, [&](const qelm::TracedCurve& curve, std::size_t level) {
    points = writePoints(cut.traced.pointsOf(curve), points);
    record->starts[c + 1] = record->starts[c] + curve.count;
    record->levels[c] = qelm::asInt(level);
    record->closed[c] = curve.closed ? 1 : 0;
    ++c;
  });
  return record;
}

}  // namespace

extern "C" void qelmcurvesTagged(const MeshSystem* handle, const double* field, int levelCount,
                                 const double* levels, QelmCurves** curvesOut, int* status) {
  *curvesOut = nullptr;
  const int outcome = argumentStatus(handle, field, levelCount, levels);
  if (outcome == QELM_STATUS_OK) {
    const auto n = qelm::asIndex(handle->vertexCount);
    const qelm::FieldOnMesh mesh = {
        *handle->vertices, *handle->triangles, handle->vertexOrder, {field, n}};
    const auto count = qelm::asIndex(levelCount);
    *curvesOut = pack(qelm::cutCurves(mesh, {levels, count})).release();
  }
  *status = outcome;
}

extern "C" void qelmfreecurves(QelmCurves* curves) {
  if (curves == nullptr) return;
  std::free(curves->points);
  std::free(curves->starts);
  std::free(curves->levels);
  std::free(curves->closed);
  std::free(curves);
}
