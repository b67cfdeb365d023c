// Vertices in no triangle: they keep their numbers in results, but take no part in the equations.
#ifndef QELM_TOOLS_USED_PART_H
#define QELM_TOOLS_USED_PART_H

#include <cstddef>
#include <span>
#include <vector>

#include "mesh/mesh.h"

namespace qelm::tool {

/// For each vertex whether some triangle names it.
std::vector<bool> usedVertices(const Mesh& mesh);

/// A mesh without the vertices that are in no triangle; the others keep their order.
struct UsedPart {
  Mesh mesh;
  std::vector<int> vertices;  ///< for each of its vertices the number in the whole mesh

  /// Of one entry for each vertex of the whole mesh, those of the part.
  template <class Entry>
  std::vector<Entry> of(std::span<const Entry> entries) const {
    std::vector<Entry> own;
    own.reserve(vertices.size());
    for (const int v : vertices) own.push_back(entries[static_cast<std::size_t>(v)]);
    return own;
  }
};

UsedPart usedPart(const Mesh& mesh);

}  // namespace qelm::tool

#endif
