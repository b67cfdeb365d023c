#include "curves/depth_image.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <limits>

#include "text/index.h"

namespace qelm::tool {
namespace {

// A point of the mesh lies behind its pixel's depth by up to what the surface rises within a pixel:
// therefore points are compared with the deepest pixel around. This, in pixels, is for rounding.
constexpr float kRoom = 0.75F;
// Along the image's longer side.
constexpr double kMostPixels = 2000;
constexpr float kNothing = -std::numeric_limits<float>::infinity();

Point onImage(const Point& p, double scale) { return {p[0] * scale, p[1] * scale, p[2] * scale}; }

/// Of the triangle (a, b, (x, y)), by its orientation.
double signedTwiceArea(const Point& a, const Point& b, double x, double y) {
  return (b[0] - a[0]) * (y - a[1]) - (b[1] - a[1]) * (x - a[0]);
}

}  // namespace

DepthImage::DepthImage(std::span<const Point> vertices, const Mesh& mesh, double width,
                       double height)
    : scale_(std::min(1.0, kMostPixels / std::max(width, height))),
      width_(static_cast<int>(width * scale_) + 1),
      height_(static_cast<int>(height * scale_) + 1),
      depth_(asIndex(width_) * asIndex(height_), kNothing) {
  const auto at = [&](int v) { return onImage(vertices[asIndex(v)], scale_); };
  for (int t = 0; t < mesh.triangleCount(); ++t) {
    const auto c = mesh.corners(t);
    draw(at(c[0]), at(c[1]), at(c[2]));
  }
}

/// Fills the pixels whose centres lie in the triangle.
void DepthImage::draw(const Point& a, const Point& b, const Point& c) {
  const double area = signedTwiceArea(a, b, c[0], c[1]);
  if (area == 0) return;
  const auto range = [](double p, double q, double r, int end) {
    const int first = static_cast<int>(std::ceil(std::min({p, q, r}) - 0.5));
    const int last = static_cast<int>(std::floor(std::max({p, q, r}) - 0.5));
    return std::pair(std::max(first, 0), std::min(last, end - 1));
  };
  const auto [left, right] = range(a[0], b[0], c[0], width_);
  const auto [top, bottom] = range(a[1], b[1], c[1], height_);
  for (int y = top; y <= bottom; ++y)
    for (int x = left; x <= right; ++x) {
      const double wa = signedTwiceArea(b, c, x + 0.5, y + 0.5) / area;
      const double wb = signedTwiceArea(c, a, x + 0.5, y + 0.5) / area;
      const double wc = 1 - wa - wb;
      if (wa < 0 || wb < 0 || wc < 0) continue;
      at(x, y) = std::max(at(x, y), static_cast<float>(wa * a[2] + wb * b[2] + wc * c[2]));
    }
}

bool DepthImage::shows(const Point& point) const {
  const Point p = onImage(point, scale_);
  const int x = static_cast<int>(p[0]);
  const int y = static_cast<int>(p[1]);
  float least = std::numeric_limits<float>::infinity();
  for (int j = std::max(y - 1, 0); j <= std::min(y + 1, height_ - 1); ++j)
    for (int i = std::max(x - 1, 0); i <= std::min(x + 1, width_ - 1); ++i)
      least = std::min(least, depth_[asIndex(j * width_ + i)]);
  return static_cast<float>(p[2]) >= least - kRoom;
}

}  // namespace qelm::tool
