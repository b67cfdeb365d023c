#include "conditions/selected.h"

#include <fmt/format.h>
#include <fmt/ranges.h>

#include <algorithm>
#include <cmath>
#include <iterator>
#include <limits>

#include "conditions/along_curve.h"
#include "conditions/polyline_file.h"
#include "mesh/feature_edges.h"
#include "mesh/mesh_checks.h"
#include "mesh/used_part.h"
#include "mesh/vec3.h"
#include "text/error.h"
#include "text/index.h"
#include "text/text.h"

namespace qelm::tool {
namespace {

constexpr std::size_t kShownNames = 8;

template <class Named>
std::string namesOf(const std::vector<Named>& list) {
  std::vector<std::string> names;
  for (std::size_t k = 0; k < std::min(list.size(), kShownNames); ++k)
    names.push_back(list[k].name);
  return fmt::format("{}{}", fmt::join(names, ", "), list.size() > kShownNames ? ", ..." : "");
}

class ConditionSelector {
 public:
  ConditionSelector(MeshIndex& index, const Condition& condition)
      : index_(index), mesh_(index.mesh()), condition_(condition) {
    for (const Value& value : condition.values) takesProperty_ |= value.ofProperty;
  }

  Selected run() {
    result_.vertices = select(condition_.selectors);
    if (result_.vertices.empty()) {
      if (result_.notes.size() == 1) fail(result_.notes[0]);
      fail("the selectors together select no vertex");
    }
    for (std::string& note : result_.notes)
      note = fmt::format("--fix {}: {}", condition_.text, note);
    return std::move(result_);
  }

 private:
  [[noreturn]] void fail(const std::string& what) const {
    throw RequestError(fmt::format("--fix {}: {}", condition_.text, what));
  }

  std::vector<int> select(const SelectorTree& tree) {
    if (tree.kind == SelectorTree::Kind::leaf) {
      std::vector<int> vertices =
          std::visit([this](const auto& selector) { return select(selector); }, tree.selector);
      std::sort(vertices.begin(), vertices.end());
      vertices.erase(std::unique(vertices.begin(), vertices.end()), vertices.end());
      std::erase_if(vertices, [this](int v) { return !isUsed(v); });
      return vertices;
    }
    std::vector<int> vertices = select(tree.parts[0]);
    if (tree.kind == SelectorTree::Kind::none) return others(vertices);
    for (std::size_t k = 1; k < tree.parts.size(); ++k) {
      const std::vector<int> more = select(tree.parts[k]);
      std::vector<int> both;
      const auto out = std::back_inserter(both);
      if (tree.kind == SelectorTree::Kind::all)
        std::set_intersection(vertices.begin(), vertices.end(), more.begin(), more.end(), out);
      else
        std::set_union(vertices.begin(), vertices.end(), more.begin(), more.end(), out);
      vertices = std::move(both);
    }
    return vertices;
  }

  bool isUsed(int vertex) const { return index_.used()[asIndex(vertex)]; }

  std::vector<int> others(const std::vector<int>& vertices) const {
    std::vector<int> rest;
    auto next = vertices.begin();
    for (int v = 0; v < mesh_.vertexCount(); ++v) {
      if (next != vertices.end() && *next == v)
        ++next;
      else if (isUsed(v))
        rest.push_back(v);
    }
    return rest;
  }

  std::vector<int> select(const VertexList& list) const {
    std::vector<int> vertices;
    for (const VertexRange& range : list.ranges) {
      if (range.last >= mesh_.vertexCount())
        fail(fmt::format("there is no vertex {}; the mesh has {} vertices, numbered 0 to {}",
                         range.last, mesh_.vertexCount(), mesh_.vertexCount() - 1));
      if (range.first == range.last && !isUsed(asInt(range.first)))
        fail(fmt::format("vertex {} is in no triangle, so nothing depends on its value",
                         range.first));
      for (long long v = range.first; v <= range.last; ++v) vertices.push_back(asInt(v));
    }
    return vertices;
  }

  std::vector<int> select(const LoopNumber& loop) {
    const auto& loops = index_.loops();
    if (loops.empty()) fail("the mesh is closed: it has no boundary loop");
    const std::size_t number = asIndex(loop.number);
    if (number >= loops.size()) fail(fmt::format("there is no loop {}; {}", number, loopList()));
    return loopVertices(loops[number]);
  }

  std::vector<int> select(const LoopNear& loop) {
    const auto& loops = index_.loops();
    if (loops.empty()) fail("the mesh is closed: it has no boundary loop");
    std::size_t best = 0;
    long double least = std::numeric_limits<long double>::infinity();
    for (std::size_t k = 0; k < loops.size(); ++k)
      for (const int v : loops[k].vertices) {
        const long double here = distance(mesh_.point(v), loop.point);
        if (here < least) {
          best = k;
          least = here;
        }
      }
    result_.details.push_back(
        fmt::format("loop:{}, {:.6g} away", best, static_cast<double>(least)));
    return loopVertices(loops[best]);
  }

