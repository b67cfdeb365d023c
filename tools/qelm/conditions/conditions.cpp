#include "conditions/conditions.h"

#include <fmt/format.h>
#include <fmt/ranges.h>

#include <algorithm>
#include <cmath>
#include <string_view>

#include "text/error.h"
#include "text/text.h"

namespace qelm::tool {

namespace {

[[noreturn]] void fail(std::string_view text, const std::string& why) {
  throw UsageError(fmt::format("--fix {}: {}", text, why));
}

constexpr const char* kForms =
    "write vertex:I[,I...]=VALUE, loop:K=VALUE, boundary=VALUE, near:X,Y,Z=VALUE or "
    "box:X0,Y0,Z0,X1,Y1,Z1=VALUE; a tag may follow, as in loop:0=1:2";

double finiteNumber(std::string_view word, std::string_view text) {
  const auto value = parseDouble(trimmed(word));
  if (!value) fail(text, fmt::format("'{}' is not a number", word));
  if (!std::isfinite(*value)) fail(text, fmt::format("'{}' is not finite", word));
  return *value;
}

std::vector<double> numbers(std::string_view list, std::size_t count, std::string_view text) {
  std::vector<double> values;
  for (const std::string_view word : splitAt(list, ',')) values.push_back(finiteNumber(word, text));
  if (values.size() != count)
    fail(text, fmt::format("{} numbers are needed here, {} given", count, values.size()));
  return values;
}

long long wholeNumber(std::string_view word, std::string_view text) {
  const auto value = parseInteger(trimmed(word));
  if (!value || *value < 0) fail(text, fmt::format("'{}' is not a number counted from 0", word));
  return *value;
}

VertexList parseVertices(std::string_view list, std::string_view text) {
  VertexList result;
  for (const std::string_view word : splitAt(list, ','))
    result.vertices.push_back(wholeNumber(word, text));
  return result;
}

Box parseBox(std::string_view list, std::string_view text) {
  const std::vector<double> v = numbers(list, 6, text);
  Box box{};
  for (std::size_t k = 0; k < 3; ++k) {
    box.low[k] = std::min(v[k], v[k + 3]);
    box.high[k] = std::max(v[k], v[k + 3]);
  }
  return box;
}

Selector parseSelector(std::string_view selector, std::string_view text) {
  if (selector == "boundary") return WholeBoundary{};
  const std::size_t colon = selector.find(':');
  if (colon == std::string_view::npos) fail(text, kForms);
  const std::string_view kind = selector.substr(0, colon);
  const std::string_view rest = selector.substr(colon + 1);
  if (kind == "vertex") return parseVertices(rest, text);
  if (kind == "loop") return LoopNumber{wholeNumber(rest, text)};
  if (kind == "near") {
    const std::vector<double> v = numbers(rest, 3, text);
    return NearestTo{{v[0], v[1], v[2]}};
  }
  if (kind == "box") return parseBox(rest, text);
  fail(text, fmt::format("no selector '{}'; {}", kind, kForms));
}

std::vector<double> parseValues(std::string_view list, std::string_view text) {
  std::vector<double> values;
  for (const std::string_view word : splitAt(list, ',')) values.push_back(finiteNumber(word, text));
  return values;
}

int wantedTag(std::string_view word, std::string_view text) {
  const auto tag = parseTag(trimmed(word));
  if (!tag) fail(text, fmt::format("the tag '{}' is not 1, 2 or 3", word));
  return *tag;
}

}  // namespace

std::string describeValues(const Condition& condition) {
  return fmt::format("{}", fmt::join(condition.values, ","));
}

std::size_t fieldCount(const std::vector<Condition>& conditions) {
  const Condition* several = nullptr;
  for (const Condition& condition : conditions) {
    const std::size_t count = condition.values.size();
    if (count == 1) continue;
    if (several == nullptr) several = &condition;
    if (count != several->values.size())
      throw UsageError(
          fmt::format("--fix {}={} has {} values, --fix {}={} has {}; give each as "
                      "many, or one for all fields",
                      several->text, describeValues(*several), several->values.size(),
                      condition.text, describeValues(condition), count));
  }
  return several == nullptr ? 1 : several->values.size();
}

std::optional<int> parseTag(std::string_view text) {
  const auto tag = parseInteger(text);
  if (!tag || *tag < 1 || *tag > 3) return {};
  return static_cast<int>(*tag);
}

Condition parseCondition(const std::string& text) {
  const std::string_view view = text;
  const std::size_t equals = view.rfind('=');
  if (equals == std::string_view::npos) fail(text, kForms);
  const std::string_view selector = trimmed(view.substr(0, equals));
  const std::string_view rest = view.substr(equals + 1);
  const std::size_t colon = rest.find(':');
  Condition condition{std::string(selector), parseSelector(selector, text),
                      parseValues(rest.substr(0, colon), text)};
  if (colon != std::string_view::npos) condition.tag = wantedTag(rest.substr(colon + 1), text);
  return condition;
}

}  // namespace qelm::tool
