// The dispatcher between instructions and solvers.
#pragma once

#include <string_view>

#include "qv_solver_list/solver.h"

namespace vetro {

inline constexpr int initial_fee = 2;  // every instruction starts with it: two layers of one-step solvers

// The full procedure: battery, splitting, filter, one-step solvers under the budget fee. Prints progress lines.
bool solver_manager_dsl(term_ptr target, const solve_data& sdata, int fee);

// The one named solver, or the full procedure for an empty name. An unknown name gives false at once.
bool solver_manager_dsl_with_solver(term_ptr target, const solve_data& sdata, int fee, std::string_view solver_name);

// Evaluates a one-step result: all or one of the listed sub-targets by the full procedure under fee.
bool solver_manager_list_dsl(const solve_res& res, const solve_data& sdata, int fee);

term_list solver_filter(const term_list& list, const solve_data& sdata);  // without what the battery proves
term_list zero_step_process(term_ptr target);
term_list split_iff(term_ptr t);  // both implications, or empty

}  // namespace vetro
