// The grammar of boundary conditions: SELECTORS=VALUE[,VALUE...][:TAG].
#ifndef QELM_TOOLS_CONDITIONS_H
#define QELM_TOOLS_CONDITIONS_H

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "conditions/expression.h"
#include "conditions/selectors.h"

namespace qelm::tool {

/// The VALUE of a condition: a number, an expression or *.
struct Value {
  std::string text;                      ///< as written
  double number = 0;                     ///< if isNumber()
  std::optional<Expression> expression;  ///< in x, y, z and s
  bool ofProperty = false;               ///< *: the values of the condition's property

  bool isNumber() const { return !expression && !ofProperty; }
};

struct Condition {
  std::string text;  ///< the selectors as written, for messages
  SelectorTree selectors;
  std::vector<Value> values;  ///< one for each field; a single one is for all
  int tag = 1;                ///< 1, 2 or 3: the library treats all alike
};

/// The values as they are written, such as "0,1".
std::string describeValues(const Condition& condition);

/// How many fields the conditions ask for. Throws UsageError when they disagree.
std::size_t fieldCount(const std::vector<Condition>& conditions);

/// The library's marks for prescribed vertices: 1, 2 and 3.
std::optional<int> parseTag(std::string_view text);

/// Throws UsageError that quotes `text`.
Condition parseCondition(const std::string& text);

/// The files that the condition's selectors read.
std::vector<std::string> filesOf(const Condition& condition);

}  // namespace qelm::tool

#endif
