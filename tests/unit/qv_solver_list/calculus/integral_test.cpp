// Sets of primitives: the shapes of description, each with neighbours that say something else.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "qv_solver_list/solvers.h"
#include "support/solver_fixture.h"

namespace vetro {
namespace {

class integral_test : public solver_test {
 protected:
  static std::string primitives(const std::string& integrand, const std::string& antecedent = "") {
    return "{ F | forall (x), " + under(antecedent) + "FunDeri(F, 1, 1, x) = " + integrand + " }";
  }
  static std::string family(const std::string& formula, const std::string& antecedent = "") {
    return "{ F | exists (C), C ∈ Real ∧ forall (x), " + under(antecedent) + "F(x) = " + formula + " }";
  }
  static bool same(const std::string& left, const std::string& right,
                   std::initializer_list<std::string_view> assumptions = {}) {
    return solver_integral(read(left + " = " + right), given(assumptions));
  }

 private:
  static std::string under(const std::string& antecedent) { return antecedent.empty() ? "" : antecedent + " ⇒ "; }
};

TEST_F(integral_test, closed_forms_without_condition) {
  struct row {
    std::string integrand;
    std::string formula;
    bool same;
  };
  const std::vector<row> rows = {
      {"2 * x", "x^2 + C", true},
      {"2 * x", "C + x^2", true},
      {"2 * x", "x^2 - C", true},
      {"2 * x", "C + (x^2 + 1) - 2 * C", true},
      {"2 * x", "x^2 + C / 2", true},
      {"cos(x) - x * sin(x)", "x * cos(x) + C", true},
      {"x * y", "x^2 * y / 2 + C", true},
      {"f(y)", "f(y) * x + C", true},
      {"FunDeri(f, 1, 2, x)", "FunDeri(f, 1, 1, x) + C", true},
      {"FunDeri(fun t . t^2, 1, 1, x)", "x^2 + C", true},
      {"1 / (2 * (x)^(1/2))", "sqrtn(2, x) + C", true},
      {"1 / (x^2 + 1)^(1/2)", "ln(x + (x^2 + 1)^(1/2)) + C", true},
      {"1 / (1 - x^2)^(1/2)", "arcsin(x) + C", true},
      // Another derivative.
      {"2 * x", "x^2 + x + C", false},
      {"2 * y", "x^2 + C", false},
      // Not all primitives: no constant, a factor that may be 0 or moves, a constant that cancels or is not added.
      {"2 * x", "x^2", false},
      {"2 * x", "x^2 + k * C", false},
      {"2 * x", "x^2 + 0 * C", false},
      {"2 * x", "x^2 + C - C", false},
      {"2 * x", "x^2 + C^2", false},
      {"2 * x", "x^2 + C + C^3", false},
      {"2 * x + C", "x^2 + C * x + C", false},
      {"0", "C * x / x", false},
      // Gaps: the integrand has the same, or a function may jump there.
      {"1 / (1 + x^2)", "arctan(x) + C", true},
      {"0", "arctan(x) + arctan(1/x) + C", false},
      {"0", "(x^2)^(1/2) / x + C", false},
      {"-1 / (1 + x^2)", "arctan(1/x) + C", false},
      {"-(1 / x^2) / (1 + 1 / x^2)", "arctan(1/x) + C", true},
      {"-1 / x^2", "1/x + C", true},
      {"-2 / (2 * x + 2)^2", "1 / (2 * x + 2) + C", true},
      {"-2 / (x + 1)^2", "2 / (x + 1) + C", true},
      {"sec(x)^2", "tan(x) + C", true},
      {"1 / cos(x)^2", "sin(x) / cos(x) + C", false},  // cos^2 + sin^2 = 1 is no calculation
      {"(2 * x) / (x^2 + 1)", "ln(x^2 + 1) + C", true},
      {"-(2 * x) / (x^2 + 1)^2", "1 / (x^2 + 1) + C", true},
      {"0", "arctan(1 / (x - a)) + arctan(x - a) + C", false},
      {"x^n", "x^(n + 1) / (n + 1) + C", true},
      {"x^(-n)", "x^(1 - n) / (1 - n) + C", true},
      {"x^n", "x^(n + 1) / (n + 1) + arctan(x) + arctan(1/x) + C", false},
      {"x^n / (x^(2 * n) + 1) * n / x", "arctan(x^n) + C", true},
      {"(1 - x^2)^(1/2)", "x * (1 - x^2)^(1/2) / 2 + arctan(x / (1 - x^2)^(1/2)) / 2 + C", true},
      {"(x^2)^(1/2)", "x * (x^2)^(1/2) / 2 + x / (x^2)^(1/2) + C", false},
      {"-1 / (x^2 + 2 * x + 1)", "1 / (x + 1) + C", true},
      {"-(2 * x - a - b) / ((x - a)^2 * (x - b)^2)", "1 / (x^2 - (a + b) * x + a * b) + C", true},
      {"-1 / (x^2 * (1 + 1 / x^2)) * ((x + 1) / (x + 1))", "arctan(1 / x) + C", true},
      {"-1 / (1 + x^2) * ((x + 1) / (x + 1))", "arctan(1 / x) + C", false},
      {"0", "arctan(tan(x)) - x + C", false},
      // Logarithms.
      {"1 / x", "ln(Abs(x)) + C", true},
      {"1 / x", "ln(x) + C", false},
      {"tan(x)", "-ln(Abs(cos(x))) + C", false},
      {"sin(x) / cos(x)", "-ln(Abs(cos(x))) + C", true},
      {"ln(Abs(x))", "x * ln(Abs(x)) - x + C", true},
      {"0", "ln(Abs(2 * x)) - ln(Abs(x)) + C", true},
      {"0", "x * e^(-ln(Abs(x))) + C", false},
      {"0", "ln(Abs(2 * x + (x^2)^(1/2))) - ln(Abs(x)) + C", false},
      {"1 / ((x + 1)^(1/2) * x)", "-(ln(Abs(1 + (x + 1)^(1/2))) - ln(Abs(1 - (x + 1)^(1/2)))) + C", true},
      {"10 / 3 * (x^2 + x^3)^(1/2) / ((1 + x) * (3 - x) * (8 - x))",
       "ln(Abs(2 * x + (x^2 + x^3)^(1/2))) - ln(Abs(2 * x - (x^2 + x^3)^(1/2))) - 16 / 9 * (ln(Abs(3 * x + (x^2 + "
       "x^3)^(1/2))) - ln(Abs(3 * x - (x^2 + x^3)^(1/2)))) + C",
       false},
      // No real functions.
      {"2 * x", "x^2 + C + ∞", false},
      {"2 * x * __IMAGINARY_UNIT__", "x^2 * __IMAGINARY_UNIT__ + C", false},
  };
  for (const row& r : rows) {
    EXPECT_EQ(same(primitives(r.integrand), family(r.formula)), r.same) << r.integrand << " and " << r.formula;
    EXPECT_EQ(same(family(r.formula), primitives(r.integrand)), r.same) << r.formula << " and " << r.integrand;
  }
}

TEST_F(integral_test, facts_about_other_names) {
  EXPECT_TRUE(same(primitives("2 * x"), family("x^2 + k * C"), {"k > 0"}));
  EXPECT_TRUE(same(primitives("2 * x"), family("x^2 + k * C"), {"k ≠ 0"}));
  EXPECT_FALSE(same(primitives("2 * x"), family("x^2 + k * C"), {"k ≥ 0"}));
  EXPECT_FALSE(same(primitives("2 * x"), family("x^2 + x * C"), {"x > 0"}));  // another x
  EXPECT_FALSE(same(primitives("1 / x"), family("ln(x) + C"), {"x > 0"}));
  EXPECT_TRUE(same(primitives("0"), family("arctan(1/a) + C")));
}

// The condition must describe an interval, and stand on both sides.
TEST_F(integral_test, conditions) {
  struct row {
    std::string antecedent;
    bool counts;
  };
  const std::vector<row> rows = {
      {"x > 0", true},
      {"0 < x", true},
      {"(x > 0 ∧ x < a)", true},
      {"0 < x < 1", true},
      {"x ∈ (0, 1)", true},
      {"x ∈ (a, ∞)", true},
      {"x ∈ Real", true},
      {"x ∈ RealPlus", true},
      {"¬(x ≤ 0)", true},
      {"a + 2 * x < 3 * x / b", true},
      {"(n ∈ Nat ∧ x > n)", true},
      {"1 - x^2 > 0", true},
      {"x^2 + 1 > 0", true},
      {"x^2 - x + 1 > 0", true},
      {"x^4 - x^3 + 1 > 0", true},
      {"a + b * x^3 > 0", true},
      {"sinh(a + b * x) > 0", true},
      {"cosh(x) > 2", false},
      {"(a + b * x > 0 ∧ c * (a + b * x)^n > 0)", true},
      {"(1 + x^(1/2) > 0 ∧ x > 0)", true},
      {"1 + 2^(1/2) * x + x^2 > 0", true},
      {"1 + 2 * x + x^2 > 0", false},
      {"x = 1", false},
      {"x ≥ 0", false},
      {"x ∈ [0, 1]", false},
      {"x ∈ Nat", false},
      {"x ∈ A", false},
      {"Odd(x)", false},
      {"x ≠ 0", false},
      {"(x < 0 ∨ x > 1)", false},
      {"Abs(x) > 1", false},
      {"x^2 > 1", false},
      {"c * x^2 > 0", false},
      {"sqrtn(2, x^2) > 0", false},
      {"cbrt(x^2) > 1", false},
      {"x^4 - x^3 + x - 1 > 0", false},
      {"c * x^n > 0", false},
      {"x * (x - 1) > 0", false},
      {"1 / x > 1 - 1", false},
      {"f(x) > 0", false},
      {"(x > 0 [@scope x = 1 @])", false},
  };
  for (const row& r : rows) {
    EXPECT_EQ(same(primitives("2 * x", r.antecedent), family("x^2 + C", r.antecedent)), r.counts) << r.antecedent;
    // With all primitives on both sides, any condition will do.
    EXPECT_TRUE(same(primitives("2 * x", r.antecedent), primitives("x + x", r.antecedent))) << r.antecedent;
  }
  EXPECT_TRUE(same(primitives("1 / x", "x > 0"), family("ln(x) + C", "x > 0")));
  EXPECT_TRUE(same(primitives("1 / x", "x ∈ (0, 1)"), family("ln(x) + C", "x ∈ (0, 1)")));
  EXPECT_FALSE(same(primitives("1 / x", "x ∈ (-1, 1)"), family("ln(x) + C", "x ∈ (-1, 1)")));
  EXPECT_TRUE(same(primitives("-1 / (1 + x^2)", "x > 0"), family("arctan(1 / x) + C", "x > 0")));
  EXPECT_TRUE(same(primitives("x^(1/2) * ln(x) + x^(-1/2)", "x > 0"),
                   family("2/3 * x^(3/2) * ln(x) - 4/9 * x^(3/2) + 2 * e^(ln(x) / 2) + C", "x > 0")));
  EXPECT_FALSE(same(primitives("1 / x", "x > 0"), family("ln(x) + C", "x > 1")));
  EXPECT_FALSE(same(primitives("1 / x", "x > 0"), family("ln(x) + C")));
  EXPECT_FALSE(same(primitives("2 * x"), family("x^2 + C", "x > 0")));
  EXPECT_FALSE(same(primitives("1 / x", "x < 0"), family("ln(x) + C", "x < 0")));
  // A condition on the functions themselves is none on the variable.
  EXPECT_FALSE(same(primitives("2 * x", "F(0) > 0"), primitives("x + x", "F(0) > 0")));
  EXPECT_FALSE(same(primitives("2 * x", "C > 0"), family("x^2 + C", "C > 0")));
}

TEST_F(integral_test, descriptions) {
  struct row {
    std::string set;
    bool same;  // as the primitives of 2 * x
  };
  const std::vector<row> rows = {
      {"{ G | forall (t), 2 * t = FunDeri(G, 1, 1, t) }", true},
      {"{ G | exists (D), D ∈ Real ∧ forall (t), t^2 + D = G(t) }", true},
      {"{ G | exists (D), D ∈ Real ∧ (exists (C), C ∈ Real ∧ forall (t), G(t) = t^2 + D - 3 * C) }", true},
      {"{ F | forall (x), F(x) = x^2 }", false},
      // Conjuncts that leave members out.
      {"{ F | F(0) = 1, (forall (x), FunDeri(F, 1, 1, x) = 2 * x) }", false},
      {"{ F | forall (x), FunDeri(F, 1, 1, x) = 2 * x ∧ F(0) = 1 }", false},
      {"{ F | forall (x), FunDeri(F, 1, 1, x) = 2 * x ∧ FunDeri(F, 1, 1, x) = x }", false},
      {"{ F | exists (C), C ∈ Real ∧ forall (x), F(x) = x^2 + C ∧ F(x) = x^2 + C }", false},
      {"{ F | exists (C), C ∈ Real ∧ forall (x), F(x) = x^2 + C ∧ FunDeri(F, 1, 1, x) = x }", false},
      {"{ F | exists (C), C ∈ RealPlus ∧ forall (x), F(x) = x^2 + C }", false},
      {"{ F | exists (C), forall (x), F(x) = x^2 + C }", false},
      {"{ F | exists (C ∈ Real), forall (x), F(x) = x^2 + C }", false},
      {"{ F | (exists (C), C ∈ Real) ∧ (forall (x), F(x) = x^2 + C) }", false},
      {"{ F | C ∈ Real, (forall (x), F(x) = x^2 + C) }", false},
      {"{ F | forall (x), exists (C), C ∈ Real ∧ F(x) = x^2 + C }", false},
      {"{ F | existsUnique (C), C ∈ Real ∧ forall (x), F(x) = x^2 + C }", false},
      {"{ F | exists (C), C ∈ Real ∧ forall (x)(y), F(x) = x^2 + C }", false},
      {"{ F | exists (C), C ∈ Real ∧ forall (x ∈ A), F(x) = x^2 + C }", false},
      {"{ F | exists (C), C ∈ Real ∧ forall (x), F(2 * x) = 4 * x^2 + C }", false},
      {"{ F | exists (C), C ∈ Real ∧ forall (x), F(x) = FunDeri(F, 1, 1, x) / 2 * x + C }", false},
      {"{ F | forall (x), FunDeri(F, 1, 2, x) = 2 * x }", false},
      {"{ F | forall (x), FunDeri(F, 2, 1, x) = 2 * x }", false},
      {"{ F | forall (x), FunDeri(F, 1, 1, y) = 2 * x }", false},
      {"{ F | forall (x), FunDeri(F, 1, 1, x) = 2 * x + 0 * F(x) }", false},
      {"{ F | forall (x), FunDeri(F, 1, 1, x) ≥ 2 * x }", false},
      {"{ F_1 | forall (x), FunDeri(F_1, 1, 1, x) = 2 * x }", false},
      {"{ (F, G) | forall (x), FunDeri(F, 1, 1, x) = 2 * x }", false},
      // A space of functions with all reals as values says nothing more.
      {"{ F | F : Real → Real, (forall (x), FunDeri(F, 1, 1, x) = 2 * x) }", true},
      {"{ F | F : Real → Integer, (forall (x), FunDeri(F, 1, 1, x) = 2 * x) }", false},
      {"{ F | F ∈ A, (forall (x), FunDeri(F, 1, 1, x) = 2 * x) }", false},
      // Helper functions.
      {"{ F | exists (G)(H), forall (x), FunDeri(G, 1, 1, x) = x ∧ FunDeri(H, 1, 1, x) = x ∧ F(x) = G(x) + H(x) }",
       true},
      {"{ F | exists (G), forall (x), FunDeri(G, 1, 1, x) = x ∧ F(x) = 2 * G(x) }", true},
      {"{ F | exists (G), forall (x), G(x) = F(x) ∧ FunDeri(G, 1, 1, x) = 2 * x }", true},
      {"{ F | exists (H), forall (x), FunDeri(H_1, 1, 1, x) = x ∧ FunDeri(H_2, 1, 1, x) = x ∧ F(x) = H_1(x) + H_2(x) }",
       true},
      {"{ F | exists (H), forall (x), FunDeri(H_n, 1, 1, x) = 2 * x ∧ F(x) = H_n(x) }", false},
      {"{ F | exists (H), forall (x), FunDeri(H_1, 1, 1, x) = x ∧ FunDeri(H, 1, 1, x) = x ∧ F(x) = H_1(x) + H(x) }",
       false},
      {"{ F | exists (G)(H), forall (x), FunDeri(G, 1, 1, x) = 2 * x ∧ H(x) = G(x) + 1 ∧ F(x) = H(x) }", true},
      {"{ F | exists (G)(H), forall (x), FunDeri(G, 1, 1, x) = 2 * x ∧ H(x) = G(x) + 1 ∧ F(x) = x^2 + G(x) - H(x) }",
       false},
      {"{ F | exists (G)(H), forall (x), FunDeri(G, 1, 1, x) = 2 * x ∧ FunDeri(H, 1, 1, x) = sgn(x) ∧ F(x) = G(x) }",
       false},
      {"{ F | exists (G)(H), forall (x), FunDeri(G, 1, 1, x) = 2 * x ∧ H(x) = x ∧ F(x) = G(x) }", false},
      {"{ F | exists (G)(H), forall (x), G(x) = H(x) ∧ H(x) = G(x) ∧ F(x) = G(x) + x^2 }", false},
      {"{ F | exists (G), forall (x), FunDeri(G, 1, 1, x) = 2 ∧ F(x) = x * G(x) }", false},
      {"{ F | exists (G), forall (x), FunDeri(G, 1, 1, x) = 2 * x ∧ F(x) = G(x) - G(0) }", false},
      {"{ F | exists (G), forall (x), FunDeri(G, 1, 1, a, x) = 2 * x ∧ F(x) = G(a, x) }", false},
      {"{ F | exists (G)(H), forall (x), FunDeri(G, 1, 1, x) = 1 / x ∧ FunDeri(H, 1, 1, x) = 2 * x - 1 / x ∧ F(x) = "
       "G(x) + H(x) }",
       false},
      {"{ F | exists (G)(H), forall (x), FunDeri(G, 1, 1, x) = ln(Abs(x)) ∧ FunDeri(H, 1, 1, x) = 2 * x - ln(Abs(x)) ∧ "
       "F(x) = G(x) + H(x) }",
       false},
      {"{ F | exists (G)(H), forall (x), FunDeri(G, 1, 1, x) = sgn(x) ∧ FunDeri(H, 1, 1, x) = 2 * x - sgn(x) ∧ F(x) = "
       "G(x) + H(x) }",
       false},
  };
  for (const row& r : rows) {
    EXPECT_EQ(same(primitives("2 * x"), r.set), r.same) << r.set;
  }
}

TEST_F(integral_test, helpers_under_conditions_and_unknown_functions) {
  const std::string sum =
      "{ F | exists (G)(H), forall (x), FunDeri(G, 1, 1, x) = f(x) ∧ FunDeri(H, 1, 1, x) = g(x) ∧ F(x) = G(x) + 3 * "
      "H(x) }";
  EXPECT_TRUE(same(sum, primitives("f(x) + 3 * g(x)")));
  EXPECT_FALSE(same(sum, primitives("f(x) + g(x)")));
  const std::string logarithm =
      "{ F | exists (G), forall (x), x > 0 ⇒ (FunDeri(G, 1, 1, x) = 1 / x ∧ F(x) = G(x) + x) }";
  EXPECT_TRUE(same(logarithm, primitives("1 / x + 1", "x > 0")));
  EXPECT_TRUE(same(logarithm, family("ln(x) + x + C", "x > 0")));
  EXPECT_FALSE(same(logarithm, primitives("1 / x + 1")));
  // A member is determined beyond the condition, or a helper restricted there.
  EXPECT_FALSE(
      same("{ F | exists (C), C ∈ Real ∧ (exists (G), forall (x), (x > 0 ⇒ FunDeri(G, 1, 1, x) = x) ∧ F(x) = 0 * G(x) "
           "+ x^2 + C) }",
           primitives("2 * x", "x > 0")));
  EXPECT_FALSE(same("{ F | exists (G), forall (x), FunDeri(G, 1, 1, x) = 1 / x ∧ (x > 0 ⇒ F(x) = G(x)) }",
                    primitives("1 / x", "x > 0")));
  // The same further membership on both sides.
  EXPECT_TRUE(same("{ F | F ∈ A, (forall (x), FunDeri(F, 1, 1, x) = 2 * x) }",
                   "{ F | F ∈ A, (exists (C), C ∈ Real ∧ forall (x), F(x) = x^2 + C) }"));
  EXPECT_FALSE(same("{ F | F ∈ A, (forall (x), FunDeri(F, 1, 1, x) = 2 * x) }",
                    "{ F | F ∈ B, (exists (C), C ∈ Real ∧ forall (x), F(x) = x^2 + C) }"));
}

}  // namespace
}  // namespace vetro
