// The texts of the execute log, layout included.
#include <gtest/gtest.h>

#include "dsl_interpreter/dsl_instruction_table.h"
#include "dsl_interpreter/dsl_trace.h"
#include "support/run_fixture.h"
#include "term/print/pretty.h"

namespace vetro::test {
namespace {

std::string step_text(const dsl_content& content, bool internal = false) {
  run r(gap_of({}, "x = 0"));
  r.data.print_internal = internal;
  r.data.current_step_id = "7";
  const dsl_instruction inst{.number = 1, .content = content};
  dsl_trace_print_header(r.data, inst);
  dsl_trace_print_instruction_fields(r.data, inst);
  return r.execute_text;
}

class trace_of_instruction_test : public testing::Test {
 protected:
  const dsl_term hypothesis = hypothesis_ref(2, "x > 1");
  const dsl_term goal = goal_ref("y = 3");
  const dsl_term unread = hypothesis_ref(4);
  const dsl_term theorem = reference(dsl_thm, 5, "a = a");
  const dsl_term external = reference(dsl_thm, 6, "b = b", "alg");
  const dsl_term obvious = reference(dsl_obvious, 0, "1 > 0");
  const dsl_sub_list pairs = {{formula("a"), formula("2")}, {formula("b"), formula("x + 1")}};
};

TEST_F(trace_of_instruction_test, shows_header_and_fields) {
  const std::pair<dsl_content, const char*> rows[] = {
      {dsl_get_prop{external, pairs, hypothesis},
       "[7] get_prop @alg:6 as H2\n  source: @alg:6: b = b\n  subst: a := 2, b := x + 1\n  expected_as: H2: x > 1\n"},
      {dsl_exists{pairs}, "[7] exists choose witnesses\n  witnesses: a := 2, b := x + 1\n"},
      {dsl_destruct_and{hypothesis, {unread, hypothesis}},
       "[7] destruct_and H2\n  source: H2: x > 1\n  targets: H4, H2\n"},
      {dsl_rewrite{re_right2left, re_equation, hypothesis, goal, unread},
       "[7] rewrite GOAL using H2\n  rule: H2: x > 1\n  rule_type: equation\n  requested_direction: right_to_left\n"
       "  from: GOAL: y = 3\n  to: H4: <null>\n"},
      {dsl_rewrite_in{rewrite_in_setdesc, re_left2right, re_iff, hypothesis, {pairs[0]}, goal, goal},
       "[7] rewrite_in setdesc GOAL using H2\n  context: setdesc\n  rule: H2: x > 1\n  rule_type: iff\n"
       "  requested_direction: left_to_right\n  binder_map: a := 2\n  from: GOAL: y = 3\n  to: GOAL: y = 3\n"},
      {dsl_apply{theorem}, "[7] apply Thm5\n  source: Thm5: a = a\n"},
      {dsl_assert{hypothesis, {}, dsl_assert_auto}, "[7] assert H2: x > 1\n  mode: auto\n  proposition: H2: x > 1\n"},
      {dsl_assert{unread, {}, dsl_assert_by_admit},
       "[7] assert H4: <null>\n  mode: admit\n  proposition: H4: <null>\n"},
      {dsl_case_analysis{hypothesis}, "[7] case_analysis H2\n  source: H2: x > 1\n"},
      {dsl_or_intro{or_intro_right}, "[7] or_intro right\n  side: right\n"},
      {dsl_use_condition{{}, hypothesis, unread},
       "[7] use_condition in H2 as H4\n  conditions: (none)\n  target_implication: H2: x > 1\n"
       "  expected_as: H4: <null>\n"},
      {dsl_get_exists{hypothesis, pairs}, "[7] get_exists H2\n  source: H2: x > 1\n  fresh_vars: a := 2, b := x + 1\n"},
      {dsl_get_forall{goal, {}}, "[7] get_forall GOAL\n  target: GOAL: y = 3\n  fresh_vars: (none)\n"},
      {dsl_get_condition{{obvious, hypothesis}, goal},
       "[7] get_condition from GOAL\n  introduced_conditions: obvious, H2\n  target_goal: GOAL: y = 3\n"},
      {dsl_auto_replace{ar_no_hypothesis, {}, formula("a"), formula("b"), hypothesis, goal},
       "[7] autoreplace H2\n  from_term: a\n  to_term: b\n  from_prop: H2: x > 1\n  to_prop: GOAL: y = 3\n"},
      {dsl_not_normalize{goal, goal}, "[7] not_normalize GOAL\n  from: GOAL: y = 3\n  to: GOAL: y = 3\n"},
      {dsl_auto_solve{true, {}, ""}, "[7] autosolve\n  assumptions: all\n  requested_solver: auto\n"},
      {dsl_auto_solve{false, {hypothesis, unread}, "SgnSolver"},
       "[7] autosolve\n  assumptions: H2, H4\n  requested_solver: SgnSolver\n"},
  };
  for (const auto& [content, expected] : rows) {
    EXPECT_EQ(step_text(content), expected);
  }
}

TEST_F(trace_of_instruction_test, lets_internal_lines_run_into_what_follows) {
  const std::string x_gt_1 = "x > 1", internal = print_term_internal_to_string(formula(x_gt_1));
  EXPECT_EQ(step_text(dsl_apply{hypothesis}, true),
            "[7] apply H2\n  source: H2: x > 1\n  source H2 internal: " + internal);
  EXPECT_EQ(step_text(dsl_get_exists{hypothesis, {pairs[0]}}, true),
            "[7] get_exists H2\n  source: H2: x > 1\n  fresh_vars: a := 2\n  source H2 internal: " + internal +
                "  subst internal:\n    binder: a\n    value: 2\n");
  EXPECT_EQ(step_text(dsl_get_exists{unread, {}}, true),
            "[7] get_exists H4\n  source: H4: <null>\n  fresh_vars: (none)\n  source H4 internal: <null>");
  EXPECT_EQ(step_text(dsl_assert{hypothesis, {}, dsl_assert_auto}, true),
            step_text(dsl_assert{hypothesis, {}, dsl_assert_auto}));
}

TEST(trace, opens_with_the_gap_at_top_level_only) {
  run r(gap_of({"x > 0", "y > 0"}, "x + y > 0"));
  dsl_trace_print_initial_context(r.data);
  EXPECT_EQ(r.execute_text,
            "[context] initial proof gap\n  ASSUM:\n  1. x > 0\n  2. y > 0\n  GOAL:\n  x + y > 0\n  METHOD:\n\n");

  r.execute_text.clear();
  r.data.print_internal = true;
  proof_gap_full_mark_finished(r.gap);
  r.gap.assum = r.gap.assum.beginning(1);
  dsl_trace_print_initial_context(r.data);
  EXPECT_EQ(
      r.execute_text,
      "[context] initial proof gap\n  ASSUM:\n  1. x > 0\n  GOAL:\n  [finished]\n  METHOD:\n  INTERNAL:\n  ASSUM:\n"
      "  hypothesis 1. " +
          print_term_internal_to_string(formula("x > 0")) + "\n  GOAL:\n  [finished]\n  METHOD:\n\n");

  r.execute_text.clear();
  dsl_execute_data_set_trace_parent(r.data, "2", 1);
  dsl_trace_print_initial_context(r.data);
  EXPECT_EQ(r.execute_text, "");
}

// The trace of a result whose step turned `before` into `after`.
std::string result_text(const proof_gap_full& before, const proof_gap_full& after, dsl_exe_code flag,
                        dsl_execute_mode mode = fast_mode, bool internal = false) {
  run r(after, mode);
  r.data.print_internal = internal;
  if (flag == exe_gap_split) {
    r.data.split_gaps = {before, after};
  }
  dsl_trace_print_result(r.data, {.flag = flag}, before, goal_changed_between(before, after),
                         assumption_changed_between(before, after));
  return r.execute_text;
}

TEST(trace, tells_the_effects_of_a_step) {
  const proof_gap_full start = gap_of({"x > 0", "y > 0"}, "x = 1");
  proof_gap_full finished = start;
  proof_gap_full_mark_finished(finished);
  EXPECT_EQ(result_text(start, start, exe_success), "  result: success\n  effect: no proof state change\n");
  EXPECT_EQ(result_text(start, start, exe_fail), "  result: fail\n  effect: instruction failed\n");
  EXPECT_EQ(result_text(start, finished, exe_finish), "  result: finish\n  effect: proof finished\n");
  EXPECT_EQ(result_text(start, finished, exe_success), "  result: success\n  effect: goal changed\n");
  EXPECT_EQ(result_text(start, start, exe_gap_split), "  result: gap_split\n  effect: split into 2 branch(es)\n");
  EXPECT_EQ(result_text(start, gap_of({"x > 9", "y > 0", "z > 0"}, "x = 2"), exe_success),
            "  result: success\n  effect: goal changed\n  new_goal: x = 2\n  effect: add H3: z > 0\n")
      << "the goal first, and of the assumptions the new positions only";
  EXPECT_EQ(result_text(start, gap_of({"x > 9", "y > 8"}, "x = 1"), exe_success),
            "  result: success\n  effect: update H1: x > 9\n  effect: update H2: y > 8\n");
  EXPECT_EQ(result_text(start, gap_of({"x > 9"}, "x = 1"), exe_success),
            "  result: success\n  effect: update H1: x > 9\n");
}

TEST(trace, puts_internal_forms_behind_effects_in_fast_mode_only) {
  const proof_gap_full start = gap_of({}, "x = 1");
  const proof_gap_full after = gap_of({"z > 0"}, "x = 2");
  EXPECT_EQ(result_text(start, after, exe_success, fast_mode, true),
            "  result: success\n  effect: goal changed\n  new_goal: x = 2\n  new_goal internal: " +
                print_term_internal_to_string(after.goal) +
                "  effect: add H1: z > 0\n  added internal: " + print_term_internal_to_string(after.assum[0]));
  const std::string debug = result_text(start, after, exe_success, debug_mode, true);
  EXPECT_EQ(debug.find("new_goal internal"), std::string::npos);
  EXPECT_EQ(debug.find("added internal"), std::string::npos);
}

TEST(trace, shows_gaps_before_and_after_in_the_checking_modes) {
  const proof_gap_full before = gap_of({"x > 0"}, "x = 1");
  proof_gap_full after = gap_of({}, "x = 2");
  proof_gap_full_mark_finished(after);
  const std::string before_section =
      ":\n    pretty:\n      ASSUM:\n      1. x > 0\n\n      GOAL:\n      x = 1\n\n      METHOD:\n";
  const std::string after_section =
      ":\n    pretty:\n      ASSUM:\n\n      GOAL:\n      [finished]\n\n\n      METHOD:\n";
  for (const dsl_execute_mode mode : {debug_mode, strong_check_mode}) {
    EXPECT_EQ(result_text(before, after, exe_finish, mode), "  result: finish\n  effect: proof finished\n  gap before" +
                                                                before_section + "  gap after" + after_section);
    EXPECT_EQ(result_text(before, after, exe_gap_split, mode),
              "  result: gap_split\n  effect: split into 2 branch(es)\n  gap before" + before_section + "  branch 1" +
                  before_section + "  branch 2" + after_section);
  }
  const std::string internal = result_text(before, before, exe_fail, debug_mode, true);
  EXPECT_NE(internal.find("METHOD:\n    internal:\n      ASSUM:\n      hypothesis 1. "), std::string::npos);
  EXPECT_NE(internal.find("\n\n      Method:\n  gap after:\n"), std::string::npos);
}

TEST(trace, announces_each_step_on_standard_output) {
  testing::internal::CaptureStdout();
  dsl_trace_print_instruction_progress("2.3", admit("x = 0"));
  dsl_trace_print_instruction_progress("4", autosolve({}));
  EXPECT_EQ(testing::internal::GetCapturedStdout(), "== Step 2.3 | assert ==\n== Step 4 | autosolve ==\n");
}

TEST(trace, knows_every_name_and_answers_unknown_outside) {
  EXPECT_STREQ(dsl_trace_type_name(GET_PROP_INST), "get_prop");
  EXPECT_STREQ(dsl_trace_type_name(SOLVER_INST), "solver");
  EXPECT_STREQ(dsl_exe_code_name(exe_gap_split), "gap_split");
  EXPECT_STREQ(dsl_redundant_name(redundant_success), "success");
  EXPECT_STREQ(dsl_mode_name(strong_check_mode), "strong_check_mode");
  for (const int outside : {-1, 17}) {
    EXPECT_STREQ(dsl_trace_type_name(outside), "unknown");
    EXPECT_STREQ(dsl_exe_code_name(outside), "unknown");
    EXPECT_STREQ(dsl_redundant_name(outside), "unknown");
    EXPECT_STREQ(dsl_mode_name(outside), "unknown");
  }
}

}  // namespace
}  // namespace vetro::test
