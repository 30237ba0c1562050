// What a proof's report says: a table of proofs, each with the one diagnostic that it is about.
#include <gtest/gtest.h>

#include <algorithm>
#include <fstream>
#include <iterator>
#include <string>

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

std::string place_of(const report_diagnostic& d) {
  const std::string file = d.file.substr(0, d.file.find('.'));
  return d.line == 0
             ? file
             : file + ":" + std::to_string(d.line) + ":" + std::to_string(d.column) + "+" + std::to_string(d.length);
}

struct row {
  const char* gap;     // its lines with ';' between them
  const char* script;  // the same
  const char* outcome;
  const char* code;
  const char* place;
  const char* suggestion;  // empty: none
};

std::string lines(std::string text) {
  std::replace(text.begin(), text.end(), ';', '\n');
  return text + "\n";
}

constexpr const char* no_hypothesis = "ASSUM:;GOAL:;x > 0";
constexpr const char* two = "ASSUM:;1. x > 1 ⇒ y > 1;2. x > 1;GOAL:;y > 1";

constexpr row rows[] = {
    // The gap.
    {"ASSUM:;x > 1;GOAL:;x > 0", "apply (hypothesis 1: {x > 1})", "unparsed", "gap-line-form", "gap:2:1+5",
     "write '1. x > 1'"},
    {"ASSUM:;1. x > 1", "apply (hypothesis 1: {x > 1})", "unparsed", "gap-without-goal", "gap:3:1+0", ""},
    {"ASSUM:;1. ε > * 1;GOAL:;x > 0", "autosolve all_hypothesis", "unparsed", "formula-syntax", "gap:2:8+1", ""},
    {"ASSUM:;1. x > > 1;2. y > 1;GOAL:;y > 0", "autosolve all_hypothesis", "unparsed", "formula-syntax", "gap:2:8+1",
     ""},
    {"ASSUM:;1. x | f(x) + y ∈ S;GOAL:;x > 0", "autosolve all_hypothesis", "failed", "not-proved", "script:1:1+24", ""},
    {"ASSUM:;2. x > 1;GOAL:;x > 0", "autosolve all_hypothesis", "verified", "gap-number", "gap:2:1+1", ""},
    {"ASSUM:;1. x > 1;GOAL:;x > 0;y > 0", "autosolve all_hypothesis", "verified", "behind-goal", "gap:5:1+5", ""},
    {"ASSUM:;1. a = 1 ⇒ (b = 1 ⇒ c = 1) ⇒ d = 1;GOAL:;x = x", "autosolve all_hypothesis", "verified",
     "implication-chain", "gap:2:28+1", "write a ⇒ (b ⇒ c) where that is meant"},
    {"ASSUM:;1. sin^2(x) = 1;GOAL:;x = x", "autosolve all_hypothesis", "verified", "function-power", "gap:2:4+5",
     "write sin(...)^{...} for the power of the value"},
    {"ASSUM:;1. arctn(x) = 1;GOAL:;x = x", "autosolve all_hypothesis", "verified", "known-name", "gap:2:4+5",
     "did you mean 'arctan'?"},
    {"ASSUM:;1. x > 0;2. x < 0;GOAL:;y = 1", "autosolve all_hypothesis", "verified", "contradiction", "gap", ""},
    // The script.
    {two, "use_conditon (hypothesis 2: {x > 1})", "unparsed", "script-syntax", "script:1:1+12",
     "did you mean 'use_condition'?"},
    {two, "1. or_intro middle", "unparsed", "script-syntax", "script:1:13+1", ""},
    {two, "apply (hypothesis: {x > 1})", "unparsed", "script-syntax", "script:1:18+1", ""},
    {two, "assert (hypothesis 3: {y > 1}) by proof {;apply (hypothesis 1: {x > 1})", "unparsed", "script-block",
     "script:3:1+0", ""},
    {two, "# nothing", "unparsed", "script-empty", "script:1:1+0", ""},
    // Steps.
    {two, "apply (hypothesis 7: {x > 1 ⇒ y > 1})", "failed", "no-such-hypothesis", "script:1:8+12",
     "there are hypotheses 1 to 2; hypothesis 1 is this formula"},
    {two, "use_condition (hypothesis 1: {x > 1}) in (hypothesis 1: {x > 1 ⇒ y > 1}) as (hypothesis 3: {y > 1})",
     "failed", "premise-mismatch", "script:1:16+12", "hypothesis 2 is the formula that is needed"},
    {two, "use_condition (hypothesis 2: {x > 1}) in (hypothesis 1: {x > 1 ⇒ y > 1}) as (hypothesis 4: {y > 2})",
     "open-goal", "written-differs", "script:1:93+5", ""},
    {no_hypothesis, "get_prop (theorem 'Thm 1. (square_nonnegative)': {x = x}) (x := {y}) as (hypothesis 1: {x = x})",
     "failed", "no-such-theorem", "script:1:11+37", "did you mean theorem 1 (square_non_negative)?"},
    {no_hypothesis, "get_prop (theorem 9: {forall (x), x ∈ Real ⇒ |x| ≥ 0}) (x := {y}) as (hypothesis 1: {x = x})",
     "failed", "no-such-theorem", "script:1:11+9", "theorem 2 (abs_non_negative) has this formula"},
    {no_hypothesis, "get_prop (theorem 1: {x = x}) (y := {y}) as (hypothesis 1: {x = x})", "failed", "bad-binder",
     "script:1:31+10", "the quantifier binds x"},
    {no_hypothesis, "get_prop (theorem 1: {x = x}) (x := {y}) as (hypothesis 4: {y ∈ Real ⇒ y^2 ≥ 0})", "failed",
     "number-not-next", "script:1:46+12", "the next free number is 1"},
    {"ASSUM:;1. x > 1;GOAL:;forall (y), y > x", "get_forall (GOAL: {forall (y), y > x}) (y := {x})", "failed",
     "not-fresh", "script:1:40+10", "'x1' is free"},
    {two, "autosolve all_hypothesis using SmtSolver", "failed", "no-such-solver", "script:1:32+9",
     "did you mean 'SmtLraSolver'?"},
    {no_hypothesis, "assert (hypothesis 1: {x > 0}) by admit;autosolve all_hypothesis", "admitted", "admitted",
     "script:1:24+5", ""},
    {two, "autosolve all_hypothesis;autosolve all_hypothesis", "verified", "already-finished", "script:2:1+24", ""},
    {two, "autosolve all_hypothesis", "verified", nullptr, "", ""},
};

TEST(check_diagnostics, each_fault_has_its_code_its_place_and_its_advice) {
  for (const row& r : rows) {
    const proof_report report = report_on(lines(r.gap), lines(r.script));
    EXPECT_EQ(row_of(report.result).name, std::string_view(r.outcome)) << r.gap << "\n" << r.script;
    if (r.code == nullptr) {
      EXPECT_TRUE(report.diagnostics.empty()) << r.script;
      continue;
    }
    const auto d = std::find_if(report.diagnostics.begin(), report.diagnostics.end(),
                                [&](const report_diagnostic& x) { return x.code == r.code; });
    if (d == report.diagnostics.end()) {
      ADD_FAILURE() << "no " << r.code << "\n" << r.gap << "\n" << r.script;
      continue;
    }
    EXPECT_EQ(place_of(*d), r.place) << r.code;
    EXPECT_EQ(d->suggestion, r.suggestion) << r.code;
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
