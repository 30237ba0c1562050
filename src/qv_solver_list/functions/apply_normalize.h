// Evaluation of terms by the functions that the assumptions define: applications are unfolded, applied `fun` terms
// reduced, cases decided.
#pragma once

#include <memory>

#include "qv_solver_list/functions/piecewise.h"

namespace vetro {

// How deep definitions are unfolded inside each other.
inline constexpr int func_apply_fuel = 8;

// Evaluates terms under one list of assumptions. What a term comes to is remembered, so that shared parts are evaluated
// once; work is counted over all calls.
class function_evaluator {
 public:
  explicit function_evaluator(const solve_data& sdata);  // borrowed; must outlive the evaluator
  ~function_evaluator();
  function_evaluator(const function_evaluator&) = delete;
  function_evaluator& operator=(const function_evaluator&) = delete;

  // The evaluated term. An assumption that speaks of a name is not used below an operator that binds this name. Null
  // for null, and when the budget is spent or a reduction does not end.
  term_ptr normalize(term_ptr t, int fuel);

 private:
  class walk;
  std::unique_ptr<walk> walk_;
};

// One evaluation.
term_ptr solver_func_apply_normalize(term_ptr t, const solve_data& sdata, int fuel);

// solve(target, sdata with the parts of the assumption behind its own); a null assumption adds nothing.
bool solver_func_apply_under_assumption(term_ptr assumption, term_ptr target, const solve_data& sdata,
                                        const std::function<bool(term_ptr target, const solve_data& sdata)>& solve);

}  // namespace vetro
