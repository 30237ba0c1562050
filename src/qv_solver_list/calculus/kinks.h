// Kinks of an expression at its zeros.
#pragma once

#include "qv_solver_list/calculus/variable_facts.h"
#include "term/ast.h"

namespace vetro {

// Whether it is shown that the magnitude of t is the same to first order on both sides of each of its zeros, as that of
// an analytic expression is. 2 * x + (x^2)^(1/2) is 3 * x on the right of 0 and x on the left.
bool has_even_zeros(term_ptr t, variable_facts& facts);

}  // namespace vetro
