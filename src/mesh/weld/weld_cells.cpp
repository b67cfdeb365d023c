#include "mesh/weld/weld_cells.h"

#include <algorithm>
#include <bit>
#include <cmath>

#include "interface/index.h"
#include "mesh/index_table.h"
#include "mesh/vec3.h"

namespace qelm {
namespace {

// Below this tolerance its square nears the subnormal numbers, where one rounding
// may be as large as the square itself.
constexpr double kTinyTolerance = 0x1p-500;

// Squares reach infinity at this length: with an infinite radius, pairs at a
// shorter distance are still the only ones to be welded.
constexpr double kOverflowLength = 0x1p512;

// Room for the few roundings in a length (2^-53 each) and for those in the branch
// distances of the tree, which add up over its levels (see weld.cpp). Too much of
// it costs a few more exact tests, no more.
constexpr double kReachSlack = 1 + 1e-6;

// In tree coordinates; see searchCoordinate().
constexpr double kLinearLimit = 0x1p300;

bool isFinite(Vec3 p) { return std::isfinite(p.x) && std::isfinite(p.y) && std::isfinite(p.z); }

bool isEqual(Vec3 a, Vec3 b) { return a.x == b.x && a.y == b.y && a.z == b.z; }

/// Lower bound of a coordinate's cell along one axis. Divisions and products by a power of two
/// are exact here. From 2^52 cell edges on, the coordinate is a whole number of edges already (or
/// the quotient overflows): a cell then holds one coordinate. Adding 0.0 turns -0.0 into 0.0:
/// equal bounds must have equal bits.
double cellBound(double coordinate, double cell) {
  const double edges = coordinate / cell;
  return (std::fabs(edges) < 0x1p52 ? std::floor(edges) * cell : coordinate) + 0.0;
}

Vec3 cellOf(Vec3 p, double cell) {
  return {cellBound(p.x, cell), cellBound(p.y, cell), cellBound(p.z, cell)};
}

std::uint64_t hashOf(Vec3 p) {
  return hashWords(std::bit_cast<std::uint64_t>(p.x), std::bit_cast<std::uint64_t>(p.y),
                   std::bit_cast<std::uint64_t>(p.z));
}

/// Numbers the cells and unites the points of each. Returns the cell of each point that becomes a
/// member, and -1 for points that are not finite or repeat the first point of their cell.
std::vector<std::int32_t> assignCells(std::span<const double> vertices,
                                      std::span<const std::int32_t> points, double cell,
                                      DisjointSets& sets, WeldCells& cells) {
  std::vector<std::int32_t> memberOf(points.size(), -1);
  IndexTable table(points.size());
  for (std::size_t i = 0; i < points.size(); ++i) {
    const std::int32_t point = points[i];
    const Vec3 p = pointAt(vertices, point);
    if (!isFinite(p)) continue;
    const Vec3 corner = cellOf(p, cell);
    const auto next = asInt(cells.size());
    const std::int32_t found = table.findOrInsert(hashOf(corner), next, [&](std::int32_t other) {
      const Vec3 start = pointAt(vertices, cells.first[asIndex(other)]);
      return isEqual(cellOf(start, cell), corner);
    });
    if (found == next) cells.first.push_back(point);
    const std::int32_t first = cells.first[asIndex(found)];
    if (first != point) sets.unite(first, point);
    if (first == point || !isEqual(pointAt(vertices, first), p)) memberOf[i] = found;
  }
  return memberOf;
}

/// Groups the members by cell: a counting sort.
void sortMembers(std::span<const std::int32_t> points, std::span<const std::int32_t> memberOf,
                 WeldCells& cells) {
  // start[c + 1] is where the next member of cell c goes; in the end, that is where cell c + 1
  // begins.
  cells.start.assign(cells.size() + 2, 0);
  for (const std::int32_t c : memberOf) {
    if (c >= 0) ++cells.start[asIndex(c) + 2];
  }
  for (std::size_t c = 2; c < cells.start.size(); ++c) cells.start[c] += cells.start[c - 1];
  cells.members.resize(asIndex(cells.start.back()));
  for (std::size_t i = 0; i < memberOf.size(); ++i) {
    if (memberOf[i] < 0) continue;
    std::int32_t& next = cells.start[asIndex(memberOf[i]) + 1];
    cells.members[asIndex(next++)] = points[i];
  }
  cells.start.pop_back();
}

void measureSpreads(std::span<const double> vertices, double cell, WeldCells& cells) {
  cells.spread.assign(cells.size(), 0);
  for (std::size_t c = 0; c < cells.size(); ++c) {
    const Vec3 first = pointAt(vertices, cells.first[c]);
    for (const std::int32_t member : cells.membersOf(asInt(c))) {
      // Divided before it is squared: at most one edge per axis then.
      const double distance = length((pointAt(vertices, member) - first) / cell);
      cells.spread[c] = std::fmax(cells.spread[c], distance);
    }
  }
}

struct Box {
  Vec3 low;
  Vec3 high;
};

Box boxOf(std::span<const double> vertices, std::span<const std::int32_t> points) {
  Box box{pointAt(vertices, points[0]), pointAt(vertices, points[0])};
  for (const std::int32_t i : points.subspan(1)) {
    const Vec3 p = pointAt(vertices, i);
    box.low = {std::min(box.low.x, p.x), std::min(box.low.y, p.y), std::min(box.low.z, p.z)};
    box.high = {std::max(box.high.x, p.x), std::max(box.high.y, p.y), std::max(box.high.z, p.z)};
  }
  return box;
}

double gap(double lowA, double highA, double lowB, double highB) {
  return std::max(0.0, std::max(lowB - highA, lowA - highB));
}

/// Least squared distance between points of two boxes. Rounding keeps the order of differences,
/// squares and sums, so this is never above the computed squared distance of two points in them;
/// likewise farthestSquared() is never below it.
double nearestSquared(const Box& a, const Box& b) {
  const Vec3 d{gap(a.low.x, a.high.x, b.low.x, b.high.x), gap(a.low.y, a.high.y, b.low.y, b.high.y),
               gap(a.low.z, a.high.z, b.low.z, b.high.z)};
  return dot(d, d);
}

double farthestSquared(const Box& a, const Box& b) {
  const Vec3 d{std::max(a.high.x - b.low.x, b.high.x - a.low.x),
               std::max(a.high.y - b.low.y, b.high.y - a.low.y),
               std::max(a.high.z - b.low.z, b.high.z - a.low.z)};
  return dot(d, d);
}

/// Axis 0 .. 2 along which the box is longest, and that length.
std::pair<std::size_t, double> longestAxis(const Box& box) {
  const Vec3 d = box.high - box.low;
  if (d.x >= d.y && d.x >= d.z) return {0, d.x};
  return d.y >= d.z ? std::pair<std::size_t, double>{1, d.y}
                    : std::pair<std::size_t, double>{2, d.z};
}

/// Splits the points into two halves at the median coordinate along `axis`; returns the size of
/// the first half.
std::size_t halve(std::span<const double> vertices, std::span<std::int32_t> points,
                  std::size_t axis) {
  const std::size_t half = points.size() / 2;
  std::nth_element(points.begin(), points.begin() + static_cast<std::ptrdiff_t>(half), points.end(),
                   [&](std::int32_t i, std::int32_t j) {
                     return vertices[3 * asIndex(i) + axis] < vertices[3 * asIndex(j) + axis];
                   });
  return half;
}

bool anyPairWithinDirectly(std::span<const double> vertices, double radiusSquared,
                           std::span<const std::int32_t> a, std::span<const std::int32_t> b) {
  for (const std::int32_t i : a) {
    for (const std::int32_t j : b) {
      const Vec3 d = pointAt(vertices, i) - pointAt(vertices, j);
      if (dot(d, d) < radiusSquared) return true;
    }
  }
  return false;
}

}  // namespace

// Why the points of one cell are welded. They differ by less than one edge e along each axis, and e
// is a power of two that is at most half the tolerance. Rounding keeps order: if e * e is
// representable, each squared difference is at most e * e, the sum of three at most 3 e * e, and
// the rounded square of the tolerance at least 4 e * e. If e * e is not representable, it is at
// most a quarter of the smallest positive number, and the squared differences round to 0.
//
// Why no welded pair is farther apart than the reach. For tiny tolerances let q be the smallest
// positive number and n q the rounded square of the tolerance. Welded points have a squared
// distance of at most (n + 1/2) q while the squared tolerance is at least (n - 1/2) q, three times
// less: no welded pair is farther apart than twice the tolerance.
WeldScale weldScale(double tolerance) {
  const bool tiny = tolerance < kTinyTolerance;
  const int exponent = std::ilogb(std::min(tolerance, kOverflowLength / 2));
  const double cell = std::ldexp(1.0, exponent - 1);
  const double reach = std::min(tolerance, kOverflowLength) / cell;
  return {tolerance * tolerance, cell, reach * (tiny ? 2 : kReachSlack)};
}

// Linear up to 2^300 edges, which is all that ordinary data needs. Beyond, neighbouring doubles are
// 2^248 edges apart: points that differ there along one axis are never welded, so the tree needs
// no more than equal results for equal coordinates. As the result grows like a logarithm, the
// tree's squares cannot overflow, and the tree can halve its box at most about 3 * 311 times, not
// some 6000 times: that bounds the depth of its recursion.
double searchCoordinate(double coordinate, double cell) {
  const double edges = coordinate / cell;
  if (std::fabs(edges) <= kLinearLimit) return edges;
  const auto words = std::bit_cast<std::uint64_t>(std::fabs(coordinate)) -
                     std::bit_cast<std::uint64_t>(kLinearLimit * cell);
  const double binades = static_cast<double>(words) * 0x1p-52;
  return std::copysign(kLinearLimit * (1 + binades), coordinate);
}

WeldCells uniteWithinCells(std::span<const double> vertices, std::span<const std::int32_t> points,
                           const WeldScale& scale, DisjointSets& sets) {
  WeldCells cells;
  const std::vector<std::int32_t> memberOf = assignCells(vertices, points, scale.cell, sets, cells);
  sortMembers(points, memberOf, cells);
  measureSpreads(vertices, scale.cell, cells);
  return cells;
}

// Branch and bound on the boxes of two point sets, the longer box halved. It ends: boxes without
// extent have one distance, which decides at once, and a box with extent has two points or more.
// The depth is at most that of halving both lists down to single points, 62 for 32-bit counts.
bool anyPairWithin(std::span<const double> vertices, double radiusSquared,
                   std::span<std::int32_t> a, std::span<std::int32_t> b) {
  constexpr std::size_t kFewPairs = 64;
  if (a.size() * b.size() <= kFewPairs) {
    return anyPairWithinDirectly(vertices, radiusSquared, a, b);
  }
  const Box boxA = boxOf(vertices, a);
  const Box boxB = boxOf(vertices, b);
  if (!(nearestSquared(boxA, boxB) < radiusSquared)) return false;
  if (farthestSquared(boxA, boxB) < radiusSquared) return true;
  const auto [axisA, extentA] = longestAxis(boxA);
  const auto [axisB, extentB] = longestAxis(boxB);
  if (extentA < extentB) return anyPairWithin(vertices, radiusSquared, b, a);
  const std::size_t half = halve(vertices, a, axisA);
  return anyPairWithin(vertices, radiusSquared, a.first(half), b) ||
         anyPairWithin(vertices, radiusSquared, a.subspan(half), b);
}

}  // namespace qelm
