#include "mesh/check/plain_check.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <limits>
#include <utility>
#include <vector>

namespace qelm::test {
namespace {

using Corners = std::array<int, 3>;
using Edge = std::pair<int, int>;

/// The indices of which something holds.
QelmFinding finding(const std::vector<bool>& holds) {
  QelmFinding f = {0, -1};
  for (std::size_t i = 0; i < holds.size(); ++i) {
    if (!holds[i]) continue;
    if (f.first < 0) f.first = static_cast<std::int64_t>(i);
    ++f.count;
  }
  return f;
}

class Plain {
 public:
  explicit Plain(const Mesh& mesh) : mesh_(mesh), n_(mesh.vertexCount()), m_(mesh.triangleCount()) {
    for (int j = 0; j < m_; ++j) {
      const auto* c = &mesh.triangles[3 * static_cast<std::size_t>(j)];
      corners_.push_back({c[0], c[1], c[2]});
    }
  }

  bool exists(int v) const { return v >= 0 && v < n_; }
  bool inRange(int j) const {
    return std::all_of(at(j).begin(), at(j).end(), [&](int v) { return exists(v); });
  }
  bool different(int j) const {
    return at(j)[0] != at(j)[1] && at(j)[1] != at(j)[2] && at(j)[2] != at(j)[0];
  }
  bool sound(int j) const { return inRange(j) && different(j); }
  bool names(int j, int v) const { return std::find(at(j).begin(), at(j).end(), v) != at(j).end(); }
  bool used(int v) const {
    return anyTriangle([&](int j) { return names(j, v); });
  }
  bool tagged(int v) const {
    const int tag = mesh_.tags[static_cast<std::size_t>(v)];
    return tag == 1 || tag == 2 || tag == 3;
  }
  bool finite(int v) const {
    const Point p = mesh_.point(v);
    return std::isfinite(p.x) && std::isfinite(p.y) && std::isfinite(p.z);
  }
  bool hasShape(int j) const {
    return sound(j) && finite(at(j)[0]) && finite(at(j)[1]) && finite(at(j)[2]);
  }
  PlainShape shape(int j) const {
    return plainShape(mesh_.point(at(j)[0]), mesh_.point(at(j)[1]), mesh_.point(at(j)[2]));
  }
  bool samePlace(int v, int w) const {
    const Point p = mesh_.point(v);
    const Point q = mesh_.point(w);
    return finite(v) && p.x == q.x && p.y == q.y && p.z == q.z;
  }
  Corners sorted(int j) const {
    Corners c = at(j);
    std::sort(c.begin(), c.end());
    return c;
  }

  /// How often a triangle runs from a to b: 0 or 1 for a sound one.
  int runs(int j, int a, int b) const {
    if (!sound(j)) return 0;
    int count = 0;
    for (std::size_t k = 0; k < 3; ++k) count += at(j)[k] == a && at(j)[(k + 1) % 3] == b;
    return count;
  }

  /// {triangles that run from a to b, that run from b to a, the first of all or -1}
  std::array<int, 3> atEdge(int a, int b) const {
    std::array<int, 3> found = {0, 0, -1};
    for (int j = 0; j < m_; ++j) {
      const int there = runs(j, a, b);
      const int back = runs(j, b, a);
      if (there + back > 0 && found[2] < 0) found[2] = j;
      found[0] += there;
      found[1] += back;
    }
    return found;
  }

  template <class Predicate>
  QelmFinding vertices(Predicate holds) const {
    std::vector<bool> all;
    for (int v = 0; v < n_; ++v) all.push_back(holds(v));
    return finding(all);
  }
  template <class Predicate>
  QelmFinding triangles(Predicate holds) const {
    std::vector<bool> all;
    for (int j = 0; j < m_; ++j) all.push_back(holds(j));
    return finding(all);
  }
  /// Edges of which something holds, given what atEdge() finds; first: triangle.
  template <class Predicate>
  QelmFinding edges(Predicate holds) const {
    QelmFinding f = {0, -1};
    for (int a = 0; a < n_; ++a) {
      for (int b = a + 1; b < n_; ++b) {
        const auto found = atEdge(a, b);
        if (!holds(found)) continue;
        f.first = f.count == 0 ? found[2] : std::min<std::int64_t>(f.first, found[2]);
        ++f.count;
      }
    }
    return f;
  }

  /// The lowest vertex that each one is connected with, by repeated passes.
  std::vector<int> labels(const std::vector<Edge>& links) const {
    std::vector<int> label;
    for (int v = 0; v < n_; ++v) label.push_back(v);
    for (bool changed = true; changed;) {
      changed = false;
      for (const auto& [a, b] : links) {
        int& first = label[static_cast<std::size_t>(a)];
        int& second = label[static_cast<std::size_t>(b)];
        changed = changed || first != second;
        first = second = std::min(first, second);
      }
    }
    return label;
  }
  std::vector<Edge> linksOfTriangles() const {
    std::vector<Edge> links;
    for (int j = 0; j < m_; ++j) {
      for (const int a : at(j)) {
        for (const int b : at(j)) {
          if (exists(a) && exists(b)) links.emplace_back(a, b);
        }
      }
    }
    return links;
  }
  std::vector<Edge> boundaryEdges() const {
    std::vector<Edge> links;
    for (int a = 0; a < n_; ++a) {
      for (int b = a + 1; b < n_; ++b) {
        const auto found = atEdge(a, b);
        if (found[0] + found[1] == 1) links.emplace_back(a, b);
      }
    }
    return links;
  }

