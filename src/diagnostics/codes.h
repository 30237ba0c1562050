// The codes of all diagnostics. A code is stable: programs go by it, texts may become better.
#pragma once

#include <cstdint>
#include <span>
#include <string_view>

namespace vetro {

enum class severity : std::uint8_t { error, warning, note };

enum class diagnostic_code : std::uint8_t {
  // Inputs.
  file_unreadable,
  manifest_line,
  gap_line_form,
  gap_without_goal,
  formula_syntax,
  formula_ambiguous,
  script_syntax,
  script_block,
  script_empty,
  library_left_out,
  // Steps.
  no_such_hypothesis,
  no_such_theorem,
  wrong_kind,
  number_not_next,
  number_taken,
  formula_missing,
  formula_mismatch,
  premise_mismatch,
  too_many_premises,
  wrong_shape,
  wrong_count,
  bad_binder,
  value_refused,
  not_fresh,
  rule_unusable,
  rewrite_mismatch,
  side_condition,
  not_equal,
  conclusion_mismatch,
  not_proved,
  no_such_solver,
  block_not_proved,
  already_finished,
  preparation_failed,
  open_goal,
  gap_split,
  admitted,
  // What is read otherwise than it looks, or trusted.
  behind_goal,
  gap_number,
  implication_chain,
  function_power,
  known_name,
  arrow_sign,
  applied_value,
  written_differs,
  rule_premise,
  goal_replaced,
  denominator,
  contradiction,
  // The run.
  timeout,
  memory_limit,
  work_limit,
  too_deep,
  crash,
  log_lost,
};

struct diagnostic_row {
  diagnostic_code code;
  std::string_view name;     // stable, in lower case with hyphens
  severity level;            // the usual one
  std::string_view meaning;  // one sentence for the documentation
};

// All codes, in the order of diagnostic_code.
std::span<const diagnostic_row> diagnostic_rows();
const diagnostic_row& row_of(diagnostic_code code);
// "error", "warning", "note".
std::string_view severity_name(severity level);

}  // namespace vetro
