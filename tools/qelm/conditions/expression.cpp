#include "conditions/expression.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <numbers>
#include <optional>

#include "text/text.h"

namespace qelm::tool {
namespace {

struct One {
  const char* name;
  double (*call)(double);
};
struct Two {
  const char* name;
  double (*call)(double, double);
};

double sign(double a) { return a > 0 ? 1 : a < 0 ? -1 : a; }

/// In the order of the alphabet, for messages; "-" is the sign in front.
constexpr std::array kOne = {
    One{"abs", [](double a) { return std::abs(a); }},
    One{"acos", [](double a) { return std::acos(a); }},
    One{"asin", [](double a) { return std::asin(a); }},
    One{"atan", [](double a) { return std::atan(a); }},
    One{"cbrt", [](double a) { return std::cbrt(a); }},
    One{"ceil", [](double a) { return std::ceil(a); }},
    One{"cos", [](double a) { return std::cos(a); }},
    One{"cosh", [](double a) { return std::cosh(a); }},
    One{"exp", [](double a) { return std::exp(a); }},
    One{"floor", [](double a) { return std::floor(a); }},
    One{"log", [](double a) { return std::log(a); }},
    One{"log10", [](double a) { return std::log10(a); }},
    One{"round", [](double a) { return std::round(a); }},
    One{"sign", sign},
    One{"sin", [](double a) { return std::sin(a); }},
    One{"sinh", [](double a) { return std::sinh(a); }},
    One{"sqrt", [](double a) { return std::sqrt(a); }},
    One{"tan", [](double a) { return std::tan(a); }},
    One{"tanh", [](double a) { return std::tanh(a); }},
    One{"-", [](double a) { return -a; }},
};
constexpr std::array kTwo = {
    Two{"atan2", [](double a, double b) { return std::atan2(a, b); }},
    // With three arguments a template; with two, glibc 2.35's.
    Two{"hypot", [](double a, double b) { return std::hypot(a, b, 0.0); }},
    Two{"max", [](double a, double b) { return std::max(a, b); }},
    Two{"min", [](double a, double b) { return std::min(a, b); }},
    Two{"mod", [](double a, double b) { return a - b * std::floor(a / b); }},
    Two{"pow", [](double a, double b) { return std::pow(a, b); }},
    Two{"+", [](double a, double b) { return a + b; }},
    Two{"-", [](double a, double b) { return a - b; }},
    Two{"*", [](double a, double b) { return a * b; }},
    Two{"/", [](double a, double b) { return a / b; }},
    Two{"^", [](double a, double b) { return std::pow(a, b); }},
    Two{"<", [](double a, double b) { return a < b ? 1.0 : 0.0; }},
    Two{"<=", [](double a, double b) { return a <= b ? 1.0 : 0.0; }},
    Two{">", [](double a, double b) { return a > b ? 1.0 : 0.0; }},
    Two{">=", [](double a, double b) { return a >= b ? 1.0 : 0.0; }},
    Two{"==", [](double a, double b) { return a == b ? 1.0 : 0.0; }},
    Two{"!=", [](double a, double b) { return a != b ? 1.0 : 0.0; }},
};
constexpr std::string_view kChoice = "if";  // if(condition, then, else)
constexpr std::string_view kVariables = "xyzs";
constexpr std::size_t kArc = 3;

// Each level takes some of the program's stack.
constexpr int kDeepestExpression = 100;

bool isLetter(char c) { return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z'); }
bool isDigit(char c) { return c >= '0' && c <= '9'; }

template <class Functions>
std::optional<std::uint8_t> placeOf(const Functions& functions, std::string_view name) {
  for (std::size_t k = 0; k < functions.size(); ++k)
    if (name == functions[k].name) return static_cast<std::uint8_t>(k);
  return {};
}

}  // namespace

/// comparison := sum (sign sum)?; sum := product ([+-] product)*; product := signed ([*/] signed)*;
/// signed := [+-] signed | power; power := atom ('^' signed)?
class ExpressionParser {
 public:
  ExpressionParser(std::string_view text, Expression& result) : rest_(text), result_(result) {}

  void run() {
    comparison(0);
    skipBlanks();
    if (!rest_.empty()) fail(fmt::format("'{}' cannot be read", rest_));
  }

 private:
  using Kind = Expression::Step::Kind;

  [[noreturn]] static void fail(const std::string& what) { throw ExpressionError(what); }

  void comparison(int depth) {
    sum(depth);
    for (const char* sign : {"<=", ">=", "==", "!=", "<", ">"})
      if (taken(sign)) {
        sum(depth);
        two(sign);
        return;
      }
  }

  void sum(int depth) {
    product(depth);
    while (true) {
      if (taken("+")) {
        product(depth);
        two("+");
      } else if (taken("-")) {
        product(depth);
        two("-");
      } else {
        return;
      }
    }
  }

  void product(int depth) {
    withSign(depth);
    while (true) {
      if (taken("*")) {
        withSign(depth);
        two("*");
      } else if (taken("/")) {
        withSign(depth);
        two("/");
      } else {
        return;
      }
    }
  }

  void withSign(int depth) {
    if (depth > kDeepestExpression) fail("it is nested too deeply");
    if (taken("+")) return withSign(depth + 1);
    if (!taken("-")) return power(depth);
    withSign(depth + 1);
    push({Kind::one, *placeOf(kOne, "-"), 0});
  }

