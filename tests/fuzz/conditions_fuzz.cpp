// Conditions, and what they select on unchecked meshes, beside plain definitions of the selectors.
#include "conditions/conditions.h"

#include <fmt/format.h>

#include <algorithm>
#include <bit>
#include <cmath>
#include <map>
#include <optional>
#include <set>

#include "conditions/prescribed.h"
#include "fuzz/input.h"
#include "fuzz/tool_checks.h"
#include "mesh/feature_edges.h"
#include "mesh/mesh_checks.h"
#include "mesh/used_part.h"
#include "text/error.h"

namespace {

using qelm::fuzz::require;
using qelm::tool::Condition;
using qelm::tool::Mesh;
using qelm::tool::Point;
using qelm::tool::SelectorTree;

bool sameValues(const Condition& a, const Condition& b) {
  return std::ranges::equal(a.values, b.values, [](const auto& one, const auto& other) {
    return one.isNumber() == other.isNumber() &&
           (one.isNumber() ? std::bit_cast<std::uint64_t>(one.number) ==
                                 std::bit_cast<std::uint64_t>(other.number)
                           : one.text == other.text);
  });
}

void requireGoodCondition(const Condition& condition) {
  require(!condition.values.empty(), "a value");
  for (const auto& value : condition.values)
    require(!value.isNumber() || std::isfinite(value.number), "finite values");
  require(condition.tag >= 1 && condition.tag <= 3, "tags from 1 to 3");
  const Condition again = qelm::tool::parseCondition(
      fmt::format("{}={}:{}", condition.text, describeValues(condition), condition.tag));
  require(again.text == condition.text && again.tag == condition.tag &&
              sameValues(again, condition) && again.selectors.kind == condition.selectors.kind &&
              again.selectors.selector.index() == condition.selectors.selector.index(),
          "what is written is read");
}

std::vector<Condition> parsed(std::string_view text) {
  std::vector<Condition> conditions;
  for (const std::string_view line : qelm::tool::splitAt(text, '\n')) {
    try {
      const Condition condition = qelm::tool::parseCondition(std::string(line));
      requireGoodCondition(condition);
      // No file is opened here: polyline_file_fuzz.cpp has the curves of files.
      if (filesOf(condition).empty()) conditions.push_back(condition);
    } catch (const qelm::tool::UsageError& error) {
      require(std::string_view(error.what()).starts_with("--fix "), "the option is named");
    }
  }
  return conditions;
}

// The long double of this platform holds the squares of all doubles.
long double distance(const Point& a, const Point& b) {
  long double sum = 0;
  for (std::size_t k = 0; k < 3; ++k) {
    const long double d = static_cast<long double>(a[k]) - b[k];
    sum += d * d;
  }
  return std::sqrt(sum);
}

void requireNearest(const Mesh& mesh, const Point& target, const std::set<int>& selected) {
  require(selected.size() == 1, "one vertex is nearest");
  const long double best = distance(mesh.point(*selected.begin()), target);
  const std::vector<bool> used = usedVertices(mesh);
  for (int v = 0; v < mesh.vertexCount(); ++v)
    require(!used[static_cast<std::size_t>(v)] ||
                !(distance(mesh.point(v), target) < best * (1 - 1e-13L)),
            "no vertex is nearer");
}

/// Vertices of edges that have exactly one triangle.
std::set<int> plainBoundary(const Mesh& mesh) {
  std::map<std::pair<int, int>, int> uses;
  for (int t = 0; t < mesh.triangleCount(); ++t)
    for (std::size_t k = 0; k < 3; ++k) {
      const int a = mesh.corners(t)[k];
      const int b = mesh.corners(t)[(k + 1) % 3];
      ++uses[std::minmax(a, b)];
    }
  std::set<int> vertices;
  for (const auto& [edge, count] : uses)
    if (count == 1) vertices.insert({edge.first, edge.second});
  return vertices;
}

/// A plain definition of each selector; none of selectors without a short one.
struct Plain {
  const Mesh& mesh;

  using Vertices = std::optional<std::set<int>>;

  template <class Holds>
  Vertices where(const Holds& holds) const {
    std::set<int> vertices;
    const std::vector<bool> used = usedVertices(mesh);
    for (int v = 0; v < mesh.vertexCount(); ++v)
      if (used[static_cast<std::size_t>(v)] && holds(v, mesh.point(v))) vertices.insert(v);
    return vertices;
  }

