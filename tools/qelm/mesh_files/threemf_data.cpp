#include "mesh_files/threemf_data.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <map>
#include <optional>
#include <utility>
#include <vector>

#include "encodings/xml_scanner.h"
#include "encodings/zip_archive.h"
#include "text/error.h"
#include "text/index.h"
#include "text/text.h"

namespace qelm::tool {
namespace {

using Event = XmlScanner::Event;

constexpr std::string_view kMainModel = "3d/3dmodel.model";

// Objects may be used often, but a small file does not become a million vertices.
constexpr std::size_t kFreeElements = 100'000;
constexpr std::size_t kElementsPerByte = 20;
constexpr std::size_t kMostComponents = 100;

/// (x y z 1) times a matrix of four rows and three columns.
struct Transform {
  std::array<double, 12> m = {1, 0, 0, 0, 1, 0, 0, 0, 1, 0, 0, 0};

  Point operator()(const Point& p) const {
    Point q{};
    for (std::size_t c = 0; c < 3; ++c)
      q[c] = p[0] * m[c] + p[1] * m[3 + c] + p[2] * m[6 + c] + m[9 + c];
    return q;
  }

  Transform then(const Transform& outer) const {
    Transform both;
    for (std::size_t r = 0; r < 3; ++r)
      for (std::size_t c = 0; c < 3; ++c)
        both.m[3 * r + c] =
            m[3 * r] * outer.m[c] + m[3 * r + 1] * outer.m[3 + c] + m[3 * r + 2] * outer.m[6 + c];
    const Point offset = outer({m[9], m[10], m[11]});
    std::copy(offset.begin(), offset.end(), both.m.begin() + 9);
    return both;
  }

  bool isMirror() const {
    return m[0] * (m[4] * m[8] - m[5] * m[7]) - m[1] * (m[3] * m[8] - m[5] * m[6]) +
               m[2] * (m[3] * m[7] - m[4] * m[6]) <
           0;
  }
};

/// The use of an object, within another one or in the build.
struct Use {
  std::string path;  ///< of the model that has it
  std::string object;
  Transform transform;
};

struct Object {
  std::vector<Point> points;
  std::vector<std::array<int, 3>> triangles;
  std::vector<Use> components;
};

class ModelReader {
 public:
  ModelReader(std::string_view text, const std::string& name, const std::string& path)
      : scanner_(text, name), path_(path) {}

  /// Adds what the model has to `objects`, by path and number; returns its build.
  std::vector<Use> run(std::map<std::pair<std::string, std::string>, Object>& objects) {
    for (Event event = scanner_.next(); event != Event::kDone; event = scanner_.next()) {
      const std::string_view element = scanner_.element();
      if (event == Event::kEnd) {
        if (element == "object") current_ = nullptr;
      } else if (element == "vertex" && current_ != nullptr) {
        vertex();
      } else if (element == "triangle" && current_ != nullptr) {
        triangle();
      } else if (element == "object") {
        const std::string id = scanner_.attribute("id").value_or("");
        const auto [place, isNew] = objects.try_emplace({path_, id});
        if (!isNew) scanner_.fail(fmt::format("there are two objects '{}'", id));
        current_ = &place->second;
      } else if (element == "component") {
        if (current_ == nullptr) scanner_.fail("a component outside of an object");
        current_->components.push_back(use());
      } else if (element == "item") {
        build_.push_back(use());
      }
    }
    return std::move(build_);
  }

 private:
  void vertex() {
    Point point{};
    constexpr std::array<std::string_view, 3> kAxes = {"x", "y", "z"};
    for (std::size_t k = 0; k < 3; ++k) {
      const auto text = scanner_.plainAttribute(kAxes[k]);
      const auto value = text ? parseDouble(trimmed(*text)) : std::nullopt;
      if (!value)
        scanner_.fail(fmt::format("a vertex with {}=\"{}\"", kAxes[k], text.value_or("nothing")));
      point[k] = *value;
    }
    current_->points.push_back(point);
  }

