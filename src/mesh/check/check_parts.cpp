// Connected parts: vertices that triangles connect, found with union-find. Each part needs a
// prescribed vertex, or its fields are determined only up to a constant.
#include <vector>

#include "interface/index.h"
#include "mesh/check/check.h"
#include "mesh/disjoint_sets.h"
#include "mesh/numbering.h"

namespace qelm {
namespace {

/// Unites those corners that are in range, and marks them as used.
void uniteCorners(const MeshView& mesh, std::size_t triangle, DisjointSets& parts,
                  std::vector<bool>& used) {
  std::int32_t previous = -1;
  for (const std::int32_t v : mesh.corners(triangle)) {
    if (!mesh.inRange(v)) continue;
    used[asIndex(v)] = true;
    if (previous >= 0) parts.unite(previous, v);
    previous = v;
  }
}

}  // namespace

// A triangle connects its vertices even if it is not sound, as it uses them in checkIndices().
void checkParts(const MeshView& mesh, QelmMeshReport& report) {
  const std::size_t n = mesh.vertexCount();
  DisjointSets parts(n);
  std::vector<bool> used(n, false);
  for (std::size_t j = 0; j < mesh.triangleCount(); ++j) uniteCorners(mesh, j, parts, used);

  std::vector<bool> tagged(n, false);
  for (std::size_t i = 0; i < n; ++i) {
    if (!isPrescribed(mesh.tags[i])) continue;
    tagged[asIndex(parts.root(asInt(i)))] = true;
  }
  for (std::size_t i = 0; i < n; ++i) {
    const bool isLowestOfAPart = used[i] && parts.root(asInt(i)) == asInt(i);
    if (!isLowestOfAPart) continue;
    note(report.part, i);
    if (!tagged[i]) note(report.untaggedPart, i);
  }
}

}  // namespace qelm