  void power(int depth) {
    atom(depth);
    if (!taken("^")) return;
    withSign(depth + 1);
    two("^");
  }

  void atom(int depth) {
    skipBlanks();
    if (rest_.empty()) fail("it ends too early");
    if (taken("(")) {
      comparison(depth + 1);
      need(")");
    } else if (isDigit(rest_[0]) || rest_[0] == '.') {
      number();
    } else if (isLetter(rest_[0])) {
      named(depth);
    } else {
      fail(fmt::format("'{}' cannot be read", rest_));
    }
  }

  void number() {
    std::size_t size = 0;
    while (size < rest_.size() && (isDigit(rest_[size]) || rest_[size] == '.')) ++size;
    // An exponent only where digits follow: 2e is 2 times a name, which is an error of its own.
    std::size_t after = size;
    if (after < rest_.size() && (rest_[after] == 'e' || rest_[after] == 'E')) {
      ++after;
      if (after < rest_.size() && (rest_[after] == '+' || rest_[after] == '-')) ++after;
      if (after < rest_.size() && isDigit(rest_[after])) {
        while (after < rest_.size() && isDigit(rest_[after])) ++after;
        size = after;
      }
    }
    const auto value = parseDouble(rest_.substr(0, size));
    if (!value) fail(fmt::format("'{}' is not a number", rest_.substr(0, size)));
    push({Kind::number, 0, *value});
    rest_.remove_prefix(size);
  }

  void named(int depth) {
    std::size_t size = 0;
    while (size < rest_.size() && (isLetter(rest_[size]) || isDigit(rest_[size]))) ++size;
    const std::string_view name = rest_.substr(0, size);
    rest_.remove_prefix(size);
    if (name.size() == 1 && kVariables.find(name) != kVariables.npos) {
      const std::size_t which = kVariables.find(name);
      result_.usesArc_ = result_.usesArc_ || which == kArc;
      return push({Kind::variable, static_cast<std::uint8_t>(which), 0});
    }
    if (name == "pi") return push({Kind::number, 0, std::numbers::pi});
    if (name == "e") return push({Kind::number, 0, std::numbers::e});
    call(name, depth);
  }

  void call(std::string_view name, int depth) {
    const auto one = placeOf(kOne, name);
    const auto two = placeOf(kTwo, name);
    if (!one && !two && name != kChoice)
      fail(fmt::format("there is no '{}'; use x, y, z, s, pi, e or {}", name,
                       expressionFunctions()));
    need("(");
    const int count = one ? 1 : two ? 2 : 3;
    for (int k = 0; k < count; ++k) {
      if (k > 0) need(",");
      comparison(depth + 1);
    }
    need(")");
    if (one)
      push({Kind::one, *one, 0});
    else if (two)
      push({Kind::two, *two, 0});
    else
      push({Kind::three, 0, 0});
  }

  void two(const char* sign) { push({Kind::two, *placeOf(kTwo, sign), 0}); }

  void push(const Expression::Step& step) {
    if (step.kind == Kind::number || step.kind == Kind::variable) ++depth_;
    if (step.kind == Kind::two) depth_ -= 1;
    if (step.kind == Kind::three) depth_ -= 2;
    result_.deepest_ = std::max(result_.deepest_, depth_);
    result_.steps_.push_back(step);
  }

  void need(std::string_view sign) {
    if (taken(sign)) return;
    fail(rest_.empty() ? fmt::format("'{}' is missing at the end", sign)
                       : fmt::format("'{}' is missing before '{}'", sign, rest_));
  }

  bool taken(std::string_view sign) {
    skipBlanks();
    if (!rest_.starts_with(sign)) return false;
    rest_.remove_prefix(sign.size());
    return true;
  }

  void skipBlanks() { rest_ = trimmed(rest_); }

  std::string_view rest_;
  Expression& result_;
  std::size_t depth_ = 0;  ///< of the stack after the steps so far
};

Expression::Expression(std::string_view text) { ExpressionParser(text, *this).run(); }

double Expression::operator()(const Point& point, double s) const {
  std::vector<double> stack(deepest_);
  std::size_t size = 0;
  for (const Step& step : steps_) {
    switch (step.kind) {
      case Step::Kind::number:
        stack[size++] = step.number;
        break;
      case Step::Kind::variable:
        stack[size++] = step.which == kArc ? s : point[step.which];
        break;
      case Step::Kind::one:
        stack[size - 1] = kOne[step.which].call(stack[size - 1]);
        break;
      case Step::Kind::two:
        --size;
        stack[size - 1] = kTwo[step.which].call(stack[size - 1], stack[size]);
        break;
      case Step::Kind::three:
        size -= 2;
        stack[size - 1] = stack[size - 1] != 0 ? stack[size] : stack[size + 1];
        break;
    }
  }
  return stack[0];
}

std::string expressionFunctions() {
  std::string names;
  for (const One& function : kOne)
    if (isLetter(function.name[0])) names += fmt::format("{}, ", function.name);
  for (const Two& function : kTwo)
    if (isLetter(function.name[0])) names += fmt::format("{}, ", function.name);
  return names + std::string(kChoice);
}

}  // namespace qelm::tool
