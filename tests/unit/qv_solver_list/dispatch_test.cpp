// The dispatcher: which solvers see what, in which order, under which budget, and the small solvers it holds.
#include <algorithm>
#include <new>

#include "number/limits.h"
#include "qv_solver_list/solvers.h"
#include "support/solver_fixture.h"
#include "term/term_split_combine.h"

namespace vetro {
namespace {

class dispatch : public solver_test {
 protected:
  struct run {
    bool proved;
    std::string lines;
    bool has(std::string_view line) const { return lines.find(line) != std::string::npos; }
    // How often the line was printed.
    int count(std::string_view line) const {
      int found = 0;
      for (std::size_t at = lines.find(line); at != std::string::npos; at = lines.find(line, at + 1)) {
        ++found;
      }
      return found;
    }
  };

  static run solve(std::initializer_list<std::string_view> assumptions, std::string_view goal, int fee = initial_fee) {
    const solve_data sdata = given(assumptions);
    term_ptr target = read(goal);
    testing::internal::CaptureStdout();
    const bool proved = solver_manager_dsl(target, sdata, fee);
    return {proved, testing::internal::GetCapturedStdout()};
  }

  static run select(std::initializer_list<std::string_view> assumptions, std::string_view goal, std::string_view name) {
    const solve_data sdata = given(assumptions);
    term_ptr target = read(goal);
    testing::internal::CaptureStdout();
    const bool proved = solver_manager_dsl_with_solver(target, sdata, initial_fee, name);
    return {proved, testing::internal::GetCapturedStdout()};
  }
};

TEST_F(dispatch, an_assumption_is_proved_by_the_first_solver) {
  const run r = solve({"a = 1", "forall (x), x > y"}, "forall (z), z > y");
  EXPECT_TRUE(r.proved);
  EXPECT_EQ(r.lines,
            "fee = 2\n" + print_term_internal_to_string(read("forall (z), z > y")) + "\ndecision_solver id: 0\n");
  EXPECT_FALSE(solve({"a = 1", "forall (x), x > y"}, "forall (y), y > y", 0).proved);
}

TEST_F(dispatch, reflexive_relations) {
  EXPECT_TRUE(solver_reflexivity(read("sum_{i = 1}^{n}(i) = sum_{j = 1}^{n}(j)"), {}));
  EXPECT_TRUE(solver_reflexivity(read("a ≥ a"), {}));
  EXPECT_TRUE(solver_reflexivity(read("a ≤ a"), {}));
  EXPECT_TRUE(solver_reflexivity(read("A subset A"), {}));
  for (const std::string_view goal : {"a > a", "a < a", "a ≠ a", "a ≈ a", "a = b", "a ∈ a", "forall (x), x = x"}) {
    EXPECT_FALSE(solver_reflexivity(read(goal), {})) << goal;
  }
  term_ptr identity = make_binPred_prop(IdentEq, mk_var("a"), mk_var("a"));
  EXPECT_FALSE(solver_reflexivity(identity, {}));
  EXPECT_FALSE(solver_reflexivity(nullptr, {}));
}

TEST_F(dispatch, progress_of_a_failed_run) {
  // Nothing can be split, so the battery runs once; the filter prints nothing.
  const run r = solve({}, "x ∈ A ∩ B", 1);
  EXPECT_FALSE(r.proved);
  std::string expected = "fee = 1\nBelong(x, Inter(A, B))\n";
  for (int i = 0; i <= 20; ++i) {
    expected += "decision_solver id: " + std::to_string(i) + "\n";
  }
  expected +=
      "after zero step process\nx ∈ A ∩ B\nafter filter\nx ∈ A ∩ B\n"
      "solver id:0\nsolver id:1\nsolver id:2\n"
      "solver id: 0's posprocess\nsolver id: 1's posprocess\nsolve and_List\nfee = 0\nBelong(x, A)\n";
  EXPECT_EQ(r.lines.substr(0, expected.size()), expected);
  EXPECT_TRUE(r.lines.ends_with("after zero step process\nx ∈ A\nsolver id: 2's posprocess\n"));
}

TEST_F(dispatch, conjunctions_are_filtered_leaf_by_leaf) {
  const std::initializer_list<std::string_view> assumptions = {"a = 1", "b = 2"};
  EXPECT_TRUE(solve(assumptions, "(a = 1 ∧ c = c) ∧ b = 2", 0).proved);
  EXPECT_FALSE(solve(assumptions, "(a = 1 ∧ c = d) ∧ b = 2", 0).proved);
  const run r = solve(assumptions, "(a = 1 ∧ c = d) ∧ b = 2", 1);
  EXPECT_TRUE(r.has("after zero step process\na = 1, c = d, b = 2\n"));
  EXPECT_TRUE(r.has("after filter\nc = d\n"));
}

TEST_F(dispatch, splitting) {
  EXPECT_EQ(shown(zero_step_process(read("a = 1 ⇔ b = 1"))), "a = 1 ⇒ b = 1; b = 1 ⇒ a = 1");
  EXPECT_EQ(shown(zero_step_process(read("(a = 1 ⇔ b = 1) ∧ c = 1"))), "a = 1 ⇔ b = 1; c = 1");
  EXPECT_EQ(shown(zero_step_process(read("a < b ≤ c"))), "b ≤ c; a < b");
  EXPECT_EQ(shown(zero_step_process(read("a < b < c ∧ a = 1"))), "b < c; a < b; a = 1");
  EXPECT_EQ(shown(split_connect(read("a = 1 ∨ (b = 1 ∨ c = 1 ∧ d = 1)"), Or)), "a = 1; b = 1; c = 1 ∧ d = 1");
  EXPECT_EQ(solver_or_split({nullptr, nullptr, read("a = 1 ∨ (b = 1 ∨ c = 1)")}).list.size(), 3U);
  EXPECT_EQ(solver_or_split({nullptr, nullptr, read("a = 1 ∧ b = 1")}).type, bool_res);
  EXPECT_TRUE(solve({"a < b", "b ≤ c"}, "a < b ≤ c", 0).proved);
  EXPECT_FALSE(solve({"a < b", "c ≤ b"}, "a < b ≤ c").proved);
}

TEST_F(dispatch, one_disjunct_is_enough) {
  // Neither disjunct is propositional from the assumptions; the second unfolds to two of them.
  const std::initializer_list<std::string_view> assumptions = {"x ∈ A", "y ∈ B"};
  const run r = solve(assumptions, "x ∈ C ∨ (x, y) ∈ CartesianProd(A, B)");
  EXPECT_TRUE(r.proved);
  EXPECT_TRUE(r.has("solve or_List\nfee = 1\nBelong(x, C)\n"));
  EXPECT_FALSE(solve(assumptions, "x ∈ C ∨ (x, y) ∈ CartesianProd(A, D)").proved);
}

TEST_F(dispatch, each_layer_costs_one_fee) {
  const std::initializer_list<std::string_view> assumptions = {"a ∈ A", "b ∈ B", "c ∈ C", "d ∈ D"};
  const std::string two = "CartesianProd(A, B)";
  const std::string three = "CartesianProd(" + two + ", C)";
  EXPECT_FALSE(solve(assumptions, "(a, b) ∈ " + two, 0).proved);
  EXPECT_TRUE(solve(assumptions, "(a, b) ∈ " + two, 1).proved);
  EXPECT_FALSE(solve(assumptions, "((a, b), c) ∈ " + three, 1).proved);
  EXPECT_TRUE(solve(assumptions, "((a, b), c) ∈ " + three, 2).proved);
  EXPECT_FALSE(solve(assumptions, "(((a, b), c), d) ∈ CartesianProd(" + three + ", D)", 2).proved);
}

TEST_F(dispatch, assumptions_are_enriched_for_the_battery) {
  EXPECT_TRUE(select({"x ∈ [0, 1)"}, "x < 1", "EqbSolver").proved);
  EXPECT_FALSE(select({"x ∈ [0, 1]"}, "x < 1", "EqbSolver").proved);
  EXPECT_FALSE(solve({"¬(x ∈ NatPlus)"}, "¬(x ≥ 1)").proved);
}

TEST_F(dispatch, named_solvers) {
  const run r = select({"a = 1"}, "a = 1", "EqbSolver");
  EXPECT_TRUE(r.proved);
  EXPECT_EQ(r.lines, "fee = 2\nselected solver: EqbSolver\nEq(a, 1)\n");
  EXPECT_FALSE(select({"a = 1", "b = 1"}, "a = 1 ∧ b = 1", "EqbSolver").proved);  // no splitting
  EXPECT_TRUE(select({}, "a = a", "Reflexivity").proved);
  EXPECT_FALSE(select({"a = b"}, "a = b", "Reflexivity").proved);
  for (const std::string_view unknown : {"eqbsolver", "EqbSolver ", "SatSolver", "DomainTypeSolver", "x"}) {
    const run nothing = select({"a = 1"}, "a = 1", unknown);
    EXPECT_FALSE(nothing.proved) << unknown;
    EXPECT_EQ(nothing.lines, "") << unknown;
    EXPECT_EQ(find_dsl_named_solver(unknown), nullptr);
  }
  EXPECT_TRUE(select({"a = 1", "b = 1"}, "a = 1 ∧ b = 1", "").proved);
}

TEST_F(dispatch, one_step_results) {
  const solve_data sdata = given({"a = 1"});
  const auto evaluate = [&](res_type type, bool ans, term_list list) {
    testing::internal::CaptureStdout();
    const bool proved = solver_manager_list_dsl({.type = type, .ans = ans, .list = std::move(list)}, sdata, 0);
    const std::string lines = testing::internal::GetCapturedStdout();
    return std::pair(proved, lines);
  };
  EXPECT_TRUE(evaluate(bool_res, true, {}).first);
  EXPECT_FALSE(evaluate(bool_res, false, {}).first);
  EXPECT_EQ(evaluate(termlist_and, false, {}), std::pair(true, std::string("solve and_List\nsuccess solved\n")));
  EXPECT_EQ(evaluate(termlist_or, false, {}), std::pair(false, std::string("solve or_List\n")));
  EXPECT_FALSE(evaluate(termlist_and, false, {read("a = 1"), read("b = 1")}).first);
  EXPECT_TRUE(evaluate(termlist_or, false, {read("b = 1"), read("a = 1")}).first);
}

TEST_F(dispatch, a_solver_that_runs_out_answers_false) {
  const solver_decide out_of_memory = [](term_ptr, const solve_data&) -> bool { throw std::bad_alloc(); };
  EXPECT_FALSE(call_decision_solver(out_of_memory, read("a = 1"), {}));
  EXPECT_FALSE(call_decision_solver(nullptr, read("a = 1"), {}));
  const solver_decide endless = [](term_ptr t, const solve_data&) {
    for (;;) {
      t = make_composed_prop(Not, t, nullptr);
      t = t->right();
    }
    return true;
  };
  EXPECT_FALSE(call_decision_solver(endless, read("a = 1"), {}));
  const solver_decide frugal = [](term_ptr t, const solve_data&) {
    for (std::uint64_t i = 0; i + 2 < limits::solver_factory_calls; i += 2) {
      make_composed_prop(Not, t, nullptr);
    }
    return true;
  };
  EXPECT_TRUE(call_decision_solver(frugal, read("a = 1"), {}));
  EXPECT_NE(read("after = 1"), nullptr);  // outside a solver there is no budget
}

TEST_F(dispatch, null_target_is_not_proved) {
  EXPECT_FALSE(solver_manager_dsl(nullptr, given({"a = 1"}), initial_fee));
  EXPECT_FALSE(solver_manager_dsl_with_solver(nullptr, given({"a = 1"}), initial_fee, "EqbSolver"));
  EXPECT_FALSE(solver_eqb(nullptr, given({"a = 1"})));
}

TEST_F(dispatch, many_assumptions_and_conjuncts) {
  // 10,000 conjunctions as assumptions, and as many of their parts as one goal.
  solve_data sdata;
  term_ptr goal = nullptr;
  for (int i = 0; i < 10'000; ++i) {
    term_ptr lower = make_binPred_prop(Lt, mk_integer(i), numbered("x", i));
    term_ptr upper = make_binPred_prop(Lt, numbered("y", i), mk_integer(i));
    sdata.assum.push_back(make_composed_prop(And, lower, upper));
    goal = goal == nullptr ? lower : make_composed_prop(And, goal, i % 2 == 0 ? upper : lower);
  }
  testing::internal::CaptureStdout();
  const bool proved = solver_manager_dsl(goal, sdata, 0);
  term_ptr stranger = read("z = 1");
  const bool too_much = solver_manager_dsl(make_composed_prop(And, goal, stranger), sdata, 0);
  testing::internal::GetCapturedStdout();
  EXPECT_TRUE(proved);
  EXPECT_FALSE(too_much);
}

}  // namespace
}  // namespace vetro
