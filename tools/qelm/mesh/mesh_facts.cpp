#include "mesh/mesh_facts.h"

#include <algorithm>
#include <span>

#include "mesh/half_edges.h"
#include "mesh/mesh_checks.h"
#include "mesh/vec3.h"
#include "text/index.h"

namespace qelm::tool {
namespace {

double areaOf(const Mesh& mesh) {
  double twice = 0;
  for (int t = 0; t < mesh.triangleCount(); ++t) twice += length(areaVector(mesh, t));
  return twice / 2;
}

EdgeLengths edgeLengthsOf(const Mesh& mesh) {
  std::vector<double> sizes;
  forEachEdge(sortedHalfEdges(mesh), [&](std::span<const HalfEdge> edge) {
    if (edge[0].low != edge[0].high)
      sizes.push_back(length(mesh.point(edge[0].high) - mesh.point(edge[0].low)));
  });
  EdgeLengths lengths{sizes.size(), sizes.empty() ? 0 : sizes[0], 0, 0};
  for (const double size : sizes) {
    lengths.shortest = std::min(lengths.shortest, size);
    lengths.longest = std::max(lengths.longest, size);
    lengths.mean += size / static_cast<double>(sizes.size());
  }
  return lengths;
}

void findParts(const Mesh& mesh, MeshFacts& facts) {
  const std::vector<int> lowest = lowestOfPart(mesh);
  std::vector<MeshPart> parts(lowest.size());
  for (const int v : lowest) ++parts[asIndex(v)].vertexCount;
  for (int t = 0; t < mesh.triangleCount(); ++t)
    ++parts[asIndex(lowest[asIndex(mesh.corner(t, 0))])].triangleCount;
  for (int v = 0; v < mesh.vertexCount(); ++v) {
    MeshPart part = parts[asIndex(v)];
    part.vertex = v;
    if (part.triangleCount > 0)
      facts.parts.push_back(part);
    else if (part.vertexCount > 0)
      facts.unused.push_back(v);
  }
}

}  // namespace

MeshFacts factsOf(const Mesh& mesh) {
  MeshFacts facts;
  facts.box = boxOf(mesh);
  facts.area = areaOf(mesh);
  facts.edges = edgeLengthsOf(mesh);
  findParts(mesh, facts);
  facts.loops = boundaryLoops(mesh);
  return facts;
}

}  // namespace qelm::tool
