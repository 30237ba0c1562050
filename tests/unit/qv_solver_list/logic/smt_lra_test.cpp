// What the translation of terms keeps apart: kinds of values, names, scopes of meaning; and what it may leave out.
#include <gtest/gtest.h>

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
         });
  expect(solver_smt_lra, true,
         {
             {{"z ∈ Complex"}, "z + z = 2 * z"},
             {{"∞ = y"}, "f(∞) = f(y)"},
             {{"A = B", "x ∈ A"}, "x ∈ B"},
             {{}, "||x| - |y|| ≤ |x - y|"},
             {{}, "|x|^4 = x^4"},
             {{"x ∈ S", "z ∈ Complex"}, "x < 0 ∨ x ≥ 0"},
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

}  // namespace
}  // namespace vetro
