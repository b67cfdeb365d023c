#include "robust/double_cover.h"

#include <algorithm>
#include <limits>
#include <new>
#include <utility>

#include "interface/index.h"
#include "mesh/vec3.h"
#include "robust/edge_fan.h"
#include "robust/mesh_edges.h"
#include "robust/triangle_shape.h"

namespace qelm {
namespace {

/// Union-find over triangles: the root of a part is its first triangle, and each triangle knows
/// whether it is turned over against that one.
class OrientedParts {
 public:
  explicit OrientedParts(std::size_t triangleCount) : links_(triangleCount) {
    for (std::size_t t = 0; t < triangleCount; ++t) links_[t] = linkTo(t, 0);
  }

  /// Joins two triangles that share an edge; exactly one of them must be turned over if they
  /// `disagree`, both or none if not. False if both are in one part already, which has decided
  /// otherwise.
  bool unite(std::int32_t a, std::int32_t b, bool disagree) {
    const std::uint32_t rootA = root(a), rootB = root(b);
    const std::uint32_t turned = (rootA ^ rootB ^ (disagree ? 1 : 0)) & 1;
    const std::uint32_t low = std::min(rootA / 2, rootB / 2), high = std::max(rootA / 2, rootB / 2);
    if (low == high) return turned == 0;
    links_[high] = linkTo(low, turned);
    return true;
  }

  bool isTurned(std::int32_t triangle) { return root(triangle) % 2 != 0; }

 private:
  static std::uint32_t linkTo(std::size_t triangle, std::uint32_t turned) {
    return 2 * static_cast<std::uint32_t>(triangle) + turned;
  }

  /// The link from a triangle to its root. Halves the path.
  std::uint32_t root(std::int32_t triangle) {
    std::uint32_t here = linkTo(asIndex(triangle), 0);
    while (links_[here / 2] / 2 != here / 2) {
      std::uint32_t& link = links_[here / 2];
      link = links_[link / 2] ^ (link & 1);
      here = link ^ (here & 1);
    }
    return here;
  }

  /// For each triangle a link to a triangle of its part with no higher number: twice that number,
  /// plus 1 if the two are turned against each other.
  std::vector<std::uint32_t> links_;
};

/// Fills in the twins.
class Gluing {
 public:
  Gluing(std::int32_t taggedCount, std::span<const double> coordinates,
         std::span<const std::int32_t> triangles)
      : taggedCount_(taggedCount), coordinates_(coordinates), triangles_(triangles) {}

  void glueEdges(DoubleCover& cover) {
    const MeshEdges edges(coordinates_.size() / 3, triangles_);
    cover.sheets = glueOneSheet(cover, edges) ? 1 : 2;
    if (cover.sheets == 1) return;
    isTurned_.assign(triangles_.size() / 3, false);
    cover.twin.assign(2 * triangles_.size(), DoubleCover::kNone);
    edges.forEach([&](std::int32_t lowerVertex, std::span<const MeshHalfEdge> halfEdges) {
      if (isPrescribed(halfEdges)) return;
      if (halfEdges.size() < 3) {
        glueAround(cover, halfEdges);
      } else {
        glueAround(cover, sortedAround(lowerVertex, halfEdges));
      }
    });
  }

  /// Whether the front of a triangle is turned over.
  bool isTurned(std::size_t triangle) const { return isTurned_[triangle]; }

 private:
  /// Whether both ends of an edge are prescribed. Prescribed vertices come first in system order,
  /// so the higher vertex decides.
  bool isPrescribed(std::span<const MeshHalfEdge> halfEdges) const {
    return halfEdges[0].higherVertex() < taggedCount_;
  }

  /// Glues fronts to fronts, with some triangles turned over, if every edge that is not prescribed
  /// has two triangles and each part of the mesh is orientable. False if not.
  bool glueOneSheet(DoubleCover& cover, const MeshEdges& edges) {
    bool inPairs = true;
    bool opposed = true;
    cover.twin.assign(triangles_.size(), DoubleCover::kNone);
    edges.forEach([&](std::int32_t, std::span<const MeshHalfEdge> halfEdges) {
      if (isPrescribed(halfEdges)) return;
      inPairs = inPairs && halfEdges.size() == 2;
      if (!inPairs) return;
      const std::int32_t g = halfEdges[0].number(), h = halfEdges[1].number();
      // Each triangle notes its twin as if it were not turned over itself: then its neighbour is
      // turned over if their half-edges agree.
      const bool agree = halfEdges[0].leadsUp() == halfEdges[1].leadsUp();
      cover.twin[asIndex(g)] = agree ? turnedOver(h) : h;
      cover.twin[asIndex(h)] = agree ? turnedOver(g) : g;
      opposed &= !agree;
    });
    isTurned_.assign(triangles_.size() / 3, false);
    if (!inPairs || opposed) return inPairs;
    if (!turnTriangles(edges)) return false;
    for (std::size_t t = 0; t < triangles_.size() / 3; ++t) {
      if (!isTurned(t)) continue;
      const std::span<DoubleCover::HalfEdge, 3> twins(&cover.twin[3 * t], 3);
      std::swap(twins[0], twins[2]);
      for (DoubleCover::HalfEdge& twin : twins) twin = turnedOver(twin);
    }
    return true;
  }

