// What bounds prove, what they must not prove, and that endless tightening ends.
#include <string>
#include <vector>

#include "qv_solver_list/assumption_facts.h"
#include "qv_solver_list/solver_list.h"
#include "qv_solver_list/solver_preprocess.h"
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

class interval_solver : public solver_test {
 protected:
  static bool proves(const question& asked) {
    solve_data given_data;
    for (const std::string& text : asked.assumptions) {
      given_data.assum.push_back(read(text));
    }
    solve_data enriched;
    EXPECT_TRUE(solver_preprocess_build_augmented_sdata(given_data, enriched));
    return solver_interval(read(asked.goal), enriched);
  }

  static void expect(bool proved, const std::vector<question>& questions) {
    for (const question& asked : questions) {
      std::string shown;
      for (const std::string& text : asked.assumptions) {
        shown += text + "; ";
      }
      EXPECT_EQ(proves(asked), proved) << shown << "⊢ " << asked.goal;
    }
  }
};

TEST_F(interval_solver, estimates) {
  expect(true, {
                   {{}, "e^7 > 1096"},
                   {{}, "9223372036854775807 < 9223372036854775808"},
                   {{}, "3.14159265358979323846 < 3.1416"},
                   {{"x > 2"}, "0 < 1 < x"},
                   {{"x > 3"}, "x ≠ 3"},
                   {{"x > 3"}, "¬(x = 1)"},
                   {{"¬(x ≤ 3)"}, "x > 3"},
                   {{"x = y + 1", "y ∈ [1, 2]"}, "x ∈ [2, 3]"},
                   {{"sin(x) > 1 / 2"}, "2 * sin(x) + 1 > 2"},
                   {{"f(x + y) < 3"}, "f(x + y) ≠ 3"},
                   {{"x / y ≥ 0", "y ≥ 1"}, "x ≥ 0"},
                   {{"x^2 + 1 ≤ y"}, "y ≥ 1"},
                   {{}, "(x + y) * (y + x) + 1 > 0"},
                   {{"x = -0.1234567891", "y = x^3"}, "y < 0"},
                   {{"lim_{x → 0}(f(x)) > 2"}, "lim_{t → 0}(f(t)) > 1"},
                   {{"|z| > 2", "z ∈ Complex"}, "|z| > 1"},
                   {{"x < y", "y < ∞"}, "x < y"},
               });
}

TEST_F(interval_solver, near_misses) {
  expect(false, {
                    {{}, "x > 0"},
                    {{"x > 0"}, "x > 0 ∧ x > 1"},
                    {{"x ≥ 3"}, "x ≠ 3"},
                    {{"¬(x = 1)", "x ≥ 1"}, "x > 1"},
                    {{}, "x < x"},
                    {{}, "e^7 > 2000"},
                    {{"x = -0.1234567891", "y = x^3"}, "y > 1"},
                    {{"x > 1 ∨ x > 2"}, "x > 1"},
                    {{"f(x) > 1"}, "f(y) > 1"},
                    {{"x - x > 1 / y"}, "y < 1 / 2"},
                    {{"a_1 < a_2 < ... < a_n"}, "a_1 < a_n"},
                });
}

TEST_F(interval_solver, an_expression_without_a_value_says_nothing) {
  expect(true, {
                   {{"x = x"}, "x = x"},
                   {{"y < 0"}, "1 / y = 1 / y"},
                   {{"x ∈ [0, 5]", "x^0 > 1 / 2"}, "x > 0"},
                   {{"sin(1) > 0"}, "sin(1) = sin(1)"},
               });
  expect(false, {
                    {{}, "1 / y = 1 / y"},
                    {{}, "x^0 = 1"},
                    {{"x > 0"}, "x^(1 / 2) > 0"},
                    {{}, "1 / 0 = 1 / 0"},
                    {{}, "sin(1) = sin(1)"},
                    {{"sqrtn(2, -1) > 0"}, "sqrtn(2, -1) > 1"},
                });
}

