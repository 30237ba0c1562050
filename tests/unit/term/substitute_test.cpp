// Fresh names, both substitutions, beta normalisation. Names that are drawn are part of what is tested: the counter
// stands at 0 at the start of each test.
#include <gtest/gtest.h>

#include <string>

#include "number/limits.h"
#include "support/term_tools.h"
#include "term/compare.h"
#include "term/substitute/beta.h"
#include "term/substitute/careful.h"
#include "term/substitute/fresh.h"
#include "term/substitute/plain.h"
#include "term/variables/free_names.h"

namespace vetro {
namespace {

using namespace build;

class substitute_test : public testing::Test {
 protected:
  void SetUp() override {
    reset_state();
    a = var("a"), b = var("b"), c = var("c"), n = var("n"), p = var("p");
    x = var("x"), y = var("y"), z = var("z");
    y_plus_1 = plus(y, num(1));
  }

  static int drawn() { return state().fresh_counter; }
  static term_ptr eq(term_ptr left, term_ptr right) { return app(Eq, {left, right}); }

  term_ptr a, b, c, n, p, x, y, z, y_plus_1;
};

// ---- Names.

TEST_F(substitute_test, fresh_counts_and_skips_what_occurs) {
  EXPECT_EQ(fresh(x, nullptr), var("x1"));
  EXPECT_EQ(fresh(x, x), var("x2"));
  EXPECT_EQ(fresh(y, nullptr), var("y3"));
  EXPECT_EQ(fresh(var("x1"), nullptr), var("x14"));
  EXPECT_EQ(fresh(x, list({plus(var("x5"), var("x6")), var("x8")})), var("x7"));
  testing::internal::CaptureStderr();
  EXPECT_EQ(fresh(num(1), nullptr), nullptr);
  EXPECT_EQ(fresh(nullptr, x), nullptr);
  EXPECT_EQ(testing::internal::GetCapturedStderr(),
            "Error: fresh has invalid argument\nError: fresh has invalid argument\n");
  EXPECT_EQ(drawn(), 7);
}

// Each name that is tried and taken must not cost a search of its own.
TEST_F(substitute_test, fresh_passes_over_many_names) {
  term_ptr sum = x;
  for (int i = 1; i <= 30'000; ++i) {
    sum = plus(sum, var("x" + std::to_string(i)));
  }
  EXPECT_EQ(fresh(x, sum), var("x30001"));
}

TEST_F(substitute_test, a_name_is_found_in_every_part) {
  const term_ptr holders[] = {plus(a, x),
                              plus(x, a),
                              forall({x}, a),
                              forall({a}, x),
                              lambda({x}, a),
                              lambda({a}, x),
                              lambda({a}, a, x),
                              list({a, x}),
                              mk_free_var_tag(term_list{x}, a),
                              mk_free_var_tag(term_list{a}, x),
                              with_scope(a, x),
                              with_binders(a, {x}),
                              app(Belong, {a, with_scope(a, forall({app(Belong, {x, b})}, a))}),
                              tower(x),
                              left_spine(x)};
  for (const term_ptr holder : holders) {
    EXPECT_TRUE(name_occurs("x", holder));
    EXPECT_FALSE(name_occurs("y", holder));
    EXPECT_FALSE(term_is_fresh_var(x, holder));
    EXPECT_TRUE(term_is_fresh_var(y, holder));
  }
  EXPECT_FALSE(term_is_fresh_var(y, nullptr));
  EXPECT_FALSE(term_is_fresh_var(num(1), a));
  EXPECT_FALSE(term_is_fresh_var(nullptr, a));
}

// A hundred names fill the mask, so that the terms have to be searched.
TEST_F(substitute_test, an_absent_name_in_a_shared_term) {
  term_list names;
  for (int i = 0; i < 1000; ++i) {
    names.push_back(var("v" + std::to_string(i)));
  }
  EXPECT_FALSE(name_occurs("w", doubled(mk_term_list(names))));
  EXPECT_TRUE(name_occurs("v999", doubled(mk_term_list(names))));
}

// ---- Plain substitution.

TEST_F(substitute_test, plain_replaces_any_subterm) {
  const term_ptr ab = plus(a, b);
  EXPECT_EQ(subst_term(ab, c, app(Mult, {ab, num(2)})), app(Mult, {c, num(2)}));
  EXPECT_EQ(subst_term(ab, c, plus(ab, x)), plus(c, x));
  EXPECT_EQ(subst_term(ab, c, plus(a, plus(b, x))), plus(a, plus(b, x)));
  EXPECT_EQ(subst_term(x, a, list({x, eq(y, x)})), list({a, eq(y, a)}));
  EXPECT_EQ(subst_term(x, a, mk_free_var_tag(term_list{x}, x)), mk_free_var_tag(term_list{a}, a));
  EXPECT_EQ(subst_term(mk_oper(Plus), mk_oper(Mult), ab), app(Mult, {a, b}));
  EXPECT_EQ(subst_term(x, plus(x, x), plus(x, y)), plus(plus(x, x), y)) << "what is put in is not walked again";
  EXPECT_EQ(subst_term_list(x, a, term_list{x, y}), (term_list{a, y}));
  EXPECT_EQ(drawn(), 0);
}

TEST_F(substitute_test, plain_leaves_metadata_alone) {
  const term_ptr scope = gt(x, num(0));
  const term_ptr t = with_scope(plus(x, y), scope);
  EXPECT_EQ(subst_term(x, a, t), with_scope(plus(a, y), scope));
  EXPECT_EQ(subst_term(plus(x, y), a, t), a) << "metadata plays no part in the match";
  EXPECT_EQ(subst_term(x, a, with_scope(y, scope)), with_scope(y, scope));
  EXPECT_EQ(subst_term(x, a, with_meta(forall({y}, x), {{z}, scope, nullptr})),
            with_meta(forall({y}, a), {{z}, scope, nullptr}));
}

TEST_F(substitute_test, plain_stops_where_src_is_bound) {
  EXPECT_EQ(subst_term(x, a, sum(x, x)), sum(x, x));
  EXPECT_EQ(subst_term(x, a, plus(x, forall({y, x}, x))), plus(a, forall({y, x}, x)));
  EXPECT_EQ(subst_term(x, a, lambda({x}, x, x)), lambda({x}, x, x));
  const term_ptr member = app(Belong, {x, a});
  EXPECT_EQ(subst_term(x, b, forall({member}, x)), forall({member}, b)) << "such an entry is no variable";
  EXPECT_EQ(subst_term(with_scope(x, p), a, forall({x}, x)), forall({x}, x)) << "a scope makes no other variable";
}

TEST_F(substitute_test, plain_renames_a_binder_that_is_dest) {
  EXPECT_EQ(subst_term(x, y, forall({y}, eq(x, y))), forall({var("y1")}, eq(y, var("y1"))));
  EXPECT_EQ(subst_term(x, y, lambda({z, y}, plus(x, y), gt(y, x))),
            lambda({z, var("y2")}, plus(y, var("y2")), gt(var("y2"), y)));
  EXPECT_EQ(subst_term(x, y, sum(y, plus(x, y))), sum(var("y3"), plus(y, var("y3"))));
  EXPECT_EQ(drawn(), 3);
  EXPECT_EQ(subst_term(x, y_plus_1, forall({y}, eq(x, y))), forall({y}, eq(y_plus_1, y))) << "no protection here";
  EXPECT_EQ(drawn(), 3);
  // Two entries of one name stay one binding: none may be left to capture what is put in.
  EXPECT_EQ(subst_term(x, y, forall({y, y}, eq(x, y))), forall({var("y4"), var("y4")}, eq(y, var("y4"))));
}

// The renaming happens also where src does not occur, however the place is reached.
TEST_F(substitute_test, plain_renames_where_nothing_is_replaced) {
  const term_ptr inner = forall({y}, gt(y, num(0)));
  const term_ptr renamed1 = forall({var("y1")}, gt(var("y1"), num(0)));
  const term_ptr renamed2 = forall({var("y2")}, gt(var("y2"), num(0)));
  EXPECT_EQ(subst_term(x, y, conj(inner, inner)), conj(renamed1, renamed2)) << "each occurrence draws its own name";
  EXPECT_EQ(drawn(), 2);
  EXPECT_EQ(subst_term(x, z, inner), inner);
  EXPECT_EQ(subst_term(x, y, forall({x}, inner)), forall({x}, inner)) << "not under a bound src";
  EXPECT_EQ(drawn(), 2);
  // In a large term, where results are remembered, too.
  const term_ptr large = conj(doubled(a, 10), conj(inner, inner));
  EXPECT_EQ(subst_term(x, y, large)->right(),
            conj(forall({var("y3")}, gt(var("y3"), num(0))), forall({var("y4")}, gt(var("y4"), num(0)))));
}

TEST_F(substitute_test, plain_failures) {
  testing::internal::CaptureStderr();
  EXPECT_EQ(subst_term(nullptr, a, x), nullptr);
  EXPECT_EQ(subst_term(x, nullptr, x), nullptr);
  EXPECT_EQ(subst_term(x, a, nullptr), nullptr);
  EXPECT_EQ(subst_term(x, a, plus(list({}), list({}))), nullptr) << "an empty list is a failure, and the walk goes on";
  EXPECT_TRUE(subst_term_list(x, a, term_list{x, list({})}).empty());
  std::string expected;
  for (int i = 0; i < 6; ++i) {
    expected += "Error: subst_term visiting NULL pointer\n";
  }
  EXPECT_EQ(testing::internal::GetCapturedStderr(), expected);
}

// ---- Capture-avoiding substitution.

TEST_F(substitute_test, careful_renames_what_would_capture) {
  EXPECT_EQ(subst_term_capture_avoiding(x, y_plus_1, forall({y}, eq(x, y))),
            forall({var("y1")}, eq(y_plus_1, var("y1"))));
  EXPECT_EQ(subst_term_capture_avoiding(x, plus(y, z), lambda({y, a, z}, list({x, y, z}), gt(x, z))),
            lambda({var("y2"), a, var("z3")}, list({plus(y, z), var("y2"), var("z3")}), gt(plus(y, z), var("z3"))));
  EXPECT_EQ(subst_term_capture_avoiding(x, y_plus_1, sum(y, plus(x, y))), sum(var("y4"), plus(y_plus_1, var("y4"))));
  EXPECT_EQ(drawn(), 4);
  EXPECT_EQ(subst_term_capture_avoiding(x, forall({y}, y), forall({y}, eq(x, y))), forall({y}, eq(forall({y}, y), y)))
      << "a bound name of dest is not captured";
  EXPECT_EQ(subst_term_capture_avoiding(x, y_plus_1, forall({x}, forall({y}, x))), forall({x}, forall({y}, x)));
  EXPECT_EQ(subst_term_capture_avoiding(x, y_plus_1, sum(x, x)), sum(x, x));
  EXPECT_EQ(drawn(), 4);
  EXPECT_EQ(subst_term_capture_avoiding(x, y_plus_1, forall({y}, y)), forall({var("y5")}, var("y5")))
      << "also where nothing is replaced";
  // The name must be new in dest as well, even where the counter would give one of it.
  EXPECT_EQ(subst_term_capture_avoiding(x, plus(y, var("y6")), forall({y}, x)),
            forall({var("y7")}, plus(y, var("y6"))));
}

TEST_F(substitute_test, careful_keeps_the_newest_binding) {
  const term_ptr inner = forall({y}, gt(y, x));
  EXPECT_EQ(subst_term_capture_avoiding(x, y, forall({y}, conj(gt(y, x), inner))),
            forall({var("y1")}, conj(gt(var("y1"), y), forall({var("y2")}, gt(var("y2"), y)))));
  EXPECT_TRUE(term_eqb(subst_term_capture_avoiding(x, y, lambda({y, y}, plus(x, y))), lambda({a, b}, plus(y, b))));
}

TEST_F(substitute_test, careful_walks_scopes) {
  EXPECT_EQ(subst_term_capture_avoiding(x, a, with_scope(plus(y, z), gt(x, num(0)))),
            with_scope(plus(y, z), gt(a, num(0))));
  EXPECT_EQ(subst_term_capture_avoiding(x, a, with_scope(forall({y}, x), x)), with_scope(forall({y}, a), a));
  EXPECT_EQ(subst_term_capture_avoiding(x, y, with_scope(sum(y, x), gt(y, x))),
            with_scope(sum(var("y1"), y), gt(var("y1"), y)));
  EXPECT_EQ(subst_term_capture_avoiding(x, a, with_scope(y, x)), with_scope(y, x)) << "a leaf is taken over";
  EXPECT_EQ(subst_term_capture_avoiding(x, a, list({})), list({}));
  EXPECT_EQ(subst_term_capture_avoiding(nullptr, a, x), nullptr);
  EXPECT_EQ(subst_term_capture_avoiding(x, nullptr, x), nullptr);
  EXPECT_EQ(subst_term_capture_avoiding(x, a, nullptr), nullptr);
}

TEST_F(substitute_test, ordinary_free_variables) {
  EXPECT_EQ(plain_free_variables(plus(app(Index, {a, n}), plus(b, a))), (term_list{a, n, b}));
  EXPECT_EQ(plain_free_variables(forall({x, app(Belong, {y, a})}, list({x, y, z}))), (term_list{a, z}));
  EXPECT_EQ(plain_free_variables(with_scope(lambda({x}, plus(x, y), z), x)), (term_list{z, y, x}));
  EXPECT_EQ(plain_free_variables(with_scope(sum(x, plus(x, y)), gt(x, a))), (term_list{n, y, a}));
  EXPECT_EQ(plain_free_variables(plus(forall({x}, x), x)), (term_list{x}));
  EXPECT_TRUE(plain_free_variables(nullptr).empty());
  EXPECT_EQ(plain_free_variables(doubled(plus(forall({x}, plus(x, y)), z))), (term_list{y, z}));
}

// Closed stays closed, and substituting for a name that is not free changes nothing up to bound names.
TEST_F(substitute_test, laws) {
  const term_ptr samples[] = {forall({x}, gt(x, y)), sum(x, plus(y, forall({y}, eq(x, y)))),
                              lambda({x, y}, plus(x, z), gt(y, z)),
                              with_scope(conj(forall({z}, eq(z, y)), sum(y, plus(y, z))), gt(y, z)),
                              list({forall({x}, quant(Exists, {y}, gt(x, plus(y, z)))), y})};
  const term_ptr values[] = {y, z, y_plus_1, plus(x, sum(y, plus(y, z))), num(2)};
  for (const term_ptr t : samples) {
    for (const term_ptr value : values) {
      const term_list before = plain_free_variables(t);
      const term_ptr absent = subst_term_capture_avoiding(x, value, t);
      EXPECT_TRUE(term_list_contains(before, x) || term_eqb(absent, t));
      const term_ptr result = subst_term_capture_avoiding(z, value, t);
      for (const term_ptr var : plain_free_variables(result)) {
        EXPECT_TRUE(term_list_contains(before, var) || term_list_contains(plain_free_variables(value), var));
      }
      EXPECT_EQ(term_list_contains(plain_free_variables(result), y),
                term_list_contains(before, y) ||
                    (term_list_contains(before, z) && term_list_contains(plain_free_variables(value), y)));
    }
  }
}

TEST_F(substitute_test, deep_and_shared_terms) {
  EXPECT_EQ(subst_term(x, a, tower(x)), tower(a));
  EXPECT_EQ(subst_term(x, a, left_spine(x)), left_spine(a));
  EXPECT_EQ(subst_term(x, a, doubled(x)), doubled(a));
  EXPECT_EQ(subst_term_capture_avoiding(x, a, tower(x)), tower(a));
  EXPECT_EQ(subst_term_capture_avoiding(x, a, left_spine(x)), left_spine(a));
  EXPECT_EQ(subst_term_capture_avoiding(x, y, doubled(plus(x, forall({z}, z)))), doubled(plus(y, forall({z}, z))));
  EXPECT_EQ(subst_term(tower(y, 1000), a, tower(y)), tower(a, deep_levels - 1000));
}

// ---- Beta normalisation.

TEST_F(substitute_test, beta_applies_functions) {
  EXPECT_EQ(beta_normalize_term(app(lambda({x}, plus(x, num(1))), {num(2)})), plus(num(2), num(1)));
  EXPECT_EQ(beta_normalize_term(app(lambda({x}, x), {a, b})), app(a, {b}));
  const term_ptr partial = app(lambda({x, y}, x), {a});
  EXPECT_EQ(beta_normalize_term(partial), partial);
  EXPECT_EQ(beta_normalize_term(app(lambda({x, y}, app(Minus, {x, y})), {y, x})), app(Minus, {y, x})) << "at once";
  EXPECT_EQ(beta_normalize_term(app(lambda({x}, lambda({y}, plus(x, y))), {a, b})), plus(a, b));
  EXPECT_EQ(beta_normalize_term(app(lambda({x}, app(x, {a})), {lambda({y}, plus(y, y))})), plus(a, a));
  EXPECT_EQ(beta_normalize_term(app(lambda({x}, a, gt(x, num(0))), {b})), a) << "the condition plays no part";
  EXPECT_TRUE(
      term_eqb(beta_normalize_term(app(lambda({x}, forall({y}, eq(x, y))), {y_plus_1})), forall({z}, eq(y_plus_1, z))));
  EXPECT_EQ(beta_normalize_term(app(lambda({x, x}, x), {a, b})), b) << "the newest binding counts";
  EXPECT_EQ(beta_normalize_term(nullptr), nullptr);
}

TEST_F(substitute_test, beta_reaches_every_part) {
  const term_ptr redex = app(lambda({x}, x), {a});
  const term_ptr t = list({forall({y}, redex), lambda({y}, redex, redex), mk_free_var_tag(term_list{b}, redex),
                           with_meta(plus(redex, b), {{z}, redex, nullptr})});
  EXPECT_EQ(beta_normalize_term(t), list({forall({y}, a), lambda({y}, a, a), mk_free_var_tag(term_list{b}, a),
                                          with_meta(plus(a, b), {{z}, a, nullptr})}));
  EXPECT_EQ(beta_normalize_term(with_meta(redex, {{z}, p, nullptr})), a) << "the metadata of a reduced node is gone";
  const term_ptr normal = forall({y}, plus(y, num(1)));
  EXPECT_EQ(beta_normalize_term(normal), normal);
}

TEST_F(substitute_test, beta_adds_functions_pointwise) {
  const term_ptr f = lambda({x}, x);
  const term_ptr g = lambda({y}, app(Mult, {y, num(2)}));
  const term_ptr expected = plus(x, app(Mult, {x, num(2)}));
  EXPECT_TRUE(term_eqb(beta_normalize_term(plus(f, g)), lambda({x}, expected)));
  EXPECT_EQ(beta_normalize_term(app(plus(f, g), {a})), plus(a, app(Mult, {a, num(2)})));
  for (const oper_type oper : {Minus, Mult, Div}) {
    EXPECT_TRUE(term_eqb(beta_normalize_term(app(oper, {f, f})), lambda({a}, app(oper, {a, a}))));
  }
  const term_ptr two = lambda({x, y}, plus(x, y));
  EXPECT_TRUE(
      term_eqb(beta_normalize_term(app(Minus, {two, two})), lambda({a, b}, app(Minus, {plus(a, b), plus(a, b)}))));
  for (const term_ptr stands : {plus(f, two), app(Power, {f, f}), plus(f, a), plus(a, f), app(Eq, {f, f})}) {
    EXPECT_EQ(beta_normalize_term(stands), stands);
  }
}

TEST_F(substitute_test, beta_substitution_needs_as_many_arguments) {
  EXPECT_EQ(beta_substitute_lambda(lambda({x, y}, plus(x, y)), term_list{y, x}), plus(y, x));
  EXPECT_EQ(beta_substitute_lambda(lambda({x, y}, x), term_list{a}), nullptr);
  EXPECT_EQ(beta_substitute_lambda(lambda({x}, x), term_list{a, b}), nullptr);
  EXPECT_EQ(beta_substitute_lambda(lambda({}, x), {}), nullptr);
  EXPECT_EQ(beta_substitute_lambda(forall({x}, x), term_list{a}), nullptr);
  EXPECT_EQ(beta_substitute_lambda(nullptr, term_list{a}), nullptr);
  EXPECT_EQ(beta_substitute_lambda(lambda({x}, x), term_list{nullptr}), nullptr);
}

TEST_F(substitute_test, beta_names_are_drawn_in_order) {
  // One name for each parameter; a result that is normal draws none when it is read again.
  beta_normalize_term(app(lambda({x, y}, plus(x, y)), {a, b}));
  EXPECT_EQ(drawn(), 2);
  // A shared redex is reduced at every occurrence.
  const term_ptr redex = app(lambda({x}, x), {a});
  EXPECT_EQ(beta_normalize_term(plus(redex, redex)), plus(a, a));
  EXPECT_EQ(drawn(), 4);
}

TEST_F(substitute_test, a_step_that_fails_leaves_the_application) {
  const term_ptr odd = app(lambda({num(1)}, a), {b, c});
  testing::internal::CaptureStderr();
  EXPECT_EQ(beta_normalize_term(odd), odd);
  EXPECT_EQ(testing::internal::GetCapturedStderr(),
            "Error: fresh has invalid argument\nError: fresh has invalid argument\n");
}

TEST_F(substitute_test, beta_ends_by_its_budget) {
  const term_ptr self = lambda({x}, app(x, {x}));
  EXPECT_EQ(beta_normalize_term(app(self, {self})), nullptr);
  const term_ptr growing = lambda({x}, app(x, {x, x}));
  EXPECT_EQ(beta_normalize_term(list({a, app(growing, {growing})})), nullptr);
  const term_ptr twice = lambda({x}, plus(x, x));
  term_ptr inside = a;
  term_ptr beyond = a;
  for (int i = 0; i < 40; ++i) {
    inside = i < 15 ? app(twice, {inside}) : inside;
    beyond = app(twice, {beyond});
  }
  EXPECT_EQ(beta_normalize_term(inside), doubled(a, 15));
  EXPECT_EQ(beta_normalize_term(beyond), nullptr);
}

TEST_F(substitute_test, beta_on_deep_terms) {
  const term_ptr redex = app(lambda({x}, x), {a});
  EXPECT_EQ(beta_normalize_term(tower(redex)), tower(a));
  EXPECT_EQ(beta_normalize_term(left_spine(redex)), left_spine(a));
  EXPECT_EQ(beta_normalize_term(left_spine(app(b, {lambda({x}, x)}))), left_spine(app(b, {lambda({x}, x)})));
  const term_ptr fun = lambda({x}, plus(x, num(1)));
  EXPECT_EQ(beta_normalize_term(doubled(fun, 0)), fun);
  EXPECT_EQ(beta_normalize_term(app(lambda({x}, tower(x)), {a})), tower(a));
}

}  // namespace
}  // namespace vetro
