// The two equalities, the hash that goes with the second, and the list operations.
#include "term/compare.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "support/term_tools.h"

namespace vetro {
namespace {

using namespace build;

class compare_test : public testing::Test {
 protected:
  void SetUp() override { reset_state(); }

  // Equality must not depend on the side, and equal terms must share their hash.
  static bool same(term_ptr s, term_ptr t) {
    const bool forth = term_eqb(s, t);
    EXPECT_EQ(forth, term_eqb(t, s)) << "not symmetric";
    EXPECT_TRUE(!forth || alpha_hash(s) == alpha_hash(t)) << "equal terms with different hashes";
    return forth;
  }

  static term_ptr v(const char* name) { return var(name); }
  static term_ptr in_set(term_ptr x) { return app(Belong, {x, var("S")}); }
};

TEST_F(compare_test, bound_names_do_not_count) {
  const term_ptr by_x = forall({v("x")}, gt(v("x"), num(0)));
  const term_ptr by_y = forall({v("y")}, gt(v("y"), num(0)));
  EXPECT_TRUE(same(by_x, by_y));
  EXPECT_FALSE(term_eqb_pure(by_x, by_y));
  EXPECT_FALSE(same(by_x, quant(Exists, {v("x")}, gt(v("x"), num(0)))));
  EXPECT_FALSE(same(by_x, forall({v("x")}, gt(v("x"), num(1)))));
  EXPECT_FALSE(same(by_x, forall({v("x"), v("z")}, gt(v("x"), num(0)))));
  EXPECT_FALSE(same(forall({v("x"), v("y")}, gt(v("x"), v("y"))), forall({v("y"), v("x")}, gt(v("x"), v("y")))));
  EXPECT_TRUE(same(forall({v("x"), v("y")}, gt(v("x"), v("y"))), forall({v("y"), v("x")}, gt(v("y"), v("x")))));
  EXPECT_TRUE(same(sum(v("i"), v("i")), sum(v("j"), v("j"))));
  EXPECT_TRUE(same(sum(v("i"), v("i")), without_meta(sum(v("j"), v("j"))))) << "no record: as at the top of a formula";
  EXPECT_TRUE(same(lambda({v("x")}, v("x"), gt(v("x"), num(0))), lambda({v("y")}, v("y"), gt(v("y"), num(0)))));
  EXPECT_FALSE(same(lambda({v("x")}, v("x"), gt(v("x"), num(0))), lambda({v("x")}, v("x"))));
  const term_ptr vars[] = {v("x")};
  EXPECT_FALSE(
      same(mk_lambda(vars, {make_lambda_base_type(LambdaInteger)}, nullptr, v("x")), lambda({v("x")}, v("x"))));
}

TEST_F(compare_test, free_and_bound_names_never_meet) {
  EXPECT_FALSE(same(forall({v("x")}, v("y")), forall({v("y")}, v("y"))));
  EXPECT_FALSE(same(forall({v("x")}, v("z")), forall({v("y")}, v("y"))));
  EXPECT_FALSE(same(forall({v("x")}, v("x")), forall({v("y")}, v("x"))));
  EXPECT_TRUE(same(forall({v("x")}, v("z")), forall({v("y")}, v("z"))));
  // The same address on both sides means different things under x ~ y.
  const term_ptr shared = gt(v("x"), v("y"));
  EXPECT_FALSE(same(forall({v("x")}, shared), forall({v("y")}, shared)));
}

TEST_F(compare_test, the_newest_binding_counts_on_both_sides) {
  const term_ptr x = v("x");
  const term_ptr y = v("y");
  const auto two = [](term_ptr first, term_ptr second, term_ptr body) {
    return forall({first}, quant(Exists, {second}, body));
  };
  EXPECT_TRUE(same(two(x, x, x), two(x, y, y)));
  EXPECT_FALSE(same(two(x, x, x), two(x, y, x)));
  EXPECT_FALSE(same(two(x, y, x), two(y, y, y))) << "on the right y is the inner one";
  EXPECT_TRUE(same(forall({x, x}, x), forall({x, y}, y)));
  EXPECT_FALSE(same(forall({x, x}, x), forall({x, y}, x)));
  // After the inner quantifier the outer binding counts again.
  EXPECT_TRUE(same(forall({x}, conj(quant(Exists, {x}, x), x)), forall({y}, conj(quant(Exists, {x}, x), y))));
  EXPECT_FALSE(same(forall({x}, conj(quant(Exists, {x}, x), x)), forall({y}, conj(quant(Exists, {x}, x), x))));
}

TEST_F(compare_test, an_entry_that_is_no_variable_binds_nothing) {
  const term_ptr x = v("x");
  const term_ptr y = v("y");
  EXPECT_FALSE(same(forall({in_set(x)}, gt(x, num(0))), forall({in_set(y)}, gt(y, num(0)))));
  EXPECT_FALSE(same(forall({in_set(x)}, v("p")), forall({x}, v("p"))));
  EXPECT_TRUE(same(forall({x, in_set(x)}, x), forall({y, in_set(y)}, y))) << "under an earlier pair it is compared";
}

TEST_F(compare_test, scopes_and_binders) {
  const term_ptr x = v("x");
  const term_ptr positive = gt(x, num(0));
  const term_ptr scoped = with_scope(x, positive);
  EXPECT_FALSE(same(x, scoped));
  EXPECT_TRUE(term_eqb_pure(x, scoped));
  EXPECT_FALSE(same(scoped, with_scope(x, gt(x, num(1)))));
  // { x + y | x > y } over both names, and over x for a given y.
  const term_ptr both = app(SetDesc, {plus(x, v("y")), list({gt(x, v("y"))})});
  EXPECT_FALSE(same(both, with_binders(both, {x})));
  EXPECT_TRUE(term_eqb_pure(both, with_binders(both, {x})));
  // A scope sees the binders of its node, and not the variables of the quantifier that it stands behind.
  EXPECT_TRUE(same(with_scope(sum(v("i"), v("i")), v("i")), with_scope(sum(v("j"), v("j")), v("j"))));
  EXPECT_FALSE(same(with_scope(forall({x}, x), x), with_scope(forall({v("y")}, v("y")), v("y"))));
  EXPECT_TRUE(same(with_scope(forall({x}, x), x), with_scope(forall({v("y")}, v("y")), x)));
  const soft_type soft{ST_Num, nullptr, nullptr, 0, 0, {}};
  EXPECT_TRUE(same(plus(x, num(1)), plus(with_meta(x, {{}, nullptr, &soft}), num(1)))) << "soft types take no part";
}

TEST_F(compare_test, constants) {
  EXPECT_FALSE(same(mk_decimal("1.5"), mk_decimal("1.50")));
  EXPECT_FALSE(same(num(1), num(-1)));
  EXPECT_FALSE(same(num(0), mk_const(EmptySet)));
  EXPECT_FALSE(term_eqb_pure(num(1), mk_decimal("1")));
  EXPECT_FALSE(same(list({v("x")}), list({v("x"), v("x")})));
}

TEST_F(compare_test, null_terms) {
  testing::internal::CaptureStderr();
  EXPECT_TRUE(term_eqb(nullptr, nullptr));
  EXPECT_TRUE(term_eqb_pure(nullptr, nullptr));
  EXPECT_EQ(testing::internal::GetCapturedStderr(), "");
  testing::internal::CaptureStderr();
  EXPECT_FALSE(alpha_equivalent(nullptr, v("x")));
  EXPECT_FALSE(term_eqb_pure(v("x"), nullptr));
  EXPECT_EQ(testing::internal::GetCapturedStderr(),
            "Error: alpha_eq_term visiting NULL pointer\nError: term_eqb_pure visiting NULL pointer\n");
}

TEST_F(compare_test, hashes_follow_the_binding_structure) {
  const term_ptr body = plus(v("x"), v("y"));
  const std::vector<term_ptr> different = {
      forall({v("x")}, body),         forall({v("y")}, body),
      forall({v("z")}, body),         forall({v("x"), v("y")}, body),
      forall({v("y"), v("x")}, body), quant(Exists, {v("x")}, body),
      lambda({v("x")}, body),         lambda({v("x")}, body, v("x")),
      with_binders(body, {v("x")}),   with_scope(with_binders(body, {v("x")}), v("x"))};
  for (std::size_t i = 0; i < different.size(); ++i) {
    for (std::size_t j = 0; j < i; ++j) {
      EXPECT_NE(alpha_hash(different[i]), alpha_hash(different[j])) << i << " and " << j;
      EXPECT_FALSE(same(different[i], different[j])) << i << " and " << j;
    }
  }
  EXPECT_EQ(alpha_hash(nullptr), 0U);
}

// More variables than the mask of names has bits, nested deeper than the scanned part of the bindings.
TEST_F(compare_test, many_nested_bindings) {
  const auto nest = [](const std::string& prefix, int meant) {
    term_ptr t = plus(var(prefix + std::to_string(meant)), var("free"));
    for (int i = 0; i < 200; ++i) {
      t = quant(i % 2 == 0 ? Forall : Exists, {var(prefix + std::to_string(i))}, t);
    }
    return t;
  };
  EXPECT_TRUE(same(nest("a", 7), nest("b", 7)));
  EXPECT_TRUE(same(nest("a", 198), nest("b", 198)));
  EXPECT_FALSE(same(nest("a", 7), nest("b", 8)));
  EXPECT_FALSE(same(nest("a", 7), nest("b", 200)));
}

TEST_F(compare_test, deep_and_shared_terms) {
  const auto closed = [](const char* name, auto&& body) { return forall({var(name)}, body(var(name))); };
  const auto deep = [](term_ptr t) { return tower(t); };
  const auto spine = [](term_ptr t) { return left_spine(t); };
  const auto shared = [](term_ptr t) { return doubled(t); };
  EXPECT_TRUE(same(closed("x", deep), closed("y", deep)));
  EXPECT_TRUE(same(closed("x", spine), closed("y", spine)));
  EXPECT_TRUE(same(closed("x", shared), closed("y", shared)));
  EXPECT_FALSE(same(closed("x", deep), forall({v("x")}, tower(v("y")))));
  const term_ptr inner_x = forall({v("x")}, v("x"));
  const term_ptr inner_y = forall({v("y")}, v("y"));
  EXPECT_TRUE(same(doubled(inner_x), doubled(inner_y)));
  EXPECT_FALSE(same(doubled(conj(inner_x, v("a"))), doubled(conj(inner_y, v("b")))));
  term_ptr many_x = v("p");
  term_ptr many_y = v("p");
  for (int i = 0; i < deep_levels; ++i) {
    many_x = forall({var(i % 2 == 0 ? "x" : "u")}, many_x);
    many_y = forall({v("y")}, many_y);
  }
  EXPECT_TRUE(same(many_x, many_y));
}

TEST_F(compare_test, lists) {
  const term_ptr a = v("a");
  const term_ptr b = v("b");
  const term_ptr c = v("c");
  const term_ptr by_x = forall({v("x")}, v("x"));
  const term_ptr by_y = forall({v("y")}, v("y"));
  EXPECT_TRUE(term_list_contains(term_list{a, by_x}, by_y));
  EXPECT_FALSE(term_list_contains(term_list{a, by_x}, b));
  EXPECT_FALSE(term_list_contains({}, a));
  EXPECT_TRUE(term_list_overlaps(term_list{a, b}, term_list{c, b}));
  EXPECT_FALSE(term_list_overlaps(term_list{a, b}, term_list{c}));
  EXPECT_EQ(term_list_nth(term_list{a, by_x, by_y}, by_y), 1);
  EXPECT_EQ(term_list_nth(term_list{a}, b), -1);
  EXPECT_TRUE(term_list_eqb_pure(term_list{a, with_scope(b, a)}, term_list{a, b}));
  EXPECT_FALSE(term_list_eqb_pure(term_list{a}, term_list{a, a}));

  term_list changed = {a, b, a, c, b};
  term_list_dedup(changed);
  EXPECT_EQ(changed, (term_list{a, b, c}));
  changed = {by_x, by_y, with_scope(by_x, a)};
  term_list_dedup(changed);
  EXPECT_EQ(changed, (term_list{by_x, by_y})) << "exact equality decides";
  changed = {a, b, a, c};
  term_list_remove(a, changed);
  EXPECT_EQ(changed, (term_list{b, c}));
  term_list_remove(nullptr, changed);
  term_list_remove_multiple(term_list{c, a}, changed);
  EXPECT_EQ(changed, (term_list{b}));
  changed = {a, b};
  term_list_replace_nth(changed, c, 1);
  term_list_replace_nth(changed, b, -3);
  EXPECT_EQ(changed, (term_list{b, c}));
  testing::internal::CaptureStderr();
  term_list_replace_nth(changed, a, 2);
  EXPECT_EQ(testing::internal::GetCapturedStderr(), "Error: term_list_replace_nth has invalid argument\n");
  EXPECT_EQ(changed, (term_list{b, c}));
  term_list many;
  for (int i = 0; i < 60; ++i) {
    many.push_back(num(i % 30));
  }
  term_list_dedup(many);
  ASSERT_EQ(many.size(), 30U);
  EXPECT_EQ(many[29], num(29));
}

}  // namespace
}  // namespace vetro
