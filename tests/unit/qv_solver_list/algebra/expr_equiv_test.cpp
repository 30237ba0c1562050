// Equality of expressions under a condition: what the condition adds to calculation, and where it must not be used.
#include "qv_solver_list/algebra/expr_equiv.h"

#include <gtest/gtest.h>

#include <array>
#include <string>
#include <vector>

#include "support/solver_fixture.h"
#include "term/term_split_combine.h"

namespace vetro {
namespace {

class expr_equiv_test : public solver_test {
 protected:
  static bool equal(const std::string& sides, const std::string& antecedent,
                    const expr_equiv_config& config = expr_equiv_default_config()) {
    const auto equation = pred_split(read(sides));
    term_ptr condition = antecedent.empty() ? nullptr : read(antecedent);
    return expr_equiv_under_config(equation->left, equation->right, condition, {}, config);
  }
};

TEST_F(expr_equiv_test, answers) {
  struct row {
    std::string sides;
    std::string antecedent;  // empty for none
    bool equal;
  };
  const std::vector<row> rows = {
      {"x^y = e^(y * ln(x))", "x > 0", true},
      {"x^y = e^(y * ln(x))", "0 < x", true},
      {"x^y = e^(y * ln(x))", "p = 1 ∧ 0 < x", true},
      {"(x^y)^2 * z = z * e^(2 * y * ln(x))", "x > 0", true},
      {"f(x^2) = f(e^(ln(x) + ln(x)))", "x > 0", true},
      {"x^(x^2) = e^(e^(2 * ln(x)) * ln(x))", "x > 0", true},
      // The fact is missing, weaker, or about another variable.
      {"x^y = e^(y * ln(x))", "", false},
      {"x^y = e^(y * ln(x))", "x > 0 ∨ p = 1", false},
      {"x^y = e^(y * ln(x))", "x ≥ 0", false},
      {"x^y = e^(y * ln(x))", "(x > 0 [@scope y = 1 @])", false},
      {"(2 * x)^y = e^(y * ln(2 * x))", "x > 0", false},
      {"sum_{x = -1}^{1}(x^2) = sum_{x = -1}^{1}(e^(2 * ln(x)))", "x > 0", false},
      {"(fun x . x^2) = (fun x . e^(2 * ln(x)))", "x > 0", false},
      // Without the condition, as terms or as rational expressions.
      {"(a + b)^2 = a^2 + 2 * a * b + b^2", "", true},
      {"{ x | x > 0 } = { y | y > 0 }", "", true},
      {"sum_{i = 1}^{n}(i) = sum_{j = 1}^{n}(j)", "x > 0", true},
      // Bound variables, scopes and lists are not calculated with.
      {"2 * sum_{i = 1}^{n}(i) = sum_{i = 1}^{n}(i) * 2", "", false},
      {"(x [@scope x > 0 @]) + 1 = 1 + (x [@scope x > 0 @])", "", false},
      {"max(x, 1 + y) = max(x, y + 1)", "", true},
  };
  for (const row& r : rows) {
    EXPECT_EQ(equal(r.sides, r.antecedent), r.equal) << r.sides << " under " << r.antecedent;
  }
}

TEST_F(expr_equiv_test, a_rule_hands_on_to_those_behind_it) {
  const auto rules = expr_equiv_default_config().rules;
  // A row without a function is passed over, and without the last row nothing is calculated.
  const std::array rows = {rules[0], expr_equiv_rule{"none", nullptr}, rules[2]};
  EXPECT_TRUE(equal("x^y = e^(ln(x) * y)", "x > 0", {rows}));
  EXPECT_FALSE(equal("x^y = e^(ln(x) * y)", "x > 0", {std::span(rows).first(2)}));
  const auto equation = pred_split(read("x^y = e^(ln(x) * y)"));
  EXPECT_FALSE(expr_equiv_under_config_from(equation->left, equation->right, read("x > 0"), {}, {rows}, 1));
  EXPECT_FALSE(expr_equiv_under_config(nullptr, equation->right, nullptr, {}));
}

}  // namespace
}  // namespace vetro
