// Equality of expressions by their rational normal form.
//
// The test is algebraic: no domain is looked at, x/x is 1, and two quotients by zero are equal. Beyond that it is
// exact. It proves nothing from a not-a-number (an overflow, an exhausted budget) unless the sides are equal as terms;
// from an ellipsis; and from more than one asymptotic term on a side, as each occurrence of O(x) is another function.
#pragma once

#include "term/ast.h"

namespace vetro {

// True only if both terms have the same rational normal form. Null terms give false.
bool poly_rat_eqb(term_ptr a, term_ptr b);

}  // namespace vetro
