// The shipped library: each theorem is of a form that scripts can use, and none is contradicted in a small world.
#include <gtest/gtest.h>

#include <optional>
#include <string>

#include "lib/thm_lib.h"
#include "small_model.h"
#include "support/formulas.h"
#include "term/variables/free_variable.h"

namespace vetro::test {
namespace {

thm_lib shipped_library() {
  formula("x = x");  // makes the reader ready
  testing::internal::CaptureStderr();
  std::optional<thm_lib> library = thm_lib_load(VETRO_LIBRARY);
  EXPECT_EQ(testing::internal::GetCapturedStderr(), "");
  return library.value_or(thm_lib{});
}

TEST(shipped_library, theorems_are_closed_and_have_names_of_their_own) {
  const thm_lib library = shipped_library();
  EXPECT_EQ(library.table.size(), 238U);
  for (const auto& [id, entry] : library.table) {
    SCOPED_TRACE(id);
    for (term_ptr free : term_free_variable(entry.content())) {
      EXPECT_EQ(free->head(), Index) << "a member of a sequence, such as a_n, is all that a theorem may leave open";
    }
    EXPECT_EQ(theorems_by_name(library).count(entry.name), 1U) << entry.name;
  }
}

// A theorem counts as tried when its premises and its conclusion hold together somewhere. Whoever adds one that can be
// tried raises the number; those left over speak of all numbers below some number, or of sets of functions.
TEST(shipped_library, no_theorem_is_contradicted) {
  int tried = 0;
  for (const auto& [id, entry] : shipped_library().table) {
    const trial result = try_formula(entry.content());
    EXPECT_EQ(result.contradicted, 0) << id << " (" << entry.name << ")";
    tried += result.held > 0 ? 1 : 0;
  }
  EXPECT_EQ(tried, 223);
}

TEST(small_model, contradicts_what_is_false) {
  const char* const false_formulas[] = {
      "forall (x)(y), |x + y| = |x| + |y|",
      "forall (x)(y)(z), x ∈ Real ∧ y ∈ Real ∧ z ∈ Real ⇒ (x ≤ y ⇒ x * z ≤ y * z)",
      "forall (x)(y), x ∈ Real ∧ y ∈ Real ⇒ (x ≤ y ⇒ 1 / y ≤ 1 / x)",
      "forall (n), n ∈ Nat ⇒ sum_{i = 1}^{n}(i) = n * (n - 1) / 2",
      "forall (f)(m)(n), m ∈ Integer ∧ n ∈ Integer ∧ m ≤ n + 1 ⇒ sum_{i = m}^{n}(f(i + 1) - f(i)) = f(n) - f(m)",
      "forall (q)(n), n ∈ Nat ⇒ sum_{i = 0}^{n}(q^{i}) = (1 - q^{n}) / (1 - q)",
      "forall (S), (forall (n), n ∈ Nat ⇒ (n ∈ S ⇒ n + 1 ∈ S)) ⇒ (forall (n), n ∈ Nat ⇒ n ∈ S)",
      "forall (f)(g), (forall (n), n ∈ Nat ⇒ (f(n) = g(n) ⇒ f(n + 1) = g(n + 1))) ⇒ f(2) = g(2)",
      "forall (A)(B)(C), C \\ (A ∩ B) = (C \\ A) ∩ (C \\ B)",
      "forall (A)(B), A ∪ B ⊆ A ⇔ A ⊆ B",
      "forall (f)(A)(B), { f(x) | x ∈ A } ∩ { f(x) | x ∈ B } ⊆ { f(x) | x ∈ A ∩ B }",
      "forall (A)(I)(x), x ∈ inter_{i ∈ I}(A(i)) ⇔ (exists (i), i ∈ I ∧ x ∈ A(i))",
      "forall (n), n ∈ Integer ⇒ Even(n) ∧ Odd(n)",
      "forall (f)(g)(a)(u)(v), lim_{x → a}(f(x)) = u ⇒ (lim_{x → a}(g(x)) = v ⇒ lim_{x → a}(f(x) * g(x)) = u + v)",
      "lim_{x → 0}(sin(2 * x) / x) = 1",
      "forall (u)(l), seqlim_{n → ∞}(u(n)) = l ⇒ u(1) = l",
      "forall (f)(g)(a), DiffableFuncAt(f, a) ⇒ FunDeri(fun x . f(x) * g(x), 1, 1, a) = FunDeri(f, 1, 1, a) * "
      "FunDeri(g, 1, 1, a)",
      "forall (f)(F)(a)(b), (forall (x), x ∈ [a, b] ⇒ FunDeri(F, 1, 1, x) = f(x)) ⇒ int_{a}^{b}(f(x) * diff(x)) = F(a) "
      "- F(b)",
  };
  for (const char* text : false_formulas) {
    EXPECT_GT(try_formula(formula(text)).contradicted, 0) << text;
  }
}

}  // namespace
}  // namespace vetro::test
