// The rules of differentiation: their results as written, and each against the difference quotient of what it
// differentiates.
#include "qv_solver_list/calculus/derivative.h"

#include <gtest/gtest.h>

#include <cmath>
#include <string>
#include <vector>

#include "support/solver_fixture.h"
#include "term/term_split_combine.h"

namespace vetro {
namespace {

class derivative_test : public solver_test {
 protected:
  static term_ptr x() { return mk_var("x"); }
  static term_ptr parsed(const std::string& text) { return pred_split(read(text + " = 0"))->left; }
  static std::string internal(term_ptr t) {
    std::string text;
    if (t != nullptr) {
      print_term_internal(text, t);
    }
    return text;
  }
};

TEST_F(derivative_test, results_as_written) {
  struct row {
    std::string text;
    std::string result;  // empty for none
  };
  const std::vector<row> rows = {
      {"x^3", "Mult(3, Power(x, 2))"},
      {"x^x", "Mult(Power(x, x), Plus(ln(x), Mult(x, Div(1, x))))"},
      {"ln(Abs(x))", "frac(1, x)"},
      {"sqrtn(3, x)", "frac(1, Mult(3, Sqrtn(3, Power(x, 2))))"},
      {"sqrtn(2, x)", "frac(1, Mult(2, Sqrtn(2, x)))"},
      {"2^x", "Mult(Power(2, x), ln(2))"},
      {"e^(2 * x)", "Mult(Power(e, Mult(2, x)), 2)"},
      {"x^a", "Mult(a, Power(x, Minus(a, 1)))"},
      {"FunDeri(f, 1, 1, x)", "FunDeri(f, 1, 2)(x)"},
      {"FunDeri(f, 1, 1, y, x^2)", "Mult(FunDeri(FunDeri(f, 1, 1), 2, 1)(y, Power(x, 2)), Mult(2, x))"},
      {"FunDeri(f, 1, 1, x, x)", "Plus(FunDeri(f, 1, 2)(x, x), FunDeri(FunDeri(f, 1, 1), 2, 1)(x, x))"},
      // Nothing that moves.
      {"Abs(y) + f(y) + y!", "0"},
      {"FunDeri(f, 1, 1, y)", "0"},
      {"(fun x . x)", "0"},
      {"x^0", "0"},
      {"x - x", "0"},
      // Integers fold where the result fits.
      {"2147483647 * (2 * x)", "Mult(2147483647, 2)"},
      // No rule.
      {"Abs(x)", ""},
      {"floor(x) * 0", ""},
      {"f(x)", ""},
      {"a_x", ""},
      {"x(y)", ""},
      {"(fun y . x)", ""},
      {"log(2, x)", ""},
      {"sqrtn(x, 2)", ""},
      {"sqrtn(0, x)", ""},
      {"FunDeri(f, 2, 1, x)", ""},
      {"FunDeri(f, 1, 0, x)", ""},
      {"FunDeri(f, 1, 2147483647, x)", ""},
      {"FunDeri(fun y . y * x, 1, 1, x)", ""},
      // Parts without a single finite value, and parts that speak of x in another way.
      {"1 + x + ... + x^9", ""},
      {"x + bigO_{y → 0}(y)", ""},
      {"x + ∞", ""},
      {"x ± 1", ""},
      {"int(x * diff(x))", ""},
      {"(x [@scope y = x @]) * 2", ""},
  };
  for (const row& r : rows) {
    EXPECT_EQ(internal(derivative(parsed(r.text), x())), r.result) << r.text;
  }
}

// ---- Against the difference quotient.

// The value of t at x, with nan for what is no function of real numbers here.
double value_at(term_ptr t, double x) {
  if (t->type() == Var) {
    return x;
  }
  if (t->type() == Const) {
    return t->constant() == Integer ? t->integer() : std::exp(1.0);
  }
  const auto view = composed_term_split(t);
  if (!view) {
    return NAN;
  }
  const double a = value_at(view->t1, x);
  const double b = view->t2 == nullptr ? 0 : value_at(view->t2, x);
  // clang-format off
  switch (view->oper) {
    case Plus: return a + b;
    case Minus: return a - b;
    case Mult: return a * b;
    case Div: case Frac: return a / b;
    case Power: return std::pow(a, b);
    case Sqrtn: return b < 0 ? -std::pow(-b, 1 / a) : std::pow(b, 1 / a);
    case Neg: return -a;
    case Abs: return std::abs(a);
    case Sqrt: return std::sqrt(a);
    case Cbrt: return std::cbrt(a);
    case Ln: return std::log(a);
    case Sin: return std::sin(a);
    case Cos: return std::cos(a);
    case Tan: return std::tan(a);
    case Cot: return 1 / std::tan(a);
    case Sec: return 1 / std::cos(a);
    case Csc: return 1 / std::sin(a);
    case Arcsin: return std::asin(a);
    case Arccos: return std::acos(a);
    case Arctan: return std::atan(a);
    case Arccot: return std::atan(1 / a);
    case Sinh: return std::sinh(a);
    case Cosh: return std::cosh(a);
    case Tanh: return std::tanh(a);
    case Sech: return 1 / std::cosh(a);
    default: return NAN;
  }
  // clang-format on
}

TEST_F(derivative_test, rules_agree_with_difference_quotients) {
  // Each rule with an operand that is not x alone, so that a missing factor shows.
  const std::vector<std::string> texts = {
      "-(x^2)",          "x^2 + 3 * x",       "x^3 - 1 / x",   "frac(x + 1, x^2 + 1)", "x^(-3)",
      "(2 * x)^(1 / 3)", "3^(x^2)",           "e^(x^2 - x)",   "(x + 1)^(2 * x)",      "sqrtn(5, x - 2)",
      "sqrtn(2, 3 * x)", "sqrtn(4, x^2 + 1)", "sqrt(2 * x)",   "cbrt(x - 3)",          "ln(x^2 + 1)",
      "ln(Abs(x - 4))",  "sin(x^2)",          "cos(3 * x)",    "tan(x / 2)",           "cot(x^2)",
      "sec(x / 3)",      "csc(2 * x)",        "arcsin(x / 2)", "arccos(x / 3)",        "arctan(x^2)",
      "arccot(3 * x)",   "sinh(2 * x)",       "cosh(x^2)",     "tanh(x / 2)",          "x * sin(x) / (x + 2)",
  };
  for (const std::string& text : texts) {
    term_ptr t = parsed(text);
    term_ptr d = derivative(t, x());
    ASSERT_NE(d, nullptr) << text;
    for (const double at : {0.4, 0.9, 1.3}) {
      const double step = 1e-5;
      const double quotient = (value_at(t, at + step) - value_at(t, at - step)) / (2 * step);
      EXPECT_NEAR(value_at(d, at), quotient, 1e-6 * (1 + std::abs(quotient))) << text << " at " << at;
    }
  }
}

// ---- Cost.

TEST_F(derivative_test, distinct_subterms_are_differentiated_once) {
  term_ptr product = x();
  term_ptr tower = x();
  term_ptr nested = x();
  for (int i = 2; i <= 200; ++i) {
    product = make_binOp_term(Mult, product, make_binOp_term(Plus, x(), mk_integer(i)));
    tower = make_binOp_term(Power, tower, tower);
    nested = make_binOp_term(Power, mk_const(E), nested);
  }
  const std::uint64_t before = state().store.calls();
  for (term_ptr t : {product, tower, nested}) {
    EXPECT_NE(derivative(t, x()), nullptr);
  }
  EXPECT_LT(state().store.calls() - before, 20'000U);
}

TEST_F(derivative_test, higher_orders) {
  differentiator by_x(x());
  EXPECT_EQ(internal(by_x.nth(parsed("x^3"), 2)), "Mult(3, Mult(2, x))");
  EXPECT_EQ(internal(by_x.nth(parsed("x^3"), 1'000'000'000)), "0");
  EXPECT_EQ(internal(by_x.nth(parsed("e^x"), 1'000'000'000)), "Power(e, x)");
  EXPECT_EQ(by_x.nth(x(), 0), nullptr);
  EXPECT_EQ(by_x.nth(parsed("sin(x^2) * e^x"), 1'000'000'000), nullptr);
}

}  // namespace
}  // namespace vetro
