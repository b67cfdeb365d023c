#include "mesh/mesh_checks.h"

#include <fmt/format.h>

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <limits>
#include <numeric>
#include <vector>

#include "mesh/used_part.h"
#include "mesh/vec3.h"
#include "text/error.h"
#include "text/index.h"

namespace qelm::tool {
namespace {

// As QelmMeshReport has it: the assembly forms fourth powers of lengths.
constexpr double kShortestLongestEdge = 1e-60;
constexpr double kLongestLongestEdge = 1e60;

/// Calls bad(element) for every element and throws a message about the first bad one: it begins
/// with describe(element) and ends with the advice.
template <class Error = MeshError, class Bad, class Describe>
void refuseFirst(int count, Bad bad, Describe describe, const char* advice) {
  int first = -1;
  int more = 0;
  for (int k = 0; k < count; ++k) {
    if (!bad(k)) continue;
    if (first < 0)
      first = k;
    else
      ++more;
  }
  if (first < 0) return;
  const std::string others = more == 0 ? "" : fmt::format(" (and {} more)", more);
  throw Error(fmt::format("{}{}; {}", describe(first), others, advice));
}

int repeatedCorner(std::span<const int, 3> c) {
  if (c[0] == c[1] || c[0] == c[2]) return c[0];
  return c[1] == c[2] ? c[1] : -1;
}

double longestEdge(const Mesh& mesh, int triangle) {
  const auto c = mesh.corners(triangle);
  const Point p = mesh.point(c[0]);
  const Point q = mesh.point(c[1]);
  const Point r = mesh.point(c[2]);
  return std::max({length(q - p), length(r - q), length(p - r)});
}

/// Three corners at one place have a bad size, too, but hasNoArea() says more about them.
bool hasBadSize(const Mesh& mesh, int triangle) {
  const double longest = longestEdge(mesh, triangle);
  return longest > 0 && !(longest >= kShortestLongestEdge && longest <= kLongestLongestEdge);
}

}  // namespace

bool hasNoArea(const Mesh& mesh, int triangle) {
  const double twiceArea = length(areaVector(mesh, triangle));
  // Also true of an area that overflowed or underflowed, which the library could not use either.
  return !(twiceArea > heightNoise(mesh, mesh.corners(triangle)) * longestEdge(mesh, triangle)) ||
         !std::isfinite(twiceArea);
}

std::vector<int> lowestOfPart(const Mesh& mesh) {
  // Union-find with path halving. The lower root wins, so that a root is the lowest of its part.
  std::vector<int> parents(asIndex(mesh.vertexCount()));
  std::iota(parents.begin(), parents.end(), 0);
  const auto parent = [&parents](int v) -> int& { return parents[asIndex(v)]; };
  const auto root = [&parent](int v) {
    while (parent(v) != v) v = parent(v) = parent(parent(v));
    return v;
  };
  const auto unite = [&](int a, int b) {
    const int rootA = root(a);
    const int rootB = root(b);
    parent(std::max(rootA, rootB)) = std::min(rootA, rootB);
  };
  for (int t = 0; t < mesh.triangleCount(); ++t) {
    unite(mesh.corner(t, 0), mesh.corner(t, 1));
    unite(mesh.corner(t, 0), mesh.corner(t, 2));
  }
  for (int v = 0; v < mesh.vertexCount(); ++v) parent(v) = root(v);
  return parents;
}

std::string describeTriangle(const Mesh& mesh, int triangle) {
  const auto c = mesh.corners(triangle);
  std::string text = fmt::format("triangle {} ({}, {}, {})", triangle, c[0], c[1], c[2]);
  if (!mesh.faceOfTriangle.empty())
    text += fmt::format(" of face {}", mesh.faceOfTriangle[asIndex(triangle)]);
  return text;
}

std::string describeVertex(const Mesh& mesh, int vertex) {
  const Point p = mesh.point(vertex);
  return fmt::format("vertex {} ({}, {}, {})", vertex, p[0], p[1], p[2]);
}

void checkFinite(const Mesh& mesh) {
  refuseFirst(
      mesh.vertexCount(), [&](int v) { return !isFinite(mesh.point(v)); },
      [&](int v) { return fmt::format("{}: coordinates not finite", describeVertex(mesh, v)); },
      "repair the file");
}

void checkMesh(const Mesh& mesh, const CheckedFor& wanted) {
  refuseFirst(
      mesh.triangleCount(), [&](int t) { return repeatedCorner(mesh.corners(t)) >= 0; },
      [&](int t) {
        return fmt::format("{}: names vertex {} twice", describeTriangle(mesh, t),
                           repeatedCorner(mesh.corners(t)));
      },
      "remove such triangles");
  const std::vector<bool> used = usedVertices(mesh);
  refuseFirst(
      mesh.vertexCount(), [&](int v) { return wanted.strict && !used[asIndex(v)]; },
      [&](int v) { return fmt::format("{}: in no triangle", describeVertex(mesh, v)); },
      "remove such vertices");
  checkFinite(mesh);
  if (wanted.robust) return;
  refuseFirst(
      mesh.triangleCount(), [&](int t) { return hasBadSize(mesh, t); },
      [&](int t) {
        return fmt::format("{}: too small or too large to compute with", describeTriangle(mesh, t));
      },
      "choose another unit");
  refuseFirst(
      mesh.triangleCount(), [&](int t) { return hasNoArea(mesh, t); },
      [&](int t) { return fmt::format("{}: zero area", describeTriangle(mesh, t)); },
      "remove such triangles with 'qelm repair', or solve with --robust");
}

void checkEveryPartIsFixed(const Mesh& mesh, std::span<const int> tags) {
  const std::vector<int> lowest = lowestOfPart(mesh);
  std::vector<int> size(lowest.size(), 0);
  std::vector<bool> fixed(lowest.size(), false);
  const std::vector<bool> used = usedVertices(mesh);
  for (std::size_t v = 0; v < lowest.size(); ++v) {
    ++size[asIndex(lowest[v])];
    if (tags[v] != 0) fixed[asIndex(lowest[v])] = true;
  }
  refuseFirst<SingularError>(
      mesh.vertexCount(),
      [&](int v) { return used[asIndex(v)] && size[asIndex(v)] > 0 && !fixed[asIndex(v)]; },
      [&](int v) {
        return fmt::format("the connected part with {}, {} vertices in all, has no fixed vertex",
                           describeVertex(mesh, v), size[asIndex(v)]);
      },
      "fix a vertex in every part, remove the part, or join the parts with 'qelm weld'");
}

}  // namespace qelm::tool
