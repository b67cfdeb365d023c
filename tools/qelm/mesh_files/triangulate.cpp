#include "mesh_files/triangulate.h"

#include <fmt/format.h>
#include <fmt/ranges.h>

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <numbers>
#include <span>

#include "mesh/vec3.h"
#include "text/error.h"

namespace qelm::tool {
namespace {

// How far a corner may bend inwards, as a sine: room for the rounding of
// coordinates along a straight side, far less than anyone draws on purpose.
constexpr double kStraightTolerance = 1e-6;

// A convex outline turns once, by 2 pi; one that turns twice crosses itself.
constexpr double kMostTurning = 3 * std::numbers::pi;

// The best of all corners is looked for at every cut: more corners than this would
// take minutes, and nobody models them.
constexpr std::size_t kMostCorners = 2000;

// How many corners of a polygon a message shows.
constexpr std::size_t kShownCorners = 12;

class Splitter {
 public:
  explicit Splitter(const PolygonSoup& soup) : soup_(soup) {}

  Triangulation run() {
    Mesh& mesh = result_.mesh;
    mesh.vertices.reserve(3 * soup_.points.size());
    for (const Point& p : soup_.points)
      mesh.vertices.insert(mesh.vertices.end(), p.begin(), p.end());
    mesh.triangles.reserve(3 * soup_.faces.size());
    for (std::size_t f = 0; f < soup_.faces.size(); ++f) addFace(static_cast<int>(f));
    if (result_.splitFaceCount == 0) mesh.faceOfTriangle.clear();
    return std::move(result_);
  }

 private:
  void addFace(int face) {
    std::vector<int> outline = soup_.faces[static_cast<std::size_t>(face)];
    if (outline.size() > 3) {
      checkOutline(outline, face);
      ++result_.splitFaceCount;
    }
    while (outline.size() > 3) {
      const std::size_t k = bestEar(outline);
      addTriangle({before(outline, k), outline[k], after(outline, k)}, face);
      outline.erase(outline.begin() + static_cast<std::ptrdiff_t>(k));
    }
    addTriangle({outline[0], outline[1], outline[2]}, face);
  }

  void addTriangle(const std::array<int, 3>& corners, int face) {
    std::vector<int>& triangles = result_.mesh.triangles;
    triangles.insert(triangles.end(), corners.begin(), corners.end());
    result_.mesh.faceOfTriangle.push_back(face);
  }

  [[noreturn]] static void refuse(const std::vector<int>& outline, int face, const char* why) {
    const std::span shown(outline.data(), std::min(outline.size(), kShownCorners));
    throw MeshError(fmt::format("face {} ({}{}): {}; split it into triangles in your modeller",
                                face, fmt::join(shown, ", "),
                                shown.size() < outline.size() ? ", ..." : "", why));
  }

  void checkOutline(const std::vector<int>& outline, int face) const {
    if (outline.size() > kMostCorners) refuse(outline, face, "a polygon with too many corners");
    std::vector<int> sorted = outline;
    std::sort(sorted.begin(), sorted.end());
    if (std::adjacent_find(sorted.begin(), sorted.end()) != sorted.end())
      refuse(outline, face, "a polygon that names a vertex twice");
    const Point normal = newellNormal(outline);
    const double area = length(normal);
    if (!(area > 0)) refuse(outline, face, "a polygon without area");
    double turning = 0;
    for (std::size_t k = 0; k < outline.size(); ++k) {
      const Point in = at(outline[k]) - at(before(outline, k));
      const Point out = at(after(outline, k)) - at(outline[k]);
      const double sine = dot(cross(in, out), normal) / area;
      if (!(sine >= -kStraightTolerance * length(in) * length(out)))
        refuse(outline, face, "a polygon that is not convex");
      turning += std::atan2(sine, dot(in, out));
    }
    if (turning > kMostTurning) refuse(outline, face, "a polygon that crosses itself");
  }

  // Twice the area, as a vector (Newell; Sutherland et al., 1974).
  Point newellNormal(const std::vector<int>& outline) const {
    Point normal{};
    const Point origin = at(outline[0]);
    for (std::size_t k = 0; k < outline.size(); ++k)
      normal = normal + cross(at(outline[k]) - origin, at(after(outline, k)) - origin);
    return normal;
  }

  // The corner whose cutting off leaves the best worse half: its own triangle,
  // or, for a quadrilateral, the remaining one too.
  std::size_t bestEar(const std::vector<int>& outline) const {
    std::size_t best = 0;
    double bestAngle = -1;
    for (std::size_t k = 0; k < outline.size(); ++k) {
      double angle = smallestAngle(before(outline, k), outline[k], after(outline, k));
      if (outline.size() == 4)
        angle = std::min(
            angle, smallestAngle(after(outline, k), outline[(k + 2) % 4], before(outline, k)));
      if (angle > bestAngle) {
        best = k;
        bestAngle = angle;
      }
    }
    return best;
  }

  double smallestAngle(int a, int b, int c) const {
    return std::min({angleAt(a, b, c), angleAt(b, c, a), angleAt(c, a, b)});
  }

  double angleAt(int apex, int b, int c) const {
    const Point u = at(b) - at(apex);
    const Point v = at(c) - at(apex);
    return std::atan2(length(cross(u, v)), dot(u, v));
  }

  const Point& at(int vertex) const { return soup_.points[static_cast<std::size_t>(vertex)]; }
  static int before(const std::vector<int>& outline, std::size_t k) {
    return outline[(k + outline.size() - 1) % outline.size()];
  }
  static int after(const std::vector<int>& outline, std::size_t k) {
    return outline[(k + 1) % outline.size()];
  }

  const PolygonSoup& soup_;
  Triangulation result_;
};

}  // namespace

Triangulation triangulate(const PolygonSoup& soup) { return Splitter(soup).run(); }

}  // namespace qelm::tool
