// Negations pushed inward, by a table of laws.
#include "qv_solver_list/logic/negation.h"

#include "support/solver_fixture.h"
#include "term/compare.h"
#include "term/term_split_combine.h"

namespace vetro {
namespace {

class negation : public solver_test {
 protected:
  static std::string unfolded(std::string_view text) { return shown(solver_not_unfold_term(read(text))); }
};

// Each row does what its law says, in the order of the ids.
TEST_F(negation, each_law_holds_of_its_row) {
  int next = 0;
  for (const negation_law& row : negation_laws()) {
    EXPECT_EQ(static_cast<int>(row.id), next++);
    const auto law = composed_prop_split(read(row.law));
    ASSERT_TRUE(law && law->connect == Iff) << row.law;
    EXPECT_TRUE(term_eqb(solver_not_unfold_term(law->t1), law->t2)) << row.law;
  }
  EXPECT_EQ(next, static_cast<int>(negation_rule::implies_false) + 1);
}

TEST_F(negation, goes_all_the_way) {
  EXPECT_EQ(unfolded("¬forall (x), exists (y ∈ S), x < y"), "exists (x), forall (y ∈ S), x ≥ y");
  EXPECT_EQ(unfolded("(a < 1 ∧ ¬(b < 1)) ⇒ False"), "a ≥ 1 ∨ b < 1");
  EXPECT_EQ(unfolded("a = 1 ⇒ ¬¬(b = 1)"), "a = 1 ⇒ b = 1");
  EXPECT_EQ(unfolded("existsUnique (x), ¬(x < 1)"), "existsUnique (x), x ≥ 1");
}

TEST_F(negation, what_stays) {
  for (const std::string_view text :
       {"¬Odd(n)", "¬existsUnique (x), x = 1", "¬(a subset b)", "f(¬(a = 1)) = 1", "a < b", "¬False", "¬(x, y ∈ A)",
        "¬(x, y notin A)", "¬(a = b [@scope a > 0 @])"}) {
    EXPECT_EQ(unfolded(text), shown(read(text)));
  }
  EXPECT_EQ(unfolded("¬(a < b < c)"), shown(read("¬(a < b < c)"))) << "a chain is no single relation";
  EXPECT_EQ(solver_not_unfold_term(nullptr), nullptr);
}

TEST_F(negation, equivalences_take_linear_time) {
  term_ptr tower = read("a = 1");
  const term_ptr link = read("a = 1 ⇔ b = 1")->left()->left();
  for (int i = 0; i < 200; ++i) {
    tower = mk_apply(mk_apply(link, tower), read("b = 1"));
  }
  const term_ptr negated = mk_apply(read("¬(a = 1)")->left(), tower);
  EXPECT_NE(solver_not_unfold_term(negated), negated);
}

}  // namespace
}  // namespace vetro
