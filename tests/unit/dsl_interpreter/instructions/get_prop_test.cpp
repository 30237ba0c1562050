// get_prop: where the fact comes from, how it is instantiated, and what the script has to write behind `as`.
#include "support/handler_fixture.h"
#include "term/state.h"

namespace vetro::test {
namespace {

constexpr const char* library =
    "Thm 1. (square of a sum)\nforall (a)(b), (a + b)^2 = a^2 + 2 * a * b + b^2\n"
    "Thm 3. (order)\nforall (x)(y), x < y ⇒ ¬(y < x)\n"
    "Thm 5. (twice)\nforall (x), x = x\n"
    "Thm 6. (twice)\nforall (x), x + 0 = x\n"
    "Thm 7. (values)\nforall (f)(x), f(x) = f(x + 0)\n";

class get_prop_test : public testing::Test {
 protected:
  explicit get_prop_test(dsl_execute_mode mode = fast_mode)
      : s(gap_of({"x > 0", "forall (u), forall (v), u < v"}, "z = 1"), mode, library) {}

  // The third hypothesis from a source, the pairs and the formula behind as.
  outcome third(const std::string& source, const std::string& pairs, const std::string& target) {
    return s.step("get_prop " + source + " " + pairs + " as (hypothesis 3: {" + target + "})");
  }

