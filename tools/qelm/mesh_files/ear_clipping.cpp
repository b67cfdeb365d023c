#include "mesh_files/ear_clipping.h"

#include <algorithm>
#include <cmath>
#include <compare>
#include <cstddef>
#include <numbers>
#include <utility>

#include "mesh/vec3.h"
#include "text/index.h"

namespace qelm::tool {
namespace {

// How far a corner may bend inwards, as a sine, and still count as straight: room for the
// rounding of coordinates along a straight side, far less than anyone draws on purpose.
constexpr double kStraight = 1e-6;

// A simple outline turns once round, by 2 pi; one that crosses itself by another multiple.
constexpr double kHalfTurn = std::numbers::pi;

constexpr int kNobody = -1;
constexpr int kNotLooked = -2;

/// Corners in the polygon's plane.
struct Flat {
  double x = 0;
  double y = 0;
  auto operator<=>(const Flat&) const = default;
  friend Flat operator-(const Flat& a, const Flat& b) { return {a.x - b.x, a.y - b.y}; }
};

double wedge(const Flat& a, const Flat& b) { return a.x * b.y - a.y * b.x; }

/// The sine of the angle by which the way a, b, c turns left; 0 where two of them are one.
double sineOfTurn(const Flat& a, const Flat& b, const Flat& c) {
  const Flat in = b - a;
  const Flat out = c - b;
  const double area = wedge(in, out);
  // With three arguments a template; with two, glibc 2.35's.
  const double sides = std::hypot(in.x, in.y, 0.0) * std::hypot(out.x, out.y, 0.0);
  return sides > 0 ? area / sides : 0;
}

class Clipper {
 public:
  Clipper(std::span<const double> points, std::vector<int> outline)
      : points_(points), outline_(std::move(outline)) {
    flatten();
    link();
  }

  ClippedPolygon run() {
    result_.crossesItself = std::abs(turning() - 2 * kHalfTurn) > kHalfTurn;
    while (left_ > 3) {
      const int ear = bestEar();
      take(ear);
      cut(ear);
      dropSpikesAt(before(ear));
    }
    if (left_ == 3) {
      if (!(turnAt(first_) >= -kStraight)) result_.crossesItself = true;
      take(after(first_));
    }
    return std::move(result_);
  }

 private:
  /// Coordinates in the plane through the middle, across Newell's normal (Sutherland, Sproull and
  /// Schumacker, 1974). A polygon without area has none: then every corner is as good as any.
  void flatten() {
    Point middle{};
    for (const int v : outline_)
      for (std::size_t k = 0; k < 3; ++k)
        middle[k] += at(v)[k] / static_cast<double>(outline_.size());
    Point normal{};
    double extent = 0;
    for (std::size_t k = 0; k < outline_.size(); ++k) {
      const Point p = at(outline_[k]) - middle;
      normal = normal + cross(p, at(outline_[(k + 1) % outline_.size()]) - middle);
      extent = std::max(extent, length(p));
    }
    const double area = length(normal);
    flat_.resize(outline_.size());
    if (!(area > 0) || !std::isfinite(area)) return;
    for (double& part : normal) part /= area;
    const auto [right, above] = axesAcross(normal);
    for (std::size_t k = 0; k < outline_.size(); ++k) {
      const Point p = at(outline_[k]) - middle;
      flat_[k] = {dot(p, right), dot(p, above)};
      result_.bend = std::max(result_.bend, std::abs(dot(p, normal)) / extent);
    }
  }

  static std::pair<Point, Point> axesAcross(const Point& normal) {
    Point axis{};
    axis[std::abs(normal[0]) < 0.6 ? 0 : 1] = 1;
    Point right = cross(axis, normal);
    const double size = length(right);
    for (double& part : right) part /= size;
    return {right, cross(normal, right)};
  }

  void link() {
    const int n = asInt(outline_.size());
    corners_.resize(outline_.size());
    for (int k = 0; k < n; ++k) corner(k) = {(k + n - 1) % n, (k + 1) % n, -1, true, kNotLooked};
    for (int k = 0; k < n; ++k) corner(k).angle = smallestAngle(k);
    left_ = n;
    std::vector<Flat> sorted = flat_;
    std::sort(sorted.begin(), sorted.end());
    meetsItself_ = std::adjacent_find(sorted.begin(), sorted.end()) != sorted.end();
  }

  double turning() const {
    double sum = 0;
    for (int k = 0; k < asInt(outline_.size()); ++k) {
      const Flat in = flat(k) - flat(before(k));
      const Flat out = flat(after(k)) - flat(k);
      sum += std::atan2(wedge(in, out), in.x * out.x + in.y * out.y);
    }
    return sum;
  }

  int bestEar() {
    int best = bestCorner([this](int k) { return isEar(k); });
    if (best != kNobody) return best;
    result_.crossesItself = true;
    best = bestCorner([this](int k) { return turnAt(k) > 0; });
    if (best == kNobody) best = bestCorner([](int) { return true; });
    return best != kNobody ? best : first_;
  }

  /// The corner whose cutting off leaves the best worse half: its own triangle, or, for a
  /// quadrilateral, the remaining one too.
  template <class Accepts>
  int bestCorner(Accepts accepts) {
    int best = kNobody;
    double bestAngle = -1;
    int k = first_;
    for (int count = 0; count < left_; ++count, k = after(k)) {
      double angle = corner(k).angle;
      if (left_ == 4) angle = std::min(angle, corner(after(after(k))).angle);
      if (!(angle > bestAngle) || !accepts(k)) continue;
      best = k;
      bestAngle = angle;
    }
    return best;
  }

