// Builders of arithmetic terms that leave out what 0 and 1 make superfluous.
//
// Integer constants are folded where the result fits one; nothing else is simplified, and the order of operands stays.
// Null for a null operand.
#pragma once

#include "term/ast.h"

namespace vetro {

term_ptr mk_neg(term_ptr a);                     // -2 for 2, 0 for 0
term_ptr mk_sum(term_ptr l, term_ptr r);         // without a side that is 0
term_ptr mk_difference(term_ptr l, term_ptr r);  // l for r = 0, -r for l = 0
term_ptr mk_product(term_ptr l, term_ptr r);     // 0 for a side that is 0; without a side that is 1
term_ptr mk_quotient(term_ptr l, term_ptr r);    // l / r; 0 for l = 0, l for r = 1
term_ptr mk_fraction(term_ptr l, term_ptr r);    // the same, written as a fraction
term_ptr mk_power(term_ptr b, term_ptr e);       // 1 for e = 0, b for e = 1

}  // namespace vetro
