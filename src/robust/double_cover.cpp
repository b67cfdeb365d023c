#include "robust/double_cover.h"

#include <algorithm>
#include <limits>
#include <new>
#include <utility>

#include "mesh/vec3.h"
#include "robust/edge_fan.h"
#include "robust/mesh_edges.h"
#include "robust/triangle_shape.h"

namespace qelm {
namespace {

/// Union-find over triangles, whose root is the first triangle of each part, and which knows of
/// each triangle whether it is turned against that one.
class SidedParts {
 public:
  explicit SidedParts(std::size_t count) : links_(count) {
    for (std::size_t t = 0; t < count; ++t) links_[t] = linkTo(t, 0);
  }

  /// Triangles that share an edge, and whether one of them must be turned; false if both are in
  /// one part already, which has them otherwise.
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

  /// The root's number and whether `triangle` is turned against it, as one link. Halves the path.
  std::uint32_t root(std::int32_t triangle) {
    std::uint32_t here = linkTo(asIndex(triangle), 0);
    while (links_[here / 2] / 2 != here / 2) {
      std::uint32_t& link = links_[here / 2];
      link = links_[link / 2] ^ (link & 1);
      here = link ^ (here & 1);
    }
    return here;
  }

  /// Twice the number of a lower triangle of the part, or its own; 1 more if turned against it.
  std::vector<std::uint32_t> links_;
};

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
    edges.forEach([&](std::int32_t lowerEnd, std::span<const Side> sides) {
      if (isPrescribed(sides)) return;
      if (sides.size() < 3) {
        glueRound(cover, lowerEnd, sides);
      } else {
        glueRound(cover, lowerEnd, sortedRound(lowerEnd, sides));
      }
    });
  }

  /// Whether the front of a triangle runs through its corners the other way.
  bool isTurned(std::size_t triangle) const { return isTurned_[triangle]; }

 private:
  /// If its higher end is, its lower one is as well.
  bool isPrescribed(std::span<const Side> sides) const { return sides[0].higherEnd < taggedCount_; }

  /// Glues fronts to fronts if every edge that is not prescribed has two triangles, and some of
  /// them can be turned so that all run through their edges in opposite directions.
  bool glueOneSheet(DoubleCover& cover, const MeshEdges& edges) {
    bool inPairs = true;
    bool opposed = true;
    cover.twin.assign(triangles_.size(), DoubleCover::kNone);
    edges.forEach([&](std::int32_t lowerEnd, std::span<const Side> sides) {
      if (isPrescribed(sides)) return;
      inPairs = inPairs && sides.size() == 2;
      if (!inPairs) return;
      glue(cover, sides[0].side, sides[1].side);
      opposed = opposed && startsAt(lowerEnd, sides[0].side) != startsAt(lowerEnd, sides[1].side);
    });
    isTurned_.assign(triangles_.size() / 3, false);
    if (!inPairs || opposed) return inPairs;
    if (!turnTriangles(edges)) return false;
    for (std::size_t t = 0; t < triangles_.size() / 3; ++t) {
      if (isTurned(t)) std::swap(cover.twin[3 * t], cover.twin[3 * t + 2]);
    }
    for (DoubleCover::HalfEdge& twin : cover.twin) {
      if (twin != DoubleCover::kNone && isTurned(asIndex(twin / 3)))
        twin = 3 * (twin / 3) + 2 - twin % 3;
    }
    return true;
  }

  /// False if some part has only one side. The first triangle of each part stays as it is.
  bool turnTriangles(const MeshEdges& edges) {
    SidedParts parts(isTurned_.size());
    bool haveTwoSides = true;
    edges.forEach([&](std::int32_t lowerEnd, std::span<const Side> sides) {
      if (isPrescribed(sides)) return;
      const std::int32_t g = sides[0].side, h = sides[1].side;
      haveTwoSides &= parts.unite(g / 3, h / 3, startsAt(lowerEnd, g) == startsAt(lowerEnd, h));
    });
    for (std::size_t t = 0; haveTwoSides && t < isTurned_.size(); ++t)
      isTurned_[t] = parts.isTurned(static_cast<std::int32_t>(t));
    return haveTwoSides;
  }

  bool startsAt(std::int32_t vertex, std::int32_t side) const {
    return triangles_[asIndex(side)] == vertex;
  }

  static void glue(DoubleCover& cover, DoubleCover::HalfEdge g, DoubleCover::HalfEdge h) {
    cover.twin[asIndex(g)] = h;
    cover.twin[asIndex(h)] = g;
  }

  /// Glues the side of each triangle that looks towards the next one round the edge, to
  /// the side of that one that looks back. A triangle that runs through the edge as its
  /// axis does, from the lower to the higher end, has its front in that direction.
  void glueRound(DoubleCover& cover, std::int32_t lowerEnd, std::span<const Side> sides) const {
    for (std::size_t i = 0; i < sides.size(); ++i) {
      const std::int32_t here = sides[i].side;
      const std::int32_t there = sides[i + 1 == sides.size() ? 0 : i + 1].side;
      glue(cover, startsAt(lowerEnd, here) ? here : cover.back(here),
           startsAt(lowerEnd, there) ? cover.back(there) : there);
    }
  }

  Vec3 point(std::int32_t v) const {
    return {coordinates_[3 * asIndex(v)], coordinates_[3 * asIndex(v) + 1],
            coordinates_[3 * asIndex(v) + 2]};
  }

  std::span<const Side> sortedRound(std::int32_t lowerEnd, std::span<const Side> sides) {
    blades_.clear();
    for (const Side& s : sides) {
      const std::int32_t apex = triangles_[asIndex(DoubleCover::previous(s.side))];
      blades_.push_back({s.side, point(apex)});
    }
    const std::int32_t higherEnd = sides[0].higherEnd;
    sortRoundEdge(point(lowerEnd), point(higherEnd), blades_);
    sorted_.clear();
    for (const FanBlade& blade : blades_) sorted_.push_back({higherEnd, blade.side});
    return sorted_;
  }

  std::int32_t taggedCount_;
  std::span<const double> coordinates_;
  std::span<const std::int32_t> triangles_;
  std::vector<bool> isTurned_;
  std::vector<FanBlade> blades_;
  std::vector<Side> sorted_;
};

/// Corner k of a triangle is opposite its half-edge k + 1.
void placeTriangle(DoubleCover& cover, std::size_t triangle,
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
  const auto point = [&](std::int32_t v) {
    return Vec3{coordinates[3 * asIndex(v)], coordinates[3 * asIndex(v) + 1],
                coordinates[3 * asIndex(v) + 2]};
  };
  for (std::size_t j = 0; j < triangles.size() / 3; ++j) {
    std::array<std::int32_t, 3> corners = {triangles[3 * j], triangles[3 * j + 1],
                                           triangles[3 * j + 2]};
    if (gluing.isTurned(j)) std::swap(corners[1], corners[2]);
    const Cotangents shape = cotangentsOf(point(corners[0]), point(corners[1]), point(corners[2]));
    cover.raisedTriangles += shape.raised ? 1 : 0;
    placeTriangle(cover, j, corners, shape.at);
  }
  return cover;
}

}  // namespace qelm
