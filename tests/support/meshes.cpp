#include "support/meshes.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <map>
#include <numbers>

#include "support/random.h"

namespace qelm::test {
namespace {

using Edge = std::pair<std::int32_t, std::int32_t>;

void addVertex(Mesh& mesh, Point p) {
  mesh.vertices.insert(mesh.vertices.end(), {p.x, p.y, p.z});
  mesh.tags.push_back(0);
}

void addTriangle(Mesh& mesh, int a, int b, int c) {
  mesh.triangles.insert(mesh.triangles.end(), {a, b, c});
}

Point onUnitSphere(Point p) {
  const double r = std::sqrt(p.x * p.x + p.y * p.y + p.z * p.z);
  return {p.x / r, p.y / r, p.z / r};
}

Mesh icosahedron() {
  const double g = std::numbers::phi;
  Mesh mesh;
  for (const Point p : {Point{-1, g, 0}, Point{1, g, 0}, Point{-1, -g, 0}, Point{1, -g, 0},
                        Point{0, -1, g}, Point{0, 1, g}, Point{0, -1, -g}, Point{0, 1, -g},
                        Point{g, 0, -1}, Point{g, 0, 1}, Point{-g, 0, -1}, Point{-g, 0, 1}}) {
    addVertex(mesh, onUnitSphere(p));
  }
  mesh.triangles = {0, 11, 5,  0, 5,  1, 0, 1, 7, 0, 7,  10, 0, 10, 11, 1, 5, 9, 5, 11,
                    4, 11, 10, 2, 10, 7, 6, 7, 1, 8, 3,  9,  4, 3,  4,  2, 3, 2, 6, 3,
                    6, 8,  3,  8, 9,  4, 9, 5, 2, 4, 11, 6,  2, 10, 8,  6, 7, 9, 8, 1};
  return mesh;
}

/// Splits every triangle into four; new vertices go to the sphere.
Mesh subdivided(const Mesh& coarse) {
  Mesh fine;
  fine.vertices = coarse.vertices;
  fine.tags = coarse.tags;
  std::map<Edge, int> middles;
  const auto middle = [&](int a, int b) {
    const auto [where, isNew] = middles.try_emplace(std::minmax(a, b), fine.vertexCount());
    if (isNew) {
      const Point p = coarse.point(a);
      const Point q = coarse.point(b);
      addVertex(fine, onUnitSphere({p.x + q.x, p.y + q.y, p.z + q.z}));
    }
    return where->second;
  };
  for (std::size_t t = 0; t < coarse.triangles.size(); t += 3) {
    const int a = coarse.triangles[t];
    const int b = coarse.triangles[t + 1];
    const int c = coarse.triangles[t + 2];
    const int ab = middle(a, b);
    const int bc = middle(b, c);
    const int ca = middle(c, a);
    addTriangle(fine, a, ab, ca);
    addTriangle(fine, b, bc, ab);
    addTriangle(fine, c, ca, bc);
    addTriangle(fine, ab, bc, ca);
  }
  return fine;
}

}  // namespace

Point Mesh::point(int vertex) const {
  const auto base = 3 * static_cast<std::size_t>(vertex);
  return {vertices[base], vertices[base + 1], vertices[base + 2]};
}

Mesh Mesh::withTags(std::vector<std::int32_t> newTags) const {
  Mesh copy = *this;
  copy.tags = std::move(newTags);
  return copy;
}

Mesh Mesh::withTagged(std::initializer_list<int> vertexIndices, std::int32_t tag) const {
  Mesh copy = *this;
  for (const int v : vertexIndices) copy.tags[static_cast<std::size_t>(v)] = tag;
  return copy;
}

Mesh Mesh::withBoundaryTagged(std::int32_t tag) const {
  Mesh copy = *this;
  const std::vector<bool> onBoundary = boundaryVertices(*this);
  for (std::size_t i = 0; i < copy.tags.size(); ++i) {
    if (onBoundary[i]) copy.tags[i] = tag;
  }
  return copy;
}

Mesh Mesh::withEveryVertexTagged(std::int32_t tag) const {
  return withTags(std::vector<std::int32_t>(tags.size(), tag));
}

Mesh rightTriangle() {
  Mesh mesh;
  for (const Point p : {Point{0, 0, 0}, Point{1, 0, 0}, Point{0, 1, 0}}) addVertex(mesh, p);
  addTriangle(mesh, 0, 1, 2);
  return mesh;
}

Mesh twoPartsOneTagged() {
  Mesh mesh = rightTriangle();
  for (const Point p : {Point{5, 0, 0}, Point{6, 0, 0}, Point{5, 1, 0}}) addVertex(mesh, p);
  addTriangle(mesh, 3, 4, 5);
  return mesh.withTagged({0}, 3);
}

Mesh twoTriangles() {
  Mesh mesh;
  for (const Point p : {Point{0, 0, 0}, Point{1, 0, 0}, Point{1, 1, 0}, Point{0, 1, 0}}) {
    addVertex(mesh, p);
  }
  addTriangle(mesh, 0, 1, 2);
  addTriangle(mesh, 0, 2, 3);
  return mesh;
}

Mesh gridMesh(int columns, int rows) {
  Mesh mesh;
  for (int r = 0; r < rows; ++r) {
    for (int c = 0; c < columns; ++c) {
      addVertex(mesh,
                {static_cast<double>(c) / (columns - 1), static_cast<double>(r) / (rows - 1), 0});
    }
  }
  for (int r = 0; r + 1 < rows; ++r) {
    for (int c = 0; c + 1 < columns; ++c) {
      const int v = r * columns + c;
      addTriangle(mesh, v, v + 1, v + columns + 1);
      addTriangle(mesh, v, v + columns + 1, v + columns);
    }
  }
  return mesh;
}

Mesh sphereMesh(int levels) {
  Mesh mesh = icosahedron();
  for (int level = 0; level < levels; ++level) mesh = subdivided(mesh);
  return mesh;
}

Mesh torusMesh(int aroundAxis, int aroundTube) {
  Mesh mesh;
  for (int i = 0; i < aroundAxis; ++i) {
    const double u = 2 * std::numbers::pi * i / aroundAxis;
    for (int j = 0; j < aroundTube; ++j) {
      const double v = 2 * std::numbers::pi * j / aroundTube;
      const double r = 2 + 0.75 * std::cos(v);
      addVertex(mesh, {r * std::cos(u), r * std::sin(u), 0.75 * std::sin(v)});
    }
  }
  const auto at = [&](int i, int j) { return i % aroundAxis * aroundTube + j % aroundTube; };
  for (int i = 0; i < aroundAxis; ++i) {
    for (int j = 0; j < aroundTube; ++j) {
      addTriangle(mesh, at(i, j), at(i + 1, j), at(i + 1, j + 1));
      addTriangle(mesh, at(i, j), at(i + 1, j + 1), at(i, j + 1));
    }
  }
  return mesh;
}

Mesh openSurface(int columns, int rows, std::uint64_t seed) {
  Random random(seed);
  const double jitter = 0.25;  // of a cell: keeps every triangle's orientation
  return gridMesh(columns, rows).mapped([&](Point p) {
    const double x = p.x + uniform(random, -jitter, jitter) / (columns - 1);
    const double y = p.y + uniform(random, -jitter, jitter) / (rows - 1);
    return Point{x, y, 0.2 * std::sin(5 * x) * std::cos(4 * y)};
  });
}

Mesh sliverStrip(int quads, double aspect) {
  return gridMesh(quads + 1, 2).mapped([&](Point p) {
    return Point{p.x * quads, p.y * aspect, 0};
  });
}

Mesh fan(int triangles) {
  Mesh mesh;
  addVertex(mesh, {0, 0, 0});
  for (int i = 0; i < triangles; ++i) {
    const double angle = 2 * std::numbers::pi * i / triangles;
    addVertex(mesh, {std::cos(angle), std::sin(angle), 0});
  }
  for (int i = 0; i < triangles; ++i) addTriangle(mesh, 0, 1 + i, 1 + (i + 1) % triangles);
  return mesh;
}

std::vector<bool> boundaryVertices(const Mesh& mesh) {
  std::map<Edge, int> uses;
  for (std::size_t t = 0; t < mesh.triangles.size(); t += 3) {
    for (std::size_t k = 0; k < 3; ++k) {
      ++uses[std::minmax(mesh.triangles[t + k], mesh.triangles[t + (k + 1) % 3])];
    }
  }
  std::vector<bool> onBoundary(mesh.tags.size(), false);
  for (const auto& [edge, count] : uses) {
    if (count != 1) continue;
    onBoundary[static_cast<std::size_t>(edge.first)] = true;
    onBoundary[static_cast<std::size_t>(edge.second)] = true;
  }
  return onBoundary;
}

Mesh relabelled(const Mesh& mesh, const std::vector<std::int32_t>& newIndex) {
  Mesh copy = mesh;
  for (int i = 0; i < mesh.vertexCount(); ++i) {
    const auto from = static_cast<std::size_t>(i);
    const auto to = static_cast<std::size_t>(newIndex[from]);
    for (std::size_t k = 0; k < 3; ++k) copy.vertices[3 * to + k] = mesh.vertices[3 * from + k];
    copy.tags[to] = mesh.tags[from];
  }
  for (auto& v : copy.triangles) v = newIndex[static_cast<std::size_t>(v)];
  return copy;
}

Mesh asSoup(const Mesh& mesh) {
  Mesh soup;
  for (const std::int32_t v : mesh.triangles) {
    soup.triangles.push_back(soup.vertexCount());
    addVertex(soup, mesh.point(v));
    soup.tags.back() = mesh.tags[static_cast<std::size_t>(v)];
  }
  return soup;
}

}  // namespace qelm::test
