// Splits, builders, conjunctions, chains and joined quantifiers.
#include <gtest/gtest.h>

#include <string>

#include "support/term_tools.h"
#include "term/term_split_combine.h"

namespace vetro {
namespace {

using namespace build;

class split_combine_test : public testing::Test {
 protected:
  void SetUp() override {
    reset_state();
    a = var("a"), b = var("b"), c = var("c"), d = var("d"), p = var("p"), q = var("q"), x = var("x"), y = var("y");
    less = mk_pred(Lt), at_most = mk_pred(Le);
    two_links = chain({less, at_most}, {a, b, c});
  }
  static term_ptr lt(term_ptr left, term_ptr right) { return app(Lt, {left, right}); }
  static term_ptr le(term_ptr left, term_ptr right) { return app(Le, {left, right}); }
  term_ptr a, b, c, d, p, q, x, y, less, at_most, two_links;
};

TEST_F(split_combine_test, splits_open_one_and_two_operands) {
  const auto neg = composed_term_split(app(Neg, {a}));
  ASSERT_TRUE(neg.has_value());
  EXPECT_TRUE(neg->oper == Neg && neg->t1 == a && neg->t2 == nullptr);
  const auto added = composed_term_split(plus(a, b));
  ASSERT_TRUE(added.has_value());
  EXPECT_TRUE(added->oper == Plus && added->t1 == a && added->t2 == b);
  const auto relation = atomic_prop_split(lt(a, b));
  ASSERT_TRUE(relation.has_value());
  EXPECT_TRUE(relation->pred == Lt && relation->t1 == a && relation->t2 == b);
  const auto linked = atomic_prop_split(two_links);
  ASSERT_TRUE(linked.has_value());
  EXPECT_TRUE(linked->pred == PredChain && linked->t1 == list({less, at_most}) && linked->t2 == list({a, b, c}));
  const auto negated = composed_prop_split(app(Not, {p}));
  ASSERT_TRUE(negated.has_value());
  EXPECT_TRUE(negated->connect == Not && negated->t1 == p && negated->t2 == nullptr);
  const auto sides = pred_split(lt(a, b));
  ASSERT_TRUE(sides.has_value());
  EXPECT_TRUE(sides->pred == Lt && sides->left == a && sides->right == b);

  for (const term_ptr other : {a, app(x, {a}), app(Plus, {a, b, c}), mk_oper(Plus), forall({x}, p), lt(a, b)}) {
    EXPECT_FALSE(composed_term_split(other).has_value());
  }
  EXPECT_FALSE(atomic_prop_split(plus(a, b)).has_value());
  EXPECT_FALSE(atomic_prop_split(app(TendsTo, {a, b, c, d})).has_value());
  EXPECT_FALSE(composed_prop_split(lt(a, b)).has_value());
  EXPECT_FALSE(pred_split(app(Odd, {a})).has_value());
  EXPECT_FALSE(pred_split(nullptr).has_value());
  EXPECT_FALSE(composed_prop_split(nullptr).has_value());
}

TEST_F(split_combine_test, builders_know_their_heads) {
  EXPECT_EQ(make_composed_term(Tuple, a, b), app(Tuple, {list({a, b})}));
  for (const oper_type oper : {SetUnion, PowerSet, InverseBinRel}) {
    EXPECT_EQ(make_composed_term(oper, a, nullptr), app(oper, {a}));
  }
  for (const pred_type pred :
       {Eq, Neq, Gt, Ge, Lt, Le, Appro, IdentEq, Divides, Belong, Subset, SetPartition, Equinumerous}) {
    EXPECT_EQ(make_atomic_prop(pred, a, b), app(pred, {a, b}));
  }
  for (const pred_type pred : {CountableSet, ReflexiveBinRel, SymmetricBinRel, TransitiveBinRel, EquivalenceBinRel}) {
    EXPECT_EQ(make_atomic_prop(pred, a, nullptr), app(pred, {a}));
  }
  EXPECT_EQ(make_composed_prop(Not, p, nullptr), app(Not, {p}));
  for (const connect_type connect : {And, Or, Impl, Iff}) {
    EXPECT_EQ(make_composed_prop(connect, p, q), app(connect, {p, q}));
  }
  testing::internal::CaptureStdout();
  EXPECT_EQ(make_composed_term(Plus, a, b), nullptr);
  EXPECT_EQ(make_atomic_prop(NotBelong, a, b), nullptr);
  EXPECT_EQ(make_composed_prop(static_cast<connect_type>(Forall), a, b), nullptr);
  EXPECT_EQ(testing::internal::GetCapturedStdout(),
            "error, unsupport oper type 32\nerror, unsupport pred type:182\nerror, unsupport connect type:315\n");
  EXPECT_EQ(make_binPred_prop(NotBelong, a, b), app(NotBelong, {a, b}));
  EXPECT_EQ(make_binOp_term(Frac, a, b), app(Frac, {a, b}));
  EXPECT_EQ(make_binOp_term(Frac, a, nullptr), nullptr);
  EXPECT_EQ(make_quant_prop(Exists, "x", p), quant(Exists, {x}, p));
  EXPECT_EQ(make_const(Integer, -1), num(-1));
  EXPECT_EQ(make_const(Pi, 0), mk_const(Pi));
  EXPECT_EQ(make_var(3), var("qvar3"));
  EXPECT_EQ(make_quantvar_str(1000000000), "qvar1000000000");
}

TEST_F(split_combine_test, conjunctions_are_joined_to_the_right_or_to_the_left) {
  const term_list three = {a, b, c};
  EXPECT_EQ(and_compose(three), conj(a, conj(b, c)));
  EXPECT_EQ(lambda_condition_from_list(three), conj(conj(a, b), c));
  EXPECT_EQ(and_compose(term_list{a}), a);
  EXPECT_EQ(lambda_condition_from_list(term_list{a}), a);
  EXPECT_EQ(and_compose({}), nullptr);
  EXPECT_EQ(lambda_condition_from_list({}), nullptr);
}

TEST_F(split_combine_test, conjuncts_in_text_order) {
  EXPECT_EQ(term_split_and(conj(conj(a, b), c)), (term_list{a, b, c}));
  EXPECT_EQ(term_split_and(conj(a, conj(b, c))), (term_list{a, b, c}));
  EXPECT_EQ(term_split_and(forall({x}, conj(a, b))), (term_list{forall({x}, conj(a, b))}));
  EXPECT_EQ(term_split_and(app(Or, {a, b})), (term_list{app(Or, {a, b})}));
  EXPECT_EQ(term_split_and(app(And, {a})), (term_list{app(And, {a})}));
  testing::internal::CaptureStderr();
  EXPECT_TRUE(term_split_and(nullptr).empty());
  EXPECT_EQ(testing::internal::GetCapturedStderr(), "Error: term_split_and visiting NULL pointer\n");
}

TEST_F(split_combine_test, scopes_go_to_the_conjuncts_in_flat_form) {
  EXPECT_EQ(term_split_and(with_scope(conj(a, b), p)), (term_list{with_scope(a, p), with_scope(b, p)}));
  EXPECT_EQ(term_split_and(with_scope(conj(with_scope(a, q), b), p)),
            (term_list{with_scope(a, conj(q, p)), with_scope(b, p)}));
  EXPECT_EQ(term_split_and(with_scope(conj(with_scope(conj(a, b), q), c), p)),
            (term_list{with_scope(a, conj(q, p)), with_scope(b, conj(q, p)), with_scope(c, p)}));
  const term_ptr to_left = conj(conj(a, b), c);
  const term_ptr to_right = conj(a, conj(b, c));
  EXPECT_EQ(term_split_and(with_scope(conj(p, q), to_left)),
            (term_list{with_scope(p, to_right), with_scope(q, to_right)}));
  EXPECT_EQ(term_split_and_preserve(forall({x}, plus(with_scope(x, to_left), to_left))),
            forall({x}, plus(with_scope(x, to_right), to_left)));
  EXPECT_EQ(term_split_and_preserve(with_binders(a, {with_scope(x, to_left)})),
            with_binders(a, {with_scope(x, to_right)}));
  EXPECT_EQ(term_split_and_preserve(with_scope(a, with_scope(b, to_left))), with_scope(a, with_scope(b, to_right)));
}

TEST_F(split_combine_test, long_orders_are_cut_last_link_first) {
  EXPECT_EQ(long_order_split(lt(le(a, b), c)), (term_list{lt(b, c), le(a, b)}));
  EXPECT_EQ(long_order_split(app(Eq, {lt(le(a, b), c), d})), (term_list{app(Eq, {c, d}), lt(b, c), le(a, b)}));
  for (const term_ptr single : {lt(a, b), lt(a, le(b, c)), a, with_scope(lt(a, b), p), app(PredChain, {a, b})}) {
    EXPECT_EQ(long_order_split(single), (term_list{single}));
  }
  EXPECT_EQ(long_order_split(two_links), (term_list{le(b, c), lt(a, b)}));
  EXPECT_EQ(long_order_split(lt(two_links, d)), (term_list{lt(c, d), le(b, c), lt(a, b)}));
  EXPECT_EQ(long_order_split(chain({less, at_most}, {lt(a, b), c, d})), (term_list{le(c, d), lt(b, c), lt(a, b)}));
  EXPECT_TRUE(long_order_split(nullptr).empty());
}

TEST_F(split_combine_test, chains_split_into_their_relations) {
  EXPECT_TRUE(is_predchain(two_links));
  EXPECT_FALSE(is_predchain(lt(a, b)));
  EXPECT_FALSE(is_predchain(app(PredChain, {a})));
  EXPECT_FALSE(is_predchain(nullptr));
  EXPECT_EQ(predchain_split(two_links), (term_list{lt(a, b), le(b, c)}));
  EXPECT_EQ(predchain_split(chain({less, at_most}, {a, b})), (term_list{lt(a, b)})) << "the shorter list decides";
  EXPECT_EQ(predchain_split(chain({less}, {a, b, c})), (term_list{lt(a, b)}));
  const term_ptr tends = app(TendsTo, {x, num(0)});
  EXPECT_EQ(predchain_split(chain({tends}, {a, b})), (term_list{app(TendsTo, {x, num(0), a, b})}));
  EXPECT_TRUE(predchain_split(lt(a, b)).empty());
  EXPECT_TRUE(predchain_split(app(PredChain, {a, b})).empty()) << "applied by name to what are no lists";
}

TEST_F(split_combine_test, chains_become_conjunctions) {
  EXPECT_EQ(elim_predchain(two_links), conj(lt(a, b), le(b, c)));
  EXPECT_EQ(elim_predchain(chain({less, at_most, less}, {a, b, c, d})), conj(lt(a, b), conj(le(b, c), lt(c, d))));
  const term_ptr split = conj(lt(a, b), le(b, c));
  EXPECT_EQ(elim_predchain(with_scope(two_links, p)), split) << "what the chain carries is dropped";
  EXPECT_EQ(elim_predchain(list({forall({two_links}, two_links), lambda({x}, two_links, two_links),
                                 with_meta(plus(a, two_links), {{two_links}, two_links, nullptr})})),
            list({forall({two_links}, split), lambda({x}, split, split),
                  with_meta(plus(a, split), {{two_links}, split, nullptr})}));
  EXPECT_EQ(elim_predchain(chain({less}, {two_links, d})), lt(split, d));
  EXPECT_EQ(elim_predchain(app(PredChain, {a, b})), app(PredChain, {a, b}));
  EXPECT_EQ(elim_predchain(nullptr), nullptr);
}

TEST_F(split_combine_test, chains_are_built_link_by_link) {
  const term_ptr first = atomic_to_pre_chained_prop(lt(a, b));
  EXPECT_EQ(first, chain({less}, {a, b}));
  EXPECT_EQ(pre_chained_prop_add(first, at_most, c), two_links);
  EXPECT_EQ(pre_chained_prop_add(with_scope(first, p), at_most, c), with_scope(two_links, p));
  EXPECT_EQ(make_predchain(term_list{less, at_most}, term_list{a, b, c}), two_links);
  testing::internal::CaptureStderr();
  EXPECT_EQ(atomic_to_pre_chained_prop(nullptr), nullptr);
  EXPECT_EQ(atomic_to_pre_chained_prop(app(Odd, {a})), nullptr);
  EXPECT_EQ(pre_chained_prop_add(first, nullptr, c), first);
  EXPECT_EQ(pre_chained_prop_add(lt(a, b), less, c), lt(a, b));
  EXPECT_EQ(testing::internal::GetCapturedStderr(),
            "Error: atomic_to_pre_chained_prop visiting NULL pointer.\n"
            "Error: Error in pre_chained_prop, expecting atomic_chained_prop.\n"
            "Error: pre_chained_prop_add visiting NULL pointer.\n"
            "Error: Error in pre_chained_prop_add, expecting PredChain(?TermList, ?TermList).\n");
}

TEST_F(split_combine_test, quantifiers_of_one_kind_are_joined) {
  const term_ptr body = quant(Exists, {c}, app(Eq, {x, plus(y, c)}));
  EXPECT_EQ(merge_quant_term(forall({x}, forall({y}, body))), forall({x, y}, body));
  EXPECT_EQ(merge_quant_term(forall({x}, quant(Exists, {y}, forall({a}, p)))),
            forall({x}, quant(Exists, {y}, forall({a}, p))));
  const term_ptr member = app(Belong, {y, d});
  EXPECT_EQ(merge_quant_term(forall({x}, with_scope(forall({member, y}, forall({a}, p)), q))),
            forall({x, member, y, a}, p))
      << "what an inner node carries is dropped";
  const term_ptr two = forall({x}, forall({y}, p));
  const term_ptr one = forall({x, y}, p);
  EXPECT_EQ(merge_quant_term(with_meta(plus(a, with_scope(two, two)), {{two}, two, nullptr})),
            with_meta(plus(a, with_scope(one, one)), {{one}, one, nullptr}));
  EXPECT_EQ(merge_quant_term(list({lambda({two}, two, two), forall({two}, app(Not, {two}))})),
            list({lambda({one}, one, one), forall({one}, app(Not, {one}))}));
  EXPECT_EQ(merge_quant_term_list(term_list{two, a}), (term_list{one, a}));
  EXPECT_TRUE(is_Quant_in_Quant(two));
  EXPECT_FALSE(is_Quant_in_Quant(one));
  EXPECT_FALSE(is_Quant_in_Quant(nullptr));
  EXPECT_EQ(merge_quant_term(nullptr), nullptr);
}

TEST_F(split_combine_test, deep_and_shared_terms) {
  EXPECT_EQ(elim_predchain(tower(two_links)), tower(conj(lt(a, b), le(b, c))));
  EXPECT_EQ(elim_predchain(left_spine(two_links)), left_spine(conj(lt(a, b), le(b, c))));
  EXPECT_EQ(elim_predchain(doubled(two_links)), doubled(conj(lt(a, b), le(b, c))));
  EXPECT_EQ(merge_quant_term(doubled(forall({x}, forall({y}, p)))), doubled(forall({x, y}, p)));
  term_ptr nested = p;
  term_ptr conjunction = a;
  term_ptr order = a;
  for (int i = 0; i < deep_levels; ++i) {
    nested = forall({x}, nested);
    conjunction = conj(conjunction, b);
    order = lt(order, b);
  }
  EXPECT_EQ(merge_quant_term(nested)->vars().size(), static_cast<std::size_t>(deep_levels));
  EXPECT_EQ(term_split_and(conjunction).size(), static_cast<std::size_t>(deep_levels) + 1);
  EXPECT_EQ(long_order_split(order).size(), static_cast<std::size_t>(deep_levels));
  EXPECT_EQ(term_split_and_preserve(doubled(with_scope(a, conj(conj(a, b), c)))),
            doubled(with_scope(a, conj(a, conj(b, c)))));
}

}  // namespace
}  // namespace vetro
