// Conditions on a variable whose solutions form one open interval.
#pragma once

#include "qv_solver_list/solver.h"
#include "term/ast.h"

namespace vetro {

// Whether the conjuncts are shown to describe an open interval, the whole line or nothing, whatever values the other
// names have: on it, functions with equal derivatives differ by a constant. Isolated points and gaps let other
// functions in, so x ≥ 0, x ≠ 0, x^2 > 0, x^2 > 1 and x < 0 ∨ x > 1 are none.
//
// A conjunct does not move with the variable; or says that the variable lies in an open interval or in a set of reals
// without a border; or is a strict comparison whose sides are linear, or differ by a function that is monotone,
// concave, or positive everywhere or nowhere where the other conjuncts hold.
bool describe_an_interval(term_span conjuncts, term_ptr var, const solve_data& sdata);

}  // namespace vetro
