#include "mesh/used_part.h"

#include "text/index.h"

namespace qelm::tool {

std::vector<bool> usedVertices(const Mesh& mesh) {
  std::vector<bool> used(asIndex(mesh.vertexCount()), false);
  for (const int v : mesh.triangles) used[asIndex(v)] = true;
  return used;
}

UsedPart usedPart(const Mesh& mesh) {
  UsedPart part;
  const std::vector<bool> used = usedVertices(mesh);
  std::vector<int> newNumber(used.size(), -1);
  for (int v = 0; v < mesh.vertexCount(); ++v) {
    if (!used[asIndex(v)]) continue;
    newNumber[asIndex(v)] = asInt(part.vertices.size());
    part.vertices.push_back(v);
    const Point p = mesh.point(v);
    part.mesh.vertices.insert(part.mesh.vertices.end(), p.begin(), p.end());
  }
  part.mesh.triangles.reserve(mesh.triangles.size());
  for (const int v : mesh.triangles) part.mesh.triangles.push_back(newNumber[asIndex(v)]);
  part.mesh.faceOfTriangle = mesh.faceOfTriangle;
  part.mesh.leftOutFaces = mesh.leftOutFaces;
  return part;
}

}  // namespace qelm::tool
