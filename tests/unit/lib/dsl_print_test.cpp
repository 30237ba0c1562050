// The script printers, where reading a script back cannot show what they write: the internal forms, references without
// a formula, records that no script can make, the names.
#include <gtest/gtest.h>

#include <string>

#include "lib/dsl_ast.h"
#include "support/script_text.h"

namespace vetro {
namespace {

dsl_term make_reference(dsl_term_type type, std::int64_t num, term_ptr t) {
  dsl_term reference;
  reference.type = type;
  reference.num = num;
  reference.t = t;
  return reference;
}

std::string printed(const dsl_content& content, bool internal = false) {
  std::string out;
  print_dsl_instruction(out, {5, content}, internal);
  return out;
}

template <typename function>
std::string messages_of(const function& action) {
  testing::internal::CaptureStderr();
  action();
  return testing::internal::GetCapturedStderr();
}

TEST(dsl_print, theorem_references) {
  const struct {
    const char* name;
    const char* alias;
    const char* text;
  } rows[] = {
      {"squeeze", "lib", "'@lib:12. (squeeze)'"},
      {"squeeze", "", "'Thm 12. (squeeze)'"},
      {"", "lib", "@lib:12"},
      {"", "", "12"},
  };
  for (const auto& row : rows) {
    dsl_term reference = make_reference(dsl_thm, 12, mk_var("p"));
    reference.name = row.name;
    reference.lib_alias = row.alias;
    std::string out = "> ";
    print_theorem_ref(out, reference);
    EXPECT_EQ(out, "> " + std::string(row.text)) << "appended";
    const std::string line = printed(dsl_apply{reference});
    EXPECT_EQ(line, "5. apply (theorem " + std::string(row.text) + ": {p})");
    EXPECT_EQ(printed_script(parse_script("\n\n\n\n" + line)), line + "\n");
  }
}

TEST(dsl_print, formulas_take_the_internal_form_in_every_place) {
  const term_ptr x = mk_var("x");
  const term_ptr sum = mk_apply(mk_apply(mk_oper(Plus), x), mk_integer(1));
  const std::string pretty = "x + 1";
  const std::string internal = "Plus(x, 1)";
  const dsl_term goal = make_reference(dsl_goal, 0, sum);
  const dsl_term hypothesis = make_reference(dsl_hypo, 2, sum);
  const dsl_term theorem = make_reference(dsl_thm, 3, sum);
  const dsl_term obvious = make_reference(dsl_obvious, 0, sum);
  const dsl_sub_pair pair{x, sum};
  const struct {
    dsl_content content;
    std::string text;  // $ stands for the formula
  } rows[] = {
      {dsl_get_prop{theorem, {pair, pair}, hypothesis},
       "get_prop (theorem 3: {$}) (x := {$}) (x := {$}) as (hypothesis 2: {$})"},
      {dsl_get_prop{theorem, {}, hypothesis}, "get_prop (theorem 3: {$}) as (hypothesis 2: {$})"},
      {dsl_exists{{pair}}, "exists (x := {$}) "},
      {dsl_destruct_and{obvious, {hypothesis, hypothesis}},
       "destruct_and (obvious: {$}) as (hypothesis 2: {$}) (hypothesis 2: {$}) "},
      {dsl_rewrite{re_right2left, re_equation, hypothesis, goal, goal},
       "rewrite (right_to_left, equation) (hypothesis 2: {$}) from (GOAL: {$}) to (GOAL: {$})"},
      {dsl_rewrite_in{rewrite_in_setdesc, re_left2right, re_iff, hypothesis, {pair, pair}, goal, obvious},
       "rewrite_in setdesc (left_to_right, iff) (hypothesis 2: {$}) (x := {$}) (x := {$}); from (GOAL: {$}) to "
       "(obvious: {$})"},
      {dsl_rewrite_in{rewrite_in_sum, re_left2right, re_iff, hypothesis, {}, goal, goal},
       "rewrite_in sum (left_to_right, iff) (hypothesis 2: {$}) from (GOAL: {$}) to (GOAL: {$})"},
      {dsl_apply{theorem}, "apply (theorem 3: {$})"},
      {dsl_assert{hypothesis, {}, dsl_assert_auto}, "assert (hypothesis 2: {$})"},
      {dsl_assert{hypothesis, {}, dsl_assert_by_proof}, "assert (hypothesis 2: {$}) by proof"},
      {dsl_assert{hypothesis, {{6, dsl_apply{goal}}}, dsl_assert_by_admit}, "assert (hypothesis 2: {$}) by admit"},
      {dsl_assert{hypothesis, {{6, dsl_apply{goal}}, {8, dsl_exists{{pair}}}}, dsl_assert_by_proof},
       "assert (hypothesis 2: {$}) by proof {\n6. apply (GOAL: {$})\n8. exists (x := {$}) \n}"},
      {dsl_case_analysis{hypothesis}, "case_analysis (hypothesis 2: {$})"},
      {dsl_or_intro{or_intro_right}, "or_intro right"},
      {dsl_use_condition{{goal, obvious}, theorem, hypothesis},
       "use_condition (GOAL: {$}) (obvious: {$}) in (theorem 3: {$}) as (hypothesis 2: {$})"},
      {dsl_get_exists{hypothesis, {pair}}, "get_exists (hypothesis 2: {$}) (x := {$}) "},
      {dsl_get_forall{goal, {pair}}, "get_forall (GOAL: {$}) (x := {$}) "},
      {dsl_get_condition{{hypothesis}, goal}, "get_condition (hypothesis 2: {$}) in (GOAL: {$})"},
      {dsl_auto_replace{ar_specific_hypothesis, {hypothesis}, sum, sum, goal, goal},
       "autoreplace (hypothesis 2: {$}) from ($) to ($) from (GOAL: {$}) to (GOAL: {$})"},
      {dsl_not_normalize{goal, goal}, "not_normalize from (GOAL: {$}) to (GOAL: {$})"},
      {dsl_auto_solve{false, {}, ""}, "autosolve "},
      {dsl_auto_solve{true, {hypothesis}, "eqb"}, "autosolve all_hypothesis using eqb"},
      {dsl_auto_solve{false, {hypothesis}, ""}, "autosolve (hypothesis 2: {$}) "},
  };
  const auto filled = [](const std::string& text, const std::string& formula) {
    std::string out = "5. ";
    for (const char c : text) {
      out += c == '$' ? formula : std::string(1, c);
    }
    return out;
  };
  for (const auto& row : rows) {
    EXPECT_EQ(printed(row.content, false), filled(row.text, pretty));
    EXPECT_EQ(printed(row.content, true), filled(row.text, internal));
  }
}

TEST(dsl_print, pairs_are_separated_or_each_followed_by_a_blank) {
  const dsl_sub_list list = {{mk_var("x"), mk_var("a")}, {mk_var("y"), mk_var("b")}};
  std::string out;
  print_sub_pair_list_compact(out, list, false);
  EXPECT_EQ(out, "(x := {a}) (y := {b})");
  out.clear();
  print_sub_pair_list(out, list, true);
  EXPECT_EQ(out, "(x := {a}) (y := {b}) ");
}

TEST(dsl_print, what_cannot_be_printed_is_reported) {
  std::string out;
  EXPECT_EQ(messages_of([&] { print_dsl_term(out, make_reference(dsl_hypo, 4, nullptr), false); }),
            "Error: print_term visiting NULL pointer\n");
  EXPECT_EQ(out, "(hypothesis 4: {})");
  out.clear();
  EXPECT_EQ(messages_of([&] { print_dsl_term(out, make_reference(dsl_goal, 0, nullptr), true); }),
            "Error: print_term_internal visiting NULL pointer\n");
  EXPECT_EQ(out, "(GOAL: {})");
  out.clear();
  const auto no_type = static_cast<dsl_term_type>(9);
  EXPECT_EQ(messages_of([&] { print_dsl_term(out, make_reference(no_type, 4, mk_var("p")), false); }),
            "Error: invalid dsl_term_type: 9\n");
  EXPECT_EQ(out, "");

  const dsl_term goal = make_reference(dsl_goal, 0, mk_var("p"));
  const dsl_auto_replace no_mode{static_cast<auto_replace_hypo_mode>(7), {}, mk_var("a"), mk_var("b"), goal, goal};
  EXPECT_EQ(messages_of([&] { out = printed(no_mode); }), "Error: unknown auto_replace_hypo_mode: 7\n");
  EXPECT_EQ(out, "5. autoreplace from (a) to (b) from (GOAL: {p}) to (GOAL: {p})");
}

TEST(dsl_print, names) {
  EXPECT_STREQ(dsl_type_name(GET_PROP_INST), "get_prop");
  EXPECT_STREQ(dsl_type_name(AUTO_REPLACE_INST), "autoreplace");
  EXPECT_STREQ(dsl_type_name(NOT_NORMALIZE_INST), "not_normalize");
  EXPECT_STREQ(dsl_type_name(SOLVER_INST), "solver");
  EXPECT_STREQ(dsl_type_name(-1), "unknown");
  EXPECT_STREQ(dsl_type_name(dsl_type_count), "unknown");
  // Each instruction prints the name of its type first.
  for (const char* line : {"exists (x := {a})",
                           "rewrite (left_to_right, iff) (hypothesis 1: {p}) from (GOAL: {q}) to "
                           "(GOAL: {r})",
                           "or_intro left", "autosolve"}) {
    const parsed_script script = parse_script(line);
    ASSERT_TRUE(script.list.has_value());
    const std::string name = dsl_type_name(script.list->front().type());
    EXPECT_TRUE(std::string(line).starts_with(name)) << name;
  }
}

}  // namespace
}  // namespace vetro
