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

struct Unary {
  const char* name;
  double (*call)(double);
};
struct Binary {
  const char* name;
  double (*call)(double, double);
};

double sign(double a) { return a > 0 ? 1 : a < 0 ? -1 : a; }

/// In alphabetical order, for messages; "-" is the sign in front.
constexpr std::array kUnary = {
    Unary{"abs", [](double a) { return std::abs(a); }},
    Unary{"acos", [](double a) { return std::acos(a); }},
    Unary{"asin", [](double a) { return std::asin(a); }},
    Unary{"atan", [](double a) { return std::atan(a); }},
    Unary{"cbrt", [](double a) { return std::cbrt(a); }},
    Unary{"ceil", [](double a) { return std::ceil(a); }},
    Unary{"cos", [](double a) { return std::cos(a); }},
    Unary{"cosh", [](double a) { return std::cosh(a); }},
    Unary{"exp", [](double a) { return std::exp(a); }},
    Unary{"floor", [](double a) { return std::floor(a); }},
    Unary{"log", [](double a) { return std::log(a); }},
    Unary{"log10", [](double a) { return std::log10(a); }},
    Unary{"round", [](double a) { return std::round(a); }},
    Unary{"sign", sign},
    Unary{"sin", [](double a) { return std::sin(a); }},
    Unary{"sinh", [](double a) { return std::sinh(a); }},
    Unary{"sqrt", [](double a) { return std::sqrt(a); }},
    Unary{"tan", [](double a) { return std::tan(a); }},
    Unary{"tanh", [](double a) { return std::tanh(a); }},
    Unary{"-", [](double a) { return -a; }},
};
constexpr std::array kBinary = {
    Binary{"atan2", [](double a, double b) { return std::atan2(a, b); }},
    // hypot of three arguments is a template; that of two asks for glibc 2.35.
    Binary{"hypot", [](double a, double b) { return std::hypot(a, b, 0.0); }},
    Binary{"max", [](double a, double b) { return std::max(a, b); }},
    Binary{"min", [](double a, double b) { return std::min(a, b); }},
    Binary{"mod", [](double a, double b) { return a - b * std::floor(a / b); }},
    Binary{"pow", [](double a, double b) { return std::pow(a, b); }},
    Binary{"+", [](double a, double b) { return a + b; }},
    Binary{"-", [](double a, double b) { return a - b; }},
    Binary{"*", [](double a, double b) { return a * b; }},
    Binary{"/", [](double a, double b) { return a / b; }},
    Binary{"^", [](double a, double b) { return std::pow(a, b); }},
    Binary{"<", [](double a, double b) { return a < b ? 1.0 : 0.0; }},
    Binary{"<=", [](double a, double b) { return a <= b ? 1.0 : 0.0; }},
    Binary{">", [](double a, double b) { return a > b ? 1.0 : 0.0; }},
    Binary{">=", [](double a, double b) { return a >= b ? 1.0 : 0.0; }},
    Binary{"==", [](double a, double b) { return a == b ? 1.0 : 0.0; }},
    Binary{"!=", [](double a, double b) { return a != b ? 1.0 : 0.0; }},
};
constexpr std::string_view kChoice = "if";  // if(condition, then, else)
constexpr std::string_view kVariables = "xyzs";
constexpr std::size_t kArc = 3;

// Each level of brackets and signs takes some of this program's own stack.
constexpr int kDeepestExpression = 100;

bool isLetter(char c) { return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z'); }
bool isDigit(char c) { return c >= '0' && c <= '9'; }

template <class Functions>
std::optional<std::uint8_t> indexOf(const Functions& functions, std::string_view name) {
  for (std::size_t k = 0; k < functions.size(); ++k)
    if (name == functions[k].name) return static_cast<std::uint8_t>(k);
  return {};
}

}  // namespace

/// The grammar, a function for each of its rules:
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
        pushBinary(sign);
        return;
      }
  }

  void sum(int depth) {
    product(depth);
    while (true) {
      if (taken("+")) {
        product(depth);
        pushBinary("+");
      } else if (taken("-")) {
        product(depth);
        pushBinary("-");
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
        pushBinary("*");
      } else if (taken("/")) {
        withSign(depth);
        pushBinary("/");
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
    push({Kind::unary, *indexOf(kUnary, "-"), 0});
  }

  void power(int depth) {
    atom(depth);
    if (!taken("^")) return;
    withSign(depth + 1);
    pushBinary("^");
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
    const auto unary = indexOf(kUnary, name);
    const auto binary = indexOf(kBinary, name);
    if (!unary && !binary && name != kChoice)
      fail(fmt::format("there is no '{}'; use x, y, z, s, pi, e or {}", name,
                       expressionFunctions()));
    need("(");
    const int count = unary ? 1 : binary ? 2 : 3;
    for (int k = 0; k < count; ++k) {
      if (k > 0) need(",");
      comparison(depth + 1);
    }
    need(")");
    if (unary)
      push({Kind::unary, *unary, 0});
    else if (binary)
      push({Kind::binary, *binary, 0});
    else
      push({Kind::choice, 0, 0});
  }

  void pushBinary(const char* sign) { push({Kind::binary, *indexOf(kBinary, sign), 0}); }

  void push(const Expression::Step& step) {
    if (step.kind == Kind::number || step.kind == Kind::variable) ++depth_;
    if (step.kind == Kind::binary) depth_ -= 1;
    if (step.kind == Kind::choice) depth_ -= 2;
    result_.stackSize_ = std::max(result_.stackSize_, depth_);
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
  std::size_t depth_ = 0;  ///< entries on the stack after the steps so far
};

Expression::Expression(std::string_view text) { ExpressionParser(text, *this).run(); }

double Expression::operator()(const Point& point, double s) const {
  std::vector<double> stack(stackSize_);
  std::size_t size = 0;
  for (const Step& step : steps_) {
    switch (step.kind) {
      case Step::Kind::number:
        stack[size++] = step.number;
        break;
      case Step::Kind::variable:
        stack[size++] = step.which == kArc ? s : point[step.which];
        break;
      case Step::Kind::unary:
        stack[size - 1] = kUnary[step.which].call(stack[size - 1]);
        break;
      case Step::Kind::binary:
        --size;
        stack[size - 1] = kBinary[step.which].call(stack[size - 1], stack[size]);
        break;
      case Step::Kind::choice:
        size -= 2;
        stack[size - 1] = stack[size - 1] != 0 ? stack[size] : stack[size + 1];
        break;
    }
  }
  return stack[0];
}

std::string expressionFunctions() {
  std::string names;
  for (const Unary& function : kUnary)
    if (isLetter(function.name[0])) names += fmt::format("{}, ", function.name);
  for (const Binary& function : kBinary)
    if (isLetter(function.name[0])) names += fmt::format("{}, ", function.name);
  return names + std::string(kChoice);
}

}  // namespace qelm::tool
