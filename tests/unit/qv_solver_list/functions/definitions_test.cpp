// Definitions among the assumptions, and premises at a point and around it.
#include "qv_solver_list/functions/definitions.h"

#include "qv_solver_list/functions/conditions.h"
#include "support/solver_fixture.h"
#include "term/reserved.h"

namespace vetro {
namespace {

class definitions_test : public solver_test {
 protected:
  // Arguments as f(a, b) in one text; none for an empty one.
  static term_list arguments(std::string_view text) {
    return text.empty() ? term_list{} : spine_of(read("args(" + std::string(text) + ")")).args;
  }

  // What the function of that name, or partial application, gives at the arguments; "(null)" when there is none.
  static std::string value(const solve_data& sdata, std::string_view func, std::string_view args, bool openly = false) {
    prover premises(sdata, side_table::func_apply);
    const term_list values = arguments(args);
    const term_ptr lambda = openly ? solver_func_resolve_lambda_pointwise(read(func), values.size(), values, premises)
                                   : solver_func_resolve_lambda(read(func), values.size(), values, premises);
    return shown(lambda == nullptr ? nullptr : solver_func_apply_lambda(lambda, values));
  }
};

TEST_F(definitions_test, resolve_to_the_first_usable_one) {
  struct row {
    std::initializer_list<std::string_view> assumptions;
    std::string_view func;
    std::string_view args;
    std::string_view expected;
  };
  const row rows[] = {
      {{"f = fun x . x + 1"}, "f", "2", "2 + 1"},
      {{"forall (x)(y), g(y, x) = x - y"}, "g", "1, 2", "2 - 1"},
      {{"forall (x)(y), g(x, y) = x - y"}, "g(a)", "y", "a - y"},
      {{"g = fun x, y . x - y"}, "g(y)", "x", "y - x"},
      {{"forall (x_1), f(x_1) = x_1^2"}, "f", "3", "3^{2}"},
      {{"a = 1 ∧ (forall (x), f(x) = x ∧ h(x) = -x)"}, "h", "3", "-3"},
      {{"forall (x), f(x) = x", "f = fun x . 2"}, "f", "3", "3"},
      {{"forall (x), x > 1 ⇒ f(x) = x", "f = fun x . 2"}, "f", "0", "2"},
      // Premises are asked at the arguments.
      {{"a > 1", "forall (x), x > 1 ⇒ f(x) = x"}, "f", "a", "a"},
      {{"forall (x), x > 1 ⇒ f(x) = x"}, "f", "a", "(null)"},
      {{"k ∈ Integer", "forall (x ∈ Integer), f(x) = x"}, "f", "k", "k"},
      {{"forall (x ∈ Integer), f(x) = x"}, "f", "k", "(null)"},
      // An argument keeps its meaning below the binders of the definition.
      {{"forall (x), f(x) = sum_{i = 1}^{3}(i * x)"}, "f", "i + 1", "sum_{ i1 = 1 }^{ 3 } (i1 * (i + 1))"},
      {{"forall (x)(y), g(x, y) = x - y"}, "g", "y, x", "y - x"},
      {{"forall (x), f(x) = int_{0}^{x}(t * diff(t))"}, "f", "3", "DefInt(0, 3, t * diff(t))"},
      {{"forall (x), f(x) = int_{0}^{x}(x * diff(x))"}, "f", "3", "DefInt(0, 3, x * diff(x))"},
      // Where a value would be caught, nothing is said.
      {{"forall (x), f(x) = (x^2)'"}, "f", "3", "(null)"},
      {{"forall (x), f(x) = int(x * diff(x))"}, "f", "3", "(null)"},
      // No definitions.
      {{"forall (x), f(x) = f(x - 1)"}, "f", "3", "(null)"},
      {{"forall (x), f(x) = x + c"}, "f", "3", "(null)"},
      {{"f = fun x . x + c"}, "f", "3", "(null)"},
      {{"forall (x), c > 1 ⇒ f(x) = x", "c > 1"}, "f", "3", "(null)"},
      {{"forall (x), f(x, x) = x"}, "f", "3, 3", "(null)"},
      {{"forall (x)(x), f(x, x) = x"}, "f", "3, 3", "(null)"},
      {{"forall (x)(y), f(x) = x"}, "f", "3", "(null)"},
      {{"forall (x), f(x + 1) = x"}, "f", "3", "(null)"},
      {{"forall (f)(x), f(x) = 1"}, "f", "3", "(null)"},
      {{"exists (x), f(x) = 1"}, "f", "3", "(null)"},
      {{"c > 0 ⇒ f = (fun x . x)", "c > 0"}, "f", "3", "(null)"},
      {{"x > 0", "x > 0 ⇒ (forall (x), f(x) = x)"}, "f", "3", "(null)"},
      {{"forall (x), f(x) = x [@scope x > 0 @]"}, "f", "3", "(null)"},
      {{"forall (x), f(x) = ±x"}, "f", "3", "(null)"},
      {{"forall (x), f(x) = bigO_{x → 0}(x)"}, "f", "3", "(null)"},
      {{"forall (x), f(x) = 1 + ... + x"}, "f", "3", "(null)"},
      {{"forall (x), f(x) = x"}, "f", "∞", "(null)"},
      {{"f = fun x, y . x"}, "f", "1", "(null)"},
      {{"f = fun x . x"}, "f", "1, 2", "(null)"},
  };
  for (const row& r : rows) {
    EXPECT_EQ(value(given(r.assumptions), r.func, r.args), r.expected) << *r.assumptions.begin();
  }
}

TEST_F(definitions_test, keep_types_and_condition_as_premises_of_the_application) {
  const solve_data sdata = given({"g = fun n: IntegerSet, x: PosRealSet [x > n] . x - n", "k ∈ Integer", "k > 1"});
  prover premises(sdata, side_table::func_apply);
  const term_ptr whole = solver_func_resolve_lambda(read("g"), 2, {}, premises);
  ASSERT_NE(whole, nullptr);
  EXPECT_EQ(shown(solver_func_lambda_premises(whole, arguments("3, y"))), "3 ∈ IntegerSet; y ∈ PosRealSet; y > 3");
  const term_ptr behind_one = solver_func_resolve_lambda(read("g(m)"), 1, {}, premises);
  ASSERT_NE(behind_one, nullptr);
  EXPECT_EQ(shown(solver_func_lambda_premises(behind_one, arguments("k"))), "k ∈ PosRealSet; m ∈ IntegerSet ∧ k > m");
}

TEST_F(definitions_test, without_arguments_premises_are_asked_of_any_value) {
  const solve_data sdata = given({"x > 0", "forall (x), x > 0 ⇒ f(x) = x", "forall (x), x^2 ≥ 0 ⇒ g(x) = x"});
  prover premises(sdata, side_table::cont);
  EXPECT_EQ(solver_func_resolve_lambda(read("f"), 1, {}, premises), nullptr);
  const term_ptr g = solver_func_resolve_lambda(read("g"), 1, {}, premises);
  ASSERT_NE(g, nullptr);
  EXPECT_EQ(g->vars()[0], reserved_var(reserved_kind::parameter, 0));
}

TEST_F(definitions_test, pointwise_needs_premises_in_a_neighbourhood) {
  const solve_data sdata = given({"a > 0", "b ≥ 0", "forall (x), x > 0 ⇒ f(x) = x", "forall (x), x ≥ 0 ⇒ g(x) = x",
                                  "forall (x ∈ Real), h(x) = x", "forall (c)(x), c ≥ 0 ⇒ p(c, x) = c"});
  EXPECT_EQ(value(sdata, "f", "a", true), "a");
  EXPECT_EQ(value(sdata, "g", "a", true), "a");
  EXPECT_EQ(value(sdata, "g", "b", true), "(null)");
  EXPECT_EQ(value(sdata, "h", "b", true), "b");
  EXPECT_EQ(value(sdata, "p(b)", "a", true), "b");
  EXPECT_EQ(value(sdata, "p", "b, a", true), "(null)");
}

TEST_F(definitions_test, substitute_at_once) {
  const term_list params = arguments("x, y");
  const term_list values = arguments("y, x + 1");
  EXPECT_EQ(shown(solver_func_substitute_args(read("x - y"), params, values)), "y - (x + 1)");
  EXPECT_EQ(solver_func_substitute_args(read("x"), params, term_span(values).first(1)), nullptr);
  EXPECT_EQ(solver_func_substitute_args(nullptr, params, values), nullptr);
}

// ---- Conditions on one name x that stands at a value.

class conditions_test : public definitions_test {
 protected:
  // Two letters: what is shown at the point, and around it. t true, f false, - neither.
  static std::string truth(const solve_data& sdata, std::string_view condition, std::string_view value) {
    prover premises(sdata, side_table::evalbar_domain);
    const term_list params = arguments("x");
    const term_list values = arguments(value);
    const solver_func_condition_context context{params, values, premises};
    const term_ptr c = read(condition);
    const auto letter = [](bool yes, bool no) { return yes ? (no ? '!' : 't') : no ? 'f' : '-'; };
    return {letter(solver_func_condition_true_at_point(c, context), solver_func_condition_false_at_point(c, context)),
            letter(solver_func_condition_true_open_at(c, context), solver_func_condition_false_open_at(c, context))};
  }
};

TEST_F(conditions_test, at_a_point_and_around_it) {
  struct row {
    std::string_view condition;
    std::string_view value;
    std::string_view expected;
  };
  const row rows[] = {
      {"x < 0", "p", "ff"},
      {"x < 0", "n", "tt"},
      {"x ≤ 0", "0", "t-"},
      {"x ≥ 0", "p", "tt"},
      {"0 < x", "p", "tt"},
      {"0 > x", "p", "ff"},
      {"x = 0", "p", "ff"},
      {"x = 0", "0", "t-"},
      {"x ≠ 0", "p", "tt"},
      {"x ≠ 0", "0", "f-"},
      {"x < c", "c", "f-"},
      {"x < y", "p", "--"},
      {"¬(x < 0)", "p", "tt"},
      {"x < 0 ∧ x > y", "p", "ff"},
      {"x > 0 ∨ x > y", "p", "tt"},
      {"x > 0 ∧ x > y", "p", "--"},
      {"0 < x < p + p", "p", "tt"},
      {"x ∈ RealPlus", "p", "tt"},
      {"x ∈ RealPlus", "n", "ff"},
      {"x ∉ RealPlus", "n", "tt"},
      {"x ∈ NonNegRealSet", "0", "t-"},
      {"x ∈ Real", "p", "-t"},
      {"x ∈ Integer", "3", "t-"},
      {"x + 1 > 0", "p", "t-"},
      {"x < x + 1", "p", "t-"},
      {"p > 0", "y", "tt"},
      {"False", "p", "ff"},
      {"x = ±p", "n", "--"},
      {"x > 0 [@scope y > 0 @]", "p", "--"},
  };
  const solve_data sdata = given({"p > 0", "n < 0"});
  for (const row& r : rows) {
    EXPECT_EQ(truth(sdata, r.condition, r.value), r.expected) << r.condition << " at " << r.value;
  }
}

}  // namespace
}  // namespace vetro
