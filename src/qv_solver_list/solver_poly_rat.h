// Equality of expressions by their rational normal form, and the two solvers on it.
#pragma once

#include "qv_solver_list/solver_list.h"

namespace vetro {

// True only if both terms have the same rational normal form. Null terms give false.
bool poly_rat_eqb(term_ptr a, term_ptr b);

bool solver_poly_rat_eqb(term_ptr target);
bool solver_context_poly_rat(term_ptr target, const solve_data& sdata);

}  // namespace vetro
