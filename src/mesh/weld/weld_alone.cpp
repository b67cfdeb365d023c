#include "mesh/weld/weld_alone.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <numeric>

#include "interface/compiler.h"
#include "interface/index.h"
#include "mesh/index_table.h"
#include "mesh/vec3.h"

namespace qelm {
namespace {

// How small cubes must be, so that few of them see two clusters: n points spread evenly over a
// square as wide as the mesh would be this many cube edges apart, or more.
constexpr double kCubesToSpacing = 16;

// How large cubes must be, in edges of the small cells, so that fewer than one point in five is
// near a face.
constexpr double kLeastCellsToCube = 128;

// Coordinates in cube edges are below kMostCubes, so adding kShift to them rounds by at most 2^-14.
// The slack of the margin along a cube's faces is far more than twice that.
constexpr double kMostCubes = 0x1p40;
constexpr double kMarginSlack = 0x1p-10;

// Many meshes have round coordinates and planes through the origin. A shift by a fraction of a cube
// that is not round keeps the grid's faces off them.
constexpr double kShift = 0.381966011250105;

/// The cube in which a point lies, and whether the point is within the margin of a face.
struct Cube {
  std::array<std::int64_t, 3> index;
  bool nearFace;

  bool operator==(const Cube& other) const { return index == other.index; }
};

class Grid {
 public:
  Grid(double edge, double margin) : perEdge_(1 / edge), margin_(margin) {}

  /// False for coordinates outside of the grid or not finite.
  bool locate(Vec3 p, Cube& cube) const {
    const std::array<double, 3> coordinates{p.x * perEdge_ + kShift, p.y * perEdge_ + kShift,
                                            p.z * perEdge_ + kShift};
    cube.nearFace = false;
    for (std::size_t axis = 0; axis < 3; ++axis) {
      const double x = coordinates[axis];
      if (!(std::fabs(x) < kMostCubes)) return false;
      // Truncated, then corrected to the floor: std::floor is a call without SSE 4.1.
      auto index = static_cast<std::int64_t>(x);
      index -= static_cast<double>(index) > x ? 1 : 0;
      const double inside = x - static_cast<double>(index);
      cube.index[axis] = index;
      cube.nearFace |= inside < margin_ || inside > 1 - margin_;
    }
    return true;
  }

 private:
  double perEdge_;
  double margin_;
};

std::uint64_t hashOf(const Cube& cube) {
  return hashWords(static_cast<std::uint64_t>(cube.index[0]),
                   static_cast<std::uint64_t>(cube.index[1]),
                   static_cast<std::uint64_t>(cube.index[2]));
}

/// Longest edge of the box around all points. A NaN is passed over, or is the result.
double extentOf(std::span<const double> vertices) {
  std::array<double, 3> low{vertices[0], vertices[1], vertices[2]};
  std::array<double, 3> high = low;
  for (std::size_t i = 0; i < vertices.size(); i += 3) {
    for (std::size_t axis = 0; axis < 3; ++axis) {
      const double x = vertices[i + axis];
      low[axis] = std::min(low[axis], x);
      high[axis] = std::max(high[axis], x);
    }
  }
  return std::max({high[0] - low[0], high[1] - low[1], high[2] - low[2]});
}

/// Edge of the grid's cubes, a power of two; 0 if a grid is of no use. Speed alone depends on it:
/// any edge gives the same clusters. It is far above the least number whose reciprocal is finite,
/// as cells are; if the extent overflows it is infinite, and all finite points are in one cube.
double cubeEdge(std::span<const double> vertices, const WeldScale& scale) {
  const double spacing = extentOf(vertices) / std::sqrt(static_cast<double>(vertices.size()) / 3);
  const double most = spacing / kCubesToSpacing;
  if (!(most >= kLeastCellsToCube * scale.cell)) return 0;
  return std::ldexp(1.0, std::ilogb(most));
}

/// Unites each point with the first point of its cube, if they are near enough, and marks the
/// cubes that are not clusters of their own.
class CubeJoiner {
 public:
  CubeJoiner(std::span<const double> vertices, const WeldScale& scale, const Grid& grid,
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
        join(asInt(begin + k), block.cube[k], block.hash[k]);
      }
    }
  }

  /// The points of cubes that are not clusters of their own.
  std::vector<std::int32_t> undecided() const {
    std::vector<std::int32_t> points;
    for (std::size_t i = 0; i < sets_.size(); ++i) {
      const auto point = asInt(i);
      if (undecided_[asIndex(sets_.parentOf(point))]) points.push_back(point);
    }
    return points;
  }

 private:
  static constexpr std::size_t kBlock = 16;
  struct Block {
    std::array<Cube, kBlock> cube;
    std::array<std::uint64_t, kBlock> hash;
    std::array<bool, kBlock> inGrid;
    std::size_t count = 0;
  };

  /// Locates a block of points and prefetches their slots in the hash table.
  void locate(std::size_t begin, Block& block) {
    block.count = std::min(kBlock, sets_.size() - std::min(begin, sets_.size()));
    for (std::size_t k = 0; k < block.count; ++k) {
      Cube& cube = block.cube[k];
      const auto point = asInt(begin + k);
      block.inGrid[k] = grid_.locate(pointAt(vertices_, point), cube);
      if (!block.inGrid[k]) {
        undecided_[begin + k] = 1;
        cube = {};
      }
      block.hash[k] = hashOf(cube);
      table_.prefetch(block.hash[k]);
    }
  }

  void prefetchFirst(std::uint64_t hash) const {
    const std::int32_t first = table_.firstTried(hash);
    if (first >= 0) prefetchToRead(&vertices_[3 * asIndex(first)]);
  }

  void join(std::int32_t point, const Cube& cube, std::uint64_t hash) {
    const Vec3 p = pointAt(vertices_, point);
    const std::int32_t first = table_.findOrInsert(hash, point, [&](std::int32_t other) {
      const Vec3 start = pointAt(vertices_, other);
      Cube otherCube;
      // A point away from all faces is welded to no point in another cube: one that it is welded
      // to lies in the same cube.
      return (!cube.nearFace && isWelded(p, start)) ||
             (grid_.locate(start, otherCube) && otherCube == cube);
    });
    if (cube.nearFace) undecided_[asIndex(first)] = 1;
    if (first == point) return;
    if (isWelded(p, pointAt(vertices_, first))) {
      sets_.setParent(point, first);
    } else {
      undecided_[asIndex(first)] = 1;
      undecided_[asIndex(point)] = 1;
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
  IndexTable table_;             ///< the first point of each cube
  std::vector<char> undecided_;  ///< marks first points, and points without a cube
};

}  // namespace

std::vector<std::int32_t> uniteIsolatedClusters(std::span<const double> vertices,
                                                const WeldScale& scale, DisjointSets& sets) {
  const double edge = cubeEdge(vertices, scale);
  if (edge == 0) {
    std::vector<std::int32_t> all(sets.size());
    std::iota(all.begin(), all.end(), 0);
    return all;
  }
  const Grid grid(edge, scale.reach * (scale.cell / edge) + kMarginSlack);
  CubeJoiner joiner(vertices, scale, grid, sets);
  joiner.joinAll();
  return joiner.undecided();
}

}  // namespace qelm
