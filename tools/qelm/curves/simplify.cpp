#include "curves/simplify.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <utility>
#include <vector>

#include "curves/clearance.h"
#include "mesh/vec3.h"
#include "text/index.h"

namespace qelm::tool {
namespace {

// Of half a clearance: two chords that both use all of theirs must not touch by rounding.
constexpr double kSafe = 1 - 1e-6;
// The directions that a piece may have: from its first point to the one so many points on. The
// direction that leads farthest is taken.
constexpr std::array<std::size_t, 4> kAhead = {32, 8, 2, 1};

/// The points `begin` to `end` of one curve, both included, which run on in one direction. Those
/// between `first` and `last` may be dropped.
struct Piece {
  std::size_t curve;
  std::size_t begin, first, last, end;
};

/// A closed curve as an open one that comes back to its first point.
class OpenedCurve {
 public:
  explicit OpenedCurve(const Curve& curve) : curve_(curve) {}
  std::size_t size() const { return curve_.size() + (curve_.closed ? 1 : 0); }
  Point operator[](std::size_t k) const { return curve_.point(k % curve_.size()); }

 private:
  const Curve& curve_;
};

/// The last point of the run from `begin` on in this direction: one point on at least.
std::size_t endOfRun(const OpenedCurve& points, std::size_t begin, const Point& direction) {
  std::size_t end = begin + 1;
  while (end + 1 < points.size() && dot(points[end + 1] - points[end], direction) > 0) ++end;
  return end;
}

std::size_t endOfPiece(const OpenedCurve& points, std::size_t begin) {
  std::size_t best = begin + 1;
  for (const std::size_t ahead : kAhead) {
    const Point direction = points[std::min(begin + ahead, points.size() - 1)] - points[begin];
    if (dot(points[begin + 1] - points[begin], direction) > 0)
      best = std::max(best, endOfRun(points, begin, direction));
  }
  return best;
}

void addPieces(const Curve& curve, std::size_t number, std::vector<Piece>& pieces) {
  const OpenedCurve points(curve);
  for (std::size_t begin = 0; begin + 1 < points.size();) {
    const std::size_t end = endOfPiece(points, begin);
    const bool isAtStart = begin == 0 && !curve.closed;
    const bool isAtEnd = end + 1 == points.size() && !curve.closed;
    Piece piece{number, begin, begin + (isAtStart ? 0 : 1), end - (isAtEnd ? 0 : 1), end};
    // Nothing lies between two ends that stay.
    if (piece.first >= piece.last) piece.first = piece.last = end;
    pieces.push_back(piece);
    begin = end;
  }
}

class Simplifier {
 public:
  Simplifier(const CurveSet& curves, double tolerance)
      : curves_(curves), tolerance_(tolerance), tree_({}) {
    for (std::size_t c = 0; c < curves.size(); ++c) addPieces(curves[c], c, pieces_);
    std::vector<PieceSegment> segments;
    for (std::size_t p = 0; p < pieces_.size(); ++p)
      for (std::size_t k = pieces_[p].begin; k < pieces_[p].end; ++k)
        segments.push_back(segment(p, k));
    tree_ = ClearanceTree(std::move(segments));
  }

  CurveSet run() {
    CurveSet result(curves_.levels());
    std::size_t p = 0;
    for (std::size_t c = 0; c < curves_.size(); ++c) {
      const Curve curve = curves_[c];
      const OpenedCurve points(curve);
      kept_.assign(points.size(), false);
      for (; p < pieces_.size() && pieces_[p].curve == c; ++p) thin(p, points);
      std::vector<double> coordinates;
      for (std::size_t k = 0; k < curve.size(); ++k)
        if (kept_[k]) {
          const Point point = points[k];
          coordinates.insert(coordinates.end(), point.begin(), point.end());
        }
      result.add(coordinates, curve.level, curve.closed);
    }
    return result;
  }

 private:
  /// What the tree takes for pieces: part 1 is the middle of a piece, 0 and 2 are its ends.
  static int number(std::size_t piece, int part) { return 3 * asInt(piece) + part; }

  PieceSegment segment(std::size_t piece, std::size_t k) const {
    const Piece& own = pieces_[piece];
    const Curve curve = curves_[own.curve];
    const OpenedCurve points(curve);
    const int part = k < own.first ? 0 : k < own.last ? 1 : 2;
    return {points[k], points[k + 1], number(piece, part)};
  }

  /// Marks the points of a piece that stay.
  void thin(std::size_t piece, const OpenedCurve& points) {
    const Piece& own = pieces_[piece];
    for (const std::size_t k : {own.begin, own.first, own.last, own.end}) kept_[k] = true;
    if (own.first == own.last) return keepAll(own);
    clearances_.clear();
    for (std::size_t k = own.first; k < own.last; ++k)
      clearances_.push_back(
          tree_.clearance(segment(piece, k), number(piece, 0), number(piece, 2), 2 * tolerance_));
    // Chords to look at: pairs of points that stay.
    std::vector<std::pair<std::size_t, std::size_t>> open = {{own.first, own.last}};
    while (!open.empty()) {
      const auto [from, to] = open.back();
      open.pop_back();
      const std::size_t middle = farthest(points, from, to, own.first);
      if (middle == from) continue;
      kept_[middle] = true;
      open.push_back({from, middle});
      open.push_back({middle, to});
    }
  }

  void keepAll(const Piece& piece) {
    for (std::size_t k = piece.begin; k <= piece.end; ++k) kept_[k] = true;
  }

  /// The point farthest from the chord between two points that stay; `from` if all points between
  /// them can be dropped. `first` is the point at which the clearances begin.
  std::size_t farthest(const OpenedCurve& points, std::size_t from, std::size_t to,
                       std::size_t first) const {
    if (to - from < 2) return from;
    const auto begin = clearances_.begin();
    const double clearance = *std::min_element(begin + static_cast<std::ptrdiff_t>(from - first),
                                               begin + static_cast<std::ptrdiff_t>(to - first));
    const PieceSegment chord{points[from], points[to], 0};
    double away = -1;
    std::size_t best = from;
    for (std::size_t k = from + 1; k < to; ++k) {
      const double distance = distanceBetween({points[k], points[k], 0}, chord);
      if (distance > away) best = k;
      away = std::max(away, distance);
    }
    return away < tolerance_ && away < kSafe * clearance / 2 ? from : best;
  }

  const CurveSet& curves_;
  double tolerance_;
  std::vector<Piece> pieces_;
  ClearanceTree tree_;
  std::vector<bool> kept_;          ///< of the curve that is being thinned
  std::vector<double> clearances_;  ///< of the piece's segments from its first
};

}  // namespace

CurveSet simplify(const CurveSet& curves, double tolerance) {
  return Simplifier(curves, tolerance).run();
}

}  // namespace qelm::tool
