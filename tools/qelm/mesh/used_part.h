// A mesh without its vertices in no triangle, which keep their numbers in results but have no
// value.
#ifndef QELM_TOOLS_USED_PART_H
#define QELM_TOOLS_USED_PART_H

#include <cstddef>
#include <span>
#include <vector>

#include "mesh/mesh.h"
#include "text/index.h"

namespace qelm::tool {

/// For each vertex whether some triangle names it.
std::vector<bool> usedVertices(const Mesh& mesh);

/// A mesh without the vertices that are in no triangle; the others keep their order.
struct UsedPart {
  Mesh mesh;
  std::vector<int> vertices;  ///< for each of its vertices the number in the whole mesh

  /// The part's entries of an array with one for each vertex of the whole mesh.
  template <class Entry>
  std::vector<Entry> of(std::span<const Entry> entries) const {
    std::vector<Entry> own;
    own.reserve(vertices.size());
    for (const int v : vertices) own.push_back(entries[asIndex(v)]);
    return own;
  }
};

UsedPart usedPart(const Mesh& mesh);

}  // namespace qelm::tool

#endif
