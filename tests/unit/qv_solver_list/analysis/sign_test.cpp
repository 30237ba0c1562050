// Both families of signs: each rule, near misses, sums, what has no sign, depth and shared terms.
#include <set>

#include "qv_solver_list/analysis/sign_rules.h"
#include "qv_solver_list/solvers.h"
#include "support/solver_fixture.h"
#include "term/term_split_combine.h"

namespace vetro {
namespace {

using enum sign_form;
using enum sign_question;

class signs : public solver_test {};

struct rule_case {
  sign_form form;
  sign_question asked;
  std::initializer_list<solver_case> proved;
};

// What a row proves. Questions that stand only inside other rows (`obvious`, `defined`) are shown by what needs them.
const std::initializer_list<rule_case> full_cases = {
    {absolute, ge0, {{{}, "|x| ≥ 0"}}},
    {absolute, gt0, {{{"x ≠ 0"}, "|x| > 0"}}},
    {negated, le0, {{{}, "-x^2 ≤ 0"}}},
    {negated, lt0, {{{"x > 0"}, "-x < 0"}}},
    {negated, ge0, {{{"x ≤ 0"}, "-x ≥ 0"}}},
    {negated, gt0, {{{"x < 0"}, "-x > 0"}}},
    {root, ge0, {{{"x ≥ 0"}, "sqrtn(2, x) ≥ 0"}, {{"x ≥ 0"}, "sqrtn(3, x) ≥ 0"}}},
    {root, gt0, {{{"x > 0"}, "sqrtn(4, x) > 0"}}},
    {root, le0, {{{"x ≤ 0"}, "sqrtn(3, x) ≤ 0"}, {{"x ≥ 0", "x ≤ 0"}, "sqrtn(2, x) ≤ 0"}}},
    {root, lt0, {{{"x < 0"}, "sqrtn(3, x) < 0"}}},
    {power, ge0, {{{}, "e^x ≥ 0"}, {{}, "x^4 ≥ 0"}, {{"x ≥ 0"}, "x^3 ≥ 0"}, {{"x > 0"}, "x^y ≥ 0"}}},
    {power, gt0, {{{}, "e^x > 0"}, {{"x ≠ 0"}, "x^0 > 0"}, {{"x > 0"}, "x^(-3) > 0"}, {{"x ≠ 0"}, "x^2 > 0"}}},
    {power, le0, {{{"x ≤ 0"}, "x^3 ≤ 0"}, {{"x ≥ 0", "x ≤ 0"}, "x^2 ≤ 0"}}},
    {power, lt0, {{{"x < 0"}, "x^(-1) < 0"}}},
    {quotient, ge0, {{{"x ≥ 0", "y > 0"}, "x / y ≥ 0"}, {{"x ≤ 0", "y < 0"}, "frac(x, y) ≥ 0"}}},
    {quotient, gt0, {{{"x > 0", "y > 0"}, "x / y > 0"}, {{"x < 0", "y < 0"}, "x / y > 0"}}},
    {quotient, le0, {{{"x ≤ 0", "y > 0"}, "x / y ≤ 0"}, {{"x ≥ 0", "y < 0"}, "x / y ≤ 0"}}},
    {quotient, lt0, {{{"x < 0", "y > 0"}, "x / y < 0"}, {{"x > 0", "y < 0"}, "x / y < 0"}}},
    {product, ge0, {{{"x ≥ 0", "y ≥ 0"}, "x * y ≥ 0"}, {{"x ≤ 0", "y ≤ 0"}, "x * y ≥ 0"}}},
    {product, gt0, {{{"x > 0", "y > 0"}, "x * y > 0"}, {{"x < 0", "y < 0"}, "x * y > 0"}}},
    {product, le0, {{{"x ≥ 0", "y ≤ 0"}, "x * y ≤ 0"}, {{"x ≤ 0", "y ≥ 0"}, "x * y ≤ 0"}}},
    {product, lt0, {{{"x > 0", "y < 0"}, "x * y < 0"}, {{"x < 0", "y > 0"}, "x * y < 0"}}},
    {sum, ge0, {{{"x ≥ 0", "y ≤ 0"}, "x - y ≥ 0"}}},
    {sum, gt0, {{{}, "x^2 + y^2 + 1 > 0"}}},
    {absolute, obvious_ge0, {{{}, "|x| + |y| ≥ 0"}}},
    {negated, obvious_ge0, {{{"x ≤ 0", "y ≥ 0"}, "y + (-x) ≥ 0"}}},
    {negated, obvious_le0, {{{"x ≥ 0", "y ≥ 0"}, "y - (-x) ≥ 0"}}},
    {root, obvious_ge0, {{{"x ≥ 0"}, "sqrtn(2, x) + x^2 ≥ 0"}}},
    {root, obvious_le0, {{{"x ≤ 0"}, "x^2 - sqrtn(3, x) ≥ 0"}}},
    {power, obvious_ge0, {{{"x ≥ 0"}, "x^3 + x^2 ≥ 0"}}},
    {product, obvious_ge0, {{{"x ≥ 0", "y ≤ 0"}, "x * |y| + x^2 ≥ 0"}, {{"x ≤ 0", "y ≤ 0"}, "x * y + x^2 ≥ 0"}}},
    {product, obvious_le0, {{{"x ≥ 0", "y ≤ 0"}, "x^2 - x * y ≥ 0"}, {{"x ≤ 0", "y ≥ 0"}, "x^2 - x * y ≥ 0"}}},
    {other, ge0, {{{"f(x) ≥ 0"}, "f(x) ≥ 0"}}},
    {other, gt0, {{{"f(x) > 0"}, "f(x) > 0"}}},
    {other, le0, {{{"f(x) ≤ 0"}, "f(x) ≤ 0"}}},
    {other, lt0, {{{"f(x) < 0"}, "f(x) < 0"}}},
    {other, obvious_ge0, {{{"f(x) ≥ 0"}, "f(x) + x^2 ≥ 0"}}},
    {other, obvious_le0, {{{"f(x) ≤ 0"}, "x^2 - f(x) ≥ 0"}}},
};

const std::initializer_list<rule_case> pure_cases = {
    {absolute, ge0, {{{}, "|x| ≥ 0"}}},
    {absolute, gt0, {{{"x ≠ 0"}, "|x| > 0"}}},
    {absolute, neq0, {{{"x ≠ 0"}, "|x| ≠ 0"}}},
    {negated, ge0, {{{"x < 0"}, "-(x * |y|) ≥ 0"}}},
    {negated, gt0, {{{"x < 0", "y > 0"}, "-(x * y) > 0"}}},
    {negated, le0, {{{"x > 0"}, "-(x * |y|) ≤ 0"}}},
    {negated, lt0, {{{"x > 0", "y > 0"}, "-(x * y) < 0"}}},
    {negated, neq0, {{{"x ≠ 0", "y ≠ 0"}, "-(x * y) ≠ 0"}}},
    {root, ge0, {{{"x ≥ 0"}, "sqrtn(2, x) ≥ 0"}, {{"x ≥ 0"}, "sqrtn(3, x) ≥ 0"}}},
    {root, gt0, {{{"x > 0"}, "sqrtn(4, x) > 0"}}},
    {root, le0, {{{"x ≤ 0"}, "sqrtn(3, x) ≤ 0"}, {{"x ≥ 0", "x ≤ 0"}, "sqrtn(2, x) ≤ 0"}}},
    {root, lt0, {{{"x < 0"}, "sqrtn(3, x) < 0"}}},
    {root, neq0, {{{"x > 0"}, "sqrtn(2, x) ≠ 0"}, {{"x ≠ 0"}, "sqrtn(3, x) ≠ 0"}}},
    {power, ge0, {{{}, "e^x ≥ 0"}, {{"x ≠ 0"}, "x^(-2) ≥ 0"}, {{"x ≥ 0"}, "x^3 ≥ 0"}, {{"x > 0"}, "x^y ≥ 0"}}},
    {power, gt0, {{{}, "e^x > 0"}, {{"x ≠ 0"}, "x^0 > 0"}, {{"x ≠ 0"}, "x^2 > 0"}, {{"x > 0"}, "x^3 > 0"}}},
    {power, le0, {{{"x ≤ 0"}, "x^3 ≤ 0"}, {{"x ≥ 0", "x ≤ 0"}, "x^2 ≤ 0"}}},
    {power, lt0, {{{"x < 0"}, "x^(-1) < 0"}}},
    {power, neq0, {{{}, "e^x ≠ 0"}, {{"x ≠ 0"}, "x^0 ≠ 0"}, {{"x ≠ 0"}, "x^3 ≠ 0"}, {{"x > 0"}, "x^y ≠ 0"}}},
    {quotient, ge0, {{{"x ≥ 0", "y > 0"}, "x / y ≥ 0"}, {{"x ≤ 0", "y < 0"}, "frac(x, y) ≥ 0"}}},
    {quotient, gt0, {{{"x > 0", "y > 0"}, "x / y > 0"}, {{"x < 0", "y < 0"}, "x / y > 0"}}},
    {quotient, le0, {{{"x ≤ 0", "y > 0"}, "x / y ≤ 0"}, {{"x ≥ 0", "y < 0"}, "x / y ≤ 0"}}},
    {quotient, lt0, {{{"x < 0", "y > 0"}, "x / y < 0"}, {{"x > 0", "y < 0"}, "x / y < 0"}}},
    {quotient, neq0, {{{"x ≠ 0", "y ≠ 0"}, "x / y ≠ 0"}}},
    {product, ge0, {{{"x ≥ 0", "y ≥ 0"}, "x * y ≥ 0"}, {{"x ≤ 0", "y ≤ 0"}, "x * y ≥ 0"}}},
    {product, gt0, {{{"x > 0", "y > 0"}, "x * y > 0"}, {{"x < 0", "y < 0"}, "x * y > 0"}}},
    {product, le0, {{{"x ≥ 0", "y ≤ 0"}, "x * y ≤ 0"}, {{"x ≤ 0", "y ≥ 0"}, "x * y ≤ 0"}}},
    {product, lt0, {{{"x > 0", "y < 0"}, "x * y < 0"}, {{"x < 0", "y > 0"}, "x * y < 0"}}},
    {product, neq0, {{{"x ≠ 0", "y ≠ 0"}, "x * y ≠ 0"}}},
    {sum, ge0, {{{"x ≥ 0", "y ≤ 0"}, "x - y ≥ 0"}}},
    {sum, gt0, {{{"x > 0", "y ≥ 0"}, "x + y > 0"}, {{}, "x^2 + 1 > 0"}}},
    {sum, le0, {{{"x ≤ 0"}, "x - |y| ≤ 0"}}},
    {sum, lt0, {{{"x < 0"}, "x - |y| < 0"}, {{}, "-1 - x^2 < 0"}}},
    {other, neq0, {{{"x < 0"}, "x + x^3 ≠ 0"}, {{}, "x^2 + 1 ≠ 0"}}},
    {negated, defined, {{{}, "|-x| ≥ 0"}}},
    {absolute, defined, {{{}, "||x|| ≥ 0"}}},
    {root, defined, {{{}, "|sqrtn(3, x)| ≥ 0"}, {{"x ≥ 0"}, "|sqrtn(2, x)| ≥ 0"}}},
    {sum, defined, {{{}, "|x - y| ≥ 0"}}},
    {product, defined, {{{}, "|x * y| ≥ 0"}}},
    {quotient, defined, {{{"y ≠ 0"}, "|x / y| ≥ 0"}}},
    {power, defined, {{{}, "|e^x| ≥ 0"}, {{"x > 0"}, "|x^y| ≥ 0"}, {{}, "|x^3| ≥ 0"}, {{"x ≠ 0"}, "|x^(-3)| ≥ 0"}}},
};

void expect_a_case_for_each(std::span<const sign_rules::rule> rules, std::initializer_list<rule_case> cases) {
  std::set<std::pair<sign_form, sign_question>> covered;
  for (const rule_case& c : cases) {
    covered.emplace(c.form, c.asked);
  }
  for (const sign_rules::rule& rule : rules) {
    EXPECT_EQ(covered.count({rule.form, rule.asked}), 1U)
        << static_cast<int>(rule.form) << " " << static_cast<int>(rule.asked);
  }
}

TEST_F(signs, each_rule_of_the_full_family) {
  expect_a_case_for_each(full_sign_rules(), full_cases);
  for (const rule_case& c : full_cases) {
    expect(solver_sgn, true, c.proved);
  }
}

TEST_F(signs, each_rule_of_the_pure_family) {
  expect_a_case_for_each(pure_sign_rules(), pure_cases);
  for (const rule_case& c : pure_cases) {
    expect(solver_sgn_pure, true, c.proved);
  }
}

TEST_F(signs, near_misses_of_both) {
  for (const solver_decide solve : {solver_sgn, solver_sgn_pure}) {
    expect(solve, false,
           {{{}, "x > 0"},
            {{}, "|x| > 0"},
            {{}, "x^3 ≥ 0"},
            {{}, "x^2 > 0"},
            {{}, "x^2 + y ≥ 0"},
            {{}, "sqrtn(2, x) ≥ 0"},
            {{}, "sqrtn(0, x^2) ≥ 0"},
            {{}, "sqrtn(k, x^2) ≥ 0"},
            {{}, "0^0 > 0"},
            {{}, "x^0 > 0"},
            {{}, "x^(-2) ≥ 0"},
            {{"x ≥ 0"}, "x > 0"},
            {{"x ≥ 0"}, "1 / x ≥ 0"},
            {{"x ≥ 0", "y ≥ 0"}, "x - y ≥ 0"},
            {{"x ≥ 0", "y ≥ 0"}, "x * y > 0"},
            {{"x ≠ 0"}, "x^3 > 0"},
            {{"x > 0"}, "y^x > 0"},
            {{"x < 0"}, "x^y < 0"},
            {{}, "π + 1 > e"},
            {{"x > 0"}, "x > 0 ∧ x > 0"},
            {{}, "a"}});
  }
}

// A comparison with the same difference answers, whichever way it is written.
TEST_F(signs, assumptions) {
  expect(solver_sgn_pure, true,
         {{{"x - y > 0"}, "x > y"},
          {{"x > y"}, "x - y > 0"},
          {{"x > y"}, "y < x"},
          {{"a + b > c + 1"}, "b - c + a > 1"},
          {{"a - (b - 3) < c"}, "c - a > 3 - b"},
          {{"x = 3"}, "x ≥ 3"},
          {{"x = 3"}, "3 ≤ x"},
          {{"x > 0"}, "x ≠ 0"},
          {{"x ≥ 0", "x ≠ 0"}, "x > 0"},
          {{"x ≥ 0", "x ≤ 0"}, "x = 0"},
          {{"sum_{i = 1}^{n}(i) > a"}, "a < sum_{j = 1}^{n}(j)"}});
  expect(solver_sgn_pure, false,
         {{{"x = 3"}, "x > 0"},
          {{"x > y"}, "x > 2 * y"},
          {{"x ≠ 0"}, "x > 0"},
          {{"x ≥ y"}, "x > y"},
          {{"x > y"}, "y > x"},
          {{"x > 0.5"}, "x - 0.5 > 0.5"},
          {{"sum_{i = 1}^{n}(i) > a"}, "sum_{i = 1}^{m}(i) > a"}});
}

// Constants beyond 32 bits neither wrap nor become literals.
TEST_F(signs, great_constants) {
  expect(solver_sgn_pure, true, {{{}, "2147483647 + 2147483647 + x^2 > 0"}, {{}, "-2147483647 - 2147483647 < x^2"}});
  expect(solver_sgn, false,
         {{{}, "x + 2147483647 + 2147483647 + 2147483647 > 0"}, {{}, "x - 2147483647 - 2147483647 > 0"}});
}

// What is no real number or has no single value has no sign.
TEST_F(signs, nothing_is_said_of_other_things) {
  for (const solver_decide solve : {solver_sgn, solver_sgn_pure}) {
    expect(solve, false,
           {{{"z ∈ ComplexSet"}, "z^2 + 1 ≠ 0"},
            {{"forall (x), f(x) ∈ ComplexSet"}, "f(1)^2 ≥ 0"},
            {{"forall (n), a_n ∈ ComplexSet"}, "a_1^2 ≥ 0"},
            {{"f : RealSet → ComplexSet"}, "f(1)^2 ≥ 0"},
            {{"p = 1 ∨ z ∈ ComplexSet"}, "z^2 ≥ 0"},
            {{"z ∈ ComplexSet"}, "z^2 ≥ 0"},
            {{"w = z + 1", "z ∈ ComplexSet"}, "w^2 ≥ 0"},
            {{"w, z ∈ ComplexSet"}, "z^2 ≥ 0"},
            {{"z ∈ ComplexSet \\ { 0 }"}, "z^2 ≥ 0"},
            {{"{ w, z } ⊆ ComplexSet"}, "z^2 ≥ 0"},
            {{"S = ComplexSet", "z ∈ S"}, "z^2 ≥ 0"},
            {{"2 * z = __IMAGINARY_UNIT__"}, "z^2 ≥ 0"},
            {{"z = __IMAGINARY_UNIT__"}, "z^2 ≥ 0"},
            {{"p = 1 ∨ z = __IMAGINARY_UNIT__"}, "z^2 ≥ 0"},
            {{"exists (w), w = __IMAGINARY_UNIT__ ∧ z = w"}, "z^2 ≥ 0"},
            {{"exists (w ∈ ComplexSet), z = w"}, "z^2 ≥ 0"},
            {{"w ∈ ComplexSet", "p = 1 ⇒ z = w"}, "z^2 ≥ 0"},
            {{"forall (x), f(x) = __IMAGINARY_UNIT__ * x"}, "f(1)^2 ≥ 0"},
            {{"z ∈ { __IMAGINARY_UNIT__, 1 }"}, "z^2 ≥ 0"},
            {{"S = { __IMAGINARY_UNIT__, 1 }", "z ∈ S"}, "z^2 ≥ 0"},
            {{"forall (y), y ∈ S ⇒ y = __IMAGINARY_UNIT__", "z ∈ S"}, "z^2 ≥ 0"},
            {{"S ⊆ ComplexSet", "IsFuncOn(f, RealSet, S)"}, "f(1)^2 ≥ 0"},
            {{"z ∉ RealSet"}, "z^2 ≥ 0"},
            {{"p = 1 ∨ ¬(z ∈ RealSet)"}, "z^2 ≥ 0"},
            {{}, "__IMAGINARY_UNIT__^2 ≥ 0"},
            {{"x = ±1"}, "x^2 ± 1 ≥ 0"},
            {{}, "∞ - ∞ ≥ 0"},
            {{}, "1 + 2 + ... + n ≥ 0"},
            {{"x ± y > 0"}, "x ± y ≥ 0"}});
  }
  expect(solver_sgn_pure, true,
         {{{"z ∈ ComplexSet", "z ∈ RealSet"}, "z^2 ≥ 0"},
          {{"forall (x), f(x) = __IMAGINARY_UNIT__ * x"}, "x^2 ≥ 0"},
          {{"exists (w ∈ ComplexSet), r = |w|"}, "r^2 ≥ 0"},
          {{"p = 1 ∨ w = __IMAGINARY_UNIT__", "x ∈ S"}, "x^2 ≥ 0"}});
}

// The nesting limit counts questions that lie inside one another.
TEST_F(signs, depth_of_the_pure_family) {
  const solve_data sdata = given({"x > 0"});
  const auto proved = [&](int factors) {
    term_ptr t = mk_var("x");
    for (int i = 1; i < factors; ++i) {
      t = make_binOp_term(Mult, t, mk_var("x"));
    }
    return solver_sgn_pure(make_binPred_prop(Gt, t, mk_integer(0)), sdata);
  };
  EXPECT_TRUE(proved(201));
  EXPECT_FALSE(proved(202));
  EXPECT_FALSE(proved(2000));
}

// Unknown factors, towers and shared parts: each question about each part is answered once.
TEST_F(signs, deep_and_shared_terms_answer_at_once) {
  term_ptr product = mk_var("x");
  term_ptr tower = mk_var("x");
  term_ptr shared = mk_var("x");
  for (int i = 0; i < 60; ++i) {
    product = make_binOp_term(Mult, product, numbered("y", i));
    tower = i % 2 == 0 ? make_binOp_term(Frac, numbered("y", i), tower) : make_binOp_term(Sqrtn, mk_integer(2), tower);
    shared = make_binOp_term(i % 2 == 0 ? Plus : Mult, shared, shared);
  }
  for (term_ptr t : {product, tower, shared}) {
    for (const pred_type pred : {Eq, Neq, Gt, Ge, Lt, Le}) {
      term_ptr goal = make_binPred_prop(pred, t, mk_integer(0));
      EXPECT_FALSE(solver_sgn(goal, {}));
      EXPECT_FALSE(solver_sgn_pure(goal, {}));
    }
  }
  EXPECT_TRUE(solver_sgn_pure(make_binPred_prop(Gt, shared, mk_integer(0)), given({"x > 0"})));
}

}  // namespace
}  // namespace vetro
