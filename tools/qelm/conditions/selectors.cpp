#include "conditions/selectors.h"

#include <fmt/format.h>

#include <algorithm>
#include <cmath>

#include "text/error.h"
#include "text/index.h"
#include "text/text.h"

namespace qelm::tool {
namespace {

constexpr const char* kForms =
    "write vertex:I[,I...]=VALUE, loop:K=VALUE, boundary=VALUE, near:X,Y,Z=VALUE, xmin=VALUE or "
    "another selector of 'qelm help selectors'; a tag may follow, as in loop:0=1:2";

// Nobody writes brackets so deep, and each takes some of the program's stack.
constexpr int kDeepest = 100;

[[noreturn]] void failSelector(std::string_view condition, const std::string& why) {
  throw UsageError(fmt::format("--fix {}: {}", condition, why));
}

/// A selector's kind and what follows the colon, in numbers and names.
class LeafParser {
 public:
  LeafParser(std::string_view leaf, std::string_view condition)
      : leaf_(leaf),
        kind_(leaf.substr(0, leaf.find(':'))),
        rest_(kind_.size() < leaf.size() ? leaf.substr(kind_.size() + 1) : ""),
        condition_(condition) {}

  Selector run() const {
    if (leaf_ == "boundary") return WholeBoundary{};
    if (const auto side = boxSide()) return *side;
    if (kind_.size() == leaf_.size()) fail(kForms);
    if (kind_ == "vertex") return vertices();
    if (kind_ == "loop" && isNear()) return LoopNear{nearPoint()};
    if (kind_ == "loop") return LoopNumber{wholeNumber(rest_)};
    if (kind_ == "part" && isNear()) return PartNear{nearPoint()};
    if (kind_ == "part") return PartNumber{wholeNumber(rest_)};
    if (kind_ == "near") return NearestTo{point(numbers(rest_, 3, 3), 0)};
    if (kind_ == "box") return box();
    if (kind_ == "sphere") return sphere();
    if (kind_ == "plane") return plane(Plane::Side::on, 7);
    if (kind_ == "above") return plane(Plane::Side::above, 6);
    if (kind_ == "below") return plane(Plane::Side::below, 6);
    if (kind_ == "feature") return feature();
    if (kind_ == "group") return GroupName{name()};
    if (kind_ == "material") return MaterialName{name()};
    if (kind_ == "property") return PropertyName{name()};
    if (kind_ == "curve") return AlongCurve{name()};
    fail(fmt::format("no selector '{}'; {}", kind_, kForms));
  }

 private:
  [[noreturn]] void fail(const std::string& why) const { failSelector(condition_, why); }

  bool isNear() const { return rest_.starts_with("near:"); }
  Point nearPoint() const { return point(numbers(rest_.substr(5), 3, 3), 0); }

  static Point point(const std::vector<double>& v, std::size_t first) {
    return {v[first], v[first + 1], v[first + 2]};
  }

  std::vector<double> numbers(std::string_view list, std::size_t least, std::size_t most) const {
    std::vector<double> values;
    for (const std::string_view word : splitAt(list, ','))
      values.push_back(finiteNumber(word, condition_));
    if (values.size() < least || values.size() > most)
      fail(fmt::format(
          "{} numbers are needed here, {} given",
          least == most ? fmt::format("{}", least) : fmt::format("{} or {}", least, most),
          values.size()));
    return values;
  }

  long long wholeNumber(std::string_view word) const {
    const auto value = parseInteger(trimmed(word));
    if (!value || *value < 0) fail(fmt::format("'{}' is not a number counted from 0", word));
    return *value;
  }

  std::optional<BoxSide> boxSide() const {
    if (leaf_.size() != 4 || leaf_[0] < 'x' || leaf_[0] > 'z') return {};
    const std::string_view end = leaf_.substr(1);
    if (end != "min" && end != "max") return {};
    return BoxSide{asIndex(leaf_[0] - 'x'), end == "max"};
  }

  VertexList vertices() const {
    VertexList list;
    for (const std::string_view word : splitAt(rest_, ',')) {
      const std::size_t dash = trimmed(word).empty() ? word.npos : word.find('-', 1);
      const long long first = wholeNumber(word.substr(0, dash));
      const long long last = dash == word.npos ? first : wholeNumber(word.substr(dash + 1));
      if (last < first) fail(fmt::format("the range '{}' ends before it begins", word));
      list.ranges.push_back({first, last});
    }
    return list;
  }

