// The loop over instructions: what stops it, what it records of each step, and what the solvers are given.
#include <gtest/gtest.h>

#include "dsl_interpreter/dsl_trace.h"
#include "support/run_fixture.h"

namespace vetro::test {
namespace {

TEST(engine, stops_behind_the_finishing_instruction) {
  run r(gap_of({"x > 0"}, "x > 0"));
  EXPECT_EQ(r.execute({admit("y > 0"), autosolve({1}), autosolve({99})}), exe_finish);
  ASSERT_EQ(r.data.summary.steps.size(), 2U);
  EXPECT_STREQ(r.step(1).effect_class, "context_progress");
  EXPECT_TRUE(r.step(1).assumption_changed);
  EXPECT_FALSE(r.step(1).goal_changed);
  EXPECT_STREQ(r.step(2).effect_class, "proof_finish");
  EXPECT_TRUE(r.step(2).goal_changed);
  EXPECT_FALSE(r.step(2).assumption_changed);
  EXPECT_EQ(r.data.summary.final_code, exe_finish);
  EXPECT_TRUE(proof_gap_full_is_finished(r.gap));
  EXPECT_EQ(r.error_text, "");
}

TEST(engine, stops_at_a_failure_and_records_it) {
  run r(gap_of({"x > 0"}, "y > 0"));
  EXPECT_EQ(r.execute({admit("z > 0"), autosolve({1}, "EqbSolver"), admit("z > 1")}), exe_fail);
  ASSERT_EQ(r.data.summary.steps.size(), 2U);
  EXPECT_STREQ(r.step(2).effect_class, "execution_fail");
  EXPECT_EQ(r.step(2).result_flag, exe_fail);
  EXPECT_EQ(r.error_text, "autosolve failed with solver EqbSolver\n");
  EXPECT_EQ(r.gap.assu_num(), 2);
}

TEST(engine, is_a_success_when_the_list_ends_with_the_goal_open) {
  run r(gap_of({}, "y > 0"));
  EXPECT_EQ(r.execute({admit("z > 0")}), exe_success);
  EXPECT_TRUE(proof_gap_full_is_pending(r.gap));
  EXPECT_EQ(r.execute({}), exe_success);
}

TEST(engine, fails_every_instruction_on_a_finished_gap) {
  run r(gap_of({"x > 0"}, "x > 0"));
  proof_gap_full_mark_finished(r.gap);
  EXPECT_EQ(r.execute({autosolve({1})}), exe_fail);
  EXPECT_EQ(r.error_text, "current proof gap is already finished\n");
  ASSERT_EQ(r.data.summary.steps.size(), 1U);
  EXPECT_EQ(r.step(1).redundant_flag, redundant_ignore);
}

TEST(engine, reads_a_split_as_a_changed_goal_and_pictures_the_first_branch) {
  run r(gap_of({"x > 0 ∨ x < 0"}, "x ≠ 0"));
  r.data.keep_records = true;
  EXPECT_EQ(r.execute({case_analysis(1), admit("y = 0")}), exe_gap_split);
  ASSERT_EQ(r.data.summary.steps.size(), 1U);
  EXPECT_TRUE(r.step(1).goal_changed);
  EXPECT_FALSE(r.step(1).assumption_changed);
  EXPECT_EQ(r.step(1).split_gap_count, 2U);
  EXPECT_STREQ(r.step(1).effect_class, "gap_split");
  EXPECT_EQ(r.step(1).gap_after->assum, term_list{formula("x > 0")});
  EXPECT_EQ(r.gap.assum.front(), formula("x > 0 ∨ x < 0"));
}

TEST(engine, counts_repeated_inputs_of_one_list_whatever_their_line) {
  run r(gap_of({}, "y > 0"));
  r.data.keep_records = true;
  r.execute({admit("x = 0", 1), admit("x = 1", 2), admit("x = 0", 30), block("x = 2", {admit("x = 0", 5)}, 4)});
  EXPECT_FALSE(r.step(1).repeated_input);
  EXPECT_FALSE(r.step(2).repeated_input);
  EXPECT_TRUE(r.step(3).repeated_input);
  EXPECT_FALSE(r.step(4).repeated_input);
  EXPECT_EQ(r.data.summary.repeated_input_count, 1U);
  EXPECT_EQ(r.gap.assu_num(), 3) << "a repeated instruction is executed like any other";
}

TEST(engine, tells_blocks_with_other_inner_lines_apart) {
  run r(gap_of({}, "x = 0"));
  r.data.keep_records = true;
  const auto proof = [](int line) { return block("y = y", {admit("y = y", line), autosolve({1})}); };
  r.execute({proof(2), proof(3), proof(2)});
  ASSERT_EQ(r.data.summary.steps.size(), 3U);
  EXPECT_FALSE(r.step(2).repeated_input);
  EXPECT_TRUE(r.step(3).repeated_input);
}

TEST(engine, signature_is_the_text_behind_the_line_number) {
  EXPECT_EQ(instruction_signature_from_text("12. \t apply x"), "apply x");
  EXPECT_EQ(instruction_signature_from_text("12 apply 3. x"), "apply 3. x");
  EXPECT_EQ(instruction_signature_from_text("1.. x"), ". x");
  EXPECT_EQ(instruction_signature_from_text("12. "), "");
  EXPECT_EQ(instruction_signature_from_text(""), "");
}

TEST(engine, keeps_texts_and_gaps_only_where_they_are_read) {
  run silent(gap_of({"x > 0"}, "y > 0"));
  silent.execute({admit("z > 0"), admit("z > 0")});
  EXPECT_EQ(silent.step(1).gap_before, nullptr);
  EXPECT_EQ(silent.step(1).instruction, nullptr);
  EXPECT_FALSE(silent.step(2).repeated_input);

  run kept(gap_of({"x > 0"}, "y > 0"));
  kept.data.keep_records = true;
  const dsl_instruction_list script = {admit("z > 0", 7), admit("z > 0", 8)};
  kept.execute(script);
  EXPECT_EQ(kept.step(1).instruction, &script.front());
  EXPECT_EQ(kept.step(1).gap_before->assu_num(), 1);
  EXPECT_EQ(kept.step(1).gap_after, kept.step(2).gap_before) << "one gap, not two";
  EXPECT_EQ(kept.step(2).gap_after->assu_num(), 3);
}

TEST(engine, names_steps_by_their_place_in_the_blocks) {
  run r(gap_of({"x > 0"}, "x > 0"));
  const dsl_instruction inner = block("x > 0", {admit("y = 1"), autosolve({1})});
  r.execute({admit("y = 0"), block("x > 0", {inner, autosolve({1})})});
  for (const char* header :
       {"\n[1] ", "\n\n[2] ", "\n  [2.1] ", "\n    [2.1.1] ", "\n\n    [2.1.2] ", "\n\n  [2.2] "}) {
    EXPECT_NE(r.execute_text.find(header), std::string::npos) << header;
  }
  ASSERT_EQ(r.data.admits.size(), 2U);
  EXPECT_EQ(r.data.admits[1].step_id, "2.1.1");
  EXPECT_EQ(r.data.summary.steps.size(), 2U);

  dsl_execute_data_set_trace_parent(r.data, std::string(200, '7'), 3);
  EXPECT_EQ(r.data.trace_prefix.size(), 128U);
  EXPECT_EQ(r.data.current_step_id, "");
  EXPECT_EQ(dsl_trace_make_step_id(r.data, 5), std::string(128, '7'));
}

TEST(engine, sees_what_a_step_changed_up_to_bound_names) {
  const proof_gap_full before = gap_of({"x > 0", "forall (a), a = a"}, "forall (a), a < b");
  proof_gap_full after = gap_of({"x > 0", "forall (c), c = c"}, "forall (c), c < b");
  EXPECT_FALSE(goal_changed_between(before, after));
  EXPECT_FALSE(assumption_changed_between(before, after));

  after.assum.replace(1, formula("forall (c), c = x"));
  after.goal = formula("forall (c), b < c");
  EXPECT_TRUE(goal_changed_between(before, after));
  EXPECT_TRUE(assumption_changed_between(before, after));

  after = before;
  after.assum = after.assum.beginning(1);
  EXPECT_TRUE(assumption_changed_between(before, after));
  proof_gap_full_mark_finished(after);
  EXPECT_TRUE(goal_changed_between(before, after));
  proof_gap_full both_finished = after;
  both_finished.goal = formula("x = 1");
  EXPECT_FALSE(goal_changed_between(both_finished, after));
  EXPECT_TRUE(goal_changed_between(before, proof_gap_full{}));
  EXPECT_FALSE(goal_changed_between(proof_gap_full{}, proof_gap_full{}));
}

TEST(engine, gives_the_solvers_the_selected_hypotheses) {
  run r(gap_of({"x = 1", "x = 2", "x = 3"}, "x = 4"));
  const solve_data all = dsl_data_to_solve_data_all(r.data);
  EXPECT_EQ(all.assum, r.gap.assum);
  EXPECT_EQ(all.target, r.gap.goal);
  EXPECT_EQ(all.log_file, &r.execute_log);

  solve_data some;
  ASSERT_TRUE(dsl_data_to_solve_data(r.data, {hypothesis_ref(3, "y = 0"), hypothesis_ref(1), hypothesis_ref(3)}, some));
  EXPECT_EQ(some.assum, (term_list{r.gap.assum[2], r.gap.assum[0], r.gap.assum[2]}));
  ASSERT_TRUE(dsl_data_to_solve_data(r.data, {}, some));
  EXPECT_TRUE(some.assum.empty());
  EXPECT_EQ(r.error_text, "");

  for (const std::int64_t number : {std::int64_t{0}, std::int64_t{4}, std::int64_t{9223372036854775807}}) {
    r.error_text.clear();
    EXPECT_FALSE(dsl_data_to_solve_data(r.data, {hypothesis_ref(1), hypothesis_ref(number)}, some));
    EXPECT_EQ(r.error_text,
              "Invalid hypothesis number: " + std::to_string(number) + ", current proof gap has 3 hypotheses\n");
  }
}

TEST(engine, autosolve_uses_only_what_is_selected) {
  run without(gap_of({"x > 0"}, "x > 0"));
  EXPECT_EQ(without.execute({autosolve({}, "EqbSolver")}), exe_fail);
  EXPECT_FALSE(without.gap.finished);

  run by_itself(gap_of({}, "x = x"));
  EXPECT_EQ(by_itself.execute({autosolve({})}), exe_finish);

  run out_of_range(gap_of({"x > 0"}, "x > 0"));
  EXPECT_EQ(out_of_range.execute({autosolve({1, 2})}), exe_fail);
  EXPECT_FALSE(out_of_range.gap.finished);
}

}  // namespace
}  // namespace vetro::test
