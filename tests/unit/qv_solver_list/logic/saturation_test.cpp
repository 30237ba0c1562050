// Goals that are replaced by what they mean, and goals that no rule may touch.
#include "qv_solver_list/logic/set_meaning.h"
#include "qv_solver_list/solvers.h"
#include "support/solver_fixture.h"
#include "term/term_split_combine.h"

namespace vetro {
namespace {

class saturation : public solver_test {
 protected:
  static std::string unfolded(std::string_view goal) { return shown(set_equiv_saturation(read(goal))); }
};

TEST_F(saturation, EachShapeOfSet) {
  EXPECT_EQ(unfolded("(a, b) = (c, d)"), "a = c; b = d");
  EXPECT_EQ(unfolded("x ∈ A ∩ B"), "x ∈ A; x ∈ B");
  EXPECT_EQ(unfolded("x ∈ A ∪ B"), "x ∈ A ∨ x ∈ B");
  EXPECT_EQ(unfolded("x ∈ SetMinus(A, B)"), "x ∈ A; ¬x ∈ B");
  EXPECT_EQ(unfolded("(x, y) ∈ CartesianProd(A, B)"), "x ∈ A; y ∈ B");
  EXPECT_EQ(unfolded("(x, y) ∈ InverseBinRel(R)"), "(y, x) ∈ R");
  EXPECT_EQ(unfolded("x ∈ PowerSet(A)"), shown(read("x subset A")));
  EXPECT_EQ(unfolded("x ∈ SetUnion(F)"), shown(read("exists (qvar0), x ∈ qvar0 ∧ qvar0 ∈ F")));
  EXPECT_EQ(unfolded("(x, y) ∈ Composition(R, S)"), shown(read("exists (qvar1), (x, qvar1) ∈ R ∧ (qvar1, y) ∈ S")));
  EXPECT_EQ(unfolded("(x, y) ∈ BinRelComp(R, S)"), unfolded("(x, y) ∈ Composition(R, S)"));
  EXPECT_EQ(unfolded("x ∈ EquivClass(a, R)"), "(a, x) ∈ R");
  EXPECT_EQ(unfolded("CountableSet(A)"), shown(read("Equinumerous(A, PosIntegerSet)")));
  EXPECT_EQ(unfolded("EquivalenceBinRel(R)"),
            shown(term_list{read("ReflexiveBinRel(R)"), read("SymmetricBinRel(R)"), read("TransitiveBinRel(R)")}));
}

TEST_F(saturation, NoRule) {
  for (const std::string_view goal :
       {"y ∈ CartesianProd(A, B)", "y ∈ InverseBinRel(R)", "y ∈ Composition(R, S)", "x ∈ A", "a = b", "(a, b) = c",
        "(a, b, c) = (p, q, r)", "x notin A ∩ B", "A ∩ B subset C", "x ∈ RealPlus", "FiniteSet(A)", "¬(x ∈ A ∩ B)",
        "forall (x), x ∈ A ∩ B"}) {
    EXPECT_EQ(unfolded(goal), "") << goal;
    const solve_res result = solver_bwd_saturation_set({nullptr, nullptr, read(goal)});
    EXPECT_EQ(result.type, bool_res);
    EXPECT_FALSE(result.ans);
  }
  EXPECT_TRUE(set_equiv_saturation(nullptr).empty());
}

TEST_F(saturation, BoundNamesCaptureNothing) {
  // Some set that holds qvar0 and is in F: not some set that holds itself.
  EXPECT_EQ(unfolded("qvar0 ∈ SetUnion(F)"), shown(read("exists (qvar1), qvar0 ∈ qvar1 ∧ qvar1 ∈ F")));
  EXPECT_EQ(unfolded("x ∈ SetUnion({qvar0, qvar1})"),
            shown(read("exists (qvar2), x ∈ qvar2 ∧ qvar2 ∈ {qvar0, qvar1}")));
  EXPECT_EQ(unfolded("(qvar1, y) ∈ Composition(R, S)"),
            shown(read("exists (qvar2), (qvar1, qvar2) ∈ R ∧ (qvar2, y) ∈ S")));
}

TEST_F(saturation, ResultsAreRead) {
  // What comes out is a term like any that is read, so that an assumption of that text closes it.
  const term_list result = set_equiv_saturation(read("x ∈ SetUnion(F)"));
  ASSERT_EQ(result.size(), 1U);
  EXPECT_TRUE(solver_eqb(result.front(), given({"exists (S), x ∈ S ∧ S ∈ F"})));
}

}  // namespace
}  // namespace vetro
