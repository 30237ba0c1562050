// rewrite_in: what each context opens and refuses, the names of opened binders, the premises, and where the result
// goes. The tables hold goals: old form, new form, and what the error log says ("" for success).
#include <gtest/gtest.h>

#include "support/handler_fixture.h"
#include "term/state.h"

namespace vetro::test {
namespace {

constexpr const char* no_match = "target form cannot be obtained by a forall equation rewrite inside a supported ";

std::string not_obtained(const std::string& context) {
  return "rewrite_in " + context + " failed: " + no_match + context + " body.\n";
}
std::string not_eventually(const std::string& premise) {
  return "rewrite_in limit failed: cannot prove side condition (side condition is not an automatically solvable "
         "eventual condition):\n" +
         premise + "\n";
}
std::string not_on_range(const std::string& premise) {
  return "rewrite_in sum failed: cannot prove side condition (side condition is not automatically true on the whole "
         "sum "
         "range):\n" +
         premise + "\n";
}
std::string not_implied(const std::string& premise) {
  return "rewrite_in setdesc failed: cannot prove side condition (side condition is not implied by set description "
         "conditions):\n" +
         premise + "\n";
}
const std::string unsupported_limit = "rewrite_in limit failed: unsupported limit context for rewrite_in limit\n";
const std::string unsupported_sum =
    "rewrite_in sum failed: unsupported sum context for rewrite_in sum; expected sum_{ var = lower }^{ upper }\n";
const std::string unsupported_setdesc =
    "rewrite_in setdesc failed: unsupported setdesc context for rewrite_in setdesc; expected SetDesc(body, "
    "TermList(...)) with one Var binder\n";

struct rewriting {
  const char* rule;
  std::string from;
  std::string to;
  std::string error;  // empty: the step succeeds
  std::vector<std::string_view> assumptions = {};
  const char* direction = "left_to_right";
};

// One step on a fresh proof state.
class rewrite_in_test : public testing::Test {
 protected:
  static std::string error_of(const std::string& context, const rewriting& r) {
    reset_state();
    proof_gap_full gap = gap_of({r.rule}, r.from);
    for (const std::string_view assumption : r.assumptions) {
      add_assumption(gap, formula(assumption));
    }
    script_run run(std::move(gap));
    const outcome result =
        run.step("rewrite_in " + context + " from (GOAL: {" + r.from + "}) to (GOAL: {" + r.to + "})");
    EXPECT_EQ(result.flag == exe_success, result.error.empty());
    const bool replaced = run.gap.goal == formula(r.to) && run.gap.goal != formula(r.from);
    EXPECT_EQ(replaced, result.flag == exe_success) << "the goal changes exactly when the step succeeds";
    return result.error;
  }

