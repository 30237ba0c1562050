// What a list of assumptions says, layers of it, and premises: order of trial, memory, premises that need themselves.
#include "qv_solver_list/premises.h"

#include "support/solver_fixture.h"
#include "term/substitute/fresh.h"

namespace vetro {
namespace {

class assumptions : public solver_test {};

TEST_F(assumptions, the_record_follows_the_list) {
  solve_data sdata = given({"a = 1", "forall (x), x > 0", "p = 1 ∧ q = 1"});
  for (int question = 0; question < 3; ++question) {  // a scan first, a table later
    EXPECT_TRUE(is_assumption(read("forall (y), y > 0"), sdata));
    EXPECT_FALSE(is_assumption(read("b = 1"), sdata));
    EXPECT_FALSE(facts_of(sdata).holds(read("q = 1")));
    EXPECT_TRUE(facts_of(sdata).holds_part(read("q = 1")));
  }
  solve_data more = sdata;
  more.assum.push_back(read("b = 1"));
  solve_data other = sdata;
  other.assum.replace(0, read("c = 1"));
  for (int question = 0; question < 3; ++question) {
    EXPECT_TRUE(is_assumption(read("b = 1"), more));
    EXPECT_FALSE(is_assumption(read("b = 1"), sdata));
    EXPECT_TRUE(is_assumption(read("c = 1"), other));
    EXPECT_FALSE(is_assumption(read("a = 1"), other));
  }
}

TEST_F(assumptions, layers_see_what_is_below) {
  const solve_data sdata = given({"x ∈ IntegerSet", "x > 0"});
  const term_list more = {read("x ∈ PosRealSet"), read("y > x")};
  const solve_data extended = with_assumptions(sdata, more);
  EXPECT_TRUE(facts_of(extended).describes(extended.assum));
  EXPECT_EQ(facts_of(extended).below(), &facts_of(sdata));
  EXPECT_TRUE(facts_of(extended).holds(read("x > 0")) && facts_of(extended).holds(read("y > x")));
  EXPECT_FALSE(facts_of(sdata).holds(read("y > x")));
  std::vector<const_type> sets;
  facts_of(extended).for_each_set_of(mk_var("x"), [&](const_type set) { sets.push_back(set); });
  EXPECT_EQ(sets, (std::vector{IntegerSet, PosRealSet}));
  EXPECT_EQ(facts_of(extended).comparisons().size(), 1U);
}

// Solvers that note when they are asked.
std::vector<solver_id> asked;
template <solver_id Id, bool Answer>
bool noting(term_ptr /*target*/, const solve_data& /*sdata*/) {
  asked.push_back(Id);
  return Answer;
}

bool draws_a_name(term_ptr target, const solve_data& /*sdata*/) {
  asked.push_back(solver_id::poly_rat);
  return fresh(mk_var("x"), target) == nullptr;
}

// Asks for the same premise, then for another one that rests on it.
bool needs_itself(term_ptr target, const solve_data& sdata) {
  asked.push_back(solver_id::numeric_calc);
  prover premises(sdata, side_table::limit_domain);
  return premises.proves(target) || premises.proves(mk_apply(mk_var("other"), target));
}

class premises : public solver_test {
 protected:
  void SetUp() override {
    solver_test::SetUp();
    asked.clear();
    for (std::size_t i = 0; i < rows_.size(); ++i) {
      rows_[i] = {static_cast<solver_id>(i), "", nullptr};
    }
    put(solver_id::context_poly_rat, noting<solver_id::context_poly_rat, false>);
    put(solver_id::smt_lra, noting<solver_id::smt_lra, true>);
    put(solver_id::squeeze, noting<solver_id::squeeze, false>);
    put(solver_id::const_type, noting<solver_id::const_type, true>);
    install_solvers(rows_);
  }
  void put(solver_id id, solver_decide solve) { rows_[static_cast<std::size_t>(id)].solve = solve; }

  std::array<solver_row, 22> rows_;
};

TEST_F(premises, are_asked_in_the_order_of_the_table_and_once) {
  const solve_data sdata = given({"a > 0 ∧ b > 0"});
  prover deriv(sdata, side_table::deriv);
  EXPECT_TRUE(deriv.positive(mk_var("b")));
  EXPECT_FALSE(deriv.proves(nullptr));
  EXPECT_EQ(asked, std::vector<solver_id>{});
  // The solver of linear arithmetic stands in this table, switched off.
  const std::vector expected = {solver_id::context_poly_rat, solver_id::squeeze, solver_id::const_type};
  EXPECT_TRUE(deriv.nonzero(mk_var("c")));
  EXPECT_EQ(asked, expected);
  EXPECT_TRUE(prover(sdata, side_table::deriv).nonzero(mk_var("c")));
  EXPECT_EQ(asked, expected);
  EXPECT_TRUE(prover(sdata, side_table::func_apply).nonzero(mk_var("c")));
  EXPECT_EQ(asked.back(), solver_id::smt_lra);
  const term_list more = {read("d = 1")};
  EXPECT_TRUE(deriv.under(more).proves(read("d = 1")));
}

TEST_F(premises, an_answer_from_memory_draws_the_same_names) {
  const solve_data sdata;
  put(solver_id::poly_rat, draws_a_name);
  put(solver_id::const_type, nullptr);
  prover cont(sdata, side_table::cont);
  const int before = state().fresh_counter;
  EXPECT_FALSE(cont.nonzero(mk_var("c")));
  EXPECT_EQ(state().fresh_counter, before + 1);
  asked.clear();
  EXPECT_FALSE(cont.nonzero(mk_var("c")));
  EXPECT_EQ(state().fresh_counter, before + 2);
  EXPECT_EQ(asked, std::vector<solver_id>{});
}

TEST_F(premises, one_that_needs_itself_is_open) {
  const solve_data sdata;
  put(solver_id::numeric_calc, needs_itself);
  put(solver_id::const_type, nullptr);
  prover limits(sdata, side_table::limit_domain);
  EXPECT_FALSE(limits.proves(mk_var("p")));
  EXPECT_LE(asked.size(), 1000U);
}

}  // namespace
}  // namespace vetro
