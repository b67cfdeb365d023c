// Values by expression: arithmetic in a vertex's x, y, z and its s, the way along a curve.
//
// A recursive-descent parser turns the text into a program for a stack (postfix order), once; the
// program then runs for every vertex. Example:
//
//   10*(z>1)   ->   10   z   1   >    *
//   stack           10   10  10  10   0
//                        z   z   0
//                            1             with z = 0.5
//
// A program has no jumps: it takes as many steps as it has, at most one for each character of the
// text, and reaches nothing but its four variables.
#ifndef QELM_TOOLS_EXPRESSION_H
#define QELM_TOOLS_EXPRESSION_H

#include <cstddef>
#include <cstdint>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

#include "mesh/mesh.h"

namespace qelm::tool {

/// What is wrong with an expression, in words.
struct ExpressionError : std::runtime_error {
  using std::runtime_error::runtime_error;
};

/// Of numbers, x y z s, pi and e, + - * / ^ with brackets, < <= > >= == != (1 or 0), and
/// expressionFunctions(). ^ binds before a sign in front and from the right, comparisons last.
/// Results of sin and the like are the platform's, so the last bit may differ between systems.
class Expression {
 public:
  /// Throws ExpressionError.
  explicit Expression(std::string_view text);

  bool usesArc() const { return usesArc_; }
  /// The value at a point; `s` is read only if usesArc(). What is not defined, such as 1/0 or
  /// sqrt(-1), is infinite or NaN.
  double operator()(const Point& point, double s) const;

 private:
  friend class ExpressionParser;
  struct Step {
    enum class Kind : std::uint8_t { number, variable, unary, binary, choice };
    Kind kind;
    std::uint8_t which;  ///< the variable's index, or the function's
    double number;
  };
  std::vector<Step> steps_;
  bool usesArc_ = false;
  std::size_t stackSize_ = 0;  ///< the most entries at once
};

/// "abs, acos, ...", for messages and documents.
std::string expressionFunctions();

}  // namespace qelm::tool

#endif
