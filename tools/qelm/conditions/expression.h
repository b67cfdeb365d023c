// Values that depend on the place: arithmetic in x, y, z and s.
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

/// Numbers, x y z s, pi and e, + - * / ^ with brackets, < <= > >= == != (1 or 0), and functions:
/// see kFunctions. ^ binds before a sign in front and from the right, comparisons last.
///
/// It is a list of steps on a stack, as long as the text at most: there is nothing in it that
/// could run on, or reach anything but its four variables. Results of sin and the like are the
/// platform's, so the last bit may differ between systems.
class Expression {
 public:
  /// Throws ExpressionError.
  explicit Expression(std::string_view text);

  bool usesArc() const { return usesArc_; }
  /// The value at a point; `s` is read only if usesArc(). Whatever is not defined is NaN or
  /// infinite, as in 1/0 or sqrt(-1).
  double operator()(const Point& point, double s) const;

 private:
  friend class ExpressionParser;
  struct Step {
    enum class Kind : std::uint8_t { number, variable, one, two, three };
    Kind kind;
    std::uint8_t which;  ///< the variable, or the function
    double number;
  };
  std::vector<Step> steps_;
  bool usesArc_ = false;
  std::size_t deepest_ = 0;
};

/// "abs, acos, ...", for messages and documents.
std::string expressionFunctions();

}  // namespace qelm::tool

#endif
