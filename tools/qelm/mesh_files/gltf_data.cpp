#include "mesh_files/gltf_data.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdint>
#include <limits>
#include <map>
#include <numeric>
#include <set>
#include <span>
#include <utility>
#include <vector>

#include "encodings/numbers.h"
#include "mesh_files/gltf_file.h"
#include "mesh_files/point_merger.h"

namespace qelm::tool {
namespace {

using Json = GltfFile::Json;

// What a primitive's indices make (its "mode").
constexpr std::size_t kTriangles = 4;
constexpr std::size_t kStrip = 5;
constexpr std::size_t kFan = 6;

// A mesh may be shown often, but a small file does not become a million vertices.
constexpr std::size_t kFreeNumbers = 100'000;
constexpr std::size_t kNumbersPerByte = 20;

/// x -> linear x + offset, the matrix row by row.
struct Placement {
  std::array<double, 9> linear = {1, 0, 0, 0, 1, 0, 0, 0, 1};
  Point offset{};

  Point operator()(const Point& p) const {
    Point q{};
    for (std::size_t r = 0; r < 3; ++r)
      q[r] = linear[3 * r] * p[0] + linear[3 * r + 1] * p[1] + linear[3 * r + 2] * p[2] + offset[r];
    return q;
  }

  Placement after(const Placement& outer) const {
    Placement both;
    for (std::size_t r = 0; r < 3; ++r)
      for (std::size_t c = 0; c < 3; ++c)
        both.linear[3 * r + c] = outer.linear[3 * r] * linear[c] +
                                 outer.linear[3 * r + 1] * linear[3 + c] +
                                 outer.linear[3 * r + 2] * linear[6 + c];
    both.offset = outer(offset);
    return both;
  }

  bool isMirror() const {
    const auto& m = linear;
    return m[0] * (m[4] * m[8] - m[5] * m[7]) - m[1] * (m[3] * m[8] - m[5] * m[6]) +
               m[2] * (m[3] * m[7] - m[4] * m[6]) <
           0;
  }
};

/// A rotation by the quaternion (x, y, z, w), then what it is scaled by before.
Placement rotation(const std::vector<double>& q, const std::vector<double>& scale) {
  const double x = q[0];
  const double y = q[1];
  const double z = q[2];
  const double w = q[3];
  Placement placement;
  placement.linear = {1 - 2 * (y * y + z * z), 2 * (x * y - z * w),     2 * (x * z + y * w),
                      2 * (x * y + z * w),     1 - 2 * (x * x + z * z), 2 * (y * z - x * w),
                      2 * (x * z - y * w),     2 * (y * z + x * w),     1 - 2 * (x * x + y * y)};
  for (std::size_t k = 0; k < 9; ++k) placement.linear[k] *= scale[k % 3];
  return placement;
}

class GltfReader {
 public:
  GltfReader(std::string_view bytes, const std::string& name, const std::filesystem::path& folder)
      : file_(bytes, name, folder) {}

  PolygonSoup run() {
    noteOthers();
    const Json& nodes = file_.list("nodes");
    for (const std::size_t root : roots(nodes)) addTree(root);
    if (nodes.empty())
      for (std::size_t mesh = 0; mesh < file_.list("meshes").size(); ++mesh) addMesh(mesh, {});
    PolygonSoup soup;
    soup.mergedPoints = merger_.merged();
    soup.points = merger_.finish();
    soup.faces = std::move(faces_);
    soup.passedOver = std::move(passedOver_);
    for (VertexArray& array : arrays_)
      if (array.values.size() == soup.points.size())
        soup.attributes.arrays.push_back(std::move(array));
    return soup;
  }

 private:
  void noteOthers() {
    for (const auto& [list, what] :
         {std::pair{"materials", "materials"}, {"animations", "animations"}, {"skins", "skins"}})
      if (!file_.list(list).empty()) passedOver_.insert(what);
  }

  /// Those of the scene; without one those that are in no other node.
  std::vector<std::size_t> roots(const Json& nodes) const {
    std::vector<std::size_t> result;
    if (!file_.list("scenes").empty()) {
      const std::size_t scene = file_.wholeOr(file_.document(), "scene", 0, "the document");
      return children(file_.entry("scenes", scene), "nodes", fmt::format("scene {}", scene));
    }
    std::vector<bool> isInner(nodes.size(), false);
    for (std::size_t k = 0; k < nodes.size(); ++k)
      for (const std::size_t child :
           children(file_.entry("nodes", k), "children", fmt::format("node {}", k)))
        if (child < nodes.size()) isInner[child] = true;
    for (std::size_t k = 0; k < nodes.size(); ++k)
      if (!isInner[k]) result.push_back(k);
    return result;
  }

