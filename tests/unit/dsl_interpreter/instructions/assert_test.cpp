// assert: by the solvers, by a block on a copy of the gap, and by admission.
#include "dsl_interpreter/dsl_admit.h"
#include "support/handler_fixture.h"

namespace vetro::test {
namespace {

TEST(assert, solvers_prove_or_the_step_fails_silently) {
  script_run s(gap_of({"a = 1"}, "z = 1"), strong_check_mode);
  EXPECT_EQ(s.step("assert (hypothesis 99: {2 * x = x + x})"), success)
      << "the number is for the reader, in every mode";
  EXPECT_EQ(s.hypothesis(2), "2 * x = x + x");
  EXPECT_EQ(s.step("assert (hypothesis 3: {2 * x = x + 1})"), failed(""));
  EXPECT_EQ(s.step("assert (hypothesis 3: {x +})").flag, exe_fail);
  EXPECT_EQ(s.gap.assu_num(), 2);
  EXPECT_TRUE(s.data.admits.empty());
}

TEST(assert, block_leaves_its_proposition_only) {
  script_run s(gap_of({"a = 1"}, "z = 1"), strong_check_mode);
  EXPECT_EQ(s.step("assert (hypothesis 2: {forall (x), x = x}) by proof {\n"
                   "get_forall (GOAL: {forall (x), x = x}) (x := {u})\n"
                   "assert (hypothesis 2: {u + u = 2 * u})\n"
                   "autosolve\n"
                   "assert (hypothesis 2: {False}) by admit\n"
                   "}\n"),
            success);
  EXPECT_EQ(s.gap.assum, (term_list{formula("a = 1"), formula("forall (x), x = x")}));
  EXPECT_EQ(s.goal(), "z = 1");
  EXPECT_TRUE(s.data.admits.empty()) << "nothing behind the finishing instruction is executed";
  EXPECT_EQ(s.data.summary.steps.size(), 1U);
}

TEST(assert, block_that_proves_nothing) {
  const outcome not_proved = failed("execute_assert: proof block did not prove the asserted hypothesis\n");
  script_run s(gap_of({"a = 1 ∨ b = 1", "c = 1"}, "c = 1"));
  const auto block_of = [&s](const std::string& steps) {
    return s.step("assert (hypothesis 3: {d = 1}) by proof {\n" + steps + "\n}\n");
  };
  EXPECT_EQ(block_of("assert (hypothesis 3: {1 = 1})"), not_proved) << "the goal stays open";
  EXPECT_EQ(block_of("apply (hypothesis 2: {c = 1})"),
            failed("hypothesis's conclusion does not match current goal\n" + not_proved.error))
      << "the goal of the block is the proposition, not that of the gap";
  EXPECT_EQ(block_of("apply (hypothesis 9: {c = 1})\nassert (hypothesis 3: {d = 1}) by admit"),
            failed("Invalid hypothesis number: 9, current proof gap has 2 hypotheses\n" + not_proved.error));
  EXPECT_TRUE(s.data.admits.empty());
  EXPECT_EQ(
      block_of("assert (hypothesis 3: {c = c * 1})\n"
               "rewrite (left_to_right, equation) (hypothesis 3: {c = c * 1}) from (hypothesis 2: {c = 1}) to (GOAL: "
               "{c * 1 = 1})\n"
               "autosolve all_hypothesis"),
      not_proved)
      << "a hypothesis in the place of the goal";
  EXPECT_EQ(block_of("case_analysis (hypothesis 1: {a = 1 ∨ b = 1})"),
            failed("execute_assert: proof blocks with split gaps are not supported yet\n"));
  EXPECT_TRUE(s.data.split_gaps.empty());
  EXPECT_EQ(s.gap.assu_num(), 2);
  const dsl_assert no_body{hypothesis_ref(3, "d = 1"), {}, dsl_assert_by_proof};
  EXPECT_EQ(s.execute({{.number = 1, .content = no_body}}), exe_fail);
  EXPECT_EQ(s.error_text.substr(s.error_text.rfind("execute_")),
            "execute_assert: manual assert proof has no proof body\n");
}

TEST(assert, admits_are_recorded_where_they_stood) {
  script_run s(gap_of({"a = 1"}, "z = 1"));
  EXPECT_EQ(s.step("assert (hypothesis 77: {b = 1}) by admit"), success);
  EXPECT_EQ(s.step("\n\nassert (hypothesis 3: {c = 1}) by proof {\n"
                   "assert (hypothesis 3: {d = 1}) by proof {\n"
                   "assert (hypothesis 0: {False}) by admit\n"
                   "apply (hypothesis 3: {False})\n"
                   "}\n"
                   "apply (hypothesis 1: {a = 1})\n"
                   "}\n")
                .flag,
            exe_fail);
  ASSERT_EQ(s.data.admits.size(), 2U) << "an admit survives the failure of its block";
  const dsl_admit_obligation& outer = s.data.admits[0];
  EXPECT_EQ(outer.proposition, formula("b = 1"));
  EXPECT_EQ(outer.hypothesis_num, 77);
  EXPECT_EQ(outer.step_id, "1");
  EXPECT_EQ(outer.gap.assum, term_list{formula("a = 1")});
  EXPECT_EQ(outer.gap.goal, outer.proposition);
  const dsl_admit_obligation& inner = s.data.admits[1];
  EXPECT_EQ(inner.proposition, formula("False"));
  EXPECT_EQ(inner.step_id, "2.1.1");
  EXPECT_EQ(inner.source_line, 5);
  EXPECT_EQ(inner.hypothesis_num, 0);
  EXPECT_EQ(inner.gap.assu_num(), 2);
  EXPECT_TRUE(proof_gap_full_is_pending(inner.gap));
  EXPECT_EQ(s.gap.assu_num(), 2);
}

TEST(assert, nothing_is_admitted_without_a_formula) {
  script_run s(gap_of({}, "z = 1"));
  EXPECT_EQ(s.step("assert (hypothesis 1: {b +}) by admit"),
            failed("execute_assert: failed to record admitted proposition\n"));
  EXPECT_TRUE(s.data.admits.empty());
  EXPECT_EQ(s.gap.assu_num(), 0);
}

}  // namespace
}  // namespace vetro::test
