// What chains of inequalities prove, with factors, denominators and peeled parts, and what they must not prove.
#include <string>
#include <vector>

#include "number/limits.h"
#include "qv_solver_list/assumption_facts.h"
#include "qv_solver_list/solvers.h"
#include "support/random_relations.h"
#include "support/solver_fixture.h"
#include "term/term_split_combine.h"

namespace vetro {
namespace {

struct question {
  std::vector<std::string> assumptions;
  std::string goal;
};

class squeeze : public solver_test {
 protected:
  static void expect(bool proved, const std::vector<question>& questions) {
    for (const question& asked : questions) {
      solve_data sdata;
      std::string shown;
      for (const std::string& text : asked.assumptions) {
        sdata.assum.push_back(read(text));
        shown += text + "; ";
      }
      EXPECT_EQ(solver_squeeze(read(asked.goal), sdata), proved) << shown << "⊢ " << asked.goal;
    }
  }
};

TEST_F(squeeze, paths) {
  expect(true, {
                   {{"a ≤ b", "b < c"}, "c > a"},
                   {{"a ≤ b ∧ b ≤ c", "c ≤ d"}, "a ≤ d"},
                   {{"a = b", "b = c"}, "c ≤ a"},
                   {{}, "x ≤ x"},
                   {{"a < b", "b ≤ a"}, "a < a"},
                   {{"a ≤ sin(x * y)"}, "a ≤ sin(y * x)"},
                   {{"a ≤ 0", "0 ≤ b"}, "a ≤ b"},
                   {{"a ≤ 0", "0 ≤ b", "p > 0", "p ≤ 0"}, "a < b"},
                   {{"1 ≤ b", "f > 0", "b * f ≤ c"}, "f ≤ c"},
               });
  expect(false, {
                    {{"a = b"}, "a < b"},
                    {{"a < b"}, "b < a"},
                    {{}, "x < x"},
                    {{"a ≤ b ∨ a ≤ c"}, "a ≤ b"},
                    {{"a < b"}, "a ≠ b"},
                    {{"a ≤ x^y"}, "a ≤ y^x"},
                    {{"a ≤ f(x)"}, "a ≤ f(y)"},
                    {{"a ≤ 0", "0 ≤ b"}, "a < b"},
                });
}

TEST_F(squeeze, factors_of_known_sign) {
  expect(true, {
                   {{"a < b", "c > 0"}, "c * a < b * c"},
                   {{"a < b", "c < 0"}, "b * c < a * c"},
                   {{"a < b", "c ≥ 0"}, "a * c ≤ b * c"},
                   {{"a ≤ b", "c ≤ 0"}, "b * c ≤ a * c"},
                   {{"a < b", "c < 0", "d < 0"}, "c * (a * d) < d * c * b"},
                   {{"a ≤ b", "c > 0", "b * c < d"}, "a * c < d"},
                   {{"0 < a", "0 < b"}, "0 < a * b"},
                   {{"a < 0", "b < 0"}, "0 < b * a"},
                   {{"a ≤ b", "c > 0"}, "a * c * c ≤ b * c * c"},
                   {{"a < b", "sin(x) > 0"}, "sin(x) * a < b * sin(x)"},
               });
  expect(false, {
                    {{"a ≤ b"}, "a * c ≤ b * c"},
                    {{"a ≤ b", "c > 0", "d ≤ 0"}, "a * c * d ≤ b * c * d"},
                    {{"a < b", "c ≠ 0"}, "a * c < b * c"},
                    {{"a ≤ b", "x * y > 0"}, "a * x ≤ b * x"},
                    {{"a < b", "f(x * y) > 0"}, "a * f(x) < b * f(x)"},
                });
}

TEST_F(squeeze, denominators_of_known_sign) {
  expect(true, {
                   {{"x / d < y", "d < 0"}, "d * y < x"},
                   {{"a ≤ n / d", "d > 0"}, "a * d ≤ n"},
                   {{"a ≤ n / d", "d < 0", "n ≤ 0"}, "n ≤ a * d"},
                   {{"x ≤ y", "d < 0"}, "y / d ≤ x / d"},
                   {{"a ≤ n / (x * y)", "x * y > 0"}, "a * y * x ≤ n"},
               });
  expect(false, {
                    {{"x / d ≤ y", "d ≥ 0"}, "x ≤ y * d"},
                    {{"x ≤ y", "d ≥ 0"}, "x / d ≤ y / d"},
                    {{"a ≤ b", "0 < a", "0 < b"}, "n / b ≤ n / a"},
                });
}

TEST_F(squeeze, peeling) {
  expect(true, {
                   {{"x ≤ y"}, "x + z ≤ y + z"},
                   {{"x < y"}, "-(z + y) < -(z + x)"},
                   {{"x ≤ y"}, "z - (x - w) ≥ z - (y - w)"},
                   {{"x < y", "c < 0", "d > 0"}, "1 + c * y / d < 1 + c * x / d"},
                   {{"x ≤ y", "c ≤ 0"}, "a - x * c ≤ a - y * c"},
               });
  expect(false, {
                    {{"x ≤ y", "z ≤ w"}, "x + z ≤ y + w"},
                    {{"x < y", "c ≥ 0"}, "a + x * c < a + y * c"},
                    {{"x ≤ y"}, "sin(x) ≤ sin(y)"},
                    {{"x ≤ y"}, "x^2 ≤ y^2"},
                    {{"x ≤ y"}, "|x| ≤ |y|"},
                });
}

TEST_F(squeeze, parts_on_which_calculation_proves_nothing) {
  expect(false, {
                    {{"x = ±1", "±1 ≤ y"}, "x ≤ y"},
                    {{}, "±1 ≤ ±1"},
                    {{"x ≤ y"}, "x + ±1 ≤ y + ±1"},
                    {{"x < y"}, "x + ∞ < y + ∞"},
                    {{"x < ∞", "∞ < y"}, "x < y"},
                    {{"x ≤ y"}, "x + bigO_{t → 0}(t) ≤ y + bigO_{t → 0}(t)"},
                    {{"1 + 2 + ... + n ≤ x", "x ≤ y"}, "1 + 2 + ... + n ≤ y"},
                    {{"z ∈ Complex", "x ≤ y"}, "x + z ≤ y + z"},
                });
  const solve_data plain = given({"a ≤ b", "b ≤ c"});
  solve_data scoped = plain;
  scoped.assum.replace(1, with_scope(scoped.assum[1], read("x > 0")));
  EXPECT_TRUE(solver_squeeze(read("a ≤ c"), plain));
  EXPECT_FALSE(solver_squeeze(read("a ≤ c"), scoped));
}

TEST_F(squeeze, later_layers_add_to_earlier_ones) {
  const solve_data below = given({"a ≤ n / d", "n ≤ m"});
  const term_list more = {read("d > 0"), read("m < k")};
  EXPECT_TRUE(solver_squeeze(read("a * d < k"), with_assumptions(below, more)));
  EXPECT_FALSE(solver_squeeze(read("a * d ≤ n"), below));
}

TEST_F(squeeze, nothing_false_is_proved_of_random_values) {
  int proved = 0;
  for (unsigned seed = 0; seed < 2'000; ++seed) {
    random_relations random(seed);
    solve_data sdata;
    for (int i = 0; i < 4; ++i) {
      sdata.assum.push_back(random.sign());
      sdata.assum.push_back(random.relation(true, 2));
    }
    for (int i = 0; i < 6; ++i) {
      proved += solver_squeeze(random.relation(true, 2), sdata) ? 1 : 0;
      term_ptr goal = random.relation(false, 2);
      ASSERT_FALSE(solver_squeeze(goal, sdata))
          << "seed " << seed << ": " << shown(sdata.assum) << " ⊢ " << shown(goal);
    }
  }
  EXPECT_GT(proved, 100);
}

// ---- Sizes.

TEST_F(squeeze, an_assumption_with_too_many_subterms_ends_it) {
  for (const int summands : {50, 70}) {
    term_ptr sum = numbered("x", 0);
    for (int i = 1; i < summands; ++i) {
      sum = make_binOp_term(Plus, sum, numbered("x", i));
    }
    solve_data sdata = given({"a ≤ b", "b ≤ c"});
    sdata.assum.push_back(make_binPred_prop(Ge, sum, mk_integer(0)));
    const bool fits = 2 * summands <= static_cast<int>(limits::squeeze_subterms);
    EXPECT_EQ(solver_squeeze(read("a ≤ c"), sdata), fits);
  }
}

TEST_F(squeeze, long_chains_and_products_beside_much_else) {
  solve_data sdata;
  term_ptr product = numbered("f", 0);
  for (int i = 0; i < 2'000; ++i) {
    sdata.assum.push_back(make_binPred_prop(Le, numbered("p", i), numbered("p", i + 1)));
    sdata.assum.push_back(make_binPred_prop(Gt, numbered("q", i), mk_integer(0)));
  }
  for (int i = 1; i < 200; ++i) {
    sdata.assum.push_back(make_binPred_prop(Gt, numbered("f", i), mk_integer(0)));
    product = make_binOp_term(Mult, product, numbered("f", i));
  }
  EXPECT_TRUE(solver_squeeze(read("p0 * q5 * q7 ≤ q7 * q5 * p2000"), sdata));
  EXPECT_FALSE(solver_squeeze(read("p0 * q5 < q5 * p2000"), sdata));
  EXPECT_FALSE(solver_squeeze(read("p2000 ≤ p0"), sdata));
  EXPECT_FALSE(solver_squeeze(make_binPred_prop(Le, product, read("p0")), sdata));
}

}  // namespace
}  // namespace vetro
