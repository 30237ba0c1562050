// Innermost differences of an equation, and checked rewriting.
#include "qv_solver_list/algebra/poly_rat_eqb.h"
#include "qv_solver_list/algebra/subterm_rewrite.h"
#include "qv_solver_list/solvers.h"
#include "support/solver_fixture.h"
#include "term/compare.h"
#include "term/term_split_combine.h"

namespace vetro {
namespace {

class shape_simpl : public solver_test {
 protected:
  // The equations that are left of a goal; "true" or "false" when the solver decides.
  static std::string left_of(term_ptr goal) {
    const solve_res result = solver_shape_simpl({nullptr, nullptr, goal});
    if (result.type == bool_res) {
      return result.ans ? "true" : "false";
    }
    EXPECT_EQ(result.type, termlist_and);
    return shown(result.list);
  }
  static std::string left_of(std::string_view goal) { return left_of(read(goal)); }

  // The number of places at which `from` was rewritten to `to`; 0 when it was not.
  static std::size_t hits(std::string_view from, std::string_view to, std::string_view src, std::string_view dest) {
    std::size_t count = 99;
    const term_ptr terms[] = {read(from), read(to), read(src), read(dest)};
    const bool answer = term_matches_subterm_rewrite(terms[0], terms[1], terms[2], terms[3], &count);
    EXPECT_EQ(answer, count > 0 && count != 99) << from << " to " << to;
    EXPECT_EQ(term_matches_subterm_rewrite(terms[0], terms[1], terms[2], terms[3], nullptr), answer);
    return answer ? count : 0;
  }
};

TEST_F(shape_simpl, innermost_differences) {
  EXPECT_EQ(left_of("f(a) + g(b) = f(a) + g(d)"), "b = d");
  EXPECT_EQ(left_of("f(a) + g(b) = f(c) + g(d)"), "false") << "both operands differ";
  EXPECT_EQ(left_of("h(f(a) + g(b)) = h(f(c) + g(d))"), "f(a) + g(b) = f(c) + g(d)");
  EXPECT_EQ(left_of("(a, b) = (c, d)"), "a = c; b = d");
  EXPECT_EQ(left_of("(a, f(b), c) = (a, f(d), e1)"), "b = d; c = e1");
  EXPECT_EQ(left_of("(a, b) = (a, b, c)"), "(a, b) = (a, b, c)") << "the operator is equal, the lists are not";
  EXPECT_EQ(left_of("f(x)(a) = g(x)(a)"), "f = g");
  EXPECT_EQ(left_of("{ f(a) } = { f(b) }"), "a = b");
}

TEST_F(shape_simpl, decided_without_a_difference) {
  EXPECT_EQ(left_of("f(a) = f(a)"), "true");
  EXPECT_EQ(left_of("sum_{i = 1}^{n}(i) = sum_{j = 1}^{n}(j)"), "true");
  EXPECT_EQ(left_of("x = 1"), "false");
  EXPECT_EQ(left_of("f(a) = g(b)"), "false");
  EXPECT_EQ(left_of("f(a) < f(b)"), "false");
  EXPECT_EQ(left_of("f(a) = f(b) ∧ a = b"), "false");
  testing::internal::CaptureStdout();
  EXPECT_EQ(left_of(nullptr), "false");
  EXPECT_EQ(testing::internal::GetCapturedStdout(), "error in shape_simpl, null input\n");
}

TEST_F(shape_simpl, no_difference_leaves_its_binder) {
  EXPECT_EQ(left_of("sum_{i = 1}^{n}(i) = sum_{i = 1}^{m}(i)"), "n = m");
  EXPECT_EQ(left_of("sum_{i = 1}^{n}(f(a)) = sum_{i = 1}^{n}(f(b))"), "a = b");
  EXPECT_EQ(left_of("sum_{i = 1}^{n}(i) = sum_{i = 1}^{n}(1)"), "false") << "i = 1 says nothing outside of the sum";
  EXPECT_EQ(left_of("1 + sum_{i = 1}^{n}(i) = 1 + sum_{i = 1}^{n}(2 * i)"),
            "sum_{ i = 1 }^{ n } (i) = sum_{ i = 1 }^{ n } (2 * i)");
  EXPECT_EQ(left_of("sum_{i = 1}^{n}(i + a) = sum_{j = 1}^{n}(j + b)"), "false");
  EXPECT_EQ(left_of("{ x | x > a } = { x | x > b }"), "a = b");
  EXPECT_EQ(left_of("{ x | x > 0 } = { x | x > x^2 }"), "false");
  EXPECT_EQ(left_of("lim_{x → a}(f(x)) = lim_{x → b}(f(x))"), "a = b");
  EXPECT_EQ(left_of("lim_{x → 0}(a_x) = lim_{x → 0}(a_y)"), "false") << "bound in an index";
  EXPECT_EQ(left_of("bigO_{x → 0}(x + a) = bigO_{x → 0}(x * b)"), "false") << "bound by the equation";
  EXPECT_EQ(left_of("f(x) + bigO_{x → 0}(a) = f(x) + bigO_{x → 0}(c)"), "a = c");
}

TEST_F(shape_simpl, rewriting_counts_places) {
  EXPECT_EQ(hits("f(a) + a", "f(b) + b", "a", "b"), 2U);
  EXPECT_EQ(hits("f(a) + a", "f(a) + b", "a", "b"), 1U);
  EXPECT_EQ(hits("f(a) + a", "f(a) + a", "a", "b"), 0U) << "something has to be replaced";
  EXPECT_EQ(hits("f(a) + a", "f(b) + c", "a", "b"), 0U);
  EXPECT_EQ(hits("f(b)", "f(a)", "a", "b"), 0U) << "one orientation only";
  EXPECT_EQ(hits("sin(x + 1)", "sin(1 + x)", "x + 1", "1 + x"), 1U);
  EXPECT_EQ(hits("sin(x + 1) = 0", "sin(1 + x) = 0", "x + 1", "1 + x"), 1U);
  EXPECT_EQ(hits("f(a + a)", "f(b)", "2 * a", "b"), 1U) << "through arithmetic";
  EXPECT_EQ(hits("a = 1 ∧ forall (x), x = a", "a = 1 ∧ forall (x), x = b", "a", "b"), 1U);
  EXPECT_EQ(hits("(a, c) = d", "(b, c) = d", "a", "b"), 1U);
  EXPECT_EQ(hits("p = 1 ⇒ q = 1", "q = 1 ⇒ q = 1", "p = 1", "q = 1"), 1U);
  EXPECT_EQ(hits("a", "b", "a", "b"), 1U);
  std::size_t count = 99;
  EXPECT_FALSE(term_matches_subterm_rewrite(nullptr, read("b"), read("a"), read("b"), &count));
  EXPECT_FALSE(term_matches_subterm_rewrite(read("a"), read("b"), read("a"), nullptr, &count));
  EXPECT_EQ(count, 0U);
}

TEST_F(shape_simpl, rewriting_in_context) {
  EXPECT_EQ(hits("f(a + a)", "f((b + 1) + (b - 1))", "a", "b"), 2U) << "equal as a whole, not place by place";
  EXPECT_EQ(hits("f(a + a)", "f((b + 1) + b)", "a", "b"), 0U);
  EXPECT_EQ(hits("f(a + (a + c))", "f((b + c) + (b + 0))", "a", "b"), 0U) << "only places of the rule may differ";
  EXPECT_EQ(hits("x ∈ p", "x ∈ (0, 1)", "p", "(0, 1)"), 0U) << "p is a pair, and no interval";
  EXPECT_EQ(hits("x ∈ p", "x ∈ [0, 1]", "p", "[0, 1]"), 1U);
}

TEST_F(shape_simpl, rewriting_captures_nothing) {
  EXPECT_EQ(hits("forall (x), x = 0", "forall (x), 1 = 0", "x", "1"), 0U);
  EXPECT_EQ(hits("forall (x), f(a) = x", "forall (x), f(x) = x", "a", "x"), 0U);
  EXPECT_EQ(hits("forall (k), a_k = 0", "forall (k), b = 0", "a_k", "b"), 0U) << "the index counts";
  EXPECT_EQ(hits("forall (k), c_1 = k", "forall (k), a_k = k", "c_1", "a_k"), 0U);
  EXPECT_EQ(hits("forall (x ∈ S), a = x", "forall (x ∈ S), x = x", "a", "x"), 0U) << "bound by an entry";
  EXPECT_EQ(hits("exists (x ∈ S), a = y", "exists (x ∈ S), b = y", "a", "b"), 1U);
  EXPECT_EQ(hits("forall (x ∈ S), x = 0", "forall (x ∈ T), x = 0", "S", "T"), 0U) << "entries are not rewritten";
  EXPECT_EQ(hits("sum_{x = 1}^{n}(x)", "sum_{x = 1}^{n}(1)", "x", "1"), 0U);
  EXPECT_EQ(hits("sum_{i = 1}^{n}(a)", "sum_{i = 1}^{n}(i)", "a", "i"), 0U);
  EXPECT_EQ(hits("sum_{i = 1}^{n}(a * i)", "sum_{i = 1}^{m}(b * i)", "a", "b"), 0U);
  EXPECT_EQ(hits("sum_{i = 1}^{n}(a * i)", "sum_{i = 1}^{n}(b * i)", "a", "b"), 1U);
  EXPECT_EQ(hits("{ x | x > 0 }", "{ x | 1 > 0 }", "x", "1"), 0U);
  EXPECT_EQ(hits("int_{0}^{1}(x * diff(x))", "int_{0}^{1}(1 * diff(x))", "x", "1"), 0U);
  EXPECT_EQ(hits("seqlim_{n → ∞}(a_n)", "seqlim_{n → ∞}(b)", "a_n", "b"), 0U);
  EXPECT_EQ(hits("lim_{f(y) → 0}(f(y))", "lim_{z → 0}(z)", "f(y)", "z"), 0U) << "z would become bound";
  EXPECT_EQ(hits("g(fun t . a)", "g(fun t . b)", "a", "b"), 0U);
}

// Under forall (c) a sum from i = c binds i only, at the top of a formula it binds c, too.
TEST_F(shape_simpl, sums_that_bind_differently_are_different) {
  const char* sum_c = "sum_{i = c}^{n}(i)";
  EXPECT_EQ(hits("forall (c)(d), sum_{i = c}^{n}(i) = 0", "forall (c)(d), sum_{i = d}^{n}(i) = 0", sum_c,
                 "sum_{i = d}^{n}(i)"),
            0U);
  EXPECT_EQ(hits("sum_{i = c}^{n}(i) = 0", "sum_{i = d}^{n}(i) = 0", sum_c, "sum_{i = d}^{n}(i)"), 1U);
  EXPECT_EQ(hits("forall (i)(c), 5 = a", "forall (i)(c), sum_{i = c}^{n}(i) = a", "5", sum_c), 0U)
      << "c is no start here";
  EXPECT_EQ(hits("lim_{c → 0}(sum_{i = c}^{n}(i))", "lim_{c → 0}(5)", sum_c, "5"), 0U);
  EXPECT_EQ(hits("f(a [@scope a > 0 @], c)", "f(a [@scope a > 1 @], b)", "c", "b"), 1U)
      << "arithmetic does not look at scopes of terms";
  EXPECT_EQ(hits("p(c = 1 [@scope a > 0 @])", "p(b = 1 [@scope a > 1 @])", "c", "b"), 0U);
}

// What calculation takes out of an index part must not change what is bound.
TEST_F(shape_simpl, calculation_keeps_binders) {
  EXPECT_TRUE(poly_rat_eqb(read("sum_{i = k - k}^{n}(k)"), read("sum_{i = 0}^{n}(k)"))) << "a start stands outside";
  EXPECT_FALSE(poly_rat_eqb(read("(x + c - c)'"), read("x'")));
  EXPECT_FALSE(poly_rat_eqb(read("(2 * x + c - c)'"), read("(2 * x)'")));
  EXPECT_FALSE(poly_rat_eqb(read("lim_{u - u + y → 0}(u)"), read("lim_{y → 0}(u)")));
  EXPECT_FALSE(poly_rat_eqb(read("int(g(x) * diff(x + k - k))"), read("int(g(x) * diff(x))")));
  EXPECT_TRUE(poly_rat_eqb(read("sum_{i = k + 1}^{n}(k + k)"), read("sum_{i = 1 + k}^{n}(2 * k)")));
  EXPECT_TRUE(poly_rat_eqb(read("sum_{i + k = 1}^{n}(k)"), read("sum_{k + i = 1}^{n}(k)")));
}

// A set is not the same for elements for which a condition says nothing.
TEST_F(shape_simpl, set_descriptions_keep_their_domain) {
  EXPECT_EQ(left_of("{ x | x < ln(a) - ln(a) } = { x | x < 0 }"), "false");
  EXPECT_EQ(left_of("{ x | x < a / a } = { x | x < 1 }"), "false");
  EXPECT_EQ(left_of("{ x | x < a } = { x | x < b + 1 }"), "a = b + 1");
  EXPECT_EQ(left_of("{ x | x < f(a) } = { x | x < f(b) }"), "a = b");
  const auto proves = [](std::initializer_list<std::string_view> assumptions, std::string_view goal) {
    return solver_manager_dsl(read(goal), given(assumptions), initial_fee);
  };
  EXPECT_TRUE(proves({"f(a) = c"}, "{ x | x < f(a) } = { x | x < c }"));
  EXPECT_FALSE(proves({}, "{ x | x < ln(a) - ln(a) } = { x | x < 0 }"));
  EXPECT_EQ(hits("{ x | x < a + ln(x) - ln(x) }", "{ x | x < b }", "a", "b"), 0U);
  EXPECT_EQ(hits("{ x | x < a + x / x }", "{ x | x < b + 1 }", "a", "b"), 0U);
  EXPECT_EQ(hits("{ x | x < a + 1 / (x + 1) }", "{ x | x < b + 1 / (1 + x) }", "a", "b"), 1U);
  EXPECT_EQ(hits("{ x | x + x < a }", "{ x | 2 * x < b }", "a", "b"), 1U);
}

// Equal functions have equal domains; expressions with equal values need not.
TEST_F(shape_simpl, domains_are_open_to_hypotheses) {
  EXPECT_EQ(left_of("Dom(f) = Dom(g)"), "f = g");
  EXPECT_EQ(left_of("Dom(x / x) = Dom(1)"), "false");
  EXPECT_EQ(left_of("Dom(f - f) = Dom(g)"), "false");
  EXPECT_EQ(hits("x ∈ Dom(f)", "x ∈ Dom(g)", "f", "g"), 1U);
  EXPECT_EQ(hits("Defined(f(x))", "Defined(g(x))", "f", "g"), 1U);
  EXPECT_EQ(hits("x ∈ Dom(y / y)", "x ∈ Dom(1)", "y / y", "1"), 0U);
  EXPECT_EQ(hits("Defined(f(x + x))", "Defined(g(2 * x))", "f", "g"), 0U);
}

// Only the list with the ellipsis is one whole.
TEST_F(shape_simpl, lists_with_an_ellipsis) {
  EXPECT_EQ(left_of("a + (1 + 2 + ... + n) = b + (1 + 2 + ... + n)"), "a = b");
  EXPECT_EQ(left_of("1 + 2 + ... + n = 1 + 2 + ... + m"), "false");
  EXPECT_EQ(hits("a * (1 + 2 + ... + n)", "b * (1 + 2 + ... + n)", "a", "b"), 1U);
  EXPECT_EQ(hits("sin(1 + 2 + ... + n)", "sin(s)", "1 + 2 + ... + n", "s"), 1U);
  EXPECT_EQ(hits("1 + 2 + ... + n", "1 + 2 + ... + m", "n", "m"), 0U);
  EXPECT_EQ(hits("1 + 2 + ... + n + a", "1 + 2 + ... + n + b", "a", "b"), 1U);
}

TEST_F(shape_simpl, chains_with_an_ellipsis_stay_whole) {
  EXPECT_EQ(long_order_split(read("a < ... < c")).size(), 1U);
  EXPECT_EQ(long_order_split(read("a < b < c")).size(), 2U);
  EXPECT_FALSE(solver_manager_dsl(read("a < ... < c"), given({"a < ... < d", "b < ... < c"}), initial_fee));
}

}  // namespace
}  // namespace vetro