  /// What a half-edge becomes when its triangle is turned over.
  static DoubleCover::HalfEdge turnedOver(DoubleCover::HalfEdge h) {
    return h == DoubleCover::kNone ? h : h + 2 - 2 * (h % 3);
  }

  /// Decides which triangles are turned over; the first one of each part stays as it is. False if a
  /// part is not orientable.
  bool turnTriangles(const MeshEdges& edges) {
    OrientedParts parts(isTurned_.size());
    bool areOrientable = true;
    edges.forEach([&](std::int32_t, std::span<const MeshHalfEdge> halfEdges) {
      if (isPrescribed(halfEdges)) return;
      const MeshHalfEdge g = halfEdges[0], h = halfEdges[1];
      areOrientable &= parts.unite(g.number() / 3, h.number() / 3, g.leadsUp() == h.leadsUp());
    });
    for (std::size_t t = 0; areOrientable && t < isTurned_.size(); ++t)
      isTurned_[t] = parts.isTurned(asInt(t));
    return areOrientable;
  }

  static void glue(DoubleCover& cover, DoubleCover::HalfEdge g, DoubleCover::HalfEdge h) {
    cover.twin[asIndex(g)] = h;
    cover.twin[asIndex(h)] = g;
  }

  /// For each triangle around the edge, glues the face that looks at the next triangle to the next
  /// triangle's face that looks back. The front looks at the next triangle if the half-edge leads
  /// from the lower to the higher vertex.
  static void glueAround(DoubleCover& cover, std::span<const MeshHalfEdge> halfEdges) {
    for (std::size_t i = 0; i < halfEdges.size(); ++i) {
      const MeshHalfEdge here = halfEdges[i];
      const MeshHalfEdge there = halfEdges[i + 1 == halfEdges.size() ? 0 : i + 1];
      glue(cover, here.leadsUp() ? here.number() : cover.back(here.number()),
           there.leadsUp() ? cover.back(there.number()) : there.number());
    }
  }

  Vec3 point(std::int32_t v) const { return pointAt(coordinates_, v); }

  std::span<const MeshHalfEdge> sortedAround(std::int32_t lowerVertex,
                                             std::span<const MeshHalfEdge> halfEdges) {
    fan_.clear();
    for (const MeshHalfEdge h : halfEdges) {
      const std::int32_t apex = triangles_[asIndex(DoubleCover::previous(h.number()))];
      fan_.push_back({h.number(), point(apex)});
    }
    const std::int32_t higherVertex = halfEdges[0].higherVertex();
    sortAroundEdge(point(lowerVertex), point(higherVertex), fan_);
    sorted_.clear();
    for (const FanTriangle& triangle : fan_) {
      const std::int32_t h = triangle.halfEdge;
      sorted_.emplace_back(higherVertex, h, triangles_[asIndex(h)] == lowerVertex);
    }
    return sorted_;
  }

  std::int32_t taggedCount_;
  std::span<const double> coordinates_;
  std::span<const std::int32_t> triangles_;
  std::vector<bool> isTurned_;
  std::vector<FanTriangle> fan_;
  std::vector<MeshHalfEdge> sorted_;
};

/// Fills in origins and cotangents. Corner k of a triangle is opposite its half-edge k + 1.
void writeTriangle(DoubleCover& cover, std::size_t triangle,
                   const std::array<std::int32_t, 3>& corners, const std::array<double, 3>& shape) {
  for (std::size_t k = 0; k < 3; ++k) {
    const std::size_t front = 3 * triangle + k;
    cover.origin[front] = corners[k];
    cover.cotangent[front] = shape[(k + 2) % 3];
    if (cover.sheets == 1) continue;
    const std::size_t back = asIndex(cover.back(static_cast<DoubleCover::HalfEdge>(front)));
    cover.origin[back] = corners[(k + 1) % 3];
    cover.cotangent[back] = shape[(k + 2) % 3];
  }
}

}  // namespace

DoubleCover coverOf(std::int32_t taggedCount, std::span<const double> coordinates,
                    std::span<const std::int32_t> triangles) {
  constexpr std::size_t kMostHalfEdges = std::numeric_limits<std::int32_t>::max();
  if (triangles.size() > kMostHalfEdges / 2) throw std::bad_alloc();
  DoubleCover cover{};
  Gluing gluing(taggedCount, coordinates, triangles);
  gluing.glueEdges(cover);
  cover.origin.resize(cover.size());
  cover.cotangent.resize(cover.size());
  const auto point = [&](std::int32_t v) { return pointAt(coordinates, v); };
  for (std::size_t j = 0; j < triangles.size() / 3; ++j) {
    std::array<std::int32_t, 3> corners = {triangles[3 * j], triangles[3 * j + 1],
                                           triangles[3 * j + 2]};
    if (gluing.isTurned(j)) std::swap(corners[1], corners[2]);
    const Cotangents shape = cotangentsOf(point(corners[0]), point(corners[1]), point(corners[2]));
    cover.flatTriangles += shape.wasFlat ? 1 : 0;
    writeTriangle(cover, j, corners, shape.at);
  }
  return cover;
}

}  // namespace qelm
