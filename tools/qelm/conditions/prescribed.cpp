#include "conditions/prescribed.h"

#include <fmt/format.h>

#include <algorithm>
#include <cmath>
#include <cstddef>

#include "conditions/mesh_index.h"
#include "mesh/mesh_checks.h"
#include "mesh/used_part.h"
#include "text/error.h"
#include "text/index.h"

namespace qelm::tool {
namespace {

/// The values of a condition in field k: the k-th value, or the only one.
class ValuesOf {
 public:
  ValuesOf(const Mesh& mesh, const Condition& condition, const Selected& selected, std::size_t k)
      : mesh_(mesh),
        condition_(condition),
        selected_(selected),
        value_(condition.values[condition.values.size() == 1 ? 0 : k]) {}

  double at(int vertex) const {
    const std::size_t v = asIndex(vertex);
    if (value_.isNumber()) return value_.number;
    if (value_.ofProperty) return checked(selected_.property->values[v], vertex);
    double arc = 0;
    if (value_.expression->usesArc()) {
      arc = selected_.arc[v];
      if (std::isnan(arc)) fail(vertex, "is on no loop: or curve:, so there is no s");
    }
    return checked((*value_.expression)(mesh_.point(vertex), arc), vertex);
  }

 private:
  double checked(double value, int vertex) const {
    if (!std::isfinite(value))
      fail(vertex, fmt::format("the value is {}, which is not finite", value));
    return value;
  }

  [[noreturn]] void fail(int vertex, const std::string& what) const {
    throw RequestError(fmt::format("--fix {}={}: {}: {}", condition_.text, value_.text,
                                   describeVertex(mesh_, vertex), what));
  }

  const Mesh& mesh_;
  const Condition& condition_;
  const Selected& selected_;
  const Value& value_;
};

/// Prescribes a file's value at a vertex, in all fields.
void prescribeFrom(Prescribed& prescribed, const FixedVertex& fixed) {
  const std::size_t n = prescribed.tags.size();
  const std::size_t i = asIndex(fixed.vertex);
  for (std::size_t k = 0; k < prescribed.fieldCount; ++k)
    prescribed.values[k * n + i] = fixed.value;
  prescribed.tags[i] = fixed.tag;
  prescribed.prescribedBy[i] = 1;
  ++prescribed.fixedCount;
}

/// Prescribes a file's values at the vertices that are in some triangle; a note counts the others.
void prescribeFrom(Prescribed& prescribed, std::span<const FixedVertex> fromFile,
                   const std::vector<bool>& used) {
  int onNothing = 0;
  for (const FixedVertex& fixed : fromFile) {
    if (used[asIndex(fixed.vertex)])
      prescribeFrom(prescribed, fixed);
    else
      ++onNothing;
  }
  if (onNothing > 0)
    prescribed.notes.push_back(
        fmt::format("the file holds values at {} vertices that are in no triangle; nothing depends "
                    "on them",
                    onNothing));
}

/// Prescribes a condition's values. Returns the vertices that had another value before, in any
/// field. `number` is the condition's, from 0.
std::vector<int> prescribeFrom(Prescribed& prescribed, const Mesh& mesh, const Selected& selected,
                               const Condition& condition, int number) {
  const std::size_t n = prescribed.tags.size();
  std::vector<char> differs(selected.vertices.size(), 0);
  for (std::size_t k = 0; k < prescribed.fieldCount; ++k) {
    const ValuesOf values(mesh, condition, selected, k);
    for (std::size_t i = 0; i < selected.vertices.size(); ++i) {
      double& value = prescribed.values[k * n + asIndex(selected.vertices[i])];
      const double now = values.at(selected.vertices[i]);
      if (value != now) differs[i] = 1;
      value = now;
    }
  }
  std::vector<int> changed;
  for (std::size_t i = 0; i < selected.vertices.size(); ++i) {
    const std::size_t v = asIndex(selected.vertices[i]);
    if (prescribed.tags[v] == 0)
      ++prescribed.fixedCount;
    else if (differs[i] != 0)
      changed.push_back(selected.vertices[i]);
    prescribed.tags[v] = condition.tag;
    prescribed.prescribedBy[v] = 2 + number;
  }
  return changed;
}

/// A condition that takes every vertex is rarely meant: it leaves nothing to solve for.
void noteWhole(int usedCount, const Condition& condition, std::size_t selected, std::size_t loops,
               std::vector<std::string>& notes) {
  if (selected != asIndex(usedCount)) return;
  std::string note = fmt::format(
      "--fix {} takes every vertex of the mesh: nothing is left to solve", condition.text);
  const bool isBoundary = condition.selectors.kind == SelectorTree::Kind::leaf &&
                          std::holds_alternative<WholeBoundary>(condition.selectors.selector);
  if (isBoundary && loops > 1)
    note += fmt::format("; it has {} boundary loops, as a mesh that is not welded", loops);
  notes.push_back(note);
}

/// Selects a condition's vertices and prescribes its values there; notes what may not be meant.
void apply(const Condition& condition, MeshIndex& index, const Mesh& mesh, int usedCount,
           Prescribed& prescribed) {
  const Selected selected = select(index, condition);
  const std::size_t count = selected.vertices.size();
  const int number = asInt(prescribed.selected.size());
  prescribed.selected.push_back(asInt(count));
  prescribed.nearest.push_back(selected.nearest);
  prescribed.details.push_back(selected.details);
  prescribed.notes.insert(prescribed.notes.end(), selected.notes.begin(), selected.notes.end());
  noteWhole(usedCount, condition, count, index.loopCount(), prescribed.notes);
  const std::vector<int> changed = prescribeFrom(prescribed, mesh, selected, condition, number);
  if (changed.empty()) return;
  prescribed.notes.push_back(
      fmt::format("{}={} holds instead of an earlier value at {} {}, the first is {}",
                  condition.text, describeValues(condition), changed.size(),
                  changed.size() == 1 ? "vertex" : "vertices", describeVertex(mesh, changed[0])));
}

}  // namespace

Prescribed prescribe(const Mesh& mesh, const std::vector<Condition>& conditions,
                     std::span<const FixedVertex> fromFile) {
  const std::size_t n = asIndex(mesh.vertexCount());
  Prescribed prescribed;
  prescribed.tags.assign(n, 0);
  prescribed.prescribedBy.assign(n, 0);
  prescribed.fieldCount = fieldCount(conditions);
  prescribed.values.assign(prescribed.fieldCount * n, 0.0);
  const std::vector<bool> used = usedVertices(mesh);
  const int usedCount = asInt(std::count(used.begin(), used.end(), true));
  prescribeFrom(prescribed, fromFile, used);
  MeshIndex index(mesh);
  for (const Condition& condition : conditions)
    apply(condition, index, mesh, usedCount, prescribed);
  const bool isWhole = prescribed.fixedCount == usedCount;
  const bool isOneCondition = std::any_of(prescribed.selected.begin(), prescribed.selected.end(),
                                          [usedCount](int count) { return count == usedCount; });
  if (isWhole && !isOneCondition)
    prescribed.notes.push_back("every vertex of the mesh is fixed: nothing is left to solve");
  return prescribed;
}

}  // namespace qelm::tool
