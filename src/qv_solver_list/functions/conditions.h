// Whether a condition of a definition or of a case holds, in two senses: at a point, or in a whole neighbourhood of it
// (which derivatives and continuity need). Each answer is proved: false means not shown, and a condition that is not
// shown true need not be shown false by the twin.
#pragma once

#include <functional>

#include "qv_solver_list/functions/definitions.h"
#include "qv_solver_list/premises.h"

namespace vetro {

// Evaluates a term with a budget of unfoldings; null on failure.
using function_normalizer = std::function<term_ptr(term_ptr t, int fuel)>;

// What a condition is examined with: names and the point at which they stand (both may be empty), what proves premises,
// and how conditions are evaluated before they are asked about.
struct solver_func_condition_context {
  term_span params;
  term_span values;
  prover& premises;
  int fuel = 0;
  function_normalizer normalizer = nullptr;
};

bool solver_func_condition_true_at_point(term_ptr condition, const solver_func_condition_context& context);
bool solver_func_condition_false_at_point(term_ptr condition, const solver_func_condition_context& context);

// In a neighbourhood of the point in which all parameters vary. False without parameters.
bool solver_func_condition_true_open_at(term_ptr condition, const solver_func_condition_context& context);
bool solver_func_condition_false_open_at(term_ptr condition, const solver_func_condition_context& context);

// The same where the first `fixed` of params keep their values and the others, the active ones, vary.
bool solver_func_condition_true_open_for_view(const premise_question& question);
bool solver_func_condition_false_open_for_view(const premise_question& question);

// Whether an active parameter occurs in the condition, bound names and scopes included.
bool solver_func_condition_depends_on_active_args(term_ptr condition, term_span params, std::size_t fixed);

// Whether the Lambda may be applied to the arguments: its types and its condition are shown there, or in a
// neighbourhood.
bool solver_func_lambda_applies(term_ptr lambda, term_span args, prover& premises);
bool solver_func_lambda_applies_openly(term_ptr lambda, term_span args, prover& premises);

}  // namespace vetro
