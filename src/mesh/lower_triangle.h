// The strictly lower triangle of the stiffness matrix K in its free rows, and their diagonal,
// summed over the triangles of a mesh.
//
// In: contributions K_ab += value, one for each edge of each triangle. Out: for each free vertex v
// the entries K_vu with u < v, one for each lower vertex of v's one-ring, ascending. Each entry
// sums its contributions from the first to the last; that order decides the bits.
//
// The trick is a counting sort. The bucket of v takes all contributions to row v, one after the
// other; then a table with a slot for each column merges those of one entry within the bucket:
//
//   triangles (0,1,2) (0,2,3), contributions a b c of the first one's edges, d e f of the second's
//   buckets     1: (0,a)    2: (1,b) (0,c) (0,d)     3: (2,e) (0,f)
//   merged      1: (0,a)    2: (0,c+d) (1,b)         3: (0,f) (2,e)
//
// Cost: O(m) for m triangles, and sorting rows of some three entries. 36 bytes for each triangle
// until the buckets are merged, 12 for each edge from then on, both for the moment between; 16 for
// each vertex. The sort by buckets is that of Gustavson (Two fast algorithms for sparse matrices:
// multiplication and permuted transposition, 1978).
#ifndef QELM_MESH_LOWER_TRIANGLE_H
#define QELM_MESH_LOWER_TRIANGLE_H

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <span>
#include <vector>

#include "interface/compiler.h"
#include "interface/index.h"

namespace qelm {

/// Filled in four steps: count() every contribution, makeBuckets(), add() the same contributions,
/// mergeBuckets(). row() is for afterwards. The first `taggedCount` rows, of prescribed vertices,
/// stay empty.
class LowerTriangle {
 public:
// Without padding: a third more entries in the caches.
#pragma pack(push, 4)
  struct Entry {
    std::int32_t column;
    double value;
  };
#pragma pack(pop)

  LowerTriangle(std::int32_t taggedCount, std::size_t vertexCount)
      : taggedCount_(taggedCount), rows_(vertexCount, Row{0, 0}) {}

  /// Counts a contribution to K_ab, for a != b; none if both vertices are prescribed.
  void count(std::int32_t a, std::int32_t b) {
    const std::int32_t row = std::max(a, b);
    if (row >= taggedCount_) ++rows_[asIndex(row)].end;
  }

  /// Makes an empty bucket of the right size for each row. Throws std::bad_alloc if 32 bits cannot
  /// number the contributions: no matrix that can be indexed has so many.
  void makeBuckets();

  /// K_ab += value, for a != b. Does nothing if both vertices are prescribed.
  void add(std::int32_t a, std::int32_t b, double value) {
    const std::int32_t row = std::max(a, b);
    if (row < taggedCount_) return;
    entries_[rows_[asIndex(row)].end++] = {std::min(a, b), value};
  }

  /// K_vv += value.
  void addToDiagonal(std::int32_t v, double value) { rows_[asIndex(v)].diagonal += value; }

  /// Prefetch what adding to row v needs: first the row, then, when it has come, its next entry.
  QELM_INLINE void prefetchRow(std::int32_t v) const { prefetchToWrite(&rows_[asIndex(v)]); }
  QELM_INLINE void prefetchBucket(std::int32_t v) const {
    prefetchToWrite(entries_.get() + rows_[asIndex(v)].end);
  }

  /// Makes one entry of all contributions to it, and sorts the rows.
  void mergeBuckets();

  std::int32_t vertexCount() const { return asInt(rows_.size()); }
  double diagonal(std::int32_t v) const { return rows_[asIndex(v)].diagonal; }
  /// The entries of row v, columns ascending.
  std::span<const Entry> row(std::int32_t v) const {
    const std::size_t start = v == 0 ? 0 : rows_[asIndex(v) - 1].end;
    return {entries_.get() + start, entries_.get() + rows_[asIndex(v)].end};
  }

 private:
  struct Row {
    double diagonal;
    /// End of its entries, which start where those of the row before end. Before makeBuckets() the
    /// number of its contributions.
    std::size_t end;
  };

  std::int32_t taggedCount_;
  std::vector<Row> rows_;
  std::unique_ptr<Entry[]> entries_;
};

}  // namespace qelm

#endif  // QELM_MESH_LOWER_TRIANGLE_H
