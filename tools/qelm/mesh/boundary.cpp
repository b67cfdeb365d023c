#include "mesh/boundary.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <limits>
#include <unordered_map>
#include <utility>

#include "mesh/half_edges.h"
#include "mesh/vec3.h"
#include "text/index.h"

namespace qelm::tool {
namespace {

constexpr int kBoundary = -1;   ///< a half-edge without opposite: it is on the boundary
constexpr int kBranching = -2;  ///< a half-edge with more than one opposite

/// A length for sorting. NaN, from a coordinate that is NaN, cannot be compared: it counts as the
/// longest.
double ranked(double length) {
  return std::isnan(length) ? std::numeric_limits<double>::infinity() : length;
}

class LoopWalker {
 public:
  explicit LoopWalker(const Mesh& mesh)
      : mesh_(mesh), opposite_(mesh.triangles.size(), kBoundary), isWalked_(opposite_.size()) {
    forEachEdge(sortedHalfEdges(mesh), [this](std::span<const HalfEdge> edge) {
      if (edge.size() == 1) return;
      for (std::size_t k = 0; k < edge.size(); ++k)
        opposite_[asIndex(edge[k].index)] = edge.size() == 2 ? edge[1 - k].index : kBranching;
    });
  }

  std::vector<BoundaryLoop> loops() {
    for (int h = 0; h < asInt(opposite_.size()); ++h)
      if (opposite(h) == kBoundary && !isWalked_[asIndex(h)]) walkFrom(h);
    std::sort(loops_.begin(), loops_.end(), [](const BoundaryLoop& a, const BoundaryLoop& b) {
      if (ranked(a.length) != ranked(b.length)) return ranked(a.length) > ranked(b.length);
      return *std::min_element(a.vertices.begin(), a.vertices.end()) <
             *std::min_element(b.vertices.begin(), b.vertices.end());
    });
    return std::move(loops_);
  }

 private:
  void walkFrom(int start) {
    const auto [first, second] = ends(start);
    std::vector<int> forward = {first, second};
    isWalked_[asIndex(start)] = true;
    if (!follow(start, second, forward)) {
      // The curve is open: the part before the start comes first.
      std::vector<int> backward = {first};
      follow(start, first, backward);
      std::reverse(backward.begin(), backward.end());
      forward.insert(forward.begin(), backward.begin(), backward.end() - 1);
    }
    cutIntoLoops(forward);
  }

  /// Appends the vertices after `pivot`, one boundary half-edge after the other. Returns true when
  /// the walk comes back to its start; the start's first vertex is then the last one, too.
  bool follow(int halfEdge, int pivot, std::vector<int>& vertices) {
    while (true) {
      halfEdge = nextOnBoundary(halfEdge, pivot);
      if (halfEdge == kBranching) return false;
      if (isWalked_[asIndex(halfEdge)]) return true;
      isWalked_[asIndex(halfEdge)] = true;
      const auto [a, b] = ends(halfEdge);
      pivot = a == pivot ? b : a;
      vertices.push_back(pivot);
    }
  }

  /// Turns round `pivot`, from triangle to triangle, to the fan's other boundary half-edge.
  int nextOnBoundary(int halfEdge, int pivot) const {
    while (true) {
      halfEdge = otherAt(halfEdge, pivot);
      const int next = opposite(halfEdge);
      if (next == kBoundary) return halfEdge;
      if (next == kBranching) return kBranching;
      halfEdge = next;
    }
  }

  /// The same triangle's other half-edge at `pivot`.
  int otherAt(int halfEdge, int pivot) const {
    const int triangle = halfEdge / 3;
    for (int k = 0; k < 3; ++k) {
      const int other = 3 * triangle + k;
      if (other != halfEdge && mesh_.corner(triangle, k) != pivot) return other;
    }
    return halfEdge;  // not reached: every corner has two half-edges that do not face it
  }

  /// Cuts the curve wherever it comes back to a vertex; of a closed curve, whose last vertex is
  /// its first, nothing remains.
  void cutIntoLoops(const std::vector<int>& curve) {
    std::vector<int> open;
    std::unordered_map<int, std::size_t> position;  // of each vertex, in `open`
    for (const int v : curve) {
      const auto [at, isNew] = position.try_emplace(v, open.size());
      if (isNew) {
        open.push_back(v);
        continue;
      }
      const auto first = open.begin() + static_cast<std::ptrdiff_t>(at->second);
      loops_.push_back(measured({first, open.end()}, true));
      std::for_each(first + 1, open.end(), [&position](int passed) { position.erase(passed); });
      open.erase(first + 1, open.end());
    }
    if (open.size() > 1) loops_.push_back(measured(std::move(open), false));
  }

  BoundaryLoop measured(std::vector<int> vertices, bool closed) const {
    BoundaryLoop loop{std::move(vertices), 0, closed};
    const std::size_t n = loop.vertices.size();
    for (std::size_t k = 0; k + (closed ? 0 : 1) < n; ++k)
      loop.length +=
          length(mesh_.point(loop.vertices[(k + 1) % n]) - mesh_.point(loop.vertices[k]));
    return loop;
  }

  int opposite(int halfEdge) const { return opposite_[asIndex(halfEdge)]; }
  std::pair<int, int> ends(int halfEdge) const {
    const int triangle = halfEdge / 3;
    return {mesh_.corner(triangle, halfEdge % 3 + 1), mesh_.corner(triangle, halfEdge % 3 + 2)};
  }

  const Mesh& mesh_;
  std::vector<int> opposite_;  ///< for each half-edge the one of the neighbouring triangle
  std::vector<bool> isWalked_;
  std::vector<BoundaryLoop> loops_;
};

}  // namespace

std::vector<BoundaryLoop> boundaryLoops(const Mesh& mesh) { return LoopWalker(mesh).loops(); }

}  // namespace qelm::tool