  static void expect_all(const std::string& context, const std::vector<rewriting>& table, const std::string& map = "") {
    for (const rewriting& r : table) {
      const std::string rule = " (" + std::string(r.direction) + ", equation) (hypothesis 1: {r = r}) " + map;
      EXPECT_EQ(error_of(context + rule, r), r.error) << r.rule << ": " << r.from << " to " << r.to;
    }
  }
};

constexpr const char* rule = "forall (x), f(x) = g(x)";
constexpr const char* positive_rule = "forall (x), x > 0 ⇒ f(x) = g(x)";

TEST_F(rewrite_in_test, limit_bodies) {
  const std::string closed = not_obtained("limit");
  expect_all(
      "limit",
      {
          {rule, "lim_{x → 0}(f(x)) = c", "lim_{y → 0}(g(y)) = c", ""},
          {rule, "lim_{x → 0}(g(x)) = c", "lim_{x → 0}(f(x)) = c", "", {}, "right_to_left"},
          {rule, "lim_{x → 0}(g(x)) = c", "lim_{x → 0}(f(x)) = c", closed},  // the direction is no first choice
          {rule, "lim_{x → 0}(f(x)) = c", "lim_{x → 0}(f(x)) = c", closed},  // nothing was replaced
          {rule, "f(0) = c", "g(0) = c", closed},
          {rule, "lim_{x → 0}(f(x)) = c", "lim_{x → 1}(g(x)) = c", closed},
          {rule, "lim_{x → 0}(f(x)) = c", "lim_{x → 0^+}(g(x)) = c", closed},
          {rule, "lim_{x → 0}(f(x)) = c", "g(0) = c", closed},
          // One value of the rule's variable for all places of a body; it may be any term.
          {rule, "seqlim_{n → ∞}(f(n + 1) * f(n + 1)) = c", "seqlim_{n → ∞}(g(n + 1) * f(n + 1)) = c", ""},
          {rule, "seqlim_{n → ∞}(f(n + 1) * f(n)) = c", "seqlim_{n → ∞}(g(n + 1) * g(n)) = c", closed},
          {"forall (x), x = log(e, x)", "lim_{x → 1}(f(x)) = c", "lim_{x → 1}(f(ln(x))) = c", ""},
          {"forall (b), log(b, 2) = h(b)",
           "lim_{x → 1}(x * h(e)) = c",
           "lim_{x → 1}(x * ln(2)) = c",
           "",
           {},
           "right_to_left"},
          {"forall (x), p(x) = (0, x)", "lim_{x → 1}(h(2 ∈ p(x))) = c", "lim_{x → 1}(h(2 ∈ (0, x))) = c", closed},
          {rule, "lim_{x → 0}(f(±x)) = c", "lim_{x → 0}(g(±x)) = c", closed},
          {"forall (k), sum_{i = k}^{9}(i) = s(k)", "lim_{k → 0}(sum_{i = k}^{9}(i)) = c", "lim_{k → 0}(s(k)) = c", ""},
          {"forall (a), h(fun t . a * t) = s(a)", "lim_{x → 0}(h(fun t . x * t)) = c", "lim_{x → 0}(s(x)) = c", ""},
          {"forall (a), h(forall (t), a > t) = s(a)", "lim_{x → 0}(h(forall (t), x > t)) = c", "lim_{x → 0}(s(x)) = c",
           ""},
          // On the way: everything that binds by a name; nothing that is more than its value.
          {rule, "p = 1 ∧ ¬(lim_{x → 0}(f(x)) = c)", "p = 1 ∧ ¬(lim_{x → 0}(g(x)) = c)", ""},
          {rule, "lim_{x → 0}(lim_{y → 0}(f(y)) + x) = c", "lim_{x → 0}(lim_{t → 0}(g(t)) + x) = c", ""},
          {rule, "forall (a ∈ S)(b), lim_{x → a}(f(x)) = b", "forall (s ∈ S)(t), lim_{y → s}(g(y)) = t", "", {"a > b"}},
          {rule, "(fun a: IntegerSet [a > 1] . lim_{x → a}(f(x))) = h",
           "(fun b: IntegerSet [b > 1] . lim_{y → b}(g(y))) = h", ""},
          {rule, "(fun a: IntegerSet . lim_{x → a}(f(x))) = h", "(fun a . lim_{x → a}(g(x))) = h", closed},
          {rule, "(fun a [a > 1] . lim_{x → a}(f(x))) = h", "(fun a [a > 2] . lim_{x → a}(g(x))) = h", closed},
          {rule, "forall (a), lim_{x → a}(f(x)) = c", "exists (a), lim_{x → a}(g(x)) = c", closed},
          {rule, "forall (a)(a), lim_{x → b}(f(x)) = a", "forall (a)(d), lim_{x → b}(g(x)) = a", closed},
          {rule, "lim_{x → 0}(int_{0}^{1}(f(x) * t * diff(t))) = c", "lim_{x → 0}(int_{0}^{1}(g(x) * t * diff(t))) = c",
           closed},
          {rule, "lim_{x → 0}(limsup_{t → 0}(f(x))) = c", "lim_{x → 0}(limsup_{t → 0}(g(x))) = c", closed},
          {rule, "sum_{i = 1}^{n}(lim_{x → 0}(f(x))) = c", "sum_{i = 1}^{n}(lim_{x → 0}(g(x))) = c", closed},
          {rule, "lim_{x → 0}(f(x)') = c", "lim_{x → 0}(g(x)') = c", closed},
          {rule, "lim_{x → 0}(h''(f(x))) = c", "lim_{x → 0}(h''(g(x))) = c", ""},
          {rule, "lim_{x → 0}(Dom(f(x))) = c", "lim_{x → 0}(Dom(g(x))) = c", closed},
          {rule, "lim_{x → 0}(1 + ... + f(x)) = c", "lim_{x → 0}(1 + ... + g(x)) = c", closed},
          {rule, "lim_{x → 0}(f(x) [@scope x > 0 @]) = c", "lim_{x → 0}(g(x)) = c", closed},
      });
}

TEST_F(rewrite_in_test, names_never_meet) {
  const std::string closed = not_obtained("limit");
  expect_all("limit",
             {
                 // The bound name is free in the proof state, in the rule, or bound around.
                 {"forall (x), x < 0 ⇒ f(x) = g(x)", "lim_{x → ∞}(f(x)) = x", "lim_{x → ∞}(g(x)) = x",
                  not_eventually("x1 < 0")},
                 {"forall (x), x < 0 ⇒ f(x) = g(x)",
                  "lim_{x → ∞}(f(x)) = c",
                  "lim_{x → ∞}(g(x)) = c",
                  not_eventually("x2 < 0"),
                  {"x1 = a_x"}},
                 {"forall (x), f(x) = g(y)", "lim_{y → 0}(f(y)) = c", "lim_{y → 0}(g(y)) = c", closed},
                 {"forall (x), f(x) = g(y)", "lim_{t → 0}(f(t)) = c", "lim_{y → 0}(g(y)) = c", closed},
                 {"forall (x), f(x, y) = g(x)", "forall (y), lim_{x → 0}(f(x, y)) = y",
                  "forall (y), lim_{x → 0}(g(x)) = y", closed},
                 {"forall (x), x > 0 ⇒ f(x) = g(x)", "forall (x), lim_{x → ∞}(f(x)) = x",
                  "forall (x), lim_{x → ∞}(g(x)) = x", ""},
                 // A binder on the way has the name of one around it.
                 {rule, "forall (x), x > 0 ∧ (forall (x), lim_{t → 0}(f(t)) = x)",
                  "forall (y), y > 0 ∧ (forall (x), lim_{t → 0}(g(t)) = x)", ""},
                 {rule, "forall (x), x > 0 ∧ (forall (x), lim_{t → 0}(f(t)) = x)",
                  "forall (y), y > 0 ∧ (forall (x), lim_{t → 0}(g(t)) = y)", closed},
                 {rule, "forall (x), (forall (t), t > x) ∧ lim_{t → 0}(f(t)) = x",
                  "forall (t), (forall (x), x > t) ∧ lim_{x → 0}(g(x)) = t", ""},
                 // The upper bound of the integral lies outside of it, the point outside of the limit.
                 {rule,
                  "lim_{x → 0}(f(x) + int_{0}^{x}(x * diff(x))) = c",
                  "lim_{x → 0}(g(x) + int_{0}^{x}(x * diff(x))) = c",
                  "",
                  {"x = 5"}},
                 {positive_rule, "lim_{x → x_0^+}(f(x)) = c", "lim_{t → x_0^+}(g(t)) = c", not_eventually("x1 > 0")},
                 {"forall (t), t ≠ x_0 ⇒ f(t) = g(t)", "lim_{x → x_0}(f(x)) = c", "lim_{x → x_0}(g(x)) = c", ""},
                 // A value may not hold what is bound around its place.
                 {"forall (x), sum_{i = 1}^{9}(h(x, i)) = g(x)", "lim_{x → 0}(x * sum_{i = 1}^{9}(h(i, i))) = c",
                  "lim_{x → 0}(x * g(i)) = c", closed},
             });
}

TEST_F(rewrite_in_test, eventual_premises) {
  const auto with = [](const char* premise) { return "forall (x), " + std::string(premise) + " ⇒ f(x) = g(x)"; };
  struct row {
    const char* premise;
    const char* limit;   // subscript of the limit
    const char* failed;  // null: holds
  };
  const row rows[] = {
      {"x > 3", "x → ∞", nullptr},
      {"3 < x", "x → ∞", nullptr},
      {"x < 3", "x → ∞", "x < 3"},
      {"x ≠ 3", "x → +infty", nullptr},
      {"x = 3", "x → ∞", "x = 3"},
      {"x > y - infty", "x → ∞", "x > y - ∞"},
      {"x < 3", "x → -infty", nullptr},
      {"x ≥ 3", "x → -infty", "x ≥ 3"},
      {"x ≠ a", "x → a", nullptr},
      {"x ≥ a", "x → a", "x ≥ a"},
      {"x ≥ a", "x → a^+", nullptr},
      {"x < a", "x → a^+", "x < a"},
      {"x ≤ a", "x → a^-", nullptr},
      {"x - a > 0", "x → a^+", nullptr},
      {"2 * a < a + x", "x → a^+", nullptr},
      {"x^2 + 1 > 0", "x → 0^-", nullptr},
      {"x^2 + 1 > 0", "x → __IMAGINARY_UNIT__", "x^{2} + 1 > 0"},
      {"x > 1", "x → 2", nullptr},
      {"x > 2", "x → 2", "x > 2"},
      {"x ≠ 3", "x → 2", nullptr},
      {"1 / x > 0", "x → 2", "1 / x > 0"},
      {"2 * x - 7 > x + a", "x → ∞", nullptr},
      {"7 - 2 * x < 0", "x → ∞", nullptr},
      {"a - x > 0", "x → ∞", "a - x > 0"},
      {"a - x > 0", "x → -infty", nullptr},
      {"x * x > a", "x → ∞", "x * x > a"},
      {"a > x", "x → a^+", "a > x"},
      {"x > 0 ∧ (x ≠ 7 ∧ x < 0)", "x → ∞", "x < 0"},
      {"0 < x ≠ 7", "x → ∞", nullptr},
      {"0 < x < 7", "x → ∞", "0 < x < 7"},
      {"x ∈ Real", "x → a", nullptr},
      {"x ∈ RealPlus", "x → ∞", nullptr},
      {"x ∈ Integer", "x → ∞", "x ∈ IntegerSet"},
      {"x ∈ NatPlus", "x → ∞", "x ∈ PosIntegerSet"},
      {"x ∈ PrimeSet", "x → ∞", "x ∈ PrimeSet"},
      {"c ∈ A", "x → ∞", nullptr},
      {"Odd(x)", "x → ∞", "Odd(x)"},
      {"x > 0 ∨ x > 1", "x → ∞", "x > 0 ∨ x > 1"},
      {"x > 0 [@scope x > 0 @]", "x → ∞", "x > 0 [@scope x > 0 @]"},
  };
  for (const row& r : rows) {
    const std::string rule_text = with(r.premise);
    const std::string lim = "lim_{" + std::string(r.limit) + "}(";
    expect_all("limit", {{rule_text.c_str(),
                          lim + "f(x)) = c",
                          lim + "g(x)) = c",
                          r.failed == nullptr ? "" : not_eventually(r.failed),
                          {"c ∈ A"}}});
  }
  const char* natural = "forall (x), x ∈ NatPlus ∧ x ∈ Rational ⇒ f(x) = g(x)";
  const char* square = "forall (x), x^2 + 1 > 0 ⇒ f(x) = g(x)";
  expect_all("limit",
             {
                 {square, "lim_{y → __IMAGINARY_UNIT__}(lim_{x → y}(f(x))) = c",
                  "lim_{y → __IMAGINARY_UNIT__}(lim_{x → y}(g(x))) = c", not_eventually("x^{2} + 1 > 0")},
                 {square, "lim_{y → __IMAGINARY_UNIT__}(lim_{x → 0}(f(y))) = c",
                  "lim_{y → __IMAGINARY_UNIT__}(lim_{x → 0}(g(y))) = c", not_eventually("y^{2} + 1 > 0")},
                 {square, "lim_{y → 0}(lim_{x → y}(f(x))) = c", "lim_{y → 0}(lim_{x → y}(g(x))) = c", ""},
                 {square, "y > 0 ⇒ lim_{x → 0}(f(y)) = c", "y > 0 ⇒ lim_{x → 0}(g(y)) = c", ""},
                 {square, "y ∈ Complex ⇒ lim_{x → 0}(f(y)) = c", "y ∈ Complex ⇒ lim_{x → 0}(g(y)) = c",
                  not_eventually("y^{2} + 1 > 0")},
                 {square, "forall (y ∈ Complex), lim_{x → 0}(f(y)) = c", "forall (y ∈ Complex), lim_{x → 0}(g(y)) = c",
                  not_eventually("y^{2} + 1 > 0")},
                 {square, "exists (y), y = __IMAGINARY_UNIT__ ∧ lim_{x → 0}(f(y)) = c",
                  "exists (y), y = __IMAGINARY_UNIT__ ∧ lim_{x → 0}(g(y)) = c", not_eventually("y^{2} + 1 > 0")},
                 {natural, "seqlim_{n → ∞}(f(n)) = c", "seqlim_{n → ∞}(g(n)) = c", ""},
                 {natural, "seqlim_{n → ∞}(f(n + 1)) = c", "seqlim_{n → ∞}(g(n + 1)) = c",
                  not_eventually("n + 1 ∈ PosIntegerSet")},
                 // Contexts in which nothing is eventually true, premises or not.
                 {rule, "seqlim_{n → 0}(f(n)) = c", "seqlim_{n → 0}(g(n)) = c", unsupported_limit},
                 {rule, "lim_{x → ∞^+}(f(x)) = c", "lim_{x → ∞^+}(g(x)) = c", unsupported_limit},
                 {rule, "lim_{x → ∞ + 1}(f(x)) = c", "lim_{x → ∞ + 1}(g(x)) = c", unsupported_limit},
                 {rule, "lim_{|x - a| → 0}(f(x)) = c", "lim_{|x - a| → 0}(g(x)) = c", unsupported_limit},
             });
}

TEST_F(rewrite_in_test, sums) {
  const std::string closed = not_obtained("sum");
  const char* at_least_one = "forall (k), k ≥ 1 ⇒ f(k) = g(k)";
  const char* at_most_n = "forall (k), k ≤ n ⇒ f(k) = g(k)";
  const char* integer = "forall (k), k ∈ Integer ⇒ f(k) = g(k)";
  expect_all(
      "sum",
      {
          {at_least_one, "sum_{k = 1}^{n}(f(k)) = c", "sum_{j = 1}^{n}(g(j)) = c", ""},
          {"forall (k), k ≠ 0 ⇒ f(k) = g(k)", "sum_{k = 1}^{n}(f(k)) = c", "sum_{k = 1}^{n}(g(k)) = c", ""},
          {"forall (k), k < 0 ⇒ f(k) = g(k)", "sum_{k = m}^{-1}(f(k)) = c", "sum_{k = m}^{-1}(g(k)) = c", ""},
          {"forall (k), m > 0 ⇒ f(k) = g(k)", "sum_{k = 1}^{n}(f(k)) = c", "sum_{k = 1}^{n}(g(k)) = c",
           not_on_range("m > 0")},
          {at_least_one, "sum_{k = 0}^{n}(f(k)) = c", "sum_{k = 0}^{n}(g(k)) = c", not_on_range("k ≥ 1")},
          {at_least_one, "sum_{1 = k}^{∞}(f(k)) = c", "sum_{k = 1}^{∞}(g(k)) = c", ""},
          {rule, "sum_{k = 1}^{n}(f(k)) = c", "sum_{k = 2}^{n}(g(k)) = c", closed},
          {rule, "sum_{k = 1}^{n}(f(k)) = c", "sum_{k = 1}^{m}(g(k)) = c", closed},
          {rule, "sum_{k = 1}^{n}(f(k + 1)) = c", "sum_{k = 1}^{n}(g(k + 1)) = c", closed},  // the value is the index
          {rule, "sum_{k = 1}^{n}(lim_{x → 0}(f(k))) = c", "sum_{k = 1}^{n}(lim_{x → 0}(g(k))) = c", closed},
          {rule, "lim_{n → ∞}(sum_{k = 1}^{n}(f(k))) = c", "lim_{n → ∞}(sum_{k = 1}^{n}(g(k))) = c", closed},
          {rule, "sum_{k = 1}^{n}(sum_{j = 1}^{k}(f(j))) = c", "sum_{k = 1}^{n}(sum_{j = 1}^{k}(g(j))) = c", ""},
          {rule, "sum_{k ∈ A}(f(k)) = c", "sum_{k ∈ A}(g(k)) = c", unsupported_sum},
          {rule, "sum_{k = 1}^{k}(f(k)) = c", "sum_{k = 1}^{k}(g(k)) = c", unsupported_sum},
          {rule, "sum_{k + 1 = 2}^{n}(f(k)) = c", "sum_{k + 1 = 2}^{n}(g(k)) = c", unsupported_sum},
          {rule, "prod_{k = 1}^{n}(f(k)) = c", "prod_{k = 1}^{n}(g(k)) = c", closed},
          {at_most_n, "sum_{k = 0}^{n}(f(k)) = c", "sum_{k = 0}^{n}(g(k)) = c", ""},
          {at_most_n, "sum_{k = 0}^{∞}(f(k)) = c", "sum_{k = 0}^{∞}(g(k)) = c", not_on_range("k ≤ n")},
          {"forall (k), k = n ⇒ f(k) = g(k)", "sum_{k = n}^{n}(f(k)) = c", "sum_{k = n}^{n}(g(k)) = c", ""},
          {"forall (k), 1 ≤ k ≤ n ∧ c ∈ A ⇒ f(k) = g(k)",
           "sum_{k = 1}^{n}(f(k)) = c",
           "sum_{k = 1}^{n}(g(k)) = c",
           "",
           {"c ∈ A"}},
          {integer, "sum_{k = -2}^{n}(f(k)) = c", "sum_{k = -2}^{n}(g(k)) = c", ""},
          {integer, "sum_{k = 2 * m + 1}^{n}(f(k)) = c", "sum_{k = 2 * m + 1}^{n}(g(k)) = c", "", {"m ∈ NatPlus"}},
          {integer,
           "sum_{k = m}^{n}(f(k)) = c",
           "sum_{k = m}^{n}(g(k)) = c",
           not_on_range("k ∈ IntegerSet"),
           {"m ∈ Real"}},
          {integer, "sum_{k = 0.5}^{n}(f(k)) = c", "sum_{k = 0.5}^{n}(g(k)) = c", not_on_range("k ∈ IntegerSet")},
          {"forall (k), k ∈ Nat ⇒ f(k) = g(k)", "sum_{k = 0}^{n}(f(k)) = c", "sum_{k = 0}^{n}(g(k)) = c", ""},
          {"forall (k), k ∈ Rational ∧ k ∈ Real ∧ Odd(k) ⇒ f(k) = g(k)", "sum_{k = 0.5}^{n}(f(k)) = c",
           "sum_{k = 0.5}^{n}(g(k)) = c", not_on_range("Odd(k)")},
      });
}

TEST_F(rewrite_in_test, set_descriptions) {
  const std::string closed = not_obtained("setdesc");
  const char* big_value = "forall (x), f(x) > 1 ⇒ f(x) = g(x)";
  const char* square = "forall (x), x^2 + 1 > 0 ⇒ f(x) = g(x)";
  const std::string other_binder =
      "rewrite_in setdesc failed: binder map right side must be the current set description binder\n";
  expect_all(
      "setdesc",
      {
          {positive_rule, "{ f(x) | x > 0 } = A", "{ g(t) | t > 0 } = A", ""},
          {positive_rule, "{ f(x) | 0 < x < 2 ∧ x ∈ S } = A", "{ g(x) | 0 < x < 2 ∧ x ∈ S } = A", ""},
          {positive_rule, "{ f(x) | -1 < x < 1 } = A", "{ g(x) | -1 < x < 1 } = A", not_implied("x1 > 0"), {"x > 5"}},
          {"forall (x), 0 < x < 1 ∧ c = 1 ⇒ f(x) = g(x)", "{ f(x) | 0 < x < 1, c = 1 } = A",
           "{ g(x) | 0 < x < 1, c = 1 } = A", ""},
          {"forall (x), 0 < x < 1 ⇒ f(x) = g(x)", "{ f(x) | 0 < x < 1 ∧ x ∈ S } = A",
           "{ g(x) | 0 < x < 1 ∧ x ∈ S } = A", ""},
          {square, "{ f(x) | x ∈ S } = A", "{ g(x) | x ∈ S } = A", ""},
          {square, "{ f(x) | x ∈ S } = A", "{ g(x) | x ∈ S } = A", not_implied("x^{2} + 1 > 0"), {"S ⊆ Complex"}},
          {square, "{ f(x) | x ∈ { __IMAGINARY_UNIT__, 1 } } = A", "{ g(x) | x ∈ { __IMAGINARY_UNIT__, 1 } } = A",
           not_implied("x^{2} + 1 > 0")},
          {square, "{ { f(x) | x = y } | y ∈ Complex } = A", "{ { g(x) | x = y } | y ∈ Complex } = A",
           not_implied("x^{2} + 1 > 0")},
          {square, "{ f(x) | x ∉ Real } = A", "{ g(x) | x ∉ Real } = A", not_implied("x^{2} + 1 > 0")},
          // What is rewritten in a condition rests on the other conditions only.
          {big_value, "{ x | x ∈ S, f(x) > 1 } = A", "{ x | x ∈ S, g(x) > 1 } = A", not_implied("f(x) > 1")},
          {big_value, "{ x | f(x) > 1, f(x) < 9 } = A", "{ x | f(x) > 1, g(x) < 9 } = A", ""},
          {big_value, "{ f(x) * x | x ∈ S ∧ f(x) > 1 } = A", "{ g(x) * x | x ∈ S ∧ f(x) > 1 } = A", ""},
          {rule, "{ x | x ∈ S ∧ f(x) > 1 } = A", "{ x | x ∈ S, f(x) > 1 } = A", closed},
          {rule, "{ x | x ∈ S ∧ f(x) > 1 } = A", "{ x | (x ∈ S ∧ g(x) > 1) } = A", ""},
          {rule, "{ f(x) | x > 0 } = A", "{ g(x) | x > 1 } = A", closed},
          {"forall (x), f(x) = x + y", "{ f(x) | x > 0, y = y } = A", "{ x + y | x > 0, y = y } = A",
           unsupported_setdesc},
          {rule, "{ f(x) + y | x > y } = A", "{ g(x) + y | x > y } = A", unsupported_setdesc},
          {rule, "{ x | x > 0, { f(t) + s | t > s } = B } = A", "{ x | x > 0, { g(t) + s | t > s } = B, x > 1 } = A",
           unsupported_setdesc},
          {rule, "{ f(y) | y > 0 } = A", "{ g(y) | y > 0 } = A", other_binder},
          {rule, "{ y | y > 0, { f(x) | x > y } = B } = A", "{ y | y > 0, { g(x) | x > y } = B } = A", ""},
          {rule, "{ x | x > 0, lim_{t → 0}(f(x)) = c } = A", "{ x | x > 0, lim_{t → 0}(g(x)) = c } = A", closed},
      },
      "(x := {x})");
}

TEST_F(rewrite_in_test, rules_and_references) {
  const std::string from = "lim_{t → 0}(f(t)) = c";
  const std::string to = "lim_{t → 0}(g(t)) = c";
  const std::string no_forall =
      "rewrite_in limit requires a forall equation hypothesis; use ordinary rewrite for bare equations.\n";
  const std::string one_variable = "rewrite_in limit currently supports exactly one forall variable.\n";
  const std::string no_equation = "rewrite_in limit forall hypothesis must conclude with an equation.\n";
  expect_all("limit",
             {
                 {"f(x) = g(x)", from, to, no_forall},
                 {"exists (x), f(x) = g(x)", from, to, no_forall},
                 {"forall (x), forall (y), f(x) = g(x)", from, to, one_variable},
                 {"forall (x ∈ S), f(x) = g(x)", from, to, one_variable},
                 {"forall (x), f(x) > g(x)", from, to, no_equation},
                 {"forall (x), f(x) = g(x) [@scope x > 0 @]", from, to, no_equation},
                 {"forall (x), f(x) = bigO_{s → 0}(s)", from, to, no_equation},
                 {"forall (x), x > ±1 ⇒ f(x) = g(x)", from, to, no_equation},
                 {"forall (x), f(x) = ∞", from, "lim_{t → 0}(∞) = c", no_equation},
                 {"forall (x), f(x) = seqlim_{n → ∞}(h(n))", from, "lim_{t → 0}(seqlim_{n → ∞}(h(n))) = c", ""},
             });

  script_run run(gap_of({rule, from, positive_rule}, from));
  const std::string head = "rewrite_in limit (left_to_right, equation) ";
  const auto step = [&](const std::string& used, const std::string& places) { return run.step(head + used + places); };
  const std::string used = "(hypothesis 1: {r = r})";
  const std::string goal = " from (GOAL: {" + from + "})";
  const std::string hypothesis = " from (hypothesis 2: {" + from + "})";
  const outcome no_rule = failed("rewrite_in limit requires a valid hypothesis as the rewriting source.\n");
  EXPECT_EQ(run.step("rewrite_in sum (left_to_right, iff) " + used + goal + " to (GOAL: {" + to + "})"),
            failed("rewrite_in sum 当前不支持 iff 规则。\n"));
  EXPECT_EQ(step(used, " from (GOAL: {c = c}) to (GOAL: {c = c})"), failed("mismatch goal in rewrite_in limit dsl\n"));
  EXPECT_EQ(step(used, " from (hypothesis 1: {" + from + "}) to (GOAL: {c = c})"),
            failed("mismatch hypothesis in rewrite_in limit dsl\n"));
  EXPECT_EQ(step(used, " from (hypothesis 9: {" + from + "}) to (GOAL: {c = c})"),
            failed("mismatch hypothesis in rewrite_in limit dsl\n"));
  EXPECT_EQ(step(used, " from (obvious: {" + from + "}) to (GOAL: {c = c})"),
            failed("rewrite_in limit can only rewrite GOAL or hypothesis targets.\n"));
  EXPECT_EQ(step("(hypothesis 9: {r = r})", goal + " to (GOAL: {" + to + "})"), no_rule);
  EXPECT_EQ(step(used, hypothesis + " to (GOAL: {" + to + "})"),
            failed("rewrite_in limit cannot replace GOAL when rewriting from a hypothesis.\n"));
  EXPECT_EQ(step(used, goal + " to (hypothesis 4: {" + to + "})"),
            failed("rewrite_in limit to hypothesis is only allowed when rewriting from a hypothesis.\n"));
  EXPECT_EQ(step(used, goal + " to (obvious: {" + to + "})"),
            failed("rewrite_in limit result must be GOAL or a hypothesis.\n"));
  EXPECT_EQ(
      step(used, hypothesis + " to (hypothesis 5: {" + to + "})"),
      failed("invalid rewrite_in limit target hypothesis number: 5, expected 2 (overwrite rewritten hypothesis) or "
             "4 (append new hypothesis)\n"));
  EXPECT_EQ(step(used, hypothesis + " to (hypothesis 4: {" + to + "})"), success);
  EXPECT_EQ(step(used, hypothesis + " to (hypothesis 2: {" + to + "})"), success);
  EXPECT_EQ(run.hypothesis(2), run.hypothesis(4));
  EXPECT_EQ(run.gap.assu_num(), 4);

  run.gap.goal = formula("{ f(x) | x > 0 } = A");
  const std::string sets = " from (GOAL: {{ f(x) | x > 0 } = A}) to (GOAL: {{ g(x) | x > 0 } = A})";
  const auto map_problem = [&](const std::string& map) {
    return run.step("rewrite_in setdesc (left_to_right, equation) " + used + map + sets).error;
  };
  EXPECT_EQ(map_problem("(y := {x})"), "rewrite_in setdesc failed: binder map left side must be the forall binder\n");
  EXPECT_EQ(map_problem("(x := {x + 1})"),
            "rewrite_in setdesc failed: binder map right side must be the set description binder variable\n");
  EXPECT_EQ(map_problem("(x := {x})"), "");
}

// Nothing but another name may stand for x below the derivative sign.
TEST_F(rewrite_in_test, premises_that_cannot_be_instantiated) {
  expect_all("limit",
             {{"forall (x), (x^2)' > 0 ⇒ f(x) = g(x)", "lim_{n → +∞}(f(n + 1)) = c", "lim_{n → +∞}(g(n + 1)) = c",
               "rewrite_in limit failed: cannot prove side condition (side condition is not eventually true "
               "in this limit context):\nx^{2}' > 0\n"}});
}

}  // namespace
}  // namespace vetro::test
