#include "twin/twin.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <numeric>
#include <set>
#include <sstream>

namespace qelm::test::twin {
namespace {

std::size_t u(int i) { return static_cast<std::size_t>(i); }

using P3 = std::array<double, 3>;

P3 at(const Doubles& xyz, int v) { return {xyz[u(3 * v)], xyz[u(3 * v + 1)], xyz[u(3 * v + 2)]}; }
P3 minus(const P3& a, const P3& b) { return {a[0] - b[0], a[1] - b[1], a[2] - b[2]}; }
double times(const P3& a, const P3& b) { return a[0] * b[0] + a[1] * b[1] + a[2] * b[2]; }
double norm(const P3& a) { return std::sqrt(times(a, a)); }

/// A third of an element at a time: the gradient of the function that is 1 at `apex` and 0
/// at the ends of the edge that starts at `a` and runs along `ab`.
P3 gradient(const P3& apex, const P3& a, const P3& ab, double dot, double length, double height) {
  const double share = dot / length / length;
  P3 g;
  for (std::size_t c = 0; c < 3; ++c) {
    g[c] = (apex[c] - (a[c] + share * ab[c])) / height / height;
  }
  return g;
}

void addElement(System& s, int i0, int i1, int i2) {
  const P3 p0 = at(s.vertices, i0), p1 = at(s.vertices, i1), p2 = at(s.vertices, i2);
  const P3 p01 = minus(p1, p0), p02 = minus(p2, p0), p12 = minus(p2, p1), p10 = minus(p0, p1);
  const P3 normal = {p01[1] * p02[2] - p01[2] * p02[1], p01[2] * p02[0] - p01[0] * p02[2],
                     p01[0] * p02[1] - p01[1] * p02[0]};
  const double area = 0.5 * norm(normal);
  const double l12 = norm(p12), l01 = norm(p01), l02 = norm(p02);
  const P3 g0 = gradient(p0, p1, p12, times(p10, p12), l12, 2 * area / l12);
  const P3 g1 = gradient(p1, p0, p02, times(p02, p01), l02, 2 * area / l02);
  const P3 g2 = gradient(p2, p1, p10, times(p10, p12), l01, 2 * area / l01);
  // What comes first to an entry is not added to a zero: that would lose a zero's sign.
  const auto add = [&](int row, int column, double value) {
    const auto [entry, isNew] = s.k.try_emplace({column, row}, value);
    if (!isNew) entry->second += value;
  };
  for (const auto& [a, b, value] :
       {std::tuple{i0, i1, area * times(g0, g1)}, std::tuple{i1, i2, area * times(g1, g2)},
        std::tuple{i0, i2, area * times(g0, g2)}}) {
    add(a, b, value);
    add(b, a, value);
  }
  add(i0, i0, area * times(g0, g0));
  add(i1, i1, area * times(g1, g1));
  add(i2, i2, area * times(g2, g2));
}

void factorise(System& s) {
  const int n = static_cast<int>(s.order.size());
  const int t = s.taggedCount;
  std::vector<Eigen::Triplet<double>> entries;
  for (const auto& [entry, value] : s.k) {
    if (entry.first >= t && entry.second >= t) {
      entries.emplace_back(entry.second - t, entry.first - t, value);
    }
  }
  Eigen::SparseMatrix<double> freeFree(n - t, n - t);
  freeFree.setFromTriplets(entries.begin(), entries.end());
  s.factor.compute(freeFree);
}

}  // namespace

Welded weld(const Doubles& vertices, const Ints& triangles, double tolerance) {
  const int n = static_cast<int>(vertices.size() / 3);
  Ints cluster(u(n));  // the lowest vertex that is reached from each
  std::iota(cluster.begin(), cluster.end(), 0);
  for (int i = 0; i < n; ++i) {
    for (int j = i + 1; j < n; ++j) {
      const P3 d = minus(at(vertices, i), at(vertices, j));
      const int a = cluster[u(i)], b = cluster[u(j)];
      if (a == b || !(times(d, d) < tolerance * tolerance)) continue;
      for (int& c : cluster) c = c == std::max(a, b) ? std::min(a, b) : c;
    }
  }
  Welded welded;
  for (int i = 0; i < n; ++i) {
    if (cluster[u(i)] != i) {
      welded.map.push_back(welded.map[u(cluster[u(i)])]);
      continue;
    }
    welded.map.push_back(static_cast<int>(welded.vertices.size() / 3));
    for (const double x : at(vertices, i)) welded.vertices.push_back(x);
  }
  std::set<std::set<int>> known;
  for (std::size_t j = 0; j < triangles.size(); j += 3) {
    std::array<int, 3> corners;
    for (std::size_t k = 0; k < 3; ++k) corners[k] = welded.map[u(triangles[j + k])];
    const std::set<int> different(corners.begin(), corners.end());
    if (different.size() < 3 || !known.insert(different).second) continue;
    welded.triangles.insert(welded.triangles.end(), corners.begin(), corners.end());
  }
  return welded;
}

void construct(const Doubles& vertices, const Ints& triangles, const Ints& tags, System& system) {
  const int n = static_cast<int>(tags.size());
  const auto isTagged = [&](int i) { return tags[u(i)] >= 1 && tags[u(i)] <= 3; };
  for (int i = 0; i < n; ++i) {
    if (isTagged(i)) system.order.push_back(i);
  }
  system.taggedCount = static_cast<int>(system.order.size());
  for (int i = n - 1; i >= 0; --i) {
    if (!isTagged(i)) system.order.push_back(i);
  }
  Ints systemIndex(u(n));
  for (int s = 0; s < n; ++s) systemIndex[u(system.order[u(s)])] = s;
  for (const int i : system.order) {
    for (const double x : at(vertices, i)) system.vertices.push_back(x);
  }
  for (const int i : triangles) system.triangles.push_back(systemIndex[u(i)]);

  for (std::size_t j = 0; j < triangles.size(); j += 3) {
    const int a = system.triangles[j], b = system.triangles[j + 1], c = system.triangles[j + 2];
    if (std::set{a, b, c}.size() < 3) {
      system.status = 23;
      return;
    }
    addElement(system, a, b, c);
  }
  if (std::set(triangles.begin(), triangles.end()).size() < u(n)) {
    system.status = 24;
    return;
  }
  factorise(system);
}

Doubles solve(const System& system, const Doubles& values, const Doubles& load) {
  const int n = static_cast<int>(system.order.size());
  const int t = system.taggedCount;
  Eigen::VectorXd b = Eigen::VectorXd::Zero(n - t);
  for (int s = t; s < n && !load.empty(); ++s) b[s - t] = -load[u(system.order[u(s)])];
  for (const auto& [entry, value] : system.k) {
    const auto [column, row] = entry;
    if (column >= t || row < t) continue;
    const double prescribed = values[u(system.order[u(column)])];
    b[row - t] += load.empty() ? (-value) * prescribed : (prescribed * -1.0) * value;
  }
  Eigen::VectorXd free = Eigen::VectorXd::Zero(n - t);
  if (system.factor.info() == Eigen::Success && n > t) free = system.factor.solve(b);
  Doubles result(u(n));
  for (int s = 0; s < n; ++s) {
    const std::size_t i = u(system.order[u(s)]);
    result[i] = s < t ? values[i] : free[s - t];
  }
  return result;
}

Segments isolines(const System& system, const Doubles& field, const Doubles& levels) {
  const int n = static_cast<int>(system.order.size());
  const Doubles& v = system.vertices;
  const Ints& f = system.triangles;
  struct End {
    P3 point;
    bool isOn;
  };
  // Where a level meets an edge of a row: both tables are read column by column.
  const auto end = [&](int row, int edge, double level) {
    const int a = f[u(row + edge * n)];
    const int b = f[u(row + (edge + 1) % 3 * n)];
    const double difference = field[u(b)] - field[u(a)];
    const double p = (level - field[u(a)]) / difference;
    End found{{}, !(std::fabs(p - 0.5) > 0.5)};
    for (int c = 0; c < 3; ++c) {
      found.point[u(c)] = p * v[u(b + c * n)] + (1 - p) * v[u(a + c * n)];
    }
    return found;
  };
  std::vector<std::pair<P3, P3>> found;
  for (const auto& [one, other] : {std::pair{1, 2}, std::pair{2, 0}, std::pair{0, 1}}) {
    for (int row = 0; row < n && u(row + 2 * n) < f.size(); ++row) {
      for (const double level : levels) {
        const End first = end(row, one, level), second = end(row, other, level);
        if (first.isOn && second.isOn) found.emplace_back(first.point, second.point);
      }
    }
  }
  Segments segments;
  for (std::size_t c = 0; c < 3; ++c) {
    for (const auto& segment : found) segments.points.push_back(segment.first[c]);
    for (const auto& segment : found) segments.points.push_back(segment.second[c]);
  }
  segments.edges.resize(2 * found.size());
  std::iota(segments.edges.begin(), segments.edges.end(), 0);
  return segments;
}

std::string heatMap(const System& system, const Doubles& field, const std::string& path) {
  std::ostringstream out;
  out << "mtllib " << path << ".mtl\nusemtl Heat\n";
  for (std::size_t i = 0; i < system.vertices.size(); i += 3) {
    out << "v " << system.vertices[i] << ' ' << system.vertices[i + 1] << ' '
        << system.vertices[i + 2] << '\n';
  }
  const auto extremes = std::minmax_element(field.begin(), field.end());
  const double low = *extremes.first, high = *extremes.second;
  for (const double value : field) {
    out << "vt " << 1.0 - (value - low) / (high - low) << " 0.5\n";
  }
  for (std::size_t j = 0; j < system.triangles.size(); ++j) {
    const int corner = system.triangles[j] + 1;
    out << (j % 3 == 0 ? "f " : " ") << corner << '/' << corner << (j % 3 == 2 ? "\n" : "");
  }
  return out.str();
}

}  // namespace qelm::test::twin