  std::vector<std::size_t> children(const Json& object, const char* key,
                                    const std::string& where) const {
    std::vector<std::size_t> result;
    const auto found = object.find(key);
    if (found == object.end() || !found->is_array()) return result;
    for (const Json& number : *found) {
      if (!number.is_number_unsigned())
        file_.fail(fmt::format("{}: '{}' must be numbers of nodes", where, key));
      result.push_back(number.get<std::size_t>());
    }
    return result;
  }

  /// A node and what hangs below it, without recursion: chains may be long.
  void addTree(std::size_t root) {
    std::vector<std::pair<std::size_t, Placement>> open = {{root, {}}};
    while (!open.empty()) {
      const auto [number, outer] = open.back();
      open.pop_back();
      const Json& node = file_.entry("nodes", number);
      const std::string where = fmt::format("node {}", number);
      seen_.resize(file_.list("nodes").size(), false);
      if (seen_[number]) file_.fail(where + " is below two others, or below itself");
      seen_[number] = true;
      const Placement placement = placementOf(node, where).after(outer);
      if (const auto mesh = file_.whole(node, "mesh", where)) addMesh(*mesh, placement);
      std::vector<std::size_t> inner = children(node, "children", where);
      for (auto child = inner.rbegin(); child != inner.rend(); ++child)
        open.emplace_back(*child, placement);
    }
  }

  Placement placementOf(const Json& node, const std::string& where) const {
    if (const auto m = file_.numbers(node, "matrix", 16, where)) {
      Placement placement;
      for (std::size_t r = 0; r < 3; ++r) {
        for (std::size_t c = 0; c < 3; ++c) placement.linear[3 * r + c] = (*m)[4 * c + r];
        placement.offset[r] = (*m)[12 + r];
      }
      return placement;
    }
    const auto turn = file_.numbers(node, "rotation", 4, where);
    const auto scale = file_.numbers(node, "scale", 3, where);
    const auto move = file_.numbers(node, "translation", 3, where);
    Placement placement = rotation(turn.value_or(std::vector<double>{0, 0, 0, 1}),
                                   scale.value_or(std::vector<double>{1, 1, 1}));
    if (move) placement.offset = {(*move)[0], (*move)[1], (*move)[2]};
    return placement;
  }

  void addMesh(std::size_t number, const Placement& placement) {
    const Json& mesh = file_.entry("meshes", number);
    const auto primitives = mesh.find("primitives");
    if (primitives == mesh.end() || !primitives->is_array()) return;
    // Primitives of a mesh often share their vertices.
    std::map<std::size_t, std::vector<int>> placed;
    for (std::size_t k = 0; k < primitives->size(); ++k)
      addPrimitive((*primitives)[k], placement, placed,
                   fmt::format("mesh {}, primitive {}", number, k));
  }

  void addPrimitive(const Json& primitive, const Placement& placement,
                    std::map<std::size_t, std::vector<int>>& placed, const std::string& where) {
    if (!primitive.is_object() || !primitive.contains("attributes"))
      file_.fail(where + ": no attributes");
    const std::size_t mode = file_.wholeOr(primitive, "mode", kTriangles, where);
    if (mode < kTriangles || mode > kFan) {
      passedOver_.insert("points and lines");
      return;
    }
    const Json& attributes = primitive["attributes"];
    const auto positions = file_.whole(attributes, "POSITION", where);
    if (!positions) return;
    const auto extensions = primitive.find("extensions");
    if (extensions != primitive.end() && extensions->contains("KHR_draco_mesh_compression") &&
        !file_.entry("accessors", *positions).contains("bufferView"))
      file_.fail(where + ": compressed by Draco; save it without compression");
    const auto [vertices, isNew] = placed.try_emplace(*positions);
    if (isNew) vertices->second = addVertices(*positions, attributes, placement, where);
    addFaces(primitive, mode, vertices->second, placement.isMirror(), where);
  }

  void spend(std::size_t numbers, const std::string& where) {
    spent_ += numbers;
    if (spent_ > kFreeNumbers + kNumbersPerByte * file_.size())
      file_.fail(where + ": shown too often; merge the copies into one mesh");
  }

  std::vector<int> addVertices(std::size_t accessor, const Json& attributes,
                               const Placement& placement, const std::string& where) {
    const std::size_t before = merger_.size();
    std::vector<int> numbers;
    std::vector<Point> places;
    file_.values(accessor, 3, [&](std::span<const double> xyz) {
      if (numbers.empty()) {
        spend(file_.count(accessor), where);
        merger_.expect(file_.count(accessor));
        numbers.reserve(file_.count(accessor));
      }
      places.clear();
      for (std::size_t k = 0; k < xyz.size(); k += 3)
        places.push_back(placement({xyz[k], xyz[k + 1], xyz[k + 2]}));
      merger_.addAll(places, numbers);
    });
    for (const auto& [key, value] : attributes.items())
      addArray(key, attributes, before, numbers, where);
    return numbers;
  }

