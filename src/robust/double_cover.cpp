#include "robust/double_cover.h"

#include <algorithm>
#include <limits>
#include <new>

#include "mesh/vec3.h"
#include "robust/edge_fan.h"
#include "robust/mesh_edges.h"
#include "robust/triangle_shape.h"

namespace qelm {
namespace {

class Gluing {
 public:
  Gluing(std::int32_t taggedCount, std::span<const double> coordinates,
         std::span<const std::int32_t> triangles)
      : taggedCount_(taggedCount), coordinates_(coordinates), triangles_(triangles) {}

  void glueEdges(DoubleCover& cover) {
    const MeshEdges edges(coordinates_.size() / 3, triangles_);
    cover.sheets = oneSheetIsEnough(edges) ? 1 : 2;
    cover.twin.assign(triangles_.size() * static_cast<std::size_t>(cover.sheets),
                      DoubleCover::kNone);
    edges.forEach([&](std::int32_t lowerEnd, std::span<const Side> sides) {
      if (isPrescribed(sides)) return;
      if (cover.sheets == 1) {
        glue(cover, sides[0].side, sides[1].side);
      } else if (sides.size() < 3) {
        glueRound(cover, lowerEnd, sides);
      } else {
        glueRound(cover, lowerEnd, sortedRound(lowerEnd, sides));
      }
    });
  }

 private:
  /// If its higher end is, its lower one is as well.
  bool isPrescribed(std::span<const Side> sides) const { return sides[0].higherEnd < taggedCount_; }

  bool oneSheetIsEnough(const MeshEdges& edges) const {
    bool enough = true;
    edges.forEach([&](std::int32_t lowerEnd, std::span<const Side> sides) {
      const bool opposed = sides.size() == 2 &&
                           startsAt(lowerEnd, sides[0].side) != startsAt(lowerEnd, sides[1].side);
      enough = enough && (opposed || isPrescribed(sides));
    });
    return enough;
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
  Gluing(taggedCount, coordinates, triangles).glueEdges(cover);
  cover.origin.resize(cover.size());
  cover.cotangent.resize(cover.size());
  const auto point = [&](std::int32_t v) {
    return Vec3{coordinates[3 * asIndex(v)], coordinates[3 * asIndex(v) + 1],
                coordinates[3 * asIndex(v) + 2]};
  };
  for (std::size_t j = 0; j < triangles.size() / 3; ++j) {
    const std::array<std::int32_t, 3> corners = {triangles[3 * j], triangles[3 * j + 1],
                                                 triangles[3 * j + 2]};
    const Cotangents shape = cotangentsOf(point(corners[0]), point(corners[1]), point(corners[2]));
    cover.raisedTriangles += shape.raised ? 1 : 0;
    placeTriangle(cover, j, corners, shape.at);
  }
  return cover;
}

}  // namespace qelm
