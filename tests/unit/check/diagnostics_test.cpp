// What a proof's report says: a table of proofs, each with the one diagnostic that it is about.
#include <gtest/gtest.h>

#include <algorithm>
#include <fstream>
#include <iterator>
#include <string>
#include <vector>

#include "check/examine.h"
#include "diagnostics/codes.h"
#include "parser/parser_api.h"
#include "qv_solver_list/solver_registry.h"
#include "term/pattern_match.h"
#include "term/report.h"

namespace vetro {
namespace {

constexpr std::string_view library_text =
    "Thm 1. (square_non_negative)\nforall (x), x ∈ Real ⇒ x^2 ≥ 0\n"
    "Thm 2. (abs_non_negative)\nforall (x), x ∈ Real ⇒ |x| ≥ 0\n";

proof_report report_on(const std::string& gap, const std::string& script, bool strict = false) {
  match_init(read_pattern);
  install_solvers(solver_registry());
  thm_lib lib;
  thm_lib_parse(library_text, lib);
  library_shelf shelf(&lib);
  proof_task task;
  task.number = 1;
  task.id = "p";
  task.gap = "gap.txt";
  task.script = "script.txt";
  task.gap_text = gap;
  task.script_text = script;
  task.strict = strict;
  show_progress(false);
  testing::internal::CaptureStderr();
  proof_report report = examine(task, shelf, {.explain = true});
  testing::internal::GetCapturedStderr();
  show_progress(true);
  return report;
}

// "CODE FILE:LINE:COLUMN+LENGTH MESSAGE | SUGGESTION"; the name of the file without its ending, and no place where only
// the file is known.
std::string text_of(const report_diagnostic& d) {
  const std::string file = d.file.substr(0, d.file.find('.'));
  std::string text = d.code + " " + file;
  if (d.line != 0) {
    text += ":" + std::to_string(d.line) + ":" + std::to_string(d.column) + "+" + std::to_string(d.length);
  }
  text += " " + d.message;
  return d.suggestion.empty() ? text : text + " | " + d.suggestion;
}

struct row {
  const char* gap;     // its lines with ';' between them
  const char* script;  // the same
  const char* outcome;
  std::vector<std::string> said;  // all of it
};

std::string lines(std::string text) {
  std::replace(text.begin(), text.end(), ';', '\n');
  return text + "\n";
}

constexpr const char* no_hypothesis = "ASSUM:;GOAL:;x > 0";
constexpr const char* two = "ASSUM:;1. x > 1 ⇒ y > 1;2. x > 1;GOAL:;y > 1";

constexpr const char* solve = "autosolve all_hypothesis";

const row rows[] = {
    // The gap.
    {"ASSUM:;x > 1;GOAL:;x > 0",
     solve,
     "unparsed",
     {"gap-line-form gap:2:1+5 an assumption is a number, perhaps a dot, and a formula on one line | write '1. x > "
      "1'"}},
    {"ASSUM:;1. x > 1",
     solve,
     "unparsed",
     {"gap-without-goal gap:3:1+0 there is no line 'GOAL:' with a goal on the line behind it"}},
    {"ASSUM:;1. x > 1;GOAL: x > 0",
     solve,
     "unparsed",
     {"behind-goal gap:3:7+5 on the line of 'GOAL:' nothing else is read | put it on a line of its own",
      "gap-without-goal gap:3:1+0 no line behind 'GOAL:' states a goal"}},
    {"Given:;1. x > 1;Goal:;x > 0",
     solve,
     "unparsed",
     {"behind-goal gap:1:1+6 nothing in front of 'ASSUM:' is read | did you mean 'ASSUM:', alone on its line?",
      "behind-goal gap:2:1+8 nothing in front of 'ASSUM:' is read",
      "behind-goal gap:3:1+5 nothing in front of 'ASSUM:' is read | did you mean 'GOAL:', alone on its line?",
      "gap-without-goal gap:5:1+0 there is no line 'GOAL:' with a goal on the line behind it"}},
    {"ASSUM:;1. ε > * 1;GOAL:;x > 0", solve, "unparsed", {"formula-syntax gap:2:8+1 '*' cannot stand here"}},
    {"ASSUM:;1.\tε\t> 2x;GOAL:;x > 0",
     solve,
     "unparsed",
     {"formula-syntax gap:2:9+1 'x' cannot stand here | a product needs its sign: 2 * x"}},
    {"ASSUM:;1. sin(x + 1 > 0;GOAL:;x > 0",
     solve,
     "unparsed",
     {"formula-syntax gap:2:17+0 the formula ends too early; expected ',' or ')' | this is not closed: (x + 1 > 0"}},
    {"ASSUM:;GOAL:;∫ > 0",
     solve,
     "unparsed",
     {"formula-syntax gap:3:1+1 no formula holds '∫' | write int_{a}^{b}(f(x) * diff(x)) or int(f(x) * diff(x))"}},
    {"ASSUM:;1. a | f(x);GOAL:;x > 0",
     solve,
     "unparsed",
     {"formula-ambiguous gap:2:4+8 the formula has two readings: Divides(a, f, x) and Divides(a, f(x))"}},
    {"ASSUM:;1. x > > 1\r;GOAL:\r;x > 0\r", solve, "unparsed", {"formula-syntax gap:2:8+1 '>' cannot stand here"}},
    {"ASSUM:;2. x > 1;3. x > 2;9. x > 3;4. y > 1;GOAL:;x > 0",
     solve,
     "verified",
     {"gap-number gap:2:1+1 this is hypothesis 1, whatever number stands here",
      "gap-number gap:4:1+1 this is hypothesis 3, whatever number stands here"}},
    {"ASSUM:;1. x > 1;GOAL:;x > 0;y > 0",
     solve,
     "verified",
     {"behind-goal gap:5:1+5 this line behind the goal is not read"}},
    {"ASSUM:;1. a = 1 ⇒ (b = 1 ⇒ c = 1) ⇒ d = 1;GOAL:;x = x",
     solve,
     "verified",
     {"implication-chain gap:2:28+1 implications group to the left: this reads (a ⇒ b) ⇒ c | write a ⇒ (b ⇒ c) where "
      "that is meant"}},
    {"ASSUM:;1. sin^2(x) = 1;GOAL:;x = x",
     solve,
     "verified",
     {"function-power gap:2:4+5 this applies the power of 'sin', of which nothing is known, to an argument | write "
      "sin(...)^{...} for the power of the value"}},
    {"ASSUM:;1. arctn(x) = 1;GOAL:;x = x",
     solve,
     "verified",
     {"known-name gap:2:4+5 nothing is known of the function 'arctn' | did you mean 'arctan'?"}},
    {"ASSUM:;1. x ∈ R;GOAL:;x = x",
     solve,
     "verified",
     {"known-name gap:2:8+1 nothing is known of the name 'R' | did you mean 'Real'?"}},
    {"ASSUM:;1. x = 1 → y = 1;GOAL:;x = x",
     solve,
     "verified",
     {"arrow-sign gap:2:10+1 an arrow is no implication: it says what a value tends to | write ⇒ or => for an "
      "implication"}},
    {"ASSUM:;1. (x + 1)(x - 1) = 2(x) ∧ f(x)(y) = x^2(y) ∧ f_1(x + 1)(2) = 3;GOAL:;x = x",
     solve,
     "verified",
     {"applied-value gap:2:4+7 this applies (x + 1) to an argument, like a function | write (x + 1) * (...) for a "
      "product",
      "applied-value gap:2:21+1 this applies 2 to an argument, like a function | write 2 * (...) for a product",
      "function-power gap:2:38+3 this applies the power of 'x', of which nothing is known, to an argument | write "
      "x(...)^{...} for the power of the value"}},
    {"ASSUM:;1. x > 0;2. x < 0;GOAL:;y = 1",
     solve,
     "verified",
     {"contradiction gap the assumptions contradict one another, so that everything follows from them"}},
    // The script.
    {two,
     "use_conditon (hypothesis 2: {x > 1})",
     "unparsed",
     {"script-syntax script:1:1+12 there is no instruction 'use_conditon' | did you mean 'use_condition'?"}},
    {two, "1. or_intro middle", "unparsed", {"script-syntax script:1:13+1 expected 'left' or 'right'"}},
    {two,
     "autosolve all_hypotheses",
     "unparsed",
     {"script-syntax script:1:11+1 expected 'all_hypothesis', (hypothesis N: {...}), 'using', or the end of the line | "
      "did you mean 'all_hypothesis'?"}},
    {two, "apply (hypothesis: {x > 1})", "unparsed", {"script-syntax script:1:18+1 expected a hypothesis number"}},
    {two,
     "apply (hypothesis 2: {x > 1)",
     "unparsed",
     {"script-syntax script:1:22+1 expected a '}' for the brace that opens here"}},
    {two,
     "assert (hypothesis 3: {y > 1}) by proof {;apply (hypothesis 1: {x > 1})",
     "unparsed",
     {"script-block script:3:1+0 missing closing brace for assert proof block"}},
    {two, "# nothing", "unparsed", {"script-empty script:1:1+0 the script has no instruction"}},
    {two,
     "autosolve all_hypothesis using SmtSolver",
     "failed",
     {"no-such-solver script:1:32+9 there is no solver 'SmtSolver' | did you mean 'SmtLraSolver'?"}},
    {two,
     "autosolve all_hypothesis using Limit",
     "failed",
     {"no-such-solver script:1:32+5 there is no solver 'Limit' | did you mean 'LimitCalcSolver'?"}},
    // Steps.
    {two,
     "apply (hypothesis 7: {x > 1 ⇒ y > 1})",
     "failed",
     {"no-such-hypothesis script:1:8+12 Invalid hypothesis number: 7, current proof gap has 2 hypotheses | there are "
      "hypotheses 1 to 2; hypothesis 1 is this formula"}},
    {two,
     "apply (GOAL: {y > 1})",
     "failed",
     {"wrong-kind script:1:8+4 apply instruction can only be used with hypotheses, not theorems or other terms"}},
    {two,
     "apply (hypothesis 2: {x > 1})",
     "failed",
     {"conclusion-mismatch script:1:8+12 no conclusion of this hypothesis is the goal"}},
    {two,
     "use_condition (hypothesis 1: {x > 1}) in (hypothesis 1: {x > 1 ⇒ y > 1}) as (hypothesis 3: {y > 1})",
     "failed",
     {"premise-mismatch script:1:16+12 Condition does not match target hypothesis | hypothesis 2 is the formula that "
      "is needed"}},
    {two,
     "use_condition (hypothesis 2: {x > 1}) (hypothesis 2: {x > 1}) in (hypothesis 1: {x > 1 ⇒ y > 1}) as (hypothesis "
     "3: {y > 1})",
     "failed",
     {"too-many-premises script:1:40+12 the hypothesis has no further premise"}},
    {two,
     "use_condition (hypothesis 2: {x > 1}) in (hypothesis 1: {x > 1 ⇒ y > 1}) as (hypothesis 4: {y > 2})",
     "open-goal",
     {"written-differs script:1:93+5 the formula written here differs from the one that was added",
      "written-differs script:1:78+12 the new hypothesis has number 3, whatever is written here",
      "open-goal script:1:1+99 the script ends here, and the goal is open"}},
    {no_hypothesis,
     "get_prop (theorem 'Thm 1. (square_nonnegative)': {x = x}) (x := {y}) as (hypothesis 1: {x = x})",
     "failed",
     {"no-such-theorem script:1:11+37 Invalid theorem reference Thm 1. (square_nonnegative): theorem number resolves "
      "to Thm 1. (square_non_negative), but the quoted name does not match, and no theorem named 'square_nonnegative' "
      "was found | did you mean theorem 1 (square_non_negative)?"}},
    {no_hypothesis,
     "get_prop (theorem 9: {forall (x), x ∈ Real ⇒ |x| ≥ 0}) (x := {y}) as (hypothesis 1: {x = x})",
     "failed",
     {"no-such-theorem script:1:11+9 Invalid theorem number: 9, theorem library has 2 theorems | theorem 2 "
      "(abs_non_negative) has this formula"}},
    {no_hypothesis,
     "get_prop (theorem 1: {x = x}) (y := {y}) as (hypothesis 1: {x = x})",
     "failed",
     {"bad-binder script:1:31+10 the quantifier does not bind 'y' | the quantifier binds x"}},
    {no_hypothesis,
     "get_prop (theorem 1: {x = x}) (x := {y}) as (hypothesis 4: {y ∈ Real ⇒ y^2 ≥ 0})",
     "failed",
     {"number-not-next script:1:46+12 invalid get_prop target hypothesis number: 4, expected 1 | the next free number "
      "is 1"}},
    {no_hypothesis,
     "get_prop (theorem 1: {x = x}) (x := {y}) as (hypothesis 1: {y ∈ Real ⇒ y^2 > 0})",
     "failed",
     {"formula-mismatch script:1:61+18 the formula written here is not the instance"}},
    {no_hypothesis,
     "get_prop (theorem 1: {x = x}) (x := {±1}) as (hypothesis 1: {x = x})",
     "failed",
     {"value-refused script:1:31+11 instantiation failed: 'x' stands for one finite value"}},
    {two,
     "get_condition (hypothesis 2: {x > 1}) in (GOAL: {y > 1})",
     "failed",
     {"number-taken script:1:16+12 Invalid condition hypothesis number: 2, this number has existed | the next free "
      "number is 3"}},
    {"ASSUM:;1. x > 1;GOAL:;forall (y), y > x",
     "get_forall (GOAL: {forall (y), y > x}) (y := {x})",
     "failed",
     {"not-fresh script:1:40+10 get_forall replacement var 'x' must be fresh among free variables in the current proof "
      "gap | 'x1' is free"}},
    {"ASSUM:;1. x > 1 ∧ y > 1;GOAL:;y > 1",
     "destruct_and (hypothesis 1: {x > 1 ∧ y > 1}) as (hypothesis 2: {x > 1})",
     "failed",
     {"wrong-count script:1:1+71 target count mismatch, need 2 targets but got 1 | the parts are x > 1, y > 1"}},
    {"ASSUM:;1. x > 1 ∧ y > 1;GOAL:;y > 1",
     "case_analysis (hypothesis 1: {x > 1 ∧ y > 1})",
     "failed",
     {"wrong-shape script:1:16+12 the hypothesis is not a disjunction | this is a conjunction: destruct_and takes it "
      "apart"}},
    {"ASSUM:;GOAL:;forall (y), y > x",
     "exists (y := {x})",
     "failed",
     {"wrong-shape script:1:8+10 Target is not an exists quantifier | this is universal: get_forall fixes its "
      "variables"}},
    {"ASSUM:;1. a = b;GOAL:;a > 2",
     "rewrite (left_to_right, equation) (hypothesis 1: {a = b}) from (GOAL: {a > 2}) to (GOAL: {b > 3})",
     "failed",
     {"rewrite-mismatch script:1:91+5 The target form cannot be obtained by subterm rewriting with the hypothesis "
      "equation"}},
    {"ASSUM:;1. a = b;GOAL:;a > 2",
     "rewrite (left_to_right, equation) (hypothesis 1: {a = b}) from (GOAL: {a > 3}) to (GOAL: {b > 3})",
     "failed",
     {"formula-mismatch script:1:72+5 the formula written here is not the goal"}},
    {"ASSUM:;1. a > b ∨ b > a;GOAL:;a > 2",
     "rewrite (left_to_right, equation) (hypothesis 1: {a > b}) from (GOAL: {a > 2}) to (GOAL: {b > 2})",
     "failed",
     {"rule-unusable script:1:36+12 Hypothesis is not an equation for rewriting"}},
    {"ASSUM:;1. 1 > 2 ⇒ a = b;GOAL:;a = b",
     "rewrite (left_to_right, equation) (hypothesis 1: {1 > 2 ⇒ a = b}) from (GOAL: {a = b}) to (GOAL: {b = "
     "b});autosolve all_hypothesis",
     "verified",
     {"rule-premise script:1:36+12 the rule's premise is not looked at, and nobody proved it"}},
    {"ASSUM:;1. x = 1;2. x = x;GOAL:;0 = 1",
     "rewrite (left_to_right, equation) (hypothesis 1: {x = 1}) from (hypothesis 2: {x = x}) to (GOAL: {1 = "
     "x});autosolve all_hypothesis",
     "verified",
     {"goal-replaced script:1:92+4 a rewritten hypothesis takes the place of the goal: what is proved from here on is "
      "another statement"}},
    {"ASSUM:;1. forall (x), x > 5 ⇒ f(x) = g(x);GOAL:;sum_{i = 1}^{n}(f(i)) = s",
     "rewrite_in sum (left_to_right, equation) (hypothesis 1: {forall (x), x > 5 ⇒ f(x) = g(x)}) from (GOAL: {sum_{i = "
     "1}^{n}(f(i)) = s}) to (GOAL: {sum_{i = 1}^{n}(g(i)) = s})",
     "failed",
     {"side-condition script:1:43+12 rewrite_in sum failed: cannot prove side condition (side condition is not "
      "automatically true on the whole sum range)"}},
    {"ASSUM:;GOAL:;x + x > 0",
     "autoreplace all_hypothesis from (x + x) to (3 * x) from (GOAL: {x + x > 0}) to (GOAL: {3 * x > 0})",
     "failed",
     {"not-equal script:1:1+98 Auto-replace failed: cannot simplify x + x to 3 * x"}},
    {"ASSUM:;1. z = 0;GOAL:;z / z = 1",
     solve,
     "verified",
     {"denominator script:1:1+24 the calculation cancels the denominator z, which is not known to be non-zero"}},
    {"ASSUM:;1. x > 0;GOAL:;x > y",
     "autosolve",
     "failed",
     {"not-proved script:1:1+9 the solvers do not prove the goal | no hypothesis is used here; 'autosolve "
      "all_hypothesis' uses all of them"}},
    {two,
     "assert (hypothesis 3: {y > 1}) by proof {;  assert (hypothesis 3: {y + 1 > 1 + 0 * x + 1}) by admit;}",
     "failed",
     {"admitted script:2:26+21 this proposition is admitted without proof",
      "block-not-proved script:1:9+12 proof block did not prove the asserted hypothesis"}},
    {no_hypothesis,
     "assert (hypothesis 1: {x > >}) by admit",
     "failed",
     {"formula-syntax script:1:28+1 '>' cannot stand here",
      "formula-missing script:1:24+5 the asserted formula does not parse"}},
    {no_hypothesis,
     "assert (hypothesis 1: {x > 0}) by admit;autosolve all_hypothesis",
     "admitted",
     {"admitted script:1:24+5 this proposition is admitted without proof"}},
    {"ASSUM:;1. x = 1 ∨ x = 2;GOAL:;x > 0",
     "case_analysis (hypothesis 1: {x = 1 ∨ x = 2})",
     "split",
     {"gap-split script:1:1+45 the script ends with a case analysis into 2 branches, each of which needs a proof of "
      "its own"}},
    {two,
     "autosolve all_hypothesis;autosolve all_hypothesis",
     "verified",
     {"already-finished script:2:1+24 the proof ends in front of this instruction, which is not carried out"}},
    {two, solve, "verified", {}},
};

TEST(check_diagnostics, each_fault_has_its_code_its_place_and_its_advice) {
  for (const row& r : rows) {
    const proof_report report = report_on(lines(r.gap), lines(r.script));
    EXPECT_EQ(row_of(report.result).name, std::string_view(r.outcome)) << r.gap << "\n" << r.script;
    std::vector<std::string> said;
    for (const report_diagnostic& d : report.diagnostics) {
      said.push_back(text_of(d));
    }
    EXPECT_EQ(said, r.said) << r.gap << "\n" << r.script;
  }
}

// The table in docs/check.md has a row for each code, in the order of the program's own.
TEST(check_diagnostics, the_document_lists_all_codes) {
  std::string expected;
  for (const diagnostic_row& r : diagnostic_rows()) {
    expected += "| `" + std::string(r.name) + "` | " + std::string(severity_name(r.level)) + " | " +
                std::string(r.meaning) + " |\n";
  }
  std::ifstream file(VETRO_DOCS_FOLDER "/check.md");
  const std::string document{std::istreambuf_iterator<char>(file), {}};
  EXPECT_NE(document.find(expected), std::string::npos) << expected;
}

}  // namespace
}  // namespace vetro
