// The propositional solver: valid forms and their near misses, what counts as one atom, sizes.
#include <functional>
#include <random>

#include "qv_solver_list/logic/propositional.h"
#include "qv_solver_list/set/cnf.h"
#include "qv_solver_list/solvers.h"
#include "support/solver_fixture.h"
#include "term/term_split_combine.h"

namespace vetro {
namespace {

bool follows(term_span assum, term_ptr target) { return propositional_answer(assum, target) == sat_answer::proved; }

class sat : public solver_test {
 protected:
  static bool proved(std::initializer_list<std::string_view> assumptions, std::string_view goal) {
    return follows(given(assumptions).assum, read(goal));
  }
};

TEST_F(sat, valid_forms_and_near_misses) {
  EXPECT_TRUE(proved({"a = 1 ⇒ b = 2", "a = 1"}, "b = 2"));
  EXPECT_FALSE(proved({"a = 1 ⇒ b = 2", "b = 2"}, "a = 1"));
  EXPECT_TRUE(proved({"a = 1 ⇒ b = 2", "¬(b = 2)"}, "¬(a = 1)"));
  EXPECT_FALSE(proved({"a = 1 ⇒ b = 2", "¬(a = 1)"}, "¬(b = 2)"));
  EXPECT_TRUE(proved({}, "a = 1 ∨ ¬(a = 1)"));
  EXPECT_FALSE(proved({}, "a = 1 ∨ ¬(a = 2)"));
  EXPECT_TRUE(proved({"a = 1 ∨ b = 1", "a = 1 ⇒ c = 1", "b = 1 ⇒ c = 1"}, "c = 1"));
  EXPECT_FALSE(proved({"a = 1 ∨ b = 1", "a = 1 ⇒ c = 1"}, "c = 1"));
  EXPECT_TRUE(proved({"a = 1 ⇔ b = 1", "¬(b = 1)"}, "¬(a = 1)"));
  EXPECT_TRUE(proved({}, "((a = 1 ⇒ b = 1) ⇒ a = 1) ⇒ a = 1"));
  EXPECT_TRUE(proved({"a = 1", "¬(a = 1)"}, "b = 1"));
  EXPECT_FALSE(proved({"a = 1"}, "a = 1 ∧ b = 1"));
}

TEST_F(sat, operands_that_are_one_literal) {
  EXPECT_TRUE(proved({"a = 1 ⇒ ¬(a = 1)"}, "¬(a = 1)"));
  EXPECT_FALSE(proved({"a = 1 ⇒ ¬(a = 1)"}, "a = 1"));
  EXPECT_TRUE(proved({"a = 1 ⇔ ¬(a = 1)"}, "b = 1"));
  EXPECT_FALSE(proved({}, "a = 1 ⇔ ¬(a = 1)"));
  EXPECT_TRUE(proved({}, "a = 1 ⇔ a = 1"));
  EXPECT_TRUE(proved({}, "a = 1 ⇒ a = 1"));
  EXPECT_TRUE(proved({"a = 1 ∧ a = 1"}, "a = 1 ∨ a = 1"));
  EXPECT_TRUE(proved({"a = 1 ∧ ¬(a = 1)"}, "b = 1"));
  EXPECT_FALSE(proved({"a = 1 ∨ ¬(a = 1)"}, "a = 1"));
}

TEST_F(sat, atoms_are_opaque) {
  EXPECT_TRUE(proved({"forall (x), x > 0"}, "forall (x), x > 0"));
  EXPECT_FALSE(proved({"forall (x), x > 0"}, "exists (x), x > 0"));
  EXPECT_FALSE(proved({"forall (x), x > 0 ∧ x > 1"}, "forall (x), x > 0"));
  EXPECT_TRUE(proved({"forall (x), x > 0"}, "forall (y), y > 0"));
  EXPECT_FALSE(proved({"forall (x), x > z"}, "forall (x), x > y"));
  EXPECT_TRUE(proved({"sum_{i = 1}^{n}(i) = 1"}, "sum_{j = 1}^{n}(j) = 1"));
  EXPECT_FALSE(proved({"a = b"}, "b = a"));
  EXPECT_TRUE(proved({"(a, b) = (c, d)"}, "a = c"));
  EXPECT_FALSE(proved({"(a, b) = (c, d)"}, "a = d"));
}

TEST_F(sat, what_prints_alike_is_not_one_atom) {
  const auto app = [](auto head, std::initializer_list<term_ptr> args) {
    return mk_apply_all(head, term_span(args.begin(), args.size()));
  };
  term_ptr a = mk_var("A");
  term_ptr one = mk_integer(1);
  term_ptr absolute = make_binPred_prop(Eq, app(mk_oper(Abs), {a}), one);
  term_ptr size = make_binPred_prop(Eq, app(mk_oper(Cardinal), {a}), one);
  EXPECT_FALSE(follows(term_list{absolute}, size));
  EXPECT_TRUE(follows(term_list{absolute}, absolute));
  term_ptr pair = make_binPred_prop(Eq, a, vetro::make_tuple(term_list{one, mk_var("x")}));
  term_ptr interval = make_binPred_prop(Eq, a, app(mk_oper(IntervalLoRo), {one, mk_var("x")}));
  EXPECT_FALSE(follows(term_list{pair}, interval));
  // The same text with and without the record of its bound variables is one atom; another scope makes another.
  term_ptr sum = read("sum_{i = 1}^{n}(i) = 1");
  EXPECT_NE(sum, sum->bare());
  EXPECT_TRUE(follows(term_list{sum}, sum->bare()));
  EXPECT_FALSE(follows(term_list{read("a = b [@scope a > 0 @]")}, read("a = b [@scope a > 1 @]")));
  EXPECT_FALSE(follows(term_list{read("a = b [@scope a > 0 @]")}, read("a = b")));
}

// Random formulas over few atoms, against their truth tables.
class random_formulas {
 public:
  static constexpr int atoms = 4;
  explicit random_formulas(unsigned seed) : random_(seed) {}

