// Values of closed expressions, memberships in number sets, definedness under a policy.
#include "qv_solver_list/constant_analysis.h"
#include "qv_solver_list/functions/definedness.h"
#include "qv_solver_list/solvers.h"
#include "support/solver_fixture.h"
#include "term/term_split_combine.h"

namespace vetro {
namespace {

class domains : public solver_test {
 protected:
  static std::string value(std::string_view text, const root_limits& limits = {}) {
    const auto exact_value = solver_const_analyze_exact_rational(read(text), limits);
    return exact_value ? to_string(*exact_value) : "none";
  }
};

TEST_F(domains, exact_values) {
  struct value_case {
    const char* text;
    const char* value;
  };
  for (const auto& [text, expected] :
       std::initializer_list<value_case>{{"0.1 + 0.2", "3/10"},
                                         {"0.50000000000000000000000000000000000000000", "1/2"},
                                         {"2 / 4", "1/2"},
                                         {"-7 mod 3", "-1"},
                                         {"7 mod (-3)", "1"},
                                         {"7 mod 0", "none"},
                                         {"|-5|", "5"},
                                         {"2^10", "1024"},
                                         {"(-2)^(-3)", "-1/8"},
                                         {"0^0", "none"},
                                         {"0^(-1)", "none"},
                                         {"4^(3 / 2)", "8"},
                                         {"4^(-1 / 2)", "1/2"},
                                         {"0^(1 / 2)", "0"},
                                         {"(-8)^(1 / 3)", "none"},
                                         {"sqrtn(3, -8)", "-2"},
                                         {"sqrtn(2, 1 / 4)", "1/2"},
                                         {"sqrtn(2, 2)", "none"},
                                         {"sqrtn(1 / 2, 4)", "none"},
                                         {"sqrtn(0, 4)", "none"},
                                         {"1 / 0", "none"},
                                         {"0 * (1 / 0)", "none"},
                                         {"0 * ∞", "none"},
                                         {"∞ - ∞", "none"},
                                         {"0 * sin(1)", "none"},
                                         {"0 * π", "0"},
                                         {"x - x", "none"},
                                         {"9223372036854775807 + 1", "9223372036854775808"}}) {
    EXPECT_EQ(value(text), expected) << text;
  }
  EXPECT_EQ(value("sqrtn(101, 1)", {.index = 100}), "none");
  EXPECT_EQ(value("sqrtn(2, 144)", {.component = 100}), "none");
  EXPECT_EQ(value("sqrtn(2, 100 / 81)", {.index = 100, .component = 100}), "10/9");
}

TEST_F(domains, real_status) {
  const auto expect_status = [](solver_const_real_status status, std::initializer_list<const char*> texts) {
    for (const char* text : texts) {
      EXPECT_EQ(solver_const_analyze_real_status(read(text)), status) << text;
    }
  };
  expect_status(SOLVER_CONST_REAL_UNDEFINED,
                {"1 / 0", "sqrtn(2, -1)", "0^0", "0^(-1 / 2)", "7 mod 0", "sqrtn(0, 4)", "sqrtn(1 / 2, 4)",
                 "__IMAGINARY_UNIT__", "-__IMAGINARY_UNIT__", "2 + __IMAGINARY_UNIT__", "1 + 1 / 0", "|1 / 0|"});
  expect_status(SOLVER_CONST_REAL_DEFINED, {"1", "sqrtn(2, 2)", "π^(e)", "e - 1", "sqrtn(3, -2)", "2^(π)", "-|π - e|"});
  expect_status(SOLVER_CONST_REAL_UNKNOWN,
                {"sin(1)", "1 / sin(1)", "1 / (e - 1)", "(e - 1)^(-1)", "sqrtn(2, e - 3)", "x", "x - x"});
}

TEST_F(domains, constants_prove) {
  expect(solver_sgn_pure, true,
         {{{}, "π > e"},
          {{}, "e ≤ π"},
          {{}, "e ≠ π"},
          {{}, "e > 0"},
          {{}, "π + 1 > 0"},
          {{}, "2^100 > 3^60"},
          {{}, "1 / 3 > 0.333"}});
  expect(solver_sgn_pure, false,
         {{{}, "π + 1 > e"}, {{}, "e - 1 > 0"}, {{}, "e > e"}, {{}, "1 / 0 ≥ 1 / 0"}, {{}, "sin(1) > 0"}});
  expect(solver_const_type, true,
         {{{}, "2 / 4 ∈ RationalSet"},
          {{}, "7 ∈ PrimeSet"},
          {{}, "sqrtn(2, 4) ∈ NonNegIntegerSet"},
          {{}, "-7 mod 3 ∈ NegIntegerSet"},
          {{}, "__IMAGINARY_UNIT__ ∈ ComplexSet"},
          {{}, "π * e ∈ PosRealSet"},
          {{}, "0 ∈ NonPosRationalSet"}});
  expect(solver_const_type, false,
         {{{}, "sqrtn(2, 2) ∈ RationalSet"},
          {{}, "1 / 0 ∈ RealSet"},
          {{}, "8 ∈ PrimeSet"},
          {{}, "1000003 ∈ PrimeSet"},
          {{}, "∞ ∈ RealSet"},
          {{}, "0 ∈ PosRealSet"},
          {{}, "1 ∈ EmptySet"},
          {{"x ∈ RealSet"}, "x ∈ RealSet"},
          {{}, "__IMAGINARY_UNIT__ * __IMAGINARY_UNIT__ ∈ ComplexSet"},
          {{}, "sin(1) ∈ RealSet"}});
}

TEST_F(domains, types_of_expressions) {
  expect(solver_domain_type, true,
         {{{"n ∈ PosIntegerSet"}, "n + 1 ∈ PosIntegerSet"},
          {{"x ∈ RealSet"}, "x / 2 ∈ RealSet"},
          {{"x ∈ PosRealSet"}, "1 / x ∈ PosRealSet"},
          {{"p ∈ PrimeSet"}, "p^2 + 1 ∈ PosIntegerSet"},
          {{"p ∈ PrimeSet"}, "p ∈ PrimeSet"},
          {{"n ∈ PosIntegerSet", "x ∈ NonNegRealSet"}, "x^n ∈ NonNegRealSet"},
          {{"n ∈ PosIntegerSet", "x ∈ IntegerSet"}, "x^n ∈ IntegerSet"},
          {{"n ∈ IntegerSet", "x ∈ PosRationalSet"}, "x^n ∈ PosRationalSet"},
          {{"x ∈ NegIntegerSet"}, "x^3 ∈ NegIntegerSet"},
          {{"x ∈ NegIntegerSet"}, "x^2 ∈ PosIntegerSet"},
          {{"x ∈ NegRealSet"}, "x^(-2) ∈ PosRealSet"},
          {{"x ∈ PosRealSet", "y ∈ RealSet"}, "x^y ∈ PosRealSet"},
          {{"x ∈ RealSet", "x ∈ NonNegRealSet"}, "sqrtn(2, x) ∈ NonNegRealSet"},
          {{"x ∈ NegRealSet"}, "sqrtn(3, x) ∈ NegRealSet"},
          {{"n ∈ PosIntegerSet", "x ∈ PosRealSet"}, "sqrtn(n, x) ∈ PosRealSet"},
          {{"n ∈ IntegerSet"}, "n mod 3 ∈ IntegerSet"},
          {{"z ∈ ComplexSet"}, "z * z + __IMAGINARY_UNIT__ ∈ ComplexSet"},
          {{"x ∈ IntegerSet"}, "|x| ∈ NonNegIntegerSet"},
          {{"f(x) ∈ PosRealSet"}, "f(x) * f(x) ∈ PosRealSet"},
          {{"x ∈ RationalSet", "x ∈ NonNegRealSet"}, "x ∈ NonNegRationalSet"}});
  expect(solver_domain_type, false,
         {{{"x ∈ RealSet"}, "x^(-1) ∈ RealSet"},
          {{"p ∈ PrimeSet"}, "p + 2 ∈ PrimeSet"},
          {{"p ∈ PrimeSet"}, "-(-p) ∈ PrimeSet"},
          {{"x > 0"}, "x ∈ PosRealSet"},
          {{"n ∈ PosIntegerSet", "x ∈ RealSet"}, "x^n ∈ NonNegRealSet"},
          {{"n ∈ NonNegIntegerSet", "x ∈ IntegerSet"}, "x^n ∈ IntegerSet"},
          {{"n ∈ IntegerSet", "x ∈ PosIntegerSet"}, "x^n ∈ IntegerSet"},
          {{"n ∈ IntegerSet", "x ∈ NonNegRealSet"}, "x^n ∈ RealSet"},
          {{"x ∈ NonNegRealSet", "y ∈ RealSet"}, "x^y ∈ RealSet"},
          {{"x ∈ RealSet"}, "sqrtn(2, x) ∈ RealSet"},
          {{"n ∈ IntegerSet", "x ∈ PosRealSet"}, "sqrtn(n, x) ∈ RealSet"},
          {{"n ∈ PosIntegerSet", "x ∈ RealSet"}, "sqrtn(n, x) ∈ RealSet"},
          {{"n ∈ PosIntegerSet"}, "n - 1 ∈ PosIntegerSet"},
          {{"n ∈ IntegerSet", "m ∈ IntegerSet"}, "n / m ∈ RationalSet"},
          {{"n ∈ IntegerSet"}, "n mod 0 ∈ IntegerSet"},
          {{"z ∈ ComplexSet"}, "|z| ∈ RealSet"},
          {{"x ± 1 ∈ PosRealSet"}, "(x ± 1) + 1 ∈ PosRealSet"},
          {{}, "x ∈ RealSet"},
          {{"x ∈ A"}, "x ∈ A"}});
}

TEST_F(domains, deep_and_shared_types) {
  const solve_data sdata = given({"x ∈ PosIntegerSet"});
  const auto is_positive = [&sdata](solver_decide solve, term_ptr t) {
    return solve(make_binPred_prop(Belong, t, mk_const(PosIntegerSet)), sdata);
  };
  term_ptr chain = mk_var("x");
  term_ptr shared = mk_var("x");
  term_ptr constant = mk_integer(1);
  for (int i = 0; i < 64; ++i) {
    chain = make_binOp_term(Plus, chain, mk_integer(1));
    shared = make_binOp_term(i % 2 == 0 ? Plus : Mult, shared, shared);
    constant = make_binOp_term(Plus, mk_integer(1), constant);
  }
  EXPECT_TRUE(is_positive(solver_domain_type, chain));
  EXPECT_TRUE(is_positive(solver_domain_type, shared));
  EXPECT_TRUE(is_positive(solver_const_type, constant));
  EXPECT_FALSE(is_positive(solver_domain_type, make_binOp_term(Plus, chain, mk_integer(1))));
  EXPECT_FALSE(is_positive(solver_const_type, make_binOp_term(Plus, constant, mk_integer(1))));
}

class definedness : public solver_test {
 protected:
  static void expect_defined(bool answer, const domain_policy& policy, std::initializer_list<solver_case> cases) {
    for (const solver_case& c : cases) {
      EXPECT_EQ(solver_expr_domain_is_defined(read(c.goal), given(c.assumed), policy), answer) << c.goal;
    }
  }
};

TEST_F(definedness, by_operator) {
  const std::initializer_list<solver_case> defined = {{{}, "x + y * z - 3.5"},
                                                      {{}, "sin(x) * cos(y) + |z|"},
                                                      {{"x > 0"}, "ln(x) + lg(x)"},
                                                      {{"x ≠ 0"}, "1 / x"},
                                                      {{"x ≠ 0", "y ≠ 0"}, "1 / (x * y / x^2)"},
                                                      {{"x ≥ 0"}, "sqrtn(2, x)"},
                                                      {{}, "sqrtn(3, x)"},
                                                      {{}, "x^3"},
                                                      {{"x ≠ 0"}, "x^(-3)"},
                                                      {{"x > 0"}, "x^y"},
                                                      {{"cos(x) ≠ 0"}, "tan(x)"},
                                                      {{"b > 0", "b ≠ 1", "x > 0"}, "log(b, x)"},
                                                      {{}, "exp(x)"},
                                                      {{}, "1 / 2 + 2^(1 / 2)"},
                                                      {{}, "1 / sin(π / 6) + y^(log(2, 8))"}};
  const std::initializer_list<solver_case> open = {{{}, "1 / x"},
                                                   {{"x ≠ 0"}, "1 / (x + y)"},
                                                   {{"x ≠ 0"}, "1 / sin(x)"},
                                                   {{}, "sqrtn(2, x)"},
                                                   {{}, "sqrtn(n, x)"},
                                                   {{}, "sqrtn(0, 4)"},
                                                   {{}, "x^(-3)"},
                                                   {{}, "x^0"},
                                                   {{}, "x^y"},
                                                   {{}, "tan(x)"},
                                                   {{"x > 0", "b > 0"}, "log(b, x)"},
                                                   {{}, "∞"},
                                                   {{}, "sin(∞)"},
                                                   {{}, "0 * ∞"},
                                                   {{}, "__IMAGINARY_UNIT__"},
                                                   {{}, "f(x)"},
                                                   {{}, "n!"},
                                                   {{"exp(x) = 1 / x"}, "exp(y)"}};
  for (const domain_policy* policy : {&limit_domain_policy, &evalbar_domain_policy}) {
    expect_defined(true, *policy, defined);
    expect_defined(false, *policy, open);
  }
  expect_defined(false, limit_domain_policy, {{{}, "arctan(x)"}});
  expect_defined(true, evalbar_domain_policy, {{{}, "arctan(x)"}});
}

TEST_F(definedness, through_functions) {
  const std::initializer_list<solver_case> defined = {{{"f = (fun x . x + 1)"}, "f(y)"},
                                                      {{"forall (x), f(x) = 1 / x", "y ≠ 0"}, "f(y)"},
                                                      {{"forall (x), x > 0 ⇒ f(x) = 1", "y > 0"}, "f(y)"},
                                                      {{"forall (x), f(x) = x^2"}, "f(f(y))"}};
  expect_defined(true, evalbar_domain_policy, defined);
  expect_defined(false, limit_domain_policy, defined);
  expect_defined(false, evalbar_domain_policy,
                 {{{"forall (x), f(x) = 1 / x"}, "f(y)"},
                  {{"forall (x), x > 0 ⇒ f(x) = 1"}, "f(y)"},
                  {{"f = (fun x . x + 1)"}, "f(1 / y)"},
                  {{"forall (x), f(x) = f(x)"}, "f(y)"},
                  {{"forall (x), f(x) = g(x)", "forall (x), g(x) = f(x)"}, "f(y)"},
                  {{"forall (x), f(x) = g(x + 1) + g(x + 2)", "forall (x), g(x) = f(x + 1) + f(x + 2)"}, "f(y)"}});
}

}  // namespace
}  // namespace vetro
