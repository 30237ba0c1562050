// What one rewrite_in carries along.
#pragma once

#include "dsl_interpreter/dsl_execute.h"
#include "dsl_interpreter/instructions/rewrite_in_names.h"
#include "dsl_interpreter/instructions/rewrite_in_rule.h"
#include "qv_solver_list/solver.h"

namespace vetro {

struct rewrite_in_state {
  log_stream* execute_log = nullptr;
  solve_data sdata;
  forall_equation_rule rule;
  rewrite_in_context context{};
  rewrite_direction direction{};
  term_ptr mapped_binder = nullptr;  // the variable that the binder map names, for a set description
  std::size_t rewrite_hits = 0;      // replacements accepted so far
  term_ptr first_failed_condition = nullptr;
  const char* first_failed_reason = nullptr;
  const char* failure_reason = nullptr;  // why the walk failed, where it was no premise

  // The first premise without a proof is what the user sees.
  void remember_failed_condition(term_ptr condition, const char* reason) {
    if (first_failed_condition == nullptr) {
      first_failed_condition = condition;
      first_failed_reason = reason;
    }
  }
};

}  // namespace vetro
