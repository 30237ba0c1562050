// Propositional reasoning over opaque atoms, and backward unfolding of set-theoretic goals.
#pragma once

#include "qv_solver_list/solver_list.h"

namespace vetro {

// What propositional reasoning alone says of a target. It is undecided when the question is beyond a limit, or when a
// term is missing.
enum class sat_answer : unsigned char { open, proved, undecided };

sat_answer propositional_answer(term_span assum, term_ptr target);

// True when the assumptions imply the target by propositional reasoning alone.
bool solver_sat(term_span assum, term_ptr target);

// The propositions that together mean the target; termlist_and, or bool_res false.
solve_res solver_bwd_saturation_set(term_ptr target, const solve_data& sdata);
term_list set_equiv_saturation(term_ptr p);  // empty when no rule applies

}  // namespace vetro
