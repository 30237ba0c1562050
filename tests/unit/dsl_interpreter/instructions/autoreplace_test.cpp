// autoreplace and not_normalize: what counts as the replacement, where nothing is replaced, what shows that two
// subterms are equal, and where the result goes.
#include "support/handler_fixture.h"

namespace vetro::test {
namespace {

struct replacing {
  std::string from;
  std::string to;
  std::string old_form;
  std::string new_form;
  std::string error;  // empty: the step succeeds; else a part of the message
};

constexpr const char* no_replacement = "The transformation does not reflect the replacement:\n";
constexpr const char* no_result = "Auto-replace failed: cannot analyze the replacement result in its target context.\n";
constexpr const char* no_solver =
    "Auto-replace currently only supports polynomial simplification and root-power conversion.\n";

outcome replace_in_goal(script_run& run, const replacing& r) {
  run.gap.goal = formula(r.old_form);
  return run.step("autoreplace no_hypothesis; from (" + r.from + ") to (" + r.to +
                  ") from (GOAL: {c = c}) to (GOAL: {" + r.new_form + "})");
}

TEST(auto_replace, places_and_reasons) {
  const std::string not_equal = "Auto-replace failed: cannot simplify ";
  const replacing table[] = {
      {"(x + 1)^2", "x^2 + 2 * x + 1", "(x + 1)^2 > 0", "x^2 + 2 * x + 1 > 0", ""},
      {"(x + 1)^2", "x^2 + 2 * x + 1", "f((x + 1)^2) > (x + 1)^2", "f((x + 1)^2) > x^2 + 2 * x + 1", ""},
      {"(x + 1)^2", "x^2 + 2 * x + 1", "(x + 1)^2 > 0", "x^2 + 2 * x > 0", no_replacement},
      {"(x + 1)^2", "x^2 + 1", "(x + 1)^2 > 0", "x^2 + 1 > 0", not_equal + "(x + 1)^{2} to x^{2} + 1.\n"},
      {"x + x", "2 * x", "forall (x), lim_{x → 0}(x + x) = x + x", "forall (y), lim_{x → 0}(2 * x) = 2 * y", ""},
      {"¬(x > 0)", "x ≤ 0", "q = 1 ⇒ ¬(x > 0)", "q = 1 ⇒ x ≤ 0", ""},
      {"x > 0", "¬(¬(x > 0))", "q = 1 ⇒ x > 0", "q = 1 ⇒ ¬(¬(x > 0))", ""},
      {"x / x", "1", "x / x > 0", "1 > 0", ""},
      {"sqrtn(2, x)", "x^(1 / 2)", "sqrtn(2, x) = 1", "x^(1 / 2) = 1", ""},
      {"deri(x^2)", "2 * x", "deri(x^2) > 0", "2 * x > 0", no_solver},
      {"2 * x", "deri(x^2)", "2 * x > 0", "deri(x^2) > 0", no_solver},
      {"deri(x)'", "1", "deri(x)' > 0", "1 > 0", not_equal + "deri(x)' to 1.\n"},
      {"_ + 0", "_", "x > 0", "x > 0", not_equal + "_ + 0 to _.\n"},
      // Domains keep what the expression says of them; what has a value everywhere may change there.
      {"x / x", "1", "{ x | x / x > 0 } = A", "{ x | 1 > 0 } = A", no_replacement},
      {"x / x", "1", "Dom(x / x) = Dom(1)", "Dom(1) = Dom(1)", no_replacement},
      {"x / x", "1", "(fun x [x / x > 0] . x) = f", "(fun x [1 > 0] . x) = f", no_replacement},
      {"x + x", "2 * x", "{ x + x | x + x > 0 } = A", "{ 2 * x | 2 * x > 0 } = A", ""},
      {"¬(x > 0)", "x ≤ 0", "{ x | ¬(x > 0) } = A", "{ x | x ≤ 0 } = A", ""},
      // Places that are no parts of what is around them, or say what is bound there.
      {"1 + 2", "3", "1 + 2 + ... + n = c", "3 + ... + n = c", no_replacement},
      {"1 + 1", "2", "sum_{i = 1 + 1}^{1 + 1}(i) = c", "sum_{i = 1 + 1}^{2}(i) = c", ""},
      {"1 + 1", "2", "sum_{i = 1 + 1}^{n}(i) = c", "sum_{i = 2}^{n}(i) = c", no_replacement},
      {"x", "x + 0", "forall (x), x > 0", "forall (x), x + 0 > 0", no_replacement},
      {"1 - 1", "0 * y", "{ x + y | x > 1 - 1 } = A", "{ x + y | x > 0 * y } = A", no_replacement},
      {"0 * y", "1 - 1", "{ x + y | x > 0 * y } = A", "{ x + y | x > 1 - 1 } = A", no_replacement},
      {"p", "(0, 1)", "x ∈ p", "x ∈ (0, 1)", no_result},
  };
  script_run run(gap_of({"c = 1"}, "c = 1"));
  for (const replacing& r : table) {
    const outcome result = replace_in_goal(run, r);
    const std::string what = r.from + " by " + r.to + " in " + r.old_form;
    EXPECT_EQ(result.flag == exe_success, r.error.empty()) << what << ": " << result.error;
    EXPECT_EQ(result.error.substr(0, r.error.size()), r.error) << what;
    EXPECT_EQ(run.gap.goal, formula(r.error.empty() ? r.new_form : r.old_form)) << what;
  }
  EXPECT_EQ(
      replace_in_goal(run, {"x + x", "2 * x", "x + x > 0", "x > 0", ""}),
      failed(std::string(no_replacement) + "After replacing x + x with 2 * x,\nthe from_prop becomes:\n2 * x > 0\n"
                                           "which does not match the to_prop:\nx > 0"));
}

TEST(auto_replace, source_and_target) {
  script_run run(gap_of({"x + x > 0", "c = 1"}, "x + x > 1"));
  const auto step = [&run](const std::string& from, const std::string& to) {
    return run.step("autoreplace (hypothesis 2: {c = 1}) from (x + x) to (2 * x) from " + from + " to " + to);
  };
  EXPECT_EQ(step("(GOAL: {x + x > 1})", "(hypothesis 3: {2 * x > 1})"),
            failed("The from_prop and to_prop must be of the same type (both GOAL or both HYPOTHESIS).\n"));
  EXPECT_EQ(step("(obvious: {x + x > 1})", "(obvious: {2 * x > 1})"),
            failed("Auto-replace failed: cannot prepare bound variables for replacement.\n"));
  EXPECT_EQ(step("(GOAL: {x + x > 1})", "(GOAL: {2 * x >})"),
            failed("Auto-replace failed: cannot prepare bound variables for replacement.\n"));
  EXPECT_EQ(step("(hypothesis 3: {x + x > 0})", "(hypothesis 4: {2 * x > 0})"),
            failed("Invalid from_prop hypothesis number: 3\n"));
  EXPECT_EQ(step("(hypothesis 1: {x + x > 0})", "(hypothesis 2: {2 * x > 0})"),
            failed("Invalid to_prop hypothesis number: 2\n"));
  EXPECT_EQ(step("(hypothesis 1: {not compared = 1})", "(hypothesis 9: {2 * x > 0})"), success);
  EXPECT_EQ(run.gap.assu_num(), 3);
  EXPECT_EQ(run.hypothesis(3), "2 * x > 0");
}

TEST(not_normalize, same_negation_form) {
  script_run run(gap_of({}, "¬(forall (x), x > 0)"));
  const auto step = [&run](const std::string& from, const std::string& to) {
    return run.step("not_normalize from (GOAL: {" + from + "}) to (GOAL: {" + to + "})");
  };
  EXPECT_EQ(step("¬(forall (x), x > 0)", "¬(forall (y), y > 0)"),
            failed("not_normalize failed: target GOAL is unchanged.\n"));
  EXPECT_EQ(step("q = 1", "¬(q ≠ 1)"), failed("not_normalize failed: from GOAL does not match the current proof goal.\n"
                                              "current goal:\n¬(forall (x), x > 0)\nfrom goal:\nq = 1\n"));
  EXPECT_EQ(step("¬(forall (x), x > 0)", "exists (x), x < 0"),
            failed("not_normalize failed: normalized forms are not alpha-equivalent.\nnormalized from:\n"
                   "exists (x), x ≤ 0\nnormalized to:\nexists (x), x < 0\n"));
  EXPECT_EQ(step("q +", "q = 1"), failed("not_normalize failed: missing goal term.\n"));
  EXPECT_EQ(step("¬(forall (z), z > 0)", "exists (y), y ≤ 0"), success);
  EXPECT_EQ(run.goal(), "exists (y), y ≤ 0");
  const dsl_not_normalize wrong{hypothesis_ref(1, "q = 1"), goal_ref("q = 1")};
  EXPECT_EQ(run.execute({{.number = 1, .content = wrong}}), exe_fail);
}

}  // namespace
}  // namespace vetro::test
