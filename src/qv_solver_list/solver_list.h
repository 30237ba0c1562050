// The dispatcher between instructions and solvers, with the contract that every solver follows.
//
// A decision solver receives a target and a solve_data, both borrowed, and answers true only if it has proved the
// target from the assumptions. False means "not proved", for any cause. Its goal is the target argument, never
// sdata.target. It keeps nothing between calls on which an answer depends.
#pragma once

#include <string_view>

#include "lib/log_stream.h"
#include "lib/proof_gap.h"
#include "lib/thm_lib.h"
#include "term/ast.h"

namespace vetro {

// The solver's view of a proof state.
struct solve_data {
  term_list assum;
  term_ptr target = nullptr;  // what the calling instruction started from
  const thm_lib* lib = nullptr;
  log_stream* log_file = nullptr;
};

enum res_type : unsigned char { bool_res = 0, termlist_and = 1, termlist_or = 2 };

// The result of a one-step solver: an answer, or sub-targets that all (and) or of which one (or) must hold.
struct solve_res {
  res_type type = bool_res;
  bool ans = false;
  term_list list;
};

struct solver_args {
  const proof_gap_full* gap;  // the current target as a proof state
  const solve_data* sdata;
  term_ptr target;
};

using solver_decide = bool (*)(term_ptr target, const solve_data& sdata);
using solver_func_t = solve_res (*)(const solver_args& args);

// A row of the battery. name is the word behind `using` that selects the solver alone, or null.
struct named_dsl_solver {
  const char* name;
  solver_decide solve;
};

inline constexpr int initial_fee = 2;  // every instruction starts with it: two layers of one-step solvers

// The full procedure: battery, splitting, filter, one-step solvers under the budget fee. Prints progress lines.
bool solver_manager_dsl(term_ptr target, const solve_data& sdata, int fee);

// The one named solver, or the full procedure for an empty name. An unknown name gives false at once.
bool solver_manager_dsl_with_solver(term_ptr target, const solve_data& sdata, int fee, std::string_view solver_name);

solver_decide find_dsl_named_solver(std::string_view solver_name);  // null for an unknown name

term_list solver_filter(const term_list& list, const solve_data& sdata);  // without what the battery proves
term_list zero_step_process(term_ptr target);
term_list split_connect(term_ptr t, connect_type connect);  // flattened operands, left to right; (t) otherwise
term_list split_iff(term_ptr t);                            // both implications, or empty
solve_res solver_or_split(term_ptr target);
bool solver_eqb(term_ptr target, const solve_data& sdata);
bool solver_reflexivity(term_ptr t);

}  // namespace vetro
