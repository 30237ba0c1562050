// The table of codes.
#include "diagnostics/codes.h"

#include <array>

namespace vetro {
namespace {

using enum diagnostic_code;
using enum severity;

constexpr auto rows = std::to_array<diagnostic_row>({
    {file_unreadable, "file-unreadable", error, "A file or folder cannot be read."},
    {manifest_line, "manifest-line", error, "A line of a manifest does not say what proof it is."},
    {gap_line_form, "gap-line-form", error, "A line behind `ASSUM:` is no number with a formula."},
    {gap_without_goal, "gap-without-goal", error, "The gap has no goal."},
    {formula_syntax, "formula-syntax", error, "A text is no formula; the place is the offending token."},
    {formula_ambiguous, "formula-ambiguous", error, "A formula has two readings."},
    {script_syntax, "script-syntax", error, "A line of the script is no instruction; the text says what was expected."},
    {script_block, "script-block", error, "A proof block is not opened or not closed, is empty, or lies too deep."},
    {script_empty, "script-empty", error, "The script has no instruction."},
    {library_left_out, "library-left-out", warning, "A theorem of the library does not parse and is left out."},
    {no_such_hypothesis, "no-such-hypothesis", error, "A number names no hypothesis."},
    {no_such_theorem, "no-such-theorem", error, "A reference names no theorem, or its number and name disagree."},
    {wrong_kind, "wrong-kind", error, "A reference is of a kind (hypothesis, theorem, goal) that does not fit."},
    {number_not_next, "number-not-next", error, "A new hypothesis does not have the next free number."},
    {number_taken, "number-taken", error, "The number of a new hypothesis is taken."},
    {formula_missing, "formula-missing", error, "A formula that the step needs did not parse."},
    {formula_mismatch, "formula-mismatch", error, "A written formula is not the one that stands or arises there."},
    {premise_mismatch, "premise-mismatch", error, "What is given for a premise is another formula."},
    {too_many_premises, "too-many-premises", error, "More premises are given than the implication has."},
    {wrong_shape, "wrong-shape", error, "A formula does not have the form that the instruction takes apart."},
    {wrong_count, "wrong-count", error, "There are more or fewer targets than parts."},
    {bad_binder, "bad-binder", error, "A pair names no variable of the quantifier, or one twice."},
    {value_refused, "value-refused", error, "A value may not stand for this variable."},
    {not_fresh, "not-fresh", error, "A new name is already used."},
    {rule_unusable, "rule-unusable", error, "A hypothesis cannot serve as the rewriting rule."},
    {rewrite_mismatch, "rewrite-mismatch", error, "Rewriting does not give the written formula."},
    {side_condition, "side-condition", error, "A premise of a rewriting rule is not proved at the place of its use."},
    {not_equal, "not-equal", error, "Two expressions are not seen to be equal by calculation."},
    {conclusion_mismatch, "conclusion-mismatch", error, "No conclusion of the hypothesis gives the goal."},
    {not_proved, "not-proved", error, "The solvers do not prove the goal; the open pieces say what is left."},
    {no_such_solver, "no-such-solver", error, "No solver has the name behind `using`."},
    {block_not_proved, "block-not-proved", error, "A proof block does not prove its assertion."},
    {already_finished, "already-finished", warning,
     "An instruction stands behind the end of the proof and is not carried out."},
    {preparation_failed, "preparation-failed", error, "A formula cannot be prepared for the step."},
    {open_goal, "open-goal", error, "The script ends and the goal is open."},
    {gap_split, "gap-split", error, "The script ends with a case analysis; its branches are open."},
    {admitted, "admitted", warning, "A proposition was admitted without proof."},
    {behind_goal, "behind-goal", warning,
     "A line of the gap that is not read: behind the goal, in front of `ASSUM:`, beside a heading."},
    {gap_number, "gap-number", warning, "A number in the gap differs from the position, which alone counts."},
    {implication_chain, "implication-chain", warning, "`a ⇒ b ⇒ c` is read as `(a ⇒ b) ⇒ c`."},
    {function_power, "function-power", warning,
     "`sin^2(x)` is no power of the value: a function's name is taken for a variable."},
    {known_name, "known-name", warning,
     "A name that nothing is known of is nearly, or usually, that of something known."},
    {arrow_sign, "arrow-sign", warning, "`p → q` is no implication: the arrow says what a value tends to."},
    {applied_value, "applied-value", warning,
     "`2(x + 1)` is no product: what stands in front is applied like a function."},
    {written_differs, "written-differs", warning, "A formula or number behind `as` differs from what was added."},
    {rule_premise, "rule-premise", warning, "A rewriting rule was used whose premise nobody proved."},
    {goal_replaced, "goal-replaced", warning, "A rewritten hypothesis took the place of the goal."},
    {denominator, "denominator", warning, "A calculation cancels a denominator that is not known to be non-zero."},
    {contradiction, "contradiction", warning, "The assumptions contradict one another, so that everything follows."},
    {timeout, "timeout", error, "The proof was ended at the limit of time."},
    {memory_limit, "memory-limit", error, "The proof was ended at the limit of memory."},
    {work_limit, "work-limit", error, "The proof was ended at the limit of counted work."},
    {too_deep, "too-deep", error, "The input is nested too deeply for the stack."},
    {crash, "crash", error, "The process of the proof ended by a fault of the program."},
    {log_lost, "log-lost", error, "A file of `--logs` cannot be written."},
});

consteval bool rows_stand_at_their_codes() {
  for (std::size_t i = 0; i < rows.size(); ++i) {
    if (static_cast<std::size_t>(rows[i].code) != i) {
      return false;
    }
  }
  return rows.size() == static_cast<std::size_t>(log_lost) + 1;
}
static_assert(rows_stand_at_their_codes());

}  // namespace

std::span<const diagnostic_row> diagnostic_rows() { return rows; }

const diagnostic_row& row_of(diagnostic_code code) { return rows[static_cast<std::size_t>(code)]; }

std::string_view severity_name(severity level) {
  constexpr std::string_view names[] = {"error", "warning", "note"};
  return names[static_cast<std::size_t>(level)];
}

}  // namespace vetro
