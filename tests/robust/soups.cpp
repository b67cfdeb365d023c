#include "robust/soups.h"

#include <algorithm>
#include <cmath>
#include <numeric>

namespace qelm::test {
namespace {

double coordinate(Random& random, SoupKind kind, int axis, double small) {
  switch (kind) {
    case SoupKind::generic:
      return uniform(random, 0, 1);
    case SoupKind::lattice:
      return uniformInt(random, 0, 3);
    case SoupKind::flat:
      return axis == 2 ? 0 : uniformInt(random, 0, 4);
    case SoupKind::needles:
      return axis == 0 ? uniform(random, 0, 1) : small * uniform(random, 0, 1);
    case SoupKind::nearLattice:
      return uniformInt(random, 0, 2) + small * uniform(random, 0, 1);
    case SoupKind::wild:
      return std::ldexp(uniform(random, 0, 1), uniformInt(random, -60, 60));
  }
  return 0;
}

/// Another vertex than those given; mostly one with a number not far from the first.
int otherVertex(Random& random, int n, int first, int second) {
  int other = first;
  while (other == first || other == second) {
    const bool near = uniformInt(random, 0, 3) != 0;
    other = near ? (first + uniformInt(random, 1, std::min(6, n - 1))) % n
                 : uniformInt(random, 0, n - 1);
  }
  return other;
}

}  // namespace

std::vector<int> partsOf(const Mesh& mesh) {
  std::vector<int> part(mesh.tags.size());
  std::iota(part.begin(), part.end(), 0);
  for (bool changed = true; changed;) {
    changed = false;
    for (std::size_t j = 0; j < mesh.triangles.size(); j += 3) {
      int lowest = part[0];
      const auto corner = [&](std::size_t k) -> int& {
        return part[static_cast<std::size_t>(mesh.triangles[j + k])];
      };
      lowest = std::min({corner(0), corner(1), corner(2)});
      for (std::size_t k = 0; k < 3; ++k) {
        changed = changed || corner(k) != lowest;
        corner(k) = lowest;
      }
    }
  }
  return part;
}

Mesh soup(Random& random, SoupKind kind) {
  Mesh mesh;
  const int n = uniformInt(random, 3, 30);
  const double small = std::pow(10.0, -uniformInt(random, 0, 20));
  for (int i = 0; i < n; ++i) {
    for (int axis = 0; axis < 3; ++axis) {
      mesh.vertices.push_back(coordinate(random, kind, axis, small));
    }
    mesh.tags.push_back(uniformInt(random, 0, 4) == 0 ? 1 : 0);
  }
  const int m = uniformInt(random, n, 4 * n);
  for (int j = 0; j < m; ++j) {
    const int a = j < n ? j : uniformInt(random, 0, n - 1);
    const int b = otherVertex(random, n, a, a);
    mesh.triangles.insert(mesh.triangles.end(), {a, b, otherVertex(random, n, a, b)});
  }
  const std::vector<int> part = partsOf(mesh);
  std::vector<bool> isPrescribed(part.size());
  for (std::size_t i = 0; i < part.size(); ++i) {
    if (mesh.tags[i] != 0) isPrescribed[static_cast<std::size_t>(part[i])] = true;
  }
  for (std::size_t i = 0; i < part.size(); ++i) {
    if (part[i] == static_cast<int>(i) && !isPrescribed[i]) mesh.tags[i] = 2;
  }
  return mesh;
}

}  // namespace qelm::test
