#include "conditions/selection.h"

#include <fmt/format.h>

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <limits>
#include <optional>

#include "mesh/boundary.h"
#include "mesh/mesh_checks.h"
#include "mesh/used_part.h"
#include "mesh/vec3.h"
#include "text/error.h"
#include "text/text.h"

namespace qelm::tool {
namespace {

/// As length(a - b), bit for bit, wherever that neither overflows nor underflows: a power of
/// two is taken out of the differences before they are squared.
long double distance(const Point& a, const Point& b) {
  int exponent = 0;
  Point d = a - b;
  double largest = std::max({std::abs(d[0]), std::abs(d[1]), std::abs(d[2])});
  if (std::isinf(largest)) {
    for (std::size_t k = 0; k < 3; ++k) d[k] = a[k] / 2 - b[k] / 2;
    largest = std::max({std::abs(d[0]), std::abs(d[1]), std::abs(d[2])});
    exponent = 1;
  }
  if (!(largest > 0) || std::isinf(largest)) return length(d);
  const int shift = std::ilogb(largest);
  for (double& part : d) part = std::scalbn(part, -shift);
  return std::scalbn(static_cast<long double>(length(d)), shift + exponent);
}

Box boxOf(const Mesh& mesh) {
  Box box{mesh.point(0), mesh.point(0)};
  for (int v = 1; v < mesh.vertexCount(); ++v)
    for (std::size_t k = 0; k < 3; ++k) {
      box.low[k] = std::min(box.low[k], mesh.point(v)[k]);
      box.high[k] = std::max(box.high[k], mesh.point(v)[k]);
    }
  return box;
}

class Selection {
 public:
  Selection(const Mesh& mesh, const Condition& condition,
            std::optional<std::vector<BoundaryLoop>>& loops)
      : mesh_(mesh), used_(usedVertices(mesh)), condition_(condition), loops_(loops) {}

  std::vector<int> run() {
    std::vector<int> vertices =
        std::visit([this](const auto& selector) { return select(selector); }, condition_.selector);
    std::sort(vertices.begin(), vertices.end());
    vertices.erase(std::unique(vertices.begin(), vertices.end()), vertices.end());
    return vertices;
  }

 private:
  [[noreturn]] void fail(const std::string& what) const {
    throw RequestError(fmt::format("--fix {}: {}", condition_.text, what));
  }

  std::vector<int> select(const VertexList& list) const {
    std::vector<int> vertices;
    for (const long long v : list.vertices) {
      if (v >= mesh_.vertexCount())
        fail(fmt::format("there is no vertex {}; the mesh has {} vertices, numbered 0 to {}", v,
                         mesh_.vertexCount(), mesh_.vertexCount() - 1));
      if (!used_[static_cast<std::size_t>(v)])
        fail(fmt::format("vertex {} is in no triangle, so nothing depends on its value", v));
      vertices.push_back(static_cast<int>(v));
    }
    return vertices;
  }

  std::vector<int> select(const LoopNumber& loop) const {
    if (!loops_) loops_ = boundaryLoops(mesh_);
    if (loops_->empty()) fail("the mesh is closed: it has no boundary loop");
    const auto number = static_cast<unsigned long long>(loop.number);
    if (number >= loops_->size())
      fail(fmt::format("there is no loop {}; {}", loop.number, describeLoops()));
    return (*loops_)[static_cast<std::size_t>(number)].vertices;
  }

  std::string describeLoops() const {
    constexpr std::size_t kShown = 8;
    std::string text = fmt::format("the mesh has {} boundary loop{}", loops_->size(),
                                   loops_->size() == 1 ? "" : "s");
    for (std::size_t k = 0; k < std::min(loops_->size(), kShown); ++k)
      text +=
          fmt::format("{} loop:{} ({} long)", k == 0 ? ":" : ",", k, digits((*loops_)[k].length));
    return loops_->size() > kShown ? text + ", ..." : text;
  }

  std::vector<int> select(const WholeBoundary&) const {
    if (!loops_) loops_ = boundaryLoops(mesh_);
    if (loops_->empty()) fail("the mesh is closed: it has no boundary");
    std::vector<int> vertices;
    for (const BoundaryLoop& loop : *loops_)
      vertices.insert(vertices.end(), loop.vertices.begin(), loop.vertices.end());
    return vertices;
  }

  // Of equally near vertices the one with the lowest number.
  std::vector<int> select(const NearestTo& target) const {
    int nearest = 0;
    long double least = std::numeric_limits<long double>::infinity();
    for (int v = 0; v < mesh_.vertexCount(); ++v) {
      if (!used_[static_cast<std::size_t>(v)]) continue;
      const long double here = distance(mesh_.point(v), target.point);
      if (here < least) {
        nearest = v;
        least = here;
      }
    }
    return {nearest};
  }

  std::vector<int> select(const Box& box) const {
    std::vector<int> vertices;
    for (int v = 0; v < mesh_.vertexCount(); ++v) {
      const Point p = mesh_.point(v);
      bool inside = used_[static_cast<std::size_t>(v)];
      for (std::size_t k = 0; k < 3; ++k)
        inside = inside && box.low[k] <= p[k] && p[k] <= box.high[k];
      if (inside) vertices.push_back(v);
    }
    if (vertices.empty()) fail("no vertex lies in this box; " + describeExtent());
    return vertices;
  }

  std::string describeExtent() const {
    const Box box = boxOf(mesh_);
    return fmt::format("the mesh spans {},{},{} to {},{},{}", box.low[0], box.low[1], box.low[2],
                       box.high[0], box.high[1], box.high[2]);
  }

