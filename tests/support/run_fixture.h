// A run on logs in memory, and short forms for the instructions that drive it.
#pragma once

#include <initializer_list>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "dsl_interpreter/dsl_execute.h"
#include "support/formulas.h"

namespace vetro::test {

inline proof_gap_full gap_of(std::initializer_list<std::string_view> assumptions, std::string_view goal) {
  proof_gap_full gap;
  for (const std::string_view text : assumptions) {
    add_assumption(gap, formula(text));
  }
  gap.goal = formula(goal);
  return gap;
}

struct run {
  explicit run(proof_gap_full start, dsl_execute_mode mode = fast_mode) : gap(std::move(start)) { data.mode = mode; }

  dsl_exe_code execute(const dsl_instruction_list& list) { return execute_instruction_list(data, list); }
  const dsl_execution_step& step(std::size_t number) const { return data.summary.steps.at(number - 1); }

  std::string execute_text;
  std::string error_text;
  log_stream execute_log{&execute_text};
  log_stream error_log{&error_text};
  proof_gap_full gap;
  dsl_execute_data data = dsl_execute_data_init(execute_log, error_log, nullptr, fast_mode, gap);
};

inline dsl_term reference(dsl_term_type type, std::int64_t number, std::string_view text, std::string alias = "") {
  return {number, type, std::move(alias), "", text.empty() ? nullptr : formula(text)};
}

inline dsl_term goal_ref(std::string_view text) { return reference(dsl_goal, 0, text); }

// Without a text the reference is one whose formula did not parse.
inline dsl_term hypothesis_ref(std::int64_t number, std::string_view text = "") {
  return reference(dsl_hypo, number, text);
}

inline dsl_instruction admit(std::string_view text, int line = 1) {
  return {.number = line, .content = dsl_assert{hypothesis_ref(1, text), {}, dsl_assert_by_admit}};
}

inline dsl_instruction block(std::string_view text, dsl_instruction_list body, int line = 1) {
  return {.number = line, .content = dsl_assert{hypothesis_ref(1, text), std::move(body), dsl_assert_by_proof}};
}

inline dsl_instruction autosolve(std::initializer_list<std::int64_t> hypotheses, std::string solver = "") {
  dsl_auto_solve inst{.all_assum = false, .hlist = {}, .solver_name = std::move(solver)};
  for (const std::int64_t number : hypotheses) {
    inst.hlist.push_back(hypothesis_ref(number));
  }
  return {.number = 1, .content = inst};
}

inline dsl_instruction case_analysis(std::int64_t number) {
  return {.number = 1, .content = dsl_case_analysis{hypothesis_ref(number)}};
}

}  // namespace vetro::test