  bool isEar(int k) {
    if (!(turnAt(k) > kStraight)) return false;
    int& blocker = corner(k).blocker;
    // Who is in the way is so until it is cut off, and an ear stays one.
    if (blocker == kNotLooked || (blocker != kNobody && !corner(blocker).isLeft))
      blocker = findBlocker(k);
    return blocker == kNobody;
  }

  /// A corner in the triangle of corner k or on the side that the cut makes.
  int findBlocker(int k) const {
    const int p = before(k);
    const int q = after(k);
    for (int w = after(q); w != p; w = after(w)) {
      if (isInTriangle(w, p, k, q)) return w;
      if (meetsItself_ && crossesCut(w, p, q)) return w;
    }
    return kNobody;
  }

  bool isInTriangle(int w, int p, int k, int q) const {
    const Flat& at = flat(w);
    if (at == flat(p) || at == flat(k) || at == flat(q)) return false;
    return sineOfTurn(flat(q), flat(p), at) >= -kStraight &&
           wedge(flat(k) - flat(p), at - flat(p)) >= 0 &&
           wedge(flat(q) - flat(k), at - flat(k)) >= 0;
  }

  /// Whether the side from corner w crosses the line from p to q. Where the outline comes to p or
  /// q again, sides begin in the triangle's own corners, of which isInTriangle() knows nothing.
  bool crossesCut(int w, int p, int q) const {
    const Flat along = flat(q) - flat(p);
    const Flat a = flat(w);
    const Flat b = flat(after(w));
    const double sideA = wedge(along, a - flat(p));
    const double sideB = wedge(along, b - flat(p));
    if (!(sideA * sideB < 0)) return false;
    return wedge(b - a, flat(p) - a) * wedge(b - a, flat(q) - a) < 0;
  }

  void take(int k) {
    result_.triangles.push_back({outlineAt(before(k)), outlineAt(k), outlineAt(after(k))});
  }

  void cut(int k) {
    Corner& gone = corner(k);
    gone.isLeft = false;
    corner(gone.before).after = gone.after;
    corner(gone.after).before = gone.before;
    if (first_ == k) first_ = gone.after;
    --left_;
    for (const int near : {gone.before, gone.after}) {
      corner(near).angle = smallestAngle(near);
      corner(near).blocker = kNotLooked;
    }
  }

  /// After a cut the outline may go somewhere and back: to a hole that has been filled.
  void dropSpikesAt(int k) {
    while (left_ > 2) {
      int spike = kNobody;
      for (const int near : {before(k), k, after(k)})
        if (outlineAt(before(near)) == outlineAt(after(near))) spike = near;
      if (spike == kNobody) return;
      k = before(spike);
      const int twin = after(spike);
      cut(spike);
      cut(twin);
    }
  }

  double smallestAngle(int k) const {
    const int a = outlineAt(before(k));
    const int b = outlineAt(k);
    const int c = outlineAt(after(k));
    return std::min({angleAt(a, b, c), angleAt(b, c, a), angleAt(c, a, b)});
  }

  double angleAt(int apex, int b, int c) const {
    const Point u = at(b) - at(apex);
    const Point v = at(c) - at(apex);
    return std::atan2(length(cross(u, v)), dot(u, v));
  }

  struct Corner {
    int before, after;
    double angle;  ///< the smallest of its triangle
    bool isLeft;
    int blocker;  ///< a corner that was in its triangle, kNobody or kNotLooked
  };

  double turnAt(int k) const { return sineOfTurn(flat(before(k)), flat(k), flat(after(k))); }
  Point at(int vertex) const {
    const std::size_t base = 3 * asIndex(vertex);
    return {points_[base], points_[base + 1], points_[base + 2]};
  }
  int outlineAt(int k) const { return outline_[asIndex(k)]; }
  const Flat& flat(int k) const { return flat_[asIndex(k)]; }
  Corner& corner(int k) { return corners_[asIndex(k)]; }
  const Corner& corner(int k) const { return corners_[asIndex(k)]; }
  int before(int k) const { return corner(k).before; }
  int after(int k) const { return corner(k).after; }

  std::span<const double> points_;
  std::vector<int> outline_;
  std::vector<Flat> flat_;
  std::vector<Corner> corners_;
  bool meetsItself_ = false;  ///< some corners lie at one place
  int first_ = 0;
  int left_ = 0;
  ClippedPolygon result_;
};

}  // namespace

std::vector<int> withoutRepeats(std::vector<int> outline) {
  std::vector<int> kept;
  const auto add = [&kept](int v) {
    if (!kept.empty() && kept.back() == v) return;
    if (kept.size() > 1 && kept[kept.size() - 2] == v) {
      kept.pop_back();
      return;
    }
    kept.push_back(v);
  };
  for (const int v : outline) add(v);
  // Where the outline closes: the same, until both ends meet well.
  auto first = kept.begin();
  auto last = kept.end();
  while (last - first > 1) {
    if (*first == *(last - 1))
      --last;
    else if (last - first > 2 && (*first == *(last - 2) || *(first + 1) == *(last - 1)))
      *first == *(last - 2) ? --last : ++first;
    else
      break;
  }
  kept.erase(last, kept.end());
  kept.erase(kept.begin(), first);
  if (kept.size() < 3) kept.clear();
  return kept;
}

ClippedPolygon clipEars(std::span<const double> points, std::vector<int> outline) {
  return Clipper(points, std::move(outline)).run();
}

}  // namespace qelm::tool