  const Mesh& mesh_;
  std::vector<bool> used_;  ///< others cannot be selected
  const Condition& condition_;
  std::optional<std::vector<BoundaryLoop>>& loops_;
};

/// The value of a condition in field k: one given for all, or the k-th.
double valueOf(const Condition& condition, std::size_t k) {
  return condition.values.size() == 1 ? condition.values[0] : condition.values[k];
}

/// What a file holds at a vertex, for all fields.
void fix(Prescribed& prescribed, const FixedVertex& fixed) {
  const std::size_t n = prescribed.tags.size();
  const auto i = static_cast<std::size_t>(fixed.vertex);
  for (std::size_t k = 0; k < prescribed.fieldCount; ++k)
    prescribed.values[k * n + i] = fixed.value;
  prescribed.tags[i] = fixed.tag;
  prescribed.heldBy[i] = 1;
  ++prescribed.fixedCount;
}

/// Fixes the vertices and returns those that had another value before, in any field. `number` is
/// the condition's, from 0.
std::vector<int> fix(Prescribed& prescribed, const std::vector<int>& vertices,
                     const Condition& condition, int number) {
  const std::size_t n = prescribed.tags.size();
  std::vector<int> changed;
  for (const int v : vertices) {
    const auto i = static_cast<std::size_t>(v);
    bool differs = false;
    for (std::size_t k = 0; k < prescribed.fieldCount; ++k) {
      double& value = prescribed.values[k * n + i];
      differs = differs || value != valueOf(condition, k);
      value = valueOf(condition, k);
    }
    if (prescribed.tags[i] == 0)
      ++prescribed.fixedCount;
    else if (differs)
      changed.push_back(v);
    prescribed.tags[i] = condition.tag;
    prescribed.heldBy[i] = 2 + number;
  }
  return changed;
}

/// The vertex that near: took, with a note where the point is far from the whole mesh.
Nearest nearestOf(const Mesh& mesh, const Condition& condition, int vertex,
                  std::vector<std::string>& notes) {
  const Point& target = std::get<NearestTo>(condition.selector).point;
  const Box box = boxOf(mesh);
  Point inside;
  for (std::size_t k = 0; k < 3; ++k) inside[k] = std::clamp(target[k], box.low[k], box.high[k]);
  const long double outside = distance(target, inside);
  const long double diagonal = distance(box.low, box.high);
  if (outside > diagonal)
    notes.push_back(fmt::format(
        "--fix {}: the point lies {:.6g} outside of the mesh's box, whose diagonal is {:.6g}; is "
        "it in another unit, or from another mesh?",
        condition.text, static_cast<double>(outside), static_cast<double>(diagonal)));
  return {vertex, static_cast<double>(distance(target, mesh.point(vertex)))};
}

/// A condition that leaves nothing to solve for is rarely meant.
void noteWhole(int usedCount, const Condition& condition, std::size_t selected, std::size_t loops,
               std::vector<std::string>& notes) {
  if (selected != static_cast<std::size_t>(usedCount)) return;
  std::string note = fmt::format(
      "--fix {} takes every vertex of the mesh: nothing is left to solve", condition.text);
  if (std::holds_alternative<WholeBoundary>(condition.selector) && loops > 1)
    note += fmt::format("; it has {} boundary loops, as a mesh that is not welded", loops);
  notes.push_back(note);
}

}  // namespace

Prescribed prescribe(const Mesh& mesh, const std::vector<Condition>& conditions,
                     std::span<const FixedVertex> fromFile) {
  const auto n = static_cast<std::size_t>(mesh.vertexCount());
  Prescribed prescribed;
  prescribed.tags.assign(n, 0);
  prescribed.heldBy.assign(n, 0);
  prescribed.fieldCount = fieldCount(conditions);
  prescribed.values.assign(prescribed.fieldCount * n, 0.0);
  const std::vector<bool> used = usedVertices(mesh);
  const auto usedCount = static_cast<int>(std::count(used.begin(), used.end(), true));
  int onNothing = 0;
  for (const FixedVertex& fixed : fromFile) {
    if (used[static_cast<std::size_t>(fixed.vertex)])
      fix(prescribed, fixed);
    else
      ++onNothing;
  }
  if (onNothing > 0)
    prescribed.notes.push_back(
        fmt::format("the file holds values at {} vertices that are in no triangle; nothing depends "
                    "on them",
                    onNothing));
  std::optional<std::vector<BoundaryLoop>> loops;
  for (const Condition& condition : conditions) {
    const std::vector<int> vertices = Selection(mesh, condition, loops).run();
    const auto number = static_cast<int>(prescribed.selected.size());
    prescribed.selected.push_back(static_cast<int>(vertices.size()));
    prescribed.nearest.emplace_back();
    if (std::holds_alternative<NearestTo>(condition.selector))
      prescribed.nearest.back() = nearestOf(mesh, condition, vertices[0], prescribed.notes);
    noteWhole(usedCount, condition, vertices.size(), loops ? loops->size() : 0, prescribed.notes);
    const std::vector<int> changed = fix(prescribed, vertices, condition, number);
    if (!changed.empty())
      prescribed.notes.push_back(fmt::format(
          "{}={} holds instead of an earlier value at {} {}, the first is {}", condition.text,
          describeValues(condition), changed.size(), changed.size() == 1 ? "vertex" : "vertices",
          describeVertex(mesh, changed[0])));
  }
  const bool isWhole = prescribed.fixedCount == usedCount;
  const bool isOneCondition = std::any_of(prescribed.selected.begin(), prescribed.selected.end(),
                                          [usedCount](int count) { return count == usedCount; });
  if (isWhole && !isOneCondition)
    prescribed.notes.push_back("every vertex of the mesh is fixed: nothing is left to solve");
  return prescribed;
}

}  // namespace qelm::tool
