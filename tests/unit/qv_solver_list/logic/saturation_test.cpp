// Goals that are replaced by what they mean, and goals that no rule may touch.
#include "qv_solver_list/logic/set_meaning.h"
#include "qv_solver_list/solvers.h"
#include "support/solver_fixture.h"
#include "term/compare.h"
#include "term/term_split_combine.h"

namespace vetro {
namespace {

class saturation : public solver_test {
 protected:
  static std::string unfolded(std::string_view goal) { return shown(set_equiv_saturation(read(goal))); }
};

// Each row does what its law says, in the order of the ids.
TEST_F(saturation, each_law_holds_of_its_row) {
  int next = 0;
  for (const set_law& row : set_laws()) {
    EXPECT_EQ(static_cast<int>(row.id), next++);
    const auto law = composed_prop_split(read(row.law));
    ASSERT_TRUE(law && law->connect == Iff) << row.law;
    const term_list meaning = set_equiv_saturation(law->t1);
    EXPECT_EQ(meaning, row.meaning(law->t1)) << row.law;
    ASSERT_FALSE(meaning.empty()) << row.law;
    term_ptr joined = meaning.front();
    for (std::size_t i = 1; i < meaning.size(); ++i) {
      joined = make_composed_prop(And, joined, meaning[i]);
    }
    EXPECT_TRUE(term_eqb(joined, law->t2)) << row.law << ": " << shown(joined);
  }
  EXPECT_EQ(next, static_cast<int>(set_rule::equivalence) + 1);
}

// A list is in a difference when each member is, and not when the list as a whole is no part of the other set.
TEST_F(saturation, lists) {
  EXPECT_EQ(unfolded("x, y ∈ A \\ B"), shown(term_list{read("x ∈ A \\ B"), read("y ∈ A \\ B")}));
  EXPECT_EQ(unfolded("x, y ∈ A ∩ B"), shown(term_list{read("x, y ∈ A"), read("x, y ∈ B")}));
  EXPECT_EQ(unfolded("x, y ∈ PowerSet(A)"), shown(term_list{read("x ∈ PowerSet(A)"), read("y ∈ PowerSet(A)")}));
  EXPECT_FALSE(solver_manager_dsl(read("x, y ∈ A \\ B"), given({"x, y ∈ A", "¬(x, y ∈ B)"}), initial_fee));
  EXPECT_TRUE(
      solver_manager_dsl(read("x, y ∈ A \\ B"), given({"x ∈ A", "y ∈ A", "¬(x ∈ B)", "¬(y ∈ B)"}), initial_fee));
}

TEST_F(saturation, no_rule) {
  for (const std::string_view goal :
       {"y ∈ CartesianProd(A, B)", "y ∈ InverseBinRel(R)", "y ∈ Composition(R, S)", "x ∈ A", "a = b", "(a, b) = c",
        "(a, b, c) = (p, q, r)", "x notin A ∩ B", "A ∩ B subset C", "x ∈ RealPlus", "FiniteSet(A)", "¬(x ∈ A ∩ B)",
        "forall (x), x ∈ A ∩ B", "x ∈ A ∩ B [@scope x > 0 @]"}) {
    EXPECT_EQ(unfolded(goal), "") << goal;
    const solve_res result = solver_bwd_saturation_set({nullptr, nullptr, read(goal)});
    EXPECT_EQ(result.type, bool_res);
    EXPECT_FALSE(result.ans);
  }
  EXPECT_TRUE(set_equiv_saturation(nullptr).empty());
}

TEST_F(saturation, bound_names_capture_nothing) {
  // Some set that holds qvar0 and is in F: not some set that holds itself.
  EXPECT_EQ(unfolded("qvar0 ∈ SetUnion(F)"), shown(read("exists (qvar1), qvar0 ∈ qvar1 ∧ qvar1 ∈ F")));
  EXPECT_EQ(unfolded("x ∈ SetUnion({qvar0, qvar1})"),
            shown(read("exists (qvar2), x ∈ qvar2 ∧ qvar2 ∈ {qvar0, qvar1}")));
  EXPECT_EQ(unfolded("(qvar1, y) ∈ Composition(R, S)"),
            shown(read("exists (qvar2), (qvar1, qvar2) ∈ R ∧ (qvar2, y) ∈ S")));
}

TEST_F(saturation, results_are_read) {
  // What comes out is a term like any that is read, so that an assumption of that text closes it.
  const term_list result = set_equiv_saturation(read("x ∈ SetUnion(F)"));
  ASSERT_EQ(result.size(), 1U);
  EXPECT_TRUE(solver_eqb(result.front(), given({"exists (S), x ∈ S ∧ S ∈ F"})));
}

}  // namespace
}  // namespace vetro
