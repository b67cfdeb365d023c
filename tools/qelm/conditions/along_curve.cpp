#include "conditions/along_curve.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <limits>
#include <map>
#include <nanoflann.hpp>

#include "mesh/vec3.h"
#include "text/index.h"

namespace qelm::tool {
namespace {

// With so many samples for an edge, the vertices of samples in a row are nearly always neighbours.
constexpr double kSamplesPerEdge = 4;
// Of one file. With tiny edges the samples are farther apart.
constexpr double kMostSamples = 1e5;

/// The mesh's vertices as nanoflann asks for them.
struct VertexCloud {
  const Mesh& mesh;
  std::size_t kdtree_get_point_count() const { return asIndex(mesh.vertexCount()); }
  double kdtree_get_pt(std::size_t vertex, std::size_t axis) const {
    return mesh.vertices[3 * vertex + axis];
  }
  template <class Box>
  bool kdtree_get_bbox(Box&) const {
    return false;
  }
};
using VertexTree =
    nanoflann::KDTreeSingleIndexAdaptor<nanoflann::L2_Simple_Adaptor<double, VertexCloud>,
                                        VertexCloud, 3, std::size_t>;

/// The one-rings of all vertices, by a counting sort: vertex v has those from starts_[v] to before
/// starts_[v + 1]. A neighbour comes once for each triangle that it has in common with v.
class OneRings {
 public:
  explicit OneRings(const Mesh& mesh) : starts_(asIndex(mesh.vertexCount()) + 1) {
    const auto corner = [&mesh](std::size_t k) { return asIndex(mesh.triangles[k]); };
    for (std::size_t k = 0; k < mesh.triangles.size(); ++k) starts_[corner(k) + 1] += 2;
    for (std::size_t v = 1; v < starts_.size(); ++v) starts_[v] += starts_[v - 1];
    neighbours_.resize(starts_.back());
    std::vector<std::size_t> next(starts_.begin(), starts_.end() - 1);
    for (std::size_t k = 0; k < mesh.triangles.size(); ++k) {
      const std::size_t first = k - k % 3;
      neighbours_[next[corner(k)]++] = mesh.triangles[first + (k + 1) % 3];
      neighbours_[next[corner(k)]++] = mesh.triangles[first + (k + 2) % 3];
    }
  }
  std::span<const int> of(int vertex) const {
    const std::size_t v = asIndex(vertex);
    return {neighbours_.data() + starts_[v], starts_[v + 1] - starts_[v]};
  }

 private:
  std::vector<std::size_t> starts_;
  std::vector<int> neighbours_;
};

double meanEdge(const Mesh& mesh) {
  double sum = 0;
  for (int t = 0; t < mesh.triangleCount(); ++t)
    for (std::size_t k = 0; k < 3; ++k)
      sum += length(mesh.point(mesh.corners(t)[(k + 1) % 3]) - mesh.point(mesh.corners(t)[k]));
  return sum / static_cast<double>(mesh.triangles.size());
}

double lengthOf(const Polyline& curve) {
  double sum = 0;
  const std::size_t n = curve.points.size();
  for (std::size_t k = 0; k + (curve.closed ? 0 : 1) < n; ++k)
    sum += length(curve.points[(k + 1) % n] - curve.points[k]);
  return sum;
}

class CurveFollower {
 public:
  CurveFollower(const Mesh& mesh, double step)
      : mesh_(mesh), step_(step), cloud_{mesh}, tree_(3, cloud_), rings_(mesh) {}

  void follow(const Polyline& curve) {
    const double whole = lengthOf(curve);
    const std::size_t n = curve.points.size();
    int before = kNone;
    double passed = 0;
    const std::size_t segments = n == 1 ? 1 : n - (curve.closed ? 0 : 1);
    for (std::size_t k = 0; k < segments; ++k) {
      Segment segment{curve.points[k], curve.points[(k + 1) % n], 0, passed, whole};
      segment.size = length(segment.to - segment.from);
      const double count = std::max(1.0, std::ceil(segment.size / step_));
      for (double i = 0; i <= count; ++i) before = visit(segment, i / count, before);
      passed += segment.size;
    }
  }

  std::vector<VertexOnCurve> found() const {
    std::vector<VertexOnCurve> list;
    for (const auto& [vertex, place] : found_) list.push_back({vertex, place.arc, place.distance});
    return list;
  }

 private:
  static constexpr int kNone = -1;
  struct Place {
    double arc, distance;
  };

  struct Segment {
    Point from, to;
    double size;    ///< its length
    double passed;  ///< the polyline's length before it
    double whole;   ///< the polyline's length

    Point at(double part) const { return between(from, to, part); }
  };

  /// Takes the sample's nearest vertex, and those on the way to it from the one before. Returns it.
  int visit(const Segment& segment, double part, int before) {
    std::size_t vertex = 0;
    double squared = std::numeric_limits<double>::infinity();
    // One vertex is found, as every mesh has one. Later releases of nanoflann warn unless that is
    // looked at.
    static_cast<void>(tree_.knnSearch(segment.at(part).data(), 1, &vertex, &squared));
    const int here = asInt(vertex);
    take(here, segment);
    if (before != kNone && before != here) walk(before, here, segment);
    return here;
  }

  /// Notes the vertex with its nearest point on the segment; of several segments the nearest
  /// counts.
  void take(int vertex, const Segment& segment) {
    const Point p = mesh_.point(vertex);
    const Point along = segment.to - segment.from;
    const double part =
        segment.size > 0
            ? std::clamp(dot(p - segment.from, along) / segment.size / segment.size, 0.0, 1.0)
            : 0;
    const double away = length(p - segment.at(part));
    const double passed = segment.passed + part * segment.size;
    const double arc = segment.whole > 0 ? std::min(passed / segment.whole, 1.0) : 0;
    const auto [at, isNew] = found_.try_emplace(vertex, Place{arc, away});
    if (!isNew && away < at->second.distance) at->second = {arc, away};
  }

  /// Walks along edges, each time to the neighbour nearest to the goal. Gives up where none is
  /// nearer, as beside a hole.
  void walk(int from, int to, const Segment& segment) {
    const Point goal = mesh_.point(to);
    while (from != to) {
      int best = from;
      for (const int v : rings_.of(from))
        if (length(mesh_.point(v) - goal) < length(mesh_.point(best) - goal)) best = v;
      if (best == from) return;
      from = best;
      take(from, segment);
    }
  }

  const Mesh& mesh_;
  double step_;
  VertexCloud cloud_;
  VertexTree tree_;
  OneRings rings_;
  std::map<int, Place> found_;
};

}  // namespace

std::vector<VertexOnCurve> verticesAlong(const Mesh& mesh, const std::vector<Polyline>& curves) {
  double whole = 0;
  for (const Polyline& curve : curves) whole += lengthOf(curve);
  const double step = std::max(meanEdge(mesh) / kSamplesPerEdge, whole / kMostSamples);
  CurveFollower follower(mesh, step > 0 ? step : std::numeric_limits<double>::infinity());
  for (const Polyline& curve : curves) follower.follow(curve);
  return follower.found();
}

}  // namespace qelm::tool
