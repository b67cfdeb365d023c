#include "support/cases.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <iostream>
#include <unordered_map>

#include "qelm.h"
#include "support/random.h"

namespace qelm::bench {
namespace {

using test::Mesh;
using test::Point;

int rounded(double x) { return static_cast<int>(std::lround(x)); }

void tagWhere(Mesh& mesh, bool (*tagged)(Point)) {
  for (int i = 0; i < mesh.vertexCount(); ++i) {
    mesh.tags[static_cast<std::size_t>(i)] = tagged(mesh.point(i)) ? 1 : 0;
  }
}

Mesh grid(int size) {
  const int side = rounded(std::sqrt(size));
  Mesh mesh = test::gridMesh(side, side);
  tagWhere(mesh, [](Point p) { return p.x == 0 || p.x == 1 || p.y == 0 || p.y == 1; });
  return mesh;
}

/// Gives every lattice point on the surface of the cube 0 .. k one vertex.
class CubeVertices {
 public:
  CubeVertices(Mesh& mesh, int k) : mesh_(mesh), k_(k) {}

  std::int32_t at(const std::array<int, 3>& lattice) {
    const std::int64_t key =
        (std::int64_t{lattice[0]} * (k_ + 1) + lattice[1]) * (k_ + 1) + lattice[2];
    const auto [found, isNew] = numbers_.try_emplace(key, mesh_.vertexCount());
    if (isNew) append(lattice);
    return found->second;
  }

 private:
  void append(const std::array<int, 3>& lattice) {
    std::array<double, 3> p{};
    for (std::size_t a = 0; a < 3; ++a) p[a] = 2.0 * lattice[a] / k_ - 1;
    const double length = std::sqrt(p[0] * p[0] + p[1] * p[1] + p[2] * p[2]);
    for (const double x : p) mesh_.vertices.push_back(x / length);
    mesh_.tags.push_back(0);
  }

  Mesh& mesh_;
  int k_;
  std::unordered_map<std::int64_t, std::int32_t> numbers_;
};

/// 6 k^2 + 2 vertices.
Mesh sphere(int size) {
  const int k = rounded(std::sqrt(size / 6.0));
  Mesh mesh;
  CubeVertices vertices(mesh, k);
  for (std::size_t face = 0; face < 6; ++face) {
    const std::size_t normal = face / 2;
    const bool top = face % 2 == 1;
    const auto corner = [&](int i, int j) {
      std::array<int, 3> lattice{};
      lattice[normal] = top ? k : 0;
      lattice[(normal + 1) % 3] = top ? i : j;
      lattice[(normal + 2) % 3] = top ? j : i;
      return vertices.at(lattice);
    };
    for (int i = 0; i < k; ++i) {
      for (int j = 0; j < k; ++j) {
        const std::array<std::int32_t, 4> v = {corner(i, j), corner(i + 1, j), corner(i + 1, j + 1),
                                               corner(i, j + 1)};
        mesh.triangles.insert(mesh.triangles.end(), {v[0], v[1], v[2], v[0], v[2], v[3]});
      }
    }
  }
  tagWhere(mesh, [](Point p) { return std::fabs(p.z) > 0.99; });
  return mesh;
}

Mesh noisy(int size) {
  const int around = rounded(std::sqrt(1.6 * size));
  test::Random random(1);
  const double noise = 0.2 * 2 * 3.14 * 2 / around;  // a fifth of an edge's length
  Mesh mesh = test::torusMesh(around, rounded(size / static_cast<double>(around)));
  for (double& x : mesh.vertices) x += test::uniform(random, -noise, noise);
  tagWhere(mesh, [](Point p) { return std::fabs(p.x) > 2.7; });
  return mesh;
}

}  // namespace

std::string nameOf(const Case& c) {
  const std::array<const char*, 3> surfaces = {"grid", "sphere", "noisy"};
  return std::string(surfaces[static_cast<std::size_t>(c.surface)]) +
         (c.shuffled ? "/shuffled/" : "/natural/") + std::to_string(c.size);
}

std::vector<Case> allCases() {
  std::vector<Case> cases;
  for (const Surface surface : {Surface::kGrid, Surface::kSphere, Surface::kNoisy}) {
    for (const bool shuffled : {false, true}) {
      for (const int size :
           {1'000, 3'000, 10'000, 30'000, 100'000, 300'000, 1'000'000, 3'000'000}) {
        cases.push_back({surface, shuffled, size});
      }
    }
  }
  return cases;
}

Mesh makeMesh(const Case& c) {
  const Mesh mesh = c.surface == Surface::kGrid     ? grid(c.size)
                    : c.surface == Surface::kSphere ? sphere(c.size)
                                                    : noisy(c.size);
  if (!c.shuffled) return mesh;
  test::Random random(1);
  return test::relabelled(mesh, test::permutation(random, mesh.vertexCount()));
}

test::Field waves(const Mesh& mesh) {
  return mesh.sample([](Point p) { return p.x * p.x - p.y * p.y + 0.2 * std::sin(7 * p.x) + p.z; });
}

std::vector<double> spreadLevels(const test::Field& field, int count) {
  const auto [low, high] = std::minmax_element(field.begin(), field.end());
  std::vector<double> levels;
  for (int j = 0; j < count; ++j) levels.push_back(*low + (*high - *low) * (j + 0.53) / count);
  return levels;
}

void FreeSystem::operator()(MeshSystem* system) const { qelmfree(system); }

SystemHandle construct(const Mesh& mesh) {
  MeshSystem* system = nullptr;
  int status = 0;
  qelmctorTagged(mesh.vertexCount(), mesh.vertices.data(), mesh.triangleCount(),
                 mesh.triangles.data(), mesh.tags.data(), nullptr, &status, &system);
  if (status != QELM_STATUS_OK) {
    std::cerr << "construction of a benchmark's mesh failed with status " << status << "\n";
    std::abort();
  }
  return SystemHandle(system);
}

}  // namespace qelm::bench
