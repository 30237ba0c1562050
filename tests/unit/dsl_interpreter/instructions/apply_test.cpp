// apply on chains of implications: it leaves the premises in front of the first rest that meets the goal.
#include <gtest/gtest.h>

#include <random>

#include "qv_solver_list/logic/propositional.h"
#include "qv_solver_list/solver_registry.h"
#include "support/run_fixture.h"
#include "term/compare.h"
#include "term/print/pretty.h"
#include "term/state.h"
#include "term/term_split_combine.h"

namespace vetro::test {
namespace {

class apply_chains : public testing::Test {
 protected:
  void SetUp() override {
    reset_state();
    match_init(read_pattern);
    install_solvers(solver_registry());
  }

  static proof_gap_full applied(term_ptr hypothesis, term_ptr goal) {
    proof_gap_full start;
    add_assumption(start, hypothesis);
    start.goal = goal;
    run r(start);
    r.execute({{.number = 1, .content = dsl_apply{hypothesis_ref(1)}}});
    return r.gap;
  }

  static std::string left_to_show(std::string_view hypothesis, std::string_view goal) {
    const proof_gap_full gap = applied(formula(hypothesis), formula(goal));
    return gap.finished ? "" : print_term_to_string(gap.goal);
  }
};

TEST_F(apply_chains, leaves_the_premises_before_the_first_rest_that_meets_the_goal) {
  constexpr std::string_view chain = "a = 1 ⇒ (b = 1 ⇒ (c = 1 ⇒ d = 1))";
  EXPECT_EQ(left_to_show(chain, "d = 1"), "a = 1 ∧ b = 1 ∧ c = 1");
  EXPECT_EQ(left_to_show(chain, "c = 1 ⇒ d = 1"), "a = 1 ∧ b = 1");
  EXPECT_EQ(left_to_show(chain, "d = 1 ∨ ¬(c = 1)"), "a = 1 ∧ b = 1");
  EXPECT_EQ(left_to_show(chain, "b = 1 ⇒ (a = 1 ⇒ (c = 1 ⇒ d = 1))"), "");
  EXPECT_EQ(left_to_show(chain, "b = 1 ⇒ d = 1"), "a = 1 ∧ b = 1 ∧ c = 1");  // from c = 1 ⇒ d = 1 it does not follow
  EXPECT_EQ(left_to_show(chain, "x = 1 ∨ ¬(x = 1)"), "");
  EXPECT_EQ(left_to_show(chain, "c = 1"), "c = 1");  // refused: the goal stays
  EXPECT_EQ(left_to_show("a = 1 ⇒ forall (x), x > c", "forall (y), y > c"), "a = 1");
}

// The plain way: one rest after the other.
term_ptr goal_by_scan(term_ptr hypothesis, term_ptr goal) {
  term_list premises;
  for (term_ptr rest = hypothesis;
       !alpha_equivalent(rest, goal) && propositional_answer(term_list{rest}, goal) != sat_answer::proved;) {
    const auto view = composed_prop_split(rest);
    if (!view || view->connect != Impl) {
      return goal;
    }
    premises.push_back(view->t1);
    rest = view->t2;
  }
  return lambda_condition_from_list(premises);
}

TEST_F(apply_chains, stops_where_a_scan_of_all_rests_stops) {
  std::mt19937 random(5);
  const auto below = [&random](unsigned bound) { return static_cast<int>(random() % bound); };
  const auto atom = [&] {
    return make_binPred_prop(Eq, mk_var(std::string(1, static_cast<char>('a' + below(5)))), mk_integer(1));
  };
  const auto formula_of_two = [&] {
    static constexpr connect_type connectives[] = {And, Or, Impl, Iff};
    term_ptr left = atom();
    term_ptr right = atom();
    return below(3) == 0 ? left : make_composed_prop(connectives[below(4)], left, right);
  };
  std::vector<int> stops(12, 0);
  for (int round = 0; round < 2000; ++round) {
    term_ptr chain = formula_of_two();
    term_ptr goal = formula_of_two();
    for (int length = below(8); length > 0; --length) {
      goal = below(4) == 0 ? chain : goal;
      chain = make_composed_prop(Impl, formula_of_two(), chain);
    }
    term_ptr expected = goal_by_scan(chain, goal);
    const proof_gap_full gap = applied(chain, goal);
    ASSERT_EQ(gap.finished, expected == nullptr) << print_term_to_string(chain);
    ASSERT_TRUE(gap.finished || gap.goal == expected) << print_term_to_string(chain);
    stops[gap.finished ? 0U : split_connect(gap.goal, And).size()] += gap.goal == goal ? 0 : 1;
  }
  for (std::size_t left = 1; left <= 5; ++left) {
    EXPECT_GT(stops[left], 10) << left;
  }
}

TEST_F(apply_chains, ends_on_chains_of_hard_questions) {
  // The goal is beyond the limit of propositional reasoning, so that no question is decided; equality still is.
  term_ptr hard = formula("a = 1");
  for (int level = 0; level < 20; ++level) {
    hard = make_composed_prop(Iff, hard, hard);
  }
  term_ptr chain = hard;
  for (int i = 0; i < 2000; ++i) {
    chain = make_composed_prop(Impl, formula("b = 1"), chain);
  }
  EXPECT_EQ(split_connect(applied(chain, hard).goal, And).size(), 2000U);
  term_ptr other = make_composed_prop(Or, hard, formula("c = 1"));
  EXPECT_EQ(applied(chain, other).goal, other);
}

}  // namespace
}  // namespace vetro::test
