// rewrite: the written forms against the gap, the rule, both orientations, and where the result goes.
#include "support/handler_fixture.h"

namespace vetro::test {
namespace {

constexpr const char* note =
    "note: ordinary rewrite is binder-safe. It will not rewrite through implicit binders such as limit or sum when "
    "that "
    "could capture or change the meaning of free variables. For rewriting under a limit binder with a forall equation, "
    "use rewrite_in limit.\n";

class rewrite_test : public testing::Test {
 protected:
  rewrite_test()
      : s(gap_of({"a = b", "f(a) > 0", "p = 1 ⇔ q = 1", "c = 1 ⇒ x = y", "c = 1 ⇒ (x = 1 ⇔ y = 1)", "a < b"},
                 "forall (t), t + a > g(a)"),
          strong_check_mode) {}

  outcome goal_to(const std::string& rule, const std::string& to, const std::string& kind = "left_to_right, equation") {
    const std::string from = s.goal();
    return s.step("rewrite (" + kind + ") (hypothesis " + rule + ": {r +}) from (GOAL: {" + from + "}) to (GOAL: {" +
                  to + "})");
  }

  script_run s;
};

TEST_F(rewrite_test, installs_the_written_form) {
  EXPECT_EQ(goal_to("1", "forall (u), u + b > g(b)").flag, exe_fail) << "the forms have the same bound names";
  s.execute_text.clear();
  EXPECT_EQ(goal_to("1", "forall (t), t + a > g(b)"), success) << "one place of two";
  EXPECT_EQ(s.goal(), "forall (t), t + a > g(b)");
  EXPECT_NE(s.execute_text.find("rewrite matched by replacing 1 occurrence(s) using equation:\na -> b\n"),
            std::string::npos);
  s.execute_text.clear();
  EXPECT_EQ(goal_to("1", "forall (t), t + a > g(a)"), success) << "the direction is a first choice only";
  EXPECT_NE(s.execute_text.find("rewrite matched by replacing 1 occurrence(s) using equation (reversed orientation):\n"
                                "b -> a\n"),
            std::string::npos);
  EXPECT_EQ(goal_to("1", "forall (t), t + b > g(b)", "right_to_left, equation"), success);
}

TEST_F(rewrite_test, written_old_form_must_be_the_real_one) {
  const std::string rule = "rewrite (left_to_right, equation) (hypothesis 99: {a = b}) from ";
  const std::string goal = "current_goal: forall (t), t + a > g(a)\n";
  EXPECT_EQ(s.step(rule + "(GOAL: {a = a}) to (GOAL: {b = b})"),
            failed("mismatch goal in rewrite dsl\n" + goal + "dsl_from: a = a\n"));
  EXPECT_EQ(s.step(rule + "(GOAL: {a +}) to (GOAL: {b = b})"),
            failed("mismatch goal in rewrite dsl\n" + goal + "dsl_from: <null>\n"));
  EXPECT_EQ(s.step(rule + "(hypothesis 2: {f(b) > 0}) to (GOAL: {b = b})"),
            failed("mismatch hypothesis in rewrite dsl\ncurrent_hypothesis: f(a) > 0\ndsl_from: f(b) > 0\n"));
  EXPECT_EQ(s.step(rule + "(hypothesis 7: {f(b) > 0}) to (GOAL: {b = b})"),
            failed("mismatch hypothesis in rewrite dsl\ndsl_from: f(b) > 0\n"));
  EXPECT_EQ(s.step(rule + "(hypothesis 0: {f(b) +}) to (GOAL: {b = b})"),
            failed("mismatch hypothesis in rewrite dsl\ndsl_from: <null>\n"));
  EXPECT_EQ(s.step(rule + "(GOAL: {forall (u), u + a > g(a)}) to (GOAL: {b = b})"),
            failed("Invalid hypothesis number: 99, current proof gap has 6 hypotheses\n"))
      << "the old form may have other bound names, and the rule comes next";
}

TEST_F(rewrite_test, rule_is_an_equation_or_an_equivalence) {
  const std::string from_to = " from (hypothesis 2: {f(a) > 0}) to (hypothesis 2: {f(b) > 0})";
  const auto with = [this, from_to](const std::string& kind, const std::string& rule) {
    return s.step("rewrite (left_to_right, " + kind + ") " + rule + from_to);
  };
  const dsl_rewrite by_theorem{re_left2right, re_equation, reference(dsl_thm, 1, "a = b"),
                               hypothesis_ref(2, "f(a) > 0"), hypothesis_ref(2, "f(b) > 0")};
  EXPECT_EQ(s.execute({{.number = 1, .content = by_theorem}}), exe_fail);
  EXPECT_EQ(s.error_text, "Rewrite instruction requires a hypothesis as the rewriting source.\n");
  EXPECT_EQ(with("equation", "(hypothesis 0: {a = b})"),
            failed("Invalid hypothesis number: 0, current proof gap has 6 hypotheses\n"));
  EXPECT_EQ(with("equation", "(hypothesis 3: {a = b})"), failed("Hypothesis is not an equation for rewriting.\n"));
  EXPECT_EQ(with("equation", "(hypothesis 5: {a = b})"), failed("Hypothesis is not an equation for rewriting.\n"));
  EXPECT_EQ(with("equation", "(hypothesis 6: {a = b})"), failed("Hypothesis is not an equation for rewriting.\n"));
  EXPECT_EQ(with("iff", "(hypothesis 1: {a = b})"), failed("Hypothesis is not an iff for rewriting.\n"));
  EXPECT_EQ(with("iff", "(hypothesis 4: {a = b})"), failed("Hypothesis is not an iff for rewriting.\n"));
  EXPECT_EQ(with("equation", "(hypothesis 1: {q +})"), success);
}

TEST(rewrite_rule, stands_for_one_value) {
  script_run s(gap_of({"x = bigO_{x → 0}(x)", "p = 1 ⇒ x = bigO_{x → 0}(x)", "x = ±1", "x > 0"}, "z = 1"));
  for (const std::string rule : {"1", "2", "3"}) {
    EXPECT_EQ(s.step("rewrite (left_to_right, equation) (hypothesis " + rule +
                     ": {x = x}) from (hypothesis 4: {x > 0}) to (hypothesis 5: {±1 > 0})"),
              failed("Hypothesis is not an equation for rewriting.\n"));
  }
}

TEST(rewrite_rule, pair_is_no_interval) {
  script_run s(gap_of({"p = (0, 1)"}, "x ∈ p"));
  EXPECT_EQ(s.step("rewrite (left_to_right, equation) (hypothesis 1: {p = (0, 1)}) from (GOAL: {x ∈ p}) to (GOAL: {x ∈ "
                   "(0, 1)})")
                .flag,
            exe_fail);
}

TEST_F(rewrite_test, premise_of_the_rule_is_not_asked) {
  s.gap.goal = formula("x = 1 ∧ z = 1");
  EXPECT_EQ(goal_to("5", "y = 1 ∧ z = 1", "left_to_right, iff"), success);
  EXPECT_EQ(goal_to("4", "x = 1 ∧ z = 1"), success);
}

TEST_F(rewrite_test, failure_shows_the_rules_own_sides) {
  s.gap.goal = formula("q = 1");
  EXPECT_EQ(goal_to("3", "p = 2", "right_to_left, iff"),
            failed("The target form cannot be obtained by subterm rewriting with the hypothesis iff.\n"
                   "requested_direction: right_to_left\nrule_left: p = 1\nrule_right: q = 1\nfrom: q = 1\nto: p = 2\n" +
                   std::string(note)));
  EXPECT_EQ(goal_to("1", "q +"),
            failed("The target form cannot be obtained by subterm rewriting with the hypothesis equation.\n"
                   "requested_direction: left_to_right\nrule_left: a\nrule_right: b\nfrom: q = 1\nto: <null>\n" +
                   std::string(note)));
  EXPECT_EQ(goal_to("1", "q = 1").flag, exe_fail) << "something has to be replaced";
  EXPECT_EQ(s.goal(), "q = 1");
}

TEST_F(rewrite_test, result_goes_where_it_may) {
  const auto second_to = [this](const std::string& to) {
    return s.step("rewrite (left_to_right, equation) (hypothesis 1: {a = b}) from (hypothesis 2: {f(a) > 0}) to " + to);
  };
  const auto bad_number = [](const std::string& number) {
    return failed("invalid rewrite target hypothesis number: " + number +
                  ", expected 2 (overwrite rewritten hypothesis) or 7 (append new hypothesis)\n");
  };
  EXPECT_EQ(second_to("(hypothesis 3: {f(b) > 0})"), bad_number("3"));
  EXPECT_EQ(second_to("(hypothesis 0: {f(b) > 0})"), bad_number("0"));
  EXPECT_EQ(second_to("(hypothesis 9999999999999999999: {f(b) > 0})"), bad_number("9223372036854775807"));
  EXPECT_EQ(second_to("(hypothesis 7: {f(b) > 0})"), success);
  EXPECT_EQ(s.hypothesis(7), "f(b) > 0");
  EXPECT_EQ(second_to("(GOAL: {f(b) > 0})"), success) << "a hypothesis may become the goal";
  EXPECT_EQ(s.goal(), "f(b) > 0");
  EXPECT_EQ(second_to("(hypothesis 2: {f(b) > 0})"), success);
  EXPECT_EQ(s.hypothesis(2), "f(b) > 0");
  EXPECT_EQ(s.gap.assu_num(), 7);
}

TEST_F(rewrite_test, only_what_stands_in_the_gap_is_rewritten) {
  const auto refused = failed("rewrite to hypothesis is only allowed when rewriting from a hypothesis.\n");
  const std::string rule = "rewrite (left_to_right, equation) (hypothesis 1: {a = b}) from ";
  for (const std::string from : {"(theorem 1: {h(a) = 1})", "(obvious: {h(a) = 1})"}) {
    EXPECT_EQ(s.step(rule + from + " to (GOAL: {h(b) = 1})"), refused);
    EXPECT_EQ(s.step(rule + from + " to (hypothesis 7: {h(b) = 1})"), refused);
  }
  const std::string goal = s.goal();
  EXPECT_EQ(s.step(rule + "(GOAL: {" + goal + "}) to (hypothesis 7: {forall (t), t + b > g(b)})"), refused);
  EXPECT_EQ(s.goal(), goal);
  EXPECT_EQ(s.gap.assu_num(), 6);
}

}  // namespace
}  // namespace vetro::test
