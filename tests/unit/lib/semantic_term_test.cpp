// What preparation makes of a formula: intervals and points, folded spellings, the imaginary unit as an index, the
// canonical set-builder, and the binders of each binding operator.
#include "lib/semantic_term.h"

#include <gtest/gtest.h>

#include <string>

#include "parser/parser_api.h"
#include "support/build_terms.h"
#include "term/compare.h"
#include "term/pattern_match.h"
#include "term/print/pretty.h"
#include "term/state.h"
#include "term/variables/free_variable.h"

namespace vetro {
namespace {

using build::app;
using build::list;
using build::num;
using build::quant;
using build::var;

class semantic_term : public testing::Test {
 protected:
  void SetUp() override {
    reset_state();
    match_init(read_pattern);
  }
};

term_ptr prepared(std::string_view text) {
  term_ptr t = parse_semantic_term_from_str(text);
  EXPECT_NE(t, nullptr) << text;
  return t;
}

std::string internal(std::string_view text) { return print_term_internal_to_string(prepared(text)); }

void list_binders(std::string& out, term_ptr t) {
  if (t == nullptr) {
    return;
  }
  if (!t->binders().empty() || !t->guarded().empty()) {
    out += out.empty() ? "" : "; ";
    print_term_internal(out, spine_of(t).head);
    out += ": ";
    print_term_list_internal(out, t->binders());
    out += t->guarded().empty() ? "" : " guards ";
    print_term_list_internal(out, t->guarded());
  }
  if (t->type() == Lambda || t->type() == Quant || t->type() == FreeVarTag) {
    for (term_ptr entry : t->vars()) {
      list_binders(out, entry);
    }
  }
  if (t->type() == Lambda) {
    list_binders(out, t->condition());
  }
  if (t->type() == Lambda || t->type() == Quant || t->type() == FreeVarTag) {
    list_binders(out, t->body());
  } else {
    for (term_ptr child : t->children()) {
      list_binders(out, child);
    }
  }
  list_binders(out, t->scope());
}

// The nodes with a record, outermost first and in text order: head, what it binds, what it guards.
std::string binders(term_ptr t) {
  std::string out;
  list_binders(out, t);
  return out;
}

struct text_row {
  const char* text;
  const char* expected;
};

TEST_F(semantic_term, pairs_are_intervals_only_where_a_set_stands) {
  const text_row rows[] = {
      {"x ∈ (0, 1)", "Belong(x, IntervalLoRo(0, 1))"},
      {"x ∉ (0, 1)", "NotBelong(x, IntervalLoRo(0, 1))"},
      {"(0, 1) ⊆ (a, b)", "Subset(IntervalLoRo(0, 1), IntervalLoRo(a, b))"},
      {"x ∈ (0, 1) ∪ (2, 3) ∩ (4, 5)",
       "Belong(x, Inter(Union(IntervalLoRo(0, 1), IntervalLoRo(2, 3)), IntervalLoRo(4, 5)))"},
      {"x ∈ S \\ (2, 3)", "Belong(x, SetMinus(S, IntervalLoRo(2, 3)))"},
      {"A = CartesianProd((0, 1), (2, 3))", "Eq(A, CartesianProd(IntervalLoRo(0, 1), IntervalLoRo(2, 3)))"},
      {"A = PowerSet((0, 1))", "Eq(A, PowerSet(IntervalLoRo(0, 1)))"},
      {"A = SetUnion((0, 1))", "Eq(A, SetUnion(IntervalLoRo(0, 1)))"},
      {"A = SetInter((0, 1))", "Eq(A, SetInter(IntervalLoRo(0, 1)))"},
      {"ContinuousFuncOn(f, (0, 1))", "ContinuousFuncOn(f, IntervalLoRo(0, 1))"},
      {"OscillationOn(f, (0, 1)) = 2", "Eq(OscillationOn(f, IntervalLoRo(0, 1)), 2)"},
      {"x ∈ (((0, 1), 2))", "Belong(x, IntervalLoRo(Tuple(0, 1), 2))"},
  };
  for (const text_row& row : rows) {
    EXPECT_EQ(internal(row.text), row.expected) << row.text;
  }
}

TEST_F(semantic_term, points_stay_points) {
  for (const char* text : {"(0, 1) ∈ S", "p = (0, 1)", "x ∈ {(0, 1)}", "x ∈ f((0, 1))", "(0, 1, 2) ⊆ S",
                           "ContinuousFuncOn((0, 1), S)", "x ∈ { y | y = (0, 1) }"}) {
    const std::string out = internal(text);
    EXPECT_EQ(out.find("Interval"), std::string::npos) << out;
    EXPECT_NE(out.find("Tuple"), std::string::npos) << out;
  }
}

TEST_F(semantic_term, spellings_are_folded) {
  EXPECT_EQ(prepared("a ≡ b"), prepared("a = b"));
  EXPECT_EQ(prepared("a ≡ b = c"), prepared("a = b = c"));
  EXPECT_NE(prepared("a ≡ b (mod n)"), nullptr);
  EXPECT_EQ(internal("log(e, x) = log(2, x)"), "Eq(ln(x), log(2, x))");
  EXPECT_EQ(internal("y = log(log(e, e))"), "Eq(y, log(ln(e)))");
}

TEST_F(semantic_term, scopes_are_prepared_too) {
  term_ptr t = prepared("x [@scope y ∈ (0, 1) @] = (log(e, x) [@scope x ≡ 1 @])");
  EXPECT_EQ(print_term_internal_to_string(t->left()->right()->scope()), "Belong(y, IntervalLoRo(0, 1))");
  EXPECT_EQ(print_term_internal_to_string(t->right()->scope()), "Eq(x, 1)");
  EXPECT_EQ(prepared("x ∈ ((0, 1) [@scope p ≡ 1 @])")->right()->scope(), prepared("p = 1"))
      << "the scope of a pair moves to the interval";
}

TEST_F(semantic_term, the_imaginary_unit_as_an_index_is_the_variable_i) {
  EXPECT_EQ(prepared("sum_{__IMAGINARY_UNIT__ = 1}^{n}(__IMAGINARY_UNIT__^2)"), prepared("sum_{i = 1}^{n}(i^2)"));
  EXPECT_EQ(prepared("prod_{1 = __IMAGINARY_UNIT__}^{n}(2)"), prepared("prod_{1 = i}^{n}(2)"));
  EXPECT_EQ(prepared("lim_{__IMAGINARY_UNIT__ → 0}(__IMAGINARY_UNIT__)"), prepared("lim_{i → 0}(i)"));
  EXPECT_EQ(prepared("limsup_{__IMAGINARY_UNIT__ → 0^+}(x)"), prepared("limsup_{i → 0^+}(x)"));
  EXPECT_EQ(prepared("sum_{__IMAGINARY_UNIT__ = 1}^{3}(sum_{__IMAGINARY_UNIT__ = 1}^{2}(__IMAGINARY_UNIT__))"),
            prepared("sum_{i = 1}^{3}(sum_{i = 1}^{2}(i))"));
  // A variable on the other side is the index where it may be one.
  EXPECT_EQ(internal("sum_{k = __IMAGINARY_UNIT__}^{n}(k)"), "BigSumSup(Eq(k, __IMAGINARY_UNIT__), n, k)");
  EXPECT_EQ(internal("sum_{n = __IMAGINARY_UNIT__}^{n}(2)"), "BigSumSup(Eq(n, i), n, 2)");
  for (const char* kept :
       {"__IMAGINARY_UNIT__ + 1", "sum_{__IMAGINARY_UNIT__ = 1}^{__IMAGINARY_UNIT__}(x)",
        "sum_{__IMAGINARY_UNIT__ = __IMAGINARY_UNIT__ + 1}^{n}(x)", "sum_{__IMAGINARY_UNIT__ ∈ S}(x)",
        "sum_{__IMAGINARY_UNIT__ < 1}^{n}(x)", "seqlim_{__IMAGINARY_UNIT__ → ∞}(x)"}) {
    EXPECT_EQ(parsed_static_analyze_term(parse_term_from_str(kept, 0, 0)), parse_term_from_str(kept, 0, 0)) << kept;
  }
}

TEST_F(semantic_term, set_builders_get_one_form) {
  const term_ptr canonical = prepared("A = { x | x > 0, x < 1 }");
  EXPECT_EQ(prepared("A = SetDesc(x, x > 0, x < 1)"), canonical);
  EXPECT_EQ(internal("A = SetDesc(x, x > 0)"), "Eq(A, SetDesc(x, Gt(x, 0)))");
  EXPECT_EQ(prepared("A = SetDesc(x, x > 0)"), prepared("A = { x | x > 0 }"));
  EXPECT_EQ(prepared("A = SetDesc(x)")->right(), app(SetDesc, {var("x")})) << "no condition: nothing to collect";

  // Already canonical, and canonical with a further argument.
  term_ptr p = app(Gt, {var("x"), num(0)});
  term_ptr inner = app(SetDesc, {var("x"), list({p})});
  EXPECT_EQ(normalize_setdesc_for_catch_binder(inner), inner);
  EXPECT_EQ(normalize_setdesc_for_catch_binder(mk_apply(inner, p)), app(SetDesc, {var("x"), list({list({p}), p})}));
  // Nested in its own condition, in a quantifier entry and in a scope, but not in the condition of a function.
  term_ptr raw = app(SetDesc, {var("x"), p});
  EXPECT_EQ(normalize_setdesc_for_catch_binder(app(SetDesc, {raw, raw})), app(SetDesc, {inner, list({inner})}));
  EXPECT_EQ(normalize_setdesc_for_catch_binder(quant(Forall, {app(Belong, {var("x"), raw})}, p)),
            quant(Forall, {app(Belong, {var("x"), inner})}, p));
  EXPECT_EQ(normalize_setdesc_for_catch_binder(with_scope(raw, raw)), with_scope(inner, inner));
  term_ptr function = mk_lambda(term_list{var("x")}, {make_lambda_real_type()}, raw, raw);
  term_ptr expected = mk_lambda(term_list{var("x")}, {make_lambda_real_type()}, raw, inner);
  EXPECT_EQ(normalize_setdesc_for_catch_binder(function), expected);
}

TEST_F(semantic_term, binders_of_each_operator) {
  const text_row rows[] = {
      {"sum_{i = 1}^{n}(i) = 0", "BigSumSup: i"},
      {"sum_{i = k}^{n}(i) = 0", "BigSumSup: i"},
      {"prod_{i ∈ S}(i) = 0", "BigProd: i"},
      {"union_{i = 1}^{n}(A_i) = B", "BigUnionSup: i"},
      {"inter_{i ∈ NatPlus}(A_i) = B", "BigInter: i"},
      {"sum_{a_n = 1}^{3}(a_n) = 0", "BigSumSup:  guards a, n"},
      {"sum_{i < n}(i) = 0", "BigSum:  guards i, n"},
      {"sum_{1 ≤ i < j ≤ n}(i) = 0", "BigSum:  guards i, j, n"},
      {"sum_{m ≤ i ≤ n}(i) = 0", "BigSum:  guards m, i, n"},
      {"sum_{i mod 2 = 1}(i) = 0", "BigSum: i"},
      {"sum_{i ∈ S ∧ i ≠ k}(i) = 0", "BigSum: i guards k"},
      {"sum_{i ∈ S ∧ j = i}(i) = 0", "BigSum:  guards i, S, j"},
      {"lim_{(x, y) → (0, 0)}(x) = 0", "Lim: x, y"},
      {"lim_{|x - a| → 0}(x) = 0", "Lim:  guards x, a"},
      {"int(x * diff(c * x)) = 0", "IndefInt:  guards c, x"},
      {"int(f(x) * diff(x)) = 0", "IndefInt: x"},
      {"int(diff(x) * diff(x)) = 0", "IndefInt: x"},
      {"int_{0}^{x}(f(t) * diff(t)) = 0", "DefInt: t"},
      {"int_{0}^{1}(int_{0}^{y}(f(x, y) * diff(x)) * diff(y)) = 0", "DefInt: y; DefInt: x"},
      {"int_{int(diff(u))}^{1}(diff(t)) = 0", "DefInt: t; IndefInt: u"},
      {"VolumeInt(D, pdiff(x) * diff(y)) = 0", "VolumeInt: x, y"},
      {"int(diff(diff(x))) = 0", "IndefInt: x"},
      {"lim_{x → a}(f(x)) = 0", "Lim: x"},
      {"seqlimsup_{n → ∞}(a_n) = 0", "SeqLimSup: n"},
      {"AsymEquiv(x, 0, f(x), g(x))", "AsymEquiv: x"},
      {"SeqTendsTo(n, PosInfty, a_n, 0)", "SeqTendsTo: n"},
      {"ValDeri(f, x, 1) = 0", "ValDeri: x"},
      {"A = { x | x > 0 }", "SetDesc: x"},
      {"A = { 1 | x > 0 }", ""},
      {"A = { x + y | x > 0 }", "SetDesc: x"},
      {"A = { y + x | x > 0, y > z }", "SetDesc: y, x"},
      {"A = { x | x ∈ { y | y > x } }", "SetDesc: x; SetDesc: y"},
      {"A = { n | a_n > 0 }", "SetDesc: n"},
      {"A = { f(x) | f(x) > 0, x > 0 }", "SetDesc: x"},
      {"f(x) = bigO_{ x → 0 } (x)", "Eq: x"},
      {"f = bigO_{ x → 0 } (x) + littleo_{ y → 0^+ } (bigO_{ z → 0 } (x))", "Eq: x, y, z"},
      {"f < bigO_{ x → 0 } (x)", "Lt: x"},
      {"f = bigO_{ x → x } (x)", "Eq:  guards x"},
      {"f = (fun x . bigO_{ x → 0 } (x))", ""},
      {"(x^2)' = 0", ""},
      {"BigSum(i) = BigSumSup(i, n)", ""},
      {"sin(x) = Plus(x, y)", ""},
  };
  for (const text_row& row : rows) {
    EXPECT_EQ(binders(prepared(row.text)), row.expected) << row.text;
  }
}

TEST_F(semantic_term, variables_bound_from_outside_are_no_binders) {
  EXPECT_EQ(binders(prepared("forall (k), sum_{i = k}^{n}(i) = 0")), "BigSumSup: i");
  EXPECT_EQ(binders(prepared("forall (k), sum_{k = 1}^{n}(k) = 0")), "BigSumSup: k") << "all of them, if none is left";
  EXPECT_EQ(binders(prepared("forall (k ∈ S), sum_{i ∈ S}(k) = 0")), "BigSum: i") << "S counts as bound, too";
  EXPECT_EQ(binders(prepared("forall (n), sum_{i < n}(i) = 0")), "BigSum: i");
  EXPECT_EQ(binders(prepared("(forall (n), n = 1) ∧ sum_{i < n}(i) = 0")), "BigSum:  guards i, n");
  EXPECT_EQ(binders(prepared("forall (c), (c * x)' = c")), "SingleDeri:  guards x");
  EXPECT_EQ(binders(prepared("forall (c)(x), (c * x)' = c")), "") << "all names of the operand";
  EXPECT_EQ(binders(prepared("sum_{k = 1}^{n}(sum_{i < k}(i)) = 0")), "BigSumSup: k; BigSum: i");
  EXPECT_EQ(binders(prepared("forall (a_n), sum_{a_n = i}^{3}(i) = 0")), "BigSumSup: i");
  EXPECT_EQ(binders(prepared("forall (k), A = { k + x | k = x }")), "SetDesc: x");
  EXPECT_EQ(binders(prepared("forall (k), exists (k), forall (i), sum_{j = i + k}^{n}(j) = 0")), "BigSumSup: j");
  EXPECT_EQ(binders(prepared("f = (fun k . sum_{i = k}^{n}(i))")), "BigSumSup: i");

  const term_list outer = {var("k")};
  term_ptr sum = prepared("sum_{i = k}^{n}(i)");
  EXPECT_EQ(catch_binder_term(sum->bare(), outer)->binders(), term_list{var("i")});
}

TEST_F(semantic_term, preparing_again_changes_nothing) {
  for (const char* text : {"forall (k), sum_{i = k}^{n}(sum_{j = i}^{k}(j)) = bigO_{ n → ∞ } (n^2)",
                           "int_{0}^{1}(int(f(x, y) * diff(x)) * diff(y)) = { x | x ∈ (0, 1), x > { y | y > x } }",
                           "sum_{i ∈ { i | i > 0 }}(i) = lim_{x → 0}(x) [@scope sum_{i = k}^{3}(i) = 0 @]",
                           "f = (fun x : RealSet . lim_{y → x}(y))"}) {
    term_ptr t = prepared(text);
    EXPECT_EQ(copy_term_with_binders(t), t) << text;
    EXPECT_EQ(parsed_static_analyze_term(t), t) << text;
  }
}

// What was decided under a binder holds when the term is taken out of it.
TEST_F(semantic_term, a_record_stays) {
  term_ptr under = prepared("forall (c), { c * x | x > 0, x < c } = S")->body();
  EXPECT_EQ(binders(under), "SetDesc: x");
  EXPECT_EQ(copy_term_with_binders(under), under);
  EXPECT_EQ(binders(prepared("{ c * x | x > 0, x < c } = S")), "SetDesc: c, x");
}

TEST_F(semantic_term, null_gives_null) {
  EXPECT_EQ(normalize_parsed_term(nullptr), nullptr);
  EXPECT_EQ(copy_term_with_binders(nullptr), nullptr);
  testing::internal::CaptureStderr();
  EXPECT_EQ(parse_semantic_term_from_str("x +"), nullptr);
  EXPECT_NE(testing::internal::GetCapturedStderr(), "");
}

// Nesting of 10,000 levels in every place that an enclosing operator asks about: each takes a moment, not minutes.
TEST_F(semantic_term, deep_nesting_is_linear) {
  constexpr int depth = 10'000;
  term_ptr x = var("x");
  const auto nested = [&](term_ptr start, auto&& around) {
    term_ptr t = start;
    for (int i = 0; i < depth; ++i) {
      t = around(t);
    }
    return t;
  };
  const auto spoken_of = [&](term_ptr t) { return app(Belong, {x, t}); };
  const auto landau = [&](term_ptr t) { return app(BigO, {x, num(0), t}); };
  term_ptr one = num(1);
  const term_ptr towers[] = {
      nested(var("S"),
             [&](term_ptr t) {
               return app(SetDesc, {x, spoken_of(t)});
             }),
      nested(one,
             [&](term_ptr t) {
               return app(BigSum, {spoken_of(t), one});
             }),
      nested(one,
             [&](term_ptr t) {
               return app(BigSumSup, {app(Eq, {x, one}), t, x});
             }),
      nested(one,
             [&](term_ptr t) {
               return app(IndefInt, {app(Mult, {t, app(D, {x})})});
             }),
      nested(landau(x),
             [&](term_ptr t) {
               return app(Eq, {x, t});
             }),
      nested(one,
             [&](term_ptr t) {
               return app(Eq, {x, landau(t)});
             }),
      nested(app(Eq, {x, one}), [&](term_ptr t) { return quant(Forall, {x}, t); }),
      nested(app(Eq, {x, one}),
             [&](term_ptr t) {
               return quant(Forall, {spoken_of(app(SetDesc, {x, t}))}, spoken_of(x));
             }),
      nested(one, [&](term_ptr t) { return mk_apply(var("f"), t); }),
      nested(var("f"), [&](term_ptr t) { return mk_apply(t, one); }),
  };
  for (term_ptr tower : towers) {
    term_ptr t = normalize_parsed_term(tower);
    ASSERT_NE(t, nullptr);
    EXPECT_GE(t->depth(), tower->depth());
    EXPECT_EQ(copy_term_with_binders(t), t);
  }
}

// Each level has names of its own: what a level asks about must not grow with all the names inside.
TEST_F(semantic_term, deep_nesting_with_many_names_is_linear) {
  constexpr int depth = 10'000;
  const auto numbered = [](const char* name, int i) { return var(name + std::to_string(i)); };
  term_ptr set = var("S");
  for (int i = 0; i < depth; ++i) {
    term_ptr x = numbered("x", i);
    set = app(SetDesc, {app(Plus, {x, var("z")}), app(Belong, {x, app(Union, {numbered("T", i), set})})});
  }
  term_ptr t = normalize_parsed_term(set);
  ASSERT_NE(t, nullptr);
  // z is free in the inner element where the level inside does not bind it: every other level does.
  EXPECT_EQ(t->binders(), (term_list{numbered("x", depth - 1), var("z")}));
  term_ptr inside = spine_of(t->right()->elements()[0]).args[1]->right();
  EXPECT_EQ(inside->binders(), term_list{numbered("x", depth - 2)});
}

// The imaginary unit as the index of every level: all of them are renamed in one walk.
TEST_F(semantic_term, deep_nesting_over_the_imaginary_unit_is_linear) {
  constexpr int depth = 20'000;
  term_ptr unit = mk_const(I);
  term_ptr in_body = unit;
  term_ptr in_bound = num(1);
  term_ptr under_functions = unit;
  term_ptr expected = var("i");
  const lambda_var_type_list real = {make_lambda_real_type()};
  const term_list x = {var("x")};
  for (int i = 0; i < depth; ++i) {
    in_body = app(BigSumSup, {app(Eq, {unit, num(1)}), var("n"), in_body});
    expected = app(BigSumSup, {app(Eq, {var("i"), num(1)}), var("n"), expected});
    in_bound = app(BigSumSup, {app(Eq, {unit, num(1)}), in_bound, unit});
    term_ptr function = mk_lambda(x, real, nullptr, under_functions);
    under_functions = app(Lim, {unit, num(0), function});
  }
  EXPECT_EQ(parsed_static_analyze_term(in_body), expected);
  EXPECT_EQ(parsed_static_analyze_term(in_bound)->name_mask(), var("i")->name_mask());
  EXPECT_EQ(parsed_static_analyze_term(under_functions)->name_mask(), var("i")->name_mask() | var("x")->name_mask());
}

// A binder with the name of the index moves out of the way, as in any substitution; one over the unit itself stops it.
TEST_F(semantic_term, the_index_of_the_imaginary_unit_is_not_captured) {
  EXPECT_EQ(internal("lim_{__IMAGINARY_UNIT__ → 0}(fun i . i + __IMAGINARY_UNIT__)"),
            "Lim(i, 0, fun i1: RealSet . Plus(i1, i))");
  EXPECT_EQ(internal("lim_{__IMAGINARY_UNIT__ → 0}(f(forall (__IMAGINARY_UNIT__), __IMAGINARY_UNIT__ > 0))"),
            "Lim(i, 0, f(forall (__IMAGINARY_UNIT__), (Gt(__IMAGINARY_UNIT__, 0))))");
}

// Each level of a tower may guard what all levels inside speak of. Below the budget that is recorded; beyond it the
// formula is refused.
TEST_F(semantic_term, records_have_a_budget) {
  const auto nested_derivatives = [](int depth) {
    term_ptr t = var("c");
    for (int i = 0; i < depth; ++i) {
      t = app(SingleDeri, {app(Plus, {t, var("x" + std::to_string(i))})});
    }
    return quant(Forall, {var("c")}, app(Eq, {t, num(0)}));
  };
  term_ptr inside = normalize_parsed_term(nested_derivatives(1'000));
  ASSERT_NE(inside, nullptr);
  EXPECT_EQ(inside->body()->left()->right()->guarded().size(), 1'000U);
  testing::internal::CaptureStderr();
  EXPECT_EQ(normalize_parsed_term(nested_derivatives(3'000)), nullptr);
  EXPECT_EQ(testing::internal::GetCapturedStderr(), "Error: nested notations speak of too many variables\n");
}

// A term of forty nodes that is a tree of 2^40: shared subterms are prepared once.
TEST_F(semantic_term, shared_subterms_are_prepared_once) {
  term_ptr sum = prepared("sum_{i = k}^{n}(i)")->bare();
  term_ptr t = sum;
  for (int i = 0; i < 40; ++i) {
    t = app(Plus, {t, t});
  }
  term_ptr expected = prepared("sum_{i = k}^{n}(i)");
  for (int i = 0; i < 40; ++i) {
    expected = app(Plus, {expected, expected});
  }
  EXPECT_EQ(normalize_parsed_term(t), expected);
}

}  // namespace
}  // namespace vetro
