// Equality of expressions by their rational normal form, and the two solvers on it.
//
// The test is algebraic: no domain is looked at, x/x is 1, and two quotients by zero are equal. Beyond that it is
// exact. It proves nothing from a not-a-number (an overflow, an exhausted budget) unless the sides are equal as terms;
// from an ellipsis; and from more than one asymptotic term on a side, as each occurrence of O(x) is another function.
#pragma once

#include "qv_solver_list/solver_list.h"

namespace vetro {

// True only if both terms have the same rational normal form. Null terms give false.
bool poly_rat_eqb(term_ptr a, term_ptr b);

// Proves a = b, a <= b and a >= b where both sides are equal.
bool solver_poly_rat_eqb(term_ptr target);

// Proves an atomic comparison from an assumption that is the same comparison up to rearrangement: the differences of
// their sides agree. A strict assumption does not prove a non-strict target.
bool solver_context_poly_rat(term_ptr target, const solve_data& sdata);

}  // namespace vetro
