// What the translation of terms keeps apart: kinds of values, names, scopes of meaning; and what it may leave out.
#include <gtest/gtest.h>

#include "qv_solver_list/assumption_facts.h"
#include "qv_solver_list/solvers.h"
#include "support/solver_fixture.h"

namespace vetro {
namespace {

using smt_lra_test = solver_test;

TEST_F(smt_lra_test, values_without_order_or_arithmetic) {
  expect(solver_smt_lra, false,
         {
             {{"z ∈ Complex"}, "|z| = z ∨ |z| = -z"},
             {{"w = z", "z ∈ Complex"}, "w < 0 ∨ w ≥ 0"},
             {{}, "|__IMAGINARY_UNIT__|^2 = __IMAGINARY_UNIT__^2"},
             {{"A = {1, 2}"}, "|A| = A ∨ |A| = -A"},
             {{"A ⊆ B"}, "A + A = 2 * A"},
             {{"f(0) = 1"}, "|f|^2 = f^2"},
             {{"EvenFunc(f)"}, "|f| = f ∨ |f| = -f"},
             {{"v = (1, 2)"}, "v < 0 ∨ v ≥ 0"},
             {{}, "Cardinal(A) + 1 > Cardinal(A)"},
             {{"x = ∞", "y = x + 1", "y = ∞"}, "0 = 1"},
             {{"z ∈ S", "S = Complex"}, "z < 0 ∨ z ≥ 0"},
             {{"T ⊆ Complex", "z ∈ S ∪ T"}, "|z| = z ∨ |z| = -z"},
             {{"z + __IMAGINARY_UNIT__ = 2"}, "z < 3 ∨ z ≥ 3"},
             {{"z ∈ Real ⇒ z > 5", "z ∈ Complex"}, "z < 3 ∨ z ≥ 3"},
             {{"z ∈ Complex"}, "z ∈ Real ∨ z < 3 ∨ z ≥ 3"},
             {{"forall (z ∈ Real), z = z", "z ∈ Complex"}, "z < 3 ∨ z ≥ 3"},
             {{"z ∉ RealPlus", "z = __IMAGINARY_UNIT__"}, "z < 3 ∨ z ≥ 3"},
             {{"z ∉ Real"}, "z < 3 ∨ z ≥ 3"},
             {{}, "z ∉ Real ⇒ z < 3 ∨ z ≥ 3"},
             {{}, "z ∈ { __IMAGINARY_UNIT__, 1 } ⇒ z < 3 ∨ z ≥ 3"},
             {{"S = { __IMAGINARY_UNIT__, 1 }", "z ∈ S"}, "z < 3 ∨ z ≥ 3"},
             {{"z * __IMAGINARY_UNIT__ = w", "w ∈ Real"}, "z < 3 ∨ z ≥ 3"},
         });
  expect(solver_smt_lra, true,
         {
             {{"z ∈ Complex"}, "z + z = 2 * z"},
             {{"z ∈ Complex", "z ∈ Real"}, "z < 3 ∨ z ≥ 3"},
             {{"∞ = y"}, "f(∞) = f(y)"},
             {{"A = B", "x ∈ A"}, "x ∈ B"},
             {{}, "||x| - |y|| ≤ |x - y|"},
             {{}, "|x|^4 = x^4"},
             {{"x ∈ S", "z ∈ Complex"}, "x < 0 ∨ x ≥ 0"},
             {{"z = a + b * __IMAGINARY_UNIT__", "a > 1"}, "a > 0 ∧ b * 2 = b + b"},
             {{"S = Complex", "z ∈ S", "x ∈ [0, 1]"}, "x < 0 ∨ x ≥ 0"},
         });
}

TEST_F(smt_lra_test, more_than_a_value) {
  expect(solver_smt_lra, false,
         {
             {{"x = 3"}, "(x^2)' = (3^2)'"},
             {{"n = m", "ConvergentSeq(a_n)"}, "ConvergentSeq(a_m)"},
             {{"x = y", "x → 0"}, "y → 0"},
             {{"x = 3", "diff(x) = 1"}, "diff(3) = 1"},
             {{"Dom(f) = A", "f = g"}, "Dom(g) = A"},
             {{"i = 3"}, "sum_{i = 1}^{n}(i) = sum_{i = 1}^{n}(3)"},
             {{"y = x", "{ x | x > y } = A"}, "{ x | x > x } = A"},
             {{"1 + 2 + ... + n = s"}, "1 + 2 + ... + n - 3 = s - 3"},
             {{"a_1 < ... < a_n"}, "a_1 < a_n"},
             {{"n = m", "UniformConvergent(g, f_n, A)"}, "UniformConvergent(g, f_m, A)"},
             {{"x = y", "g ∘ x^2 = h"}, "g ∘ y^2 = h"},
             {{"x = y", "Sup(a_x) = h"}, "Sup(a_y) = h"},
             {{"i = j"}, "sum_{i = 1}^{n}(i * j) = sum_{i = 1}^{n}(i * i)"},
             {{"x = a"}, "sum_{i = 1}^{n}((x^i)') = sum_{i = 1}^{n}((a^i)')"},
             {{"n = m", "sum_{i < n}(i) = 3"}, "sum_{i < m}(i) = 3"},
             {{"a = b"}, "{ x * a | x > 0 } = { x * b | x > 0, b > 1 }"},
         });
  expect(solver_smt_lra, true,
         {
             {{"f = g"}, "f'(x) = g'(x)"},
             {{"n = m"}, "a_n = a_m"},
             {{"sum_{i = 1}^{n}(i) = s"}, "sum_{j = 1}^{n}(j) + 1 = s + 1"},
             {{"f = g", "ConvergentSeq(f)"}, "ConvergentSeq(g)"},
             {{"f = g", "ContinuousFunc(f')"}, "ContinuousFunc(g')"},
             {{"a ≤ b", "b ≤ a", "n = m"}, "sum_{i = 1}^{n}(a * i) + 1 = 1 + sum_{j = 1}^{m}(b * j)"},
             {{"y = z", "f = g", "{ x | f(x) > y } = A"}, "{ t | g(t) > z } = A"},
             {{"A = B"}, "Sup(A ∪ C) = Sup(B ∪ C)"},
         });
}

TEST_F(smt_lra_test, names_are_their_structure) {
  expect(solver_smt_lra, false,
         {
             {{"`x*y` * z = 1"}, "x * y * z = 1"},
             {{}, "`0.5` = 0.5"},
             {{"`_op32` = `_op36`"}, "x + y = x - y"},
             {{"`abs_c1` = -1"}, "|x| = 1"},
             {{"`TRUE` = 1", "x ∈ A"}, "0 = 1"},
             {{"f(`a,b`) = 1"}, "f(a, b) = 1"},
             {{}, "a / b * c = a / (b * c)"},
         });
}

// Parts without translation weaken an assumption only where that is right, and never a goal.
TEST_F(smt_lra_test, what_is_left_out) {
  expect(solver_smt_lra, false,
         {
             {{"x > 0 ∨ (forall (t), t > 0)"}, "x > 0"},
             {{"¬(x > 0 ∧ (forall (t), t > 0))"}, "¬(x > 0)"},
             {{"x > 0 ∧ (forall (t), t > 0) ⇔ y > 0", "x > 0"}, "y > 0"},
             {{"x > 0 ∧ (forall (t), t > 0) ⇒ y > 0", "x > 0"}, "y > 0"},
             {{"x > 0"}, "x > 0 ∧ (forall (t), t > 0)"},
             {{"|x| > 1"}, "|x| ≠ 1"},
         });
  expect(solver_smt_lra, true,
         {
             {{"x > 0 ∧ (forall (t), t > x)"}, "x > -1"},
             {{"y > 0 ⇒ x > 0 ∧ (forall (t), t > x)", "y > 1"}, "x > 0"},
             {{"x > 0 ∨ x > 1 ∧ (forall (t), t > 0)"}, "x > 0"},
         });
}

// What does not belong together with the goal is left out of long lists, and changes no answer.
TEST_F(smt_lra_test, long_lists) {
  std::vector<std::string> others;
  for (int i = 0; i < 40; ++i) {
    others.push_back("q" + std::to_string(i) + " + 2 * r" + std::to_string(i) + " ≤ " + std::to_string(i));
  }
  const auto list_of = [](const std::vector<std::string>& texts) {
    solve_data sdata;
    for (const std::string& text : texts) {
      sdata.assum.push_back(read(text));
    }
    return sdata;
  };
  const auto proves = [&](const std::vector<std::string>& texts, std::string_view goal) {
    std::vector<std::string> all = texts;
    all.insert(all.begin() + 1, others.begin(), others.end());
    const solve_data sdata = list_of(all);
    const bool first = solver_smt_lra(read(goal), sdata);
    EXPECT_EQ(solver_smt_lra(read(goal), sdata), first) << goal;
    return first;
  };
  EXPECT_TRUE(proves({"x3 = y", "y = x5"}, "f(x3) = f(x5)"));
  EXPECT_TRUE(proves({"x = 3", "y = 3", "f(x) = 5"}, "f(y) = 5"));
  EXPECT_TRUE(proves({"x = 1", "y = 1", "f = 3", "g = 3", "f(x) = 5"}, "g(y) = 5"));
  EXPECT_TRUE(proves({"x = 3", "y = 3", "x ∈ A"}, "y ∈ A"));
  EXPECT_TRUE(proves({"x = 3", "y = 3", "x^2 = 9"}, "y^2 = 9"));
  EXPECT_TRUE(proves({"u > 1", "u < 0"}, "x = 5"));
  EXPECT_TRUE(proves({"1 > 2", "x > 0"}, "z = 1"));
  EXPECT_FALSE(proves({"u > 1", "u < 0"}, "forall (t), t > 0"));
  EXPECT_FALSE(proves({"u > 1", "u < 3"}, "x = 5"));
  EXPECT_FALSE(proves({"S = Complex", "z ∈ S"}, "z < 0 ∨ z ≥ 0"));
  const solve_data below = list_of(others);
  const term_list more = {read("q3 > 5"), read("r3 > 0")};
  EXPECT_TRUE(solver_smt_lra(read("x = 5"), with_assumptions(below, more)));
  EXPECT_FALSE(solver_smt_lra(read("x = 5"), below));
}

// Questions about one list remember solutions. Each has the answer that it has as the first one.
TEST_F(smt_lra_test, many_questions_about_one_list) {
  const std::initializer_list<std::string_view> lists[] = {
      {"x ≤ y", "f(x) ≠ f(y)"},
      {"x ≤ y", "y ≤ z", "x = 2 * z"},
      {"x > 0 ∨ y > 1", "z = x + y", "x ≤ 1"},
      {"w ∈ Complex", "w = z", "w > 3", "x < y < 2"},
      {"x - y ∈ A", "x < 3", "y > 3", "z = 3"},
      {"x ≥ 0", "f(x) < y", "f(0) > y", "z ∈ Complex", "z > 0"},
  };
  std::vector<std::string> goals;
  for (const char* left : {"x", "y", "z", "x - y", "y - 2 * z", "-x", "f(x)", "v"}) {
    for (const char* relation : {" > ", " ≤ ", " < ", " ≥ "}) {
      for (const char* right : {"0", "y", "3", "z + 1"}) {
        goals.push_back(std::string(left) + relation + right);
      }
    }
  }
  for (const auto& list : lists) {
    const solve_data forwards = given(list);
    const solve_data backwards = given(list);
    for (std::size_t i = 0; i < goals.size(); ++i) {
      const std::string& last = goals[goals.size() - 1 - i];
      EXPECT_EQ(solver_smt_lra(read(goals[i]), forwards), solver_smt_lra(read(goals[i]), given(list))) << goals[i];
      EXPECT_EQ(solver_smt_lra(read(last), backwards), solver_smt_lra(read(last), given(list))) << last;
    }
  }
}

}  // namespace
}  // namespace vetro
