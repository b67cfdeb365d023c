#include "curves/curve_picture.h"

#include <algorithm>
#include <cmath>
#include <optional>

#include "curves/depth_image.h"
#include "mesh/boundary.h"
#include "mesh/box.h"
#include "mesh/half_edges.h"
#include "mesh/vec3.h"
#include "text/index.h"

namespace qelm::tool {
namespace {

// In pixels: how far apart the points of a segment are of which it is asked whether they show.
constexpr double kStep = 3;

/// From space to the picture.
class Fit {
 public:
  Fit(const Mesh& mesh, const Projection& projection, const PictureFrame& frame)
      : projection_(projection) {
    Box box;
    for (int v = 0; v < mesh.vertexCount(); ++v) box.add(projection(mesh.point(v)));
    low_ = box.low;
    const Point size = box.size();
    const auto& [mostWidth, mostHeight, scale] = frame;
    scale_ = scale > 0 ? scale
                       : std::min(size[0] > 0 ? mostWidth / size[0] : mostHeight / size[1],
                                  size[1] > 0 ? mostHeight / size[1] : mostWidth / size[0]);
    width_ = size[0] * scale_;
    height_ = size[1] * scale_;
  }

  Point operator()(const Point& p) const {
    const Point q = projection_(p) - low_;
    return {q[0] * scale_, height_ - q[1] * scale_, q[2] * scale_};
  }

  double width() const { return width_; }
  double height() const { return height_; }

 private:
  const Projection& projection_;
  Point low_{};
  double scale_ = 1;
  double width_ = 0;
  double height_ = 0;
};

/// Cuts a polyline where it passes behind the mesh or comes to the front again.
class Cutter {
 public:
  Cutter(const DepthImage& depth, LevelStrokes& into) : depth_(depth), into_(into) {}

  void add(const std::vector<Point>& points, bool closed) {
    const std::size_t n = points.size();
    begin(points[0], depth_.shows(points[0]));
    for (std::size_t k = 0; k + (closed ? 0 : 1) < n; ++k)
      addSegment(points[k], points[(k + 1) % n]);
    if (closed && !wasCut_) {
      current_.points.pop_back();
      current_.closed = true;
    }
    end();
  }

 private:
  void begin(const Point& p, bool isFront) {
    current_ = {{{p[0], p[1]}}, false};
    isFront_ = isFront;
  }

  void end() {
    if (current_.points.size() > 1)
      (isFront_ ? into_.front : into_.behind).push_back(std::move(current_));
  }

  void addSegment(const Point& a, const Point& b) {
    const double size = std::hypot(b[0] - a[0], b[1] - a[1], 0.0);  // not glibc 2.35's
    const int steps = std::max(1, static_cast<int>(size / kStep));
    for (int k = 1; k <= steps; ++k) {
      const Point p = between(a, b, static_cast<double>(k) / steps);
      const bool isFront = depth_.shows(p);
      if (isFront != isFront_) {
        current_.points.push_back({p[0], p[1]});
        end();
        begin(p, isFront);
        wasCut_ = true;
      } else if (k == steps) {
        current_.points.push_back({b[0], b[1]});
      }
    }
  }

  const DepthImage& depth_;
  LevelStrokes& into_;
  Stroke current_;
  bool isFront_ = true;
  bool wasCut_ = false;
};

/// Silhouette edges: both of their triangles lie on the same side of them in the picture.
std::vector<std::array<int, 2>> silhouetteEdges(const Mesh& mesh, const std::vector<Point>& flat) {
  // Of the edge from its lower to its higher vertex.
  const auto isOnTheLeft = [&](const HalfEdge& halfEdge) {
    const auto c = mesh.corners(halfEdge.triangle());
    const auto at = [&](std::size_t k) { return flat[asIndex(c[k])]; };
    const bool isCounterClockwise = areaVector(at(0), at(1), at(2))[2] < 0;  // y points down
    return halfEdge.isUpward == isCounterClockwise;
  };
  std::vector<std::array<int, 2>> edges;
  forEachEdge(sortedHalfEdges(mesh), [&](std::span<const HalfEdge> edge) {
    for (std::size_t k = 0; k + 1 < edge.size(); ++k)
      if (isOnTheLeft(edge[k]) == isOnTheLeft(edge[k + 1]))
        edges.push_back({edge[0].low, edge[0].high});
  });
  return edges;
}

std::vector<Stroke> drawOutline(const Mesh& mesh, const std::vector<Point>& flat,
                                const DepthImage& depth) {
  LevelStrokes strokes;
  const auto at = [&](int v) { return flat[asIndex(v)]; };
  for (const BoundaryLoop& loop : boundaryLoops(mesh)) {
    std::vector<Point> points;
    for (const int v : loop.vertices) points.push_back(at(v));
    Cutter(depth, strokes).add(points, loop.closed);
  }
  for (const auto& [a, b] : silhouetteEdges(mesh, flat))
    Cutter(depth, strokes).add({at(a), at(b)}, false);
  return std::move(strokes.front);
}

}  // namespace

PicturePoint extentOf(const Mesh& mesh, const Projection& projection) {
  const Fit fit(mesh, projection, {1, 1, 1});
  return {fit.width(), fit.height()};
}

CurvePicture drawCurves(const Mesh& mesh, std::span<const FieldCurves> fields,
                        const Projection& projection, const PictureFrame& frame) {
  const Fit fit(mesh, projection, frame);
  std::vector<Point> flat;
  for (int v = 0; v < mesh.vertexCount(); ++v) flat.push_back(fit(mesh.point(v)));
  const DepthImage depth(flat, mesh, fit.width(), fit.height());
  CurvePicture picture{fit.width(), fit.height(), {}, drawOutline(mesh, flat, depth)};
  for (const FieldCurves& field : fields) {
    std::vector<LevelStrokes> levels(field.curves.levels().size());
    for (std::size_t c = 0; c < field.curves.size(); ++c) {
      const Curve curve = field.curves[c];
      std::vector<Point> points;
      for (std::size_t k = 0; k < curve.size(); ++k) points.push_back(fit(curve.point(k)));
      Cutter(depth, levels[curve.level]).add(points, curve.closed);
    }
    picture.fields.push_back(std::move(levels));
  }
  return picture;
}

}  // namespace qelm::tool
