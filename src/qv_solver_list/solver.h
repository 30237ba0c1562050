// The contract of every solver, with the registry's identities and the way to ask another solver.
//
// A decision solver receives a target and a solve_data, both borrowed, and answers true only if it has proved the
// target from the assumptions. False means "not proved", for any cause. Its goal is the target argument, never
// sdata.target. It keeps nothing between calls on which an answer depends.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <span>
#include <string_view>

#include "lib/log_stream.h"
#include "lib/proof_gap.h"
#include "lib/thm_lib.h"
#include "term/ast.h"

namespace vetro {

class assumption_facts;

// The solver's view of a proof state.
struct solve_data {
  shared_terms assum;
  term_ptr target = nullptr;  // what the calling instruction started from
  const thm_lib* lib = nullptr;
  log_stream* log_file = nullptr;
  // What assum says, as assumption_facts.h gives it; made when it is first asked for.
  mutable std::shared_ptr<assumption_facts> facts = nullptr;
};

enum class res_type : unsigned char { bool_res = 0, termlist_and = 1, termlist_or = 2 };
using enum res_type;

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

// Every solver of the program. The first 21 are the battery, and their numbers are its order of trial and the places
// that progress lines name; the others serve by name or as side solvers only.
enum class solver_id : std::uint8_t {
  eqb = 0,
  reflexivity,
  context_poly_rat,
  func_apply,
  deriv,
  continuous_func,
  integrable_func,
  const_type,
  domain_type,
  integral,
  eval_bar,
  rootfrac,
  numeric_calc,
  limit_calc,
  root_power,
  poly_rat,
  sat,
  interval,
  squeeze,
  sgn,
  smt_lra,
  sgn_pure,
};

inline constexpr std::size_t battery_size = 21;

// All there is to say of a solver.
struct solver_row {
  solver_id id;
  std::string_view name;  // the word behind `using` that selects it alone; empty when none does
  solver_decide solve;    // null while the solver is not there; its turn then passes
};

// Installs the rows, which stand in a layer above this one; once, before the first question.
void install_solvers(std::span<const solver_row> rows);

// The solver's function; null while it is not there.
solver_decide find_solver(solver_id id);
// The function of the solver of that public name; null for a name that selects none.
solver_decide find_dsl_named_solver(std::string_view solver_name);

// One call of one solver from outside every other solver: within the budget of a call, and false when memory or budget
// runs out. Null stands for a solver that is not there and gives false.
bool call_decision_solver(solver_decide solve, term_ptr target, const solve_data& sdata);
// The same for a one-step solver, whose failure is an unproved target without sub-targets.
solve_res call_one_step_solver(solver_func_t solve, const solver_args& args);

}  // namespace vetro
