#include "mesh/sparsity.h"

#include <algorithm>
#include <cstddef>
#include <vector>

namespace qelm {
namespace {

std::size_t at(std::int32_t index) { return static_cast<std::size_t>(index); }

/// The triangles at each vertex v: triangles[start[v]] .. triangles[start[v+1]-1].
struct VertexTriangles {
  std::vector<std::size_t> start;       // n + 1
  std::vector<std::int32_t> triangles;  // 3m
};

VertexTriangles trianglesAtVertices(std::int32_t n, std::span<const std::int32_t> triangles) {
  VertexTriangles around{std::vector<std::size_t>(at(n) + 1, 0),
                         std::vector<std::int32_t>(triangles.size())};
  for (const std::int32_t v : triangles) ++around.start[at(v)];
  std::size_t end = 0;
  for (std::size_t& entry : around.start) entry = end += entry;
  // Each entry is the end of its vertex's range now, and filling from the last
  // triangle down makes it the start.
  for (std::size_t j = triangles.size(); j-- > 0;) {
    around.triangles[--around.start[at(triangles[j])]] = static_cast<std::int32_t>(j / 3);
  }
  return around;
}

/// Calls visit(row, column) once for every entry of the rows t .. n-1, rows
/// ascending, columns within a row in no order.
template <class Visit>
void forEachEntry(std::int32_t t, std::int32_t n, std::span<const std::int32_t> triangles,
                  const VertexTriangles& around, Visit visit) {
  std::vector<std::int32_t> lastRowSeen(at(n), -1);
  for (std::int32_t row = t; row < n; ++row) {
    for (std::size_t k = around.start[at(row)]; k < around.start[at(row) + 1]; ++k) {
      for (const std::int32_t column : triangles.subspan(3 * at(around.triangles[k]), 3)) {
        if (lastRowSeen[at(column)] == row) continue;
        lastRowSeen[at(column)] = row;
        visit(row, column);
      }
    }
  }
}

/// Turns the counts in outer[1] .. outer[columns] into ends, and makes room.
void reserveColumns(SparseBlock& block) {
  std::int32_t* outer = block.outerIndexPtr();
  for (Eigen::Index c = 0; c < block.cols(); ++c) outer[c + 1] += outer[c];
  block.resizeNonZeros(outer[block.cols()]);
  std::fill_n(block.valuePtr(), outer[block.cols()], -0.0);
}

}  // namespace

// Two passes over the entries, one to count and one to store. As the rows come in
// ascending order, each column receives its own in that order, without sorting.
FreeRowBlocks emptyFreeRows(std::int32_t t, std::int32_t n,
                            std::span<const std::int32_t> triangles) {
  const VertexTriangles around = trianglesAtVertices(n, triangles);
  FreeRowBlocks blocks{SparseBlock(n - t, n - t), SparseBlock(n - t, t)};
  std::int32_t* const freeOuter = blocks.freeFree.outerIndexPtr();
  std::int32_t* const fixedOuter = blocks.freeFixed.outerIndexPtr();
  forEachEntry(t, n, triangles, around, [=](std::int32_t, std::int32_t column) {
    ++(column < t ? fixedOuter[column + 1] : freeOuter[column - t + 1]);
  });
  reserveColumns(blocks.freeFree);
  reserveColumns(blocks.freeFixed);

  std::vector<std::int32_t> next(fixedOuter, fixedOuter + t);
  next.insert(next.end(), freeOuter, freeOuter + (n - t));
  std::int32_t* const freeRows = blocks.freeFree.innerIndexPtr();
  std::int32_t* const fixedRows = blocks.freeFixed.innerIndexPtr();
  forEachEntry(t, n, triangles, around, [&](std::int32_t row, std::int32_t column) {
    (column < t ? fixedRows : freeRows)[next[at(column)]++] = row - t;
  });
  return blocks;
}

}  // namespace qelm
