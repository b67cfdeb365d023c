#include "mesh/numbering.h"

#include <algorithm>
#include <cstddef>

#include "interface/index.h"

namespace qelm {

bool isPrescribed(std::int32_t tag) { return tag == 1 || tag == 2 || tag == 3; }

// Free vertices fill the system order from its end, so their order is reversed: system index n-1-k
// belongs to the k-th free vertex. This is on purpose; stored fields and callers' tables rely on
// it.
VertexNumbering numberVertices(std::span<const std::int32_t> tags) {
  VertexNumbering numbering{0, std::vector<std::int32_t>(tags.size()),
                            std::vector<std::int32_t>(tags.size())};
  std::int32_t back = asInt(tags.size());
  for (std::size_t i = 0; i < tags.size(); ++i) {
    const std::int32_t system = isPrescribed(tags[i]) ? numbering.taggedCount++ : --back;
    numbering.toSystem[i] = system;
    numbering.toInput[asIndex(system)] = asInt(i);
  }
  return numbering;
}

std::vector<double> reorderCoordinates(std::span<const double> vertices,
                                       const VertexNumbering& numbering) {
  std::vector<double> reordered(vertices.size());
  for (std::size_t i = 0; i < numbering.toSystem.size(); ++i) {
    std::copy_n(&vertices[3 * i], 3, &reordered[3 * asIndex(numbering.toSystem[i])]);
  }
  return reordered;
}

std::vector<std::int32_t> renumberTriangles(std::span<const std::int32_t> triangles,
                                            const VertexNumbering& numbering) {
  std::vector<std::int32_t> renumbered(triangles.size());
  std::transform(triangles.begin(), triangles.end(), renumbered.begin(),
                 [&](std::int32_t i) { return numbering.toSystem[asIndex(i)]; });
  return renumbered;
}

}  // namespace qelm
