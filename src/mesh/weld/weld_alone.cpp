#include "mesh/weld/weld_alone.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <numeric>

#include "interface/compiler.h"
#include "mesh/index_table.h"
#include "mesh/vec3.h"

namespace qelm {
namespace {

// A cube's edge is at most this part of what would be the distance between all points
// if they were spread evenly over a square: few cubes see two clusters then. In cells'
// edges it is at least the other number: fewer points than one in five are near a face.
constexpr double kCubesToSpacing = 16;
constexpr double kLeastCellsToCube = 128;

// Places in the grid are below this, so what is added to them is rounded by at most
// 2^-13. Twice that and more is in the slack of the margin along a cube's faces.
constexpr double kMostCubes = 0x1p40;
constexpr double kMarginSlack = 0x1p-10;

// Meshes like to have round numbers for coordinates, and planes through the origin.
// The grid's faces are off them, by a fraction of a cube that is not round.
constexpr double kShift = 0.381966011250105;

/// A place in units of cubes.
struct Place {
  std::array<std::int64_t, 3> cube;
  bool nearFace;

  bool operator==(const Place& other) const { return cube == other.cube; }
};

class Grid {
 public:
  Grid(double edge, double margin) : perEdge_(1 / edge), margin_(margin) {}

  /// False for coordinates outside of the grid, or none.
  bool locate(Vec3 p, Place& place) const {
    const std::array<double, 3> along{p.x * perEdge_ + kShift, p.y * perEdge_ + kShift,
                                      p.z * perEdge_ + kShift};
    place.nearFace = false;
    for (std::size_t axis = 0; axis < 3; ++axis) {
      if (!(std::fabs(along[axis]) < kMostCubes)) return false;
      // Truncated, then floored: std::floor is a call on older processors.
      auto cube = static_cast<std::int64_t>(along[axis]);
      cube -= static_cast<double>(cube) > along[axis] ? 1 : 0;
      const double inside = along[axis] - static_cast<double>(cube);
      place.cube[axis] = cube;
      place.nearFace |= inside < margin_ || inside > 1 - margin_;
    }
    return true;
  }

 private:
  double perEdge_;
  double margin_;
};

std::uint64_t hashOf(const Place& place) {
  return hashWords(static_cast<std::uint64_t>(place.cube[0]),
                   static_cast<std::uint64_t>(place.cube[1]),
                   static_cast<std::uint64_t>(place.cube[2]));
}

/// Longest edge of the box around all points; NaN or infinity if one is not finite, or
/// if it overflows.
double extentOf(std::span<const double> vertices) {
  std::array<double, 3> low{vertices[0], vertices[1], vertices[2]};
  std::array<double, 3> high = low;
  std::array<double, 3> notFinite{};
  for (std::size_t i = 0; i < vertices.size(); i += 3) {
    for (std::size_t axis = 0; axis < 3; ++axis) {
      const double x = vertices[i + axis];
      low[axis] = std::min(low[axis], x);
      high[axis] = std::max(high[axis], x);
      notFinite[axis] += 0 * x;
    }
  }
  return std::max({high[0] - low[0], high[1] - low[1], high[2] - low[2]}) + notFinite[0] +
         notFinite[1] + notFinite[2];
}

/// A power of two; 0 if a grid is of no use.
double cubeEdge(std::span<const double> vertices, const WeldScale& scale) {
  if (vertices.empty()) return 0;
  const double spacing = extentOf(vertices) / std::sqrt(static_cast<double>(vertices.size()) / 3);
  const double most = spacing / kCubesToSpacing;
  // Not far from where powers of two end, so that one over it is one, too.
  if (!(most >= kLeastCellsToCube * scale.cell && most >= 0x1p-1000 && most <= 0x1p1000)) return 0;
  return std::ldexp(1.0, std::ilogb(most));
}

/// One after the other joins the first point of its cube.
class Joiner {
 public:
  Joiner(std::span<const double> vertices, const WeldScale& scale, const Grid& grid,
         DisjointSets& sets)
      : vertices_(vertices),
        radiusSquared_(scale.radiusSquared),
        grid_(grid),
        sets_(sets),
        table_(sets.size()),
        undecided_(sets.size(), 0) {}