  std::string loopList() {
    const auto& loops = index_.loops();
    std::string text =
        fmt::format("the mesh has {} boundary loop{}", loops.size(), loops.size() == 1 ? "" : "s");
    for (std::size_t k = 0; k < std::min(loops.size(), kShownNames); ++k)
      text += fmt::format("{} loop:{} ({} long)", k == 0 ? ":" : ",", k, digits(loops[k].length));
    return loops.size() > kShownNames ? text + ", ..." : text;
  }

  /// Notes each vertex's way along the loop, from the lowest vertex on or, of an open loop, from
  /// its beginning.
  std::vector<int> loopVertices(const BoundaryLoop& loop) {
    const std::vector<int>& v = loop.vertices;
    const std::size_t n = v.size();
    const std::size_t lowest = asIndex(std::min_element(v.begin(), v.end()) - v.begin());
    const std::size_t first = loop.closed ? lowest : 0;
    double passed = 0;
    for (std::size_t k = 0; k < n; ++k) {
      const int here = v[(first + k) % n];
      setArc(here, loop.length > 0 ? std::min(passed / loop.length, 1.0) : 0);
      passed += length(mesh_.point(v[(first + k + 1) % n]) - mesh_.point(here));
    }
    return v;
  }

  void setArc(int vertex, double arc) {
    if (result_.arc.empty()) result_.arc.assign(asIndex(mesh_.vertexCount()), std::nan(""));
    double& known = result_.arc[asIndex(vertex)];
    if (std::isnan(known)) known = arc;
  }

  std::vector<int> select(const WholeBoundary&) {
    if (index_.loops().empty()) fail("the mesh is closed: it has no boundary");
    std::vector<int> vertices;
    for (const BoundaryLoop& loop : index_.loops())
      vertices.insert(vertices.end(), loop.vertices.begin(), loop.vertices.end());
    return vertices;
  }

  std::vector<int> select(const NearestTo& target) {
    const int vertex = index_.nearestVertex(target.point);
    const auto away = static_cast<double>(distance(target.point, mesh_.point(vertex)));
    if (condition_.selectors.kind == SelectorTree::Kind::leaf)
      result_.nearest = Nearest{vertex, away};
    else
      result_.details.push_back(
          fmt::format("{}, {:.6g} away", describeVertex(mesh_, vertex), away));
    noteFar(target.point);
    return {vertex};
  }

  void noteFar(const Point& target) {
    const Box& box = index_.box();
    Point inside;
    for (std::size_t k = 0; k < 3; ++k) inside[k] = std::clamp(target[k], box.low[k], box.high[k]);
    const long double outside = distance(target, inside);
    const long double diagonal = distance(box.low, box.high);
    if (outside > diagonal)
      result_.notes.push_back(fmt::format(
          "the point lies {:.6g} outside of the mesh's box, whose diagonal is {:.6g}; is it in "
          "another unit, or from another mesh?",
          static_cast<double>(outside), static_cast<double>(diagonal)));
  }

  /// All used vertices whose point fulfils `holds`; a note if there are none.
  template <class Holds>
  std::vector<int> where(const Holds& holds, const char* nothing) {
    std::vector<int> vertices;
    for (int v = 0; v < mesh_.vertexCount(); ++v)
      if (isUsed(v) && holds(mesh_.point(v))) vertices.push_back(v);
    if (vertices.empty()) {
      const Box& box = index_.box();
      result_.notes.push_back(fmt::format("{}; the mesh spans {},{},{} to {},{},{}", nothing,
                                          box.low[0], box.low[1], box.low[2], box.high[0],
                                          box.high[1], box.high[2]));
    }
    return vertices;
  }

  std::vector<int> select(const Box& box) {
    const auto holds = [&box](const Point& p) {
      bool inside = true;
      for (std::size_t k = 0; k < 3; ++k)
        inside = inside && box.low[k] <= p[k] && p[k] <= box.high[k];
      return inside;
    };
    return where(holds, "no vertex lies in this box");
  }

  std::vector<int> select(const Sphere& sphere) {
    const auto holds = [&](const Point& p) { return distance(p, sphere.centre) <= sphere.radius; };
    return where(holds, "no vertex lies in this sphere");
  }

  std::vector<int> select(const BoxSide& side) {
    const double tolerance = index_.tolerance();
    const double end = (side.high ? index_.box().high : index_.box().low)[side.axis];
    result_.details.push_back(
        fmt::format("{} = {} within {:.3g}", "xyz"[side.axis], end, tolerance));
    const auto holds = [&](const Point& p) { return std::abs(p[side.axis] - end) <= tolerance; };
    return where(holds, "no vertex lies at this end");
  }