  void triangle() {
    std::array<int, 3> corners{};
    constexpr std::array<std::string_view, 3> kCorners = {"v1", "v2", "v3"};
    Object& object = *current_;
    for (std::size_t k = 0; k < 3; ++k) {
      const auto text = scanner_.plainAttribute(kCorners[k]);
      const auto value = text ? parseInteger(trimmed(*text)) : std::nullopt;
      if (!value || *value < 0 || asIndex(*value) >= object.points.size())
        scanner_.fail(
            fmt::format("a triangle with {}=\"{}\"; its object has {} vertices, "
                        "numbered from 0",
                        kCorners[k], text.value_or("nothing"), object.points.size()));
      corners[k] = static_cast<int>(*value);
    }
    object.triangles.push_back(corners);
  }

  Use use() const {
    Use use{path_, scanner_.attribute("objectid").value_or(""), {}};
    // The production extension's, under any prefix.
    for (const char* key : {"p:path", "path"})
      if (const auto path = scanner_.attribute(key)) use.path = lowerCase(withoutSlash(*path));
    if (const auto text = scanner_.plainAttribute("transform")) {
      const std::vector<std::string_view> words = splitAtBlanks(*text);
      for (std::size_t k = 0; k < words.size() && k < use.transform.m.size(); ++k) {
        const auto value = parseDouble(words[k]);
        if (!value) scanner_.fail(fmt::format("'{}' is not a number of a transform", words[k]));
        use.transform.m[k] = *value;
      }
      if (words.size() != use.transform.m.size())
        scanner_.fail(fmt::format("a transform of {} numbers instead of 12", words.size()));
    }
    return use;
  }

  static std::string_view withoutSlash(std::string_view path) {
    return path.substr(path.starts_with('/') ? 1 : 0);
  }

  XmlScanner scanner_;
  const std::string& path_;
  Object* current_ = nullptr;
  std::vector<Use> build_;
};

class ThreemfReader {
 public:
  ThreemfReader(std::string_view bytes, const std::string& name)
      : archive_(bytes, name), name_(name) {}

  PolygonSoup run() {
    std::string path(kMainModel);
    if (!archive_.file(path)) path = archive_.firstNameEnding(".model").value_or("");
    if (path.empty()) fail("not a 3MF file: there is no model in it");
    for (const Use& item : load(path)) add(item, {}, 0);
    if (soup_.faces.empty()) fail("not a mesh: its build has no triangles");
    return std::move(soup_);
  }

 private:
  [[noreturn]] void fail(const std::string& what) const {
    throw FileError(fmt::format("{}: {}", name_, what));
  }

  std::vector<Use> load(const std::string& path) {
    const auto text = archive_.file(path);
    if (!text) fail(fmt::format("it has no model '{}', which it names", path));
    size_ += text->size();
    models_.push_back(path);
    const std::string name = fmt::format("{}: {}", name_, path);
    return ModelReader(*text, name, path).run(objects_);
  }

  void add(const Use& use, const Transform& outer, std::size_t depth) {
    if (depth > kMostComponents) fail(fmt::format("object '{}' is a part of itself", use.object));
    if (std::find(models_.begin(), models_.end(), use.path) == models_.end()) load(use.path);
    const auto found = objects_.find({use.path, use.object});
    if (found == objects_.end())
      fail(fmt::format("there is no object '{}' in '{}', which it names", use.object, use.path));
    const Object& object = found->second;
    const Transform transform = use.transform.then(outer);
    spent_ += 1 + object.points.size() + object.triangles.size();
    if (spent_ > kFreeElements + kElementsPerByte * size_)
      fail(fmt::format("object '{}' is used too often", use.object));
    const int first = asInt(soup_.points.size());
    for (const Point& point : object.points) soup_.points.push_back(transform(point));
    const bool isMirror = transform.isMirror();
    for (const auto& [a, b, c] : object.triangles)
      soup_.faces.push_back({first + a, first + (isMirror ? c : b), first + (isMirror ? b : c)});
    for (const Use& component : object.components) add(component, transform, depth + 1);
  }

  ZipArchive archive_;
  const std::string& name_;
  std::map<std::pair<std::string, std::string>, Object> objects_;
  std::vector<std::string> models_;
  std::size_t size_ = 0;
  std::size_t spent_ = 0;
  PolygonSoup soup_;
};

}  // namespace

PolygonSoup readThreemf(std::string_view bytes, const std::string& name) {
  return ThreemfReader(bytes, name).run();
}

}  // namespace qelm::tool
