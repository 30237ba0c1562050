// What binds and guards names, seen from the instructions: what follows and what does not, by instantiating, by
// rewriting, and by all solvers.
#include "support/handler_fixture.h"
#include "term/compare.h"

namespace vetro::test {
namespace {

// ---- Instances of universal statements.

struct instance {
  std::string source;
  std::string pairs;
  std::string target;
  bool follows;
};

TEST(binding, instances) {
  const instance table[] = {
      // A value is not caught by what names an index, whatever the form.
      {"forall (x), sum_{i = 1 ∨ i = 2}(x) = 2 * x", "(x := {i})", "sum_{i = 1 ∨ i = 2}(i) = 2 * i", false},
      {"forall (x), sum_{i = 1 ∨ i = 2}(x) = 2 * x", "(x := {i})", "sum_{j = 1 ∨ j = 2}(i) = 2 * i", true},
      {"forall (x), sum_{i < n}(x) = n * x", "(x := {i})", "sum_{i < n}(i) = n * i", false},
      {"forall (x), sum_{i < n}(x) = n * x", "(x := {n})", "sum_{i < n}(n) = n * n", false},
      {"forall (x), sum_{i < n}(x) = n * x", "(x := {y + 1})", "sum_{i < n}(y + 1) = n * (y + 1)", true},
      {"forall (x), sum_{i ≤ n}(x) = n * x", "(x := {i})", "sum_{i ≤ n}(i) = n * i", false},
      {"forall (x), sum_{i ≠ k}(x) = x", "(x := {i})", "sum_{i ≠ k}(i) = i", false},
      {"forall (x), sum_{Coprime(i, n)}(x) = x", "(x := {i})", "sum_{Coprime(i, n)}(i) = i", false},
      {"forall (x), sum_{1 ≤ i < j ≤ n}(x) = x", "(x := {j})", "sum_{1 ≤ i < j ≤ n}(j) = j", false},
      {"forall (x), sum_{1 ≤ i < j ≤ n}(x) = x", "(x := {i})", "sum_{1 ≤ i < j ≤ n}(i) = i", false},
      {"g((fun x . sum_{i < n}(x))(i)) = 0", "", "g(sum_{i < n}(i)) = 0", false},
      {"g((fun x . sum_{i = 1}^{x}(x))(i)) = 0", "", "g(sum_{i = 1}^{i}(i)) = 0", false},
      {"g((fun x . sum_{i = 1}^{x}(x))(i)) = 0", "", "g(sum_{k = 1}^{i}(i)) = 0", true},
      {"g((fun x . (x^2)')(3)) = 0", "", "g((3^2)') = 0", false},
      {"g((fun f . (f(x))')(fun t . t^2)) = 0", "", "g((x^2)') = 0", true},
      // Starts, sets and bounds stand outside.
      {"forall (m), sum_{i = a_m}^{9}(i) = s(m)", "(m := {3})", "sum_{i = a_3}^{9}(i) = s(3)", true},
      {"forall (m), sum_{i = a_m}^{9}(i) = s(m)", "(m := {3})", "sum_{i = b}^{9}(i) = s(3)", false},
      {"forall (x), int_{0}^{x}(x * diff(x)) = x^2 / 2", "(x := {3})", "int_{0}^{3}(x * diff(x)) = 3^2 / 2", true},
      {"forall (x), int_{0}^{x}(x * diff(x)) = x^2 / 2", "(x := {3})", "int_{0}^{x}(x * diff(x)) = 3^2 / 2", false},
      {"forall (n), sum_{i < n}(f(i)) = s(n)", "(n := {5})", "sum_{j < 5}(f(j)) = s(5)", true},
      {"forall (n), sum_{i < n}(f(i)) = s(n)", "(n := {m})", "sum_{i < m}(f(i)) = s(m)", true},
      // What a set ranges over was decided under the quantifier, and a quoting text is read in that sense.
      {"forall (c), { c * x | x > 0, x < c } ⊆ T", "(c := {d})", "{ d * x | x > 0, x < d } ⊆ T", true},
      {"forall (c), { c * x | x > 0, x < c } ⊆ T", "(c := {x})", "{ x * x | x > 0, x < x } ⊆ T", false},
      {"forall (c), { c * x | x > 0, x < c } ⊆ T", "(c := {x})", "{ x * t | t > 0, t < x } ⊆ T", true},
      // Notations that speak of a name without binding it.
      {"forall (c), (c * x)' = c", "(c := {x})", "(x * x)' = x", false},
      {"forall (c), (c * x)' = c", "(c := {3})", "(3 * x)' = 3", true},
      {"forall (c), (c * x)' = c", "(c := {d + 1})", "((d + 1) * x)' = d + 1", true},
      {"forall (x), (x^2)' = 2 * x", "(x := {3})", "(3^2)' = 2 * 3", false},
      {"forall (x), (x^2)' = 2 * x", "(x := {t})", "(t^2)' = 2 * t", true},
      {"forall (f)(g)(x), (f(x) * g(x))' = f'(x) * g(x) + f(x) * g'(x)", "(f := {sin}) (g := {cos})",
       "forall (x), (sin(x) * cos(x))' = sin'(x) * cos(x) + sin(x) * cos'(x)", true},
      {"forall (c), NthDeri(c * x, 2) = 0", "(c := {x})", "NthDeri(x * x, 2) = 0", false},
      {"forall (n), NthDeri(f, n) = f", "(n := {2})", "NthDeri(f, 2) = f", true},
      {"forall (c), (c * x) |_{0}^{1} = c", "(c := {x})", "(x * x) |_{0}^{1} = x", false},
      {"forall (c), diff(c * x) / diff(x) = c", "(c := {x})", "diff(x * x) / diff(x) = x", false},
      {"forall (c), grad(c * x) = c", "(c := {x})", "grad(x * x) = x", false},
      {"forall (c), c / n → 0", "(c := {n})", "n / n → 0", false},
      {"forall (c), c / n → 0", "(c := {5})", "5 / n → 0", true},
      {"forall (c), c * x = bigO_{x → 0}(x)", "(c := {1 / x})", "1 / x * x = bigO_{x → 0}(x)", false},
      {"forall (c), c * x ≤ bigO_{x → 0}(x)", "(c := {1 / x})", "1 / x * x ≤ bigO_{x → 0}(x)", false},
      // Entries.
      {"forall (x ∈ S)(y), f(x) = y", "(x ∈ S := {3})", "forall (y), f(3) = y", false},
      {"forall (a), forall (|x - a| < 1), f(x) = f(a)", "(a := {3})", "forall (|x - a| < 1), f(x) = f(3)", false},
      {"forall (a), forall (|x - a| < 1), f(x) = f(a)", "(a := {b})", "forall (|x - a| < 1), f(x) = f(b)", false},
      {"forall (y), forall (x ∈ S), f(x) = y", "(y := {x})", "forall (x ∈ S), f(x) = x", false},
      // How many there are is said of x, then of y; or of pairs.
      {"existsUnique (x), existsUnique (y), x * y = 1", "", "existsUnique (x)(y), x * y = 1", false},
      {"existsUnique (x)(y), x * y = 1", "", "existsUnique (x), existsUnique (y), x * y = 1", false},
      {"forall (x), forall (y), x = y", "(x := {1}) (y := {2})", "1 = 2", true},
      // A function with a domain says where it is defined.
      {"Dom((fun x [x > 0] . x)(y)) = A", "", "Dom(y) = A", false},
      {"A = { x | (fun t [t > 0] . 1)(x) = 1 }", "", "A = { x | 1 = 1 }", false},
      {"(fun x [x > 0] . x)(y) = A", "", "y = A", true},
  };
  for (const instance& row : table) {
    script_run run(gap_of({row.source}, "z = 1"));
    const outcome result =
        run.step("get_prop (hypothesis 1: {z = z}) " + row.pairs + " as (hypothesis 2: {" + row.target + "})");
    EXPECT_EQ(result.flag == exe_success, row.follows) << row.source << " " << row.pairs << "\n"
                                                       << row.target << "\n"
                                                       << result.error;
  }
}

TEST(binding, witnesses) {
  script_run caught(gap_of({}, "exists (x), sum_{i < n}(x) = n * x"));
  EXPECT_EQ(caught.step("exists (x := {i})").flag, exe_fail);
  EXPECT_EQ(caught.step("exists (x := {y})"), success);
  script_run bound(gap_of({}, "exists (x), sum_{i = 1}^{x}(x) = x"));
  EXPECT_EQ(bound.step("exists (x := {i})"), success);
  EXPECT_TRUE(term_eqb(bound.gap.goal, formula("sum_{k = 1}^{i}(i) = i")));
  EXPECT_EQ(bound.step("exists (f(x) := {1})").flag, exe_fail);
}

// ---- All solvers.

struct question {
  std::string assumption;
  std::string goal;
  bool proved;
};

TEST(binding, consequences) {
  const question table[] = {
      // Names that nothing says to be indices are no names to choose.
      {"", "sum_{i mod n = 1}(i) = sum_{i mod m = 1}(i)", false},
      {"", "union_{f(x) ∈ S}({ x }) = union_{g(x) ∈ S}({ x })", false},
      {"", "{ f(x) | f(x) > 0, x > 0 } = { g(x) | g(x) > 0, x > 0 }", false},
      {"", "sum_{i + c}(i) = sum_{i + d}(i)", false},
      {"", "sum_{Odd(i + c)}(i) = sum_{Odd(i + d)}(i)", false},
      {"", "sum_{(i, c) ∈ R}(i) = sum_{(i, d) ∈ R}(i)", false},
      {"", "sum_{0 < c * i < 9}(i) = sum_{0 < d * i < 9}(i)", false},
      {"", "lim_{|x - a| → 0}(x) = lim_{|x - b| → 0}(x)", false},
      {"", "{ n | a_n > 0 } = { k | a_k > 0 }", true},
      {"", "sum_{i < n}(f(i)) = sum_{i < n}(f(i))", true},
      {"", "sum_{i = k}^{n}(i) = sum_{j = k}^{n}(j)", true},
      {"", "int_{0}^{1}(x * int_{0}^{1}(x * diff(x)) * diff(y)) = int_{0}^{1}(z * int_{0}^{1}(z * diff(z)) * diff(y))",
       false},
      // Subscripts.
      {"n = 3", "{ n | a_n > 0 } = { 3 | a_n > 0 }", false},
      {"i = 3", "sum_{a_i = 1}^{n}(i) = sum_{a_i = 1}^{n}(3)", false},
      // What stands outside is free, whatever it is called.
      {"", "int_{0}^{x}(x * diff(x)) = int_{0}^{y}(y * diff(y))", false},
      {"", "sum_{i = 1}^{i}(i) = sum_{k = 1}^{k}(k)", false},
      {"", "lim_{x → x}(x) = lim_{y → y}(y)", false},
      {"", "ValDeri(x^2, x, x) = ValDeri(y^2, y, y)", false},
      {"", "f(x) = bigO_{x → x}(x) ⇒ f(y) = bigO_{y → y}(y)", false},
      {"i = 3", "sum_{i = 1}^{i}(i) = sum_{i = 1}^{3}(i)", true},
      {"x = 3", "int_{0}^{x}(x * diff(x)) = int_{0}^{3}(x * diff(x))", true},
      {"x = 3", "int_{0}^{1}(f(x) * diff(x^2)) = int_{0}^{1}(f(3) * diff(x^2))", false},
      {"", "int_{0}^{1}(f(x) * diff(x^2)) = int_{0}^{1}(f(y) * diff(y^2))", true},
      // What is spoken of.
      {"x = 3", "(x^2)' = (3^2)'", false},
      {"x = 3", "x' = 3'", false},
      {"x = 3", "NthDeri(x^2, 2) = NthDeri(3^2, 2)", false},
      {"n = 2", "NthDeri(f, n) = NthDeri(f, 2)", true},
      {"x = 3", "(x^2) |_{0}^{1} = (3^2) |_{0}^{1}", false},
      {"b = 1", "(x^2) |_{0}^{b} = (x^2) |_{0}^{1}", true},
      {"y = 3", "diff(y) / diff(x) = diff(3) / diff(x)", false},
      {"x = 3", "grad(x^2) = grad(3^2)", false},
      {"x = 3", "div(x^2) = div(3^2)", false},
      {"x = 3", "rot(x^2) = rot(3^2)", false},
      {"x = 3", "nabla(x^2) = nabla(3^2)", false},
      {"x = 3", "nabla · f(x) = nabla · f(3)", false},
      {"n = 3", "RadiusOfConvergence(a_n * x^n) = RadiusOfConvergence(a_3 * x^3)", false},
      {"n = 3", "1 / n → 0 ⇒ 1 / 3 → 0", false},
      {"f = g", "f' = g'", true},
      {"x^2 = x", "f'(x^2) = f'(x)", true},
      {"x = 3", "sin(x) = bigO_{x → 0}(x) ⇒ sin(3) = bigO_{x → 0}(x)", false},
      {"x = 3", "sin(x) ≤ bigO_{x → 0}(x) ⇒ sin(3) ≤ bigO_{x → 0}(x)", false},
      {"x = 3", "sin(x) ∈ bigO_{x → 0}(x) ⇒ sin(3) ∈ bigO_{x → 0}(x)", false},
      {"bigO_{x → 0}(x^2) = bigO_{x → 0}(x)", "bigO_{x → 0}(x) = bigO_{x → 0}(x^2)", false},
      // Statements with a side condition are used whole.
      {"a = b [@scope a > 0 @]", "a = b", false},
      {"a = b [@scope a > 0 @]", "b = a", false},
      {"a = b [@scope a > 0 @]", "a = b [@scope a > 0 @]", true},
      {"(p = 1 ∧ q = 1) [@scope a > 0 @]", "p = 1", false},
      {"(p = 1 ⇒ q = 1) [@scope a > 0 @]", "p = 1 ⇒ q = 1", false},
  };
  for (const question& row : table) {
    script_run run(row.assumption.empty() ? gap_of({}, row.goal) : gap_of({row.assumption}, row.goal));
    EXPECT_EQ(run.step("autosolve all_hypothesis").flag == exe_finish, row.proved)
        << row.assumption << "  |-  " << row.goal;
  }
}

// ---- Rewriting.

struct rewriting {
  std::string rule;
  std::string from;
  std::string to;
  bool follows;
};

TEST(binding, rewriting) {
  const rewriting table[] = {
      {"x = 3", "(x^2)' = y", "(3^2)' = y", false},
      {"x = 3", "(x^2)' = x", "(x^2)' = 3", true},
      {"f = g", "f' = y", "g' = y", true},
      {"y = x^2", "y' = z", "(x^2)' = z", false},
      {"n = 3", "1 / n → 0", "1 / 3 → 0", false},
      {"a = 3", "1 / n → a", "1 / n → 3", true},
      {"x = 3", "sum_{i = 1}^{x}(i) = y", "sum_{i = 1}^{3}(i) = y", true},
      {"i = 3", "sum_{i = 1}^{i}(i) = y", "sum_{i = 1}^{3}(i) = y", true},
      {"i = 3", "sum_{i = 1}^{n}(i) = y", "sum_{i = 1}^{n}(3) = y", false},
      {"k = 3", "sum_{i = k}^{n}(k * i) = y", "sum_{i = 3}^{n}(3 * i) = y", true},
      {"n = 3", "sum_{i < n}(i) = y", "sum_{i < 3}(i) = y", false},
      {"n = 3", "{ n | a_n > 0 } = A", "{ 3 | a_n > 0 } = A", false},
      {"x = 3", "sin(x) < bigO_{x → 0}(x)", "sin(3) < bigO_{x → 0}(x)", false},
      {"c = 3", "c * x = bigO_{x → 0}(x)", "3 * x = bigO_{x → 0}(x)", true},
      {"x * 0 = 0", "{ x | x < ln(x) - ln(x) } = A", "{ x | x < 0 } = A", false},
  };
  for (const rewriting& row : table) {
    script_run run(gap_of({row.rule}, row.from));
    EXPECT_EQ(run.step("rewrite (left_to_right, equation) (hypothesis 1: {" + row.rule + "}) from (GOAL: {" + row.from +
                       "}) to (GOAL: {" + row.to + "})")
                      .flag == exe_success,
              row.follows)
        << row.rule << ": " << row.from << " to " << row.to;
  }
}

}  // namespace
}  // namespace vetro::test
