// The functions of the solvers, as the registry lists them. Each stands in a file of its own name.
#pragma once

#include "qv_solver_list/solver.h"

namespace vetro {

// Decision solvers.
bool solver_eqb(term_ptr target, const solve_data& sdata);
bool solver_reflexivity(term_ptr target, const solve_data& sdata);
bool solver_context_poly_rat(term_ptr target, const solve_data& sdata);
bool solver_func_apply_eqb(term_ptr target, const solve_data& sdata);
bool solver_deriv_eqb(term_ptr target, const solve_data& sdata);
bool solver_continuous_func(term_ptr target, const solve_data& sdata);
bool solver_integrable_func(term_ptr target, const solve_data& sdata);
bool solver_const_type(term_ptr target, const solve_data& sdata);
bool solver_domain_type(term_ptr target, const solve_data& sdata);
bool solver_integral(term_ptr target, const solve_data& sdata);
bool solver_eval_bar(term_ptr target, const solve_data& sdata);
bool solver_rootfrac(term_ptr target, const solve_data& sdata);
bool solver_numeric_calc(term_ptr target, const solve_data& sdata);
bool solver_root_power(term_ptr target, const solve_data& sdata);
bool solver_limit_calc(term_ptr target, const solve_data& sdata);
bool solver_poly_rat_eqb(term_ptr target, const solve_data& sdata);
bool solver_sat(term_ptr target, const solve_data& sdata);
bool solver_interval(term_ptr target, const solve_data& sdata);
bool solver_squeeze(term_ptr target, const solve_data& sdata);
bool solver_sgn(term_ptr target, const solve_data& sdata);
bool solver_sgn_pure(term_ptr target, const solve_data& sdata);
bool solver_smt_lra(term_ptr target, const solve_data& sdata);

// One-step solvers.
solve_res solver_or_split(const solver_args& args);
solve_res solver_bwd_saturation_set(const solver_args& args);
solve_res solver_shape_simpl(const solver_args& args);

}  // namespace vetro
