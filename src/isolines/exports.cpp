// The isoline exports: views of the handle's arrays, one pass over the triangles, and result tables
// on the C heap.
#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <limits>
#include <memory>
#include <new>
#include <span>

#include "interface/index.h"
#include "interface/mesh_system.h"
#include "isolines/column_major_view.h"
#include "isolines/isolines.h"
#include "isolines/sorted_levels.h"
#include "qelm.h"

namespace {

struct CFree {
  void operator()(void* block) const { std::free(block); }
};
template <class T>
using CHeap = std::unique_ptr<T, CFree>;

/// Uninitialised room for `count` objects that free() takes back; null for none.
template <class T>
CHeap<T> allocate(std::size_t count) {
  if (count == 0) return nullptr;
  if (count > std::numeric_limits<std::size_t>::max() / sizeof(T)) throw std::bad_alloc();
  CHeap<T> block(static_cast<T*>(std::malloc(count * sizeof(T))));
  if (block == nullptr) throw std::bad_alloc();
  return block;
}

/// A record that still owns nothing but itself.
template <class Record>
CHeap<Record> emptyRecord(std::size_t rows, std::int64_t columns) {
  CHeap<Record> record = allocate<Record>(1);
  *record = {nullptr, static_cast<std::int64_t>(rows), columns};
  return record;
}

/// Reads a mesh's two arrays as tables stored column by column, each with as many rows as there are
/// vertices, the number that qeltris() reports, too. Neither array is laid out like that, and the
/// triangles are not that many: this reading and a loop over that number of triangle rows are
/// deliberate and relied upon. Nothing beyond the end of the triangle array is read.
qelm::IsolineInput inputOf(const MeshSystem* handle, const double* field) {
  const double* coordinates = nullptr;
  const int* indices = nullptr;
  const auto vertexRows = qelm::asIndex(qelverts(handle, &coordinates));
  const auto triangleRows = qelm::asIndex(qeltris(handle, &indices));
  const std::size_t storedIndices = handle == nullptr ? 0 : handle->triangles->size();
  return {{{coordinates, 3 * vertexRows}, vertexRows, 3},
          {{indices, storedIndices}, triangleRows, 3},
          {field, vertexRows}};
}

/// Segment i runs from point i to point i + s.
void writeEdges(std::size_t segments, std::int32_t* edges) {
  for (std::size_t i = 0; i < segments; ++i) {
    edges[i] = qelm::asInt(i);
    edges[i + segments] = qelm::asInt(i + segments);
  }
}

}  // namespace

extern "C" void qelisoline(const MeshSystem* handle, const double* field, int nvals,
                           const double* vals, IsoPointMatrix** pointsOut,
                           IsoEdgeMatrix** edgesOut) {
  const qelm::IsolineInput input = inputOf(handle, field);
  qelm::SortedLevels levels({vals, qelm::asIndex(std::max(nvals, 0))});
  const qelm::CrossingGroups groups = qelm::findCrossings(input, levels);

  const std::size_t segments = groups[0].size() + groups[1].size() + groups[2].size();
  qelm::indexable(static_cast<std::int64_t>(2 * segments));  // the points, in the table of edges
  CHeap<IsoPointMatrix> points = emptyRecord<IsoPointMatrix>(2 * segments, 3);
  CHeap<IsoEdgeMatrix> edges = emptyRecord<IsoEdgeMatrix>(segments, 2);
  CHeap<double> pointData = allocate<double>(6 * segments);
  CHeap<std::int32_t> edgeData = allocate<std::int32_t>(2 * segments);
  qelm::writeSegmentEnds(input, levels, groups, {{pointData.get(), 6 * segments}, 2 * segments, 3});
  writeEdges(segments, edgeData.get());

  points->data = pointData.release();
  edges->data = edgeData.release();
  *pointsOut = points.release();
  *edgesOut = edges.release();
}

extern "C" void qelfreeisoline(IsoPointMatrix* points, IsoEdgeMatrix* edges) {
  if (points != nullptr) {
    std::free(points->data);
    std::free(points);
  }
  if (edges != nullptr) {
    std::free(edges->data);
    std::free(edges);
  }
}