 private:
  const Corners& at(int j) const { return corners_[static_cast<std::size_t>(j)]; }
  template <class Predicate>
  bool anyTriangle(Predicate holds) const {
    for (int j = 0; j < m_; ++j) {
      if (holds(j)) return true;
    }
    return false;
  }

  const Mesh& mesh_;
  int n_;
  int m_;
  std::vector<Corners> corners_;
};

void reportShapes(const Plain& plain, int triangleCount, QelmMeshReport& report) {
  const auto isFlat = [&](int j) { return plain.shape(j).quality < 0x1p-44L; };
  const auto isOff = [&](int j) {
    return plain.shape(j).longestEdge < 1e-60L || plain.shape(j).longestEdge > 1e60L;
  };
  report.nearZeroArea = plain.triangles([&](int j) { return plain.hasShape(j) && isFlat(j); });
  report.sizeOutOfRange =
      plain.triangles([&](int j) { return plain.hasShape(j) && !isFlat(j) && isOff(j); });
  report.worstTriangle = -1;
  report.worstQuality = std::numeric_limits<double>::infinity();
  for (int j = 0; j < triangleCount; ++j) {
    if (!plain.hasShape(j)) continue;
    const auto quality = static_cast<double>(plain.shape(j).quality);
    if (quality < report.worstQuality) {
      report.worstTriangle = j;
      report.worstQuality = quality;
    }
  }
}

void reportGroups(const Plain& plain, int vertexCount, QelmMeshReport& report) {
  const std::vector<int> part = plain.labels(plain.linksOfTriangles());
  const auto partOf = [&](int v) { return part[static_cast<std::size_t>(v)]; };
  const auto isPart = [&](int v) { return plain.used(v) && partOf(v) == v; };
  const auto hasTag = [&](int lowest) {
    for (int v = 0; v < vertexCount; ++v) {
      if (partOf(v) == lowest && plain.tagged(v)) return true;
    }
    return false;
  };
  report.part = plain.vertices(isPart);
  report.untaggedPart = plain.vertices([&](int v) { return isPart(v) && !hasTag(v); });

  const std::vector<Edge> boundary = plain.boundaryEdges();
  const std::vector<int> loop = plain.labels(boundary);
  report.boundaryLoop = plain.vertices([&](int v) {
    return loop[static_cast<std::size_t>(v)] == v &&
           std::any_of(boundary.begin(), boundary.end(),
                       [&](const Edge& e) { return e.first == v || e.second == v; });
  });
}

using Wide = std::array<long double, 3>;

Wide between(const Point& a, const Point& b) {
  return {static_cast<long double>(b.x) - a.x, static_cast<long double>(b.y) - a.y,
          static_cast<long double>(b.z) - a.z};
}

long double norm(const Wide& v) { return std::sqrt(v[0] * v[0] + v[1] * v[1] + v[2] * v[2]); }

}  // namespace

PlainShape plainShape(const Point& a, const Point& b, const Point& c) {
  const Wide u = between(a, b);
  const Wide v = between(a, c);
  const Wide w = between(b, c);
  const long double longest = std::max({norm(u), norm(v), norm(w)});
  long double reach = 0;
  for (const Point& p : {a, b, c}) {
    for (const double x : {p.x, p.y, p.z})
      reach = std::max(reach, std::fabs(static_cast<long double>(x)));
  }
  if (longest == 0) return {0, 0};
  const Wide cross = {u[1] * v[2] - u[2] * v[1], u[2] * v[0] - u[0] * v[2],
                      u[0] * v[1] - u[1] * v[0]};
  const long double height = norm(cross) / longest;
  return {longest, height / longest * (height / std::max(longest, reach))};
}

QelmMeshReport plainReport(const Mesh& mesh) {
  const Plain plain(mesh);
  QelmMeshReport report = {};
  report.indexOutOfRange = plain.triangles([&](int j) { return !plain.inRange(j); });
  report.repeatedVertex =
      plain.triangles([&](int j) { return plain.inRange(j) && !plain.different(j); });
  report.unusedVertex = plain.vertices([&](int v) { return !plain.used(v); });
  report.notFinite = plain.vertices([&](int v) { return !plain.finite(v); });
  reportShapes(plain, mesh.triangleCount(), report);
  reportGroups(plain, mesh.vertexCount(), report);
  report.taggedVertex = plain.vertices([&](int v) { return plain.tagged(v); });
  report.crowdedEdge = plain.edges([](const auto& f) { return f[0] + f[1] > 2; });
  report.opposedEdge = plain.edges([](const auto& f) { return f[0] + f[1] == 2 && f[0] != 1; });
  report.repeatedTriangle = plain.triangles([&](int j) {
    for (int i = 0; i < j; ++i) {
      if (plain.sound(j) && plain.sound(i) && plain.sorted(i) == plain.sorted(j)) return true;
    }
    return false;
  });
  report.coincidentVertex = plain.vertices([&](int v) {
    for (int w = 0; w < v; ++w) {
      if (plain.samePlace(w, v)) return true;
    }
    return false;
  });
  return report;
}

}  // namespace qelm::test