  Vertices operator()(const qelm::tool::VertexList& list) const {
    return where([&list](int v, const Point&) {
      return std::ranges::any_of(list.ranges,
                                 [v](const auto& r) { return r.first <= v && v <= r.last; });
    });
  }
  Vertices operator()(const qelm::tool::WholeBoundary&) const { return plainBoundary(mesh); }
  Vertices operator()(const qelm::tool::Box& box) const {
    return where([&box](int, const Point& p) {
      return box.low[0] <= p[0] && p[0] <= box.high[0] && box.low[1] <= p[1] &&
             p[1] <= box.high[1] && box.low[2] <= p[2] && p[2] <= box.high[2];
    });
  }
  Vertices operator()(const qelm::tool::FeatureAngle& feature) const {
    const std::vector<int> found = featureVertices(mesh, feature.degrees);
    return std::set<int>(found.begin(), found.end());
  }
  template <class Other>
  Vertices operator()(const Other&) const {
    return {};
  }

  Vertices of(const SelectorTree& tree) const {
    if (tree.kind == SelectorTree::Kind::leaf) return std::visit(*this, tree.selector);
    std::vector<Vertices> parts;
    for (const SelectorTree& part : tree.parts) parts.push_back(of(part));
    if (!std::ranges::all_of(parts, [](const Vertices& part) { return part.has_value(); }))
      return {};
    const auto isIn = [](int v) { return [v](const Vertices& part) { return part->contains(v); }; };
    return where([&](int v, const Point&) {
      if (tree.kind == SelectorTree::Kind::none) return !parts[0]->contains(v);
      return tree.kind == SelectorTree::Kind::all ? std::ranges::all_of(parts, isIn(v))
                                                  : std::ranges::any_of(parts, isIn(v));
    });
  }
};

void requireGoodSelection(const Mesh& mesh, const Condition& condition) {
  const qelm::tool::Prescribed prescribed = prescribe(mesh, {condition});
  std::set<int> selected;
  for (int v = 0; v < mesh.vertexCount(); ++v) {
    const auto i = static_cast<std::size_t>(v);
    require((prescribed.tags[i] != 0) == (prescribed.prescribedBy[i] == 2),
            "fixed where it selects");
    if (prescribed.tags[i] != 0) selected.insert(v);
  }
  for (const double value : prescribed.values) require(std::isfinite(value), "finite values");
  require(!selected.empty() && prescribed.fixedCount == prescribed.selected[0] &&
              static_cast<int>(selected.size()) == prescribed.fixedCount,
          "each vertex is counted once");
  const Plain plain{mesh};
  if (const auto expected = plain.of(condition.selectors))
    require(selected == *expected, "what the selectors mean, no more and no less");
  if (condition.selectors.kind != SelectorTree::Kind::leaf) return;
  const auto& selector = condition.selectors.selector;
  if (const auto* near = std::get_if<qelm::tool::NearestTo>(&selector))
    requireNearest(mesh, near->point, selected);
  if (std::holds_alternative<qelm::tool::LoopNumber>(selector) ||
      std::holds_alternative<qelm::tool::LoopNear>(selector))
    require(std::ranges::includes(plainBoundary(mesh), selected), "a loop lies on the boundary");
}

template <class Action>
void orRefuses(Action action) {
  try {
    action();
  } catch (const qelm::tool::InputError& error) {
    qelm::fuzz::requireMessage(error.what(), "");
  } catch (const qelm::tool::UsageError& error) {
    require(*error.what() != '\0', "a message says what is wrong");
  }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string_view bytes(reinterpret_cast<const char*>(data), size);
  const std::size_t cut = std::min(bytes.find('\0'), size);
  const std::vector<Condition> conditions = parsed(bytes.substr(0, cut));
  qelm::fuzz::Input input(data + cut, size - cut);
  input.take<std::uint8_t>();
  const qelm::fuzz::FuzzMesh arrays = takeMesh(input);
  Mesh mesh{arrays.vertices, arrays.triangles, {}};
  mesh.attributes.groups.push_back({"g", {0}});
  mesh.attributes.arrays.push_back({"t", {}});
  for (int v = 0; v < mesh.vertexCount(); ++v)
    mesh.attributes.arrays[0].values.push_back(mesh.point(v)[0]);
  for (const Condition& condition : conditions)
    orRefuses([&] { requireGoodSelection(mesh, condition); });
  orRefuses([&] {
    const qelm::tool::Prescribed all = prescribe(mesh, conditions);
    checkMesh(mesh);
    checkEveryPartIsFixed(mesh, all.tags);
  });
  return 0;
}
