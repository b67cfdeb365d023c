#include "isolines/plain_isolines.h"

#include <cmath>
#include <cstddef>

namespace qelm::test {

PlainIsolines plainIsolines(const MeshSystem& system, const std::vector<double>& field,
                            const std::vector<double>& levels) {
  const std::vector<double>& v = *system.vertices;
  const std::vector<std::int32_t>& f = *system.triangles;
  const std::size_t n = v.size() / 3;
  const auto corner = [&](std::size_t t, std::size_t k) {
    return static_cast<std::size_t>(f[t + k * n]);
  };
  const auto inside = [&](std::size_t t) { return t + 2 * n < f.size(); };

  std::vector<double> table[3];
  for (auto& column : table) column.assign(n * levels.size(), 0.0);
  for (std::size_t t = 0; t < n && inside(t); ++t) {
    for (std::size_t k = 0; k < 3; ++k) {
      const double a = field[corner(t, k)];
      const double b = field[corner(t, (k + 1) % 3)];
      const double d = b - a;
      for (std::size_t j = 0; j < levels.size(); ++j) table[k][t + j * n] = (levels[j] - a) / d;
    }
  }

  std::vector<std::size_t> triangles[3], numbers[3];
  for (std::size_t t = 0; t < n && inside(t); ++t) {
    for (std::size_t j = 0; j < levels.size(); ++j) {
      bool on[3];
      for (std::size_t k = 0; k < 3; ++k) on[k] = !(std::fabs(table[k][t + j * n] - 0.5) > 0.5);
      for (std::size_t g = 0; g < 3; ++g) {
        if (on[(g + 1) % 3] && on[(g + 2) % 3]) {
          triangles[g].push_back(t);
          numbers[g].push_back(j);
        }
      }
    }
  }

  const std::size_t s = triangles[0].size() + triangles[1].size() + triangles[2].size();
  PlainIsolines result{std::vector<double>(6 * s), std::vector<std::int32_t>(2 * s)};
  std::size_t i = 0;
  for (std::size_t g = 0; g < 3; ++g) {
    for (std::size_t entry = 0; entry < triangles[g].size(); ++entry, ++i) {
      const std::size_t t = triangles[g][entry];
      for (std::size_t end = 0; end < 2; ++end) {
        const std::size_t e = (g + 1 + end) % 3;
        const std::size_t a = corner(t, e);
        const std::size_t b = corner(t, (e + 1) % 3);
        const double p = table[e][t + numbers[g][entry] * n];
        for (std::size_t c = 0; c < 3; ++c) {
          result.points[i + end * s + c * 2 * s] = p * v[b + c * n] + (1 - p) * v[a + c * n];
        }
      }
      result.edges[i] = static_cast<std::int32_t>(i);
      result.edges[i + s] = static_cast<std::int32_t>(i + s);
    }
  }
  return result;
}

}  // namespace qelm::test