  std::vector<int> select(const Plane& plane) {
    const double tolerance = plane.tolerance.value_or(index_.tolerance());
    if (!plane.tolerance) result_.details.push_back(fmt::format("within {:.3g}", tolerance));
    const double largest =
        std::max({std::abs(plane.normal[0]), std::abs(plane.normal[1]), std::abs(plane.normal[2])});
    Point unit;
    for (std::size_t k = 0; k < 3; ++k) unit[k] = plane.normal[k] / largest;
    const double size = length(unit);
    for (double& part : unit) part /= size;
    const auto holds = [&](const Point& p) {
      const double height = dot(p - plane.point, unit);
      if (plane.side == Plane::Side::above) return height >= -tolerance;
      if (plane.side == Plane::Side::below) return height <= tolerance;
      return std::abs(height) <= tolerance;
    };
    return where(holds, plane.side == Plane::Side::on      ? "no vertex lies on this plane"
                        : plane.side == Plane::Side::above ? "no vertex lies above this plane"
                                                           : "no vertex lies below this plane");
  }

  std::vector<int> select(const PartNumber& part) {
    if (part.number >= index_.partCount())
      fail(fmt::format("there is no part {}; the mesh has {}, numbered 0 to {}", part.number,
                       index_.partCount(), index_.partCount() - 1));
    return partVertices(asInt(part.number));
  }

  std::vector<int> select(const PartNear& part) {
    int nearest = -1;
    long double least = std::numeric_limits<long double>::infinity();
    for (int v = 0; v < mesh_.vertexCount(); ++v) {
      if (index_.parts()[asIndex(v)] < 0) continue;
      const long double here = distance(mesh_.point(v), part.point);
      if (nearest < 0 || here < least) {
        nearest = v;
        least = here;
      }
    }
    if (nearest < 0) fail("the mesh has no triangle, so no part");
    const int number = index_.parts()[asIndex(nearest)];
    result_.details.push_back(
        fmt::format("part:{}, {:.6g} away", number, static_cast<double>(least)));
    return partVertices(number);
  }

  std::vector<int> partVertices(int number) {
    std::vector<int> vertices;
    for (int v = 0; v < mesh_.vertexCount(); ++v)
      if (index_.parts()[asIndex(v)] == number) vertices.push_back(v);
    return vertices;
  }

  std::vector<int> select(const GroupName& group) {
    return named(mesh_.attributes.groups, group.name, "group").vertices;
  }
  std::vector<int> select(const MaterialName& material) {
    return named(mesh_.attributes.materials, material.name, "material").vertices;
  }

  std::vector<int> select(const PropertyName& property) {
    const VertexArray& array = named(mesh_.attributes.arrays, property.name, "property");
    result_.property = &array;
    std::vector<int> vertices;
    for (int v = 0; v < mesh_.vertexCount(); ++v) {
      const double value = array.values[asIndex(v)];
      if (!std::isnan(value) && (takesProperty_ || value != 0)) vertices.push_back(v);
    }
    if (vertices.empty())
      result_.notes.push_back(fmt::format("the property {} is {} at every vertex", array.name,
                                          takesProperty_ ? "not a number" : "0"));
    return vertices;
  }

  template <class Named>
  const Named& named(const std::vector<Named>& list, const std::string& name,
                     const char* what) const {
    for (const Named& one : list)
      if (one.name == name) return one;
    if (list.empty()) fail(fmt::format("the file has no {} of this or another name", what));
    fail(fmt::format("there is no {} '{}'; the file has {}", what, name, namesOf(list)));
  }

  std::vector<int> select(const FeatureAngle& feature) {
    std::vector<int> vertices = featureVertices(mesh_, feature.degrees);
    if (vertices.empty())
      result_.notes.push_back(fmt::format("no edge is sharper than {} degrees", feature.degrees));
    return vertices;
  }

  std::vector<int> select(const AlongCurve& curve) {
    checkFinite(mesh_);
    std::vector<int> vertices;
    double farthest = 0;
    const UsedPart part = usedPart(mesh_);
    for (const VertexOnCurve& found : verticesAlong(part.mesh, readPolylines(curve.file))) {
      const int vertex = part.vertices[asIndex(found.vertex)];
      vertices.push_back(vertex);
      setArc(vertex, found.arc);
      farthest = std::max(farthest, found.distance);
    }
    result_.details.push_back(fmt::format("at most {:.6g} away", farthest));
    return vertices;
  }

  MeshIndex& index_;
  const Mesh& mesh_;
  const Condition& condition_;
  bool takesProperty_ = false;
  Selected result_;
};

}  // namespace

Selected select(MeshIndex& index, const Condition& condition) {
  return ConditionSelector(index, condition).run();
}

}  // namespace qelm::tool
