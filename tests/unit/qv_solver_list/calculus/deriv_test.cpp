// Derivatives at a point: what is computed, and where a formula of derivatives tells nothing.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "qv_solver_list/solvers.h"
#include "support/solver_fixture.h"

namespace vetro {
namespace {

class deriv_test : public solver_test {};

TEST_F(deriv_test, answers) {
  struct row {
    std::vector<std::string> assumptions;
    std::string target;
    bool proved;
  };
  const std::vector<row> rows = {
      {{}, "FunDeri(fun x . x^2, 1, 1, 2) = 4", true},
      {{}, "4 = FunDeri(fun x . x^2, 1, 1, 2)", true},
      {{}, "FunDeri(fun x . x^2 * sin(x), 1, 1, t) = 2 * t * sin(t) + t^2 * cos(t)", true},
      {{}, "FunDeri(fun x . ln(Abs(x)), 1, 1, t) = 1 / t", true},
      {{}, "FunDeri(fun x . x^x, 1, 1, t) = t^t * (ln(t) + 1)", true},
      {{}, "FunDeri(fun x . sqrt(x), 1, 1, t) = 1 / (2 * t^(1/2))", true},
      {{}, "FunDeri(fun x . x^3, 1, 2, t) = 6 * t", true},
      {{}, "FunDeri(fun x . x^3, 1, 1000000000, t) = 0", true},
      {{}, "FunDeri(fun x, y . x^2 * y^3, 2, 1, a, b) = 3 * a^2 * b^2", true},
      {{}, "FunDeri(FunDeri(fun x, y . x^2 * y^3, 1, 1), 2, 1, a, b) = 6 * a * b^2", true},
      {{}, "FunDeri(fun x . FunDeri(g, 1, 1, x^2), 1, 1, t) = FunDeri(g, 1, 2, t^2) * (2 * t)", true},
      {{}, "FunDeri(fun x . x^2, 1, 1, y + z) = 2 * (y + z)", true},
      {{}, "FunDeri(fun x . x * y, 1, 1, y) = y", true},
      {{}, "FunDeri(fun x . x^2, 1, 1, 1) = 2 ∧ FunDeri(fun x . x^3, 1, 1, 1) = 3", true},
      {{}, "FunDeri(fun x . x^2, 1, 1, 1) = 2 ∧ FunDeri(fun x . x^3, 1, 1, 1) = 2", false},
      {{}, "FunDeri(fun x . x^2, 1, 1, 2) = 5", false},
      {{}, "FunDeri(fun x . x^2, 1, 1, 2) ≤ 4", false},
      {{}, "FunDeri(fun n : IntegerSet . n^2, 1, 1, t) = 2 * t", true},
      {{}, "FunDeri(fun x . x * f(fun x . x + 1), 1, 1, 5) = f(fun x . x + 1)", true},
      {{}, "FunDeri(fun x . x^2, 1, 1, 2) = FunDeri(fun x . 4 * x, 1, 1, 7)", true},
      // Functions by definition, also under premises that hold around the point.
      {{"f = fun x . x^2 + 1"}, "FunDeri(f, 1, 1, t) = 2 * t", true},
      {{"forall (x)(y), g(x, y) = x * y^2"}, "FunDeri(FunDeri(g, 2, 1), 1, 1, a, b) = 2 * b", true},
      {{"forall (x)(y), g(x, y) = x * y^2"}, "FunDeri(g(a), 1, 1, b) = 2 * a * b", true},
      {{"forall (x), x > 0 ⇒ f(x) = x^2", "t > 0"}, "FunDeri(f, 1, 1, t) = 2 * t", true},
      {{"forall (x), x ≥ 0 ⇒ f(x) = x^2"}, "FunDeri(f, 1, 1, 0) = 0", false},
      {{"forall (x), x ≥ 0 ⇒ f(x) = x^2"}, "t > 0 ⇒ FunDeri(f, 1, 1, t) = 2 * t", true},
      {{"forall (x), x ≥ 0 ⇒ f(x) = x^2"}, "t ≥ 0 ⇒ FunDeri(f, 1, 1, t) = 2 * t", false},
      {{"f(2) = 3"}, "FunDeri(f, 1, 1, 2) = 0", false},
      {{}, "FunDeri(f, 1, 1, 2) = 0", false},
      // Cases: the one that holds around the point.
      {{}, "FunDeri(fun x . cases{ x^2 if x > 0; otherwise 0 }, 1, 1, 3) = 6", true},
      {{}, "FunDeri(fun x . cases{ x^2 if x > 0; otherwise 0 }, 1, 1, -1 / 2) = 0", true},
      {{}, "FunDeri(fun x . cases{ x^2 if x ≥ 0; otherwise 0 }, 1, 1, 0) = 0", false},
      {{}, "FunDeri(fun x . cases{ x^2 if x > 0; otherwise 0 }, 1, 1, t) = 2 * t", false},
      {{}, "FunDeri(fun x [x > 0] . x^2, 1, 1, 3) = 6", true},
      {{}, "FunDeri(fun x [x > 0] . x^2, 1, 1, 0) = 0", false},
      {{}, "FunDeri(fun x [x > 0] . x^2, 1, 1, -1) = -2", false},
      // Bad places.
      {{}, "FunDeri(fun x . x^2, 0, 1, 2) = 4", false},
      {{}, "FunDeri(fun x . x^2, 2, 1, 2) = 4", false},
      {{}, "FunDeri(fun x . x^2, 1, 0, 2) = 4", false},
      {{}, "FunDeri(fun x . x^2, 1, 1, 2, 3) = 4", false},
      {{}, "FunDeri(fun x, y . x^2, 1, 1, 2) = 4", false},
      {{}, "FunDeri(fun x, x . x^2, 1, 1, 2, 2) = 4", false},
      {{}, "FunDeri(fun x . sin(x) * e^x, 1, 1000000000, 0) = 0", false},
      {{}, "FunDeri({ x | x > 0 }, 1, 1, 2) = 0", false},
      {{}, "FunDeri((fun x . x^2) [@scope x > 0 @], 1, 1, 2) = 4", false},
      {{}, "FunDeri(fun x . x^2, 1, 1, ∞) = 2 * ∞", false},
      {{}, "FunDeri(fun x . x^2, 1, 1, ±1) = 2 * (±1)", false},
      {{}, "FunDeri(fun x . (x, x), 1, 1, 2) = (1, 1)", false},
      {{}, "FunDeri(fun x . Abs(x), 1, 1, 2) = 1", false},
      // Bound names: the value is put in without capture.
      {{}, "FunDeri(fun x . x * sum_{i = 1}^{n}(i), 1, 1, t) = sum_{i = 1}^{n}(i)", true},
      {{}, "FunDeri(fun x . x^2 * a, 1, 1, i) = 2 * i * a", true},
      {{}, "FunDeri(fun x . sum_{i = 1}^{2}(x), 1, 1, t) = 2", false},
      {{}, "FunDeri(fun x . 1 + x + ... + x^9, 1, 1, 0) = 1", false},
      // Where the rules divide by 0.
      {{}, "FunDeri(fun x . cbrt(x^3), 1, 1, 0) = 0", false},
      {{}, "FunDeri(fun x . cbrt(x^3), 1, 1, 0) = 1", false},
      {{}, "FunDeri(fun x . cbrt(x^3), 1, 1, t) = t^2 / cbrt(t^6)", true},
      {{}, "FunDeri(fun x . cbrt(x^3), 1, 1, t - t) = 0", false},
      {{}, "FunDeri(fun x . (x^6)^(1/3), 1, 1, 0) = 0", false},
      {{}, "FunDeri(fun x . sqrt(x^2), 1, 1, 0) = 0", false},
      {{}, "FunDeri(fun x . cbrt(x^3 + a), 1, 1, 0) = 0", false},
      {{"a > 0"}, "FunDeri(fun x . cbrt(x^3 + a), 1, 1, 0) = 0", true},
      {{}, "FunDeri(fun x . cbrt(x^3 + 1 - cos(x^2)), 1, 1, 0) = 0", false},
      {{}, "FunDeri(fun x . sqrt(x^2 + 1), 1, 1, 0) = 0", true},
      {{}, "FunDeri(fun x . sqrtn(5, (x - 2)^5), 1, 1, 2) = 0", false},
      {{}, "FunDeri(fun x . cbrt(x^3)^2 * cbrt(x^3), 1, 1, 0) = 0", false},
      {{}, "FunDeri(fun x . ln(x), 1, 1, 0) = 1 / 0", false},
      {{}, "FunDeri(fun x . x / (x - x), 1, 1, 1) = 0", false},
      {{}, "FunDeri(fun x . x^(-1), 1, 1, 0) = 0", false},
      {{}, "FunDeri(fun x . tan(x) - tan(x), 1, 1, π / 2) = 0", false},
      {{}, "FunDeri(fun x . csc(x) - csc(x), 1, 1, 0) = 0", false},
      {{}, "FunDeri(fun x . x + 0 * ln(x), 1, 1, 0) = 1", false},
      {{}, "FunDeri(fun x . (1 / x)^0, 1, 1, 0) = 0", false},
      {{}, "FunDeri(fun x . 1 / arctan(x^3), 1, 1, 0) = 0", false},
      {{}, "FunDeri(fun x . 1 / ln(cosh(x^2)), 1, 1, 0) = 0", false},
  };
  for (const row& r : rows) {
    solve_data sdata;
    for (const std::string& assumption : r.assumptions) {
      sdata.assum.push_back(read(assumption));
    }
    EXPECT_EQ(solver_deriv_eqb(read(r.target), sdata), r.proved) << r.target;
  }
}

}  // namespace
}  // namespace vetro
