// What assumptions are found to say, and what they must not be made to say.
#include <utility>

#include "qv_solver_list/solver_preprocess.h"
#include "support/solver_fixture.h"
#include "term/compare.h"
#include "term/term_split_combine.h"

namespace vetro {
namespace {

class preprocess : public solver_test {
 protected:
  // The derived facts, in their order.
  static std::string derived(std::initializer_list<std::string_view> assumptions) {
    const solve_data source = given(assumptions);
    solve_data enriched;
    EXPECT_TRUE(solver_preprocess_build_augmented_sdata(source, enriched));
    EXPECT_TRUE(std::equal(source.assum.begin(), source.assum.end(), enriched.assum.begin()));
    return shown(term_list(enriched.assum.begin() + source.assum.size(), enriched.assum.end()));
  }

  static std::string lowered(std::string_view text) {
    return shown(solver_preprocess_expand_shared_membership(read(text)));
  }
  static std::string opened(std::string_view text) {
    return shown(solver_preprocess_expand_tuple_equalities(read(text)));
  }
};

TEST_F(preprocess, intervals_become_comparisons) {
  EXPECT_EQ(derived({"x ∈ (a, b)"}), "a < x; x < b");
  EXPECT_EQ(derived({"x ∈ [a, b)"}), "a ≤ x; x < b");
  EXPECT_EQ(derived({"x ∈ (a, b]"}), "a < x; x ≤ b");
  EXPECT_EQ(derived({"x ∈ [a, b]"}), "a ≤ x; x ≤ b");
  EXPECT_EQ(derived({"x ∈ A"}), "");
}

TEST_F(preprocess, chains_are_cut_into_their_links) {
  EXPECT_EQ(derived({"a < b ≤ c = d"}), "a < b; b ≤ c; c = d");
  EXPECT_EQ(derived({"x = 1 ∧ 0 < y < 1"}), "x = 1; 0 < y < 1; 0 < y; y < 1");
  EXPECT_EQ(derived({"x = 1 ∨ 0 < y < 1"}), "");
  EXPECT_EQ(derived({"a_1 < a_2 < ... < a_n"}), "");
  EXPECT_EQ(derived({"(a, ..., b) = (c, x, d)", "a, ..., b ∈ (0, 1)"}), "") << "dots stand for what nobody counted";
}

TEST_F(preprocess, signed_sets_become_comparisons) {
  EXPECT_EQ(derived({"n ∈ PosIntegerSet"}), "n ≥ 1");
  EXPECT_EQ(derived({"n ∈ NegIntegerSet"}), shown(make_binPred_prop(Le, mk_var("n"), mk_integer(-1))));
  for (const std::string kind : {"Integer", "Rational", "Real"}) {
    EXPECT_EQ(derived({"n ∈ NonPos" + kind + "Set"}), "n ≤ 0");
    EXPECT_EQ(derived({"n ∈ NonNeg" + kind + "Set"}), "n ≥ 0");
    EXPECT_EQ(derived({"n ∈ " + kind + "Set"}), "");
    if (kind != "Integer") {
      EXPECT_EQ(derived({"n ∈ Pos" + kind + "Set"}), "n > 0");
      EXPECT_EQ(derived({"n ∈ Neg" + kind + "Set"}), "n < 0");
    }
  }
}

TEST_F(preprocess, discrete_sets_are_lowered_only_where_a_weaker_statement_follows) {
  EXPECT_EQ(lowered("n ∈ NatPlus ∧ (m ∈ Nat ∨ a = 1)"), "n ≥ 1 ∧ (m ≥ 0 ∨ a = 1)");
  EXPECT_EQ(lowered("a = 1 ⇒ n ∈ NatPlus"), "a = 1 ⇒ n ≥ 1");
  // From these the comparison would not follow: x = 1/2 is no positive integer and not below 1 either.
  for (const std::string_view untouched :
       {"¬(x ∈ NatPlus)", "x ∈ NatPlus ⇒ a = 1", "x ∈ NatPlus ⇔ a = 1", "a = 1 ⇔ x ∈ RationalPlus",
        "¬(a = 1 ∧ x ∈ RationalPlus)", "a = 1 ⇒ ¬(x ∈ Nat)"}) {
    EXPECT_EQ(solver_preprocess_expand_shared_membership(read(untouched)), read(untouched)) << untouched;
  }
  // About a real, these say the same as their comparison.
  EXPECT_EQ(lowered("¬(x ∈ RealPlus)"), "¬x > 0");
  EXPECT_EQ(lowered("x ∈ (0, 1) ⇔ a = 1"), "0 < x ∧ x < 1 ⇔ a = 1");
}

TEST_F(preprocess, memberships_that_are_no_proposition_stay) {
  for (const std::string_view untouched :
       {"sum_{i ∈ [1, n]}(a_i) = 1", "sum_{i ∈ NatPlus}(a_i) = 1", "forall (x ∈ [0, 1]), x = 1",
        "forall (x), x ∈ [0, 1] ⇒ x = 1", "{x | x ∈ [0, 1]} = A"}) {
    EXPECT_EQ(solver_preprocess_expand_shared_membership(read(untouched)), read(untouched)) << untouched;
    EXPECT_EQ(derived({untouched}), "") << untouched;
  }
}

TEST_F(preprocess, tuple_equations_open) {
  EXPECT_EQ(derived({"(a, b) = (c, d)"}), "a = c; b = d");
  EXPECT_EQ(derived({"(a, b, p) = (c, d, q)"}), "a = c; b = d; p = q");
  EXPECT_EQ(derived({"((a, b), x) = ((c, d), y)"}), "a = c; b = d; x = y");
  EXPECT_EQ(derived({"(a, b) = (c, d, p)"}), "");
  EXPECT_EQ(derived({"(a, b) = p"}), "");
  EXPECT_EQ(derived({"a = 1 ∨ (a, b) = (c, d)"}), "a = 1 ∨ a = c ∧ b = d");
  EXPECT_EQ(opened("forall (x), (x, b) = (c, d)"), "forall (x), x = c ∧ b = d");
}

TEST_F(preprocess, metadata_of_untouched_parts_stays) {
  const std::string_view text = "sum_{i = 1}^{n}(i) = 1 [@scope n > 0 @] ∧ x ∈ RealPlus";
  term_ptr sum_part = split_connect(read(text), And).front();
  ASSERT_NE(sum_part->scope(), nullptr);
  term_ptr result = solver_preprocess_expand_shared_membership(read(text));
  EXPECT_EQ(split_connect(result, And).front(), sum_part);
  EXPECT_EQ(solver_preprocess_expand_tuple_equalities(result), result);

  // An opened equation gives what stands on it to its parts and to the whole; its scope is opened too.
  term_ptr equation = read("(a, b) = (c, d) [@scope (p, q) = (r, s) @]");
  term_ptr parts = solver_preprocess_expand_tuple_equalities(equation);
  EXPECT_EQ(shown(parts->scope()), "p = r ∧ q = s");
  for (term_ptr part : split_connect(parts, And)) {
    EXPECT_EQ(shown(part->scope()), "p = r ∧ q = s");
  }
}

TEST_F(preprocess, nothing_is_held_twice) {
  EXPECT_EQ(derived({"x > 0 ∧ y > 0", "x > 0"}), "y > 0");
  EXPECT_EQ(derived({"x > 0 ∧ y > 0", "y > 0 ∧ x > 0"}), "x > 0; y > 0");
  EXPECT_EQ(derived({"x > 0", "x > 0"}), "");
  EXPECT_EQ(derived({"x ∈ RealPlus", "x > 0"}), "");
  EXPECT_EQ(derived({"a = 1 ∧ (forall (x), x > 0)", "forall (y), y > 0"}), "a = 1");
}

TEST_F(preprocess, enrichment_is_the_same_at_every_level) {
  const solve_data source = given({"x ∈ [0, 1] ∧ n ∈ NatPlus", "(a, b) = (c, d)", "a = 1"});
  solve_data once;
  solve_data twice;
  ASSERT_TRUE(solver_preprocess_build_augmented_sdata(source, once));
  ASSERT_TRUE(solver_preprocess_build_augmented_sdata(once, twice));
  EXPECT_EQ(once.assum, twice.assum);
  EXPECT_EQ(once.assum.size(), 8U);
}

// A record that was made for another list must give what a new one gives.
TEST_F(preprocess, enrichment_follows_a_list_that_grows_shrinks_and_changes) {
  const term_list pool = {read("x > 0 ∧ y > 0"),
                          read("x > 0"),
                          read("y > 0 ∧ (forall (s), s > 0)"),
                          read("forall (t), t > 0"),
                          read("x ∈ RealPlus"),
                          read("(x, a) = (y, b) ∧ y > 0"),
                          read("a = b"),
                          read("y > 0")};
  const auto enriched = [](const term_list& assumptions) {
    solve_data source;
    source.assum = assumptions;
    solve_data result;
    EXPECT_TRUE(solver_preprocess_build_augmented_sdata(source, result));
    return result.assum;
  };
  unsigned noise = 1;
  const auto draw = [&noise](std::size_t below) {
    noise = noise * 1103515245U + 12345U;
    return (noise >> 16U) % below;
  };
  term_list list;
  for (int change = 0; change < 2'000; ++change) {
    switch (draw(4)) {
      case 0:
        list.resize(draw(list.size() + 1));
        break;
      case 1:
        list.insert(list.begin() + static_cast<std::ptrdiff_t>(draw(list.size() + 1)), pool[draw(pool.size())]);
        break;
      default:
        list.push_back(pool[draw(pool.size())]);
    }
    const shared_terms followed = enriched(list);
    typed_slots kept = std::exchange(state().slots, {});
    ASSERT_EQ(followed, enriched(list)) << shown(list);
    state().slots = std::move(kept);
  }
}

TEST_F(preprocess, a_growing_list_costs_what_is_added) {
  solve_data source;
  for (int i = 0; i < 4'000; ++i) {
    term_ptr lower = make_binPred_prop(Lt, mk_integer(i), numbered("x", i));
    term_ptr upper = make_binPred_prop(Lt, numbered("y", i), mk_integer(i));
    source.assum.push_back(make_composed_prop(And, lower, upper));
  }
  solve_data result;
  for (int i = 0; i < 2'000; ++i) {
    source.assum.push_back(make_binPred_prop(Lt, mk_integer(i), numbered("x", i)));
    ASSERT_TRUE(solver_preprocess_build_augmented_sdata(source, result));
    ASSERT_EQ(result.assum.size(), 12'000U);  // each new assumption takes the place of a derived one
  }
}

TEST_F(preprocess, nulls_and_empty_records) {
  solve_data source;
  solve_data enriched;
  EXPECT_TRUE(solver_preprocess_build_augmented_sdata(source, enriched));
  EXPECT_TRUE(enriched.assum.empty());
  source.assum = {read("x ∈ RealPlus"), nullptr};
  EXPECT_FALSE(solver_preprocess_build_augmented_sdata(source, enriched));
  source.assum = source.assum.beginning(1);
  EXPECT_TRUE(solver_preprocess_build_augmented_sdata(source, enriched));
  EXPECT_EQ(shown(enriched.assum), "x ∈ PosRealSet; x > 0");
  EXPECT_EQ(solver_preprocess_expand_shared_membership(nullptr), nullptr);
  EXPECT_EQ(solver_preprocess_expand_tuple_equalities(nullptr), nullptr);
}

TEST_F(preprocess, shared_and_deep_formulas_cost_their_distinct_nodes) {
  term_ptr shared = read("x ∈ [0, 1]");
  for (int level = 0; level < 200; ++level) {
    shared = make_composed_prop(Iff, shared, shared);
  }
  EXPECT_NE(solver_preprocess_expand_shared_membership(shared), shared);
  EXPECT_EQ(solver_preprocess_expand_tuple_equalities(shared), shared);

  term_ptr deep = read("x ∈ NatPlus");
  term_ptr side = read("a = 1");
  for (int level = 0; level < 200'000; ++level) {
    deep = make_composed_prop(Or, deep, side);
  }
  EXPECT_NE(solver_preprocess_expand_shared_membership(deep), deep);
}

// Each assumption gives what its law says, in the order of the ids, and nothing else.
TEST_F(preprocess, each_law_holds_of_its_assumption) {
  int next = 0;
  for (const enrichment_law& row : enrichment_laws()) {
    EXPECT_EQ(static_cast<int>(row.id), next++);
    const auto law = composed_prop_split(read(row.law));
    ASSERT_TRUE(law && law->connect == Impl) << row.law;
    solve_data augmented;
    ASSERT_TRUE(solver_preprocess_build_augmented_sdata({.assum = {law->t1}}, augmented));
    EXPECT_EQ(shown(term_span(augmented.assum).subspan(1)), shown(term_split_and(law->t2))) << row.law;
  }
  EXPECT_EQ(next, static_cast<int>(enrichment_rule::tuple_equation) + 1);
}

// Infinity is above zero and no positive real, and the size of a set may be infinite.
TEST_F(preprocess, what_is_not_finite_is_lowered_where_less_still_follows) {
  const auto lowered = [](std::string_view text) {
    return shown(solver_preprocess_expand_shared_membership(read(text)));
  };
  EXPECT_EQ(lowered("∞ ∈ RealPlus"), shown(read("∞ > 0")));
  for (const char* text :
       {"¬(∞ ∈ RealPlus)", "Cardinal(A) ∈ RealPlus ⇒ x = 1", "a = ∞ ⇔ ∞ ∈ (0, 1)", "x ∈ RealPlus [@scope y > 0 @]"}) {
    EXPECT_EQ(lowered(text), shown(read(text))) << text;
  }
}

}  // namespace
}  // namespace vetro
