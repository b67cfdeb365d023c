// The weld export: it checks the arguments, welds vertices, then triangles.
#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

#include "interface/index.h"
#include "mesh/weld/weld.h"
#include "mesh/weld/weld_triangles.h"
#include "qelm.h"

// NaN is not below 0: that tolerance passes, and welds nothing.
extern "C" int qelmWeld(int vertexCount, const double* vertices, int triangleCount,
                        const int* triangles, double tolerance, double* weldedVertices,
                        int* weldedTriangles, int* vertexMap, int* weldedVertexCount,
                        int* weldedTriangleCount) {
  if (vertexCount < 0 || triangleCount < 0 || tolerance < 0.0) {
    return QELM_STATUS_BAD_COUNT_OR_HANDLE;
  }
  if (weldedVertexCount != nullptr) *weldedVertexCount = 0;
  if (weldedTriangleCount != nullptr) *weldedTriangleCount = 0;
  if (vertexCount == 0) return QELM_STATUS_OK;
  const auto n = qelm::asIndex(vertexCount);
  const auto m = qelm::asIndex(triangleCount);
  const std::span<const double> points(vertices, 3 * n);
  qelm::DisjointSets clusters = qelm::uniteNeighbours(points, tolerance);
  const std::vector<std::int32_t> kept = qelm::numberSets(clusters, {vertexMap, n});
  // `kept` ascends, so each vertex moves towards the front or stays: this works in place, too.
  double* next = weldedVertices;
  for (const std::int32_t i : kept) next = std::copy_n(vertices + 3 * qelm::asIndex(i), 3, next);
  const std::int32_t keptTriangles =
      qelm::weldTriangles({triangles, 3 * m}, {vertexMap, n}, {weldedTriangles, 3 * m});
  *weldedVertexCount = qelm::asInt(kept.size());
  *weldedTriangleCount = keptTriangles;
  return QELM_STATUS_OK;
}
