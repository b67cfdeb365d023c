#include "mesh/numbering.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <new>

#include "interface/index.h"

namespace qelm {
bool isPrescribed(std::int32_t tag) { return tag == 1 || tag == 2 || tag == 3; }

// Free vertices fill the back block from its end, so their order is reversed:
// system index n-1-k belongs to the k-th free vertex. This is on purpose;
// stored fields and callers' tables rely on it.
VertexNumbering numberVertices(std::span<const std::int32_t> tags) {
  const auto n = asInt(tags.size());
  VertexNumbering numbering;
  numbering.place.resize(tags.size());
  numbering.order.resize(tags.size());
  std::int32_t front = 0;
  for (std::int32_t i = 0; i < n; ++i) {
    const auto input = asIndex(i);
    const std::int32_t freeBefore = i - front;
    const std::int32_t system = isPrescribed(tags[input]) ? front++ : n - 1 - freeBefore;
    numbering.place[input] = system;
    numbering.order[asIndex(system)] = i;
  }
  numbering.taggedCount = front;
  return numbering;
}

std::vector<double> reorderCoordinates(std::span<const double> vertices,
                                       const VertexNumbering& numbering) {
  std::vector<double> reordered(vertices.size());
  for (std::size_t i = 0; i < numbering.place.size(); ++i) {
    const auto s = asIndex(numbering.place[i]);
    for (std::size_t k = 0; k < 3; ++k) reordered[3 * s + k] = vertices[3 * i + k];
  }
  return reordered;
}

// A vertex can be the higher end of three sides of each triangle: 32 bits count those of a
// thousand million triangles, which no matrix that can be indexed has.
//
// Ends are counted in the same pass: a mesh's triangles have no room in the caches. Side by
// side, as the highest and the middle one of three numbers cannot be had without a branch.
SystemTriangles renumberTriangles(std::span<const std::int32_t> triangles,
                                  const VertexNumbering& numbering) {
  if (triangles.size() > std::numeric_limits<std::uint32_t>::max()) throw std::bad_alloc();
  SystemTriangles system;
  system.indices.resize(triangles.size());
  system.higherEnds.resize(numbering.place.size());
  const auto placeOf = [&](std::size_t j) { return numbering.place[asIndex(triangles[j])]; };
  const auto countSide = [&](std::int32_t a, std::int32_t b) {
    ++system.higherEnds[asIndex(std::max(a, b))];
  };
  for (std::size_t j = 0; j < triangles.size(); j += 3) {
    const std::int32_t a = placeOf(j);
    const std::int32_t b = placeOf(j + 1);
    const std::int32_t c = placeOf(j + 2);
    system.indices[j] = a;
    system.indices[j + 1] = b;
    system.indices[j + 2] = c;
    countSide(a, b);
    countSide(b, c);
    countSide(a, c);
  }
  return system;
}

}  // namespace qelm
