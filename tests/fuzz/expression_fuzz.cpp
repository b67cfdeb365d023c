// Expressions: every text ends in a value or in a message.
#include "conditions/expression.h"

#include <cmath>

#include "fuzz/tool_checks.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string_view text(reinterpret_cast<const char*>(data), size);
  using qelm::fuzz::require;
  try {
    const qelm::tool::Expression expression(text);
    const double there = expression({0.5, -2, 1e300}, 0.25);
    const double again = expression({0.5, -2, 1e300}, 0.25);
    require(qelm::fuzz::sameBits(std::span(&there, 1), std::span(&again, 1)), "the same value");
    const double elsewhere = expression({0.5, -2, 1e300}, std::nan(""));
    require(expression.usesArc() || qelm::fuzz::sameBits(std::span(&there, 1), {&elsewhere, 1}),
            "s is read only where it stands");
    const qelm::tool::Expression inBrackets("(" + std::string(text) + ")");
    const double same = inBrackets({0.5, -2, 1e300}, 0.25);
    require(qelm::fuzz::sameBits(std::span(&there, 1), {&same, 1}), "brackets change nothing");
  } catch (const qelm::tool::ExpressionError& error) {
    require(*error.what() != '\0', "a message says what is wrong");
  }
  return 0;
}
