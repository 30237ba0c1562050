// Relations, number sets and reserved names: the answers that solvers build on.
#include <gtest/gtest.h>

#include "support/term_tools.h"
#include "term/number_set.h"
#include "term/relation.h"
#include "term/reserved.h"
#include "term/variables/views.h"

namespace vetro {
namespace {

using namespace build;

constexpr pred_type orders[] = {Eq, Neq, Gt, Ge, Lt, Le};

TEST(relation, negation_mirror_and_implication_agree_with_the_signs) {
  for (const pred_type p : orders) {
    for (const int order : {-1, 0, 1}) {
      EXPECT_EQ(holds(*negated(p), order), !holds(p, order));
      EXPECT_EQ(holds(*mirrored(p), order), holds(p, -order));
    }
    for (const pred_type q : orders) {
      bool follows = true;
      for (const int order : {-1, 0, 1}) {
        follows = follows && (!holds(p, order) || holds(q, order));
      }
      EXPECT_EQ(implies(p, q), follows) << p << " " << q;
    }
  }
  EXPECT_EQ(negated(Belong), NotBelong);
  EXPECT_FALSE(negated(Subset) || mirrored(Belong) || implies(Belong, Belong));
}

TEST(relation, comparisons_are_read_under_negations_and_without_scopes_only) {
  const term_ptr a = var("a"), b = var("b"), less = app(Lt, {a, b});
  const auto negation = as_order(app(Not, {less}));
  ASSERT_TRUE(negation.has_value());
  EXPECT_EQ(negation->pred, Ge);
  EXPECT_EQ(negation->ascending().left, b);
  EXPECT_FALSE(as_order(with_scope(less, a)) || as_order(app(Not, {with_scope(less, a)})));
  EXPECT_FALSE(as_order(with_binders(app(Eq, {a, b}), {a})) || as_order(app(Belong, {a, b})) || as_order(nullptr));
}

TEST(number_sets, constants_classes_and_signs_correspond) {
  for (int kind = IntegerSet; kind <= ComplexSet; ++kind) {
    EXPECT_TRUE(number_set_of(mk_const(static_cast<const_type>(kind))).has_value());
  }
  EXPECT_EQ(*number_set_of(NonPosRationalSet), (number_set{number_class::rational, sign_class::nonpositive}));
  EXPECT_FALSE(number_set_of(PrimeSet) || number_set_of(with_scope(mk_const(RealSet), var("p"))));
  const number_set naturals = *number_set_of(NonNegIntegerSet);
  EXPECT_TRUE(contains(*number_set_of(RealSet), naturals) && contains(*number_set_of(ComplexSet), naturals));
  EXPECT_FALSE(contains(*number_set_of(PosRealSet), naturals));
  EXPECT_FALSE(contains(naturals, *number_set_of(NonNegRationalSet)));
  EXPECT_EQ(comparison_of(*number_set_of(PosIntegerSet))->bound, 1);
  EXPECT_FALSE(comparison_of(*number_set_of(RationalSet)));
  EXPECT_EQ(mirrored(sign_class::nonnegative), sign_class::nonpositive);
}

TEST(reserved, names_differ_by_kind_and_number_and_draw_nothing) {
  reset_state();
  const term_ptr name = reserved_var(reserved_kind::bound, 0xFFFFFFFF);
  EXPECT_EQ(name, reserved_var(reserved_kind::bound, 0xFFFFFFFF));
  EXPECT_NE(name, reserved_var(reserved_kind::point, 0xFFFFFFFF));
  EXPECT_TRUE(name->name().starts_with('\n'));  // which no name in a text holds
  EXPECT_EQ(state().fresh_counter, 0);
}

TEST(views, forms_of_an_operator_are_told_apart) {
  const term_ptr x = var("x"), a = var("a"), f = var("f");
  const auto limit = limit_of(app(RightSeqLimInf, {x, a, f}));
  ASSERT_TRUE(limit.has_value());
  EXPECT_TRUE(limit->kind == limit_kind::lower && limit->side == approach_side::right && limit->of_sequence);
  EXPECT_EQ(sum_of(app(BigProdSup, {x, a, f}))->upper, a);
  EXPECT_EQ(sum_of(app(BigInter, {x, f}))->upper, nullptr);
  EXPECT_FALSE(sum_of(app(BigProdSup, {x, f})) || limit_of(app(Lim, {x, a, f, f})));
}

}  // namespace
}  // namespace vetro
