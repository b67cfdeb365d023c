#include "mesh_files/triangulate.h"

#include <fmt/format.h>
#include <fmt/ranges.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <numbers>
#include <span>
#include <utility>

#include "mesh/vec3.h"
#include "mesh_files/ear_clipping.h"
#include "text/error.h"
#include "text/index.h"

namespace qelm::tool {
namespace {

// How far a corner may bend inwards, as a sine: room for the rounding of
// coordinates along a straight side, far less than anyone draws on purpose.
constexpr double kStraightTolerance = 1e-6;

// A convex outline turns once, by 2 pi; one that turns twice crosses itself.
constexpr double kMostTurning = 3 * std::numbers::pi;

// Splitting takes time in proportion to the corners squared: seconds for so many, and nobody
// models more.
constexpr std::size_t kMostCorners = 20'000;

// A face that is flatter is flat to the eye.
constexpr double kFlat = 0.01;

// How many corners of a polygon a message shows.
constexpr std::size_t kShownCorners = 12;

[[noreturn]] void refuse(const std::vector<int>& outline, int face, const char* why) {
  const std::span shown(outline.data(), std::min(outline.size(), kShownCorners));
  throw MeshError(fmt::format("face {} ({}{}): {}; split it into triangles in your modeller", face,
                              fmt::join(shown, ", "), shown.size() < outline.size() ? ", ..." : "",
                              why));
}

int at(const std::vector<int>& outline, std::size_t k) { return outline[k % outline.size()]; }

/// What --strict lets pass: convex polygons, flat or nearly so.
class ConvexCheck {
 public:
  ConvexCheck(const Mesh& points, const std::vector<int>& outline, int face)
      : points_(points), outline_(outline), face_(face) {}

  void run() const {
    std::vector<int> sorted = outline_;
    std::sort(sorted.begin(), sorted.end());
    if (std::adjacent_find(sorted.begin(), sorted.end()) != sorted.end())
      refuse(outline_, face_, "a polygon that names a vertex twice");
    const Point normal = newellNormal();
    const double area = length(normal);
    if (!(area > 0)) refuse(outline_, face_, "a polygon without area");
    double turning = 0;
    for (std::size_t k = 0; k < outline_.size(); ++k) {
      const Point in = point(k + 1) - point(k);
      const Point out = point(k + 2) - point(k + 1);
      const double sine = dot(cross(in, out), normal) / area;
      if (!(sine >= -kStraightTolerance * length(in) * length(out)))
        refuse(outline_, face_, "a polygon that is not convex");
      turning += std::atan2(sine, dot(in, out));
    }
    if (turning > kMostTurning) refuse(outline_, face_, "a polygon that crosses itself");
  }

 private:
  // Twice the area, as a vector (Newell; Sutherland et al., 1974).
  Point newellNormal() const {
    Point normal{};
    const Point origin = point(0);
    for (std::size_t k = 0; k < outline_.size(); ++k)
      normal = normal + cross(point(k) - origin, point(k + 1) - origin);
    return normal;
  }

  Point point(std::size_t k) const { return points_.point(at(outline_, k)); }

  const Mesh& points_;
  const std::vector<int>& outline_;
  int face_;
};

class Splitter {
 public:
  Splitter(PolygonSoup soup, bool strict) : faces_(std::move(soup.faces)), strict_(strict) {
    result_.mesh.vertices = soup.points.takeCoordinates();
    result_.mesh.attributes = std::move(soup.attributes);
  }

  Triangulation run() {
    Mesh& mesh = result_.mesh;
    if (areTriangles()) {
      mesh.triangles = faces_.takeCorners();
      return std::move(result_);
    }
    mesh.triangles.reserve(3 * faces_.size());
    for (std::size_t f = 0; f < faces_.size(); ++f) addFace(asInt(f));
    mesh.leftOutFaces = result_.leftOut.count;
    if (mesh.triangles.empty())
      throw MeshError(fmt::format("none of {} faces has three different corners; repair the file",
                                  faces_.size()));
    if (result_.splitFaceCount == 0 && result_.leftOut.count == 0) mesh.faceOfTriangle.clear();
    return std::move(result_);
  }

 private:
  /// With three different corners each, as in most files: nothing is to be done then.
  bool areTriangles() const {
    return faces_.areTriangles() && !faces_.repeatCorners() && !faces_.empty();
  }

  void addFace(int face) {
    const std::span<const int> corners = faces_[asIndex(face)];
    if (corners.size() == 3 && corners[0] != corners[1] && corners[1] != corners[2] &&
        corners[2] != corners[0])
      return addTriangle({corners[0], corners[1], corners[2]}, face);
    if (strict_ && corners.size() == 3)
      return addTriangle({corners[0], corners[1], corners[2]}, face);
    std::vector<int> outline(corners.begin(), corners.end());
    if (strict_) ConvexCheck(result_.mesh, outline, face).run();
    outline = withoutRepeats(std::move(outline));
    if (outline.empty()) return result_.leftOut.add(face);
    if (outline.size() < corners.size()) result_.repeatedCorner.add(face);
    if (outline.size() == 3) return addTriangle({outline[0], outline[1], outline[2]}, face);
    if (outline.size() > kMostCorners) refuse(outline, face, "a polygon with too many corners");
    addPolygon(std::move(outline), face);
  }

  void addPolygon(std::vector<int> outline, int face) {
    const ClippedPolygon clipped = clipEars(result_.mesh.vertices, std::move(outline));
    for (const std::array<int, 3>& corners : clipped.triangles) addTriangle(corners, face);
    ++result_.splitFaceCount;
    if (clipped.crossesItself) result_.crossing.add(face);
    if (clipped.bend > kFlat) result_.bent.add(face);
    result_.worstBend = std::max(result_.worstBend, clipped.bend);
  }

  void addTriangle(const std::array<int, 3>& corners, int face) {
    Mesh& mesh = result_.mesh;
    mesh.triangles.insert(mesh.triangles.end(), corners.begin(), corners.end());
    mesh.faceOfTriangle.push_back(face);
  }

  Faces faces_;
  bool strict_;
  Triangulation result_;
};

}  // namespace

Triangulation triangulate(PolygonSoup soup) { return Splitter(std::move(soup), false).run(); }

Triangulation triangulateStrictly(PolygonSoup soup) {
  return Splitter(std::move(soup), true).run();
}

}  // namespace qelm::tool