  term_ptr formula(int depth) {
    if (depth == 0 || random_() % 6 == 0) {
      return make_binPred_prop(Eq, mk_var(std::string(1, static_cast<char>('a' + random_() % atoms))), mk_integer(1));
    }
    static constexpr connect_type connectives[] = {Not, And, Or, Impl, Iff};
    const connect_type connective = connectives[random_() % 5];
    term_ptr left = formula(depth - 1);
    term_ptr right = connective == Not ? nullptr : formula(depth - 1);
    return make_composed_prop(connective, left, right);
  }

 private:
  std::mt19937 random_;
};

bool holds(term_ptr t, unsigned values) {
  const auto view = composed_prop_split(t);
  if (!view) {
    return (values >> (t->left()->right()->name()[0] - 'a') & 1U) != 0;
  }
  const bool left = holds(view->t1, values);
  switch (view->connect) {
    case Not:
      return !left;
    case And:
      return left && holds(view->t2, values);
    case Or:
      return left || holds(view->t2, values);
    case Impl:
      return !left || holds(view->t2, values);
    case Iff:
      return left == holds(view->t2, values);
  }
  return false;
}

TEST_F(sat, agrees_with_truth_tables) {
  random_formulas source(11);
  int followed = 0;
  for (int round = 0; round < 2000; ++round) {
    term_list assumptions;
    for (int i = 0; i < round % 3; ++i) {
      assumptions.push_back(source.formula(3));
    }
    term_ptr goal = source.formula(4);
    bool expected = true;
    for (unsigned values = 0; values < 1U << random_formulas::atoms && expected; ++values) {
      const bool premises =
          std::all_of(assumptions.begin(), assumptions.end(), [&](term_ptr t) { return holds(t, values); });
      expected = !premises || holds(goal, values);
    }
    ASSERT_EQ(follows(assumptions, goal), expected) << shown(assumptions) << " |- " << shown(goal);
    followed += expected ? 1 : 0;
  }
  EXPECT_GT(followed, 300);
  EXPECT_LT(followed, 1700);
}

TEST_F(sat, clauses_are_numbered_from_the_operands_up) {
  sat_formula formula;
  const int p = formula.atom(1);
  const int q = formula.atom(2);
  const int both = formula.connective(SAT_AND, p, q);
  formula.negation(formula.connective(SAT_IMPLY, both, p));
  const CNF cnf = build_cnf(formula, 2);
  EXPECT_EQ(cnf.var_count(), 4);
  std::vector<std::vector<int>> clauses;
  for (int i = 0; i < cnf.clause_count(); ++i) {
    clauses.emplace_back(cnf.clause(i).begin(), cnf.clause(i).end());
  }
  EXPECT_EQ(clauses,
            (std::vector<std::vector<int>>{{-3, 1}, {-3, 2}, {-1, -2, 3}, {3, 4}, {-1, 4}, {-3, 1, -4}, {-4}}));
  const sat_data s = init_solver(cnf);
  EXPECT_EQ(s.clause(0).front(), -4);
  EXPECT_EQ(s.cl_maxsize, 8 * 7);
}

TEST_F(sat, ten_thousand_assumptions_of_which_few_matter) {
  term_list assumptions;
  for (int i = 0; i < 10000; ++i) {
    term_ptr lower = make_binPred_prop(Lt, mk_integer(i), numbered("x", i));
    term_ptr upper = make_binPred_prop(Lt, numbered("y", i), mk_integer(i));
    assumptions.push_back(make_composed_prop(i % 2 == 0 ? Or : Impl, lower, upper));
  }
  assumptions[5000] = read("a = 1 ∨ b = 1");
  assumptions[7000] = read("a = 1 ⇒ c = 1");
  EXPECT_FALSE(follows(assumptions, read("c = 1")));
  assumptions[9000] = read("b = 1 ⇒ c = 1");
  EXPECT_TRUE(follows(assumptions, read("c = 1")));
}

TEST_F(sat, formulas_beyond_every_measure_end) {
  term_ptr nested = read("a = 1");
  for (int level = 0; level < 100; ++level) {  // 2^100 leaves as a tree
    nested = make_composed_prop(Iff, nested, nested);
  }
  EXPECT_FALSE(follows({}, make_composed_prop(And, nested, read("b = 1"))));
  term_ptr deep = read("a = 1");
  for (int level = 0; level < 100'000; ++level) {
    deep = make_composed_prop(Not, deep, nullptr);
  }
  EXPECT_TRUE(follows(term_list{read("a = 1")}, deep));
  term_ptr shared = read("a [@scope a > 0 @]");
  for (int level = 0; level < 100; ++level) {  // the same inside an atom
    shared = make_binOp_term(Plus, shared, shared);
  }
  term_ptr about_shared = make_binPred_prop(Eq, shared, mk_var("b"));
  EXPECT_TRUE(follows(term_list{about_shared}, about_shared));
  EXPECT_FALSE(follows(term_list{about_shared}, make_binPred_prop(Neq, shared, mk_var("b"))));
  EXPECT_FALSE(follows(term_list{nullptr}, deep));
  EXPECT_FALSE(follows({}, nullptr));
}

}  // namespace
}  // namespace vetro
