// Evaluation by definitions: depth, sharing, what is used where, and what is left alone.
#include "qv_solver_list/functions/apply_normalize.h"
#include "qv_solver_list/solvers.h"
#include "support/solver_fixture.h"
#include "term/term_split_combine.h"

namespace vetro {
namespace {

class apply_test : public solver_test {
 protected:
  static std::string evaluated(const solve_data& sdata, std::string_view text, int fuel = func_apply_fuel) {
    return shown(solver_func_apply_normalize(read(text), sdata, fuel));
  }
};

TEST_F(apply_test, evaluates_where_values_stand) {
  struct row {
    std::initializer_list<std::string_view> assumptions;
    std::string_view term;
    std::string_view expected;
  };
  const row rows[] = {
      {{"f = fun x . x + 1"}, "f(f(2)) * f", "(2 + 1 + 1) * f"},
      {{"f = fun x . x + 1"}, "fun y . f(y)", "fun y: RealSet . y + 1"},
      {{"f = fun x . x + 1"}, "fun y: IntegerSet [f(y) > 0] . y", "fun y: IntegerSet [y + 1 > 0] . y"},
      {{"h = fun x . fun y . x - y"}, "h(1)(2)", "1 - 2"},
      {{"h = fun p . p(3)", "f = fun x . x + 1"}, "h(f)", "3 + 1"},
      {{"h = fun p, x . p(p(x))", "f = fun x . x + 1"}, "h(f, 0)", "0 + 1 + 1"},
      {{"f = fun x . x + 1"},
       "(f(x))' + Dom(f(x)) + diff(f(x)) + Cardinal(f(x))",
       "f(x)' + Dom(f(x)) + diff(f(x)) + |f(x)|"},
      {{"f = fun x . x + 1"}, "lim_{x → ∞}(f(x))", "lim_{ x → ∞ } (x + 1)"},
      {{"f = fun x . x - x"}, "f(±1) + f(∞) + f(1 + ... + n)", "f(±1) + f(∞) + f(1 + ... + n)"},
      {{"f = fun x . x + 1"}, "f(1) [@scope y > 0 @]", "f(1) [@scope y > 0 @]"},
      // What is known of a name says nothing of a bound name that is called the same.
      {{"i > 0", "forall (x), x > 0 ⇒ f(x) = x"}, "sum_{i = 0}^{n}(f(i)) + f(i)", "(sum_{ i = 0 }^{ n } (f(i))) + i"},
      {{"f = fun x . x + 1"}, "sum_{f = 1}^{3}(f(2))", "sum_{ f = 1 }^{ 3 } (f(2))"},
      {{"x > 0"}, "fun x . cases{ 1 if x > 0; otherwise 2 }", "fun x: RealSet . cases{ 1 if x > 0; otherwise 2 }"},
      // Cases.
      {{}, "cases{ 1 if 1 < 0; 2 if 1 > 0 }", "2"},
      {{}, "cases{ 1 if x < 0; 2 if 1 > 0 }", "cases{ 1 if x < 0; 2 if 1 > 0 }"},
      {{"x ≥ 0"}, "cases{ 1 if x < 0; otherwise (2, 3) }", "(2, 3)"},
      {{"f = fun x . x + 1", "x > 0"}, "cases{ 1 if f(x) < f(x); f(x) if x > 0 }", "x + 1"},
  };
  for (const row& r : rows) {
    EXPECT_EQ(evaluated(given(r.assumptions), r.term), r.expected) << r.term;
  }
}

TEST_F(apply_test, fuel_is_the_depth_of_unfolding) {
  const solve_data sdata = given({"w = fun h, x . h(h, x + 1)"});
  EXPECT_EQ(evaluated(sdata, "w(w, 0)", 3), "w(w, 0 + 1 + 1 + 1)");
  EXPECT_EQ(evaluated(sdata, "w(w, (fun y . y)(0))", 0), "w(w, 0)");
  EXPECT_EQ(solver_func_apply_normalize(nullptr, sdata, 1), nullptr);
  EXPECT_EQ(solver_func_apply_normalize(read("(fun x . x(x))(fun x . x(x))"), sdata, 8), nullptr);
}

// As trees, all of these have millions of nodes.
TEST_F(apply_test, shared_parts_are_evaluated_once) {
  std::string ten = "h(x)";
  std::string thirty = "x(x)";
  for (int i = 1; i < 30; ++i) {
    ten += i < 10 ? " + h(x)" : "";
    thirty += " + x(x)";
  }
  const solve_data sdata = given({"forall (h)(x), Q(h, x) = " + ten, "W = fun x . " + thirty});
  std::string term = "fun t . t + 1";
  for (int i = 0; i < 7; ++i) {
    term = "fun t" + std::to_string(i) + " . Q(" + term + ", t" + std::to_string(i) + ")";
  }
  const term_ptr nested = solver_func_apply_normalize(read("(" + term + ")(0)"), sdata, func_apply_fuel);
  ASSERT_NE(nested, nullptr);
  EXPECT_GT(nested->size(), 10'000'000U);
  const term_ptr itself = solver_func_apply_normalize(read("W(W)"), sdata, func_apply_fuel);
  ASSERT_NE(itself, nullptr);
  EXPECT_GT(itself->size(), 10'000'000U);
  EXPECT_TRUE(solver_func_apply_eqb(read("W(W) = 2 * W(W) - W(W)"), sdata));

  term_ptr cases = read("0");
  for (int i = 0; i < 40; ++i) {
    const term_ptr pair = vetro::make_tuple(term_list{cases, read("1 > 0")});
    cases = mk_apply(mk_oper(PiecewiseFunc), mk_term_list(term_list{pair, make_binOp_term(Plus, cases, cases)}));
  }
  EXPECT_EQ(shown(solver_func_apply_normalize(cases, sdata, func_apply_fuel)), "0");
}

}  // namespace
}  // namespace vetro
