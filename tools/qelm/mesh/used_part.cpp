#include "mesh/used_part.h"

namespace qelm::tool {

std::vector<bool> usedVertices(const Mesh& mesh) {
  std::vector<bool> used(static_cast<std::size_t>(mesh.vertexCount()), false);
  for (const int v : mesh.triangles) used[static_cast<std::size_t>(v)] = true;
  return used;
}

UsedPart usedPart(const Mesh& mesh) {
  UsedPart part;
  const std::vector<bool> used = usedVertices(mesh);
  std::vector<int> place(used.size(), -1);
  for (int v = 0; v < mesh.vertexCount(); ++v) {
    if (!used[static_cast<std::size_t>(v)]) continue;
    place[static_cast<std::size_t>(v)] = static_cast<int>(part.vertices.size());
    part.vertices.push_back(v);
    const Point p = mesh.point(v);
    part.mesh.vertices.insert(part.mesh.vertices.end(), p.begin(), p.end());
  }
  part.mesh.triangles.reserve(mesh.triangles.size());
  for (const int v : mesh.triangles)
    part.mesh.triangles.push_back(place[static_cast<std::size_t>(v)]);
  part.mesh.faceOfTriangle = mesh.faceOfTriangle;
  part.mesh.leftOutFaces = mesh.leftOutFaces;
  return part;
}

}  // namespace qelm::tool
