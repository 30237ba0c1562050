// What follows from statements about sets by logic alone, and near misses; checked against all small models.
#include "qv_solver_list/logic/set_logic.h"

#include <random>

#include "support/solver_fixture.h"
#include "term/term_split_combine.h"

namespace vetro {
namespace {

class set_logic : public solver_test {
 protected:
  static bool follows(std::initializer_list<std::string_view> assumptions, std::string_view goal) {
    return follows_by_set_logic(given(assumptions).assum, read(goal));
  }
};

TEST_F(set_logic, inclusions_equations_and_memberships) {
  EXPECT_TRUE(follows({"A ⊆ B", "B ⊆ C"}, "A ⊆ C"));
  EXPECT_TRUE(follows({"A = B"}, "A ⊆ C ⇔ B ⊆ C"));
  EXPECT_TRUE(follows({"A ⊆ B", "B ⊆ A"}, "x ∈ A ⇔ x ∈ B"));
  EXPECT_TRUE(follows({}, "A ∪ B = A ∩ B ⇔ A = B"));
  EXPECT_TRUE(follows({}, "A ⊆ B ∧ ¬(A = B) ⇒ B \\ A ≠ ∅"));
  EXPECT_TRUE(follows({"x ∉ A"}, "¬(x ∈ A)"));
  EXPECT_TRUE(follows({"x, y ∈ A"}, "y ∈ A ∪ B"));
  EXPECT_TRUE(follows({"x = y", "x ∈ A"}, "y ∈ A"));
  EXPECT_TRUE(follows({"a ∈ A", "b ∈ A"}, "{ a, b } ⊆ A"));
  EXPECT_TRUE(follows({"{ a, b } ⊆ A"}, "b ∈ A"));
  EXPECT_TRUE(follows({"x ∈ { a }"}, "x = a"));
  EXPECT_TRUE(follows({"False"}, "x = 1"));
  EXPECT_TRUE(follows({"A = B", "A ∈ F"}, "B ∈ F"));

  EXPECT_FALSE(follows({"A ⊆ B"}, "B ⊆ A"));
  EXPECT_FALSE(follows({"A ⊆ B ∪ C"}, "A ⊆ B ∨ A ⊆ C"));
  EXPECT_FALSE(follows({"¬(x, y ∈ A)"}, "¬(x ∈ A)"));
  EXPECT_FALSE(follows({"c, ..., d ∈ A", "a ∈ A", "b ∈ A"}, "a, ..., b ∈ A"));
  EXPECT_FALSE(follows({"x, y ∉ A"}, "¬(x, y ∈ B)"));
  EXPECT_FALSE(follows({"¬(A = B)"}, "¬(A ⊆ B)"));
  EXPECT_FALSE(follows({"x ∈ { a, b }"}, "x = a"));
  EXPECT_FALSE(follows({"{ 1, 2, ..., n } ⊆ A"}, "2 ∈ A"));
  EXPECT_FALSE(follows({"A ⊆ B [@scope p > 0 @]"}, "A ⊆ B"));
  EXPECT_FALSE(follows({"x ∈ A [@scope x > 0 @]", "A ⊆ B"}, "x ∈ B"));
  EXPECT_FALSE(follows({"forall (A), A ⊆ B"}, "C ⊆ B"));
  EXPECT_FALSE(follows({}, "a = b ⇔ b = c"));
}

// Truth in all models with two elements and the sets A, B, C, D over a domain of four elements.
class model {
 public:
  explicit model(unsigned bits) : bits_(bits) {}

  bool holds(term_ptr t) const {
    if (const auto view = composed_prop_split(t)) {
      const bool left = holds(view->t1);
      if (view->t2 == nullptr) {
        return !left;
      }
      const bool right = holds(view->t2);
      return view->connect == And    ? left && right
             : view->connect == Or   ? left || right
             : view->connect == Impl ? !left || right
                                     : left == right;
    }
    const auto view = pred_split(t);
    if (view->pred == Belong) {
      return (set(view->right) >> (view->left->name() == "x" ? 0U : 1U) & 1U) != 0;
    }
    const unsigned a = set(view->left);
    const unsigned b = set(view->right);
    return view->pred == Subset ? (a & ~b) == 0 : a == b;
  }

 private:
  unsigned set(term_ptr t) const {
    if (t->type() == Var) {
      return bits_ >> (4U * static_cast<unsigned>(t->name()[0] - 'A')) & 15U;
    }
    const auto view = composed_term_split(t);
    if (!view) {
      return 0;
    }
    const unsigned a = set(view->t1);
    const unsigned b = set(view->t2);
    return view->oper == Union ? a | b : view->oper == Inter ? a & b : a & ~b;
  }

  unsigned bits_;
};

class random_statements {
 public:
  term_ptr any(int depth) {
    if (depth == 0) {
      static constexpr pred_type preds[] = {Belong, Subset, Eq};
      const pred_type pred = preds[random_() % 3];
      term_ptr left = pred == Belong ? mk_var(random_() % 2 == 0 ? "x" : "y") : set(2);
      return make_binPred_prop(pred, left, set(2));
    }
    static constexpr connect_type connects[] = {And, Or, Impl, Iff, Not};
    const connect_type connect = connects[random_() % 5];
    term_ptr left = any(depth - 1);
    return make_composed_prop(connect, left, connect == Not ? nullptr : any(depth - 1));
  }

 private:
  term_ptr set(int depth) {
    if (depth == 0 || random_() % 3 == 0) {
      static const char* const names[] = {"A", "B", "C", "D"};
      return random_() % 8 == 0 ? mk_const(EmptySet) : mk_var(names[random_() % 4]);
    }
    static constexpr oper_type opers[] = {Union, Inter, SetMinus};
    term_ptr left = set(depth - 1);
    return make_binOp_term(opers[random_() % 3], left, set(depth - 1));
  }

  std::mt19937 random_{3};  // NOLINT: the same run every time
};

// With two elements and one witness for each of at most two statements, four elements are enough to refute.
TEST_F(set_logic, agrees_with_all_small_models) {
  random_statements source;
  int valid = 0;
  for (int round = 0; round < 400; ++round) {
    term_ptr t = source.any(1);
    bool everywhere = true;
    for (unsigned bits = 0; everywhere && bits < 1U << 16U; ++bits) {
      everywhere = model(bits).holds(t);
    }
    valid += everywhere ? 1 : 0;
    EXPECT_EQ(follows_by_set_logic({}, t), everywhere) << shown(t);
  }
  EXPECT_GT(valid, 10);
}

}  // namespace
}  // namespace vetro
