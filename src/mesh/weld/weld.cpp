#include "mesh/weld/weld.h"

#include <array>
#include <cmath>
#include <cstddef>
#include <limits>

#include "interface/dependencies.h"
#include "interface/index.h"
#include "mesh/vec3.h"
#include "mesh/weld/weld_alone.h"
#include "mesh/weld/weld_cells.h"

namespace qelm {
namespace {

constexpr double kInfinity = std::numeric_limits<double>::infinity();

/// The first point of each cell, in search coordinates, with the box around all.
class CellCloud {
 public:
  CellCloud(std::span<const double> vertices, const WeldCells& cells, double cell) {
    points_.reserve(cells.size());
    for (const std::int32_t first : cells.first) {
      const Vec3 p = pointAt(vertices, first);
      points_.push_back(
          {searchCoordinate(p.x, cell), searchCoordinate(p.y, cell), searchCoordinate(p.z, cell)});
      widen(points_.back());
    }
  }

  const double* point(std::int32_t c) const { return points_[asIndex(c)].data(); }
  const double* lowCorner() const { return low_.data(); }

  // nanoflann's interface of a point set.
  std::size_t kdtree_get_point_count() const { return points_.size(); }
  double kdtree_get_pt(std::int32_t c, std::int32_t axis) const {
    return points_[asIndex(c)][asIndex(axis)];
  }
  template <class TreeBox>
  bool kdtree_get_bbox(TreeBox& box) const {
    for (std::size_t axis = 0; axis < 3; ++axis) {
      box[axis].low = low_[axis];
      box[axis].high = high_[axis];
    }
    return true;
  }

 private:
  void widen(const std::array<double, 3>& p) {
    for (std::size_t axis = 0; axis < 3; ++axis) {
      if (p[axis] < low_[axis]) low_[axis] = p[axis];
      if (p[axis] > high_[axis]) high_[axis] = p[axis];
    }
  }

  std::vector<std::array<double, 3>> points_;
  std::array<double, 3> low_{kInfinity, kInfinity, kInfinity};
  std::array<double, 3> high_{-kInfinity, -kInfinity, -kInfinity};
};

using CellTree = nanoflann::KDTreeSingleIndexAdaptor<
    nanoflann::L2_Adaptor<double, CellCloud, double, std::int32_t>, CellCloud, 3, std::int32_t>;

constexpr std::size_t kLeafSize = 10;

/// A result set without a bound: it takes every cell, in the order in which the search meets them.
class EveryCell : public UnsortedResultSet {
 public:
  explicit EveryCell(std::vector<std::int32_t>& cells) : cells_(cells) {}

  // nanoflann's interface of a result set.
  double worstDist() const { return kInfinity; }
  bool addPoint(double /*distance*/, std::int32_t found) {
    cells_.push_back(found);
    return true;
  }

 private:
  std::vector<std::int32_t>& cells_;
};

/// Every cell, leaf after leaf of the tree. Squared distances of search coordinates are finite (see
/// searchCoordinate()), so every cell is within the bound.
std::vector<std::int32_t> inOrderOfLeaves(const CellTree& tree, const CellCloud& cloud) {
  std::vector<std::int32_t> cells;
  cells.reserve(cloud.kdtree_get_point_count());
  EveryCell every(cells);
  tree.findNeighbors(every, cloud.lowCorner(), exactUnsortedSearch());
  return cells;
}

/// A result set that tests the cells which the tree finds around one cell, and unites those that
/// have points near enough.
///
/// The tree may not decide itself. It bounds a branch's distance by adding and subtracting squares
/// level by level, and the roundings can carry that bound past the radius although the distance to
/// a point inside, computed directly, is below the radius. So the search takes a wider sphere: the
/// reach, which has slack for those roundings, and the spreads of both cells. Of two cells, the one
/// with the larger spread searches for the other, so twice its own spread is enough, and cells of
/// one point search no wider than they would without cells.
class CellJoiner : public UnsortedResultSet {
 public:
  CellJoiner(std::span<const double> vertices, const WeldScale& scale, WeldCells& cells,
             DisjointSets& sets)
      : vertices_(vertices), scale_(scale), cells_(cells), sets_(sets) {}

  void setCell(std::int32_t cell) {
    cell_ = cell;
    const double reach = scale_.reach + 2 * spreadOf(cell);
    reachSquared_ = reach * reach;
  }

  // nanoflann's interface of a result set.
  double worstDist() const { return reachSquared_; }
  bool addPoint(double /*distance*/, std::int32_t found) {
    const bool isOursToTest =
        spreadOf(found) == spreadOf(cell_) ? found > cell_ : spreadOf(found) < spreadOf(cell_);
    if (isOursToTest) join(found);
    return true;
  }

 private:
  double spreadOf(std::int32_t cell) const { return cells_.spread[asIndex(cell)]; }

  void join(std::int32_t found) {
    const std::int32_t a = cells_.first[asIndex(cell_)];
    const std::int32_t b = cells_.first[asIndex(found)];
    if (sets_.root(a) == sets_.root(b)) return;
    if (anyPairWithin(vertices_, scale_.radiusSquared, cells_.membersOf(cell_),
                      cells_.membersOf(found))) {
      sets_.unite(a, b);
    }
  }

  std::span<const double> vertices_;
  const WeldScale& scale_;
  WeldCells& cells_;
  DisjointSets& sets_;
  std::int32_t cell_ = 0;
  double reachSquared_ = 0;
};

void uniteAcrossCells(std::span<const double> vertices, const WeldScale& scale, WeldCells& cells,
                      DisjointSets& sets) {
  const CellCloud cloud(vertices, cells, scale.cell);
  const CellTree tree(3, cloud, nanoflann::KDTreeSingleIndexAdaptorParams(kLeafSize));
  CellJoiner joiner(vertices, scale, cells, sets);
  // Leaf after leaf, a query walks nodes that the query before has just brought into the cache.
  for (const std::int32_t cell : inOrderOfLeaves(tree, cloud)) {
    joiner.setCell(cell);
    tree.findNeighbors(joiner, cloud.point(cell), exactUnsortedSearch());
  }
}

}  // namespace

DisjointSets uniteNeighbours(std::span<const double> vertices, double tolerance) {
  DisjointSets sets(vertices.size() / 3);
  // Squared distances are 0 or more, or NaN: nothing is below 0 (the square may
  // have underflowed to it) or below NaN.
  if (!(tolerance * tolerance > 0)) return sets;
  const WeldScale scale = weldScale(tolerance);
  const std::vector<std::int32_t> undecided = uniteIsolatedClusters(vertices, scale, sets);
  WeldCells cells = uniteWithinCells(vertices, undecided, scale, sets);
  uniteAcrossCells(vertices, scale, cells, sets);
  return sets;
}

std::vector<std::int32_t> numberSets(DisjointSets& sets, std::span<std::int32_t> numbers) {
  std::vector<std::int32_t> lowest;
  lowest.reserve(sets.size());
  for (std::size_t i = 0; i < sets.size(); ++i) {
    const auto element = asInt(i);
    const std::int32_t root = sets.root(element);
    // The root is the lowest element, so it has its number already.
    numbers[i] = root == element ? asInt(lowest.size()) : numbers[asIndex(root)];
    if (root == element) lowest.push_back(element);
  }
  return lowest;
}

}  // namespace qelm
