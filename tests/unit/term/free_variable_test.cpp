// Free variables with indexed names, order, bound lists and messages.
#include "term/variables/free_variable.h"

#include <gtest/gtest.h>

#include <string>

#include "support/term_tools.h"
#include "term/variables/free_names.h"

namespace vetro {
namespace {

using namespace build;

class free_variable_test : public testing::Test {
 protected:
  void SetUp() override {
    reset_state();
    a = var("a"), b = var("b"), n = var("n"), s = var("S"), x = var("x"), y = var("y"), z = var("z");
    a_n = app(Index, {a, n});
  }
  term_ptr a, b, n, s, x, y, z, a_n;
};

TEST_F(free_variable_test, what_a_variable_is) {
  EXPECT_TRUE(term_is_var(x));
  EXPECT_TRUE(term_is_var(a_n));
  EXPECT_TRUE(term_is_var(app(Index, {num(1), num(2)})));
  EXPECT_FALSE(term_is_var(app(Index, {a})));
  EXPECT_FALSE(term_is_var(app(Index, {a, n, b})));
  EXPECT_FALSE(term_is_var(app(Power, {a, n})));
  EXPECT_FALSE(term_is_var(num(1)));
  testing::internal::CaptureStderr();
  EXPECT_FALSE(term_is_var(nullptr));
  EXPECT_EQ(testing::internal::GetCapturedStderr(), "Error: term_is_var visiting NULL pointer\n");
}

TEST_F(free_variable_test, order_and_duplicates) {
  EXPECT_EQ(term_free_variable(plus(a_n, b)), (term_list{a_n, b}));
  EXPECT_EQ(term_free_variable(plus(x, x)), (term_list{x}));
  EXPECT_EQ(term_free_variable(plus(y, plus(x, y))), (term_list{y, x}));
  EXPECT_EQ(term_free_variable(plus(a_n, plus(a, n))), (term_list{a_n, a, n}));
  EXPECT_TRUE(term_free_variable(plus(num(1), mk_const(Pi))).empty());
  EXPECT_EQ(term_free_variable(mk_free_var_tag(term_list{x}, y)), (term_list{y}));
  term_list many;
  for (int i = 0; i < 100; ++i) {
    many.push_back(var("v" + std::to_string(i)));
  }
  EXPECT_EQ(term_list_free_variable(many), many);
  EXPECT_EQ(term_free_variable(plus(mk_term_list(many), mk_term_list(many))), many);
}

TEST_F(free_variable_test, bindings) {
  EXPECT_EQ(term_free_variable(forall({x}, gt(x, y))), (term_list{y}));
  EXPECT_EQ(term_free_variable(forall({app(Belong, {x, s})}, list({x, y, s}))), (term_list{y}))
      << "an entry binds all its variables, and none is reported";
  EXPECT_EQ(term_free_variable(lambda({x}, plus(x, y), gt(x, z))), (term_list{z, y}));
  EXPECT_EQ(term_free_variable(sum(x, plus(x, y))), (term_list{n, y}));
  EXPECT_EQ(term_free_variable(with_scope(sum(x, x), gt(x, y))), (term_list{n, y})) << "binders hold in the scope";
  EXPECT_EQ(term_free_variable(with_scope(forall({x}, y), x)), (term_list{y, x})) << "the variables of a Quant do not";
  EXPECT_EQ(term_free_variable(conj(forall({x}, x), x)), (term_list{x})) << "a binding ends with its node";
  EXPECT_EQ(term_free_variable(conj(x, forall({x}, x))), (term_list{x}));
  EXPECT_EQ(term_free_variable(forall({x, y}, forall({x}, list({x, y, z})))), (term_list{z}));
  EXPECT_EQ(term_free_variable(forall({n}, a_n)), (term_list{a_n})) << "the index is not looked at";
  EXPECT_EQ(term_free_variable(forall({a_n}, list({a, n, a_n}))), (term_list{a, n}));
}

TEST_F(free_variable_test, given_bounds) {
  const term_list bound = {x, a_n};
  EXPECT_EQ(term_free_variable(list({x, y, a_n, a}), bound), (term_list{y, a}));
  EXPECT_EQ(term_list_free_variable(term_list{x, y}, bound), (term_list{y}));
}

// A variable is reported without the scope that it carries, so that it is found again under its name.
TEST_F(free_variable_test, scoped_variables) {
  const term_ptr scoped = with_scope(x, gt(y, num(0)));
  EXPECT_EQ(term_free_variable(scoped), (term_list{x, y}));
  EXPECT_EQ(term_free_variable(plus(scoped, x)), (term_list{x, y}));
  EXPECT_EQ(term_free_variable(forall({x}, scoped)), (term_list{y}));
  EXPECT_EQ(term_free_variable(with_scope(a_n, n)), (term_list{a_n, n}));
}

TEST_F(free_variable_test, messages) {
  testing::internal::CaptureStderr();
  EXPECT_TRUE(term_free_variable(nullptr).empty());
  EXPECT_TRUE(term_list_free_variable({}).empty());
  EXPECT_EQ(term_free_variable(app(x, {list({}), list({})})), (term_list{x}));
  const std::string empty = "Error: term_list_free_variable visiting NULL pointer\n";
  EXPECT_EQ(testing::internal::GetCapturedStderr(),
            "Error: term_free_variable visiting NULL pointer\n" + empty + empty + empty);
}

// Long answers, of which only some are kept, and searches for one variable agree with the plain operations.
TEST_F(free_variable_test, remembered_answers) {
  name_memo memo;
  term_ptr t = x;
  for (int i = 0; i < 300; ++i) {
    const term_ptr name = var("v" + std::to_string(i));
    const term_ptr body = plus(name, plus(a_n, t));
    t = i % 3 == 0 ? quant(Forall, {name}, app(Eq, {body, y})) : body;
    EXPECT_EQ(memo.beside_heads(t), free_names_beside_heads(t)) << i;
    EXPECT_EQ(memo.occurs(name, t), i % 3 != 0) << i;
  }
  for (int again = 0; again < 2; ++again) {
    EXPECT_TRUE(memo.occurs(x, t));
    EXPECT_TRUE(memo.occurs(n, t));
    EXPECT_FALSE(memo.occurs(z, t));
    EXPECT_FALSE(memo.occurs(x, quant(Forall, {x}, app(Eq, {t, y}))));
    EXPECT_TRUE(memo.occurs(z, plus(z, t)));
  }
}

TEST_F(free_variable_test, deep_and_shared_terms) {
  EXPECT_EQ(term_free_variable(tower(x)), (term_list{x}));
  EXPECT_EQ(term_free_variable(left_spine(x)), (term_list{x}));
  EXPECT_EQ(term_free_variable(doubled(plus(x, forall({y}, plus(y, z))))), (term_list{x, z}));
  EXPECT_EQ(term_free_variable(forall({x}, doubled(plus(x, y)))), (term_list{y}));
  // Shared terms under another set of bindings are read again.
  const term_ptr shared = doubled(plus(x, y), 8);
  EXPECT_EQ(term_free_variable(conj(forall({x}, shared), shared)), (term_list{y, x}));
  term_ptr nested = x;
  for (int i = 0; i < deep_levels; ++i) {
    nested = forall({var("v" + std::to_string(i % 1000))}, nested);
  }
  EXPECT_EQ(term_free_variable(nested), (term_list{x}));
}

}  // namespace
}  // namespace vetro
