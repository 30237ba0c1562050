// Instantiating bound variables without capture.
#pragma once

#include "term/ast.h"

namespace vetro {

// t with src (a variable, possibly indexed) replaced by dest. Gives what subst_term gives, except where that would
// change the meaning: a binder (of a Quant, a Lambda, an entry such as y ∈ S, or implied by an operator) that would
// capture a variable of dest is renamed, a variable bound by an entry is not replaced in what the entry stands over,
// and the sets of entries are substituted too. Null when an argument is null or the substitution fails.
term_ptr instantiate_term(term_ptr src, term_ptr dest, term_ptr t);

// The Quant without the listed binders, which become the values, one after the other. What is left of it is a Quant
// over the other entries, or its body. Null when an instantiation fails.
term_ptr instantiate_binders(term_ptr quantified, term_span binders, term_span values);

// t with its binders as if it had been read from its text. Null for null.
term_ptr with_binders_as_read(term_ptr t);

// t without binders anywhere.
term_ptr strip_binders(term_ptr t);

}  // namespace vetro