TEST_F(interval_solver, contradictory_bounds_prove_anything) {
  for (const std::string goal : {"forall (y), y > x", "A ⊆ B ∨ x = 1", "x = 7"}) {
    expect(true, {{{"x > 1", "x < 0"}, goal}, {{"x < x"}, goal}, {{"a < b < c", "c < 3", "a > 3"}, goal}});
    expect(false, {{{"x > 1", "x < 2"}, goal}});
  }
  EXPECT_TRUE(solver_interval(nullptr, given({"x > 1", "x < 0"})));
  EXPECT_FALSE(solver_interval(nullptr, given({})));
}

// Different writings of one polynomial are one expression, whichever the solver meets first.
TEST_F(interval_solver, writings_of_one_expression) {
  expect(true, {
                   {{"x + y > 2"}, "y + x > 1"},
                   {{"2 * x < 3"}, "x + x < 4"},
                   {{"(x + 1)^2 < 5"}, "x^2 + 2 * x + 1 < 6"},
                   {{"1 / (a + b) > 2", "a + b > 0"}, "1 / (b + a) > 1"},
                   {{"0 < x < 1", "x - x^2 < 5"}, "x * (1 - x) > 0"},
                   {{"x / 2 > 1"}, "0.5 * x > 1"},
                   {{}, "x - x = 0"},
                   {{}, "(x + y)^2 = x^2 + 2 * x * y + y^2"},
               });
  expect(false, {
                    {{"x^2 > 1"}, "x^3 > 1 / 2"},
                    {{}, "1 / x - 1 / x = 0"},
                });
  std::string product = "(a1 + b1)";
  std::string turned = "(b1 + a1)";
  for (int i = 2; i <= 30; ++i) {
    const std::string n = std::to_string(i);
    product += " * (a" + n + " + b" + n + ")";
    turned = "(b" + n + " + a" + n + ") * (" + turned + ")";
  }
  expect(true, {{{product + " > 2"}, product + " > 1"}});
  expect(false, {{{product + " > 2"}, turned + " < 1"}});
}

TEST_F(interval_solver, values_that_are_no_real_numbers_have_no_bounds) {
  expect(false, {
                    {{"x > ±1"}, "x > ±1"},
                    {{"1 + 2 + ... + n > 5"}, "1 + 2 + ... + n > 4"},
                    {{"z ∈ Complex"}, "z^2 + 1 > 0"},
                    {{"z + __IMAGINARY_UNIT__ = 2"}, "z^2 > -1"},
                    {{"z = 1 + __IMAGINARY_UNIT__", "w = z^2"}, "w^2 ≥ 0"},
                    {{"x < Infty"}, "x < 3"},
                });
}

TEST_F(interval_solver, infinities_are_points) {
  expect(true, {
                   {{"x < +∞"}, "x ≠ +∞"},
                   {{"x = +∞", "y = x + 1"}, "y = +∞"},
                   {{"x = +∞"}, "1 / x = 0"},
                   {{"b ≥ 1", "a / b = 0"}, "a = 0"},
                   {{"b ∈ [1, +∞)", "a / b = 0", "x = +∞"}, "a = 0"},
               });
  expect(false, {
                    {{"x = +∞", "0 < y < 5"}, "x + y < 0"},
                    {{"x = +∞", "z = x * y", "1 < y < 2"}, "z < 0"},
                    {{"x = +∞", "y = +∞"}, "x - y = 0"},
                    {{"x = +∞", "a / x = 0"}, "a = 0"},
                    {{"x = +∞", "z = a * x", "z = +∞"}, "a = 0"},
                    {{"x = +∞", "y = x + 1"}, "y > x"},
                    {{"b ≥ 1", "a / b = 0", "b = +∞"}, "a = 0"},
                    {{"b ∈ [1, +∞]", "a / b = 0"}, "a = 0"},
                    {{"b ≥ 1", "a / b = 0", "a = 1"}, "¬(b = +∞)"},
                    {{"b ≥ 1", "a * b = +∞", "b = +∞"}, "a = +∞"},
                    {{"a ≥ 1", "a / b = +∞", "a = +∞"}, "b ≤ 1"},
                });
}