  Box box() const {
    const std::vector<double> v = numbers(rest_, 6, 6);
    Box result;
    result.add(point(v, 0));
    result.add(point(v, 3));
    return result;
  }

  Sphere sphere() const {
    const std::vector<double> v = numbers(rest_, 4, 4);
    if (v[3] < 0) fail("the radius is negative");
    return {point(v, 0), v[3]};
  }

  Plane plane(Plane::Side side, std::size_t most) const {
    const std::vector<double> v = numbers(rest_, 6, most);
    Plane result{side, point(v, 0), point(v, 3), {}};
    if (v[3] == 0 && v[4] == 0 && v[5] == 0) fail("the normal 0,0,0 has no direction");
    if (v.size() > 6) result.tolerance = v[6];
    if (v.size() > 6 && v[6] < 0) fail("the tolerance is negative");
    return result;
  }

  FeatureAngle feature() const {
    const double degrees = numbers(rest_, 1, 1)[0];
    if (!(degrees >= 0 && degrees < 180)) fail("an angle from 0 to less than 180 is needed");
    return {degrees};
  }

  /// May stand in double quotes, which are needed for & | ( ) = in it.
  std::string name() const {
    std::string_view text = trimmed(rest_);
    if (text.size() >= 2 && text.front() == '"' && text.back() == '"')
      text = text.substr(1, text.size() - 2);
    if (text.empty()) fail(fmt::format("{}: a name is needed", kind_));
    return std::string(text);
  }

  std::string_view leaf_, kind_, rest_, condition_;
};

/// any := all ('|' all)*; all := one ('&' one)*; one := '!' one | '(' any ')' | selector
class TreeParser {
 public:
  TreeParser(std::string_view text, std::string_view condition)
      : rest_(text), condition_(condition) {}

  SelectorTree run() {
    SelectorTree tree = any(0);
    if (!rest_.empty())
      failSelector(condition_, fmt::format("a bracket is closed that was not opened: '{}'", rest_));
    return tree;
  }

 private:
  SelectorTree any(int depth) {
    return joined(SelectorTree::Kind::any, '|', depth, [&] { return all(depth); });
  }
  SelectorTree all(int depth) {
    return joined(SelectorTree::Kind::all, '&', depth, [&] { return one(depth); });
  }

  template <class Part>
  SelectorTree joined(SelectorTree::Kind kind, char sign, int depth, Part part) {
    if (depth > kDeepest) failSelector(condition_, "the brackets are too deep");
    std::vector<SelectorTree> parts = {part()};
    while (taken(sign)) parts.push_back(part());
    if (parts.size() == 1) return std::move(parts[0]);
    SelectorTree tree;
    tree.kind = kind;
    tree.parts = std::move(parts);
    return tree;
  }

  SelectorTree one(int depth) {
    if (depth > kDeepest) failSelector(condition_, "the brackets are too deep");
    if (taken('!')) {
      SelectorTree tree;
      tree.kind = SelectorTree::Kind::none;
      tree.parts.push_back(one(depth + 1));
      return tree;
    }
    if (!taken('(')) return leaf();
    SelectorTree tree = any(depth + 1);
    if (!taken(')')) failSelector(condition_, "a bracket is not closed");
    return tree;
  }

  SelectorTree leaf() {
    const std::string_view text = trimmed(rest_.substr(0, leafSize()));
    rest_.remove_prefix(leafSize());
    SelectorTree tree;
    tree.selector = LeafParser(text, condition_).run();
    tree.text = text;
    return tree;
  }

  /// Up to & | or ) outside of double quotes.
  std::size_t leafSize() const {
    bool quoted = false;
    for (std::size_t k = 0; k < rest_.size(); ++k) {
      if (rest_[k] == '"') quoted = !quoted;
      if (!quoted && (rest_[k] == '&' || rest_[k] == '|' || rest_[k] == ')')) return k;
    }
    return rest_.size();
  }

  bool taken(char sign) {
    rest_ = trimmed(rest_);
    if (!rest_.starts_with(sign)) return false;
    rest_.remove_prefix(1);
    return true;
  }

  std::string_view rest_, condition_;
};

}  // namespace

double finiteNumber(std::string_view word, std::string_view condition) {
  const auto value = parseDouble(trimmed(word));
  if (!value) failSelector(condition, fmt::format("'{}' is not a number", word));
  if (!std::isfinite(*value)) failSelector(condition, fmt::format("'{}' is not finite", word));
  return *value;
}

SelectorTree parseSelectors(std::string_view text, std::string_view condition) {
  return TreeParser(text, condition).run();
}

}  // namespace qelm::tool
