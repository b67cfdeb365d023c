#include "mesh/mesh_facts.h"

#include <algorithm>
#include <array>

#include "mesh/mesh_checks.h"
#include "mesh/vec3.h"

namespace qelm::tool {
namespace {

void measureBox(const Mesh& mesh, MeshFacts& facts) {
  facts.low = facts.high = mesh.point(0);
  for (int v = 1; v < mesh.vertexCount(); ++v)
    for (std::size_t k = 0; k < 3; ++k) {
      facts.low[k] = std::min(facts.low[k], mesh.point(v)[k]);
      facts.high[k] = std::max(facts.high[k], mesh.point(v)[k]);
    }
}

double areaOf(const Mesh& mesh) {
  double twice = 0;
  for (int t = 0; t < mesh.triangleCount(); ++t) {
    const auto c = mesh.corners(t);
    const Point p = mesh.point(c[0]);
    twice += length(cross(mesh.point(c[1]) - p, mesh.point(c[2]) - p));
  }
  return twice / 2;
}

EdgeLengths edgeLengthsOf(const Mesh& mesh) {
  std::vector<std::array<int, 2>> edges;
  edges.reserve(mesh.triangles.size());
  for (int t = 0; t < mesh.triangleCount(); ++t)
    for (std::size_t k = 0; k < 3; ++k) {
      const int a = mesh.corners(t)[k];
      const int b = mesh.corners(t)[(k + 1) % 3];
      if (a != b) edges.push_back({std::min(a, b), std::max(a, b)});
    }
  std::sort(edges.begin(), edges.end());
  edges.erase(std::unique(edges.begin(), edges.end()), edges.end());
  EdgeLengths lengths{edges.size(), 0, 0, 0};
  for (std::size_t k = 0; k < edges.size(); ++k) {
    const double size = length(mesh.point(edges[k][1]) - mesh.point(edges[k][0]));
    lengths.shortest = k == 0 ? size : std::min(lengths.shortest, size);
    lengths.longest = std::max(lengths.longest, size);
    lengths.mean += size / static_cast<double>(edges.size());
  }
  return lengths;
}

void findParts(const Mesh& mesh, MeshFacts& facts) {
  const std::vector<int> lowest = lowestOfPart(mesh);
  std::vector<MeshPart> parts(lowest.size());
  for (int v = 0; v < mesh.vertexCount(); ++v)
    ++parts[static_cast<std::size_t>(lowest[static_cast<std::size_t>(v)])].vertexCount;
  for (int t = 0; t < mesh.triangleCount(); ++t)
    ++parts[static_cast<std::size_t>(lowest[static_cast<std::size_t>(mesh.corners(t)[0])])]
          .triangleCount;
  for (int v = 0; v < mesh.vertexCount(); ++v) {
    MeshPart part = parts[static_cast<std::size_t>(v)];
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
  measureBox(mesh, facts);
  facts.area = areaOf(mesh);
  facts.edges = edgeLengthsOf(mesh);
  findParts(mesh, facts);
  facts.loops = boundaryLoops(mesh);
  return facts;
}

}  // namespace qelm::tool
