#include "mesh/boundary.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <limits>
#include <tuple>
#include <unordered_map>

#include "mesh/vec3.h"

namespace qelm::tool {
namespace {

/// BoundarySide k of a triangle is the one facing its corner k.
struct BoundarySide {
  int low, high;  ///< the edge's vertices
  int index;      ///< 3 * triangle + k
};

constexpr int kBoundary = -1;   ///< no triangle beyond this side
constexpr int kBranching = -2;  ///< more than one triangle beyond this side

/// A length for sorting: not a number, as of loops through a vertex that is none, cannot be
/// compared, so it counts as the longest.
double ranked(double length) {
  return std::isnan(length) ? std::numeric_limits<double>::infinity() : length;
}

class Walker {
 public:
  explicit Walker(const Mesh& mesh) : mesh_(mesh), beyond_(mesh.triangles.size(), kBoundary) {
    joinSides();
  }

  std::vector<BoundaryLoop> loops() {
    std::vector<bool> walked(beyond_.size(), false);
    std::vector<BoundaryLoop> found;
    for (int side = 0; side < static_cast<int>(beyond_.size()); ++side) {
      if (beyond(side) != kBoundary || walked[static_cast<std::size_t>(side)]) continue;
      walk(side, walked, found);
    }
    std::sort(found.begin(), found.end(), [](const BoundaryLoop& a, const BoundaryLoop& b) {
      if (ranked(a.length) != ranked(b.length)) return ranked(a.length) > ranked(b.length);
      return *std::min_element(a.vertices.begin(), a.vertices.end()) <
             *std::min_element(b.vertices.begin(), b.vertices.end());
    });
    return found;
  }

 private:
  void joinSides() {
    std::vector<BoundarySide> sides;
    sides.reserve(beyond_.size());
    for (int side = 0; side < static_cast<int>(beyond_.size()); ++side) {
      const auto [a, b] = ends(side);
      sides.push_back({std::min(a, b), std::max(a, b), side});
    }
    std::sort(sides.begin(), sides.end(), [](const BoundarySide& a, const BoundarySide& b) {
      return std::tie(a.low, a.high, a.index) < std::tie(b.low, b.high, b.index);
    });
    for (std::size_t first = 0; first < sides.size();) {
      std::size_t last = first + 1;
      while (last < sides.size() && sides[last].low == sides[first].low &&
             sides[last].high == sides[first].high)
        ++last;
      joinGroup(&sides[first], last - first);
      first = last;
    }
  }

  void joinGroup(const BoundarySide* group, std::size_t count) {
    if (count == 1) return;
    for (std::size_t k = 0; k < count; ++k)
      beyond_[static_cast<std::size_t>(group[k].index)] =
          count == 2 ? group[1 - k].index : kBranching;
  }

  void walk(int start, std::vector<bool>& walked, std::vector<BoundaryLoop>& found) {
    const auto [first, second] = ends(start);
    std::vector<int> forward = {first, second};
    walked[static_cast<std::size_t>(start)] = true;
    if (!follow(start, second, walked, forward)) {
      // Open: the part that lies before the start comes first.
      std::vector<int> backward = {first};
      follow(start, first, walked, backward);
      std::reverse(backward.begin(), backward.end());
      forward.insert(forward.begin(), backward.begin(), backward.end() - 1);
    }
    cutIntoLoops(forward, found);
  }

  /// Cuts the curve wherever it comes back to a vertex; of a closed curve, whose
  /// last vertex is its first, nothing remains.
  void cutIntoLoops(const std::vector<int>& curve, std::vector<BoundaryLoop>& found) const {
    std::vector<int> open;
    std::unordered_map<int, std::size_t> place;
    for (const int v : curve) {
      const auto [at, isNew] = place.try_emplace(v, open.size());
      if (isNew) {
        open.push_back(v);
        continue;
      }
      const auto first = open.begin() + static_cast<std::ptrdiff_t>(at->second);
      found.push_back(measured({first, open.end()}, true));
      std::for_each(first + 1, open.end(), [&place](int passed) { place.erase(passed); });
      open.erase(first + 1, open.end());
    }
    if (open.size() > 1) found.push_back(measured(std::move(open), false));
  }

  /// Appends the vertices after `pivot`; true when the walk came back to where
  /// it started (the first vertex is then the last one, too).
  bool follow(int side, int pivot, std::vector<bool>& walked, std::vector<int>& vertices) {
    while (true) {
      side = nextBoundarySide(side, pivot);
      if (side == kBranching) return false;
      if (walked[static_cast<std::size_t>(side)]) return true;
      walked[static_cast<std::size_t>(side)] = true;
      const auto [a, b] = ends(side);
      pivot = a == pivot ? b : a;
      vertices.push_back(pivot);
    }
  }

  /// Turns round `pivot` from one boundary side to the other.
  int nextBoundarySide(int side, int pivot) const {
    while (true) {
      side = otherSideAt(side, pivot);
      const int next = beyond(side);
      if (next == kBoundary) return side;
      if (next == kBranching) return kBranching;
      side = next;
    }
  }

  /// The triangle's other side that ends at `pivot`.
  int otherSideAt(int side, int pivot) const {
    const int triangle = side / 3;
    for (int k = 0; k < 3; ++k) {
      const int other = 3 * triangle + k;
      if (other != side && corner(other) != pivot) return other;
    }
    return side;  // not reached: two of three sides end at every corner
  }

  BoundaryLoop measured(std::vector<int> vertices, bool closed) const {
    BoundaryLoop loop{std::move(vertices), 0, closed};
    const std::size_t n = loop.vertices.size();
    for (std::size_t k = 0; k + (closed ? 0 : 1) < n; ++k)
      loop.length +=
          length(mesh_.point(loop.vertices[(k + 1) % n]) - mesh_.point(loop.vertices[k]));
    return loop;
  }

  int corner(int side) const { return mesh_.triangles[static_cast<std::size_t>(side)]; }
  int beyond(int side) const { return beyond_[static_cast<std::size_t>(side)]; }
  std::pair<int, int> ends(int side) const {
    const int triangle = side / 3;
    return {corner(3 * triangle + (side + 1) % 3), corner(3 * triangle + (side + 2) % 3)};
  }

  const Mesh& mesh_;
  std::vector<int> beyond_;  ///< for each side the matching side of its neighbour
};

}  // namespace

std::vector<BoundaryLoop> boundaryLoops(const Mesh& mesh) { return Walker(mesh).loops(); }

}  // namespace qelm::tool
