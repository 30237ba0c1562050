// Formulas that lost a quantifier, read again as texts.
//
// What an operator binds depends on the quantifiers around it: under forall (k), sum_{i = k}^{n}(i) binds i, and at the
// top of a formula it binds k, too. Every formula of a gap has the binders of its text. One that came from under a
// quantifier gets them here, where that changes no meaning.
#pragma once

#include "dsl_interpreter/dsl_execute.h"

namespace vetro {

// t with its binders as if it had been read from its text. Null for null, and after a message when that would be a
// formula with another meaning.
term_ptr reread(const dsl_execute_data& data, term_ptr t);

// True when static analysis, which made `analyzed` of t, read a pair in t as an open interval. In a formula that was
// prepared before, only a pair that came in with a value can stand where a set is expected; that is a point.
bool reads_pair_as_interval(term_ptr t, term_ptr analyzed);

}  // namespace vetro
