#include "isolines/plain_isolines.h"

#include <array>
#include <cmath>
#include <cstddef>

namespace qelm::test {

namespace {

/// A mesh's arrays as tables of three columns, each with as many rows as there are vertices.
struct Tables {
  const std::vector<double>& v;
  const std::vector<std::int32_t>& f;
  std::size_t n;

  std::size_t corner(std::size_t t, std::size_t k) const {
    return static_cast<std::size_t>(f[t + k * n]);
  }
  bool isInside(std::size_t t) const { return t < n && t + 2 * n < f.size(); }
};

/// Entry [k][t + j * n]: the position of level j on edge k of triangle t.
using Positions = std::array<std::vector<double>, 3>;

Positions allPositions(const Tables& mesh, const std::vector<double>& field,
                       const std::vector<double>& levels) {
  Positions positions;
  for (auto& column : positions) column.assign(mesh.n * levels.size(), 0.0);
  for (std::size_t t = 0; mesh.isInside(t); ++t) {
    for (std::size_t k = 0; k < 3; ++k) {
      const double a = field[mesh.corner(t, k)];
      const double b = field[mesh.corner(t, (k + 1) % 3)];
      const double d = b - a;
      for (std::size_t j = 0; j < levels.size(); ++j) {
        positions[k][t + j * mesh.n] = (levels[j] - a) / d;
      }
    }
  }
  return positions;
}

struct Segment {
  std::size_t triangle, level;
};

/// Group g has the segments between edges g + 1 and g + 2.
using Groups = std::array<std::vector<Segment>, 3>;

Groups allSegments(const Tables& mesh, const Positions& positions, std::size_t levelCount) {
  Groups groups;
  for (std::size_t t = 0; mesh.isInside(t); ++t) {
    for (std::size_t j = 0; j < levelCount; ++j) {
      bool on[3];
      for (std::size_t k = 0; k < 3; ++k) {
        on[k] = !(std::fabs(positions[k][t + j * mesh.n] - 0.5) > 0.5);
      }
      for (std::size_t g = 0; g < 3; ++g) {
        if (on[(g + 1) % 3] && on[(g + 2) % 3]) groups[g].push_back({t, j});
      }
    }
  }
  return groups;
}

}  // namespace

PlainIsolines plainIsolines(const MeshSystem& system, const std::vector<double>& field,
                            const std::vector<double>& levels) {
  const Tables mesh = {*system.vertices, *system.triangles, system.vertices->size() / 3};
  const Positions positions = allPositions(mesh, field, levels);
  const Groups groups = allSegments(mesh, positions, levels.size());
  const std::size_t s = groups[0].size() + groups[1].size() + groups[2].size();
  PlainIsolines result{std::vector<double>(6 * s), std::vector<std::int32_t>(2 * s)};
  std::size_t i = 0;
  for (std::size_t g = 0; g < 3; ++g) {
    for (const auto& [t, j] : groups[g]) {
      for (std::size_t end = 0; end < 2; ++end) {
        const std::size_t e = (g + 1 + end) % 3;
        const std::size_t a = mesh.corner(t, e);
        const std::size_t b = mesh.corner(t, (e + 1) % 3);
        const double p = positions[e][t + j * mesh.n];
        for (std::size_t c = 0; c < 3; ++c) {
          result.points[i + end * s + c * 2 * s] =
              p * mesh.v[b + c * mesh.n] + (1 - p) * mesh.v[a + c * mesh.n];
        }
      }
      result.edges[i] = static_cast<std::int32_t>(i);
      result.edges[i + s] = static_cast<std::int32_t>(i + s);
      ++i;
    }
  }
  return result;
}

}  // namespace qelm::test
