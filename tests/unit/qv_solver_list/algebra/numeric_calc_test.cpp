// Exact values: what becomes a number, what becomes a root, what stays.
#include "qv_solver_list/algebra/numeric_calc.h"

#include "support/solver_fixture.h"

namespace vetro {
namespace {

class numeric_calc_test : public solver_test {};

TEST_F(numeric_calc_test, Simplifies) {
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

}  // namespace
}  // namespace vetro
