// Exact values: what becomes a number, what becomes a root, what stays.
#include "qv_solver_list/algebra/numeric_calc.h"

#include <tuple>

#include "qv_solver_list/algebra/trig_values.h"
#include "qv_solver_list/number_reading.h"
#include "qv_solver_list/solvers.h"
#include "support/solver_fixture.h"
#include "term/term_split_combine.h"

namespace vetro {
namespace {

class numeric_calc_test : public solver_test {};

TEST_F(numeric_calc_test, simplifies) {
  struct row {
    std::string_view term;
    std::string_view expected;
  };
  const row rows[] = {
      {"0.1 + 0.2", "frac(3, 10)"},
      {"x + 2^10 * 3!", "x + 6144"},
      {"5!", "120"},
      {"(-1)! + 21! + (1/2)!", "-1! + 21! + frac(1, 2)!"},
      {"13! / 11!", "156"},
      {"f(3000000000 + 1) + 20! / 2^61", "f(3000000001) + 2432902008176640000 / 2305843009213693952"},
      {"1 / 0 + 0^(-1) + 0^0 + sqrtn(2, -1)", "1 / 0 + 0^{-1} + 0^{0} + sqrtn(2, -1)"},
      {"(-8)^(1/3)", "-8^{frac(1, 3)}"},
      {"sqrtn(3, -8) + 4^(3/2)", "6"},
      // Sines, cosines and tangents.
      {"sin(-π/6)", "frac(-1, 2)"},
      {"sin(5 * π / 6) + cos(2 * π)", "frac(3, 2)"},
      {"cos(π/6) - tan(π * (1/6))", "frac(sqrtn(2, 3), 2) - frac(sqrtn(2, 3), 3)"},
      {"sin(π/4 + 3 * π) * tan(-π/3)", "-frac(sqrtn(2, 2), 2) * -sqrtn(2, 3)"},
      {"tan(π/2) + sin(1) + sin(π + 1) + sin(0)", "tan(π / 2) + sin(1) + sin(π + 1) + 0"},
      // Logarithms.
      {"log(2, 8) + log(4, 8) + log(8, 1/4)", "frac(23, 6)"},
      {"log(2, 3) + log(1, 5) + log(2, 0) + log(-2, 4)", "log(2, 3) + log(1, 5) + log(2, 0) + log(-2, 4)"},
      {"log(π, π) + log(π, π^3) + log(2, 2^(1/5)) + log(2, 1)", "frac(21, 5)"},
      {"ln(1) + ln(e) + ln(e^3)", "4"},
      {"ln(0) + ln(-1) + ln(2)", "ln(0) + ln(-1) + ln(2)"},
      {"log(x, x) + log(2, x)", "log(x, x) + log(2, x)"},
      // What is left alone.
      {"Dom(1 + 1)", "Dom(1 + 1)"},
      {"{ y | y > 1 + 1 }", "{ y | y > 1 + 1 }"},
      {"fun y . y + 1 + 1", "fun y: RealSet . y + 1 + 1"},
      {"±(1 + 1) + 2 * 3", "±(1 + 1) + 2 * 3"},
      {"sum_{i = 1}^{2 + 1}(i * (1 + 1))", "sum_{ i = 1 }^{ 3 } (i * 2)"},
  };
  for (const row& r : rows) {
    EXPECT_EQ(shown(solver_numeric_calc_simplify(read(r.term))), r.expected) << r.term;
  }
  EXPECT_EQ(solver_numeric_calc_simplify(nullptr), nullptr);
  EXPECT_FALSE(solver_numeric_calc_eval_rational(nullptr));
}

int sign_of(term_ptr value) {
  const auto view = composed_term_split(value);
  if (view && view->oper == Neg) {
    return -sign_of(view->t1);
  }
  if (view && view->oper == Frac) {
    return sign_of(view->t1) * sign_of(view->t2);
  }
  const auto number = number_literal(value);
  return number ? number->sign() : 1;
}

// The values at all multiples of π / 120 that have one obey the laws that tie them together: up to their sign by
// squares, because nested roots are not multiplied out, and with the signs of the quadrants.
TEST_F(numeric_calc_test, trigonometric_values_fit_together) {
  const solve_data nothing;
  int with_value = 0;
  const auto holds = [&](term_ptr left, term_ptr right) {
    return solver_rootfrac(make_binPred_prop(Eq, left, right), nothing);
  };
  const auto product = [](term_ptr a, term_ptr b) { return make_binOp_term(Mult, a, b); };
  const auto squares = [&](term_ptr left, term_ptr right) { return holds(product(left, left), product(right, right)); };
  for (int k = -120; k <= 360; ++k) {
    const exact angle = exact(k) / exact(120);
    const term_ptr sine = exact_trig_value(Sin, angle);
    const term_ptr cosine = exact_trig_value(Cos, angle);
    ASSERT_EQ(sine == nullptr, cosine == nullptr) << k;
    if (sine == nullptr) {
      continue;
    }
    ++with_value;
    const int around = (k + 240) % 240;
    EXPECT_EQ(sign_of(sine), around % 120 == 0 ? 0 : around < 120 ? 1 : -1) << k;
    EXPECT_EQ(sign_of(cosine), around % 120 == 60 ? 0 : around < 60 || around > 180 ? 1 : -1) << k;
    EXPECT_TRUE(holds(make_binOp_term(Plus, product(sine, sine), product(cosine, cosine)), mk_integer(1))) << k;
    if (const term_ptr twice = exact_trig_value(Sin, exact(2) * angle)) {
      EXPECT_TRUE(squares(twice, product(mk_integer(2), product(sine, cosine)))) << k;
    }
    for (const auto& [op, above, below] :
         {std::tuple(Tan, sine, cosine), std::tuple(Cot, cosine, sine), std::tuple(Sec, mk_integer(1), cosine),
          std::tuple(Csc, mk_integer(1), sine)}) {
      const term_ptr value = exact_trig_value(op, angle);
      EXPECT_EQ(value == nullptr, is_integer(below, 0)) << k;
      EXPECT_TRUE(value == nullptr || squares(product(value, below), above)) << k;
      EXPECT_TRUE(value == nullptr || sign_of(value) == sign_of(above) * sign_of(below)) << k;
    }
  }
  EXPECT_EQ(with_value, 97);
}

TEST_F(numeric_calc_test, magnitudes) {
  expect(solver_numeric_calc, true,
         {{{}, "|2 * π * x * y| = 2 * π * |x * y|"},
          {{}, "|x^3| = x^2 * |x|"},
          {{}, "|1 / x| = 1 / |x|"},
          {{}, "|-x / cbrt(y)| = |x| / cbrt(|y|)"},
          {{"x > 0"}, "|x * y| = x * |y|"}});
  expect(solver_numeric_calc, false,
         {{{}, "|x * y| = x * |y|"}, {{}, "|x^3| = x^3"}, {{}, "|x + y| = |x| + |y|"}, {{}, "|-x| = x"}});
}

// Laws of functions, and statements like them that are false or have another value at each place.
TEST_F(numeric_calc_test, functions_as_powers) {
  expect(solver_numeric_calc, true,
         {{{}, "f(sin(x)^2 + cos(x)^2) = f(1)"},
          {{}, "sin(3 * x) = 3 * sin(x) - 4 * sin(x)^3"},
          {{}, "tan(x + y) * (1 - tan(x) * tan(y)) = tan(x) + tan(y)"},
          {{}, "sin(x + 5 * π / 2) = cos(x)"},
          {{}, "sec(x)^2 - tan(x)^2 = csc(x)^2 - cot(x)^2"},
          {{}, "cos(20) = cos(6 * π - 20)"},
          {{}, "cos(π / 9) * cos(2 * π / 9) * cos(4 * π / 9) = 1 / 8"},
          {{}, "sin(13 * π / 24) = cos(π / 24)"},
          {{}, "tan(7 * π / 24) = cot(5 * π / 24)"},
          {{}, "sqrtn(7, cos(2 * x) - 2 * cos(x)^2) = -1"},
          {{}, "sin(2 * arctan(x)) = 2 * x / (1 + x^2)"},
          {{}, "arctanh(x) = ln((1 + x) / (1 - x)) / 2"},
          {{}, "cosh(x)^2 - sinh(x)^2 = 1"},
          {{}, "tanh(x) = (e^(2 * x) - 1) / (e^(2 * x) + 1)"},
          {{}, "(e^x)^y = e^(x * y)"},
          {{}, "2^(x / ln(2)) = e^x"},
          {{}, "e^(3 * ln(x) + a) = x^3 * e^a"},
          {{"x > 0"}, "(x^a)^b = x^(a * b)"},
          {{}, "ln(e^(x + y)) = x + y"}});
  expect(
      solver_numeric_calc, false,
      {{{}, "cos(x / 2)^2 = (1 - cos(x)) / 2"},
       {{}, "sin(x + 3 * π / 2) = cos(x)"},
       {{}, "|sec(x)| = sec(x)"},
       {{}, "cos(π / 7) + cos(2 * π / 7) + cos(3 * π / 7) = 1 / 2"},
       {{}, "cos(23 * π / 24) = cos(π / 24)"},
       // An odd root of what turns out to be -1, and e^(i * π / 7).
       {{}, "sqrtn(7, cos(2) - 2 * cos(1)^2) + 1 / sqrtn(7, cos(2) - 2 * cos(1)^2) = 2 * cos(π / 7)"},
       {{}, "((cos(y) - 2 * cos(y / 2)^2)^2)^(1/7) + 1 / ((cos(y) - 2 * cos(y / 2)^2)^2)^(1/7) = 2 * cos(2 * π / 7)"},
       {{}, "sqrtn(7, ln(2) - ln(2 * e)) + 1 / sqrtn(7, ln(2) - ln(2 * e)) = 2 * cos(π / 7)"},
       {{}, "sin(arccos(x)) = -sqrt(1 - x^2)"},
       {{}, "arccos(cos(x)) = x"},
       {{}, "cosh(arccoth(x)) = x / sqrt(x^2 - 1)"},
       {{}, "tanh(x) = (e^x - 1) / (e^x + 1)"},
       {{}, "e^(ln(x) * ln(y)) = x * y"},
       {{}, "(x^2)^a = x^(2 * a)"},
       {{}, "cos(±x)^2 + sin(±x)^2 = 1"},
       {{}, "sum_{k = 1}^{n}(sin(k)^2) = sum_{k = 1}^{n}(cos(k)^2)"},
       {{}, "(sin(x)^2 + cos(x)^2)' = (1)'"},
       {{}, "sin(∞)^2 + cos(∞)^2 = 1"}});
}

TEST_F(numeric_calc_test, bounds_and_angles) {
  expect(solver_numeric_calc, true,
         {{{}, "sqrt(2) + sqrt(3) > 3"},
          {{}, "2^(1/2) < 3^(1/3)"},
          {{}, "e^(π) > π^(e)"},
          {{}, "cbrt(-7) > -2"},
          {{}, "sin(10000) ≠ cos(10000)"},
          {{}, "log(2, 3) ≥ lg(38)"},
          {{}, "arccot(-1) = 3 * π / 4"},
          {{}, "arcsin(-1) = -π / 2"},
          {{}, "arccos(cos(20)) = 20 - 6 * π"},
          {{}, "arctan(1) + arctan(2) + arctan(3) = π"}});
  expect(solver_numeric_calc, false,
         {{{}, "sqrt(2) * sqrt(2) ≠ 2"},
          {{}, "sqrt(-1) ≠ 0"},
          {{}, "1 / 0 > 0"},
          {{}, "tan(π / 2) > 0"},
          {{}, "(-8)^(1/3) ≠ 1"},
          {{}, "0^0 > 0"},
          {{}, "arcsin(2) > 0"},
          {{}, "log(1, 5) > 0"},
          {{}, "|±1| > 0"},
          {{}, "1 + 2 + ... + 5 > 3"},
          {{}, "x^2 > -1"},
          {{}, "arccos(cos(20)) = 20"},
          {{}, "arccot(-1) = -π / 4"},
          {{}, "arcsin(-1) = 3 * π / 2"},
          {{}, "arctan(-1) = 3 * π / 4"}});
}

}  // namespace
}  // namespace vetro
