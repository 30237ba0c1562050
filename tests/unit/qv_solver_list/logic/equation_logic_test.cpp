// Equal things in place of one another, and what only looks like it.
#include "qv_solver_list/solvers.h"
#include "support/solver_fixture.h"

namespace vetro {
namespace {

class equation_logic_test : public solver_test {};

TEST_F(equation_logic_test, equals_stand_for_each_other) {
  expect(solver_sat, true,
         {{{"a = b", "c = d"}, "f(a, c) = f(b, d)"},
          {{"a = b", "c = b", "c = d"}, "d = a"},
          {{"a = b = c ∧ x > 0", "Odd(a)"}, "Odd(c)"},
          {{"f(f(f(a))) = a", "f(f(f(f(f(a))))) = a"}, "f(a) = a"},
          {{"x = f(x)", "Odd(f(f(x)))"}, "Odd(x)"},
          {{"a = b", "b ≠ c", "c = d"}, "d ≠ a"},
          {{"a = b", "b ≠ a"}, "Odd(q)"},
          {{"a = b", "Odd(a) ⇒ c = d"}, "Odd(b) ⇒ d = c"},
          {{"x ∉ A", "x = y"}, "¬(y ∈ A)"},
          {{"(a, b) = (c, d)", "(a, b) ∈ R"}, "(c, d) ∈ R"},
          {{"f = g", "x ∈ Dom(f)"}, "x ∈ Dom(g)"},
          {{"a = b", "Defined(1 / a)"}, "Defined(1 / b)"},
          {{"f = g", "MonoIncFunc(f)"}, "MonoIncFunc(g)"},
          {{"sum_{i = 1}^{n}(i) = s", "Odd(sum_{j = 1}^{n}(j))"}, "Odd(s)"},
          {{"x = y"}, "a * x ≤ y * a"},
          {{"x = 1 + 2 + ... + n"}, "2 * x = (1 + 2 + ... + n) + (1 + 2 + ... + n)"}});
}

TEST_F(equation_logic_test, others_do_not) {
  expect(solver_sat, false,
         {{{"a = b", "c = d"}, "f(a, c) = f(d, b)"},
          {{"f(a) = f(b)"}, "a = b"},
          {{"f(f(a)) = a"}, "f(a) = a"},
          {{"a ≠ b", "b ≠ c"}, "a ≠ c"},
          {{"a = b ∨ c = d", "Odd(a)"}, "Odd(b)"},
          {{"a = b [@scope c > 0 @]", "Odd(a)"}, "Odd(b)"},
          {{"a = b"}, "forall (a), a = b"},
          {{"x = y"}, "{ x | x > 0 } = { y | x > 0 }"},
          {{"k = m", "Odd(sum_{k = 1}^{n}(k))"}, "Odd(sum_{k = 1}^{n}(m))"},
          {{"a_n = b_n", "ConvergentSeq(a_n)"}, "ConvergentSeq(b_n)"},
          {{"x = 3"}, "Dom(x^2) = Dom(3^2)"},
          {{"x = 3"}, "(x^2)' = (3^2)'"},
          {{"x = ±1", "y = ±1"}, "f(x) = f(y)"},
          {{"x = bigO_{t → 0}(t)", "y = bigO_{t → 0}(t)"}, "x = y"},
          {{"1 + 2 + ... + n = s", "1 + 2 + ... + m = s"}, "n = m"}});
}

}  // namespace
}  // namespace vetro
