#include "curves/curve_picture.h"

#include <algorithm>
#include <cmath>
#include <optional>
#include <tuple>

#include "curves/depth_image.h"
#include "mesh/boundary.h"

namespace qelm::tool {
namespace {

// Long pieces are looked at in steps of so many pixels for where they pass behind.
constexpr double kStep = 3;

/// From space to the picture.
class Fit {
 public:
  Fit(const Mesh& mesh, const Projection& projection, const PictureFrame& frame)
      : projection_(projection) {
    Point high = projection(mesh.point(0));
    low_ = high;
    for (int v = 1; v < mesh.vertexCount(); ++v) {
      const Point p = projection(mesh.point(v));
      for (std::size_t k = 0; k < 3; ++k) {
        low_[k] = std::min(low_[k], p[k]);
        high[k] = std::max(high[k], p[k]);
      }
    }
    const Point size = high - low_;
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

/// Takes a curve's points one by one and cuts it where it comes to the front or
/// passes behind.
class Cutter {
 public:
  Cutter(const DepthImage& depth, LevelStrokes& into) : depth_(depth), into_(into) {}

  void add(const std::vector<Point>& points, bool closed) {
    const std::size_t n = points.size();
    begin(points[0], depth_.shows(points[0]));
    for (std::size_t k = 0; k + (closed ? 0 : 1) < n; ++k) piece(points[k], points[(k + 1) % n]);
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

  void piece(const Point& a, const Point& b) {
    const double size = std::hypot(b[0] - a[0], b[1] - a[1], 0.0);  // not glibc 2.35's
    const int steps = std::max(1, static_cast<int>(size / kStep));
    for (int k = 1; k <= steps; ++k) {
      const double t = static_cast<double>(k) / steps;
      const Point p = {std::lerp(a[0], b[0], t), std::lerp(a[1], b[1], t),
                       std::lerp(a[2], b[2], t)};
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

/// A side of a triangle, and whether that shows its front.
struct FacingSide {
  int low, high;
  bool isFront;
};

std::vector<FacingSide> facingSides(const Mesh& mesh, const std::vector<Point>& flat) {
  std::vector<FacingSide> sides;
  sides.reserve(mesh.triangles.size());
  for (int t = 0; t < mesh.triangleCount(); ++t) {
    const auto c = mesh.corners(t);
    const auto at = [&](int k) {
      return flat[static_cast<std::size_t>(c[static_cast<std::size_t>(k)])];
    };
    const bool isFront = cross(at(1) - at(0), at(2) - at(0))[2] < 0;  // y points down
    for (std::size_t k = 0; k < 3; ++k) {
      const int a = c[k];
      const int b = c[(k + 1) % 3];
      // Neighbours that are oriented alike run along their edge in opposite ways.
      sides.push_back({std::min(a, b), std::max(a, b), a < b ? isFront : !isFront});
    }
  }
  std::sort(sides.begin(), sides.end(), [](const FacingSide& a, const FacingSide& b) {
    return std::tie(a.low, a.high) < std::tie(b.low, b.high);
  });
  return sides;
}

/// Edges at which a triangle that faces the viewer meets one that does not.
std::vector<std::array<int, 2>> turningEdges(const Mesh& mesh, const std::vector<Point>& flat) {
  const std::vector<FacingSide> sides = facingSides(mesh, flat);
  std::vector<std::array<int, 2>> edges;
  for (std::size_t k = 0; k + 1 < sides.size(); ++k)
    if (sides[k].low == sides[k + 1].low && sides[k].high == sides[k + 1].high &&
        sides[k].isFront == sides[k + 1].isFront)
      edges.push_back({sides[k].low, sides[k].high});
  return edges;
}

std::vector<Stroke> drawOutline(const Mesh& mesh, const std::vector<Point>& flat,
                                const DepthImage& depth) {
  LevelStrokes strokes;
  const auto at = [&](int v) { return flat[static_cast<std::size_t>(v)]; };
  for (const BoundaryLoop& loop : boundaryLoops(mesh)) {
    std::vector<Point> points;
    for (const int v : loop.vertices) points.push_back(at(v));
    Cutter(depth, strokes).add(points, loop.closed);
  }
  for (const auto& [a, b] : turningEdges(mesh, flat))
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
