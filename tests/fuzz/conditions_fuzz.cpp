// Conditions, and what they select on meshes that nobody has checked, beside plain
// definitions of the selectors.
#include "conditions/conditions.h"

#include <fmt/format.h>

#include <cmath>
#include <map>
#include <set>

#include "conditions/selection.h"
#include "fuzz/input.h"
#include "fuzz/tool_checks.h"
#include "mesh/mesh_checks.h"
#include "text/error.h"

namespace {

using qelm::fuzz::require;
using qelm::tool::Condition;
using qelm::tool::Mesh;
using qelm::tool::Point;

void requireGoodCondition(const Condition& condition) {
  require(!condition.values.empty(), "a value");
  for (const double value : condition.values) require(std::isfinite(value), "finite values");
  require(condition.tag >= 1 && condition.tag <= 3, "tags from 1 to 3");
  const Condition again = qelm::tool::parseCondition(
      fmt::format("{}={}:{}", condition.text, describeValues(condition), condition.tag));
  require(again.text == condition.text && again.tag == condition.tag &&
              qelm::fuzz::sameBits(again.values, condition.values) &&
              again.selector.index() == condition.selector.index(),
          "what is written is read");
}

std::vector<Condition> parsed(std::string_view text) {
  std::vector<Condition> conditions;
  for (const std::string_view line : qelm::tool::splitAt(text, '\n')) {
    try {
      conditions.push_back(qelm::tool::parseCondition(std::string(line)));
      requireGoodCondition(conditions.back());
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
  for (int v = 0; v < mesh.vertexCount(); ++v)
    require(!(distance(mesh.point(v), target) < best * (1 - 1e-13L)), "no vertex is nearer");
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

struct Judge {
  const Mesh& mesh;
  const std::set<int>& selected;

  void operator()(const qelm::tool::VertexList& list) const {
    require(selected == std::set<int>(list.vertices.begin(), list.vertices.end()), "the list");
  }
  void operator()(const qelm::tool::LoopNumber&) const {
    require(std::ranges::includes(plainBoundary(mesh), selected), "a loop lies on the boundary");
  }
  void operator()(const qelm::tool::WholeBoundary&) const {
    require(selected == plainBoundary(mesh), "the whole boundary");
  }
  void operator()(const qelm::tool::NearestTo& near) const {
    requireNearest(mesh, near.point, selected);
  }
  void operator()(const qelm::tool::Box& box) const {
    for (int v = 0; v < mesh.vertexCount(); ++v) {
      const Point p = mesh.point(v);
      const bool inside = box.low[0] <= p[0] && p[0] <= box.high[0] && box.low[1] <= p[1] &&
                          p[1] <= box.high[1] && box.low[2] <= p[2] && p[2] <= box.high[2];
      require(inside == selected.contains(v), "what lies in the box, no more and no less");
    }
  }
};

void requireGoodSelection(const Mesh& mesh, const Condition& condition) {
  const qelm::tool::Prescribed prescribed = prescribe(mesh, {condition});
  std::set<int> selected;
  for (int v = 0; v < mesh.vertexCount(); ++v) {
    const auto i = static_cast<std::size_t>(v);
    require((prescribed.tags[i] != 0) == (prescribed.heldBy[i] == 2), "fixed where it selects");
    if (prescribed.tags[i] != 0) selected.insert(v);
  }
  require(!selected.empty() && prescribed.fixedCount == prescribed.selected[0] &&
              static_cast<int>(selected.size()) == prescribed.fixedCount,
          "each vertex is counted once");
  std::visit(Judge{mesh, selected}, condition.selector);
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
  const Mesh mesh{arrays.vertices, arrays.triangles, {}};
  for (const Condition& condition : conditions)
    orRefuses([&] { requireGoodSelection(mesh, condition); });
  orRefuses([&] {
    const qelm::tool::Prescribed all = prescribe(mesh, conditions);
    checkMesh(mesh);
    checkEveryPartIsFixed(mesh, all.tags);
  });
  return 0;
}