  script_run s;
};

class get_prop_strong_test : public get_prop_test {
 protected:
  get_prop_strong_test() : get_prop_test(strong_check_mode) {}
};

TEST_F(get_prop_test, values_go_in_at_the_same_time) {
  EXPECT_EQ(third("(theorem 3: {x +})", "(x := {y}) (y := {x})", "y < x ⇒ ¬(x < y)"), success);
  EXPECT_EQ(s.hypothesis(3), "y < x ⇒ ¬x < y");
  EXPECT_EQ(s.gap.assu_num(), 3);
}

TEST_F(get_prop_test, quantifier_keeps_the_other_variables) {
  EXPECT_EQ(third("(theorem 3: {x = x})", "(x := {y + 1})", "forall (t), y + 1 < t ⇒ ¬(t < y + 1)"), success);
  EXPECT_EQ(s.hypothesis(3), "forall (t), y + 1 < t ⇒ ¬t < y + 1") << "in the script's wording";
  EXPECT_EQ(s.step("get_prop (hypothesis 2: {x = x}) (v := {2}) as (hypothesis 4: {forall (u), u < 2})"), success)
      << "directly nested quantifiers are one";
}

TEST_F(get_prop_test, captures_nothing) {
  EXPECT_EQ(third("(theorem 3: {x = x})", "(x := {y})", "forall (y), y < y ⇒ ¬(y < y)").flag, exe_fail);
  EXPECT_EQ(third("(theorem 3: {x = x})", "(x := {y})", "forall (w), y < w ⇒ ¬(w < y)"), success);
}

TEST_F(get_prop_test, without_pairs_the_source_may_be_anything) {
  EXPECT_EQ(third("(hypothesis 1: {x +})", "", "x > 0"), success);
  EXPECT_EQ(s.step("get_prop (hypothesis 2: {x +}) as (hypothesis 4: {forall (p)(q), p < q})"), success);
  EXPECT_EQ(s.step("get_prop (hypothesis 1: {x +}) (x := {1}) as (hypothesis 5: {1 > 0})"),
            failed("invalid term for get_prop instantiation\nx > 0\n"));
}

TEST_F(get_prop_test, function_values_are_beta_reduced) {
  EXPECT_EQ(third("(theorem 7: {x = x})", "(f := {fun t . t^2}) (x := {3})", "3^2 = (fun s . s^2)(3 + 0)"), success);
  EXPECT_EQ(s.hypothesis(3), "3^{2} = (3 + 0)^{2}");
}

TEST_F(get_prop_test, source_that_is_not_there) {
  const auto of_source = [this](const std::string& source) { return third(source, "", "x > 0"); };
  EXPECT_EQ(of_source("(hypothesis 0: {x > 0})"),
            failed("Invalid hypothesis number: 0, current proof gap has 2 hypotheses\n"));
  EXPECT_EQ(of_source("(hypothesis 9999999999999999999: {x > 0})"),
            failed("Invalid hypothesis number: 9223372036854775807, current proof gap has 2 hypotheses\n"));
  EXPECT_EQ(of_source("(theorem 2: {x > 0})"), failed("Invalid theorem number: 2, theorem library has 7 theorems\n"));
  EXPECT_EQ(of_source("(theorem @alg:1: {x > 0})"), failed("Invalid external theorem reference @alg:1\n"));
  EXPECT_EQ(of_source("(GOAL: {x > 0})"), failed("failed to normalize theorem before instantiation\n"));
  EXPECT_EQ(s.gap.assu_num(), 2);
}

TEST_F(get_prop_test, name_decides_where_the_number_does_not_fit) {
  const auto of_source = [this](const std::string& source) {
    return third(source, "(x := {1}) (y := {2})", "1 < 2 ⇒ ¬(2 < 1)");
  };
  const std::string order = "{forall (u)(v), u < v ⇒ ¬(v < u)})";
  EXPECT_EQ(of_source("(theorem 'Thm 9. (order)': {x = x})"),
            failed("get_prop theorem name fallback formula mismatch for Thm 9. (order)\nselected theorem:\n"
                   "forall (x) (y), x < y ⇒ ¬y < x\nquoted formula:\nx = x\n"));
  EXPECT_EQ(of_source("(theorem 'Thm 3. (disorder)': " + order),
            failed("Invalid theorem reference Thm 3. (disorder): theorem number resolves to Thm 3. (order), but the "
                   "quoted name does not match, and no theorem named 'disorder' was found\n"));
  EXPECT_EQ(
      of_source("(theorem 'Thm 2. (twice)': " + order),
      failed("Invalid theorem reference Thm 2. (twice): theorem number was not found, and theorem name 'twice' is "
             "ambiguous (2 matches)\n"));
  EXPECT_EQ(of_source("(theorem '@alg:3. (order)': " + order),
            failed("Invalid theorem reference @alg:3. (order): theorem number was not found, and no theorem named "
                   "'order' was found\n"));
  EXPECT_EQ(of_source("(theorem 'Thm 1. (order)': {x +})"), success) << "no formula, nothing to compare";
  EXPECT_EQ(s.step("get_prop (theorem 'Thm 1. (order)': " + order +
                   " (x := {1}) as (hypothesis 4: {forall (y), 1 < y ⇒ ¬(y < 1)})"),
            success);
  EXPECT_EQ(s.step("get_prop (theorem 'Thm 5. (twice)': {x > 0}) (x := {1}) as (hypothesis 5: {1 = 1})"), success)
      << "where the number fits, the formula is for the reader";
}

TEST_F(get_prop_strong_test, checks_each_pair) {
  const auto with = [this](const std::string& pairs) { return third("(theorem 3: {x +})", pairs, "x = x"); };
  EXPECT_EQ(with("(z := {1})"), failed("quant var don't have 'z'\n", redundant_fail));
  EXPECT_EQ(with("(x := {1}) (x := {2})"), failed("duplicate substitution for quant var 'x'\n", redundant_fail));
  EXPECT_EQ(with("(a_1 := {1})"), failed("quant var don't have 'a_{1}'\n", redundant_fail));
  EXPECT_EQ(third("(hypothesis 2: {x +})", "(u := {1}) (w := {2})", "1 < 2"),
            failed("quant var don't have 'w'\n", redundant_fail));
}

TEST_F(get_prop_strong_test, target_is_compared_in_every_mode) {
  const std::string line = "get_prop (hypothesis 1: {x > 0}) as ";
  EXPECT_EQ(s.step(line + "(GOAL: {x > 0})"),
            failed("get_prop requires an explicit target hypothesis in 'as (...)'\n", redundant_fail));
  EXPECT_EQ(s.step(line + "(hypothesis 2: {x > 0})"),
            failed("invalid get_prop target hypothesis number: 2, expected 3\n", redundant_fail));
  EXPECT_EQ(s.step(line + "(hypothesis 4: {x +})"),
            failed("invalid get_prop target hypothesis number: 4, expected 3\n", redundant_fail));
  EXPECT_EQ(s.step(line + "(hypothesis 3: {x +})"),
            failed("failed to prepare get_prop target formula in 'as (...)'\n", redundant_fail));
  EXPECT_EQ(
      s.step(line + "(hypothesis 3: {y > 0})"),
      failed("get_prop target formula mismatch in 'as (...)'. expected alpha-equivalent formula.\nactual:\nx > 0\n"
             "actual_internal:\nGt(x, 0)\nexpected:\ny > 0\nexpected_internal:\nGt(y, 0)\n",
             redundant_fail));
  EXPECT_EQ(s.gap.assu_num(), 2);
  EXPECT_EQ(s.step(line + "(hypothesis 3: {x > 0})"), strong_success);
  EXPECT_EQ(
      s.step(
          "get_prop (theorem 7: {x = x}) (f := {fun t . t}) as (hypothesis 4: {forall (x), (fun u . u)(x) = x + 0})"),
      (outcome{exe_success, "error get_prop instance result prop, new hypothesis should be :forall (x), x = x + 0\n",
               redundant_fail}))
      << "what is stored is not what was written";
}

TEST_F(get_prop_test, placeholders_only_rise) {
  const std::int64_t before = state().placeholder_counter;
  EXPECT_EQ(third("(theorem 3: {x = x})", "(x := {qvar" + std::to_string(before) + "}) (y := {1})",
                  "qvar" + std::to_string(before) + " < 1 ⇒ ¬(1 < qvar" + std::to_string(before) + ")"),
            success)
      << "a name of the user is passed over";
  EXPECT_EQ(state().placeholder_counter, before + 3);
}

TEST(get_prop_sums, starts_keep_their_meaning) {
  script_run s(
      gap_of({"forall (x), sum_{i = x}^{x}(i) = x", "forall (S)(f), sum_{i ∈ S}(f(i) + 1) = g(sum_{i ∈ S}(f(i)))",
              "forall (x), exists (y), forall (k), x = y + k - k", "forall (y), { x + y | x > y } = A"},
             "z = 1"));
  const auto fifth = [&s](const std::string& source, const std::string& target) {
    const outcome result = s.step("get_prop " + source + " as (hypothesis 5: {" + target + "})");
    s.gap.assum = s.gap.assum.beginning(4);
    return result;
  };
  EXPECT_EQ(fifth("(hypothesis 1: {x = x}) (x := {c + 1})", "sum_{i = c + 1}^{c + 1}(i) = c + 1"), success);
  EXPECT_EQ(fifth("(hypothesis 1: {x = x}) (x := {c})", "sum_{i = d}^{c}(i) = c").flag, exe_fail);
  EXPECT_EQ(fifth("(hypothesis 2: {x = x}) (S := {T}) (f := {h})", "sum_{j ∈ T}(h(j) + 1) = g(sum_{i ∈ T}(h(i)))"),
            success);
  const std::string sum_value = "(hypothesis 3: {x = x}) (x := {sum_{i = k}^{n}(i)})";
  EXPECT_EQ(fifth(sum_value, "exists (y), forall (k), sum_{i = k}^{n}(i) = y + k - k").flag, exe_fail)
      << "the k of the value is not that of the quantifier";
  EXPECT_EQ(fifth(sum_value, "exists (y), forall (m), sum_{i = k}^{n}(i) = y + m - m"), success);
  EXPECT_EQ(fifth("(hypothesis 4: {x = x}) (y := {c})", "{ x + c | x > c } = A"), success);
  EXPECT_EQ(fifth("(hypothesis 4: {x = x}) (y := {c})", "{ x + d | x > d } = A").flag, exe_fail);
}

// Both functions list the start of their sum among the bound names; beta reduction replaces it all the same.
TEST(get_prop_sums, beta_reduction_replaces_starts) {
  script_run s(gap_of({"(fun c, i . sum_{i = c}^{n}(i))(3)(1) = a"}, "z = 1"));
  EXPECT_EQ(s.step("get_prop (hypothesis 1: {x = x}) as (hypothesis 2: {sum_{i = c}^{n}(i) = a})").flag, exe_fail);
  EXPECT_EQ(s.step("get_prop (hypothesis 1: {x = x}) as (hypothesis 2: {sum_{i = 3}^{n}(i) = a})"), success);
}

TEST(get_prop_values, stand_for_one_finite_number) {
  script_run s(
      gap_of({"forall (y), y - y = 0", "forall (a), lim_{x → a}(1) = 1", "forall (S)(U), 1 ∈ S ⇒ S ⊆ f(U) ∪ U"},
             "exists (y), y > c"));
  const auto get = [&s](const std::string& number, const std::string& pair, const std::string& as) {
    return s.step("get_prop (hypothesis " + number + ": {1 = 1}) " + pair + " as (hypothesis 4: {" + as + "})");
  };
  const outcome refused_y = failed("instantiation failed: 'y' stands for one finite value\n");
  EXPECT_EQ(get("1", "(y := {±1})", "±1 - ±1 = 0"), refused_y);
  EXPECT_EQ(get("1", "(y := {bigO_{x → 0}(x)})", "bigO_{x → 0}(x) - bigO_{x → 0}(x) = 0"), refused_y);
  EXPECT_EQ(get("1", "(y := {∞})", "∞ - ∞ = 0"), refused_y);
  EXPECT_EQ(s.step("exists (y := {∞})"), refused_y);
  EXPECT_EQ(get("3", "(S := {(x, 2)})", "forall (U), 1 ∈ (x, 2) ⇒ (x, 2) ⊆ f(U) ∪ U"), success)
      << "where only sets stand, a pair is an interval, as it would be in the text";
  s.gap.assum = s.gap.assum.beginning(3);
  EXPECT_EQ(get("3", "(U := {(x, 2)})", "forall (S), 1 ∈ S ⇒ S ⊆ f((x, 2)) ∪ (x, 2)"),
            failed("instantiation failed: a pair would stand in the place of a set, where it reads as an interval\n"));
  EXPECT_EQ(get("2", "(a := {∞})", "lim_{x → ∞}(1) = 1"), success) << "an infinite point is no infinite value";
}

}  // namespace
}  // namespace vetro::test
