// The dispatcher between instructions and solvers, with the contract that every solver follows.
//
// A decision solver receives a target and a solve_data, both borrowed, and answers true only if it has proved the
// target from the assumptions. False means "not proved", for any cause. Its goal is the target argument, never
// sdata.target. It keeps nothing between calls on which an answer depends.
#pragma once

#include <cstddef>
#include <memory>
#include <string_view>
#include <unordered_map>

#include "lib/log_stream.h"
#include "lib/proof_gap.h"
#include "lib/thm_lib.h"
#include "term/ast.h"
#include "term/compare.h"

namespace vetro {

// Answers "is this one of the assumptions, up to bound names?" for one list of assumptions. The first question is
// answered by a scan, because most records are asked once; the second builds a table. An answer never rests on the
// table alone, so that an index which came along with a changed copy of a record does no harm: a hit is checked against
// the list, and a miss counts only while the list is the one that the table was built from.
class assumption_index {
 public:
  bool contains(const term_list& assum, term_ptr t);

 private:
  bool asked_ = false;
  term_list indexed_;
  std::unordered_map<term_ptr, std::size_t, alpha_hasher, alpha_equal> position_;
};

// The solver's view of a proof state.
struct solve_data {
  term_list assum;
  term_ptr target = nullptr;  // what the calling instruction started from
  const thm_lib* lib = nullptr;
  log_stream* log_file = nullptr;
  std::shared_ptr<assumption_index> index = nullptr;  // set by the dispatcher; derived from assum
};

enum res_type : unsigned char { bool_res = 0, termlist_and = 1, termlist_or = 2 };

// The result of a one-step solver: an answer, or sub-targets that all (and) or of which one (or) must hold.
struct solve_res {
  res_type type = bool_res;
  bool ans = false;
  term_list list = {};
};

struct solver_args {
  const proof_gap_full* gap;  // the current target as a proof state
  const solve_data* sdata;
  term_ptr target;
};

using solver_decide = bool (*)(term_ptr target, const solve_data& sdata);
using solver_func_t = solve_res (*)(const solver_args& args);

// A solver with the word behind `using` that selects it alone.
struct named_dsl_solver {
  std::string_view name;
  solver_decide solve;
};

inline constexpr int initial_fee = 2;  // every instruction starts with it: two layers of one-step solvers

// The full procedure: battery, splitting, filter, one-step solvers under the budget fee. Prints progress lines.
bool solver_manager_dsl(term_ptr target, const solve_data& sdata, int fee);

// The one named solver, or the full procedure for an empty name. An unknown name gives false at once.
bool solver_manager_dsl_with_solver(term_ptr target, const solve_data& sdata, int fee, std::string_view solver_name);

solver_decide find_dsl_named_solver(std::string_view solver_name);  // null for an unknown name

// One call of one solver from outside every other solver: within the budget of a call, and false when memory or budget
// runs out. Null stands for a solver that is not there and gives false.
bool call_decision_solver(solver_decide solve, term_ptr target, const solve_data& sdata);

// Evaluates a one-step result: all or one of the listed sub-targets by the full procedure under fee.
bool solver_manager_list_dsl(const solve_res& res, const solve_data& sdata, int fee);

term_list solver_filter(const term_list& list, const solve_data& sdata);  // without what the battery proves
term_list zero_step_process(term_ptr target);
term_list split_connect(term_ptr t, connect_type connect);  // flattened operands, left to right; (t) otherwise
term_list split_iff(term_ptr t);                            // both implications, or empty
solve_res solver_or_split(term_ptr target);
bool solver_eqb(term_ptr target, const solve_data& sdata);
bool solver_reflexivity(term_ptr t);

}  // namespace vetro