  void joinAll() {
    std::array<Block, 2> blocks;
    std::size_t now = 0;
    locate(0, blocks[now]);
    for (std::size_t begin = 0; begin < sets_.size(); begin += kBlock) {
      Block& block = blocks[now];
      now = 1 - now;
      locate(begin + kBlock, blocks[now]);
      for (std::size_t k = 0; k < block.count; ++k) prefetchFirst(block.hash[k]);
      for (std::size_t k = 0; k < block.count; ++k) {
        if (!block.inGrid[k]) continue;
        join(static_cast<std::int32_t>(begin + k), block.place[k], block.hash[k]);
      }
    }
  }

  /// The points of cubes in which something was not clear.
  std::vector<std::int32_t> undecided() const {
    std::vector<std::int32_t> points;
    for (std::size_t i = 0; i < sets_.size(); ++i) {
      const auto point = static_cast<std::int32_t>(i);
      if (undecided_[at(sets_.parentOf(point))]) points.push_back(point);
    }
    return points;
  }

 private:
  static constexpr std::size_t kBlock = 16;
  struct Block {
    std::array<Place, kBlock> place;
    std::array<std::uint64_t, kBlock> hash;
    std::array<bool, kBlock> inGrid;
    std::size_t count = 0;
  };

  static std::size_t at(std::int32_t i) { return static_cast<std::size_t>(i); }

  /// Some points ahead, so that what they need in memory can be fetched in time.
  void locate(std::size_t begin, Block& block) {
    block.count = std::min(kBlock, sets_.size() - std::min(begin, sets_.size()));
    for (std::size_t k = 0; k < block.count; ++k) {
      Place& place = block.place[k];
      const auto point = static_cast<std::int32_t>(begin + k);
      block.inGrid[k] = grid_.locate(pointAt(vertices_, point), place);
      if (!block.inGrid[k]) {
        undecided_[begin + k] = 1;
        place = {};
      }
      block.hash[k] = hashOf(place);
      table_.prefetch(block.hash[k]);
    }
  }

  void prefetchFirst(std::uint64_t hash) const {
    const std::int32_t first = table_.firstTried(hash);
    if (first >= 0) prefetchToRead(&vertices_[3 * at(first)]);
  }

  void join(std::int32_t point, const Place& place, std::uint64_t hash) {
    const Vec3 p = pointAt(vertices_, point);
    const std::int32_t first = table_.findOrInsert(hash, point, [&](std::int32_t other) {
      const Vec3 start = pointAt(vertices_, other);
      Place otherPlace;
      // Nobody off all faces is welded to a point in another cube.
      return (!place.nearFace && isWelded(p, start)) ||
             (grid_.locate(start, otherPlace) && otherPlace == place);
    });
    if (place.nearFace) undecided_[at(first)] = 1;
    if (first == point) return;
    if (isWelded(p, pointAt(vertices_, first))) {
      sets_.setParent(point, first);
    } else {
      undecided_[at(first)] = 1;
      undecided_[at(point)] = 1;
    }
  }

  bool isWelded(Vec3 a, Vec3 b) const {
    const Vec3 d = a - b;
    return dot(d, d) < radiusSquared_;
  }

  std::span<const double> vertices_;
  double radiusSquared_;
  const Grid& grid_;
  DisjointSets& sets_;
  IndexTable table_;             ///< first points
  std::vector<char> undecided_;  ///< for each first point, and those without one
};

}  // namespace

std::vector<std::int32_t> uniteAlone(std::span<const double> vertices, const WeldScale& scale,
                                     DisjointSets& sets) {
  const double edge = cubeEdge(vertices, scale);
  if (edge == 0) {
    std::vector<std::int32_t> all(sets.size());
    std::iota(all.begin(), all.end(), 0);
    return all;
  }
  const Grid grid(edge, scale.reach * (scale.cell / edge) + kMarginSlack);
  Joiner joiner(vertices, scale, grid, sets);
  joiner.joinAll();
  return joiner.undecided();
}

}  // namespace qelm
