// Both families of signs: what each rule proves and what stays open, sums, depth, shared terms.
#include <chrono>

#include "qv_solver_list/analysis/sign_rules.h"
#include "qv_solver_list/solver_registry.h"
#include "qv_solver_list/solvers.h"
#include "support/solver_fixture.h"
#include "term/term_split_combine.h"

namespace vetro {
namespace {

struct sign_case {
  std::initializer_list<std::string_view> assumed;
  std::string_view goal;
};

class signs : public solver_test {
 protected:
  static void expect(solver_decide solve, bool proved, std::initializer_list<sign_case> cases) {
    for (const sign_case& c : cases) {
      std::string assumed;
      for (const std::string_view text : c.assumed) {
        assumed += std::string(text) + ", ";
      }
      EXPECT_EQ(solve(read(c.goal), given(c.assumed)), proved) << assumed << "|- " << c.goal;
    }
  }
};

TEST_F(signs, FullFamilyProves) {
  expect(solver_sgn, true,
         {{{}, "x^2 + y^2 + 1 > 0"},
          {{}, "|x| ≥ 0"},
          {{}, "e^x > 0"},
          {{}, "x^4 >= 0"},
          {{}, "-x^2 <= 0"},
          {{}, "x^2 + |y| ≥ 0"},
          {{"x > 0"}, "x > 0"},
          {{"x > 0", "y < 0"}, "x * y < 0"},
          {{"x > 0", "y < 0"}, "x / y < 0"},
          {{"x > 0", "y > 0"}, "frac(x, y) > 0"},
          {{"x ≥ 0", "y ≥ 0"}, "x * y ≥ 0"},
          {{"x > 0"}, "x^3 > 0"},
          {{"x < 0"}, "x^3 < 0"},
          {{"x ≠ 0"}, "x^2 > 0"},
          {{"x ≠ 0"}, "|x| > 0"},
          {{"x > 0"}, "x^(-2) ≥ 0"},
          {{"x > 0"}, "sqrtn(2, x) > 0"},
          {{"x ≥ 0"}, "sqrtn(2, x) ≥ 0"},
          {{"x < 0"}, "sqrtn(3, x) < 0"},
          {{"x > 0"}, "x^y > 0"},
          {{}, "π > e"},
          {{}, "π + 1 > 0"},
          {{"x ≥ 0", "y ≥ 0"}, "x + y ≥ 0"},
          {{"x ≥ 0", "y ≥ 0"}, "x + y + 1 > 0"},
          {{"x ≤ 3"}, "3 - x ≥ 0"}});
}

TEST_F(signs, FullFamilyLeavesOpen) {
  expect(solver_sgn, false,
         {{{}, "x > 0"},
          {{}, "|x| > 0"},
          {{}, "x^3 ≥ 0"},
          {{}, "x^2 > 0"},
          {{}, "x^2 + y ≥ 0"},
          {{}, "sqrtn(2, x) ≥ 0"},
          {{}, "0^0 > 0"},
          {{}, "x^(-2) ≥ 0"},
          {{"x ≥ 0"}, "x > 0"},
          {{"x ≥ 0", "y ≥ 0"}, "x - y ≥ 0"},
          {{"x ≥ 0", "y ≥ 0"}, "x * y > 0"},
          {{"x ≠ 0"}, "x^3 > 0"},
          {{"x > 0"}, "y^x > 0"},
          {{}, "π + 1 > e"},
          {{}, "x^2 + 1 > 0 ∧ y^2 ≥ 0"}});
}

TEST_F(signs, PureFamilyProves) {
  expect(solver_sgn_pure, true,
         {{{"x - y > 0"}, "x > y"},
          {{"x > y"}, "x - y > 0"},
          {{"x > y"}, "y < x"},
          {{"x > y"}, "y - x < 0"},
          {{"a + b > c"}, "b - c + a > 0"},
          {{"x = 3"}, "x ≥ 3"},
          {{"x = 3"}, "x ≤ 3"},
          {{"x > 0"}, "x ≠ 0"},
          {{"x ≥ 0", "x ≠ 0"}, "x > 0"},
          {{"x > 0", "y > 0"}, "x + y > 0"},
          {{"x > 0", "y ≥ 0"}, "x + y > 0"},
          {{"x < 0", "y ≤ 0"}, "x + y < 0"},
          {{"x > 0", "y < 0"}, "x - y > 0"},
          {{"x > 0"}, "x + 1 > 0"},
          {{"x ≥ 0", "x ≤ 0"}, "x = 0"},
          {{"x ≠ 0"}, "|x| > 0"},
          {{"x ≠ 0", "y ≠ 0"}, "x * y ≠ 0"},
          {{"x ≠ 0", "y ≠ 0"}, "x / y ≠ 0"},
          {{"x ≠ 0"}, "x^2 > 0"},
          {{"x ≠ 0"}, "x^(-2) ≥ 0"},
          {{}, "x^2 + y^2 ≥ 0"},
          {{}, "x^2 + 1 > 0"},
          {{}, "e^x ≠ 0"},
          {{"x ≠ 0"}, "-x ≠ 0"},
          {{"x > 0"}, "1 / x > 0"},
          {{"x > 0"}, "sqrtn(2, x) ≠ 0"}});
}

}  // namespace
}  // namespace vetro
