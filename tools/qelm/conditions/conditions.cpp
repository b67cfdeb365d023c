#include "conditions/conditions.h"

#include <fmt/format.h>
#include <fmt/ranges.h>

#include <string_view>

#include "text/error.h"
#include "text/index.h"
#include "text/text.h"

namespace qelm::tool {

namespace {

[[noreturn]] void fail(std::string_view text, const std::string& why) {
  throw UsageError(fmt::format("--fix {}: {}", text, why));
}

/// The first `sign` outside of brackets and double quotes; npos if there is none.
std::size_t outside(std::string_view text, char sign) {
  int depth = 0;
  bool quoted = false;
  for (std::size_t k = 0; k < text.size(); ++k) {
    if (text[k] == sign && depth <= 0 && !quoted) return k;
    if (text[k] == '"') quoted = !quoted;
    if (!quoted && text[k] == '(') ++depth;
    if (!quoted && text[k] == ')') --depth;
  }
  return std::string_view::npos;
}

Value parseValue(std::string_view word, std::string_view text) {
  const std::string_view plain = trimmed(word);
  Value value;
  value.text = plain;
  if (parseDouble(plain) || plain.empty()) {
    value.number = finiteNumber(word, text);
  } else if (plain == "*") {
    value.ofProperty = true;
  } else {
    try {
      value.expression.emplace(plain);
    } catch (const ExpressionError& error) {
      fail(text, fmt::format("'{}' is not a number, nor an expression: {}", word, error.what()));
    }
  }
  return value;
}

std::vector<Value> parseValues(std::string_view list, std::string_view text) {
  std::vector<Value> values;
  while (true) {
    const std::size_t comma = outside(list, ',');
    values.push_back(parseValue(list.substr(0, comma), text));
    if (comma == list.npos) return values;
    list.remove_prefix(comma + 1);
  }
}

/// The value * needs exactly one property; s needs a selector that has a length.
void checkValues(const Condition& condition, std::string_view text) {
  int properties = 0;
  int lines = 0;
  forEachSelector(condition.selectors, [&](const SelectorTree& leaf) {
    properties += std::holds_alternative<PropertyName>(leaf.selector) ? 1 : 0;
    lines += std::holds_alternative<LoopNumber>(leaf.selector) ||
                     std::holds_alternative<LoopNear>(leaf.selector) ||
                     std::holds_alternative<AlongCurve>(leaf.selector)
                 ? 1
                 : 0;
  });
  for (const Value& value : condition.values) {
    if (value.ofProperty && properties != 1)
      fail(text, "the value * is that of a property; name one, as in property:NAME=*");
    if (value.expression && value.expression->usesArc() && lines == 0)
      fail(text, "s is the way along a loop: or a curve:, and there is none here");
  }
}

int wantedTag(std::string_view word, std::string_view text) {
  const auto tag = parseTag(trimmed(word));
  if (!tag) fail(text, fmt::format("the tag '{}' is not 1, 2 or 3", word));
  return *tag;
}

}  // namespace

std::string describeValues(const Condition& condition) {
  std::vector<std::string> texts;
  for (const Value& value : condition.values)
    texts.push_back(value.isNumber() ? fmt::format("{}", value.number) : value.text);
  return fmt::format("{}", fmt::join(texts, ","));
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
  return asInt(*tag);
}

Condition parseCondition(const std::string& text) {
  const std::string_view view = text;
  // The first = ends the selectors: an expression may compare. A name with = in it stands in
  // quotes.
  std::size_t equals = 0;
  bool quoted = false;
  while (equals < view.size() && (quoted || view[equals] != '=')) quoted ^= view[equals++] == '"';
  const std::string_view selectors = trimmed(view.substr(0, equals));
  Condition condition{std::string(selectors), parseSelectors(selectors, text), {}};
  if (equals == view.size()) fail(text, "no value; write it behind the selector, as in loop:0=1");
  const std::string_view rest = view.substr(equals + 1);
  const std::size_t colon = outside(rest, ':');
  condition.values = parseValues(rest.substr(0, colon), text);
  if (colon != rest.npos) condition.tag = wantedTag(rest.substr(colon + 1), text);
  checkValues(condition, text);
  return condition;
}

std::vector<std::string> filesOf(const Condition& condition) {
  std::vector<std::string> files;
  forEachSelector(condition.selectors, [&files](const SelectorTree& leaf) {
    if (const auto* curve = std::get_if<AlongCurve>(&leaf.selector)) files.push_back(curve->file);
  });
  return files;
}

}  // namespace qelm::tool