TEST_F(interval_solver, scopes_are_left_alone) {
  const solve_data plain = given({"x > 2"});
  term_ptr scoped = with_scope(plain.assum[0], read("x < 0"));
  solve_data sdata;
  sdata.assum = {scoped};
  EXPECT_FALSE(solver_interval(read("x > 1"), sdata));
  EXPECT_FALSE(solver_interval(scoped, plain));
}

TEST_F(interval_solver, layers_of_assumptions) {
  const solve_data below = given({"z > 1", "x ∈ (0, 1)"});
  const auto proves_with = [&](std::string_view more, std::string_view goal) {
    const term_list added = {read(more)};
    return solver_interval(read(goal), with_assumptions(below, added));
  };
  EXPECT_TRUE(proves_with("y > x + 1", "y > 1"));
  EXPECT_TRUE(proves_with("x > 1", "A = B"));
  EXPECT_TRUE(proves_with("y > x > 1", "A = B"));
  EXPECT_TRUE(proves_with("y > 1", "z > 0"));
  EXPECT_FALSE(proves_with("z ∈ Complex", "z > 0"));
  EXPECT_FALSE(solver_interval(read("y > 1"), below));
}

// ---- What holds for some values is never refuted.

TEST_F(interval_solver, nothing_false_is_proved_of_random_values) {
  for (unsigned seed = 0; seed < 1'500; ++seed) {
    random_relations random(seed);
    solve_data sdata;
    for (int i = 0; i < 6; ++i) {
      sdata.assum.push_back(random.relation(true));
    }
    for (int i = 0; i < 6; ++i) {
      term_ptr goal = random.relation(false);
      ASSERT_FALSE(solver_interval(goal, sdata))
          << "seed " << seed << ": " << shown(sdata.assum) << " ⊢ " << shown(goal);
    }
  }
}

// ---- Budgets.

TEST_F(interval_solver, endless_tightening_starves_nothing) {
  solve_data sdata = given({"x = x / 2 + y / 2", "y = y / 2 + x / 4", "0 < x < 1", "0 < y < 1", "u > v + 1",
                            "v > u + 1", "u > 0", "s = t / 2", "t = s / 3", "s < 5", "s > -5"});
  for (int i = 0; i < 2'000; ++i) {
    sdata.assum.push_back(make_binPred_prop(Lt, numbered("p", i), numbered("p", i + 1)));
  }
  sdata.assum.push_back(read("w > 3"));
  solve_data enriched;
  ASSERT_TRUE(solver_preprocess_build_augmented_sdata(sdata, enriched));
  EXPECT_TRUE(solver_interval(read("w + x > 2"), enriched));
  EXPECT_TRUE(solver_interval(read("s < 1"), enriched));
  EXPECT_FALSE(solver_interval(read("x < y"), enriched));
}

// Bounds travel along a chain of any length, in whatever order it is given.
TEST_F(interval_solver, long_chains) {
  solve_data sdata = given({"p0 > 7"});
  for (int i = 1'000; i > 0; --i) {
    sdata.assum.push_back(make_binPred_prop(Lt, numbered("p", i - 1), numbered("p", i)));
  }
  EXPECT_TRUE(solver_interval(read("p1000 > 7"), sdata));
  EXPECT_FALSE(solver_interval(read("p1000 > 8"), sdata));
}

TEST_F(interval_solver, answers_do_not_depend_on_what_was_asked_before) {
  const solve_data sdata = given({"0 < x", "x < 1", "y > x"});
  const std::vector<std::string> goals = {"x < 1 / 2", "y > 0", "x < 1 / 2", "y^2 + z > x", "x * y = y * x", "y > 0"};
  std::vector<bool> answers;
  for (const std::string& goal : goals) {
    answers.push_back(solver_interval(read(goal), sdata));
  }
  EXPECT_EQ(answers, (std::vector<bool>{false, true, false, false, true, true}));
}

}  // namespace
}  // namespace vetro