  /// `before` vertices were there before those that have these numbers.
  void addArray(const std::string& key, const Json& attributes, std::size_t before,
                const std::vector<int>& numbers, const std::string& where) {
    if (key == "POSITION") return;
    passedOver_.insert(whatIs(key));
    const auto accessor = file_.whole(attributes, key.c_str(), where);
    if (!key.starts_with('_') || file_.components(*accessor) != 1) return;
    auto array = std::find_if(arrays_.begin(), arrays_.end(),
                              [&key](const VertexArray& known) { return known.name == key; });
    if (array == arrays_.end()) array = arrays_.insert(arrays_.end(), {key, {}});
    // One that a primitive before has not is left out at the end.
    if (array->values.size() != before) return;
    const std::vector<double> values = file_.values(*accessor, 1);
    for (std::size_t k = 0; k < numbers.size(); ++k) {
      const bool isNew = asIndex(numbers[k]) == array->values.size();
      if (!isNew) continue;
      if (k >= values.size()) file_.fail(fmt::format("{}: '{}' is too short", where, key));
      array->values.push_back(values[k]);
    }
  }

  static std::string whatIs(const std::string& key) {
    if (key == "NORMAL" || key == "TANGENT") return "normals";
    if (key.starts_with("TEXCOORD_")) return "texture coordinates";
    if (key.starts_with("COLOR_")) return "colours";
    if (key.starts_with("JOINTS_") || key.starts_with("WEIGHTS_")) return "skins";
    return fmt::format("the property '{}'", key);
  }

  /// A primitive's triangles between these vertices.
  void addFaces(const Json& primitive, std::size_t mode, const std::vector<int>& vertices,
                bool isMirror, const std::string& where) {
    const auto accessor = file_.whole(primitive, "indices", where);
    if (accessor && mode == kTriangles && !isMirror && addStored(*accessor, vertices, where))
      return;
    std::vector<std::uint32_t> corners;
    if (accessor) {
      file_.indices(*accessor, [&corners](std::span<const std::uint32_t> block) {
        corners.insert(corners.end(), block.begin(), block.end());
      });
    } else {
      corners.resize(vertices.size());
      std::iota(corners.begin(), corners.end(), 0U);
    }
    spend(corners.size(), where);
    addTriangles(corners, mode, vertices, isMirror, where);
  }

  /// Triangles in the order in which their corners are stored. Not one of them if a corner is out
  /// of range, or the last one not whole.
  bool addStored(std::size_t accessor, const std::vector<int>& vertices, const std::string& where) {
    Corners corners;
    std::array<int, kBlockOfNumbers> some;
    bool areThere = true;
    file_.indices(accessor, [&](std::span<const std::uint32_t> block) {
      if (corners.size() == 0) corners.expect(file_.count(accessor));
      for (; !block.empty() && areThere;
           block = block.subspan(std::min(block.size(), some.size()))) {
        const auto now = block.first(std::min(block.size(), some.size()));
        areThere = *std::max_element(now.begin(), now.end()) < vertices.size();
        if (!areThere) return;
        for (std::size_t k = 0; k < now.size(); ++k) some[k] = vertices[now[k]];
        corners.append(std::span(some).first(now.size()));
      }
    });
    if (!areThere || corners.size() % 3 != 0) return false;
    spend(corners.size(), where);
    const TriangleFacts facts = corners.facts();
    faces_.appendTriangles(corners.take(), facts);
    return true;
  }

  void addTriangles(const std::vector<std::uint32_t>& corners, std::size_t mode,
                    const std::vector<int>& vertices, bool isMirror, const std::string& where) {
    const std::size_t step = mode == kTriangles ? 3 : 1;
    if (mode == kTriangles && corners.size() % 3 != 0)
      file_.fail(fmt::format("{}: {} corners make no triangles", where, corners.size()));
    for (std::size_t k = 0; k + 3 <= corners.size(); k += step) {
      const bool isOdd = mode == kStrip && k % 2 == 1;
      const std::array<std::size_t, 3> places = {mode == kFan ? 0 : k, k + 1, k + 2};
      std::array<int, 3> triangle{};
      for (std::size_t c = 0; c < 3; ++c) {
        const std::uint32_t corner = corners[places[c]];
        if (corner >= vertices.size())
          file_.fail(fmt::format("{}: vertex index {} is out of range: it has {} vertices", where,
                                 corner, vertices.size()));
        triangle[c] = vertices[corner];
      }
      if (isOdd != isMirror) std::swap(triangle[1], triangle[2]);
      faces_.push_back(triangle);
    }
  }

  GltfFile file_;
  PointMerger merger_;
  Faces faces_;
  std::vector<VertexArray> arrays_;
  std::set<std::string> passedOver_;
  std::vector<bool> seen_;
  std::size_t spent_ = 0;
};

}  // namespace

PolygonSoup readGltf(std::string_view bytes, const std::string& name,
                     const std::filesystem::path& folder) {
  return GltfReader(bytes, name, folder).run();
}

}  // namespace qelm::tool
